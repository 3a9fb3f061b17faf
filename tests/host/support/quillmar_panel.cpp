#include "tests/host/support/quillmar_panel.h"

#include "tests/support/processes/waiting.h"

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

bool isPushButton(const Widget &widget)
{
    return widget.role == "button"_L1;
}

bool isLabel(const Widget &widget)
{
    return widget.role == "label"_L1;
}

const Widget *productCard(const WidgetTree &tree, const QString &product)
{
    for (const Widget &card : tree.all()) {
        const auto isName = [&product](const Widget &widget) {
            return isLabel(widget) && widget.text == product;
        };
        if (card.name == "quillmarProductCard"_L1 && tree.findBelow(card, isName))
            return &card;
    }
    return nullptr;
}

const Widget *componentCard(const WidgetTree &tree, const QString &product, const QString &component)
{
    const Widget *owner = productCard(tree, product);
    if (!owner)
        return nullptr;
    const auto isCard = [](const Widget &widget) { return widget.name == "quillmarComponentCard"_L1; };
    const auto isTitle = [&component](const Widget &widget) {
        return isLabel(widget) && widget.text == component;
    };
    const QList<const Widget *> cards = tree.allBelow(*owner, isCard);
    for (const Widget *card : cards) {
        if (tree.findBelow(*card, isTitle))
            return card;
    }
    return nullptr;
}

const Widget *foldButton(const WidgetTree &tree, const QString &product)
{
    const Widget *card = productCard(tree, product);
    return card ? tree.findBelow(*card, [](const Widget &w) { return w.checkable && isPushButton(w); })
                : nullptr;
}

} // namespace

const Widget *languageSelector(const WidgetTree &tree)
{
    return tree.find([](const Widget &widget) { return widget.items.contains(u"English"_s); });
}

const Widget *userNameField(const WidgetTree &tree)
{
    return tree.find([](const Widget &w) { return w.parent == 0 && w.role == "field"_L1 && !w.secret; });
}

const Widget *passwordField(const WidgetTree &tree)
{
    return tree.find([](const Widget &w) { return w.parent == 0 && w.role == "field"_L1 && w.secret; });
}

const Widget *searchField(const WidgetTree &tree)
{
    return tree.find([](const Widget &w) { return w.parent > 0 && w.role == "field"_L1; });
}

const Widget *categoryBox(const WidgetTree &tree)
{
    return tree.find([](const Widget &w) { return w.kind() == "CategoryComboBox"_L1; });
}

const Widget *statusLabel(const WidgetTree &tree)
{
    return tree.find([](const Widget &widget) {
        const QString key = widget.properties["quillmarTextKey"_L1].toString();
        return widget.parent == 0 && isLabel(widget) &&
               (key.startsWith("Status."_L1) || key.startsWith("Session."_L1) ||
                key.startsWith("Logout."_L1));
    });
}

const Widget *quotaLabel(const WidgetTree &tree)
{
    return tree.find([](const Widget &widget) {
        return widget.properties["quillmarTextKey"_L1].toString().startsWith("Quota."_L1);
    });
}

const Widget *updateBanner(const WidgetTree &tree)
{
    return tree.find([](const Widget &widget) { return widget.name == "quillmarUpdateBanner"_L1; });
}

DockRobot::Choice buttonWithText(const QString &text)
{
    return [text](const WidgetTree &tree) {
        return tree.find([&text](const Widget &widget) {
            return widget.visible && isPushButton(widget) && withoutIsolates(widget.text) == text;
        });
    };
}

void QuillmarPanel::assumeLanguage(const QString &code)
{
    language_ = code;
    texts_ = ModuleTexts(code);
}

bool QuillmarPanel::setLanguage(const QString &code)
{
    assumeLanguage(code);
    return robot_.choose(languageSelector, code == "en-US"_L1 ? u"English"_s : u"فارسی"_s);
}

bool QuillmarPanel::typeAccount(const QString &name, const QString &password)
{
    return robot_.fill(userNameField, name, u"the user name field"_s) &&
           robot_.fill(passwordField, password, u"the password field"_s);
}

bool QuillmarPanel::clickButton(const QString &key)
{
    return robot_.click(buttonWithText(text(key)), u"the button "_s + key);
}

bool QuillmarPanel::signIn(const QString &name, const QString &password)
{
    return typeAccount(name, password) && clickButton(u"Login.Button"_s);
}

bool QuillmarPanel::enter(const QString &name, const QString &password)
{
    return signIn(name, password) && waitForHome();
}

bool QuillmarPanel::showsSignInView() const
{
    const WidgetTree tree = robot_.tree();
    const Widget *name = userNameField(tree);
    const Widget *password = passwordField(tree);
    const Widget *search = searchField(tree);
    return name && name->visible && password && password->visible && !(search && search->visible) &&
           buttonWithText(text(u"Login.Button"_s))(tree) && !buttonWithText(text(u"Logout.Button"_s))(tree);
}

bool QuillmarPanel::waitForHome()
{
    return waitForStatus(u"Status.LoginSuccess"_s) &&
           robot_.waitFor(
               [](const WidgetTree &tree) {
                   return tree.find(
                       [](const Widget &w) { return w.name == "quillmarProductCard"_L1 && w.visible; });
               },
               u"the list of products"_s);
}

bool QuillmarPanel::waitForStatus(const QString &key)
{
    const auto shown = [&key](const WidgetTree &tree) {
        const Widget *label = statusLabel(tree);
        return label && label->properties["quillmarTextKey"_L1].toString() == key;
    };
    if (robot_.waitFor(shown, u"the status "_s + key))
        return true;
    robot_.explain(statusKey());
    return false;
}

QString QuillmarPanel::statusKey() const
{
    const WidgetTree tree = robot_.tree();
    const Widget *label = statusLabel(tree);
    return label ? label->properties["quillmarTextKey"_L1].toString() : QString();
}

bool QuillmarPanel::waitForDailyQuota(int remaining, int limit)
{
    return waitForQuota(text(u"Quota.Daily"_s).arg(remaining).arg(limit));
}

bool QuillmarPanel::waitForQuota(const QString &text)
{
    return robot_.waitFor(
        [&text](const WidgetTree &tree) {
            const Widget *label = quotaLabel(tree);
            return label && label->visible && label->text == text &&
                   label->rect.height() >= label->needed.height();
        },
        u"the quota “%1”"_s.arg(text));
}

bool QuillmarPanel::waitForBanner()
{
    return robot_.waitFor(
        [](const WidgetTree &tree) {
            const Widget *banner = updateBanner(tree);
            return banner && banner->visible;
        },
        u"the update banner"_s);
}

bool QuillmarPanel::search(const QString &words)
{
    return robot_.fill(searchField, words, u"the search field"_s);
}

bool QuillmarPanel::chooseCategory(const QString &category)
{
    return robot_.choose(categoryBox, category);
}

QStringList QuillmarPanel::visibleProducts() const
{
    QStringList names;
    const WidgetTree tree = robot_.tree();
    for (const Widget &card : tree.all()) {
        if (card.name != "quillmarProductCard"_L1 || !card.visible)
            continue;
        const auto isName = [](const Widget &w) {
            return isLabel(w) && w.styleSheet.contains("font-weight: 700"_L1);
        };
        if (const Widget *name = tree.findBelow(card, isName))
            names.append(name->text);
    }
    return names;
}

QStringList QuillmarPanel::categories() const
{
    const WidgetTree tree = robot_.tree();
    const Widget *box = categoryBox(tree);
    return box ? box->items : QStringList();
}

bool QuillmarPanel::openComponents(const QString &product)
{
    const auto fold = [&product](const WidgetTree &tree) { return foldButton(tree, product); };
    const auto isOpen = [&fold](const WidgetTree &tree) {
        const Widget *button = fold(tree);
        return button && button->checked;
    };
    const QString what = u"the contents of "_s + product;
    if (!robot_.waitFor([&fold](const WidgetTree &tree) { return fold(tree); }, what))
        return false;
    return isOpen(robot_.tree()) || (robot_.click(fold, what) && robot_.waitFor(isOpen, what));
}

bool QuillmarPanel::press(const ComponentButton &button)
{
    return openComponents(button.product) &&
           robot_.click(buttonChoice(button), button.key + u" of "_s + button.component);
}

bool QuillmarPanel::pressUntil(const ComponentButton &button, const std::function<bool()> &effect)
{
    return press(button) && waitUntil(effect);
}

bool QuillmarPanel::pressBoth(const ComponentButton &lower, const ComponentButton &upper)
{
    return openComponents(lower.product) && openComponents(upper.product) &&
           robot_.clickBoth(buttonChoice(lower), buttonChoice(upper), u"two buttons"_s);
}

bool QuillmarPanel::waitForOutcome(const ComponentButton &button, const QString &key)
{
    const auto shown = [&](const WidgetTree &tree) {
        const Widget *label = outcomeLabel(tree, button);
        return label && label->visible && label->properties["textKey"_L1].toString() == key &&
               label->rect.height() >= label->needed.height();
    };
    if (robot_.waitFor(shown, key + u" under "_s + button.component))
        return true;
    robot_.explain(outcome(button));
    return false;
}

QString QuillmarPanel::outcome(const ComponentButton &button) const
{
    const WidgetTree tree = robot_.tree();
    const Widget *label = outcomeLabel(tree, button);
    return label && label->visible ? label->properties["textKey"_L1].toString() : QString();
}

bool QuillmarPanel::showOutcome(const ComponentButton &button)
{
    const auto label = [&](const WidgetTree &tree) { return outcomeLabel(tree, button); };
    return robot_.scrollTo(label, u"the status under "_s + button.component);
}

QString QuillmarPanel::outcomePath(const ComponentButton &button) const
{
    const WidgetTree tree = robot_.tree();
    const Widget *label = outcomeLabel(tree, button);
    return label ? label->properties["path"_L1].toString() : QString();
}

bool QuillmarPanel::run(const ComponentButton &button, const QString &key)
{
    return press(button) && waitForOutcome(button, key);
}

DockRobot::Choice QuillmarPanel::buttonChoice(const ComponentButton &button) const
{
    return [button, caption = text(button.key)](const WidgetTree &tree) -> const Widget * {
        const Widget *card = componentCard(tree, button.product, button.component);
        if (!card)
            return nullptr;
        return tree.findBelow(*card, [&caption](const Widget &widget) {
            return isPushButton(widget) && withoutIsolates(widget.text) == caption;
        });
    };
}

// The labels of a card are its title, then one status per button in the order of the buttons.
const Widget *QuillmarPanel::outcomeLabel(const WidgetTree &tree, const ComponentButton &button) const
{
    const Widget *card = componentCard(tree, button.product, button.component);
    if (!card)
        return nullptr;
    const QList<const Widget *> labels = tree.allBelow(*card, isLabel);
    if (labels.size() < 2)
        return nullptr;
    return button.key == "Component.Add"_L1 ? labels[1] : labels.last();
}

} // namespace quillmar::test
