#pragma once

#include <QList>
#include <QString>

#include <memory>

namespace quillmar::test
{

/// One object as a screen reader meets it.
struct AccessibleObject {
    int parent = -1; ///< place in the list
    QString role;    ///< in AT-SPI's words: "label", "combo box"
    QString name;
    QString description;
    bool visible = false;
    bool focusable = false;
};

/// What a screen reader reads on a desktop, through its accessibility bus.
class ScreenReader
{
public:
    /// Tells the programs of the desktop at `sessionBus` that somebody reads. Null, with the reason in
    /// `*problem`, without an accessibility bus. One in a process.
    static std::unique_ptr<ScreenReader> start(const QString &sessionBus, QString *problem);

    ~ScreenReader();
    Q_DISABLE_COPY_MOVE(ScreenReader)

    /// Every object of every program, each behind its parent. What a drop-down would open is left out.
    QList<AccessibleObject> read() const;

private:
    ScreenReader() = default;
};

} // namespace quillmar::test
