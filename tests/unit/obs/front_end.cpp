#include "tests/unit/obs/front_end.h"

#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>

OBSBasicProperties::OBSBasicProperties(QWidget *parent) : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
}

namespace quillmar::test
{

namespace
{

/// A user who cancels what nobody else has answered: well after every timer that was started before.
void cancelLater(QDialog *dialog, int turns = 3)
{
    QTimer::singleShot(0, dialog, [dialog, turns] {
        if (turns > 0) {
            cancelLater(dialog, turns - 1);
        } else {
            dialog->reject();
        }
    });
}

QString withoutBlanksAround(QString name)
{
    const auto isBlank = [](QChar character) { return character == u' ' || character == u'\t'; };
    while (!name.isEmpty() && isBlank(name.back())) {
        name.chop(1);
    }
    while (!name.isEmpty() && isBlank(name.front())) {
        name.remove(0, 1);
    }
    return name;
}

} // namespace

FrontEnd::FrontEnd(LibobsFake &obs) : obs_(obs)
{
    obs.setMainWindow(this);
}

void FrontEnd::AddTransition(const char *id)
{
    requestedIds.append(QString::fromUtf8(id));
    if (asks == Asks::NotAtAll) {
        return;
    }
    const QString name = askForName();
    if (afterNaming) {
        afterNaming();
    }
    if (!name.isNull() && makesTransition) {
        make(madeId.isEmpty() ? QString::fromUtf8(id) : madeId, name);
    }
    if (diesInSlot) {
        delete this;
    }
}

QString FrontEnd::askForName()
{
    const std::unique_ptr<QDialog> dialog = makeDialog();
    cancelLater(dialog.get());
    dialogResults.append(dialog->exec());
    const QList<QLineEdit *> edits = dialog->findChildren<QLineEdit *>();
    if (edits.isEmpty() || dialogResults.last() != QDialog::Accepted) {
        return {};
    }
    enteredTexts.append(edits.first()->text());
    return withoutBlanksAround(edits.first()->text());
}

std::unique_ptr<QDialog> FrontEnd::makeDialog()
{
    std::unique_ptr<QDialog> dialog;
    if (asks == Asks::WithOtherClass) {
        dialog = std::make_unique<QDialog>(this);
    } else {
        dialog = std::make_unique<NameDialog>(asks == Asks::WithOtherParent ? nullptr : this);
    }
    auto *layout = new QVBoxLayout(dialog.get());
    const int edits = asks == Asks::WithoutLineEdit ? 0 : asks == Asks::WithTwoLineEdits ? 2 : 1;
    for (int count = 0; count < edits; ++count) {
        auto *edit = new QLineEdit;
        edit->setMaxLength(170);
        layout->addWidget(edit);
    }
    return dialog;
}

void FrontEnd::make(const QString &id, const QString &name)
{
    obs_.setCurrentTransition(obs_.addTransition(name, id));
    properties = new OBSBasicProperties(this);
    properties->show();
}

} // namespace quillmar::test
