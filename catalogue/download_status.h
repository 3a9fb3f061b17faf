#pragma once

#include <QString>

class QLabel;

namespace quillmar
{

class Localisation;

/// What the status line of a card says about its download.
enum class DownloadStatus {
    LoginRequired,
    ProductMissing,
    Preparing,
    Progress,
    QuotaReached,
    Failed,
    Saved,
    SaveFailed,
};

/// Shows `status` on `label` in its colour and the current language, so that a language switch shows it
/// again.
void showDownloadStatus(QLabel *label, DownloadStatus status, const Localisation &localisation);

/// Shows that the file is saved at `path`, below the text and as the tool tip.
void showSavedFile(QLabel *label, const QString &path, const Localisation &localisation);

} // namespace quillmar
