#pragma once

#include "packages/component_product.h"
#include "tests/support/libobs_fake/libobs_fake.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace quillmar::test
{

/// A component that the add test lets pass.
inline ProductComponent insertable(const QString &mode, const QString &type,
                                   const QString &name = QStringLiteral("X"))
{
    ProductComponent component;
    component.component_name = name;
    component.insert_mode = mode;
    component.source_type = type;
    component.asset_kind = QStringLiteral("file");
    component.asset_path = type == u"image" ? QStringLiteral("a/b.png") : QStringLiteral("a/b.webm");
    component.auto_insert_enabled = true;
    return component;
}

/// An OBS with one current scene, and a folder for the files that are put into it.
struct InsertionFixture {
    LibobsFake obs;
    QTemporaryDir folder;
    obs_source_t *scene = obs.addSource(QStringLiteral("scene"), QStringLiteral("صحنه\u200Cها"));

    InsertionFixture() { obs.setCurrentScene(scene); }

    QString file(const QString &name) const
    {
        QFile file{folder.filePath(name)};
        if (!file.open(QIODevice::WriteOnly) || file.write("x") != 1) {
            qFatal("no file for the test");
        }
        return file.fileName();
    }

    /// Nothing is held any more, and nothing was given back twice.
    bool isBalanced() const
    {
        return obs.outstanding() == LibobsFake::Outstanding() && obs.misuse().isEmpty();
    }
};

} // namespace quillmar::test
