#pragma once

#include <QByteArray>
#include <QList>

namespace quillmar::test
{

/// One way for a service to answer wrongly.
struct BadReply {
    const char *name;
    QByteArray bytes;
    bool thenClose = false;
    bool countsAsSignedOut = false; ///< a sign-out reads no key, so an orderly 2xx is enough for it
};

/// Every way in which the answer `goodJson` can be spoilt: none of them is the answer of a route that needs a
/// key of it.
QList<BadReply> badReplies(const QByteArray &goodJson);

} // namespace quillmar::test
