#pragma once

#include "demo/service/answer.h"

#include <QFile>

namespace quillmar::demo
{

/// The service's access log: one JSON object per line, written through at once. Holds no token, ticket or
/// password: neither headers nor bodies nor queries are ever handed to it.
class RequestLog
{
public:
    /// Appends to `path`; an empty path logs nowhere. False when the file cannot be opened.
    bool open(const QString &path);

    void add(const QByteArray &method, const QString &path, const Answer &answer);

private:
    QFile file_;
};

} // namespace quillmar::demo
