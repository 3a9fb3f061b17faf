#include "tests/support/tls_service/tls_service.h"
#include "tests/unit/obs/cached_fixture.h"

#include "packages/product_identity.h"

#include <QDir>
#include <QFile>
#include <QFrame>
#include <QTest>
#include <QTextDocument>

using namespace Qt::StringLiterals;
using namespace quillmar;
using namespace quillmar::test;

namespace
{

using Fixture = ActionsFixture;

/// The press of a button that the button itself would not report, as for a click that was queued before it
/// was disabled.
void pressAnyway(QPushButton *button)
{
    Q_EMIT button->clicked();
}

} // namespace

class ComponentActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addPutsTheComponentIntoObs();
    void addPutsAStingerIntoObs();
    void downloadSavesTheComponent();
    void downloadSavesAFolder();
    void packageIsSavedWhole();
    void pathIsShownOnASecondLineAndAsToolTip();
#ifndef Q_OS_WIN // where no path can look like rich text
    void toolTipIsNeverRichText();
#endif

    void signedOut();
    void invalidMetadata();
    void extractionFails();
    void unsafeAssetPath();
    void insertionFails();
    void serviceRefuses_data();
    void serviceRefuses();
    void errorHasNoPath();
    void becameUninsertable();

    void secondClickOnABusyButton();
    void twoEntriesBusyAtOnce();
    void sameActionAgainAfterItsEnd();
    void languageSwitchWhileAStatusIsShown();
    void languageSwitchWhileBusy();
};

void ComponentActionsTest::addPutsTheComponentIntoObs()
{
    CachedFixture fixture;
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    const StatusRecorder recorder{fixture.status(button)};
    button->click();
    QVERIFY(!button->isEnabled());

    QTRY_COMPARE(fixture.statusKey(button), u"Component.Added"_s);
    QCOMPARE(recorder.keys(), QStringList({u"Download.Progress"_s, u"Component.Extracting"_s,
                                           u"Component.Adding"_s, u"Component.Added"_s}));
    QVERIFY(button->isEnabled());
    const obs_source_t *source = fixture.obs.source(u"Quillmar - Frame"_s);
    QVERIFY(source != nullptr);
    const QString path = outputDirectory(fixture.root, fixture.product) + u"/Components/assets/frame.png"_s;
    QCOMPARE(source->settings.value(u"file"_s).toString(), path);
    QCOMPARE(fixture.status(button)->property("path").toString(), path);
}

void ComponentActionsTest::addPutsAStingerIntoObs()
{
    CachedFixture fixture{true};
    QPushButton *button = fixture.addButton(Fixture::Stinger);
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Component.Added"_s);
    QVERIFY(fixture.obs.transition(u"Quillmar - Sting"_s) != nullptr);
}

void ComponentActionsTest::downloadSavesTheComponent()
{
    CachedFixture fixture;
    QPushButton *button = fixture.downloadButton(Fixture::Overlay);
    const StatusRecorder recorder{fixture.status(button)};
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Download.Success"_s);
    QCOMPARE(recorder.keys(),
             QStringList({u"Download.Progress"_s, u"Component.Extracting"_s, u"Download.Success"_s}));
    QVERIFY(button->isEnabled());
    QVERIFY(QFile::exists(fixture.status(button)->property("path").toString()));
    QVERIFY(fixture.isObsUntouched());
}

void ComponentActionsTest::downloadSavesAFolder()
{
    CachedFixture fixture;
    QPushButton *button = fixture.downloadButton(Fixture::Folder);
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Download.Success"_s);
    QVERIFY(QFile::exists(fixture.status(button)->property("path").toString() + u"/a.ttf"_s));
}

void ComponentActionsTest::packageIsSavedWhole()
{
    CachedFixture fixture;
    QPushButton *button = fixture.packageButton();
    const StatusRecorder recorder{fixture.status(button)};
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Download.Success"_s);
    QCOMPARE(recorder.keys(),
             QStringList({u"Download.Progress"_s, u"Component.Saving"_s, u"Download.Success"_s}));
    QVERIFY(fixture.status(button)->property("path").toString().endsWith(u"/night.zip"_s));
    QVERIFY(fixture.isObsUntouched());
}

void ComponentActionsTest::pathIsShownOnASecondLineAndAsToolTip()
{
    CachedFixture fixture;
    QPushButton *button = fixture.packageButton();
    const QLabel *status = fixture.status(button);
    button->click();
    QVERIFY(!status->isHidden());
    QCOMPARE(status->text(), u"Download.Progress"_s); // no text for it in the test's tables
    QCOMPARE(status->toolTip(), QString());

    QTRY_COMPARE(fixture.statusKey(button), u"Download.Success"_s);
    const QString path = QDir::toNativeSeparators(status->property("path").toString());
    QVERIFY(!path.isEmpty());
    QCOMPARE(status->text(), u"Downloaded\n"_s + path);
    QCOMPARE(status->toolTip(), path);
}

#ifndef Q_OS_WIN
void ComponentActionsTest::toolTipIsNeverRichText()
{
    Fixture fixture;
    fixture.root = fixture.folder.filePath(u"<b>bold &amp; %1</b>"_s);
    fixture.downloads = std::make_unique<ProductDownloads>(&fixture.network, fixture.root);
    fixture.downloads->setCallbacks({[] { return u"token"_s; }, [] { return quint64{1}; }, [] {}, [] {}});
    fixture.storePackage();
    fixture.makeActions();
    QPushButton *button = fixture.packageButton();
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Download.Success"_s);
    const QLabel *status = fixture.status(button);
    const QString path = QDir::toNativeSeparators(status->property("path").toString());
    QVERIFY(Qt::mightBeRichText(path));
    QCOMPARE(status->text(), u"Downloaded\n"_s + path);
    QTextDocument shown;
    shown.setHtml(status->toolTip());
    QCOMPARE(shown.toPlainText(), path);
}
#endif

void ComponentActionsTest::signedOut()
{
    CachedFixture fixture;
    fixture.token.clear();
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    button->click();

    QCOMPARE(fixture.statusKey(button), u"Status.LoginRequired"_s);
    QVERIFY(button->isEnabled());
    QVERIFY(fixture.isObsUntouched());
}

void ComponentActionsTest::invalidMetadata()
{
    Fixture fixture;
    fixture.product.product_key = u"../night"_s;
    fixture.makeActions();
    fixture.packageButton()->click();

    QCOMPARE(fixture.statusKey(fixture.packageButton()), u"Component.InvalidMetadata"_s);
    QVERIFY(fixture.packageButton()->isEnabled());
}

void ComponentActionsTest::extractionFails()
{
    CachedFixture fixture;
    QPushButton *button = fixture.addButton(Fixture::Missing);
    const StatusRecorder recorder{fixture.status(button)};
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Component.FileMissing"_s);
    QCOMPARE(recorder.keys(),
             QStringList({u"Download.Progress"_s, u"Component.Extracting"_s, u"Component.FileMissing"_s}));
    QVERIFY(button->isEnabled());
    QVERIFY(fixture.isObsUntouched());
}

void ComponentActionsTest::unsafeAssetPath()
{
    CachedFixture fixture;
    fixture.product.components[Fixture::Overlay].asset_path = u"../frame.png"_s;
    fixture.makeActions();
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Component.UnsafePath"_s);
    QVERIFY(button->isEnabled());
    QVERIFY(fixture.isObsUntouched());
}

void ComponentActionsTest::insertionFails()
{
    CachedFixture fixture;
    fixture.obs.setCurrentScene(nullptr);
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    const StatusRecorder recorder{fixture.status(button)};
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Component.NoScene"_s);
    QCOMPARE(recorder.keys(), QStringList({u"Download.Progress"_s, u"Component.Extracting"_s,
                                           u"Component.Adding"_s, u"Component.NoScene"_s}));
    QCOMPARE(fixture.status(button)->property("path").toString(), QString());
    QVERIFY(button->isEnabled());
}

void ComponentActionsTest::serviceRefuses_data()
{
    QTest::addColumn<QByteArray>("ticketReply");
    QTest::addColumn<QString>("key");
    QTest::newRow("session over") << TlsService::json(401, {}) << u"Status.LoginRequired"_s;
    QTest::newRow("quota") << TlsService::json(429, {{u"code"_s, u"download_quota_reached"_s}})
                           << u"Download.QuotaReached"_s;
    QTest::newRow("broken") << TlsService::json(500, {}) << u"Download.Failed"_s;
}

void ComponentActionsTest::serviceRefuses()
{
    QFETCH(const QByteArray, ticketReply);
    QFETCH(const QString, key);
    TlsService service;
    service.handleRoute("download-ticket", TlsService::always(ticketReply));
    Fixture fixture;
    fixture.makeActions();
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    button->click();
    QCOMPARE(fixture.statusKey(button), u"Download.Progress"_s);

    QTRY_COMPARE(fixture.statusKey(button), key);
    QVERIFY(button->isEnabled());
    QCOMPARE(service.count("download-ticket"), 1);
}

void ComponentActionsTest::errorHasNoPath()
{
    CachedFixture fixture;
    QPushButton *button = fixture.downloadButton(Fixture::Overlay);
    button->click();
    QTRY_COMPARE(fixture.statusKey(button), u"Download.Success"_s);
    fixture.token.clear();
    button->click();

    const QLabel *status = fixture.status(button);
    QCOMPARE(status->text(), u"Status.LoginRequired"_s);
    QCOMPARE(status->toolTip(), QString());
    QCOMPARE(status->property("path").toString(), QString());
}

void ComponentActionsTest::becameUninsertable()
{
    CachedFixture fixture;
    fixture.obs.setConfigurable(u"image_source"_s, false);
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    const StatusRecorder recorder{fixture.status(button)};
    button->click();

    QCOMPARE(recorder.keys(), QStringList(u"Component.Unsupported"_s));
    QVERIFY(button->isEnabled());
    fixture.downloadButton(Fixture::Overlay)->click(); // does not care
    QTRY_COMPARE(fixture.statusKey(fixture.downloadButton(Fixture::Overlay)), u"Download.Success"_s);
}

void ComponentActionsTest::secondClickOnABusyButton()
{
    CachedFixture fixture;
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    const StatusRecorder recorder{fixture.status(button)};
    button->click();
    button->click();
    pressAnyway(button);

    QTRY_COMPARE(fixture.statusKey(button), u"Component.Added"_s);
    fixture.drain();
    QCOMPARE(recorder.keys().count(u"Download.Progress"_s), 1);
    QCOMPARE(fixture.obs.count(u"obs_source_create"_s), 1);
}

void ComponentActionsTest::twoEntriesBusyAtOnce()
{
    CachedFixture fixture;
    QPushButton *add = fixture.addButton(Fixture::Overlay);
    QPushButton *download = fixture.downloadButton(Fixture::Overlay);
    QPushButton *package = fixture.packageButton();
    add->click();
    download->click();
    package->click();
    QVERIFY(!add->isEnabled() && !download->isEnabled() && !package->isEnabled());
    QVERIFY(fixture.downloadButton(Fixture::Folder)->isEnabled());

    QTRY_COMPARE(fixture.statusKey(add), u"Component.Added"_s);
    QTRY_COMPARE(fixture.statusKey(download), u"Download.Success"_s);
    QTRY_COMPARE(fixture.statusKey(package), u"Download.Success"_s);
    QVERIFY(add->isEnabled() && download->isEnabled() && package->isEnabled());
    QVERIFY(fixture.status(fixture.downloadButton(Fixture::Folder))->isHidden());
}

void ComponentActionsTest::sameActionAgainAfterItsEnd()
{
    CachedFixture fixture;
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    for (const QString &name : {u"Quillmar - Frame"_s, u"Quillmar - Frame (2)"_s}) {
        button->click();
        QTRY_VERIFY(button->isEnabled());
        QVERIFY(fixture.obs.source(name) != nullptr);
    }
}

void ComponentActionsTest::languageSwitchWhileAStatusIsShown()
{
    CachedFixture fixture;
    QPushButton *button = fixture.packageButton();
    button->click();
    QTRY_COMPARE(fixture.statusKey(button), u"Download.Success"_s);
    const QLabel *status = fixture.status(button);
    const QString path = QDir::toNativeSeparators(status->property("path").toString());
    fixture.useLanguage(PersianCode);

    QCOMPARE(status->text(), u"دانلود شد\n"_s + path);
    QCOMPARE(status->toolTip(), path);
    QVERIFY(fixture.status(fixture.addButton(Fixture::Overlay))->isHidden()); // nothing to show again
    fixture.useLanguage(EnglishCode);
    QCOMPARE(status->text(), u"Downloaded\n"_s + path);
}

void ComponentActionsTest::languageSwitchWhileBusy()
{
    CachedFixture fixture;
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    button->click();
    fixture.useLanguage(PersianCode);
    QVERIFY(!button->isEnabled());

    QTRY_COMPARE(fixture.statusKey(button), u"Component.Added"_s);
    QVERIFY(fixture.status(button)->text().startsWith(u"افزوده شد\n"_s));
    QVERIFY(button->isEnabled());
}

QTEST_MAIN(ComponentActionsTest)
#include "component_actions_test.moc"
