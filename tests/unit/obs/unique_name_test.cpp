#include "obs/unique_name.h"

#include "tests/support/libobs_fake/libobs_fake.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillmar;
using quillmar::test::LibobsFake;

class UniqueNameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void baseOfTheName_data();
    void baseOfTheName();
    void firstChoiceCarriesNoNumber();
    void numbersStartAtTwo();
    void sceneOfThatNameCounts();
    void takenNameCounts();
    void takenNamesAreCaseSensitive();
    void sourcesAndTakenNamesTogether();
    void foundSourcesAreReleased();
    void nameWithNulEnds();
};

void UniqueNameTest::baseOfTheName_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("name");
    const QString clef = u"\U0001D11E"_s;
    const QString halfClef = u"a"_s + clef.first(1) + u'b';

    QTest::newRow("plain") << u"X"_s << u"Quillmar - X"_s;
    QTest::newRow("empty") << QString() << u"Quillmar - Component"_s;
    QTest::newRow("only blanks") << u"   "_s << u"Quillmar - Component"_s;
    QTest::newRow("only white space of other kinds") << u"\t\n\u00A0\u3000"_s << u"Quillmar - Component"_s;
    QTest::newRow("leading blank is kept") << u" X"_s << u"Quillmar -  X"_s;
    QTest::newRow("trailing blank is kept") << u"X "_s << u"Quillmar - X "_s;
    QTest::newRow("120 characters") << QString(120, u'a') << u"Quillmar - "_s + QString(120, u'a');
    QTest::newRow("121 characters") << QString(121, u'a') << u"Quillmar - "_s + QString(120, u'a');
    QTest::newRow("300 characters") << QString(300, u'a') << u"Quillmar - "_s + QString(120, u'a');
    QTest::newRow("pair before the cut")
        << QString(118, u'a') + clef + u'b' << u"Quillmar - "_s + QString(118, u'a') + clef;
    QTest::newRow("pair at the cut") << QString(119, u'a') + clef << u"Quillmar - "_s + QString(119, u'a');
    QTest::newRow("half a pair") << halfClef << u"Quillmar - "_s + QString::fromUtf8(halfClef.toUtf8());
    QTest::newRow("quotes") << u"\"a\" 'b'"_s << u"Quillmar - \"a\" 'b'"_s;
    QTest::newRow("line break") << u"a\nb"_s << u"Quillmar - a\nb"_s;
    QTest::newRow("placeholders") << u"%1 %n %s %L1"_s << u"Quillmar - %1 %n %s %L1"_s;
    QTest::newRow("markup") << u"<img src=x>"_s << u"Quillmar - <img src=x>"_s;
    QTest::newRow("text from right to left") << u"قاب وب\u200Cکم"_s << u"Quillmar - قاب وب\u200Cکم"_s;
    QTest::newRow("text after NUL") << u"a"_s + QChar(0) + u'b' << u"Quillmar - a"_s;
    QTest::newRow("NUL alone") << QString(QChar(0)) << u"Quillmar - Component"_s;
}

void UniqueNameTest::baseOfTheName()
{
    QFETCH(const QString, wanted);
    QFETCH(const QString, name);
    const LibobsFake obs;

    QCOMPARE(uniqueName(wanted), name);
}

void UniqueNameTest::firstChoiceCarriesNoNumber()
{
    LibobsFake obs;
    obs.addSource(u"image_source"_s, u"Quillmar - X (2)"_s);

    QCOMPARE(uniqueName(u"X"_s), u"Quillmar - X"_s);
}

void UniqueNameTest::numbersStartAtTwo()
{
    LibobsFake obs;
    obs.addSource(u"image_source"_s, u"Quillmar - %1"_s);
    QCOMPARE(uniqueName(u"%1"_s), u"Quillmar - %1 (2)"_s);
    obs.addSource(u"image_source"_s, u"Quillmar - %1 (2)"_s);
    QCOMPARE(uniqueName(u"%1"_s), u"Quillmar - %1 (3)"_s);
}

void UniqueNameTest::sceneOfThatNameCounts()
{
    LibobsFake obs;
    obs.addSource(u"scene"_s, u"Quillmar - صحنه"_s);

    QCOMPARE(uniqueName(u"صحنه"_s), u"Quillmar - صحنه (2)"_s);
}

void UniqueNameTest::takenNameCounts()
{
    const LibobsFake obs;

    QCOMPARE(uniqueName(u"X"_s, {u"Quillmar - X"_s, u"Quillmar - X (2)"_s}), u"Quillmar - X (3)"_s);
}

void UniqueNameTest::takenNamesAreCaseSensitive()
{
    const LibobsFake obs;

    QCOMPARE(uniqueName(u"X"_s, {u"quillmar - x"_s, u"Quillmar - Xy"_s}), u"Quillmar - X"_s);
}

void UniqueNameTest::sourcesAndTakenNamesTogether()
{
    LibobsFake obs;
    obs.addSource(u"image_source"_s, u"Quillmar - X"_s);
    obs.addSource(u"image_source"_s, u"Quillmar - X (3)"_s);

    QCOMPARE(uniqueName(u"X"_s, {u"Quillmar - X (2)"_s}), u"Quillmar - X (4)"_s);
}

void UniqueNameTest::foundSourcesAreReleased()
{
    LibobsFake obs;
    obs.addSource(u"image_source"_s, u"Quillmar - X"_s);
    uniqueName(u"X"_s);

    QCOMPARE(obs.outstanding(), LibobsFake::Outstanding());
    QCOMPARE(obs.misuse(), QStringList());
}

void UniqueNameTest::nameWithNulEnds()
{
    // OBS reads every candidate up to the NUL, so that a number behind it would never make a difference.
    LibobsFake obs;
    obs.addSource(u"image_source"_s, u"Quillmar - X"_s);

    QCOMPARE(uniqueName(u"X"_s + QChar(0) + u'Y'), u"Quillmar - X (2)"_s);
}

QTEST_GUILESS_MAIN(UniqueNameTest)
#include "unique_name_test.moc"
