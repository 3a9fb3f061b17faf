#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>

#include <functional>

namespace quillmar::test
{

/// One widget as the driver saw it. Rectangles are in screen pixels.
struct Widget {
    struct Row {
        QString text;
        QRect rect;
    };

    int index = -1;
    int parent = -1;
    QString className;
    /// "label", "button", "field", "list" or empty: what a user takes it for, whatever its class.
    QString role;
    QString name;
    QString text;
    QString placeholder;
    QString toolTip;
    QString accessibleName;
    QString styleSheet;
    QJsonObject properties;
    QRect rect;
    /// The part that is not covered or scrolled away.
    QRect seen;
    /// The viewport of the scroll area around it; null when there is none.
    QRect viewport;
    /// What its text needs at its present width.
    QSize needed;
    bool visible = false;
    bool enabled = false;
    /// Keys go to its window.
    bool active = false;
    bool focus = false;
    /// The pointer is over it, and it has noticed.
    bool hovered = false;
    bool rightToLeft = false;
    bool checkable = false;
    bool checked = false;
    bool secret = false;
    bool picture = false;
    int alignment = 0;
    QStringList items;
    QList<Row> rows;

    /// Class name without namespaces.
    QString kind() const;
};

/// A picture of one window or panel at one moment.
class WidgetTree
{
public:
    using Condition = std::function<bool(const Widget &widget)>;

    WidgetTree() = default;
    explicit WidgetTree(const QJsonArray &report);

    bool isEmpty() const { return widgets_.isEmpty(); }
    const QList<Widget> &all() const { return widgets_; }

    /// The first widget that meets the condition, or null; valid as long as the tree.
    const Widget *find(const Condition &condition) const;
    /// The same among the descendants of `ancestor`.
    const Widget *findBelow(const Widget &ancestor, const Condition &condition) const;
    QList<const Widget *> allBelow(const Widget &ancestor, const Condition &condition) const;

private:
    bool isBelow(const Widget &widget, const Widget &ancestor) const;

    QList<Widget> widgets_;
};

} // namespace quillmar::test
