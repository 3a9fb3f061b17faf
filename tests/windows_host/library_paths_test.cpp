#include "tests/unit/catalogue/picture_samples.h"
#include "tests/windows_host/hosted_test.h"

#include <QDir>
#include <QImageReader>
#include <QRegularExpression>
#include <QSslSocket>
#include <QTest>

#include <array>

#include <windows.h>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

QStringList warnings(const SmallObs &obs)
{
    return obs.log().filter(QRegularExpression(u"^[12]00 "_s));
}

/// Where a DLL of this process was loaded from.
QString folderOf(const wchar_t *name)
{
    std::array<wchar_t, 1024> path{};
    const HMODULE library = GetModuleHandleW(name);
    if (library == nullptr || GetModuleFileNameW(library, path.data(), DWORD(path.size())) == 0)
        return {};
    return QDir::fromNativeSeparators(QString::fromWCharArray(path.data())).section(u'/', 0, -2);
}

} // namespace

/// An OBS whose Qt came without back-ends for TLS and without WebP, as OBS's own for Windows does.
class LibraryPathsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(config_.isValid()); }
    void bareFolderIsWarnedAbout();
    void folderBringsWebp();
    void folderBringsTls();

private:
    QTemporaryDir config_;
};

void LibraryPathsTest::bareFolderIsWarnedAbout()
{
    const ModuleFolder folder(u"bare"_s);
    SmallObs obs(folder, config_.path());
    LoadedModule module(folder.module());
    QVERIFY(module.load());
    QCOMPARE(warnings(obs),
             (QStringList{u"200 [quillmar-obs-plugin] Qt has no TLS back-end here: the service cannot be "
                          "reached"_s,
                          u"200 [quillmar-obs-plugin] Qt has no WebP plug-in here: previews in that format "
                          "are not shown"_s}));
    module.unload();
    QCoreApplication::removeLibraryPath(folder.path());
}

/// The folder has letters of more than one script in its name, as the name of a user may.
void LibraryPathsTest::folderBringsWebp()
{
    const ModuleFolder folder(u"pictures سارا"_s, {u"imageformats/qwebp.dll"_s});
    SmallObs obs(folder, config_.path());
    LoadedModule module(folder.module());
    QVERIFY(!QImageReader::supportedImageFormats().contains("webp"));
    QVERIFY(module.load());
    QVERIFY(obs.log().contains(u"300 [quillmar-obs-plugin] Qt plugin path added: "_s + folder.path()));
    QCOMPARE(warnings(obs).filter(u"WebP"_s), QStringList());
    const QByteArray webp = encoded(quarteredPicture(), "webp");
    QCOMPARE(quartersOf(QImage::fromData(webp, "webp")), "RGBW");
    QCOMPARE(folderOf(L"qwebp.dll"), folder.path() + u"/imageformats"_s);
    module.unload();
    QCoreApplication::removeLibraryPath(folder.path());
}

void LibraryPathsTest::folderBringsTls()
{
    const ModuleFolder folder(u"protection سارا"_s, {u"tls/qschannelbackend.dll"_s});
    SmallObs obs(folder, config_.path());
    LoadedModule module(folder.module());
    QVERIFY(!QSslSocket::supportsSsl());
    QVERIFY(module.load());
    QVERIFY(obs.log().contains(u"300 [quillmar-obs-plugin] Qt plugin path added: "_s + folder.path()));
    QCOMPARE(warnings(obs).filter(u"TLS"_s), QStringList());
    QVERIFY(QSslSocket::supportsSsl());
    QCOMPARE(QSslSocket::activeBackend(), u"schannel"_s);
    QCOMPARE(folderOf(L"qschannelbackend.dll"), folder.path() + u"/tls"_s);
    module.unload();
}

} // namespace quillmar::test

int main(int argc, char *argv[])
{
    return quillmar::test::runHosted(argc, argv,
                                     [] { return std::make_unique<quillmar::test::LibraryPathsTest>(); });
}

#include "library_paths_test.moc"
