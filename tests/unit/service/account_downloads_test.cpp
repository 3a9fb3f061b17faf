#include "account_fixture.h"
#include "packages/product_downloads.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

enum class End { SignOut, Expiry, NewLogin, Unload };

constexpr std::pair<const char *, End> ends[] = {{"sign-out", End::SignOut},
                                                 {"expiry", End::Expiry},
                                                 {"new login", End::NewLogin},
                                                 {"unload", End::Unload}};

const QByteArray package("the package");

ComponentProduct product()
{
    ComponentProduct pack;
    pack.product_key = QStringLiteral("pack");
    pack.product_version = QStringLiteral("1.0");
    pack.file_name = QStringLiteral("Pack.bin");
    pack.file_size = package.size();
    pack.sha256 = QString::fromLatin1(QCryptographicHash::hash(package, QCryptographicHash::Sha256).toHex());
    return pack;
}

QByteArray ticket()
{
    return TlsService::json(200, {{QStringLiteral("ticket"), QStringLiteral("ticket-1")}});
}

/// An account and the downloads of its session, wired as in the module.
struct Wired : AccountFixture {
    Wired()
    {
        answer("download-ticket", ticket());
        downloads = std::make_unique<ProductDownloads>(network.get(), root());
        downloads->setCallbacks({.token = [this] { return session.token(); },
                                 .generation = [this] { return session.generation(); },
                                 .sessionExpired = [this] { account->expireSession(); },
                                 .quotaChanged = [this] { ++quotaChanges; }});
    }

    QString root() const { return folder.filePath(QStringLiteral("Quillmar")); }

    void end(End how)
    {
        switch (how) {
        case End::SignOut:
            account->signOut();
            QTRY_COMPARE(view->status, QStringLiteral("green Logout.Success"));
            break;
        case End::Expiry:
            account->expireSession();
            break;
        case End::NewLogin:
            account->expireSession();
            view->passwordText = QStringLiteral("s3cret");
            view->products = {};
            account->signIn();
            QTRY_COMPARE(view->products.size(), 2);
            break;
        case End::Unload:
            downloads.reset();
            session.clear();
            break;
        }
    }

    int packageFiles() const
    {
        int count = 0;
        QDirIterator files(root(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            files.next();
            ++count;
        }
        return count;
    }

    QTemporaryDir folder;
    std::unique_ptr<ProductDownloads> downloads;
    int quotaChanges = 0;
    int completions = 0;
};

} // namespace

/// Replies to the two requests of a download that arrive after the session that asked for it.
class AccountDownloadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lateAnswerChangesNothing_data();
    void lateAnswerChangesNothing();
    void refusedDownloadEndsTheSessionOnce_data();
    void refusedDownloadEndsTheSessionOnce();
};

void AccountDownloadsTest::lateAnswerChangesNothing_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<End>("how");
    QTest::addColumn<QByteArray>("late");
    const QByteArray file = TlsService::response(200, package, "application/octet-stream");
    for (const QByteArray route : {"download-ticket", "download-file"}) {
        for (const auto &[name, how] : ends) {
            QTest::addRow("%s, good, after %s", route.constData(), name)
                << route << how << (route == "download-ticket" ? ticket() : file);
            for (const int status : {401, 403, 429, 500}) {
                QTest::addRow("%s, %d, after %s", route.constData(), status, name)
                    << route << how << TlsService::response(status, "{}");
            }
        }
    }
}

void AccountDownloadsTest::lateAnswerChangesNothing()
{
    QFETCH(const QByteArray, route);
    QFETCH(const End, how);
    QFETCH(const QByteArray, late);
    Wired f;
    f.signInWell();
    f.hold(route);
    QObject panel;
    f.downloads->acquire(product(), &panel, [&f](const ProductFileResult &) { ++f.completions; });
    QTRY_COMPARE(f.held.size(), 1);
    f.end(how);
    f.view->calls.clear();
    const QString status = f.view->status;
    const quint64 generation = f.session.generation();
    const QString kept = f.store.token;
    const int removals = f.store.removals;

    f.held.first().send(late);
    QVERIFY(f.settles());

    QCOMPARE(f.view->calls, QStringList());
    QCOMPARE(f.view->status, status);
    QCOMPARE(f.session.generation(), generation);
    QCOMPARE(f.store.token, kept);
    QCOMPARE(f.store.removals, removals);
    QCOMPARE(f.completions, 0);
    QCOMPARE(f.quotaChanges, 0);
    QCOMPARE(f.packageFiles(), 0);
}

void AccountDownloadsTest::refusedDownloadEndsTheSessionOnce_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<int>("status");
    for (const QByteArray route : {"download-ticket", "download-file"}) {
        for (const int status : {401, 403}) {
            QTest::addRow("%s, %d", route.constData(), status) << route << status;
        }
    }
}

void AccountDownloadsTest::refusedDownloadEndsTheSessionOnce()
{
    QFETCH(const QByteArray, route);
    QFETCH(const int, status);
    Wired f;
    f.signInWell();
    f.answer(route, TlsService::response(status, "{}"));
    QObject panel;
    f.downloads->acquire(product(), &panel, [&f](const ProductFileResult &) { ++f.completions; });
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.Expired"));
    QVERIFY(f.settles());
    QCOMPARE(f.session.generation(), 2U);
    QCOMPARE(f.store.removals, 1);
    QVERIFY(f.store.token.isEmpty());
    QCOMPARE(f.packageFiles(), 0);
}

QTEST_GUILESS_MAIN(AccountDownloadsTest)
#include "account_downloads_test.moc"
