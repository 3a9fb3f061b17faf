#pragma once

#include "demo/catalogue/archive_writer.h"
#include "demo/catalogue/clip_writer.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace quillmar::demo
{

/// Where the catalogue is made: assets are drawn into a staging folder per product, packed, measured and
/// described.
///
/// Lays out products.json, packages/KEY/FILE and previews/NAME below one folder. Every failure is collected;
/// work goes on with the next step.
class Workshop
{
public:
    explicit Workshop(const QString &folder);

    /// Adds a picture or clip at `path` to the contents of product `key`.
    void addPicture(const QString &key, const QString &path, const QImage &image);
    void addClip(const QString &key, const QString &path, const Clip &clip);

    /// Packs what was added for `key`.
    void pack(const QString &key, const QString &fileName, Archiver archiver);

    /// Makes the one file that was added for `key` its package.
    void ship(const QString &key, const QString &fileName);

    /// Saves a preview picture; its suffix gives the format. Result: its address.
    QString addPreview(const QString &name, const QImage &image);

    /// Saves a preview file as it is. Result: its address.
    QString addPreviewFile(const QString &name, const QByteArray &bytes);

    /// Address of a preview that is not there.
    static QString previewAddress(const QString &name);

    enum class Digest { LowerCase, UpperCase };

    /// Adds the product; "file_size" and "sha256" are taken from its package unless the object brings its
    /// own.
    void addProduct(QJsonObject product, Digest digest = Digest::LowerCase);

    /// Writes products.json and clears the staging folder. Errors of all steps, empty when all went well.
    QStringList finish();

private:
    QString stagingPath(const QString &key, const QString &path);
    QString packagePath(const QString &key, const QString &fileName);
    void note(const QString &error);

    QString folder_;
    QJsonArray products_;
    QStringList errors_;
};

} // namespace quillmar::demo
