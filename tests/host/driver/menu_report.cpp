#include "tests/host/driver/menu_report.h"

#include "tests/host/driver/widget_report.h"

#include <QAction>
#include <QApplication>
#include <QJsonObject>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

template <typename Menu>
void appendActions(QJsonArray &list, const Menu &menu, bool open)
{
    const QList<QAction *> actions = menu.actions();
    for (const QAction *action : actions) {
        const QRect local = menu.actionGeometry(const_cast<QAction *>(action));
        const QRect global(menu.mapToGlobal(local.topLeft()), local.size());
        list.append(
            QJsonObject{{u"text"_s, action->text()},
                        {u"name"_s, action->menu() ? action->menu()->objectName() : action->objectName()},
                        {u"checked"_s, action->isChecked()},
                        {u"enabled"_s, action->isEnabled()},
                        {u"open"_s, open},
                        {u"rect"_s, rectangle(global)}});
    }
}

} // namespace

QJsonArray reportMenus()
{
    QJsonArray list;
    appendActions(list, *mainWindow()->menuBar(), false);
    if (const auto *popup = qobject_cast<const QMenu *>(QApplication::activePopupWidget()))
        appendActions(list, *popup, true);
    return list;
}

} // namespace quillmar::test
