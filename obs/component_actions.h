#pragma once

#include "packages/component_product.h"
#include "packages/product_downloads.h"
#include "ui/localisation.h"

#include <QList>
#include <QPointer>
#include <QWidget>

#include <optional>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace quillmar
{

/// Lists the components of one product, each with a button that puts it into OBS and one that downloads it,
/// and a button for the whole package. Several actions may run at once; each shows its state under its own
/// button.
///
///     [ toggle: contents (n) ]
///     +- card ----------------------+
///     | title                       |   one per component, folded away until the toggle is checked
///     | [ add ] [ download ]        |
///     | status of add               |
///     | status of download          |
///     +-----------------------------+
///     [ whole package ]
///     status of whole package
///
/// Texts are set by retranslate() only, which must run once before the widget is first shown. User-interface
/// thread only.
class ComponentActions : public QWidget
{
    Q_OBJECT

public:
    /// `localisation` outlives the widget; `downloads` may die before it, which ends running actions as
    /// failed downloads. `expanded` shows the list open for good, without the button that folds it.
    ComponentActions(const ComponentProduct &product, ProductDownloads *downloads,
                     const Localisation &localisation, QWidget *parent, bool expanded);

    /// Shows every text in the current language, laid out in `direction`, the statuses on display included.
    void retranslate(Qt::LayoutDirection direction);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// One action button. Entries are never reordered or dropped, so an index stays good while the widget
    /// lives.
    struct Action {
        QPushButton *button;
        QLabel *status;        ///< remembers what it shows in the properties `textKey` and `path`
        qint32 componentIndex; ///< position in the product's list; -1: the whole package
        bool insert;           ///< puts the component into OBS, where the others only download
        const char *captionKey;
    };

    void addCard(QBoxLayout *layout, qint32 componentIndex);
    void addAction(QBoxLayout *buttonLayout, int stretch, QBoxLayout *statusLayout, const Action &action);
    QString caption(const Action &action, bool rightToLeft) const;
    std::optional<ProductComponent> componentOf(int entryIndex) const;

    void run(int entryIndex);
    void materialize(int entryIndex, const ProductFileResult &package);
    void complete(int entryIndex, const ProductFileResult &file);
    void insert(int entryIndex, const QString &path);
    void finish(int entryIndex, const QString &textKey, const QString &path = {});
    void failRunning();
    void setStatus(int entryIndex, const QString &textKey, const QString &path = {});
    void showStatus(int entryIndex, const QString &textKey, const QString &path);

    const ComponentProduct product_;
    const QPointer<ProductDownloads> downloads_;
    const Localisation &localisation_;
    QPushButton *toggle_;
    QWidget *container_;
    QList<Action> actions_;
};

} // namespace quillmar
