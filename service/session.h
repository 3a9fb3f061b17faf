#pragma once

#include <QString>

namespace quillmar
{

/// The bearer token of the signed-in account and the counter that tells one session from the next.
///
/// Every authenticated request remembers `generation()` when it is sent; a reply that meets another value is
/// stale and changes nothing. Threads: the user-interface thread only.
class Session
{
public:
    /// Empty when nobody is signed in; otherwise exactly as the service gave it.
    const QString &token() const { return token_; }

    /// Grows by one with every replace() and clear(), never goes back.
    quint64 generation() const { return generation_; }

    bool isSignedIn() const { return !token_.isEmpty(); }

    void replace(const QString &token)
    {
        token_ = token;
        ++generation_;
    }

    void clear()
    {
        token_.clear();
        ++generation_;
    }

private:
    QString token_;
    quint64 generation_ = 0;
};

} // namespace quillmar
