#include "ui/plain_tool_tip.h"
#include "ui/wrapping_label.h"

#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// The tool tip that a pointer resting on a label with `text` brings up.
QString shownFor(const QString &text)
{
    WrappingLabel label;
    setPlainToolTip(&label, text);
    label.show();
    const QPoint middle = label.rect().center();
    QHelpEvent event(QEvent::ToolTip, middle, label.mapToGlobal(middle));
    QCoreApplication::sendEvent(&label, &event);
    const QString shown = QToolTip::text();
    QToolTip::hideText();
    return shown;
}

} // namespace

class PlainToolTipTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plainTextIsKept();
    void richTextIsEscaped();
    void emptyTextTakesTheToolTipAway();
    void shownTextIsWrapped();
    void shownRichTextIsEscaped();
    void shownTextIsBounded_data();
    void shownTextIsBounded();
};

void PlainToolTipTest::plainTextIsKept()
{
    QWidget widget;
    setPlainToolTip(&widget, u"1 < 2 & \"more\"\nline"_s);
    QCOMPARE(widget.toolTip(), u"1 < 2 & \"more\"\nline"_s);
}

void PlainToolTipTest::richTextIsEscaped()
{
    QWidget widget;
    setPlainToolTip(&widget, u"<img src=\"file:///etc/passwd\">"_s);
    QCOMPARE(widget.toolTip(), u"<p>&lt;img src=\"file:///etc/passwd\"&gt;</p>"_s);
}

void PlainToolTipTest::emptyTextTakesTheToolTipAway()
{
    QWidget widget;
    setPlainToolTip(&widget, u"x"_s);
    setPlainToolTip(&widget, {});
    QCOMPARE(widget.toolTip(), QString());
    QCOMPARE(shownFor({}), QString());
}

void PlainToolTipTest::shownTextIsWrapped()
{
    QCOMPARE(shownFor(u"1 < 2"_s), u"<p>1 &lt; 2</p>"_s);
}

void PlainToolTipTest::shownRichTextIsEscaped()
{
    QCOMPARE(shownFor(u"<b>x</b>"_s), u"<p>&lt;b&gt;x&lt;/b&gt;</p>"_s);
}

void PlainToolTipTest::shownTextIsBounded_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QString(1024 * 1024, u'W');
    QTest::newRow("rich") << QString(u"<b>"_s + QString(1024 * 1024, u'W'));
}

void PlainToolTipTest::shownTextIsBounded()
{
    QFETCH(QString, text);
    const QString shown = shownFor(text);
    QVERIFY(shown.contains(u'…'));
    QVERIFY(shown.size() < 2100);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::PlainToolTipTest)
#include "plain_tool_tip_test.moc"
