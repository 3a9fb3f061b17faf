#include "ui/dock_widgets.h"

#include "ui/button.h"
#include "ui/localisation.h"
#include "ui/quillmar_line_edit.h"
#include "ui/styles.h"
#include "ui/update_banner.h"
#include "ui/wrapping_label.h"

#include <QComboBox>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr Qt::Alignment StatusAlignment = Qt::AlignRight | Qt::AlignVCenter | Qt::AlignAbsolute;

/// A message that stands at the side of its alignment. QLabel itself turns sides round when the text runs
/// right to left, so that a right-aligned Persian message would stand at the left.
class MessageLabel : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QFrame::paintEvent(event);
        QPainter painter(this);
        const int direction =
            layoutDirection() == Qt::RightToLeft ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
        const Qt::Alignment place = alignment() | Qt::AlignAbsolute;
        const int flags = static_cast<int>(place.toInt()) | direction | Qt::TextWordWrap;
        style()->drawItemText(&painter, contentsRect(), flags, palette(), isEnabled(), text(),
                              foregroundRole());
    }
};

QHBoxLayout *addRow(QWidget *row, int spacing)
{
    row->setLayoutDirection(Qt::LeftToRight);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

/// One height for both controls of the row, so that the row is even.
void levelTopRow(const DockWidgets &dock)
{
    dock.languageSelector->ensurePolished();
    dock.logoutButton->ensurePolished();
    const int height =
        std::max(dock.languageSelector->sizeHint().height(), dock.logoutButton->sizeHint().height());
    dock.languageSelector->setFixedHeight(height);
    dock.logoutButton->setFixedHeight(height);
}

void buildTopRow(DockWidgets &dock, QWidget *panel, const Localisation &localisation)
{
    dock.topRow = new QWidget(panel);
    dock.topRowLayout = addRow(dock.topRow, 8);
    dock.languageSelector = new QComboBox(dock.topRow);
    dock.languageSelector->addItem(u"فارسی"_s, QString(PersianCode));
    dock.languageSelector->addItem(u"English"_s, QString(EnglishCode));
    dock.languageSelector->setCurrentIndex(localisation.language() == EnglishCode ? 1 : 0);
    dock.languageSelector->setLayoutDirection(Qt::LeftToRight);
    dock.languageSelector->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    dock.languageSelector->setStyleSheet(styles::LanguageSelector);
    dock.logoutButton = newButton(dock.topRow);
    dock.logoutButton->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    dock.logoutButton->setStyleSheet(styles::Logout);
    dock.logoutButton->hide();
    levelTopRow(dock);
    dock.topRowLayout->addWidget(dock.languageSelector);
    dock.topRowLayout->addStretch();
    dock.topRowLayout->addWidget(dock.logoutButton);
    dock.column->addWidget(dock.topRow);
}

void buildHeader(DockWidgets &dock, QWidget *panel, const Localisation &localisation)
{
    dock.updateBanner = new UpdateBanner(localisation, panel);
    dock.column->addWidget(dock.updateBanner);

    dock.brandLabel = new QLabel(u"Quillmar"_s, panel);
    dock.brandLabel->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    dock.brandLabel->setLayoutDirection(Qt::LeftToRight);
    dock.brandLabel->setStyleSheet(styles::Brand);
    dock.column->addWidget(dock.brandLabel);
}

QuillmarLineEdit *addField(DockWidgets &dock, QWidget *panel, const Localisation &localisation)
{
    auto *field = new QuillmarLineEdit(localisation, panel);
    dock.column->addWidget(field);
    return field;
}

void buildSignIn(DockWidgets &dock, QWidget *panel, const Localisation &localisation)
{
    dock.signInTitleRow = new QWidget(panel);
    auto *titleLayout = addRow(dock.signInTitleRow, 0);
    dock.signInTitleLabel = new QLabel(dock.signInTitleRow);
    dock.signInTitleLabel->setLayoutDirection(Qt::RightToLeft);
    dock.signInTitleLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    dock.signInTitleLabel->setStyleSheet(styles::SignInTitle);
    titleLayout->addStretch();
    titleLayout->addWidget(dock.signInTitleLabel);
    dock.column->addWidget(dock.signInTitleRow);

    dock.usernameField = addField(dock, panel, localisation);
    dock.passwordField = addField(dock, panel, localisation);
    dock.passwordField->setEchoMode(QLineEdit::Password);

    dock.signInButton = newButton(panel);
    dock.column->addWidget(dock.signInButton);
}

QLabel *addMessage(DockWidgets &dock, QWidget *panel, Qt::Alignment alignment)
{
    auto *label = new MessageLabel(panel);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setLayoutDirection(Qt::RightToLeft);
    label->setAlignment(alignment);
    dock.column->addWidget(label);
    return label;
}

void buildWelcome(DockWidgets &dock, QWidget *panel)
{
    dock.welcomeLabel = new QLabel(panel);
    dock.welcomeLabel->setLayoutDirection(Qt::RightToLeft);
    dock.welcomeLabel->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    dock.welcomeLabel->setAlignment(StatusAlignment);
    dock.welcomeLabel->setStyleSheet(styles::Welcome);
    dock.welcomeLabel->hide();
    dock.column->addWidget(dock.welcomeLabel);
}

QPushButton *addHiddenButton(DockWidgets &dock, QWidget *panel)
{
    auto *button = newButton(panel);
    button->hide();
    dock.column->addWidget(button);
    return button;
}

void buildHome(DockWidgets &dock, QWidget *panel)
{
    dock.statusLabel = addMessage(dock, panel, StatusAlignment);
    buildWelcome(dock, panel);
    dock.productsMessageLabel = addMessage(dock, panel, Qt::AlignRight | Qt::AlignTop);
    dock.productsMessageLabel->hide();
    dock.retryButton = addHiddenButton(dock, panel);

    dock.quotaLabel = new WrappingLabel(panel);
    dock.quotaLabel->hide();
    dock.column->addWidget(dock.quotaLabel);

    dock.refreshButton = addHiddenButton(dock, panel);
}

} // namespace

DockWidgets buildDockWidgets(QWidget *panel, const Localisation &localisation)
{
    DockWidgets dock;
    dock.column = new QVBoxLayout(panel);
    dock.column->setContentsMargins(20, 20, 20, 20);
    dock.column->setSpacing(12);
    buildTopRow(dock, panel, localisation);
    buildHeader(dock, panel, localisation);
    buildSignIn(dock, panel, localisation);
    buildHome(dock, panel);
    dock.column->addStretch();
    return dock;
}

} // namespace quillmar
