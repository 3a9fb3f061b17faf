#include "tests/unit/obs/actions_fixture.h"

#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "tests/support/zip_builder/zip_builder.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QFrame>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

const QHash<QByteArray, QByteArray> English{
    {"Component.Contents", "Contents (%1), not %2"},
    {"Component.Add", "Add to OBS"},
    {"Product.Download", "Download, not to OBS"},
    {"Component.FullDownload", "Whole package"},
    {"Component.Added", "Added"},
    {"Download.Success", "Downloaded"},
};

const QHash<QByteArray, QByteArray> Persian{
    {"Component.Contents", "محتوا (%1)"},      {"Component.Add", "OBS: افزودن به OBS"},
    {"Product.Download", "دانلود، نه در OBS"}, {"Component.FullDownload", "کل بسته"},
    {"Component.Added", "افزوده شد"},          {"Download.Success", "دانلود شد"},
};

ProductComponent component(const QString &name, const QString &path, const QString &mode, const QString &type)
{
    ProductComponent made;
    made.component_name = name;
    made.asset_path = path;
    made.asset_kind = path.isEmpty() ? QString() : u"file"_s;
    made.insert_mode = mode;
    made.source_type = type;
    made.auto_insert_enabled = true;
    return made;
}

ComponentProduct fiveComponents()
{
    ComponentProduct product;
    product.product_key = u"night"_s;
    product.product_version = u"1.0"_s;
    product.file_name = u"night.zip"_s;
    product.components = {component(u"Frame"_s, u"assets/frame.png"_s, u"overlay"_s, u"image"_s),
                          component(u"Fonts"_s, u"fonts"_s, {}, {}),
                          component(u"<b>Guide</b> %1"_s, {}, {}, {}),
                          component(u"Sting"_s, u"sting.webm"_s, u"stinger_transition"_s, u"media"_s),
                          component(u"Gone"_s, u"assets/gone.png"_s, u"overlay"_s, u"image"_s)};
    product.components[ActionsFixture::Folder].asset_kind = u"folder"_s;
    return product;
}

} // namespace

StatusRecorder::StatusRecorder(QLabel *label) : QObject(label)
{
    label->installEventFilter(this);
}

void StatusRecorder::at(const QString &key, std::function<void()> action)
{
    awaited_ = key;
    action_ = std::move(action);
}

bool StatusRecorder::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::DynamicPropertyChange &&
        static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() == "textKey") {
        keys_.append(watched->property("textKey").toString());
        if (keys_.last() == awaited_) {
            QMetaObject::invokeMethod(qApp, std::exchange(action_, {}), Qt::QueuedConnection);
        }
    }
    return QObject::eventFilter(watched, event);
}

ActionsFixture::ActionsFixture()
    : product(fiveComponents()),
      downloads(std::make_unique<ProductDownloads>(&network, root)),
      localisation(
          [this](const char *key, const char **text) {
              const QHash<QByteArray, QByteArray> &table = language == EnglishCode ? English : Persian;
              const auto found = table.constFind(key);
              if (found == table.constEnd()) {
                  return false;
              }
              *text = found->constData();
              return true;
          },
          [this](const QString &code) { language = code; })
{
    obs.setCurrentScene(obs.addSource(u"scene"_s, u"صحنه\u200Cها"_s));
    downloads->setCallbacks({[this] { return token; }, [this] { return generation; }, [] {}, [] {}});
    localisation.setLanguage(EnglishCode);
}

void ActionsFixture::storePackage() const
{
    const QByteArray zip =
        zipOf({fileItem("assets/frame.png"), fileItem("fonts/a.ttf"), fileItem("sting.webm")});
    const QString path = cachedPackagePath(root, product);
    QFile file{path};
    if (!QDir{}.mkpath(QFileInfo{path}.path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(zip) != zip.size()) {
        qFatal("no package for the test");
    }
    file.close();
    const QByteArray digest = QCryptographicHash::hash(zip, QCryptographicHash::Sha256).toHex();
    if (!writePackageRecord(root, product, zip.size(), digest)) {
        qFatal("no record for the test");
    }
}

void ActionsFixture::makeActions(bool expanded)
{
    actions = std::make_unique<ComponentActions>(product, downloads.get(), localisation, nullptr, expanded);
    actions->retranslate(localisation.direction());
}

void ActionsFixture::useLanguage(QLatin1StringView code)
{
    localisation.setLanguage(code);
    actions->retranslate(localisation.direction());
}

QFrame *ActionsFixture::card(Component component) const
{
    return actions->findChildren<QFrame *>(u"quillmarComponentCard"_s).value(component);
}

QPushButton *ActionsFixture::addButton(Component component) const
{
    const QList<QPushButton *> buttons = card(component)->findChildren<QPushButton *>();
    return buttons.size() == 2 ? buttons.first() : nullptr;
}

QPushButton *ActionsFixture::downloadButton(Component component) const
{
    const QList<QPushButton *> buttons = card(component)->findChildren<QPushButton *>();
    return buttons.isEmpty() ? nullptr : buttons.last();
}

QPushButton *ActionsFixture::packageButton() const
{
    return actions->findChildren<QPushButton *>(Qt::FindDirectChildrenOnly).value(1);
}

QPushButton *ActionsFixture::toggle() const
{
    return actions->findChildren<QPushButton *>(Qt::FindDirectChildrenOnly).value(0);
}

QLabel *ActionsFixture::status(const QPushButton *button) const
{
    const QObjectList siblings = button->parent()->children();
    for (qsizetype index = siblings.indexOf(button) + 1; index < siblings.size(); ++index) {
        if (auto *label = qobject_cast<QLabel *>(siblings.at(index))) {
            return label;
        }
    }
    return nullptr;
}

QString ActionsFixture::statusKey(const QPushButton *button) const
{
    return status(button)->property("textKey").toString();
}

} // namespace quillmar::test
