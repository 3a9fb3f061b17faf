#include "tests/host/driver/window_actions.h"

#include "obs/libobs.h"
#include "tests/host/driver/widget_report.h"

#include <QDockWidget>
#include <QGuiApplication>
#include <QMainWindow>
#include <QPixmap>
#include <QScreen>
#include <QTimer>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

QJsonValue countDocks(const QString &id)
{
    return mainWindow()->findChildren<QDockWidget *>(id).size();
}

QJsonValue showDock(const QString &id, int width)
{
    auto *dock = mainWindow()->findChild<QDockWidget *>(id);
    if (!dock)
        return false;
    mainWindow()->addDockWidget(Qt::RightDockWidgetArea, dock);
    dock->setFloating(false);
    dock->setVisible(true);
    mainWindow()->resizeDocks({dock}, {width}, Qt::Horizontal);
    return true;
}

QJsonValue maximiseMainWindow()
{
    mainWindow()->showMaximized();
    return true;
}

QJsonValue takeScreenshot(const QString &file)
{
    return QGuiApplication::primaryScreen()->grabWindow(0).save(file, "PNG");
}

QJsonValue quitLater()
{
    QTimer::singleShot(0, mainWindow(), &QWidget::close);
    return true;
}

} // namespace quillmar::test
