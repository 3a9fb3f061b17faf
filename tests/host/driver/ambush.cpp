#include "obs/libobs.h"

#include "tests/host/driver/ambush.h"

#include "tests/host/driver/widget_report.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QDynamicPropertyChangeEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QTimer>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

void Ambush::atStatus(const QString &key, Action action)
{
    wait(key, {}, std::move(action));
}

void Ambush::atDialog(const QString &className, Action action)
{
    wait({}, className, std::move(action));
}

void Ambush::wait(QString status, QString dialog, Action action)
{
    status_ = std::move(status);
    dialog_ = std::move(dialog);
    action_ = std::move(action);
    qApp->installEventFilter(this);
}

bool Ambush::eventFilter(QObject *watched, QEvent *event)
{
    if (action_ && isMoment(*watched, *event)) {
        qApp->removeEventFilter(this);
        std::exchange(action_, nullptr)();
    }
    return false;
}

bool Ambush::isMoment(const QObject &watched, const QEvent &event) const
{
    if (event.type() == QEvent::Show)
        return !dialog_.isEmpty() && QLatin1StringView(watched.metaObject()->className()) == dialog_;
    if (event.type() != QEvent::DynamicPropertyChange || status_.isEmpty())
        return false;
    const auto &change = static_cast<const QDynamicPropertyChangeEvent &>(event);
    return change.propertyName() == "textKey" && watched.property("textKey").toString() == status_;
}

void removeDock()
{
    obs_frontend_remove_dock("quillmar-dock");
}

void removeFiles(const QString &folder)
{
    QDir(folder).removeRecursively();
}

void triggerLater(const QString &entry)
{
    if (auto *action = mainWindow()->findChild<QAction *>(entry))
        QMetaObject::invokeMethod(action, &QAction::trigger, Qt::QueuedConnection);
}

void addTransitionLater(const QByteArray &id)
{
    QTimer::singleShot(0, mainWindow(), [id] {
        QMetaObject::invokeMethod(mainWindow(), "AddTransition", Qt::DirectConnection,
                                  Q_ARG(const char *, id.constData()));
    });
}

void answerNameDialogLater(const QString &name)
{
    QTimer::singleShot(0, mainWindow(), [name] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        auto *edit = dialog ? dialog->findChild<QLineEdit *>() : nullptr;
        if (edit) {
            edit->setText(name);
            dialog->accept();
        }
    });
}

} // namespace quillmar::test
