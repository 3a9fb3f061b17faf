#include "catalogue/download_status.h"

#include "ui/announcement.h"
#include "ui/localisation.h"
#include "ui/plain_tool_tip.h"

#include <QDir>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr QLatin1StringView ProgressStyle{"color: white;"};
constexpr QLatin1StringView SuccessStyle{"color: #55ff22;"};
constexpr QLatin1StringView FailureStyle{"color: #ff5555;"};

QString textKey(DownloadStatus status)
{
    switch (status) {
    case DownloadStatus::LoginRequired:
        return u"Status.LoginRequired"_s;
    case DownloadStatus::ProductMissing:
        return u"Download.ProductMissing"_s;
    case DownloadStatus::Preparing:
        return u"Download.Preparing"_s;
    case DownloadStatus::Progress:
        return u"Download.Progress"_s;
    case DownloadStatus::QuotaReached:
        return u"Download.QuotaReached"_s;
    case DownloadStatus::Failed:
        return u"Download.Failed"_s;
    case DownloadStatus::Saved:
        return u"Download.Success"_s;
    case DownloadStatus::SaveFailed:
        return u"Download.SaveFailed"_s;
    }
    return {};
}

QLatin1StringView style(DownloadStatus status)
{
    switch (status) {
    case DownloadStatus::Preparing:
    case DownloadStatus::Progress:
        return ProgressStyle;
    case DownloadStatus::Saved:
        return SuccessStyle;
    case DownloadStatus::LoginRequired:
    case DownloadStatus::ProductMissing:
    case DownloadStatus::QuotaReached:
    case DownloadStatus::Failed:
    case DownloadStatus::SaveFailed:
        return FailureStyle;
    }
    return FailureStyle;
}

void show(QLabel *label, DownloadStatus status, const Localisation &localisation, const QString &suffix)
{
    label->setStyleSheet(style(status));
    localisation.setTranslatedText(label, textKey(status), suffix);
    announce(label);
}

} // namespace

void showDownloadStatus(QLabel *label, DownloadStatus status, const Localisation &localisation)
{
    show(label, status, localisation, {});
}

void showSavedFile(QLabel *label, const QString &path, const Localisation &localisation)
{
    const QString nativePath = QDir::toNativeSeparators(path);
    setPlainToolTip(label, nativePath);
    show(label, DownloadStatus::Saved, localisation, u'\n' + nativePath);
}

} // namespace quillmar
