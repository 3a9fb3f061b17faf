#pragma once

class QBoxLayout;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace quillmar
{

class Localisation;
class QuillmarLineEdit;
class UpdateBanner;

/// The widgets of the dock in their order from top to bottom. All belong to the panel that they were built
/// for.
struct DockWidgets {
    QVBoxLayout *column = nullptr;
    QWidget *topRow = nullptr;
    QHBoxLayout *topRowLayout = nullptr;
    QComboBox *languageSelector = nullptr;
    QPushButton *logoutButton = nullptr;
    UpdateBanner *updateBanner = nullptr;
    QLabel *brandLabel = nullptr;
    QWidget *signInTitleRow = nullptr;
    QLabel *signInTitleLabel = nullptr;
    QuillmarLineEdit *usernameField = nullptr;
    QuillmarLineEdit *passwordField = nullptr;
    QPushButton *signInButton = nullptr;
    QLabel *statusLabel = nullptr;
    QLabel *welcomeLabel = nullptr;
    QLabel *productsMessageLabel = nullptr;
    QPushButton *retryButton = nullptr;
    QLabel *quotaLabel = nullptr; ///< keeps the place of the quota display until there is one
    QPushButton *refreshButton = nullptr;
};

/// Builds the column of `panel` in the sign-in view, without texts. `panel` has its style sheet already,
/// because the common height of the top row is taken from it.
DockWidgets buildDockWidgets(QWidget *panel, const Localisation &localisation);

} // namespace quillmar
