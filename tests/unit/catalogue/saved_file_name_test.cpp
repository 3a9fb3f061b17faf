#include "catalogue/saved_file_name.h"
#include "packages/path_safety.h"

#include <QNetworkReply>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// A reply with one header.
class NamedReply : public QNetworkReply
{
public:
    explicit NamedReply(const QByteArray &disposition)
    {
        if (!disposition.isNull())
            setRawHeader("Content-Disposition", disposition);
    }
    void abort() override {}

protected:
    qint64 readData(char *, qint64) override { return -1; }
};

} // namespace

class SavedFileNameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fromHeader_data();
    void fromHeader();
    void withoutName_data();
    void withoutName();
    void safeNames_data();
    void safeNames();
};

void SavedFileNameTest::fromHeader_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *title, const QByteArray &header, const QString &name) {
        QTest::newRow(title) << header << name;
    };
    row("quoted", "attachment; filename=\"Pack 1.zip\"", u"Pack 1.zip"_s);
    row("not quoted", "attachment; filename=pack.zip", u"pack.zip"_s);
    row("parameter after the name stays", "attachment; filename=\"a.zip\"; size=5", u"\"a.zip\"; size=5"_s);
    row("semicolon at the end stays", "attachment; filename=\"a.zip\";", u"\"a.zip\";"_s);
    row("blanks around", "attachment; filename= \t\"a.zip\" ", u"a.zip"_s);
    row("blanks inside the quotation marks stay", "filename=\" a \"", u" a "_s);
    row("only one pair of quotation marks goes", "filename=\"\"a\"\"", u"\"a\""_s);
    row("quotation mark at the start only", "filename=\"a.zip", u"\"a.zip"_s);
    row("quotation mark at the end only", "filename=a.zip\"", u"a.zip\""_s);
    row("one quotation mark alone", "filename=\"", u"\""_s);
    row("single quotation marks stay", "filename='a.zip'", u"'a.zip'"_s);
    row("first of two names", "filename=a.zip; filename=b.zip", u"a.zip; filename=b.zip"_s);
    row("extended form is not read", "attachment; filename*=UTF-8''a.zip", u"key.bin"_s);
    row("extended form first", "attachment; filename*=UTF-8''a.zip; filename=b.zip", u"b.zip"_s);
    row("other case is not read", "attachment; FileName=a.zip", u"key.bin"_s);
    row("blank before '=' is not read", "attachment; filename =a.zip", u"key.bin"_s);
    row("part of another word", "attachment; xfilename=a.zip", u"a.zip"_s);
    row("no parameter", "attachment", u"key.bin"_s);
    row("empty header", "", u"key.bin"_s);
    row("empty name", "attachment; filename=", u"key.bin"_s);
    row("blank name", "attachment; filename=   ", u"key.bin"_s);
    row("empty quoted name", "attachment; filename=\"\"", u"key.bin"_s);
    row("parent folder", "filename=\"../x.zip\"", u"x.zip"_s);
    row("absolute", "filename=/etc/passwd", u"passwd"_s);
    row("deep", "filename=\"a/b/../../../c.zip\"", u"c.zip"_s);
    row("percent stays", "filename=\"..%2Fx.zip\"", u"..%2Fx.zip"_s);
    row("separator at the end", "filename=\"folder/\"", QString());
    row("only separators", "filename=\"///\"", QString());
    row("dot", "filename=.", u"."_s);
    row("two dots", "filename=..", u".."_s);
    row("Persian in UTF-8", "filename=\"بستهٔ شب.zip\"", u"بستهٔ شب.zip"_s);
    row("Latin-1", "filename=\"d\xe9tente.zip\"", u"d\uFFFDtente.zip"_s);
    row("Persian in Windows-1256", "filename=\"\xc8\xd3\xca\xe5.zip\"", u"\uFFFD\uFFFD\uFFFD\uFFFD.zip"_s);
    // Qt drops a header with characters that no header may have.
    row("zero character", QByteArray("filename=\"a\0b.zip\"", 18), u"key.bin"_s);
    row("line break", "filename=\"a\r\nb.zip\"", u"key.bin"_s);
    row("escape", "filename=\"a\x1b[2Jb.zip\"", u"key.bin"_s);
    row("tab", "filename=\"a\tb.zip\"", u"a\tb.zip"_s);
    row("4,000 characters", "filename=" + QByteArray(4000, 'n'), QString(4000, u'n'));
}

void SavedFileNameTest::fromHeader()
{
    QFETCH(const QByteArray, header);
    QTEST(fileNameFromReply(NamedReply(header), u"key"_s), "name");
}

void SavedFileNameTest::withoutName_data()
{
    QTest::addColumn<QString>("productKey");
    QTest::addColumn<QString>("name");
    QTest::newRow("named after the product") << u"abc"_s << u"abc.bin"_s;
    QTest::newRow("product without key") << QString() << u"quillmar-download.bin"_s;
    QTest::newRow("key with a path") << u"../../abc"_s << u"abc.bin"_s;
    QTest::newRow("key that ends with a separator") << u"abc/"_s << u".bin"_s;
}

void SavedFileNameTest::withoutName()
{
    QFETCH(const QString, productKey);
    QTEST(fileNameFromReply(NamedReply(QByteArray()), productKey), "name");
}

void SavedFileNameTest::safeNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isSafe");
    for (const QString &name : {u"a"_s, u"Pack 1.zip"_s, u"\"a.zip\"; size=5"_s, u".hidden"_s, u"..a"_s,
                                u"a..b"_s, u"a?*<>|b"_s, u"بستهٔ شب.zip"_s, u"\U0001F600.zip"_s, u" a"_s,
                                u"CONSOLE"_s, u"com10"_s, u"%2e%2e"_s, QString(4000, u'n')})
        QTest::newRow(qPrintable(u"safe: "_s + name.left(30))) << name << true;
    const QList<std::pair<const char *, QString>> unsafe{
        {"empty", QString()},
        {"dot", u"."_s},
        {"two dots", u".."_s},
        {"three dots", u"..."_s},
        {"dot at the end", u"a.zip."_s},
        {"blank at the end", u"a.zip "_s},
        {"only a blank", u" "_s},
        {"separator", u"a/b"_s},
        {"separator of Windows", u"..\\x"_s},
        {"drive", u"C:x"_s},
        {"stream", u"a.zip:hidden"_s},
        {"zero character", QString(u"a"_s + QChar(0) + u'b')},
        {"line break", u"a\r\nb"_s},
        {"tab", u"a\tb"_s},
        {"escape", u"a\x1b[31mb"_s},
        {"delete", u"a\x7f"_s},
        {"control character beyond ASCII", u"a\u0085z"_s},
        {"device", u"con"_s},
        {"device with a suffix", u"NUL.zip"_s},
        {"numbered device", u"Lpt1"_s},
        {"folder of the cache", u".quillmar-cache"_s},
        {"folder of the cache in another case", u".Quillmar-Cache"_s},
    };
    for (const auto &[title, name] : unsafe)
        QTest::newRow(title) << name << false;
}

void SavedFileNameTest::safeNames()
{
    QFETCH(const QString, name);
    QTEST(isSafeFileName(name), "isSafe");
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::SavedFileNameTest)
#include "saved_file_name_test.moc"
