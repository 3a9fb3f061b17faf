#include "service/routes.h"
#include "tests/unit/catalogue/direct_download_fixture.h"
#include "tests/unit/packages/file_tree.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// Where on its way a download is.
enum class Stage { Waiting, Ticket, FileHead, FileBody };

const QList<std::pair<const char *, Stage>> Stages{{"waiting for its turn", Stage::Waiting},
                                                   {"ticket", Stage::Ticket},
                                                   {"file head", Stage::FileHead},
                                                   {"file body", Stage::FileBody}};

constexpr int MaximumAtOnce = 4;

} // namespace

/// Cards, sessions and owners that go away at every stage of a download, and several at once.
class DirectDownloadLifetimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { f_.reset(); }

    void cardGone_data() { addStages(); }
    void cardGone();
    void sessionGone_data() { addStages(); }
    void sessionGone();
    void signOutAbortsQuietly();
    void unload_data() { addStages(); }
    void unload();
    void networkGone_data();
    void networkGone();
    void networkGoneBeforeTheClick();
    void buttonGone();
    void severalCardsAtOnce();
    void fifthCardWaitsForItsTurn();
    void stuckDownloadsLeaveAConnection();
    void anythingGoneAtAnyTime();

private:
    static void addStages();
    void reach(Stage stage);
    void letGo();
    QStringList leftovers() const;
    void expectNothingLeftAndSuccess();

    std::optional<DirectDownloadFixture> f_;
    std::vector<std::unique_ptr<DownloadRow>> others_; ///< that keep `row` waiting
    QList<WireConnection> held_;
    QByteArray late_; ///< what a held request still has to get, and gets too late
};

void DirectDownloadLifetimeTest::init()
{
    held_.clear();
    others_.clear();
    late_.clear();
    f_.emplace();
}

void DirectDownloadLifetimeTest::addStages()
{
    QTest::addColumn<Stage>("stage");
    for (const auto &[name, stage] : Stages)
        QTest::newRow(name) << stage;
}

/// Starts the download of `row` and stops it at `stage`.
void DirectDownloadLifetimeTest::reach(Stage stage)
{
    const auto hold = [this](const QByteArray &begin, const QByteArray &rest) {
        late_ = rest;
        return [this, begin](const WireRequest &, WireConnection &connection) {
            held_.append(connection);
            connection.send(begin);
        };
    };
    const QByteArray file = DirectDownloadFixture::file(f_->bytes, DirectDownloadFixture::Disposition);
    qsizetype wanted = 1;
    if (stage == Stage::Ticket || stage == Stage::Waiting)
        f_->serveTicket(hold({}, DirectDownloadFixture::goodTicket()));
    else if (stage == Stage::FileHead)
        f_->serveFile(hold({}, file));
    else
        f_->serveFile(hold(file.first(file.size() / 2), file.sliced(file.size() / 2)));
    if (stage == Stage::Waiting) {
        wanted = MaximumAtOnce;
        for (int i = 0; i < MaximumAtOnce; ++i) {
            others_.push_back(std::make_unique<DownloadRow>());
            f_->start(*others_.back());
        }
    }
    f_->start(*f_->row);
    QTRY_COMPARE(held_.size(), wanted);
    if (stage == Stage::FileBody)
        QTRY_VERIFY(QDir(f_->folder()).exists());
}

/// Sends what was held back to whoever still listens.
void DirectDownloadLifetimeTest::letGo()
{
    f_->serveGood();
    for (WireConnection &connection : held_)
        connection.send(late_);
}

/// What downloads have left. On Windows files alone: listing a folder again and again keeps it from being
/// removed.
QStringList DirectDownloadLifetimeTest::leftovers() const
{
    QStringList paths;
    for (const auto &[path, what] : treeBelow(f_->around()).asKeyValueRange()) {
#ifdef Q_OS_WIN
        if (!isFile(what))
            continue;
#endif
        paths.append(path);
    }
    return paths;
}

void DirectDownloadLifetimeTest::expectNothingLeftAndSuccess()
{
    QTRY_COMPARE(leftovers(), QStringList());
    f_->events.clear();
    DownloadRow next;
    f_->start(next);
    QCOMPARE(f_->outcomeOf(next), u"Download.Success"_s);
    QCOMPARE(f_->events, QStringList({u"quota"_s, u"Quillmar product downloaded successfully"_s}));
}

void DirectDownloadLifetimeTest::cardGone()
{
    QFETCH(const Stage, stage);
    reach(stage);
    const qsizetype files = f_->files();
    f_->row.reset();
    others_.clear();
    letGo();
    expectNothingLeftAndSuccess();
    QCOMPARE(f_->files(), files + 1);
    for (const WireConnection &connection : std::as_const(held_))
        QTRY_VERIFY(!connection.isOpen());
}

void DirectDownloadLifetimeTest::sessionGone()
{
    QFETCH(const Stage, stage);
    reach(stage);
    const QString key = f_->row->key();
    const qsizetype files = f_->files();
    ++f_->generation;
    letGo();
    expectNothingLeftAndSuccess();
    QCOMPARE(f_->row->key(), key);
    QVERIFY(f_->row->isBusy());
    QVERIFY(!f_->row->button->isEnabled());
    QCOMPARE(f_->files(), files + 1);
}

/// A sign-out moves the session on, then aborts what the shared manager still carries.
void DirectDownloadLifetimeTest::signOutAbortsQuietly()
{
    reach(Stage::FileBody);
    ++f_->generation;
    const auto replies = f_->network->findChildren<QNetworkReply *>();
    for (QNetworkReply *reply : replies)
        reply->abort();
    QCOMPARE(f_->row->key(), u"Download.Progress"_s);
    QCOMPARE(f_->events, QStringList());
    QTRY_COMPARE(leftovers(), QStringList());
}

void DirectDownloadLifetimeTest::unload()
{
    QFETCH(const Stage, stage);
    reach(stage);
    const QString key = f_->row->key();
    f_->downloads.reset();
    QVERIFY2(treeBelow(f_->around()).isEmpty(), "something was left behind");
    letGo();
    f_->makeDownloads();
    expectNothingLeftAndSuccess();
    QCOMPARE(f_->row->key(), key);
}

void DirectDownloadLifetimeTest::networkGone_data()
{
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<QString>("warning");
    QTest::newRow("ticket") << Stage::Ticket << u"Quillmar ticket request failed. HTTP 0"_s;
    QTest::newRow("file head") << Stage::FileHead << u"Quillmar file download failed. HTTP 0"_s;
    QTest::newRow("file body") << Stage::FileBody << u"Quillmar file download failed. HTTP 200"_s;
}

void DirectDownloadLifetimeTest::networkGone()
{
    QFETCH(const Stage, stage);
    reach(stage);
    f_->network.reset();
    QCOMPARE(f_->outcomeOf(*f_->row), u"Download.Failed"_s);
    QTEST(f_->events.join(u'\n'), "warning");
    f_->network = std::make_unique<QNetworkAccessManager>();
    f_->makeDownloads();
    f_->serveGood();
    expectNothingLeftAndSuccess();
}

void DirectDownloadLifetimeTest::networkGoneBeforeTheClick()
{
    f_->network.reset();
    QCOMPARE(f_->outcome(), u"Download.Failed"_s);
    QTRY_VERIFY(f_->row->button->isEnabled());
}

void DirectDownloadLifetimeTest::buttonGone()
{
    reach(Stage::FileBody);
    delete f_->row->button;
    letGo();
    QCOMPARE(f_->outcomeOf(*f_->row), u"Download.Success"_s);
}

void DirectDownloadLifetimeTest::severalCardsAtOnce()
{
    f_->serveFile([this](const WireRequest &, WireConnection &connection) { held_.append(connection); });
    std::vector<std::unique_ptr<DownloadRow>> rows;
    for (int i = 0; i < MaximumAtOnce; ++i) {
        rows.push_back(std::make_unique<DownloadRow>());
        f_->start(*rows.back(), u"key-%1"_s.arg(i));
    }
    QTRY_COMPARE(held_.size(), MaximumAtOnce);
    for (qsizetype i = held_.size() - 1; i >= 0; --i) {
        const QByteArray number = QByteArray::number(i);
        held_[i].send(DirectDownloadFixture::file("bytes " + number, "filename=f" + number));
    }
    for (const auto &row : rows)
        QCOMPARE(f_->outcomeOf(*row), u"Download.Success"_s);
    for (int i = 0; i < MaximumAtOnce; ++i)
        QCOMPARE(f_->saved(u"f%1"_s.arg(i)), QByteArray("bytes " + QByteArray::number(i)));
}

void DirectDownloadLifetimeTest::fifthCardWaitsForItsTurn()
{
    reach(Stage::Waiting);
    QCOMPARE(f_->tickets(), MaximumAtOnce);
    QCOMPARE(f_->row->key(), u"Download.Preparing"_s);
    f_->serveGood();
    held_.first().send(TlsService::json(500, {}));
    QCOMPARE(f_->outcomeOf(*f_->row), u"Download.Success"_s);
    QCOMPARE(f_->tickets(), MaximumAtOnce + 1);
}

void DirectDownloadLifetimeTest::stuckDownloadsLeaveAConnection()
{
    reach(Stage::Waiting);
    QList<QNetworkReply *> packages;
    f_->service.handleRoute("products", [](const WireRequest &, WireConnection &) {});
    for (int i = 0; i < MaximumAtOnce; ++i)
        packages.append(f_->network->get(routes::products(f_->token)));
    QTRY_COMPARE(f_->service.count("products"), MaximumAtOnce);
    f_->service.handleRoute("logout", TlsService::always(TlsService::json(200, {})));
    const QNetworkReply *reply = f_->network->post(routes::logout(f_->token), QByteArray());
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->error(), QNetworkReply::NoError);
}

/// Every round ends a few downloads in another moment, in another order.
void DirectDownloadLifetimeTest::anythingGoneAtAnyTime()
{
    QRandomGenerator random(4711);
    for (int round = 0; round < 150; ++round) {
        std::vector<std::unique_ptr<DownloadRow>> rows;
        for (int i = 0; i < 6; ++i) {
            rows.push_back(std::make_unique<DownloadRow>());
            f_->start(*rows.back());
        }
        for (quint32 turn = random.bounded(40); turn > 0; --turn)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        switch (random.bounded(4)) {
        case 0:
            rows.clear();
            break;
        case 1:
            ++f_->generation;
            break;
        case 2:
            f_->network = std::make_unique<QNetworkAccessManager>();
            f_->makeDownloads();
            break;
        default:
            f_->makeDownloads();
        }
    }
    DownloadRow last;
    f_->start(last);
    QCOMPARE(f_->outcomeOf(last), u"Download.Success"_s);
    QTRY_COMPARE(QDir(f_->folder()).entryList(QDir::Files | QDir::Hidden), QStringList{u"Pack 1.zip"_s});
    QCOMPARE(f_->saved(u"Pack 1.zip"_s), f_->bytes);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DirectDownloadLifetimeTest)
#include "direct_download_lifetime_test.moc"
