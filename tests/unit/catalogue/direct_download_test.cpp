#include "tests/unit/catalogue/direct_download_fixture.h"
#include "tests/unit/packages/file_tree.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// What a download shows, sends and saves when nothing is wrong, and what it refuses before it begins.
class DirectDownloadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void notSignedIn();
    void productWithoutKey();
    void signInIsAskedForFirst();
    void preparing();
    void ticketRequest();
    void fileRequest();
    void tokenIsSentAsUtf8();
    void saved();
    void savedInPersian();
    void languageSwitchKeepsThePath();
#ifndef Q_OS_WIN // where no path can look like rich text
    void toolTipIsNeverRich();
#endif
    void namedAfterTheProduct();
    void secondDownloadReplacesTheFile();
    void clickingTwiceSendsOneRequest();
    void buttonRestsBeforeTheNextClick();
    void releaseWaits1200Milliseconds();
    void ofExactlyItsSize();
    void largeFile();
    void userFolderIsTheDefault();
    void quotaHandlerMayTakeTheCard();

private:
    std::optional<DirectDownloadFixture> f_;
};

void DirectDownloadTest::notSignedIn()
{
    f_->token.clear();
    QCOMPARE(f_->outcome(), u"Status.LoginRequired"_s);
    QCOMPARE(f_->row->status->styleSheet(), u"color: #ff5555;"_s);
    QCOMPARE(f_->row->suffix(), QString());
    QVERIFY(f_->row->button->isEnabled());
    QVERIFY(!f_->row->isBusy());
    QCOMPARE(f_->service.requests().size(), 0);
    QCOMPARE(f_->events, QStringList());
}

void DirectDownloadTest::productWithoutKey()
{
    QCOMPARE(f_->outcome(QString()), u"Download.ProductMissing"_s);
    QCOMPARE(f_->row->status->styleSheet(), u"color: #ff5555;"_s);
    QVERIFY(f_->row->button->isEnabled());
    QVERIFY(!f_->row->isBusy());
    QCOMPARE(f_->service.requests().size(), 0);
}

void DirectDownloadTest::signInIsAskedForFirst()
{
    f_->token.clear();
    QCOMPARE(f_->outcome(QString()), u"Status.LoginRequired"_s);
}

void DirectDownloadTest::preparing()
{
    f_->serveTicket([](const WireRequest &, WireConnection &) {});
    f_->start(*f_->row);
    QCOMPARE(f_->row->key(), u"Download.Preparing"_s);
    QCOMPARE(f_->row->status->text(), u"Preparing download…"_s);
    QCOMPARE(f_->row->status->styleSheet(), u"color: white;"_s);
    QVERIFY(!f_->row->button->isEnabled());
    QVERIFY(f_->row->isBusy());
}

void DirectDownloadTest::ticketRequest()
{
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    const WireRequest request = f_->lastRequest("download-ticket");
    QCOMPARE(request.method, "POST");
    QCOMPARE(request.target, "/wp-json/quillmar/v1/download-ticket");
    QCOMPARE(request.header("content-type"), "application/json");
    QCOMPARE(request.header("authorization"), "Bearer token");
    QCOMPARE(request.body,
             QJsonDocument(QJsonObject{{u"product_key"_s, u"abc"_s}}).toJson(QJsonDocument::Indented));
}

void DirectDownloadTest::fileRequest()
{
    bool wasProgress = false;
    f_->serveFile([this, &wasProgress](const WireRequest &, WireConnection &connection) {
        wasProgress = f_->row->key() == "Download.Progress"_L1 &&
                      f_->row->status->styleSheet() == "color: white;"_L1 && f_->row->isBusy();
        connection.send(DirectDownloadFixture::file(f_->bytes, DirectDownloadFixture::Disposition));
    });
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    QVERIFY(wasProgress);
    const WireRequest request = f_->lastRequest("download-file");
    QCOMPARE(request.method, "POST");
    QCOMPARE(request.header("x-quillmar-ticket"), "ticket-1");
    QVERIFY(!request.hasHeader("authorization"));
    QVERIFY(!request.hasHeader("content-type"));
    QCOMPARE(request.body, QByteArray());
}

void DirectDownloadTest::tokenIsSentAsUtf8()
{
    f_->token = u"رمز"_s;
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    QCOMPARE(f_->lastRequest("download-ticket").header("authorization"), "Bearer رمز");
}

void DirectDownloadTest::saved()
{
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    const QString path = f_->folder() + u"/Pack 1.zip"_s;
    QCOMPARE(f_->saved(u"Pack 1.zip"_s), f_->bytes);
    QCOMPARE(treeBelow(f_->around()).keys(),
             QStringList({u"Downloads"_s, u"Downloads/Quillmar"_s, u"Downloads/Quillmar/Pack 1.zip"_s}));
    QCOMPARE(f_->row->suffix(), QString(u'\n' + QDir::toNativeSeparators(path)));
    QCOMPARE(f_->row->status->text(), QString(u"Saved to:\n"_s + QDir::toNativeSeparators(path)));
    QCOMPARE(f_->row->status->toolTip(), QDir::toNativeSeparators(path));
    QCOMPARE(f_->row->status->styleSheet(), u"color: #55ff22;"_s);
    QCOMPARE(f_->events, QStringList({u"quota"_s, u"Quillmar product downloaded successfully"_s}));
    QCOMPARE(f_->warnings, QStringList());
}

void DirectDownloadTest::savedInPersian()
{
    f_->texts.setLanguage(PersianCode);
    f_->serveFile(TlsService::always(DirectDownloadFixture::file("bytes", "filename=\"بستهٔ شب.zip\"")));
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    QCOMPARE(f_->saved(u"بستهٔ شب.zip"_s), "bytes");
    QVERIFY(f_->row->status->text().startsWith(u"ذخیره شد در:\n"_s));
    QVERIFY(f_->row->status->text().endsWith(u"بستهٔ شب.zip"_s));
}

void DirectDownloadTest::languageSwitchKeepsThePath()
{
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    f_->texts.setLanguage(PersianCode);
    f_->texts.renderTranslatedText(f_->row->status);
    const QString path = QDir::toNativeSeparators(f_->folder() + u"/Pack 1.zip"_s);
    QCOMPARE(f_->row->status->text(), QString(u"ذخیره شد در:\n"_s + path));
}

#ifndef Q_OS_WIN
void DirectDownloadTest::toolTipIsNeverRich()
{
    f_->serveFile(
        TlsService::always(DirectDownloadFixture::file("bytes", "filename=\"<img src='x'><b>bold<b>.zip\"")));
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    QCOMPARE(f_->saved(u"<img src='x'><b>bold<b>.zip"_s), "bytes");
    QVERIFY(f_->row->status->toolTip().contains(u"&lt;b&gt;bold"_s));
    QVERIFY(!f_->row->status->toolTip().contains(u"<img"_s));
}
#endif

void DirectDownloadTest::namedAfterTheProduct()
{
    f_->serveFile(TlsService::always(DirectDownloadFixture::file("bytes", QByteArray())));
    QCOMPARE(f_->outcome(u"abc"_s), u"Download.Success"_s);
    QCOMPARE(f_->saved(u"abc.bin"_s), "bytes");
}

void DirectDownloadTest::secondDownloadReplacesTheFile()
{
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    f_->bytes = "shorter";
    DownloadRow other;
    f_->start(other);
    QCOMPARE(f_->outcomeOf(other), u"Download.Success"_s);
    QCOMPARE(f_->saved(u"Pack 1.zip"_s), "shorter");
    QCOMPARE(QDir(f_->folder()).entryList(QDir::Files | QDir::Hidden), QStringList{u"Pack 1.zip"_s});
}

void DirectDownloadTest::clickingTwiceSendsOneRequest()
{
    f_->start(*f_->row);
    f_->start(*f_->row);
    QCOMPARE(f_->outcomeOf(*f_->row), u"Download.Success"_s);
    f_->start(*f_->row);
    QCOMPARE(f_->row->key(), u"Download.Success"_s);
    DownloadRow other;
    f_->start(other);
    QCOMPARE(f_->outcomeOf(other), u"Download.Success"_s);
    QCOMPARE(f_->tickets(), 2);
    QCOMPARE(f_->files(), 2);
}

void DirectDownloadTest::buttonRestsBeforeTheNextClick()
{
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    QVERIFY(!f_->row->button->isEnabled());
    QVERIFY(f_->row->isBusy());
    QTRY_VERIFY(f_->row->button->isEnabled());
    QVERIFY(!f_->row->isBusy());
    QCOMPARE(f_->row->key(), u"Download.Success"_s);
    f_->start(*f_->row);
    QCOMPARE(f_->row->key(), u"Download.Preparing"_s);
}

void DirectDownloadTest::releaseWaits1200Milliseconds()
{
    DownloadRow row;
    row.button->setEnabled(false);
    row.button->setProperty("downloadBusy", true);
    QElapsedTimer clock;
    clock.start();
    releaseButton(row.button);
    QTRY_VERIFY(row.button->isEnabled());
    QVERIFY(clock.elapsed() >= 1140); // a coarse timer may come 5 % early
    QVERIFY(!row.isBusy());
    auto *gone = new QPushButton;
    releaseButton(gone);
    delete gone;
    releaseButton(row.button);
    row.button->setEnabled(false);
    QTRY_VERIFY(row.button->isEnabled());
}

void DirectDownloadTest::ofExactlyItsSize()
{
    QCOMPARE(f_->outcome(u"abc"_s, f_->bytes.size()), u"Download.Success"_s);
    QCOMPARE(f_->saved(u"Pack 1.zip"_s), f_->bytes);
}

void DirectDownloadTest::largeFile()
{
    f_->bytes = QByteArray("0123456789abcdef").repeated(2'000'000);
    QCOMPARE(f_->outcome(), u"Download.Success"_s);
    QVERIFY(f_->saved(u"Pack 1.zip"_s) == f_->bytes);
}

void DirectDownloadTest::userFolderIsTheDefault()
{
    QTemporaryDir home;
    const QByteArray formerHome = qgetenv("HOME");
    const QByteArray formerConfig = qgetenv("XDG_CONFIG_HOME");
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    f_->downloads = std::make_unique<DirectDownloads>(
        DirectDownloads::Means{f_->network.get(), f_->texts, [] { return u"token"_s; },
                               [] { return quint64(1); }, [](LogLevel, const QString &) {}});
    const QString key = f_->outcome();
    QFile file(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation) +
               u"/Quillmar/Pack 1.zip"_s);
    qputenv("HOME", formerHome);
    qputenv("XDG_CONFIG_HOME", formerConfig);
    QCOMPARE(key, u"Download.Success"_s);
#ifndef Q_OS_WIN
    QCOMPARE(file.fileName(), home.filePath(u"Downloads/Quillmar/Pack 1.zip"_s));
#endif
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), f_->bytes);
    // Windows knows its users' folders by itself, so the file is not among those that go with the test.
    QVERIFY(file.remove());
}

void DirectDownloadTest::quotaHandlerMayTakeTheCard()
{
    f_->onQuota = [this] {
        f_->row.reset();
        f_->downloads.reset();
    };
    f_->start(*f_->row);
    QTRY_VERIFY(!f_->downloads);
    QCOMPARE(f_->events, QStringList({u"quota"_s, u"Quillmar product downloaded successfully"_s}));
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DirectDownloadTest)
#include "direct_download_test.moc"
