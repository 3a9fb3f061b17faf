#include "demo/tour/readability.h"

namespace quillmar::demo
{

using namespace Qt::StringLiterals;

namespace
{

bool showsText(const test::Widget &widget)
{
    const bool isTextKind = widget.role == "label"_L1 || widget.role == "button"_L1;
    return isTextKind && widget.visible && !widget.picture && !widget.text.isEmpty();
}

} // namespace

QStringList cutTexts(const test::WidgetTree &panel)
{
    QStringList cut;
    for (const test::Widget &widget : panel.all()) {
        if (!showsText(widget))
            continue;
        if (widget.rect.height() < widget.needed.height() || widget.rect.width() < widget.needed.width())
            cut.append(u"“%1” needs %2 × %3 and has %4 × %5"_s.arg(widget.text.left(60))
                           .arg(widget.needed.width())
                           .arg(widget.needed.height())
                           .arg(widget.rect.width())
                           .arg(widget.rect.height()));
    }
    return cut;
}

} // namespace quillmar::demo
