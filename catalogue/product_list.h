#pragma once

#include "catalogue/catalogue_services.h"

#include <QJsonArray>
#include <QList>
#include <QWidget>

#include <functional>

class QLabel;
class QLineEdit;
class QScrollArea;
class QVBoxLayout;

namespace quillmar
{

class CategoryComboBox;
class ProductCard;

/// The catalogue area of the dock: a search field and a category filter above a scrolling column of product
/// cards.
class ProductList : public QWidget
{
    Q_OBJECT

public:
    /// `quotaChanged` is called after a direct download has used quota.
    ProductList(CatalogueServices services, std::function<void()> quotaChanged);
    ~ProductList() override;

    /// Replaces every card and the category list, and resets both filters. Elements that are not objects are
    /// skipped.
    void setProducts(const QJsonArray &products);

    /// Applies texts and direction of the current language.
    void retranslate();

private:
    void buildHeader(QVBoxLayout *layout);
    void buildScrollArea(QVBoxLayout *layout);
    void removeCards();
    void resetFilters();
    void addCard(const QJsonObject &product);
    void orderTabStops();
    void addCategories();
    void chooseCategory();
    void nameCategory();
    void applyFilter();
    bool matches(const ProductCard &card, const QString &query, const QString &category) const;
    bool isFilterActive(const QString &query) const;

    CatalogueServices services_;
    std::function<void()> quotaChanged_;
    QLineEdit *search_ = nullptr;
    CategoryComboBox *categories_ = nullptr;
    QScrollArea *scrollArea_ = nullptr;
    QWidget *container_ = nullptr;
    QVBoxLayout *cardLayout_ = nullptr;
    QLabel *noResults_ = nullptr;
    QList<ProductCard *> cards_;
};

} // namespace quillmar
