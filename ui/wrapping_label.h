#pragma once

#include <QLabel>
#include <QTextOption>
#include <QVarLengthArray>

namespace quillmar
{

/// A label for texts of any length: plain text, wrapped at the width of its place and never a reason to widen
/// it. A word that is wider than the place is broken, too.
///
/// Belongs into a layout, which asks for the height at a width; the size hints say nothing about the text,
/// because measuring it for them is what makes long lists slow. A long tool tip is shown wrapped and bounded,
/// while the property `toolTip`, set by setPlainToolTip(), keeps the whole text. The text cannot be selected;
/// that takes a SelectableLabel.
class WrappingLabel : public QLabel
{
    Q_OBJECT

public:
    explicit WrappingLabel(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /// How high a text is at a width. A layout asks for a few widths, and for each of them again and again.
    struct MeasuredHeight {
        int width;
        int height;
    };

    bool isTooLong() const;
    QString shownPart() const;
    int measureHeight(int width) const;
    int measureBroken(int width) const;
    bool hasWordTooWideFor(int width) const;
    QTextOption brokenAnywhere() const;

    mutable QVarLengthArray<MeasuredHeight, 4> heights_;
    mutable QString measuredText_;
};

} // namespace quillmar
