#include "ui/selectable_label.h"

#include <QAbstractTextDocumentLayout>
#include <QSignalBlocker>
#include <QTextDocument>

namespace quillmar
{

namespace
{

/// QLabel keeps a text that can be selected in a document among its children.
QTextDocument *documentOf(const QLabel &label)
{
    return label.findChild<QTextDocument *>();
}

/// Tells whether the lines were broken between words only before.
bool breakAnywhere(QTextDocument &document)
{
    QTextOption option = document.defaultTextOption();
    if (option.wrapMode() == QTextOption::WrapAtWordBoundaryOrAnywhere)
        return false;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document.setDefaultTextOption(option);
    return true;
}

} // namespace

SelectableLabel::SelectableLabel(QWidget *parent) : WrappingLabel(parent)
{
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

int SelectableLabel::heightForWidth(int width) const
{
    ensurePolished();
    // Asked for the height, QLabel brings its document up to date, which undoes what was set there before.
    const int height = QLabel::heightForWidth(width);
    QTextDocument *document = documentOf(*this);
    return document != nullptr && breakAnywhere(*document) ? QLabel::heightForWidth(width) : height;
}

void SelectableLabel::paintEvent(QPaintEvent *event)
{
    if (QTextDocument *document = documentOf(*this)) {
        // A document that is laid out asks to be painted, which is what is being done.
        const QSignalBlocker blocker(document->documentLayout());
        heightForWidth(width());
    }
    QLabel::paintEvent(event);
}

} // namespace quillmar
