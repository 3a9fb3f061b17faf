#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace quillmar::test
{

/// What the writable memory of another process held at one moment.
///
/// Taken while the process stands still; kept as bytes, so that the same moment can be searched again.
class MemoryImage
{
public:
    /// A place where something was found.
    struct Place {
        QString region;     ///< as the system names it: "[heap]", "[stack]", a file, or empty for anonymous
        QByteArray context; ///< the bytes around it, with everything unprintable as '.'
    };

    /// Nothing when the process cannot be read.
    static std::optional<MemoryImage> of(qint64 processId);

    /// Every place of `text`, as UTF-8 and as UTF-16.
    QList<Place> find(const QString &text) const;

    /// The first run of at least `length` letters, digits, '-' and '_' that follows `prefix` in UTF-8; empty
    /// when there is none.
    QByteArray wordAfter(QByteArrayView prefix, qsizetype length) const;

    qsizetype size() const;

private:
    struct Region {
        QString name;
        QByteArray bytes;
    };

    QList<Region> regions_;
};

} // namespace quillmar::test
