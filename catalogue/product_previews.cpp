#include "catalogue/product_previews.h"

#include <QPointer>

#include <utility>

namespace quillmar
{

struct ProductPreviews::Private {
};

ProductPreviews::ProductPreviews(QObject *parent) : QObject(parent), d_(std::make_unique<Private>()) {}

ProductPreviews::~ProductPreviews() = default;

void ProductPreviews::request(const PreviewEntry &, QObject *receiver, Completion completion)
{
    if (receiver)
        completion(QImage());
}

} // namespace quillmar
