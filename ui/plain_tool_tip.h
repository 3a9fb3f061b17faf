#pragma once

#include <QLabel>
#include <QString>

namespace quillmar
{

/// Gives `widget` a tool tip that shows `text` as it is. Qt would render a tool tip that looks like rich text, so such
/// a text is set escaped; any other one is set unchanged.
void setPlainToolTip(QWidget *widget, const QString &text);

/// A label whose tool tip may be long: it is wrapped, and cut where it would cover the screen. The property `toolTip`
/// keeps the whole text.
class LongToolTipLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

protected:
    bool event(QEvent *event) override;
};

} // namespace quillmar
