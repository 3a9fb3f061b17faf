#pragma once

#include "catalogue/product_details.h"
#include "tests/support/locale_files.h"
#include "tests/support/tls_service/tls_service.h"

#include <QBuffer>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScrollArea>

#include <memory>

namespace quillmar::test
{

inline QByteArray pngBytes(const QSize &size, const QColor &colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

/// A service of pictures, the loader that fetches them, and products whose galleries name them.
struct DetailsFixture {
    TlsService service;
    Localisation texts = LocaleFiles().localisation(EnglishCode);
    std::unique_ptr<ProductPreviews> previews = std::make_unique<ProductPreviews>();
    QWidget card; ///< in whose place the dialog is opened

    static PreviewEntry entry(const QByteArray &name, const QString &label)
    {
        return {QUrl(QStringLiteral("https://quillmar.example/") + QString::fromUtf8(name)), {}, {}, label};
    }

    void serve(const QByteArray &name, const QSize &size, const QColor &colour = Qt::red)
    {
        service.handle('/' + name,
                       TlsService::always(TlsService::response(200, pngBytes(size, colour), "image/png")));
    }

    /// Keeps every request for this picture waiting in `held`.
    void hold(const QByteArray &name, QList<WireConnection> &held)
    {
        service.handle('/' + name,
                       [&held](const WireRequest &, WireConnection &connection) { held.append(connection); });
    }

    qsizetype requests(const QByteArray &name) const
    {
        qsizetype count = 0;
        for (const WireRequest &request : service.requests())
            count += request.target == '/' + name ? 1 : 0;
        return count;
    }

    /// A product with a gallery of `size` pictures "p0", "p1" and so on.
    static ComponentProduct product(int size)
    {
        ComponentProduct product;
        product.product_name = QStringLiteral("Night pack");
        product.product_key = QStringLiteral("night");
        product.product_version = QStringLiteral("1.2");
        product.description = QStringLiteral("Everything for the night.\nSecond line.");
        for (int i = 0; i < size; ++i)
            product.previews.append(entry("p" + QByteArray::number(i), QStringLiteral("view %1").arg(i)));
        return product;
    }

    static ProductComponent component(const QString &name, const QString &variant = {})
    {
        ProductComponent component;
        component.component_name = name;
        component.variant_label = variant;
        component.asset_path = QStringLiteral("a.zip");
        component.asset_kind = QStringLiteral("file");
        return component;
    }

    /// Two pictures of the product, and two components with one and no picture.
    static ComponentProduct pack()
    {
        ComponentProduct pack = product(2);
        pack.components = {component(QStringLiteral("Frame"), QStringLiteral("blue")),
                           component(QStringLiteral("Scene"))};
        pack.components.first().previews = {entry("frame", QStringLiteral("the frame"))};
        return pack;
    }

    std::unique_ptr<ProductDetails> open(const ComponentProduct &product)
    {
        auto details = std::make_unique<ProductDetails>(product, texts, nullptr, previews.get(), &card);
        details->setAttribute(Qt::WA_DeleteOnClose, false);
        details->show();
        return details;
    }
};

/// The parts of a dialog in the order of its content.
struct DetailsView {
    explicit DetailsView(const ProductDetails *shown)
        : dialog(shown), content(shown->findChild<QScrollArea *>()->widget())
    {
    }

    QLabel *label(int place) const
    {
        return qobject_cast<QLabel *>(content->layout()->itemAt(place)->widget());
    }
    QLabel *header() const { return label(0); }
    QComboBox *entries() const { return qobject_cast<QComboBox *>(content->layout()->itemAt(1)->widget()); }
    QLabel *preview() const { return label(2); }
    QLabel *caption() const { return label(3); }
    QPushButton *button(int place) const
    {
        return qobject_cast<QPushButton *>(content->layout()->itemAt(4)->layout()->itemAt(place)->widget());
    }
    QPushButton *previous() const { return button(0); }
    QPushButton *next() const { return button(1); }
    QPushButton *retry() const { return button(2); }
    QPushButton *enlarge() const { return button(3); }

    bool showsPicture() const { return !preview()->pixmap().isNull(); }

    /// Logical size of the picture on show.
    QSize pictureSize() const { return preview()->pixmap().deviceIndependentSize().toSize(); }
    QColor pictureColour() const
    {
        const QImage image = preview()->pixmap().toImage();
        return image.pixelColor(image.width() / 2, image.height() / 2);
    }

    /// Windows that the dialog has opened.
    QList<QDialog *> enlarged() const { return dialog->findChildren<QDialog *>(Qt::FindDirectChildrenOnly); }

    const ProductDetails *dialog;
    QWidget *content;
};

} // namespace quillmar::test
