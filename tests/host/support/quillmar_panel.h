#pragma once

#include "tests/host/support/dock_robot.h"

#include <QStringList>

namespace quillmar::test
{

/// A component as the panel shows it: which product's card, which card inside, and by which button.
struct ComponentButton {
    QString product;
    QString component;
    /// Text key of the button: "Component.Add" or "Product.Download".
    QString key = QStringLiteral("Component.Add");
};

/// The module's panel in a user's terms: language, account, products, components.
class QuillmarPanel
{
public:
    explicit QuillmarPanel(DockRobot &robot) : robot_(robot) {}

    DockRobot &robot() { return robot_; }
    const QString &problem() const { return robot_.problem(); }
    /// The language that texts are looked up in: what the panel shows now.
    const QString &language() const { return language_; }
    /// Tells the panel object what the panel shows already, without a click.
    void assumeLanguage(const QString &code);
    QString text(const QString &key) const { return texts_.text(key); }

    bool setLanguage(const QString &code);
    bool typeAccount(const QString &name, const QString &password);
    bool clickButton(const QString &key);
    bool signIn(const QString &name, const QString &password);
    /// Signs in and waits for the list of products.
    bool enter(const QString &name, const QString &password);
    /// Waits until somebody is signed in and the products are listed.
    bool waitForHome();
    /// The fields to sign in with can be seen, and nothing of the home view.
    bool showsSignInView() const;
    bool waitForStatus(const QString &key);
    QString statusKey() const;

    /// Waits for the quota “`remaining` of `limit` today”, whole.
    bool waitForDailyQuota(int remaining, int limit);
    /// Waits for a quota label with exactly this text, whole.
    bool waitForQuota(const QString &text);
    bool waitForBanner();

    bool search(const QString &words);
    bool chooseCategory(const QString &category);
    QStringList visibleProducts() const;
    QStringList categories() const;

    /// Unfolds the list of components of a product; nothing to do when it is open.
    bool openComponents(const QString &product);
    bool press(const ComponentButton &button);
    /// Presses and waits for `effect`, where the status before and after is the same.
    bool pressUntil(const ComponentButton &button, const std::function<bool()> &effect);
    /// Both in one breath. The upper one comes second: its status line pushes everything below it down.
    bool pressBoth(const ComponentButton &lower, const ComponentButton &upper);
    bool waitForOutcome(const ComponentButton &button, const QString &key);
    /// Text key under the button, empty while it shows nothing.
    QString outcome(const ComponentButton &button) const;
    /// Scrolls until the status under the button can be seen.
    bool showOutcome(const ComponentButton &button);
    /// File that the status under the button names.
    QString outcomePath(const ComponentButton &button) const;
    /// Opens, presses and waits until the status under the button is `key`.
    bool run(const ComponentButton &button, const QString &key = QStringLiteral("Component.Added"));

private:
    DockRobot::Choice buttonChoice(const ComponentButton &button) const;
    const Widget *outcomeLabel(const WidgetTree &tree, const ComponentButton &button) const;

    DockRobot &robot_;
    QString language_ = QStringLiteral("fa-IR");
    ModuleTexts texts_{language_};
};

/// Choices among the widgets of the panel.
const Widget *quotaLabel(const WidgetTree &tree);
const Widget *updateBanner(const WidgetTree &tree);
const Widget *languageSelector(const WidgetTree &tree);
const Widget *userNameField(const WidgetTree &tree);
const Widget *passwordField(const WidgetTree &tree);
const Widget *searchField(const WidgetTree &tree);
const Widget *categoryBox(const WidgetTree &tree);
const Widget *statusLabel(const WidgetTree &tree);
/// The button whose text is `text`, apart from invisible characters.
DockRobot::Choice buttonWithText(const QString &text);

} // namespace quillmar::test
