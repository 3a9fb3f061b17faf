#pragma once

#include <QString>

namespace quillmar
{

/// Keeps the session token from one run to the next. Threads: the user-interface thread only; may block for a
/// moment.
class SessionStore
{
public:
    virtual ~SessionStore() = default;

    /// Replaces what is kept by `token`. False when it could not be kept; the old one may then still be
    /// there.
    virtual bool save(const QString &token) = 0;

    /// The kept token; empty when there is none that can be used.
    virtual QString load() = 0;

    /// True when nothing is kept afterwards, false when something could not be removed.
    virtual bool remove() = 0;
};

} // namespace quillmar
