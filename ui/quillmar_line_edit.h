#pragma once

#include "ui/localisation.h"

#include <QLineEdit>

namespace quillmar
{

/// A line edit for Latin input whose placeholder follows the interface language: the field stays
/// left-to-right, the placeholder is painted at the reading side. The base class's own placeholder stays
/// empty.
class QuillmarLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    /// `localisation` outlives the widget.
    explicit QuillmarLineEdit(const Localisation &localisation, QWidget *parent = nullptr);

    /// Text to paint, focused or not, while the field is empty.
    void setPlaceholder(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const Localisation &localisation_;
    QString placeholder_;
};

} // namespace quillmar
