#include "bad_replies.h"

#include "tests/support/tls_service/tls_service.h"

namespace quillmar::test
{

namespace
{

QByteArray body(const QByteArray &bytes)
{
    return TlsService::response(200, bytes);
}

QByteArray withLength(qsizetype length, const QByteArray &bytes)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n" + bytes;
}

QByteArray chunked(const QByteArray &chunks)
{
    return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks;
}

QByteArray utf16(const QByteArray &text)
{
    const QString wide = QString::fromUtf8(text);
    return "\xFF\xFE" + QByteArray(reinterpret_cast<const char *>(wide.utf16()), wide.size() * 2);
}

QByteArray littleEndian(quint16 value)
{
    return QByteArray(1, char(value & 0xFF)) + char(value >> 8);
}

/// A gzip stream of one stored block, without its end.
QByteArray cutGzip(const QByteArray &text)
{
    const auto size = quint16(text.size());
    const QByteArray header("\x1f\x8b\x08\x00\x00\x00\x00\x00\x00\x03\x01", 11);
    return header + littleEndian(size) + littleEndian(quint16(~size)) + text.first(text.size() / 2);
}

QByteArray encoded(const QByteArray &bytes)
{
    return TlsService::response(200, bytes, "application/json", {{"Content-Encoding", "gzip"}});
}

QList<BadReply> badBodies(const QByteArray &json)
{
    return {
        {.name = "HTML",
         .bytes = TlsService::response(200, "<html>Sorry</html>", "text/html"),
         .countsAsSignedOut = true},
        {.name = "empty 200", .bytes = body({}), .countsAsSignedOut = true},
        {.name = "truncated JSON", .bytes = body(json.chopped(1)), .countsAsSignedOut = true},
        {.name = "trailing text", .bytes = body(json + "x"), .countsAsSignedOut = true},
        {.name = "UTF-16", .bytes = body(utf16(json)), .countsAsSignedOut = true},
        {.name = "invalid UTF-8", .bytes = body("{\"a\": \"\xC3\"}"), .countsAsSignedOut = true},
        {.name = "top-level text", .bytes = body("\"token\""), .countsAsSignedOut = true},
        {.name = "top-level null", .bytes = body("null"), .countsAsSignedOut = true},
        {.name = "top-level number", .bytes = body("1e999"), .countsAsSignedOut = true},
        {.name = "top-level array", .bytes = body('[' + json + ']'), .countsAsSignedOut = true},
        {.name = "nesting 1025",
         .bytes = body(QByteArray(1025, '[') + QByteArray(1025, ']')),
         .countsAsSignedOut = true},
        {.name = "nesting 10^6", .bytes = body(QByteArray(1'000'000, '[')), .countsAsSignedOut = true},
        {.name = "empty object", .bytes = body("{}"), .countsAsSignedOut = true},
    };
}

QList<BadReply> badFraming(const QByteArray &json)
{
    return {
        {.name = "Content-Length too short",
         .bytes = withLength(3, json),
         .thenClose = true,
         .countsAsSignedOut = true},
        {.name = "Content-Length too long", .bytes = withLength(1000, json), .thenClose = true},
        {.name = "two Content-Lengths",
         .bytes = "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n" + withLength(7, json).sliced(17),
         .thenClose = true,
         .countsAsSignedOut = true},
        {.name = "chunks cut off", .bytes = chunked("5\r\n" + json.first(5) + "\r\n"), .thenClose = true},
        {.name = "chunk size no number",
         .bytes = chunked("ZZ\r\n" + json + "\r\n0\r\n\r\n"),
         .thenClose = true,
         .countsAsSignedOut = true},
        {.name = "chunk size too large",
         .bytes = chunked("FFFFFFFFFFFFFFFF\r\n" + json),
         .thenClose = true,
         .countsAsSignedOut = true},
        {.name = "truncated gzip", .bytes = encoded(cutGzip(json)), .countsAsSignedOut = true},
        {.name = "gzip that is none", .bytes = encoded(json)},
        {.name = "connection cut before an answer", .bytes = {}, .thenClose = true},
        {.name = "connection cut in the header", .bytes = "HTTP/1.1 200 OK\r\nContent-", .thenClose = true},
        {.name = "no HTTP", .bytes = "220 mail.example ESMTP\r\n", .thenClose = true},
    };
}

QList<BadReply> badStatuses(const QByteArray &json)
{
    return {
        {.name = "201", .bytes = TlsService::response(201, json), .countsAsSignedOut = true},
        {.name = "204", .bytes = TlsService::response(204, {}, {}), .countsAsSignedOut = true},
        {.name = "206", .bytes = TlsService::response(206, json), .countsAsSignedOut = true},
        {.name = "304", .bytes = "HTTP/1.1 304 Not Modified\r\n\r\n"},
        {.name = "400", .bytes = TlsService::response(400, json)},
        {.name = "404", .bytes = TlsService::response(404, json)},
        {.name = "429", .bytes = TlsService::response(429, json, "application/json", {{"Retry-After", "1"}})},
        {.name = "500", .bytes = TlsService::response(500, json)},
        {.name = "503", .bytes = TlsService::response(503, json)},
        {.name = "999", .bytes = TlsService::response(999, json)},
    };
}

} // namespace

QList<BadReply> badReplies(const QByteArray &goodJson)
{
    return badBodies(goodJson) + badFraming(goodJson) + badStatuses(goodJson);
}

} // namespace quillmar::test
