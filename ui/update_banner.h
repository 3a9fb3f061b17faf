#pragma once

#include "service/update_info.h"
#include "ui/localisation.h"

#include <QFrame>

class QLabel;
class QPushButton;

namespace quillmar
{

/// Tells in the dock that a newer version of the module exists, and leads to its download page.
///
/// Keeps the offered version in the property `version` and the offered address in the property `downloadUrl`
/// of its button. Hidden until show() says otherwise.
class UpdateBanner : public QFrame
{
    Q_OBJECT

public:
    /// `localisation` outlives the widget.
    explicit UpdateBanner(const Localisation &localisation, QWidget *parent = nullptr);

    /// Takes the outcome of an update check over; `available` decides whether the banner is shown. An address
    /// that isSafeDownloadUrl() refuses takes the button away, the texts stay.
    void fill(const UpdateInfo &info, bool available);

    /// Applies texts and direction of the current language.
    void retranslate();

private:
    void showNotes(const QString &releaseNotes);
    void openDownload() const;

    const Localisation &localisation_;
    QLabel *title_;
    QLabel *versions_;
    QLabel *notes_;
    QPushButton *download_;
};

} // namespace quillmar
