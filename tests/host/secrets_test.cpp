#include "tests/host/support/memory_image.h"
#include "tests/host/support/served_session.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype TokenLength = 43;

QByteArray describe(const QList<MemoryImage::Place> &places)
{
    QByteArray text = QByteArray::number(places.size()) + " places";
    for (const MemoryImage::Place &place : places)
        text += "\n    " + place.region.toUtf8() + ": " + place.context;
    return text;
}

} // namespace

/// What the memory of OBS still holds of a password and a token that are no longer needed.
class SecretsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void passwordIsNotKeptOnceSignedIn();
    void tokenIsNotKeptOnceSignedOut();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    std::optional<MemoryImage> image() { return MemoryImage::of(served_->session().obs().processId()); }

    const QString password_ = u"Saffron-Lantern-4711"_s;
    std::unique_ptr<ServedSession> served_;
};

void SecretsTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({.host = {.wipeFreedMemory = true}}, &problem);
    QVERIFY2(served_, qPrintable(problem));
    QVERIFY2(panel().setLanguage(u"en-US"_s), qPrintable(panel().problem()));
}

void SecretsTest::passwordIsNotKeptOnceSignedIn()
{
    QVERIFY2(panel().typeAccount(u"wary"_s, password_), qPrintable(panel().problem()));
    const std::optional<MemoryImage> typed = image();
    QVERIFY(typed);
    QVERIFY2(!typed->find(password_).isEmpty(), "the search finds nothing at all");

    QVERIFY2(panel().enter(u"wary"_s, password_), qPrintable(panel().problem()));
    const std::optional<MemoryImage> signedIn = image();
    QVERIFY(signedIn);
    const QList<MemoryImage::Place> places = signedIn->find(password_);
    QVERIFY2(places.isEmpty(), describe(places).constData());
}

void SecretsTest::tokenIsNotKeptOnceSignedOut()
{
    const std::optional<MemoryImage> signedIn = image();
    QVERIFY(signedIn);
    const QString token = QString::fromLatin1(signedIn->wordAfter("Bearer ", TokenLength));
    QCOMPARE(token.size(), TokenLength);

    QVERIFY2(panel().clickButton(u"Logout.Button"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Logout.Success"_s), qPrintable(panel().problem()));
    const std::optional<MemoryImage> signedOut = image();
    QVERIFY(signedOut);
    const QList<MemoryImage::Place> places = signedOut->find(token) + signedOut->find(password_);
    QVERIFY2(places.isEmpty(), describe(places).constData());
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::SecretsTest)
#include "secrets_test.moc"
