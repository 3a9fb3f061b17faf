#pragma once

#include "plugin/locale_table.h"
#include "plugin/plugin_module.h"
#include "tests/support/libobs_fake/libobs_fake.h"

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace quillmar::test
{

/// Keeps one token, as a store on disk would.
class KeptToken : public SessionStore
{
public:
    explicit KeptToken(QString token) : token_(std::move(token)) {}
    bool save(const QString &token) override
    {
        token_ = token;
        return true;
    }
    QString load() override { return token_; }
    bool remove() override
    {
        token_.clear();
        return true;
    }

private:
    QString token_;
};

/// A module in an OBS of its own, not yet loaded.
struct Host {
    explicit Host(const QString &keptToken = {})
        : module(nullptr, locale, std::make_unique<KeptToken>(keptToken))
    {
        obs.setMainWindow(&window);
        obs.setConfigFolder(folder.path().toUtf8());
        obs.setModuleBinary(folder.path().toUtf8() + "/bin/quillmar-obs-plugin.so");
        obs.setTexts("fa-IR", {{"Login.Button", "ورود"}});
        obs.setTexts("en-US", {{"Login.Button", "Sign in"}});
    }

    void writeSettings(const QByteArray &content)
    {
        QFile file(folder.filePath(QStringLiteral("settings.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

    QByteArray settings() const
    {
        QFile file(folder.filePath(QStringLiteral("settings.ini")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QWidget *panel() const { return obs.dock(QStringLiteral("quillmar-dock")); }

    QPushButton *button(const QString &text) const
    {
        for (QPushButton *button : panel()->findChildren<QPushButton *>()) {
            if (button->text() == text) {
                return button;
            }
        }
        return nullptr;
    }

    QStringList logLines() const
    {
        QStringList lines;
        for (const LibobsFake::LogLine &line : obs.log()) {
            lines.append(QStringLiteral("%1 %2").arg(line.level).arg(line.text));
        }
        return lines;
    }

    /// Types into both fields and presses the sign-in button.
    void signIn() const
    {
        const QList<QLineEdit *> fields = panel()->findChildren<QLineEdit *>();
        fields.at(0)->setText(QStringLiteral("sara"));
        fields.at(1)->setText(QStringLiteral("secret"));
        button(QStringLiteral("ورود"))->click();
    }

    QTemporaryDir folder;
    LibobsFake obs;
    QMainWindow window;
    LocaleTable locale;
    PluginModule module;
};

} // namespace quillmar::test
