#include "service/update_info.h"

#include "service/routes.h"

namespace quillmar
{

bool isSafeDownloadUrl(const QUrl &url)
{
    if (!url.isValid() || url.scheme() != QLatin1StringView("https")) {
        return false;
    }
    if (url.host(QUrl::FullyDecoded) != routes::serviceHost() || !url.userInfo().isEmpty()) {
        return false;
    }
    return url.port(443) == 443;
}

} // namespace quillmar
