#pragma once

#include "catalogue/category_combo_box.h"
#include "catalogue/product_card.h"
#include "catalogue/product_list.h"
#include "tests/support/locale_files.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillmar::test
{

inline QJsonObject product(const QString &name, const QString &description = {}, const QString &category = {})
{
    return {{QStringLiteral("product_key"), QString(QStringLiteral("key-") + name)},
            {QStringLiteral("product_name"), name},
            {QStringLiteral("description"), description},
            {QStringLiteral("category"), category},
            {QStringLiteral("product_version"), QStringLiteral("1.2.3")}};
}

inline QJsonObject productWithComponent(const QString &name)
{
    QJsonObject object = product(name);
    object.insert(QStringLiteral("components"),
                  QJsonArray{QJsonObject{{QStringLiteral("component_name"), QStringLiteral("Frame")}}});
    return object;
}

/// The labels and buttons of a card in the order of its layout.
struct CardView {
    explicit CardView(const QWidget *shownCard) : card(shownCard) {}

    QWidget *at(int place) const { return card->layout()->itemAt(place)->widget(); }
    QLabel *label(int place) const { return qobject_cast<QLabel *>(at(place)); }
    QLabel *preview() const { return label(0); }
    QLabel *name() const { return label(1); }
    QLabel *description() const { return label(2); }
    QPushButton *download() const { return qobject_cast<QPushButton *>(at(3)); }
    QLabel *status() const { return label(4); }
    QPushButton *details() const { return qobject_cast<QPushButton *>(at(5)); }

    const QWidget *card;
};

/// The cards of a list in the order of its column.
inline QList<ProductCard *> cardsOf(const ProductList &list)
{
    return list.findChildren<ProductCard *>();
}

/// Names of the cards that are shown, in order.
inline QStringList shownNames(const ProductList &list)
{
    QStringList names;
    const auto cards = cardsOf(list);
    for (const ProductCard *card : cards) {
        if (!card->isHidden())
            names.append(CardView(card).name()->text());
    }
    return names;
}

} // namespace quillmar::test
