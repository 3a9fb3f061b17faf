#include "tests/support/zip_builder/archive_samples.h"

namespace quillmar::test
{
namespace
{

SampleArchive with(const QByteArray &name, const QList<ZipItem> &items)
{
    ZipBuilder builder = baseArchive();
    builder.items += items;
    return {name, builder.build()};
}

QList<QByteArray> unsafeNames()
{
    return {"",
            "/",
            "//",
            "/abs.txt",
            "\\abs.txt",
            "//host/share.txt",
            "\\\\host\\share.txt",
            "C:/x.txt",
            "C:x.txt",
            "C:\\x.txt",
            "\\\\?\\C:\\x.txt",
            ".",
            "..",
            "./a.txt",
            "../a.txt",
            "../../../../../../tmp/a.txt",
            "..\\a.txt",
            "a/../b.txt",
            "a/../../b.txt",
            "a/./b.txt",
            "a/..",
            "a/.",
            "a//b.txt",
            "a\\\\b.txt",
            "a//",
            "a/\\",
            "a.",
            "a ",
            "a./b.txt",
            "a /b.txt",
            "a/b.",
            "a/b ",
            "...",
            " ",
            "con",
            "CON",
            "a/con.png",
            "prn.txt",
            "aux/b.txt",
            "nul",
            "NUL.tar.gz",
            "com0",
            "com1.txt",
            "a/LPT9",
            "lpt0.x",
            "a\tb.txt",
            "a\nb.txt",
            "a\rb.txt",
            QByteArray("a\0b.txt", 7),
            QByteArray("\0", 1),
            "a\x1f"
            "b",
            "a<b.txt",
            "a>b.txt",
            "a|b.txt",
            "a?b.txt",
            "a*b.txt",
            "a\"b.txt",
            "a.txt:stream",
            "pack/../../evil",
            "\xef\xbb\xbf",
            "\xef\xbb\xbf/abs.txt",
            "\xef\xbb\xbf../a.txt",
            QByteArray(1025, 'a'),
            QByteArray("abc/").repeated(256) + "a"};
}

QList<SampleArchive> namedUnsafely()
{
    QList<SampleArchive> archives;
    for (const QByteArray &name : unsafeNames())
        archives.append(with("name " + name.left(60).toPercentEncoding(), {fileItem(name)}));
    for (char c = 1; c < ' '; ++c)
        archives.append(
            with("control character " + QByteArray::number(c), {fileItem(QByteArray("a") + c + "b")}));
    archives.append({"only an unsafe name", zipOf({fileItem("../a.txt")})});
    archives.append({"unsafe name first", zipOf({fileItem("../a.txt"), fileItem("pack/wanted.txt")})});
    return archives;
}

QList<SampleArchive> duplicates()
{
    const auto pair = [](const char *name, const QByteArray &first, const QByteArray &second) {
        return with(QByteArray("duplicate: ") + name, {fileItem(first, "1"), fileItem(second, "2")});
    };
    return {
        pair("exact", "dup.txt", "dup.txt"),
        pair("of the requested file", "pack/x.txt", "PACK/WANTED.TXT"),
        pair("case of the file", "frames/a.png", "frames/A.PNG"),
        pair("case of the folder", "frames/a.png", "Frames/A.png"),
        with("duplicate: file and folder", {fileItem("dup"), folderItem("dup/")}),
        with("duplicate: folder twice", {folderItem("dup/"), folderItem("DUP/")}),
        pair("separator", "a/b.txt", "a\\b.txt"),
        pair("Kelvin sign", "k.txt", "\xe2\x84\xaa.txt"),
        pair("long s", "s.txt", "\xc5\xbf.txt"),
        pair("final sigma", "\xcf\x83.txt", "\xcf\x82.txt"),
        pair("Cyrillic", "\xd0\xb6.txt", "\xd0\x96.txt"),
        pair("Deseret", "\xf0\x90\x90\x80.txt", "\xf0\x90\x90\xa8.txt"),
        pair("micro sign", "\xc2\xb5.txt", "\xce\xbc.txt"),
        pair("byte order mark", "b.txt",
             "\xef\xbb\xbf"
             "b.txt"),
        pair("bytes that are no UTF-8", "a\xff.txt", "a\xfe.txt"),
    };
}

ZipItem hosted(const char *name, quint8 host, quint32 attributes)
{
    ZipItem item = fileItem(name);
    item.central = [=](CentralHeader &central) {
        central.host = host;
        central.external_attributes = attributes;
    };
    return item;
}

QList<SampleArchive> links()
{
    ZipItem deflatedLink = linkItem("link", QByteArray(200, 'a'));
    deflatedLink.deflated = true;
    ZipBuilder requested = baseArchive();
    requested.items[1].mode = 0120777;
    return {
        with("link to a file", {linkItem("link", "pack/wanted.txt")}),
        {"requested entry is a link", requested.build()},
        with("link to a folder, then a file through it",
             {linkItem("link", "/tmp"), fileItem("link/evil.txt")}),
        with("chained links", {linkItem("one", "two"), linkItem("two", "/etc")}),
        {"link as the only entry", zipOf({linkItem("link", "/etc/passwd")})},
        with("deflated link", {deflatedLink}),
        with("link with trailing slash", {linkItem("link/", "/tmp")}),
        with("link with an empty target", {linkItem("link", {})}),
        with("link with DOS attributes", {hosted("link", 3, 0120777U << 16 | 0x20)}),
        with("link with the DOS folder attribute", {hosted("link", 3, 0120777U << 16 | 0x10)}),
    };
}

QList<SampleArchive> unknownKinds()
{
    QList<SampleArchive> archives;
    for (const int host : {1, 2, 4, 5, 7, 8, 9, 12, 13, 15, 16, 17, 18, 19, 20, 255})
        archives.append(with("host " + QByteArray::number(host),
                             {hosted("file.txt", static_cast<quint8>(host), 0100644U << 16)}));
    return archives;
}

} // namespace

QList<SampleArchive> archivesWithUnsafeEntries()
{
    return namedUnsafely() + duplicates() + links() + unknownKinds();
}

} // namespace quillmar::test
