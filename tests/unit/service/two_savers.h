#pragma once

#include <QProcess>
#include <QStringList>

#include <array>

namespace quillmar::test
{

/// Two processes that save 200 tokens each into the same file. The program is `saver` of the test's own
/// build.
class TwoSavers
{
public:
    TwoSavers(const QString &saver, const QString &path)
    {
        for (std::size_t i = 0; i < processes_.size(); ++i) {
            QStringList arguments{path};
            for (int k = 0; k < 200; ++k)
                arguments.append(QStringLiteral("%1-%2").arg(names_.at(i)).arg(k));
            last_.append(arguments.last());
            processes_.at(i).start(saver, arguments);
        }
    }

    bool haveStarted() { return processes_.front().waitForStarted() && processes_.back().waitForStarted(); }

    bool areRunning() const
    {
        return processes_.front().state() != QProcess::NotRunning ||
               processes_.back().state() != QProcess::NotRunning;
    }

    /// The larger of the two exit codes; a crash counts as one.
    int exitCode() const
    {
        int code = 0;
        for (const QProcess &process : processes_)
            code = qMax(code, process.exitStatus() == QProcess::CrashExit ? 255 : process.exitCode());
        return code;
    }

    bool haveSaved(const QString &token) const
    {
        return token.startsWith(names_.front() + u'-') || token.startsWith(names_.back() + u'-');
    }

    bool haveSavedAsTheLast(const QString &token) const { return last_.contains(token); }

private:
    std::array<QProcess, 2> processes_;
    const QStringList names_{QStringLiteral("first"), QStringLiteral("second")};
    QStringList last_;
};

} // namespace quillmar::test
