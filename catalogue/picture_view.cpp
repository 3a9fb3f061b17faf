#include "catalogue/picture_view.h"

#include <QDialog>
#include <QLabel>
#include <QVBoxLayout>

namespace quillmar
{

namespace
{

constexpr QSize EnlargedPlace(1100, 800);

} // namespace

QPixmap fittedPixmap(const QImage &image, const QSize &place, const QWidget *widget)
{
    const qreal ratio = widget->devicePixelRatio();
    const QSize size = image.size().scaled(place.expandedTo({1, 1}) * ratio, Qt::KeepAspectRatio);
    QPixmap fitted = QPixmap::fromImage(
        image.scaled(size.expandedTo({1, 1}), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    fitted.setDevicePixelRatio(ratio);
    return fitted;
}

void openEnlargedView(const QImage &image, const QString &title, QWidget *parent)
{
    auto *view = new QDialog(parent);
    view->setAttribute(Qt::WA_DeleteOnClose);
    view->setLayoutDirection(parent->layoutDirection());
    view->setWindowTitle(title);
    auto *picture = new QLabel(view);
    picture->setAlignment(Qt::AlignCenter);
    picture->setAccessibleName(title);
    picture->setPixmap(fittedPixmap(image, EnlargedPlace, parent));
    auto *layout = new QVBoxLayout(view);
    layout->addWidget(picture);
    view->show();
}

} // namespace quillmar
