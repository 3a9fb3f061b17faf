#include "catalogue/product_details.h"
#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/unit/ui/dock_fixture.h"
#include "tests/unit/ui/dock_product.h"

#include <QAccessible>
#include <QFocusFrame>
#include <QScrollArea>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

const DockProduct product{u"A frame for the camera."_s};

struct Met {
    QAccessible::Role role;
    QAccessible::State state;
    QString name;
    QString description;
    QString kind;
};

/// Everything that a screen reader meets below `root`, in its order; hidden things left out.
QList<Met> met(QObject *root)
{
    QList<Met> list;
    const std::function<void(QAccessibleInterface *)> walk = [&](QAccessibleInterface *interface) {
        if (!interface || !interface->isValid() || interface->state().invisible)
            return;
        const QObject *object = interface->object();
        list.append({interface->role(), interface->state(), interface->text(QAccessible::Name),
                     interface->text(QAccessible::Description),
                     object ? QString::fromLatin1(object->metaObject()->className()) : QString()});
        for (int child = 0; child < interface->childCount(); ++child)
            walk(interface->child(child));
    };
    walk(QAccessible::queryAccessibleInterface(root));
    return list;
}

/// A status that has nothing to say yet can be selected by the mouse, and says nothing either way.
bool isEmptyStatus(const Met &object)
{
    return object.role == QAccessible::StaticText && object.name.isEmpty();
}

bool needsName(const Met &object)
{
    if (isEmptyStatus(object))
        return false;
    static const QList<QAccessible::Role> named{
        QAccessible::Button,       QAccessible::PushButton, QAccessible::ComboBox,
        QAccessible::EditableText, QAccessible::Graphic,    QAccessible::StaticText,
        QAccessible::CheckBox,     QAccessible::Dialog,     QAccessible::ListItem};
    return object.state.focusable || named.contains(object.role);
}

QStringList nameless(const QList<Met> &objects)
{
    QStringList list;
    for (const Met &object : objects) {
        if (needsName(object) && object.name.trimmed().isEmpty())
            list.append(u"%1, role %2"_s.arg(object.kind).arg(object.role));
    }
    return list;
}

/// What is told about all of them. On Unix the name of a drop-down is what is chosen in it, and what the
/// choice is about stands in its description.
QStringList namesOf(const QList<Met> &objects)
{
    QStringList names;
    for (const Met &object : objects) {
        if (needsName(object))
            names.append(object.name);
        if (object.role == QAccessible::ComboBox)
            names.append(object.description);
    }
    return names;
}

/// What the screen reader is asked to say.
QStringList said;

void hear(QAccessibleEvent *event)
{
    if (event->type() == QAccessible::Announcement)
        said.append(static_cast<QAccessibleAnnouncementEvent *>(event)->message());
}

} // namespace

class AccessibleNamesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void languages_data();
    void signInViewHasNames_data() { languages_data(); }
    void signInViewHasNames();
    void catalogueHasNames_data() { languages_data(); }
    void catalogueHasNames();
    void detailsHaveNames_data() { languages_data(); }
    void detailsHaveNames();
    void namesFollowALanguageSwitch();
    void listIsNamedByTheCategoryThatItShows();
    void focusRingIsNotMet();
    void secretIsNotReadOut();
    void statusIsSaidOnce();

private:
    static void fill(Dock &dock);
    LibobsFake obs_;
};

void AccessibleNamesTest::init()
{
    obs_.setConfigurable(u"image_source"_s, true);
    QAccessible::setActive(true);
}

void AccessibleNamesTest::languages_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("english") << u"en-US"_s;
    QTest::newRow("persian") << u"fa-IR"_s;
}

void AccessibleNamesTest::fill(Dock &dock)
{
    dock.panel.showHomeView();
    dock.panel.setProducts({product(u"Plain"_s, false), product(u"Pack"_s, true)});
    dock.panel.showUpdate({u"9.0.0"_s, QUrl(u"https://quillmar.example/x"_s), false, u"Notes"_s}, true);
    dock.panel.showStatus(AccountView::Tone::Success, "Status.LoginSuccess"_L1);
    const auto buttons = dock.list->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->isCheckable())
            button->setChecked(true);
    }
}

void AccessibleNamesTest::signInViewHasNames()
{
    QFETCH(QString, language);
    Dock dock(language);
    dock.panel.showStatus(AccountView::Tone::Failure, "Status.FieldsRequired"_L1);
    dock.panel.show();
    const QList<Met> objects = met(&dock.panel);
    QCOMPARE(nameless(objects), QStringList());
    const QStringList names = namesOf(objects);
    for (const char *key :
         {"Language.Label", "Login.Username", "Login.Password", "Login.Button", "Status.FieldsRequired"})
        QVERIFY2(names.contains(dock.texts.translate(key)), key);
}

void AccessibleNamesTest::catalogueHasNames()
{
    QFETCH(QString, language);
    Dock dock(language);
    fill(dock);
    dock.panel.show();
    const QList<Met> objects = met(&dock.panel);
    QCOMPARE(nameless(objects), QStringList());
    const QStringList names = namesOf(objects);
    for (const char *key :
         {"Logout.Button", "Gallery.Refresh", "Products.SearchPlaceholder", "Products.CategoryFilter",
          "Products.AllCategories", "Product.Download", "Gallery.Details", "Component.FullDownload",
          "Update.Download", "Status.LoginSuccess"})
        QVERIFY2(names.contains(dock.texts.translate(key)), key);
    QVERIFY(names.contains(u"Plain"_s));
    QVERIFY(names.contains(u"Webcam frame"_s));
}

void AccessibleNamesTest::detailsHaveNames()
{
    QFETCH(QString, language);
    const Localisation texts = LocaleFiles().localisation(language);
    const ComponentProduct pack = parseComponentProduct(product(u"Pack"_s, true));
    QWidget parent;
    ProductDetails details(pack, texts, nullptr, nullptr, &parent);
    details.setAttribute(Qt::WA_DeleteOnClose, false);
    details.applyLanguage(texts.isRightToLeft());
    details.show();
    const QList<Met> objects = met(&details);
    QCOMPARE(nameless(objects), QStringList());
    const QStringList names = namesOf(objects);
    for (const char *key : {"Gallery.Select", "Gallery.Enlarge", "Component.FullDownload"})
        QVERIFY2(names.contains(texts.translate(key)), key);
    QVERIFY(names.contains(u"Pack"_s));
    QVERIFY(names.contains(QString(texts.translate("Gallery.Details") + u" — Pack"_s)));
}

/// In one language or the other, but never in both: every name that has a translation is translated.
void AccessibleNamesTest::namesFollowALanguageSwitch()
{
    Dock dock(u"en-US"_s);
    fill(dock);
    dock.panel.show();
    const QStringList english = namesOf(met(&dock.panel));
    dock.texts.setLanguage(u"fa-IR"_s);
    dock.panel.retranslate();
    const QStringList persian = namesOf(met(&dock.panel));
    QCOMPARE(persian.size(), english.size());
    const QStringList same{u"Quillmar"_s, u"فارسی"_s, u"English"_s, u"Overlays"_s,
                           u"Notes"_s,    u"Plain"_s, u"Pack"_s,    u"Webcam frame"_s};
    for (qsizetype place = 0; place < english.size(); ++place)
        QVERIFY2(english.at(place) != persian.at(place) || same.contains(english.at(place)),
                 qPrintable(english.at(place)));
    dock.texts.setLanguage(u"en-US"_s);
    dock.panel.retranslate();
    QCOMPARE(namesOf(met(&dock.panel)), english);
}

void AccessibleNamesTest::listIsNamedByTheCategoryThatItShows()
{
    Dock dock(u"en-US"_s);
    fill(dock);
    dock.panel.show();
    const auto *area = dock.list->findChild<QScrollArea *>();
    QCOMPARE(area->accessibleName(), u"All categories"_s);
    dock.list->findChild<QComboBox *>()->setCurrentIndex(1);
    QCOMPARE(area->accessibleName(), u"Overlays"_s);
    dock.panel.setProducts({});
    QCOMPARE(area->accessibleName(), u"All categories"_s);
    dock.texts.setLanguage(u"fa-IR"_s);
    dock.panel.retranslate();
    QCOMPARE(area->accessibleName(), dock.texts.translate("Products.AllCategories"));
}

void AccessibleNamesTest::focusRingIsNotMet()
{
    Dock dock(u"en-US"_s);
    fill(dock);
    dock.panel.show();
    dock.panel.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dock.panel));
    dock.logout()->setFocus(Qt::TabFocusReason);
    const auto objects = met(&dock.panel);
    for (const Met &object : objects)
        QVERIFY(!object.kind.contains(u"FocusRing"_s));
    QVERIFY(dock.panel.findChild<QFocusFrame *>()->isVisible());
}

void AccessibleNamesTest::secretIsNotReadOut()
{
    Dock dock(u"en-US"_s);
    dock.field(Dock::Password)->setText(u"hunter2"_s);
    dock.panel.show();
    QAccessibleInterface *field = QAccessible::queryAccessibleInterface(dock.field(Dock::Password));
    QVERIFY(field->state().passwordEdit);
    QVERIFY(!field->text(QAccessible::Value).contains(u"hunter2"_s));
    QAccessibleTextInterface *text = field->textInterface();
    QVERIFY(!text->text(0, 20).contains(u"hunter2"_s));
}

/// When it comes, and not again when the language is switched.
void AccessibleNamesTest::statusIsSaidOnce()
{
    Dock dock(u"en-US"_s);
    fill(dock);
    dock.panel.show();
    said.clear();
    const QAccessible::UpdateHandler before = QAccessible::installUpdateHandler(hear);
    dock.panel.showStatus(AccountView::Tone::Failure, "Status.LoginFailed"_L1);
    const auto buttons = dock.list->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->text() == "Add to OBS"_L1)
            button->click();
    }
    dock.texts.setLanguage(u"fa-IR"_s);
    dock.panel.retranslate();
    QAccessible::installUpdateHandler(before);
    const Localisation texts = LocaleFiles().localisation(u"en-US"_s);
    QCOMPARE(said, QStringList({texts.translate("Status.LoginFailed"), texts.translate("Download.Failed")}));
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::AccessibleNamesTest)
#include "accessible_names_test.moc"
