#include "plugin/locale_table.h"
#include "plugin/plugin_module.h"
#include "tests/support/libobs_fake/libobs_fake.h"

#include <QApplication>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTest>

using namespace quillmar;
using namespace Qt::StringLiterals;
using test::LibobsFake;

namespace
{

class NoStore : public SessionStore
{
public:
    bool save(const QString &) override { return true; }
    QString load() override { return {}; }
    bool remove() override { return true; }
};

} // namespace

/// An OBS whose Qt came without plug-ins for pictures.
class MissingWebpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneClearWarning();
};

void MissingWebpTest::oneClearWarning()
{
    QVERIFY(!QImageReader::supportedImageFormats().contains("webp"));
    const QTemporaryDir folder;
    QMainWindow window;
    LibobsFake obs;
    obs.setMainWindow(&window);
    obs.setConfigFolder(folder.path().toUtf8());
    LocaleTable locale;
    PluginModule module(nullptr, locale, std::make_unique<NoStore>());
    QVERIFY(module.load());
    QStringList warnings;
    for (const LibobsFake::LogLine &line : obs.log()) {
        if (line.text.contains(u"WebP"_s))
            warnings.append(u"%1 %2"_s.arg(line.level).arg(line.text));
    }
    QCOMPARE(warnings, QStringList(u"200 [quillmar-obs-plugin] Qt has no WebP plug-in here: previews in that "
                                   "format are not shown"_s));
    module.unload();
}

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    // Once the platform plug-in is loaded nothing else is to be found.
    QCoreApplication::setLibraryPaths({});
    MissingWebpTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "missing_webp_test.moc"
