#pragma once

#include <QObject>

namespace quillmar::test
{

/// Counts the mouse buttons that widgets of OBS have seen released.
class ClickCounter : public QObject
{
public:
    ClickCounter();

    int releases() const { return releases_; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int releases_ = 0;
};

} // namespace quillmar::test
