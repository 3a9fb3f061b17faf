#pragma once

#include "catalogue/product_list.h"
#include "tests/support/locale_files.h"
#include "ui/dock_panel.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace quillmar::test
{

/// A dock as the module builds it, with its product list, and its widgets by their place in the column.
struct Dock {
    explicit Dock(const QString &language) : texts(LocaleFiles().localisation(language)), panel(texts)
    {
        list = new ProductList({texts, nullptr}, [] {});
        panel.setProductList(list);
        panel.retranslate();
    }

    enum Row {
        TopRow,
        Banner,
        Brand,
        TitleRow,
        Username,
        Password,
        SignIn,
        Status,
        Welcome,
        Message,
        Retry,
        Quota,
        Refresh,
        List
    };

    QBoxLayout *column() const { return qobject_cast<QBoxLayout *>(panel.layout()); }
    QWidget *row(Row place) const { return column()->itemAt(place)->widget(); }
    QLabel *label(Row place) const { return qobject_cast<QLabel *>(row(place)); }
    QPushButton *button(Row place) const { return qobject_cast<QPushButton *>(row(place)); }
    QLineEdit *field(Row place) const { return qobject_cast<QLineEdit *>(row(place)); }
    QComboBox *selector() const { return row(TopRow)->findChild<QComboBox *>(); }
    QPushButton *logout() const { return row(TopRow)->findChild<QPushButton *>(); }
    QLabel *title() const { return row(TitleRow)->findChild<QLabel *>(); }

    /// Places of the column that are shown, and TopRow + 100 when the logout button is.
    QList<int> shown() const
    {
        QList<int> places;
        for (int place = TopRow; place <= List; ++place) {
            if (!row(static_cast<Row>(place))->isHidden())
                places.append(place);
        }
        if (!logout()->isHidden())
            places.append(TopRow + 100);
        return places;
    }

    Localisation texts;
    DockPanel panel;
    ProductList *list = nullptr;
};

inline constexpr int LogoutShown = Dock::TopRow + 100;

} // namespace quillmar::test
