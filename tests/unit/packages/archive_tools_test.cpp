#include "tests/support/zip_builder/zip_builder.h"
#include "tests/unit/packages/extraction_folder.h"

#include <QDir>
#include <QProcess>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

struct Run {
    int code = -1;
    QByteArray output;
};

Run run(const QString &program, const QStringList &arguments, const QString &folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(30000))
        return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAll()};
}

QStringList python(const QString &body)
{
    return {u"-c"_s, QString(u"import zipfile, sys, io\n"_s + body)};
}

QMap<QString, QByteArray> sourceFiles()
{
    QByteArray text;
    for (int line = 0; line < 4000; ++line)
        text += "frame " + QByteArray::number(line) + '\n';
    return {{u"pack/text.txt"_s, text},
            {u"pack/noise.bin"_s, noise(70000)},
            {u"pack/empty"_s, {}},
            {u"pack/sub/deeper/a b.png"_s, "picture"},
            {u"pack/قاب پخش.webm"_s, noise(3000, 3)},
            {u"pack/枠🎮.txt"_s, "text"}};
}

} // namespace

/// Archives as packers in the wild write them.
class ArchiveToolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void extracts_data();
    void extracts();
    void refuses_data();
    void refuses();
};

void ArchiveToolsTest::extracts_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    const auto row = [](const char *name, const QString &program, const QStringList &arguments) {
        QTest::newRow(name) << program << arguments;
    };
    row("zip", u"zip"_s, {u"-qr"_s, u"out.zip"_s, u"pack"_s});
    row("zip, stored", u"zip"_s, {u"-qr0"_s, u"out.zip"_s, u"pack"_s});
    row("zip, best", u"zip"_s, {u"-qr9"_s, u"out.zip"_s, u"pack"_s});
    row("zip, without folder entries", u"zip"_s, {u"-qrD"_s, u"out.zip"_s, u"pack"_s});
    row("zip, without extra fields", u"zip"_s, {u"-qrX"_s, u"out.zip"_s, u"pack"_s});
    row("7z", u"7z"_s, {u"a"_s, u"-tzip"_s, u"-bd"_s, u"out.zip"_s, u"pack"_s});
    row("7z, stored", u"7z"_s, {u"a"_s, u"-tzip"_s, u"-mx0"_s, u"out.zip"_s, u"pack"_s});
    row("7z, ultra", u"7z"_s, {u"a"_s, u"-tzip"_s, u"-mx9"_s, u"out.zip"_s, u"pack"_s});
    row("bsdtar", u"bsdtar"_s, {u"-c"_s, u"--format=zip"_s, u"-f"_s, u"out.zip"_s, u"pack"_s});
    row("bsdtar, stored", u"bsdtar"_s,
        {u"-c"_s, u"--format=zip"_s, u"--options=zip:compression=store"_s, u"-f"_s, u"out.zip"_s, u"pack"_s});
    row("python", u"python3"_s, {u"-m"_s, u"zipfile"_s, u"-c"_s, u"out.zip"_s, u"pack"_s});
    row("python, each level", u"python3"_s,
        python(u"import pathlib\n"
               "with zipfile.ZipFile('out.zip', 'w', zipfile.ZIP_DEFLATED) as z:\n"
               "    for i, p in enumerate(sorted(pathlib.Path('pack').rglob('*'))):\n"
               "        z.write(p, compresslevel=i % 10)\n"_s));
    row("python, into a pipe", u"python3"_s,
        python(u"import pathlib\n"
               "class Pipe(io.RawIOBase):\n"
               "    def __init__(self): self.file = open('out.zip', 'wb')\n"
               "    def writable(self): return True\n"
               "    def write(self, b): return self.file.write(b)\n"
               "    def flush(self): self.file.flush()\n"
               "with zipfile.ZipFile(Pipe(), 'w', zipfile.ZIP_DEFLATED) as z:\n"
               "    for p in sorted(pathlib.Path('pack').rglob('*')): z.write(p)\n"_s));
}

void ArchiveToolsTest::extracts()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    QTemporaryDir work;
    const QMap<QString, QByteArray> files = sourceFiles();
    for (const auto &[path, bytes] : files.asKeyValueRange())
        putFile(work.filePath(path), bytes);
    const Run packed = run(program, arguments, work.path());
    QVERIFY2(packed.code == 0, packed.output.constData());

    ExtractionFolder folder;
    folder.storePackage(fileContent(work.filePath(u"out.zip"_s)));
    const ProductFileResult result = folder.extractFolder(u"pack"_s);
    QCOMPARE(result.error, QString());
    QVERIFY(folder.extracted() == files);
}

void ArchiveToolsTest::refuses_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("key");
    const auto row = [](const char *name, const QString &command, const QString &key) {
        QTest::newRow(name) << command << key;
    };
    const QString invalid = u"Component.InvalidArchive"_s;
    const QString unsafe = u"Component.UnsafePath"_s;
    row("zip, encrypted", u"zip -qr -P secret out.zip pack"_s, invalid);
    row("zip, ZIP64 forced", u"zip -qr -fz out.zip pack"_s, invalid);
    row("zip, link kept", u"ln -s /etc/passwd pack/link && zip -qry out.zip pack"_s, unsafe);
    row("zip, bzip2", u"zip -qr -Z bzip2 out.zip pack"_s, invalid);
    row("zip, self-extractor",
        u"zip -qr good.zip pack && cat /bin/true good.zip > out.zip && zip -qA out.zip"_s, invalid);
    row("7z, LZMA", u"7z a -tzip -mm=LZMA out.zip pack >/dev/null"_s, invalid);
    row("7z, encrypted", u"7z a -tzip -psecret -mem=AES256 out.zip pack >/dev/null"_s, invalid);
    row("7z, another format", u"7z a -t7z out.zip pack >/dev/null"_s, invalid);
    row("bsdtar, into a pipe", u"bsdtar -c --format=zip pack | cat > out.zip"_s, invalid);
    row("bsdtar, another format", u"bsdtar -c --format=ustar -f out.zip pack"_s, invalid);
    row("python, unsafe name",
        u"python3 -c \"import zipfile; "
        "zipfile.ZipFile('out.zip','w').writestr('../evil.txt','x')\""_s,
        unsafe);
    row("python, name twice",
        u"python3 -W ignore -c \"import zipfile; z=zipfile.ZipFile('out.zip','w'); "
        "z.writestr('pack/text.txt','x'); z.writestr('pack/text.txt','y')\""_s,
        unsafe);
}

void ArchiveToolsTest::refuses()
{
    QFETCH(QString, command);
    QFETCH(QString, key);
    QTemporaryDir work;
    putFile(work.filePath(u"pack/text.txt"_s), QByteArray("some text\n").repeated(50));
    const Run packed = run(u"sh"_s, {u"-c"_s, command}, work.path());
    QVERIFY2(packed.code == 0, packed.output.constData());

    ExtractionFolder folder;
    folder.storePackage(fileContent(work.filePath(u"out.zip"_s)));
    const auto before = folder.snapshot();
    QCOMPARE(folder.extractFile(u"pack/text.txt"_s).error, key);
    QVERIFY(folder.snapshot() == before);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ArchiveToolsTest)
#include "archive_tools_test.moc"
