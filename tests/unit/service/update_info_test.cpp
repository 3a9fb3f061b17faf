#include "service/update_info.h"

#include "service/routes.h"

#include <QTest>

class UpdateInfoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void safeDownloadUrl_data();
    void safeDownloadUrl();
    void emptyByDefault();
};

/// HOST stands for the service host.
void UpdateInfoTest::safeDownloadUrl_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("safe");
    const auto add = [](const char *name, const QString &text, bool safe) {
        QTest::newRow(name) << text << safe;
    };
    add("plain", QStringLiteral("https://HOST/plugin.zip"), true);
    add("no path", QStringLiteral("https://HOST"), true);
    add("query and fragment", QStringLiteral("https://HOST/a?b=https://evil.example/#c"), true);
    add("port 443", QStringLiteral("https://HOST:443/plugin.zip"), true);
    add("host in upper case", QStringLiteral("https://UPPER/plugin.zip"), true);
    add("scheme in upper case", QStringLiteral("HTTPS://HOST/plugin.zip"), true);
    add("empty port", QStringLiteral("https://HOST:/plugin.zip"), true);
    add("Persian path", QStringLiteral("https://HOST/افزونه.zip"), true);
    add("empty", QString(), false);
    add("http", QStringLiteral("http://HOST/plugin.zip"), false);
    add("http on 443", QStringLiteral("http://HOST:443/plugin.zip"), false);
    add("ftp", QStringLiteral("ftp://HOST/plugin.zip"), false);
    add("file", QStringLiteral("file://HOST/plugin.zip"), false);
    add("javascript", QStringLiteral("javascript:alert(1)"), false);
    add("no scheme", QStringLiteral("//HOST/plugin.zip"), false);
    add("relative", QStringLiteral("plugin.zip"), false);
    add("no host", QStringLiteral("https:///plugin.zip"), false);
    add("other host", QStringLiteral("https://evil.example/plugin.zip"), false);
    add("host as prefix", QStringLiteral("https://HOST.evil.example/plugin.zip"), false);
    add("host as suffix", QStringLiteral("https://evilHOST/plugin.zip"), false);
    add("subdomain", QStringLiteral("https://www.HOST/plugin.zip"), false);
    add("dot at the end", QStringLiteral("https://HOST./plugin.zip"), false);
    add("host as user", QStringLiteral("https://HOST@evil.example/plugin.zip"), false);
    add("user", QStringLiteral("https://me@HOST/plugin.zip"), false);
    add("user and password", QStringLiteral("https://me:pw@HOST/plugin.zip"), false);
    add("password alone", QStringLiteral("https://:pw@HOST/plugin.zip"), false);
    add("port 444", QStringLiteral("https://HOST:444/plugin.zip"), false);
    add("port 80", QStringLiteral("https://HOST:80/plugin.zip"), false);
    add("port 0", QStringLiteral("https://HOST:0/plugin.zip"), false);
    add("port too large", QStringLiteral("https://HOST:65979/plugin.zip"), false);
    add("port no number", QStringLiteral("https://HOST:443x/plugin.zip"), false);
    add("backslash", QStringLiteral("https://evil.example\\@HOST/plugin.zip"), false);
    add("blank in the host", QStringLiteral("https://HOST .evil.example/"), false);
    add("look-alike letter", QStringLiteral("https://LOOKALIKE/plugin.zip"), false);
    add("punycode look-alike", QStringLiteral("https://xn--quillmr-2fg.example/"), false);
    add("address", QStringLiteral("https://127.0.0.1/plugin.zip"), false);
    add("IPv6 address", QStringLiteral("https://[::1]/plugin.zip"), false);
    add("encoded slash in the host", QStringLiteral("https://evil.example%2F@HOST/"), false);
}

void UpdateInfoTest::safeDownloadUrl()
{
    QFETCH(QString, text);
    QFETCH(const bool, safe);
    const QString host = quillmar::routes::serviceHost();
    QString lookalike = host;
    lookalike.replace(lookalike.indexOf(QLatin1Char('a')), 1, QChar(0x0430));
    text.replace(QStringLiteral("HOST"), host);
    text.replace(QStringLiteral("UPPER"), host.toUpper());
    text.replace(QStringLiteral("LOOKALIKE"), lookalike);
    QCOMPARE(quillmar::isSafeDownloadUrl(QUrl(text, QUrl::StrictMode)), safe);
}

void UpdateInfoTest::emptyByDefault()
{
    const quillmar::UpdateInfo info;
    QVERIFY(info.latestVersion.isEmpty());
    QVERIFY(info.downloadUrl.isEmpty());
    QVERIFY(!info.required);
    QVERIFY(info.releaseNotes.isEmpty());
}

QTEST_GUILESS_MAIN(UpdateInfoTest)
#include "update_info_test.moc"
