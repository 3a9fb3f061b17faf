#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>

namespace quillmar::test
{

/// Waits inside OBS for one moment that is too short to be met from outside, and then does something, once.
class Ambush : public QObject
{
    Q_OBJECT

public:
    using Action = std::function<void()>;

    /// The moment at which a label of the panel is told to show the text of `key`.
    void atStatus(const QString &key, Action action);
    /// The moment at which a dialog of that class appears, before anybody can have answered it.
    void atDialog(const QString &className, Action action);
    /// The moment has come.
    bool isSprung() const { return !action_; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void wait(QString status, QString dialog, Action action);
    bool isMoment(const QObject &watched, const QEvent &event) const;

    QString status_;
    QString dialog_;
    Action action_;
};

/// Takes the module's dock away, as its owner may at any time.
void removeDock();

/// Removes everything below `folder`.
void removeFiles(const QString &folder);

/// Chooses an entry of the main menu in the next turn of the event loop.
void triggerLater(const QString &entry);

/// Has OBS ask for the name of a new transition of a kind, in the next turn of the event loop.
void addTransitionLater(const QByteArray &id);

/// Answers the name dialog that is open as soon as it takes answers.
void answerNameDialogLater(const QString &name);

} // namespace quillmar::test
