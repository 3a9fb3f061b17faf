#pragma once

#include "tests/host/support/host_session.h"
#include "tests/host/support/product_dialog.h"
#include "tests/host/support/service_process.h"

#include <QDir>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace quillmar::demo
{

/// Does what a user does on a first visit: signs in, comes back without signing in, browses, looks at the
/// details, saves a file and adds one component of each kind, in both languages.
class Tour
{
public:
    Tour(QString catalogue, const QDir &output) : catalogue_(std::move(catalogue)), output_(output) {}

    /// Walks through everything and prints what it sees. True when OBS then holds what it should, every text
    /// could be read and OBS left in order.
    bool run();

private:
    bool open();
    bool visitSignIn();
    bool comeBack();
    bool browse();
    bool lookAtDetails();
    bool enlarge(test::ProductDialog &dialog);
    bool saveFile();
    bool addComponents();
    bool readQuota();
    bool addStinger();
    bool showNewScene();
    bool readState();
    bool leave();

    /// Takes the same picture in both languages; ends in English.
    bool photograph(const QString &name, const std::optional<test::ComponentButton> &outcome = {});
    bool photographIn(const QString &language, const QString &name);
    /// Name of the next picture.
    QString pictureName(const QString &language, const QString &name) const;
    /// Downloads that the service has let through so far.
    int downloads() const { return service_->count(QStringLiteral("download-file")); }
    /// Waits until the panel has laid itself out; notes what is then still cut off.
    bool waitForPreview();
    void waitForLayout(const QString &picture);
    bool fail(const QString &problem);
    bool failPanel() { return fail(session_->panel().problem()); }

    QString catalogue_;
    QDir output_;
    std::unique_ptr<test::ServiceProcess> service_;
    std::unique_ptr<test::HostSession> session_;
    QString firstScene_;
    QStringList cutTexts_;
    int pictures_ = 0;
};

} // namespace quillmar::demo
