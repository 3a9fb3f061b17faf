#include "tests/host/support/product_dialog.h"
#include "tests/host/support/robot_hand.h"
#include "tests/host/support/served_session.h"

#include <QFile>
#include <QTest>

#include <optional>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The details of a product and its direct download, by real clicks and keys.
class DetailsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void opensAndStepsThroughTheGallery();
    void enlargesAndClosesByEscape();
    void opensAgainInPersian();
    void downloadsTheFileAsItIs();
    void endsWithoutLeaks();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    ProductDialog single() { return {panel(), u"Host single"_s}; }

    std::unique_ptr<ServedSession> served_;
    std::optional<RobotHand> hand_;
};

void DetailsTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({.account = u"demo"_s}, &problem);
    QVERIFY2(served_, qPrintable(problem));
    hand_.emplace(served_->session().desktop());
}

void DetailsTest::opensAndStepsThroughTheGallery()
{
    ProductDialog dialog = single();
    QVERIFY2(dialog.open(), qPrintable(panel().problem()));
    QVERIFY2(dialog.waitForPicture(u"Overview · 1/3 · View 1"_s), qPrintable(panel().problem()));
    for (const QString &caption : {u"Overview · 2/3 · View 2"_s, u"Overview · 3/3 · View 3"_s}) {
        QVERIFY2(dialog.pressUntil(u"Gallery.Next"_s, caption), qPrintable(panel().problem()));
    }
}

void DetailsTest::enlargesAndClosesByEscape()
{
    ProductDialog dialog = single();
    QVERIFY2(dialog.press(u"Gallery.Enlarge"_s), qPrintable(panel().problem()));
    QVERIFY2(dialog.waitForWindows(2), qPrintable(panel().problem()));
    for (const qsizetype left : {1, 0}) {
        QVERIFY(hand_->press(u"Escape"_s));
        QVERIFY2(dialog.waitForWindows(left), qPrintable(panel().problem()));
    }
}

void DetailsTest::opensAgainInPersian()
{
    QVERIFY2(panel().setLanguage(u"fa-IR"_s), qPrintable(panel().problem()));
    ProductDialog dialog = single();
    QVERIFY2(dialog.open(), qPrintable(panel().problem()));
    QVERIFY2(dialog.waitForPicture(panel().text(u"Gallery.Overview"_s) + u" · 1/3 · View 1"_s),
             qPrintable(panel().problem()));
    QVERIFY(dialog.isRightToLeft());
    QVERIFY(hand_->press(u"Escape"_s));
    QVERIFY2(dialog.waitForWindows(0), qPrintable(panel().problem()));
    QVERIFY2(panel().setLanguage(u"en-US"_s), qPrintable(panel().problem()));
}

void DetailsTest::downloadsTheFileAsItIs()
{
    QVERIFY2(single().save(), qPrintable(panel().problem()));
    const QByteArray served =
        contentOf(served_->catalogue().path() + u"/packages/host-single/Host single.png"_s);
    QVERIFY(!served.isEmpty());
    QCOMPARE(contentOf(served_->session().home().packageRoot() + u"/Host single.png"_s), served);
    QCOMPARE(served_->session().home().packageFiles(), QStringList{u"Host single.png"_s});
    QCOMPARE(served_->service().count(u"download-ticket"_s), 1);
    QCOMPARE(served_->service().count(u"download-file"_s), 1);
}

void DetailsTest::endsWithoutLeaks()
{
    const ObsExit end = served_->session().quit();
    QCOMPARE(end.code, 0);
    QCOMPARE(end.log.leaks, 0);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::DetailsTest)
#include "details_test.moc"
