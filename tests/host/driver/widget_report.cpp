#include "tests/host/driver/widget_report.h"

#include "obs/libobs.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDockWidget>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int MostItems = 200;

QRect globalRect(const QWidget &widget, const QRect &local)
{
    return {widget.mapToGlobal(local.topLeft()), local.size()};
}

// What the widget needs for its text at its present width; larger than the widget itself means that text is
// cut off.
QSize neededSize(const QWidget &widget)
{
    if (widget.hasHeightForWidth())
        return {widget.minimumSizeHint().width(), widget.heightForWidth(widget.width())};
    return widget.sizeHint();
}

void addViewport(QJsonObject &report, const QWidget &widget)
{
    for (const QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        const auto *area = qobject_cast<const QAbstractScrollArea *>(parent);
        if (area && area->viewport()->isAncestorOf(&widget)) {
            report[u"viewport"_s] = rectangle(globalRect(*area->viewport(), area->viewport()->rect()));
            return;
        }
    }
}

void addProperties(QJsonObject &report, const QWidget &widget)
{
    QJsonObject properties;
    const QList<QByteArray> names = widget.dynamicPropertyNames();
    for (const QByteArray &name : names) {
        if (!name.startsWith("_q_"))
            properties[QString::fromLatin1(name)] =
                QJsonValue::fromVariant(widget.property(name.constData()));
    }
    if (!properties.isEmpty())
        report[u"properties"_s] = properties;
}

void addLabel(QJsonObject &report, const QLabel &label)
{
    report[u"role"_s] = u"label"_s;
    report[u"text"_s] = label.text();
    report[u"alignment"_s] = static_cast<int>(label.alignment().toInt());
    report[u"picture"_s] = !label.pixmap().isNull();
    report[u"plain"_s] = label.textFormat() == Qt::PlainText;
}

void addLineEdit(QJsonObject &report, const QLineEdit &edit)
{
    report[u"role"_s] = u"field"_s;
    report[u"text"_s] = edit.text();
    report[u"placeholder"_s] = edit.placeholderText();
    report[u"alignment"_s] = static_cast<int>(edit.alignment().toInt());
    report[u"secret"_s] = edit.echoMode() == QLineEdit::Password;
}

void addButton(QJsonObject &report, const QAbstractButton &button)
{
    report[u"role"_s] = u"button"_s;
    report[u"text"_s] = button.text();
    report[u"checkable"_s] = button.isCheckable();
    report[u"checked"_s] = button.isChecked();
}

void addComboBox(QJsonObject &report, const QComboBox &combo)
{
    report[u"role"_s] = u"list"_s;
    QJsonArray items;
    for (int index = 0; index < combo.count() && index < MostItems; ++index)
        items.append(combo.itemText(index));
    report[u"text"_s] = combo.currentText();
    report[u"items"_s] = items;
}

void addItemView(QJsonObject &report, const QAbstractItemView &view)
{
    QJsonArray rows;
    for (int row = 0; view.model() && row < view.model()->rowCount() && row < MostItems; ++row) {
        const QModelIndex index = view.model()->index(row, 0);
        rows.append(
            QJsonObject{{u"text"_s, index.data().toString()},
                        {u"rect"_s, rectangle(globalRect(*view.viewport(), view.visualRect(index)))}});
    }
    report[u"rows"_s] = rows;
}

void addKind(QJsonObject &report, const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        addLabel(report, *label);
    else if (const auto *edit = qobject_cast<const QLineEdit *>(&widget))
        addLineEdit(report, *edit);
    else if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        addButton(report, *button);
    else if (const auto *combo = qobject_cast<const QComboBox *>(&widget))
        addComboBox(report, *combo);
    else if (const auto *view = qobject_cast<const QAbstractItemView *>(&widget))
        addItemView(report, *view);
}

QJsonObject describe(const QWidget &widget, int parent)
{
    QJsonObject report{{u"parent"_s, parent},
                       {u"class"_s, QString::fromLatin1(widget.metaObject()->className())},
                       {u"name"_s, widget.objectName()},
                       {u"toolTip"_s, widget.toolTip()},
                       {u"accessibleName"_s, widget.accessibleName()},
                       {u"styleSheet"_s, widget.styleSheet()},
                       {u"rect"_s, rectangle(globalRect(widget, widget.rect()))},
                       {u"visible"_s, widget.isVisible()},
                       {u"enabled"_s, widget.isEnabled()},
                       {u"active"_s, widget.isActiveWindow()},
                       {u"focus"_s, widget.hasFocus()},
                       {u"hovered"_s, widget.underMouse()},
                       {u"rightToLeft"_s, widget.layoutDirection() == Qt::RightToLeft},
                       {u"needed"_s, QJsonArray{neededSize(widget).width(), neededSize(widget).height()}}};
    if (widget.isVisible())
        report[u"seen"_s] = rectangle(globalRect(widget, widget.visibleRegion().boundingRect()));
    addViewport(report, widget);
    addProperties(report, widget);
    addKind(report, widget);
    return report;
}

void appendTree(QJsonArray &list, const QWidget &widget, int parent)
{
    const int self = static_cast<int>(list.size());
    list.append(describe(widget, parent));
    const QList<QWidget *> children = widget.findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    for (const QWidget *child : children)
        appendTree(list, *child, self);
}

QWidget *newestDialog()
{
    QWidget *newest = nullptr;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && qobject_cast<QDialog *>(window))
            newest = window;
    }
    return QApplication::activeModalWidget() ? QApplication::activeModalWidget() : newest;
}

QWidget *rootOf(const QString &tree)
{
    if (tree == "dock"_L1)
        return dockPanel();
    if (tree == "main"_L1)
        return mainWindow();
    if (tree == "popup"_L1)
        return QApplication::activePopupWidget();
    return newestDialog();
}

} // namespace

QMainWindow *mainWindow()
{
    return static_cast<QMainWindow *>(obs_frontend_get_main_window());
}

QWidget *dockPanel()
{
    const auto *dock = mainWindow()->findChild<QDockWidget *>(u"quillmar-dock"_s);
    return dock ? dock->widget() : nullptr;
}

QJsonArray rectangle(const QRect &rect)
{
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QJsonArray reportWidgets(const QString &of)
{
    QJsonArray list;
    if (const QWidget *root = rootOf(of))
        appendTree(list, *root, -1);
    return list;
}

QJsonArray reportWindows()
{
    QJsonArray list;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        if (!window->isVisible())
            continue;
        list.append(QJsonObject{{u"class"_s, QString::fromLatin1(window->metaObject()->className())},
                                {u"name"_s, window->objectName()},
                                {u"title"_s, window->windowTitle()},
                                {u"rect"_s, rectangle(window->frameGeometry())},
                                {u"modal"_s, window->isModal()}});
    }
    return list;
}

} // namespace quillmar::test
