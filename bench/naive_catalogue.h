#pragma once

#include "packages/component_product.h"
#include "ui/localisation.h"

#include <QJsonArray>
#include <QWidget>

class QBoxLayout;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace quillmar::bench
{

/// The catalogue as one writes it down without a thought for speed: bare Qt widgets, each made in its place
/// in a window that is shown, styled there, shown and hidden one by one.
class NaiveCatalogue : public QWidget
{
public:
    explicit NaiveCatalogue(const Localisation &localisation);

    void setProducts(const QJsonArray &products);
    QLineEdit *search() const { return search_; }
    QWidget *container() const { return container_; }

private:
    struct Card {
        QWidget *widget;
        ComponentProduct product;
        QString category;
    };

    void addCard(const QJsonObject &object);
    void fillCard(QWidget *widget, const ComponentProduct &product, const QString &category);
    QWidget *createActions(const ComponentProduct &product, QWidget *parent);
    void addComponent(QBoxLayout *layout, const ProductComponent &component, QWidget *parent);
    QPushButton *createAction(const char *key, bool insert, QWidget *parent);
    void turn(QLabel *label) const;
    void applyFilter();

    const Localisation &localisation_;
    QLineEdit *search_ = nullptr;
    QComboBox *categories_ = nullptr;
    QWidget *container_ = nullptr;
    QVBoxLayout *cardLayout_ = nullptr;
    QLabel *noResults_ = nullptr;
    QList<Card> cards_;
};

} // namespace quillmar::bench
