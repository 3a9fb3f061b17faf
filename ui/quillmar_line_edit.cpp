#include "ui/quillmar_line_edit.h"

#include <QPainter>

namespace quillmar
{

namespace
{

/// Pixels between the field's edge and its placeholder, on either side; the style sheet's padding of a line
/// edit.
constexpr int PlaceholderInset = 12;

} // namespace

QuillmarLineEdit::QuillmarLineEdit(const Localisation &localisation, QWidget *parent)
    : QLineEdit(parent), localisation_(localisation)
{
    setLayoutDirection(Qt::LeftToRight);
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void QuillmarLineEdit::setPlaceholder(const QString &text)
{
    placeholder_ = text;
    update();
}

void QuillmarLineEdit::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    if (!text().isEmpty())
        return;

    QPainter painter(this);
    painter.setPen(palette().placeholderText().color());
    painter.setLayoutDirection(localisation_.direction());
    const Qt::Alignment place = localisation_.readingSide() | Qt::AlignAbsolute | Qt::AlignVCenter;
    painter.drawText(rect().adjusted(PlaceholderInset, 0, -PlaceholderInset, 0),
                     static_cast<int>(place.toInt()) | Qt::TextSingleLine, placeholder_);
}

} // namespace quillmar
