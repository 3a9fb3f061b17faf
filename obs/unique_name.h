#pragma once

#include <QString>
#include <QStringList>

namespace quillmar
{

/// What a new OBS object's name is made of: the first 120 UTF-16 units of `wanted`, blanks around it
/// included, or "Component" when it is blank.
QString nameBase(const QString &wanted);

/// A name for a new OBS object: "Quillmar - " and the base of `wanted`, with " (2)", " (3)" and so on until
/// no source of OBS and no entry of `taken` is called so. User-interface thread.
QString uniqueName(const QString &wanted, const QStringList &taken = {});

} // namespace quillmar
