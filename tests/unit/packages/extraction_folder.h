#pragma once

#include "packages/archive_extraction.h"
#include "tests/unit/packages/file_tree.h"

#include <QTemporaryDir>

namespace quillmar::test
{

/// A package root of its own in a temporary folder, with one product whose package a test sets.
class ExtractionFolder
{
public:
    ExtractionFolder();

    ComponentProduct product; ///< a ZIP package by its file name

    /// Absolute, cleaned, free of links.
    QString root() const { return top_ + QStringLiteral("/Quillmar"); }
    QString packagePath() const;
    QString components() const;

    void storePackage(const QByteArray &bytes) const;

    /// What is to be taken for an older result, put there without the code under test.
    void putComponent(const QString &path, const QByteArray &bytes) const;

    ProductFileResult extractWhole() const;
    ProductFileResult extractFile(const QString &asset) const
    {
        return extract(asset, QStringLiteral("file"));
    }
    ProductFileResult extractFolder(const QString &asset) const
    {
        return extract(asset, QStringLiteral("folder"));
    }
    ProductFileResult extract(const QString &asset, const QString &kind) const;

    /// Everything in the temporary folder, the root's neighbours included.
    QMap<QString, QByteArray> snapshot() const { return treeBelow(top_); }

    /// The same without the results of the product and without the cache: what no extraction may change.
    QMap<QString, QByteArray> surroundings() const;

    /// Files below "Components", paths with content.
    QMap<QString, QByteArray> extracted() const;

private:
    QTemporaryDir temporary_;
    QString top_;
};

} // namespace quillmar::test
