#include "recording_view.h"

namespace quillmar::test
{

namespace
{

QString onOff(QLatin1StringView name, bool enabled)
{
    return name + (enabled ? QLatin1StringView(" on") : QLatin1StringView(" off"));
}

QLatin1StringView colour(AccountView::Tone tone)
{
    switch (tone) {
    case AccountView::Tone::Progress:
        return QLatin1StringView("white");
    case AccountView::Tone::Success:
        return QLatin1StringView("green");
    case AccountView::Tone::Failure:
        return QLatin1StringView("red");
    }
    return {};
}

} // namespace

void RecordingView::clearUsername()
{
    usernameText.clear();
    calls << QStringLiteral("clear username");
}

void RecordingView::focusUsername()
{
    calls << QStringLiteral("focus username");
}

void RecordingView::showSignInView()
{
    screen = Screen::SignIn;
    passwordText.clear();
    signInEnabled = true;
    retryVisible = false;
    productsMessageVisible = false;
    calls << QStringLiteral("sign-in view");
}

void RecordingView::showHomeView()
{
    screen = Screen::Home;
    passwordText.clear();
    retryVisible = false;
    logoutEnabled = true;
    calls << QStringLiteral("home view");
}

void RecordingView::showRestoringView()
{
    screen = Screen::Restoring;
    passwordText.clear();
    retryVisible = true;
    retryEnabled = false;
    calls << QStringLiteral("restoring view");
}

void RecordingView::setSignInEnabled(bool enabled)
{
    signInEnabled = enabled;
    calls << onOff(QLatin1StringView("sign-in"), enabled);
}

void RecordingView::setRetryEnabled(bool enabled)
{
    retryEnabled = enabled;
    calls << onOff(QLatin1StringView("retry"), enabled);
}

void RecordingView::setRefreshEnabled(bool enabled)
{
    refreshEnabled = enabled;
    calls << onOff(QLatin1StringView("refresh"), enabled);
}

void RecordingView::setLogoutEnabled(bool enabled)
{
    logoutEnabled = enabled;
    calls << onOff(QLatin1StringView("logout"), enabled);
}

void RecordingView::setProductListEnabled(bool enabled)
{
    productListEnabled = enabled;
    calls << onOff(QLatin1StringView("list"), enabled);
}

void RecordingView::showStatus(Tone tone, QLatin1StringView key)
{
    status = colour(tone) + QLatin1Char(' ') + key;
    calls << status;
}

void RecordingView::showProductsMessage(QLatin1StringView key)
{
    productsMessage = key;
    productsMessageVisible = true;
    calls << QString(key);
}

void RecordingView::hideProductsMessage()
{
    productsMessageVisible = false;
    calls << QStringLiteral("hide message");
}

void RecordingView::clearProductsMessage()
{
    productsMessageVisible = false;
    productsMessage.clear();
    calls << QStringLiteral("clear message");
}

void RecordingView::setProducts(const QJsonArray &newProducts)
{
    products = newProducts;
    calls << QStringLiteral("products %1").arg(newProducts.size());
}

void RecordingView::refreshQuota()
{
    calls << QStringLiteral("refresh quota");
}

void RecordingView::clearQuota()
{
    calls << QStringLiteral("clear quota");
}

} // namespace quillmar::test
