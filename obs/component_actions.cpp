#include "obs/component_actions.h"

#include "obs/source_insertion.h"
#include "ui/announcement.h"
#include "ui/button.h"
#include "ui/plain_tool_tip.h"
#include "ui/selectable_label.h"
#include "ui/wrapping_label.h"

#include <QDir>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr qint32 WholePackage = -1;
constexpr char TextKeyProperty[] = "textKey";
constexpr char PathProperty[] = "path";

constexpr QChar LeftToRightIsolate{u'\u2066'};
constexpr QChar RightToLeftIsolate{u'\u2067'};
constexpr QChar EndOfIsolate{u'\u2069'};

struct ButtonColours {
    QLatin1StringView normal;
    QLatin1StringView hover;
    QLatin1StringView pressed;
    QLatin1StringView disabled;
};

constexpr ButtonColours Blue{"#18C8F4"_L1, "#50D8F8"_L1, "#10A6CE"_L1, "#528B99"_L1};
constexpr ButtonColours Orange{"#FF9D00"_L1, "#FFB638"_L1, "#D98200"_L1, "#A88855"_L1};

QString buttonStyle(const ButtonColours &colours)
{
    return u"QPushButton { background-color: %1; color: #101810; border: none; border-radius: 6px; padding: "
           u"6px 8px; "
           u"font-size: 13px; }"
           u"QPushButton:hover { background-color: %2; }"
           u"QPushButton:pressed { background-color: %3; }"
           u"QPushButton:disabled { background-color: %4; color: #17201d; }"_s.arg(
               colours.normal, colours.hover, colours.pressed, colours.disabled);
}

QLabel *createStatusLabel(QWidget *parent)
{
    auto *label = new SelectableLabel(parent);
    label->hide();
    return label;
}

/// Keeps "OBS" in one piece, and the caption as a whole right to left although it may start with a Latin
/// word.
QString isolateCaption(QString caption)
{
    caption.replace("OBS"_L1, LeftToRightIsolate + u"OBS"_s + EndOfIsolate);
    return RightToLeftIsolate + caption + EndOfIsolate;
}

} // namespace

ComponentActions::ComponentActions(const ComponentProduct &product, ProductDownloads *downloads,
                                   const Localisation &localisation, QWidget *parent, bool expanded)
    : QWidget(parent),
      product_(product),
      downloads_(downloads),
      localisation_(localisation),
      toggle_(newButton(this)),
      container_(new QWidget(this))
{
    // Layouts are filled before they are put in place: in place they ask to be done again for every widget.
    auto *layout = new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(toggle_);
    layout->addWidget(container_);
    container_->hide();
    // Qt does not look for children to polish below a widget that is polished already.
    container_->ensurePolished();
    toggle_->setCheckable(true);
    connect(toggle_, &QPushButton::toggled, container_, &QWidget::setVisible);

    auto *cards = new QVBoxLayout;
    cards->setContentsMargins(0, 0, 0, 0);
    cards->setSpacing(8);
    for (qint32 index = 0; index < product_.components.size(); ++index) {
        addCard(cards, index);
    }
    container_->setLayout(cards);
    const QList<QWidget *> folded = container_->findChildren<QWidget *>();
    for (QWidget *widget : folded) {
        widget->installEventFilter(this);
    }
    addAction(layout, 0, layout,
              {newButton(this), createStatusLabel(this), WholePackage, false, "Component.FullDownload"});
    setLayout(layout);

    if (expanded) {
        toggle_->setChecked(true);
        toggle_->hide();
    }
    if (downloads != nullptr) {
        connect(downloads, &QObject::destroyed, this, &ComponentActions::failRunning);
    }
}

void ComponentActions::addCard(QBoxLayout *layout, qint32 componentIndex)
{
    const ProductComponent &component = product_.components.at(componentIndex);
    auto *card = new QFrame(container_);
    card->setObjectName(u"quillmarComponentCard"_s);
    card->setStyleSheet(
        u"QFrame#quillmarComponentCard { background-color: #111a15; border: 1px solid #365c2c; "
        u"border-radius: 7px; }"_s);
    card->setAccessibleName(component.component_name);
    layout->addWidget(card);

    auto *cardLayout = new QVBoxLayout;
    cardLayout->setContentsMargins(8, 8, 8, 8);
    cardLayout->setSpacing(6);
    auto *title = new WrappingLabel(card);
    title->setText(component.component_name);
    cardLayout->addWidget(title);

    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    cardLayout->addLayout(row);
    if (canAdd(component)) {
        addAction(row, 1, cardLayout,
                  {newButton(card), createStatusLabel(card), componentIndex, true, "Component.Add"});
    }
    if (hasUsableAsset(component)) {
        addAction(row, 1, cardLayout,
                  {newButton(card), createStatusLabel(card), componentIndex, false, "Product.Download"});
    }
    card->setLayout(cardLayout);
}

/// Qt polishes every new widget, also one that nobody sees; with style sheets that is most of what a widget
/// costs. One that is shown is polished then.
bool ComponentActions::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::PolishRequest && container_->isHidden()) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ComponentActions::addAction(QBoxLayout *buttonLayout, int stretch, QBoxLayout *statusLayout,
                                 const Action &action)
{
    const int entryIndex = static_cast<int>(actions_.size());
    actions_.append(action);
    action.button->setStyleSheet(buttonStyle(action.insert ? Blue : Orange));
    connect(action.button, &QPushButton::clicked, this, [this, entryIndex] { run(entryIndex); });
    buttonLayout->addWidget(action.button, stretch);
    statusLayout->addWidget(action.status);
}

void ComponentActions::retranslate(Qt::LayoutDirection direction)
{
    const bool rightToLeft = direction == Qt::RightToLeft;
    setLayoutDirection(direction);
    toggle_->setText(localisation_.translate("Component.Contents")
                         .replace("%1"_L1, QString::number(product_.components.size())));

    const Qt::Alignment side = rightToLeft ? Qt::AlignRight : Qt::AlignLeft;
    const QList<QLabel *> labels = findChildren<QLabel *>();
    for (QLabel *label : labels) {
        label->setAlignment(side | Qt::AlignAbsolute | Qt::AlignTop);
    }
    for (int index = 0; index < actions_.size(); ++index) {
        const Action &action = actions_.at(index);
        action.button->setText(caption(action, rightToLeft));
        const QString textKey = action.status->property(TextKeyProperty).toString();
        if (!textKey.isEmpty()) {
            showStatus(index, textKey, action.status->property(PathProperty).toString());
        }
    }
}

QString ComponentActions::caption(const Action &action, bool rightToLeft) const
{
    const QString text = localisation_.translate(action.captionKey);
    return rightToLeft && action.insert ? isolateCaption(text) : text;
}

std::optional<ProductComponent> ComponentActions::componentOf(int entryIndex) const
{
    const qint32 index = actions_.at(entryIndex).componentIndex;
    return index == WholePackage ? std::nullopt : std::optional(product_.components.at(index));
}

void ComponentActions::run(int entryIndex)
{
    const Action &action = actions_.at(entryIndex);
    if (!action.button->isEnabled()) {
        return;
    }
    if (action.insert && !canAdd(product_.components.at(action.componentIndex))) {
        setStatus(entryIndex, u"Component.Unsupported"_s);
        return;
    }
    if (!downloads_) {
        finish(entryIndex, u"Download.Failed"_s);
        return;
    }
    action.button->setEnabled(false);
    setStatus(entryIndex, u"Download.Progress"_s);
    downloads_->acquire(product_, this, [this, entryIndex](const ProductFileResult &package) {
        materialize(entryIndex, package);
    });
}

void ComponentActions::materialize(int entryIndex, const ProductFileResult &package)
{
    if (!package.isOk()) {
        finish(entryIndex, package.error);
        return;
    }
    if (!downloads_) {
        finish(entryIndex, u"Download.Failed"_s);
        return;
    }
    const std::optional<ProductComponent> component = componentOf(entryIndex);
    setStatus(entryIndex, component ? u"Component.Extracting"_s : u"Component.Saving"_s);
    downloads_->materialize(
        product_, package.path, component, this,
        [this, entryIndex](const ProductFileResult &file) { complete(entryIndex, file); });
}

void ComponentActions::complete(int entryIndex, const ProductFileResult &file)
{
    if (!file.isOk()) {
        finish(entryIndex, file.error);
    } else if (actions_.at(entryIndex).insert) {
        insert(entryIndex, file.path);
    } else {
        finish(entryIndex, u"Download.Success"_s, file.path);
    }
}

void ComponentActions::insert(int entryIndex, const QString &path)
{
    setStatus(entryIndex, u"Component.Adding"_s);

    // OBS may run a dialog inside the insertion, and this widget may be gone when it returns: everything that
    // the insertion reads, and everything that is needed after it, lives on the stack.
    const QPointer<ComponentActions> self = this;
    const std::optional<ProductComponent> component = componentOf(entryIndex);
    const QString file = path;
    const QString error = insertComponent(*component, file);
    if (!self) {
        return;
    }
    if (error.isEmpty()) {
        finish(entryIndex, u"Component.Added"_s, file);
    } else {
        finish(entryIndex, error);
    }
}

void ComponentActions::finish(int entryIndex, const QString &textKey, const QString &path)
{
    setStatus(entryIndex, textKey, path);
    actions_.at(entryIndex).button->setEnabled(true);
}

/// No completion comes any more once the downloads are gone.
void ComponentActions::failRunning()
{
    for (int index = 0; index < actions_.size(); ++index) {
        if (!actions_.at(index).button->isEnabledTo(this)) {
            finish(index, u"Download.Failed"_s);
        }
    }
}

void ComponentActions::setStatus(int entryIndex, const QString &textKey, const QString &path)
{
    showStatus(entryIndex, textKey, path);
    announce(actions_.at(entryIndex).status);
}

void ComponentActions::showStatus(int entryIndex, const QString &textKey, const QString &path)
{
    QLabel *label = actions_.at(entryIndex).status;
    label->setProperty(TextKeyProperty, textKey);
    label->setProperty(PathProperty, path);
    const QString nativePath = QDir::toNativeSeparators(path);
    const QString text = localisation_.translate(textKey);
    label->setText(path.isEmpty() ? text : text + u'\n' + nativePath);
    setPlainToolTip(label, nativePath);
    label->show();
}

} // namespace quillmar
