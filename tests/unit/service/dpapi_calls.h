#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

namespace quillmar::test
{

/// What this program asks of Windows' data protection while the object lives, and what it does with the
/// answers. One instance at a time.
class DpapiCalls
{
public:
    struct Call {
        QByteArray input;
        const void *inputPlace = nullptr;
        QString description; ///< a null string when none was given
        bool asksForDescription = false;
        bool hasEntropy = false;
        bool hasReserved = false;
        bool hasPrompt = false;
        unsigned long flags = 0;
        QByteArray output; ///< as Windows gave it
        const void *outputPlace = nullptr;
        QList<QByteArray> freed; ///< what lay there whenever it was freed
    };

    DpapiCalls();
    ~DpapiCalls();
    Q_DISABLE_COPY_MOVE(DpapiCalls)

    const QList<Call> &protections() const;
    const QList<Call> &openings() const;

    /// From now on Windows refuses everything.
    void refuse();

private:
    struct Private;
    std::unique_ptr<Private> d_;
};

} // namespace quillmar::test
