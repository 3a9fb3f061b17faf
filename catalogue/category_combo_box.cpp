#include "catalogue/category_combo_box.h"

#include <QAbstractItemView>
#include <QScreen>
#include <QStyle>

#include <algorithm>

namespace quillmar
{

namespace
{

constexpr int PreferredWidth = 160;
constexpr int SmallestWidth = 70;

/// Room in the open list beside the text and the scroll bar: frame and item margins.
constexpr int PopupMargin = 24;

} // namespace

QSize CategoryComboBox::sizeHint() const
{
    return QComboBox::sizeHint().expandedTo({PreferredWidth, 0});
}

QSize CategoryComboBox::minimumSizeHint() const
{
    return {SmallestWidth, QComboBox::minimumSizeHint().height()};
}

void CategoryComboBox::showPopup()
{
    const int wanted = popupWidth();
    const QScreen *shownOn = screen();
    view()->setMinimumWidth(shownOn ? std::min(wanted, shownOn->availableGeometry().width()) : wanted);
    QComboBox::showPopup();
}

int CategoryComboBox::popupWidth() const
{
    int content = view()->sizeHintForColumn(0);
    for (int index = 0; index < count(); ++index)
        content = std::max(content, fontMetrics().horizontalAdvance(itemText(index)));
    const int scrollBar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    return std::max(content + scrollBar + PopupMargin, width());
}

} // namespace quillmar
