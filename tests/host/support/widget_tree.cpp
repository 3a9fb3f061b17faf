#include "tests/host/support/widget_tree.h"

#include <algorithm>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QRect rectangle(const QJsonValue &value)
{
    const QJsonArray numbers = value.toArray();
    if (numbers.size() != 4)
        return {};
    return {numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt(), numbers[3].toInt()};
}

QSize extent(const QJsonValue &value)
{
    const QJsonArray numbers = value.toArray();
    return numbers.size() == 2 ? QSize(numbers[0].toInt(), numbers[1].toInt()) : QSize();
}

QList<Widget::Row> rowsOf(const QJsonArray &report)
{
    QList<Widget::Row> rows;
    for (const QJsonValue &row : report)
        rows.append({row["text"_L1].toString(), rectangle(row["rect"_L1])});
    return rows;
}

void readTexts(Widget &widget, const QJsonObject &report)
{
    widget.className = report["class"_L1].toString();
    widget.role = report["role"_L1].toString();
    widget.name = report["name"_L1].toString();
    widget.text = report["text"_L1].toString();
    widget.placeholder = report["placeholder"_L1].toString();
    widget.toolTip = report["toolTip"_L1].toString();
    widget.accessibleName = report["accessibleName"_L1].toString();
    widget.styleSheet = report["styleSheet"_L1].toString();
    widget.properties = report["properties"_L1].toObject();
    widget.items = report["items"_L1].toVariant().toStringList();
    widget.rows = rowsOf(report["rows"_L1].toArray());
}

void readState(Widget &widget, const QJsonObject &report)
{
    widget.visible = report["visible"_L1].toBool();
    widget.enabled = report["enabled"_L1].toBool();
    widget.active = report["active"_L1].toBool();
    widget.focus = report["focus"_L1].toBool();
    widget.hovered = report["hovered"_L1].toBool();
    widget.rightToLeft = report["rightToLeft"_L1].toBool();
    widget.checkable = report["checkable"_L1].toBool();
    widget.checked = report["checked"_L1].toBool();
    widget.secret = report["secret"_L1].toBool();
    widget.picture = report["picture"_L1].toBool();
    widget.alignment = report["alignment"_L1].toInt();
}

} // namespace

QString Widget::kind() const
{
    return className.mid(className.lastIndexOf(u':') + 1);
}

WidgetTree::WidgetTree(const QJsonArray &report)
{
    for (const QJsonValue &value : report) {
        const QJsonObject object = value.toObject();
        Widget widget;
        widget.index = static_cast<int>(widgets_.size());
        widget.parent = object["parent"_L1].toInt();
        widget.rect = rectangle(object["rect"_L1]);
        widget.seen = rectangle(object["seen"_L1]);
        widget.viewport = rectangle(object["viewport"_L1]);
        widget.needed = extent(object["needed"_L1]);
        readTexts(widget, object);
        readState(widget, object);
        widgets_.append(widget);
    }
}

const Widget *WidgetTree::find(const Condition &condition) const
{
    const auto found = std::find_if(widgets_.cbegin(), widgets_.cend(), condition);
    return found == widgets_.cend() ? nullptr : &*found;
}

const Widget *WidgetTree::findBelow(const Widget &ancestor, const Condition &condition) const
{
    return find([&](const Widget &widget) { return isBelow(widget, ancestor) && condition(widget); });
}

QList<const Widget *> WidgetTree::allBelow(const Widget &ancestor, const Condition &condition) const
{
    QList<const Widget *> found;
    for (const Widget &widget : widgets_) {
        if (isBelow(widget, ancestor) && condition(widget))
            found.append(&widget);
    }
    return found;
}

bool WidgetTree::isBelow(const Widget &widget, const Widget &ancestor) const
{
    for (int index = widget.parent; index >= ancestor.index; index = widgets_[index].parent) {
        if (index == ancestor.index)
            return true;
    }
    return false;
}

} // namespace quillmar::test
