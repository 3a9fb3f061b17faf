#pragma once

#include <QLabel>
#include <QString>

namespace quillmar
{

/// Gives `widget` a tool tip that shows `text` as it is. Qt would render a tool tip that looks like rich
/// text, so such a text is set escaped, and cut where it would cover the screen; any other one is set
/// unchanged.
void setPlainToolTip(QWidget *widget, const QString &text);

/// A label whose tool tip, set by setPlainToolTip(), may be long: it is shown wrapped, and cut where it would
/// cover the screen. The property `toolTip` keeps the whole text.
class LongToolTipLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

protected:
    bool event(QEvent *event) override;
};

} // namespace quillmar
