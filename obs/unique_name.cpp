#include "obs/unique_name.h"

#include "obs/libobs.h"
#include "ui/localisation.h"

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr qsizetype MaximumBase = 120;

/// What OBS would keep of `text`: it ends at the first NUL, and half a surrogate pair does not pass through
/// UTF-8. Without this, two names could differ here and be the same there, and the search below would never
/// end.
QString asKeptByObs(const QString &text)
{
    return QString::fromUtf8(text.toUtf8().constData());
}

bool isUsedByObs(const QString &name)
{
    const OBSSourceAutoRelease source = obs_get_source_by_name(name.toUtf8().constData());
    return source != nullptr;
}

} // namespace

QString nameBase(const QString &wanted)
{
    const QString kept = asKeptByObs(wanted);
    return kept.trimmed().isEmpty() ? u"Component"_s : leftWithoutSplitting(kept, MaximumBase);
}

QString uniqueName(const QString &wanted, const QStringList &taken)
{
    const QString first = u"Quillmar - "_s + nameBase(wanted);
    QString candidate = first;
    for (int number = 2; isUsedByObs(candidate) || taken.contains(candidate); ++number) {
        candidate = first + u" ("_s + QString::number(number) + u')';
    }
    return candidate;
}

} // namespace quillmar
