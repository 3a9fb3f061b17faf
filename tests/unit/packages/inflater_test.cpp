#include "packages/inflater.h"

#include "tests/support/zip_builder/zip_builder.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryFile>
#include <QTest>

#include <libdeflate.h>

#include <memory>
#include <optional>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

/// Nothing when the stream is refused.
std::optional<QByteArray> inflated(Inflater &inflater, const QByteArray &stream, qsizetype size)
{
    QTemporaryFile file;
    const QByteArray surroundings = "not part of the stream";
    if (!file.open() || file.write(surroundings + stream + surroundings) < 0 || !file.flush())
        qFatal("cannot write a temporary file");
    QByteArray plain;
    const bool sound = inflater.inflate(file, surroundings.size(), stream.size(), size,
                                        [&](QByteArrayView bytes) { plain += bytes; });
    if (plain.size() > size)
        qFatal("more than declared");
    return sound ? std::optional(plain) : std::nullopt;
}

/// What libdeflate makes of the stream, under the same conditions.
std::optional<QByteArray> reference(const QByteArray &stream, qsizetype size)
{
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> decompressor(
        libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
    QByteArray plain(size, Qt::Uninitialized);
    std::size_t consumed = 0;
    std::size_t produced = 0;
    const auto result = libdeflate_deflate_decompress_ex(
        decompressor.get(), stream.constData(), static_cast<std::size_t>(stream.size()), plain.data(),
        static_cast<std::size_t>(size), &consumed, &produced);
    const bool sound = result == LIBDEFLATE_SUCCESS && static_cast<qsizetype>(consumed) == stream.size() &&
                       static_cast<qsizetype>(produced) == size;
    return sound ? std::optional(plain) : std::nullopt;
}

/// Words that come again, near and far, between noise.
QByteArray mixed(qsizetype length, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes = noise(std::min<qsizetype>(length, 100), seed);
    while (bytes.size() < length) {
        const qsizetype distance = 1 + random.bounded(std::min<qsizetype>(bytes.size(), 40000));
        const qsizetype count = random.bounded(1, 400);
        for (qsizetype i = 0; i < count; ++i)
            bytes += bytes[bytes.size() - distance];
        bytes += noise(random.bounded(30), random.generate());
    }
    bytes.truncate(length);
    return bytes;
}

/// What make_samples.py wrote.
QByteArray sampleStream(const QString &name)
{
    QFile file(QStringLiteral(QUILLMAR_SAMPLES "/streams/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class InflaterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLevel_data();
    void everyLevel();
    void lengthsAroundThePieces_data();
    void lengthsAroundThePieces();
    void otherStrategies_data();
    void otherStrategies();
    void wrongSizes();
    void everyCutIsRefused();
    void damagedStreamsAsTheReference();
    void noiseAsTheReference();
    void farthestMatch();
    void objectServesManyStreams();
    void fileEndsEarly();
};

void InflaterTest::everyLevel_data()
{
    QTest::addColumn<QByteArray>("plain");
    QTest::addColumn<int>("level");
    const QList<std::pair<const char *, QByteArray>> contents{
        {"nothing", {}},
        {"one byte", "a"},
        {"zeros", QByteArray(500000, '\0')},
        {"noise", noise(500000)},
        {"mixed", mixed(700000, 7)},
        {"pattern of 7", QByteArray("abcdefg").repeated(50000)},
    };
    for (const auto &[name, plain] : contents) {
        for (const int level : {0, 1, 3, 6, 9, 12})
            QTest::addRow("%s, level %d", name, level) << plain << level;
    }
}

void InflaterTest::everyLevel()
{
    QFETCH(QByteArray, plain);
    QFETCH(int, level);
    Inflater inflater;
    QVERIFY(inflated(inflater, deflated(plain, level), plain.size()) == plain);
}

void InflaterTest::lengthsAroundThePieces_data()
{
    QTest::addColumn<qsizetype>("length");
    for (const qsizetype kibi : {32, 64, 128, 192, 224, 256, 384, 416}) {
        for (const qsizetype step : {-259, -258, -9, -8, -1, 0, 1, 8, 258, 270})
            QTest::addRow("%lld KiB %+lld", static_cast<long long>(kibi), static_cast<long long>(step))
                << kibi * 1024 + step;
    }
}

void InflaterTest::lengthsAroundThePieces()
{
    QFETCH(qsizetype, length);
    Inflater inflater;
    const QByteArray zeros(length, '\0');
    const QByteArray plain = noise(length);
    QVERIFY(inflated(inflater, deflated(zeros), length) == zeros);
    QVERIFY(inflated(inflater, deflated(plain, 0), length) == plain);
    QVERIFY(inflated(inflater, deflated(plain.first(length / 3) + plain.first(length / 3), 9),
                     length / 3 * 2) == plain.first(length / 3) + plain.first(length / 3));
}

void InflaterTest::otherStrategies_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : {u"fixed codes"_s, u"no matches"_s, u"runs"_s, u"filtered"_s})
        QTest::newRow(qPrintable(name)) << name;
}

/// Streams of zlib with strategies that libdeflate does not have.
void InflaterTest::otherStrategies()
{
    QFETCH(const QString, name);
    const QByteArray plain = sampleStream(u"plain"_s);
    const QByteArray stream = sampleStream(name);
    QCOMPARE(plain.size(), 601'000);
    QVERIFY(!stream.isEmpty());
    Inflater inflater;
    QVERIFY(inflated(inflater, stream, plain.size()) == plain);
}

void InflaterTest::wrongSizes()
{
    Inflater inflater;
    const QByteArray plain = mixed(300000, 5);
    const QByteArray stream = deflated(plain);
    for (const qsizetype size :
         {qsizetype{0}, qsizetype{1}, plain.size() - 1, plain.size() + 1, plain.size() * 2})
        QVERIFY(!inflated(inflater, stream, size));
    QVERIFY(!inflated(inflater, stream + '\0', plain.size()));
    QVERIFY(!inflated(inflater, {}, 0));
    QVERIFY(!inflated(inflater, {}, 1));
}

void InflaterTest::everyCutIsRefused()
{
    Inflater inflater;
    for (const int level : {0, 6}) {
        const QByteArray plain = mixed(1500, 5);
        const QByteArray stream = deflated(plain, level);
        for (qsizetype length = 0; length < stream.size(); ++length)
            QVERIFY2(!inflated(inflater, stream.first(length), plain.size()),
                     qPrintable(QString::number(length)));
    }
}

/// Not the other way round: libdeflate also takes code words that an incomplete code does not have.
void InflaterTest::damagedStreamsAsTheReference()
{
    Inflater inflater;
    QRandomGenerator random(11);
    int refused = 0;
    for (int i = 0; i < 4000; ++i) {
        const QByteArray plain = mixed(random.bounded(1, 3000), random.generate());
        const QByteArray good = deflated(plain, random.bounded(13));
        QByteArray stream = good;
        for (int change = random.bounded(3); change > 0; --change)
            stream[random.bounded(stream.size())] = static_cast<char>(random.bounded(256));
        const auto ours = inflated(inflater, stream, plain.size());
        QVERIFY(stream != good || ours == plain);
        QVERIFY(!ours || ours == reference(stream, plain.size()));
        refused += ours ? 0 : 1;
    }
    QVERIFY(refused > 500);
}

void InflaterTest::noiseAsTheReference()
{
    Inflater inflater;
    QRandomGenerator random(12);
    for (int i = 0; i < 4000; ++i) {
        const QByteArray stream = noise(random.bounded(1, 120), random.generate());
        const qsizetype size = random.bounded(300);
        const auto ours = inflated(inflater, stream, size);
        QVERIFY(!ours || ours == reference(stream, size));
    }
}

void InflaterTest::farthestMatch()
{
    Inflater inflater;
    const QByteArray plain =
        noise(32768) + noise(32768).first(300) + noise(300000, 2) + noise(300000, 2).last(32768);
    QVERIFY(inflated(inflater, deflated(plain, 12), plain.size()) == plain);
}

void InflaterTest::objectServesManyStreams()
{
    Inflater inflater;
    const QByteArray plain = mixed(50000, 1);
    QVERIFY(inflated(inflater, deflated(plain), plain.size()) == plain);
    QVERIFY(!inflated(inflater, noise(100), 100));
    QVERIFY(inflated(inflater, deflated("aaaaaaaaaaaa"), 12) == "aaaaaaaaaaaa");
    QVERIFY(inflated(inflater, deflated(plain), plain.size()) == plain);
    QVERIFY(inflated(inflater, deflated("bbbbbbbbbbbb"), 12) == "bbbbbbbbbbbb");
}

void InflaterTest::fileEndsEarly()
{
    const QByteArray plain = noise(400000);
    const QByteArray stream = deflated(plain);
    QTemporaryFile file;
    QVERIFY(file.open());
    QVERIFY(file.write(stream.chopped(1)) > 0 && file.flush());
    Inflater inflater;
    QVERIFY(!inflater.inflate(file, 0, stream.size(), plain.size(), [](QByteArrayView) {}));
    QVERIFY(!inflater.inflate(file, stream.size() * 2, 10, 10, [](QByteArrayView) {}));
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::InflaterTest)
#include "inflater_test.moc"
