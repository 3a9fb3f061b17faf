#include "ui/update_banner.h"

#include "ui/button.h"
#include "ui/plain_tool_tip.h"
#include "ui/styles.h"
#include "ui/wrapping_label.h"

#include <QDesktopServices>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr const char *VersionProperty = "version";
constexpr const char *DownloadUrlProperty = "downloadUrl";

/// Longest release notes shown whole, and what is left of longer ones before the ellipsis; UTF-16 units.
constexpr qsizetype WholeNotes = 160;
constexpr qsizetype CutNotes = 157;

QLabel *addLine(QVBoxLayout *layout)
{
    auto *line = new WrappingLabel;
    layout->addWidget(line);
    return line;
}

QString withVersion(const QString &text, const QString &version)
{
    return QString(text).replace("%1"_L1, version);
}

} // namespace

UpdateBanner::UpdateBanner(const Localisation &localisation, QWidget *parent)
    : QFrame(parent), localisation_(localisation)
{
    setObjectName("quillmarUpdateBanner"_L1);
    setStyleSheet(styles::UpdateBanner);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 8, 10, 8);
    layout->setSpacing(6);
    title_ = addLine(layout);
    title_->setStyleSheet(styles::UpdateTitle);
    versions_ = addLine(layout);
    notes_ = addLine(layout);
    download_ = newButton(this);
    download_->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    download_->setStyleSheet(styles::UpdateDownload);
    layout->addWidget(download_);
    connect(download_, &QPushButton::clicked, this, &UpdateBanner::openDownload);
    hide();
}

void UpdateBanner::fill(const UpdateInfo &info, bool available)
{
    setProperty(VersionProperty, info.latestVersion);
    download_->setProperty(DownloadUrlProperty, info.downloadUrl);
    download_->setVisible(isSafeDownloadUrl(info.downloadUrl));
    showNotes(info.releaseNotes.simplified());
    retranslate();
    setVisible(available);
}

void UpdateBanner::showNotes(const QString &releaseNotes)
{
    const bool whole = releaseNotes.size() <= WholeNotes;
    notes_->setText(whole ? releaseNotes : leftWithoutSplitting(releaseNotes, CutNotes) + u'…');
    setPlainToolTip(notes_, releaseNotes);
    notes_->setVisible(!releaseNotes.isEmpty());
}

void UpdateBanner::retranslate()
{
    setLayoutDirection(localisation_.direction());
    for (QLabel *line : {title_, versions_, notes_})
        line->setAlignment(localisation_.readingSide() | Qt::AlignVCenter | Qt::AlignAbsolute);
    localisation_.setTranslatedText(title_, "Update.Available"_L1);
    versions_->setText(
        withVersion(localisation_.translate("Update.CurrentVersion"), QUILLMAR_VERSION ""_L1) + u'\n' +
        withVersion(localisation_.translate("Update.NewVersion"), property(VersionProperty).toString()));
    download_->setText(localisation_.translate("Update.Download"));
}

void UpdateBanner::openDownload() const
{
    const QUrl address = download_->property(DownloadUrlProperty).toUrl();
    if (isSafeDownloadUrl(address))
        QDesktopServices::openUrl(address);
}

} // namespace quillmar
