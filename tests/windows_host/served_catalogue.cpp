#include "tests/windows_host/served_catalogue.h"

#include "service/routes.h"
#include "tests/unit/catalogue/picture_samples.h"

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

QJsonArray gallery(const QString &path)
{
    const QString address = u"https://"_s + routes::serviceHost() + path;
    return {QJsonObject{{u"url"_s, address}, {u"revision"_s, u"1"_s}}};
}

QJsonObject component(const QString &key, const QString &name, const QString &mode)
{
    const QString path = key + u".png"_s;
    return {{u"component_key"_s, key},        {u"component_name"_s, name},
            {u"asset_path"_s, path},          {u"asset_kind"_s, u"file"_s},
            {u"insert_mode"_s, mode},         {u"source_type"_s, u"image"_s},
            {u"auto_insert_enabled"_s, true}, {u"preview_gallery"_s, gallery(u"/frames.webp"_s)}};
}

QJsonArray products()
{
    return {QJsonObject{{u"product_key"_s, u"night-frames"_s},
                        {u"product_name"_s, u"قاب‌های شب"_s},
                        {u"product_version"_s, u"2.1.0"_s},
                        {u"description"_s, u"قابی آرام و تیره برای دوربین شما، با سه رنگ."_s},
                        {u"category"_s, u"قاب دوربین"_s},
                        {u"file_name"_s, u"night-frames.zip"_s},
                        {u"preview_gallery"_s, gallery(u"/frames.webp"_s)},
                        {u"components"_s, QJsonArray{component(u"frame"_s, u"قاب سبز"_s, u"webcam_frame"_s),
                                                     component(u"chat"_s, u"Chat box"_s, u"overlay"_s)}}},
            QJsonObject{{u"product_key"_s, u"loading-loop"_s},
                        {u"product_name"_s, u"Neon garden"_s},
                        {u"product_version"_s, u"1.0.0"_s},
                        {u"description"_s, u"A calm full-screen scene for the minutes before the show."_s},
                        {u"category"_s, u"Scenes"_s},
                        {u"file_name"_s, u"neon-garden.zip"_s},
                        {u"preview_gallery"_s, gallery(u"/garden.png"_s)}}};
}

QByteArray picture(const char *format, const QColor &colour)
{
    const QByteArray type = QByteArray("image/") + format;
    return TlsService::response(200, encoded(plainPicture({480, 270}, colour), format), type);
}

QByteArray refused()
{
    return TlsService::json(401, {{u"success"_s, false}});
}

/// Answers with `bytes` whoever brings the account's token.
TlsService::Handler forTheAccount(const QByteArray &bytes)
{
    return [bytes](const WireRequest &request, WireConnection &connection) {
        const bool isKnown = request.header("authorization") == QByteArray("Bearer ") + AccountToken;
        connection.send(isKnown ? bytes : refused());
    };
}

void login(const WireRequest &request, WireConnection &connection)
{
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    const bool isKnown = body.value("username"_L1) == QLatin1StringView(AccountName) &&
                         body.value("password"_L1) == QLatin1StringView(AccountPassword);
    connection.send(isKnown ? TlsService::json(200, {{u"token"_s, QLatin1StringView(AccountToken)}})
                            : refused());
}

} // namespace

void serveCatalogue(TlsService &service)
{
    service.handleRoute("login", login);
    service.handleRoute("products", forTheAccount(TlsService::json(200, {{u"products"_s, products()}})));
    service.handleRoute("download-quota", forTheAccount(TlsService::json(200, {{u"success"_s, true},
                                                                               {u"enabled"_s, true},
                                                                               {u"unlimited"_s, false},
                                                                               {u"allow_redownload"_s, false},
                                                                               {u"used"_s, 3},
                                                                               {u"period"_s, u"daily"_s},
                                                                               {u"limit"_s, 25},
                                                                               {u"remaining"_s, 22}})));
    service.handleRoute("plugin-version",
                        TlsService::always(TlsService::json(200, {{u"latest_version"_s, u"0.1.3"_s}})));
    service.handle("/frames.webp", TlsService::always(picture("webp", QColor(0x20, 0x60, 0xa0))));
    service.handle("/garden.png", TlsService::always(picture("png", QColor(0xa0, 0x40, 0x60))));
}

} // namespace quillmar::test
