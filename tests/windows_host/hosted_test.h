#pragma once

#include "tests/windows_host/loaded_module.h"
#include "tests/windows_host/shown_dock.h"

#include <QObject>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace quillmar::test
{

/// What tests of the module in a small OBS start from: before each an OBS of its own with an empty folder of
/// configuration, afterwards all of it gone.
class HostedTest : public QObject
{
    Q_OBJECT

protected:
    /// `folder` and `plugins` as ModuleFolder takes them.
    HostedTest(const QString &folder, const QStringList &plugins);

    static void languages(); ///< a row for each

    /// Loads the module with `language` in its settings and shows its dock.
    void load(const QString &language);

    /// Types into the fields of the view and presses its button.
    void signIn(const QString &name, const QString &password);

    /// Waits until a change of language or of what is shown has been laid out, then keeps a picture.
    void expectReadable(const QString &picture) const;

    /// Leaves nothing behind in OBS, or the test fails.
    void unload();

    /// As when OBS is started again: the same configuration, all else anew.
    void restart();

    const ModuleFolder folder_;
    std::unique_ptr<QTemporaryDir> config_;
    std::unique_ptr<SmallObs> obs_;
    std::unique_ptr<LoadedModule> module_;
    std::unique_ptr<ShownDock> dock_;

private Q_SLOTS:
    void init();
    void cleanup();

private:
    bool isLoaded_ = false;
};

/// The main function of a test in an OBS whose Qt has no plug-ins but that of the platform.
int runHosted(int argc, char *argv[], const std::function<std::unique_ptr<QObject>()> &makeTest);

} // namespace quillmar::test
