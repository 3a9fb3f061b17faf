#include "obs/stinger_insertion.h"

#include "obs/source_insertion.h"
#include "tests/unit/obs/stinger_fixture.h"

using namespace Qt::StringLiterals;
using namespace quillmar;
using namespace quillmar::test;

class StingerInsertionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void becomesATransition();
    void isReachedThroughTheCommonInsertion();
    void commonInsertionLooksAtTheFileFirst();
    void previousTransitionStaysCurrent();
    void noPreviousTransition();
    void propertiesDialogIsClosed();
    void sameNameTwiceGetsANumber();
    void nameTakenBySource();
    void nameTakenByTransition();
    void nameThatEndsWithBlanks_data();
    void nameThatEndsWithBlanks();
    void hostileName_data();
    void hostileName();
    void lastMatchWins();
};

void StingerInsertionTest::becomesATransition()
{
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(fixture.window.requestedIds, QStringList(StingerId));
    QCOMPARE(fixture.window.dialogResults, QList<int>{QDialog::Accepted});
    const obs_source_t *transition = fixture.obs.transition(u"Quillmar - X"_s);
    QVERIFY(transition != nullptr);
    QCOMPARE(transition->settings,
             (QVariantHash{{u"path"_s, fixture.path}, {u"tp_type"_s, 0LL}, {u"transition_point"_s, 1234LL}}));
    QCOMPARE(fixture.obs.calls(), QStringList({u"obs_frontend_set_current_transition محو"_s,
                                               u"obs_source_update Quillmar - X"_s, u"obs_frontend_save"_s}));
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::isReachedThroughTheCommonInsertion()
{
    StingerFixture fixture;
    fixture.obs.setCanvas(std::nullopt); // of no matter to a transition

    QCOMPARE(insertComponent(stinger(), fixture.path), QString());
    QVERIFY(fixture.obs.transition(u"Quillmar - X"_s) != nullptr);
}

void StingerInsertionTest::commonInsertionLooksAtTheFileFirst()
{
    StingerFixture fixture;

    QCOMPARE(insertComponent(stinger(), fixture.folder.filePath(u"no.webm"_s)), u"Component.FileMissing"_s);
    QCOMPARE(insertComponent(stinger(), fixture.file(u"a.png"_s)), u"Component.Unsupported"_s);
    QVERIFY(fixture.window.requestedIds.isEmpty());
}

void StingerInsertionTest::previousTransitionStaysCurrent()
{
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(fixture.obs.currentTransition(), fixture.fade);
}

void StingerInsertionTest::noPreviousTransition()
{
    StingerFixture fixture;
    fixture.obs.setCurrentTransition(nullptr);

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(fixture.obs.count(u"obs_frontend_set_current_transition"_s), 0);
    QCOMPARE(fixture.obs.currentTransition(), fixture.obs.transition(u"Quillmar - X"_s));
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::propertiesDialogIsClosed()
{
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(!fixture.window.properties || !fixture.window.properties->isVisible());
    QTRY_VERIFY(!fixture.window.properties);
}

void StingerInsertionTest::sameNameTwiceGetsANumber()
{
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(fixture.obs.transitionNames(),
             QStringList({u"محو"_s, u"Quillmar - X"_s, u"Quillmar - X (2)"_s}));
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::nameTakenBySource()
{
    StingerFixture fixture;
    fixture.obs.addSource(u"scene"_s, u"Quillmar - X"_s);

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(fixture.obs.transition(u"Quillmar - X (2)"_s) != nullptr);
}

void StingerInsertionTest::nameTakenByTransition()
{
    StingerFixture fixture;
    fixture.obs.addTransition(u"Quillmar - X"_s);

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    const obs_source_t *transition = fixture.obs.transition(u"Quillmar - X (2)"_s);
    QVERIFY(transition != nullptr);
    QCOMPARE(transition->settings.value(u"path"_s).toString(), fixture.path);
    QVERIFY(fixture.obs.transition(u"Quillmar - X"_s)->settings.isEmpty());
}

void StingerInsertionTest::nameThatEndsWithBlanks_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("transition");
    QTest::newRow("a blank") << u"X "_s << u"Quillmar - X"_s;
    QTest::newRow("blanks and tabs") << u" X\t \t"_s << u"Quillmar -  X"_s;
    QTest::newRow("blank before the cut")
        << QString(119, u'a') + u" b"_s << u"Quillmar - "_s + QString(119, u'a');
    QTest::newRow("blank before NUL") << u"X "_s + QChar(0) + u'Y' << u"Quillmar - X"_s;
    QTest::newRow("only blanks") << u"  "_s << u"Quillmar - Component"_s;
    QTest::newRow("line break") << u"X\n"_s << u"Quillmar - X\n"_s;
}

void StingerInsertionTest::nameThatEndsWithBlanks()
{
    // OBS drops them, so that the name would not be found again, and could meet one that exists.
    QFETCH(const QString, name);
    QFETCH(const QString, transition);
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(name), fixture.path), QString());
    QVERIFY(fixture.obs.transition(transition) != nullptr);
    QCOMPARE(insertStinger(stinger(name), fixture.path), QString());
    QVERIFY(fixture.obs.transition(transition + u" (2)"_s) != nullptr);
}

void StingerInsertionTest::hostileName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("entered");
    QTest::newRow("300 characters") << QString(300, u'a') << u"Quillmar - "_s + QString(120, u'a');
    QTest::newRow("pair at the cut") << QString(119, u'a') + u"\U0001D11E"_s
                                     << u"Quillmar - "_s + QString(119, u'a');
    QTest::newRow("quotes") << u"\"a\"'b'"_s << u"Quillmar - \"a\"'b'"_s;
    QTest::newRow("line break inside") << u"a\nb"_s << u"Quillmar - a\nb"_s;
    QTest::newRow("emoji") << u"🎬 صحنه"_s << u"Quillmar - 🎬 صحنه"_s;
    QTest::newRow("placeholder") << u"%1"_s << u"Quillmar - %1"_s;
}

void StingerInsertionTest::hostileName()
{
    QFETCH(const QString, name);
    QFETCH(const QString, entered);
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(name), fixture.path), QString());
    QCOMPARE(fixture.window.enteredTexts, QStringList(entered));
    QVERIFY(fixture.obs.transition(entered) != nullptr);
}

void StingerInsertionTest::lastMatchWins()
{
    StingerFixture fixture;
    obs_source_t *earlier = nullptr;
    fixture.window.afterNaming = [&] { earlier = fixture.obs.addTransition(u"Quillmar - X"_s, StingerId); };

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(earlier->settings.isEmpty());
    QCOMPARE(fixture.obs.transitions().last()->settings.value(u"path"_s).toString(), fixture.path);
    QVERIFY(fixture.isBalanced());
}

QTEST_MAIN(StingerInsertionTest)
#include "stinger_insertion_test.moc"
