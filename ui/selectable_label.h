#pragma once

#include "ui/wrapping_label.h"

namespace quillmar
{

/// A WrappingLabel whose text can be selected with the mouse, for what users want to copy, like the path of a
/// file. Shows its text whole, however long it is.
class SelectableLabel : public WrappingLabel
{
    Q_OBJECT

public:
    explicit SelectableLabel(QWidget *parent = nullptr);

    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace quillmar
