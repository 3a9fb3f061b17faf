#pragma once

#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/windows_host/loaded_module.h"
#include "tests/windows_host/module_folder.h"

#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <memory>

namespace quillmar::test
{

/// An OBS with a main window, a folder of configuration and the module's own texts.
class SmallObs
{
public:
    /// `configFolder` exists.
    explicit SmallObs(const ModuleFolder &module, const QString &configFolder);

    LibobsFake obs;
    std::unique_ptr<QMainWindow> window;

    /// Lines of the log, each behind its level.
    QStringList log() const;
};

/// The module's panel in a dock of OBS's main window, shown, and its widgets by what they say.
class ShownDock
{
public:
    explicit ShownDock(SmallObs &obs);

    QWidget &panel() const { return *panel_; }
    QLineEdit *field(int place) const;
    QComboBox *language() const;

    /// The visible button or label whose text has the key `key`; null when there is none.
    QPushButton *button(const QByteArray &text) const;
    QLabel *label(const QByteArray &key) const;

    /// Picture of each product's card, null while it has none, in the order of the list.
    QList<QPixmap> previews() const;

    /// Keeps a picture of the whole window as `name`, with the scale of the screen where that is not 1.
    bool keepPicture(const QString &name) const;

private:
    QMainWindow &window_;
    QWidget *panel_;
};

/// Texts on `panel` that are cut off, run out of it or have characters without a glyph, each with the reason.
QStringList unreadableTexts(const QWidget &panel);

} // namespace quillmar::test
