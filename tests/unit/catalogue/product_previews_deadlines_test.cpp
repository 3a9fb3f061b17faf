#include "catalogue/product_previews.h"
#include "tests/unit/catalogue/preview_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class ProductPreviewsDeadlinesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothDeadlinesOfASlowServer();
};

/// One is silent, the other sends a byte a second; the silent one is given up first.
void ProductPreviewsDeadlinesTest::bothDeadlinesOfASlowServer()
{
    TlsService service;
    ProductPreviews previews;
    QObject context;
    QList<WireConnection> held;
    service.handle("/silent", hold(held));
    service.handle("/drip", drip(&context, 1000));
    QStringList ended;
    previews.request(entryFor(u"/drip"_s), &context,
                     [&ended](const QImage &image) { ended.append(image.isNull() ? u"drip"_s : u"?"_s); });
    previews.request(entryFor(u"/silent"_s), &context,
                     [&ended](const QImage &image) { ended.append(image.isNull() ? u"silent"_s : u"?"_s); });
    QTRY_COMPARE_WITH_TIMEOUT(ended, QStringList({u"silent"_s, u"drip"_s}), LongDeadlineMs);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::ProductPreviewsDeadlinesTest)
#include "product_previews_deadlines_test.moc"
