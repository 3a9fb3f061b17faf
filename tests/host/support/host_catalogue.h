#pragma once

#include "tests/host/support/stage_catalogue.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QTemporaryDir>

namespace quillmar::test
{

/// One webcam frame of the product "Host webcam": what the service says about it.
struct WebcamFrame {
    QString name;
    QString position;
    int width = 0;
    int height = 0;
};

/// Products whose names, sizes and oddities the host tests choose themselves, as a folder that the demo
/// service serves.
///
/// "Host pictures" has one component of every kind and oddity, "Host webcam" one per WebcamFrame, "Host pair"
/// two components in a package that takes a moment to arrive, "Host wrong digest" a package that is not what
/// it says, "Host single" no components but three previews: its package is one picture. "Host stage" is
/// there only when a test has components for it.
class HostCatalogue
{
public:
    /// How many products there are without a stage.
    static constexpr qsizetype Products = 5;

    explicit HostCatalogue(const QList<WebcamFrame> &frames = {}, const QList<StageComponent> &stage = {});

    bool isValid() const { return valid_; }
    QString path() const { return directory_.path(); }

private:
    bool drawAssets() const;
    bool addStage(const QList<StageComponent> &components);
    bool addProduct(const QString &key, const QString &name, const QJsonArray &components,
                    const QStringList &files);
    bool addSingle();
    bool writeProducts() const;

    QTemporaryDir directory_;
    QJsonArray products_;
    bool valid_ = false;
};

} // namespace quillmar::test
