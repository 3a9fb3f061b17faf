#include "packages/path_safety.h"

#include "packages/product_identity.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

#ifdef Q_OS_WIN
#include "packages/windows_path.h"

#include <qt_windows.h>
#endif

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype kMaxPathUnits = 1024;

/// `\z` instead of `$`, which would let a line break at the end pass.
bool matchesKeyPattern(const QString &key)
{
    static const QRegularExpression pattern(u"^[A-Za-z0-9][A-Za-z0-9._-]{0,127}\\z"_s);
    return pattern.match(key).hasMatch();
}

bool isDeviceName(QStringView name)
{
    constexpr qsizetype shortest = 3; // spares the many short folders of a deep archive the expression
    if (name.size() < shortest)
        return false;
    static const QRegularExpression pattern(u"^(CON|PRN|AUX|NUL|COM[0-9]|LPT[0-9])(?:\\.|\\z)"_s,
                                            QRegularExpression::CaseInsensitiveOption);
    return pattern.matchView(name).hasMatch();
}

/// Ends in '.' or a blank, which Windows drops, or means something else than a file or folder of that name.
bool isMisreadName(QStringView name)
{
    return name.isEmpty() || name.endsWith(u'.') || name.endsWith(u' ') || isDeviceName(name);
}

bool isRefusedCharacter(QChar c)
{
    return c < u' ' || QStringView(u":<>\"|?*").contains(c);
}

bool isSafeSegment(QStringView segment)
{
    return !isMisreadName(segment) && std::ranges::none_of(segment, isRefusedCharacter);
}

#ifdef Q_OS_WIN
/// Without the long form the query fails beyond 260 characters, and a junction there would go unseen.
bool isReparsePoint(const QString &path)
{
    const DWORD attributes = GetFileAttributesW(qUtf16Printable(extendedLengthPath(path)));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}
#else
bool isReparsePoint(const QString &)
{
    return false;
}
#endif

/// Above a share of another computer there is no folder any more, but Qt goes on with the current drive.
bool isTop(const QString &path, const QString &parent)
{
    const bool leavesShare = path.startsWith("//"_L1) && !parent.startsWith("//"_L1);
    return parent.isEmpty() || parent == path || leavesShare;
}

/// The walk does not stop at the package root: a root inside a linked folder is refused altogether.
bool isFreeOfLinks(QString path)
{
    for (;;) {
        const QFileInfo info(path);
        if (info.isSymLink() || isReparsePoint(path))
            return false;
        const QString parent = info.absolutePath();
        if (isTop(path, parent))
            return true;
        path = parent;
    }
}

} // namespace

bool isSafeProductKey(const QString &key)
{
    return matchesKeyPattern(key) && !key.contains(".."_L1) && !key.endsWith(u'.') && !isDeviceName(key);
}

QString safeRelativePath(const QString &path)
{
    QString clean = path;
    clean.replace(u'\\', u'/');
    if (clean.endsWith(u'/'))
        clean.chop(1);
    if (clean.isEmpty() || clean.startsWith(u'/') || clean.size() > kMaxPathUnits)
        return {};
    const QList<QStringView> segments = QStringView(clean).split(u'/', Qt::KeepEmptyParts);
    return std::ranges::all_of(segments, isSafeSegment) ? clean : QString();
}

bool isSafeFileName(const QString &name)
{
    const auto isRefused = [](QChar c) {
        return c.category() == QChar::Other_Control || c == u'/' || c == u'\\' || c == u':';
    };
    return !isMisreadName(name) && name.compare(CacheFolderName, Qt::CaseInsensitive) != 0 &&
           std::ranges::none_of(name, isRefused);
}

QString pathBelowRoot(const QString &root, const QString &candidate)
{
    const QString path = QDir::cleanPath(QFileInfo(candidate).absoluteFilePath());
    return path == root || path.startsWith(root + u'/', Qt::CaseInsensitive) ? path : QString();
}

bool isInsideRoot(const QString &root, const QString &candidate)
{
    const QString path = pathBelowRoot(root, candidate);
    return !path.isEmpty() && isFreeOfLinks(path);
}

} // namespace quillmar
