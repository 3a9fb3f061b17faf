#pragma once

#include "tests/host/support/quillmar_panel.h"

namespace quillmar::test
{

/// The card of one product and the dialog with its details, in a user's terms.
class ProductDialog
{
public:
    /// `product` is the name on the card. `panel` outlives this object.
    ProductDialog(QuillmarPanel &panel, QString product) : panel_(panel), product_(std::move(product)) {}

    /// Presses the details button of the card and waits for the dialog, which is then the only one.
    bool open();

    /// Presses the button of the dialog with the text key `key`.
    bool press(const QString &key);

    /// Waits until the dialog shows a picture and a caption with `part` in it.
    bool waitForPicture(const QString &part);

    /// Waits until that many windows are open, the dialog and its enlarged views, and keys go to the last: to
    /// the dock when there is none.
    bool waitForWindows(qsizetype count);

    /// Presses a button that shows another picture, and waits for that one.
    bool pressUntil(const QString &key, const QString &part);

    bool isRightToLeft() const;

    /// Presses the download button of the card and waits until the file is saved.
    bool save();

    /// Brings the status line of the card into view.
    bool showStatus();

private:
    DockRobot::Choice cardButton(const QString &key) const;
    DockRobot::Choice cardStatus() const;
    DockRobot::Choice dialogButton(const QString &key) const;

    QuillmarPanel &panel_;
    QString product_;
};

} // namespace quillmar::test
