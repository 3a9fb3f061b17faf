#include "ui/quillmar_line_edit.h"

#include <QImage>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int Width = 300;
constexpr int Inset = 12;

/// First and last column in which the field differs from the same field without a placeholder; -1 when none
/// does.
struct Ink {
    int first = -1;
    int last = -1;
};

Ink ink(const QImage &with, const QImage &without)
{
    Ink result;
    for (int x = 0; x < with.width(); ++x) {
        for (int y = 0; y < with.height(); ++y) {
            if (with.pixel(x, y) == without.pixel(x, y))
                continue;
            if (result.first < 0)
                result.first = x;
            result.last = x;
        }
    }
    return result;
}

QImage render(QuillmarLineEdit &field)
{
    field.resize(Width, 40);
    return field.grab().toImage();
}

} // namespace

class QuillmarLineEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fieldIsLeftToRight();
    void persianPlaceholderEndsTwelvePixelsFromTheRightEdge();
    void englishPlaceholderStartsTwelvePixelsFromTheLeftEdge();
    void placeholderFollowsTheLanguageWithoutBeingSetAgain();
    void placeholderStaysWhileFocused();
    void placeholderGoesWithTheFirstCharacter();
    void placeholderHasThePlaceholderColour();
    void basePlaceholderIsNotUsed();

private:
    Localisation texts_{{}, {}};
};

void QuillmarLineEditTest::fieldIsLeftToRight()
{
    const QuillmarLineEdit field(texts_);
    QCOMPARE(field.layoutDirection(), Qt::LeftToRight);
    QCOMPARE(field.alignment(), Qt::AlignLeft | Qt::AlignVCenter);
}

void QuillmarLineEditTest::persianPlaceholderEndsTwelvePixelsFromTheRightEdge()
{
    texts_.setLanguage(PersianCode);
    QuillmarLineEdit field(texts_);
    const QImage empty = render(field);
    field.setPlaceholder(u"نام کاربری"_s);
    const Ink painted = ink(render(field), empty);
    QVERIFY(painted.first > Width / 2);
    QVERIFY(painted.last < Width - Inset + 1);
    QVERIFY2(painted.last > Width - Inset - 6, qPrintable(QString::number(painted.last)));
}

void QuillmarLineEditTest::englishPlaceholderStartsTwelvePixelsFromTheLeftEdge()
{
    texts_.setLanguage(EnglishCode);
    QuillmarLineEdit field(texts_);
    const QImage empty = render(field);
    field.setPlaceholder(u"Username"_s);
    const Ink painted = ink(render(field), empty);
    QVERIFY(painted.first >= Inset - 1);
    QVERIFY2(painted.first < Inset + 6, qPrintable(QString::number(painted.first)));
    QVERIFY(painted.last < Width / 2);
}

void QuillmarLineEditTest::placeholderFollowsTheLanguageWithoutBeingSetAgain()
{
    texts_.setLanguage(EnglishCode);
    QuillmarLineEdit field(texts_);
    const QImage empty = render(field);
    field.setPlaceholder(u"Password"_s);
    texts_.setLanguage(PersianCode);
    QVERIFY(ink(render(field), empty).first > Width / 2);
}

void QuillmarLineEditTest::placeholderStaysWhileFocused()
{
    texts_.setLanguage(EnglishCode);
    QuillmarLineEdit field(texts_);
    field.show();
    field.activateWindow();
    field.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&field));
    QTRY_VERIFY(field.hasFocus());
    field.setCursorPosition(0);
    field.setReadOnly(true); // no blinking cursor in the picture
    const QImage empty = render(field);
    field.setPlaceholder(u"Username"_s);
    QVERIFY(ink(render(field), empty).first >= 0);
}

void QuillmarLineEditTest::placeholderGoesWithTheFirstCharacter()
{
    QuillmarLineEdit field(texts_);
    field.setText(u"a"_s);
    const QImage without = render(field);
    field.setPlaceholder(u"Username"_s);
    QCOMPARE(ink(render(field), without).first, -1);
}

void QuillmarLineEditTest::placeholderHasThePlaceholderColour()
{
    QuillmarLineEdit field(texts_);
    QPalette palette = field.palette();
    palette.setColor(QPalette::PlaceholderText, Qt::magenta);
    field.setPalette(palette);
    field.setPlaceholder(u"████"_s);
    const QImage image = render(field);
    bool found = false;
    for (int x = 0; x < image.width() && !found; ++x)
        found = image.pixelColor(x, image.height() / 2) == QColor(Qt::magenta);
    QVERIFY(found);
}

void QuillmarLineEditTest::basePlaceholderIsNotUsed()
{
    QuillmarLineEdit field(texts_);
    field.setPlaceholder(u"Username"_s);
    QCOMPARE(field.placeholderText(), QString());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::QuillmarLineEditTest)
#include "quillmar_line_edit_test.moc"
