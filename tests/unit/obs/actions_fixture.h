#pragma once

#include "obs/component_actions.h"
#include "tests/support/libobs_fake/libobs_fake.h"

#include <QLabel>
#include <QNetworkAccessManager>
#include <QPushButton>
#include <QTemporaryDir>

#include <memory>

namespace quillmar::test
{

/// Collects the status keys that a label is given, and can do something at the moment one is set, in the turn
/// after it.
class StatusRecorder : public QObject
{
    Q_OBJECT

public:
    explicit StatusRecorder(QLabel *label);

    const QStringList &keys() const { return keys_; }

    /// `action` runs as the first queued call after `key` is set, so before any answer to what starts then.
    void at(const QString &key, std::function<void()> action);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QStringList keys_;
    QString awaited_;
    std::function<void()> action_;
};

/// A product of five components, the widget that shows it, and the real downloads behind it.
struct ActionsFixture {
    /// Positions in the product.
    enum Component { Overlay, Folder, Nothing, Stinger, Missing };

    ActionsFixture();

    /// Puts the package into the cache, so that nothing is asked of the service.
    void storePackage() const;

    void makeActions(bool expanded = true);
    void useLanguage(QLatin1StringView code);

    /// What a card or the widget itself shows. Null when there is no such thing.
    QFrame *card(Component component) const;
    QPushButton *addButton(Component component) const;
    QPushButton *downloadButton(Component component) const;
    QPushButton *packageButton() const;
    QPushButton *toggle() const;

    /// The label that belongs to an action button.
    QLabel *status(const QPushButton *button) const;
    QString statusKey(const QPushButton *button) const;

    LibobsFake obs;
    QTemporaryDir folder;
    QString root = folder.filePath(QStringLiteral("دانلود"));
    QString token = QStringLiteral("token");
    quint64 generation = 1;
    ComponentProduct product;
    QNetworkAccessManager network;
    std::unique_ptr<ProductDownloads> downloads;
    QString language;
    Localisation localisation;
    std::unique_ptr<ComponentActions> actions;
};

} // namespace quillmar::test
