#include "tests/windows_host/shown_dock.h"

#include "tests/support/locale_files.h"

#include <QDir>
#include <QFrame>
#include <QGlyphRun>
#include <QTextLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr QSize WindowSize{760, 900};

/// As a widget shows it: with the shapes of the font that Windows picks for each letter.
bool hasAllGlyphs(const QString &text, const QFont &font)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    const QList<QGlyphRun> runs = layout.glyphRuns();
    return std::ranges::none_of(runs, [](const QGlyphRun &run) { return run.glyphIndexes().contains(0); });
}

QString textOf(const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return label->pixmap().isNull() ? label->text() : QString();
    const auto *button = qobject_cast<const QAbstractButton *>(&widget);
    return button ? button->text() : QString();
}

QSize neededFor(const QWidget &widget)
{
    if (widget.hasHeightForWidth())
        return {widget.minimumSizeHint().width(), widget.heightForWidth(widget.width())};
    return widget.sizeHint();
}

QString faultOf(const QWidget &widget, const QString &text)
{
    const QSize needed = neededFor(widget);
    if (needed.width() > widget.width() || needed.height() > widget.height())
        return u"is cut off"_s;
    return hasAllGlyphs(text, widget.font()) ? QString() : u"has characters without a glyph"_s;
}

} // namespace

SmallObs::SmallObs(const ModuleFolder &module, const QString &configFolder)
    : window(std::make_unique<QMainWindow>())
{
    obs.setMainWindow(window.get());
    obs.setModuleBinary(module.module().toUtf8());
    obs.setConfigFolder(configFolder.toUtf8());
    for (const QString &language : {u"fa-IR"_s, u"en-US"_s})
        obs.setTexts(language.toLatin1(), LocaleFiles().texts(language));
    window->setWindowTitle(u"OBS"_s);
    window->resize(WindowSize);
}

QStringList SmallObs::log() const
{
    QStringList lines;
    for (const LibobsFake::LogLine &line : obs.log())
        lines.append(u"%1 %2"_s.arg(line.level).arg(line.text));
    return lines;
}

ShownDock::ShownDock(SmallObs &obs) : window_(*obs.window), panel_(obs.obs.dock(u"quillmar-dock"_s))
{
    auto *dock = new QDockWidget(u"Quillmar"_s, &window_);
    dock->setWidget(panel_);
    window_.addDockWidget(Qt::RightDockWidgetArea, dock);
    window_.setCentralWidget(new QWidget);
    window_.resizeDocks({dock}, {420}, Qt::Horizontal);
    window_.show();
}

QLineEdit *ShownDock::field(int place) const
{
    return panel_->findChildren<QLineEdit *>().value(place);
}

QComboBox *ShownDock::language() const
{
    return panel_->findChild<QComboBox *>();
}

QPushButton *ShownDock::button(const QByteArray &text) const
{
    const auto buttons = panel_->findChildren<QPushButton *>();
    const auto found = std::ranges::find_if(buttons, [&](const QPushButton *button) {
        return button->isVisible() && button->text() == QString::fromUtf8(text);
    });
    return found == buttons.cend() ? nullptr : *found;
}

QLabel *ShownDock::label(const QByteArray &key) const
{
    const auto labels = panel_->findChildren<QLabel *>();
    const auto found = std::ranges::find_if(labels, [&](const QLabel *label) {
        return label->isVisible() && label->property("quillmarTextKey").toString() == QLatin1StringView(key);
    });
    return found == labels.cend() ? nullptr : *found;
}

QList<QPixmap> ShownDock::previews() const
{
    QList<QPixmap> found;
    const auto cards = panel_->findChildren<QFrame *>(u"quillmarProductCard"_s);
    for (const QFrame *card : cards) {
        // The preview is the first label of a card.
        const QLabel *preview = card->findChild<QLabel *>(Qt::FindDirectChildrenOnly);
        found.append(preview ? preview->pixmap() : QPixmap());
    }
    return found;
}

bool ShownDock::keepPicture(const QString &name) const
{
    const qreal scale = window_.devicePixelRatio();
    const QString suffix = scale > 1 ? u"-%1-percent"_s.arg(qRound(scale * 100)) : QString();
    const QDir folder(QStringLiteral(QUILLMAR_PICTURES));
    return QDir().mkpath(folder.path()) && window_.grab().save(folder.filePath(name + suffix + u".png"));
}

QStringList unreadableTexts(const QWidget &panel)
{
    QStringList found;
    const auto widgets = panel.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const QString text = textOf(*widget);
        if (text.isEmpty() || !widget->isVisible())
            continue;
        if (const QString fault = faultOf(*widget, text); !fault.isEmpty())
            found.append(u"“%1” %2"_s.arg(text.left(40), fault));
    }
    return found;
}

} // namespace quillmar::test
