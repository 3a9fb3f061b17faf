#include "tests/support/tls_service/request_reader.h"

#include <algorithm>

namespace quillmar::test
{

namespace
{

WireRequest parseHead(const QByteArray &head)
{
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> words = lines.first().trimmed().split(' ');
    WireRequest request;
    request.method = words.value(0);
    request.target = words.value(1);
    for (const QByteArray &line : lines.sliced(1)) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0) {
            request.headers.emplaceBack(line.first(colon).trimmed().toLower(),
                                        line.sliced(colon + 1).trimmed());
        }
    }
    return request;
}

} // namespace

std::optional<WireRequest> RequestReader::next()
{
    const qsizetype end = buffer_.indexOf("\r\n\r\n");
    if (end < 0) {
        return std::nullopt;
    }
    WireRequest request = parseHead(buffer_.first(end));
    const qsizetype bodyStart = end + 4;
    const qsizetype bodySize = request.header("content-length").toLongLong();
    if (buffer_.size() - bodyStart < bodySize) {
        return std::nullopt;
    }
    request.body = buffer_.sliced(bodyStart, bodySize);
    buffer_.remove(0, bodyStart + bodySize);
    return request;
}

QByteArray WireRequest::header(QByteArrayView lowerName) const
{
    for (const auto &[name, value] : headers) {
        if (name == lowerName) {
            return value;
        }
    }
    return {};
}

bool WireRequest::hasHeader(QByteArrayView lowerName) const
{
    return std::ranges::any_of(headers, [lowerName](const auto &entry) { return entry.first == lowerName; });
}

} // namespace quillmar::test
