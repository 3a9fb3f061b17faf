#pragma once

#include "tests/support/libobs_fake/libobs_fake.h"

#include <QDialog>
#include <QMainWindow>
#include <QPointer>
#include <QStringList>

#include <functional>

// These two are known by their names alone, so they are called as in OBS and stand in no namespace.

class NameDialog : public QDialog
{
    Q_OBJECT

public:
    using QDialog::QDialog;
};

class OBSBasicProperties : public QDialog
{
    Q_OBJECT

public:
    explicit OBSBasicProperties(QWidget *parent);
};

namespace quillmar::test
{

/// Stands in for the main window of OBS: its slot asks for a name in a modal dialog, makes the transition
/// current and opens the properties of it. It behaves otherwise on demand.
class FrontEnd : public QMainWindow
{
    Q_OBJECT

public:
    enum class Asks {
        WithNameDialog,
        WithTwoLineEdits,
        WithoutLineEdit,
        WithOtherClass,
        WithOtherParent,
        NotAtAll
    };

    /// Becomes the main window of `obs`.
    explicit FrontEnd(LibobsFake &obs);

    Asks asks = Asks::WithNameDialog;
    bool makesTransition = true;
    QString madeId; ///< source id of what is made; empty: as asked for
    bool diesInSlot = false;

    /// Runs inside the slot, when the name dialog has been closed and before the properties open.
    std::function<void()> afterNaming;

    QStringList requestedIds;
    QStringList enteredTexts;
    QList<int> dialogResults;
    QPointer<OBSBasicProperties> properties;

private Q_SLOTS:
    void AddTransition(const char *id);

private:
    /// The entered name as OBS takes it; a null text when the dialog was cancelled.
    QString askForName();
    std::unique_ptr<QDialog> makeDialog();
    void make(const QString &id, const QString &name);

    LibobsFake &obs_;
};

/// A main window that has the slot under the name alone, with other arguments.
class OtherFrontEnd : public QMainWindow
{
    Q_OBJECT

public Q_SLOTS:
    void AddTransition(const QString &) {}
};

} // namespace quillmar::test
