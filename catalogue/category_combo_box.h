#pragma once

#include <QComboBox>

namespace quillmar
{

/// A drop-down that bounds its own width: a narrow dock can shrink it to 70 pixels, and its list still opens
/// wide enough for the longest item, but never wider than the screen.
class CategoryComboBox : public QComboBox
{
    Q_OBJECT

public:
    using QComboBox::QComboBox;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void showPopup() override;

private:
    int popupWidth() const;
};

} // namespace quillmar
