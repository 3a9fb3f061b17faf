#include "tests/unit/packages/disk_limit.h"
#include "tests/unit/packages/file_tree.h"
#include "ui/language_preference.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class LanguagePreferenceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void load_data();
    void load();
    void missingFileIsPersian();
    void emptyPathIsPersian();
    void savedLanguageIsLoaded();
    void savingKeepsOtherSettings();
    void failedSaveKeepsThePreviousLanguage();
    void directoryInPlaceOfTheFileFails();
    void fileInPlaceOfTheFolderFails();
    void hugeFileIsLeftAlone();
    void valueThatAsksForAllMemory();

private:
    QString path() const { return folder_->filePath(u"settings.ini"_s); }

    std::unique_ptr<QTemporaryDir> folder_;
};

void LanguagePreferenceTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
}

void LanguagePreferenceTest::load_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("language");
    QTest::newRow("english") << QByteArray("[General]\nlanguage=en-US\n") << u"en-US"_s;
    QTest::newRow("persian") << QByteArray("[General]\nlanguage=fa-IR\n") << u"fa-IR"_s;
    QTest::newRow("other case") << QByteArray("[General]\nlanguage=en-us\n") << u"fa-IR"_s;
    QTest::newRow("other language") << QByteArray("[General]\nlanguage=de-DE\n") << u"fa-IR"_s;
    QTest::newRow("empty value") << QByteArray("[General]\nlanguage=\n") << u"fa-IR"_s;
    QTest::newRow("no key") << QByteArray("[Updates]\nlastSuccess=1\n") << u"fa-IR"_s;
    QTest::newRow("key of another group") << QByteArray("[Updates]\nlanguage=en-US\n") << u"fa-IR"_s;
    QTest::newRow("empty file") << QByteArray() << u"fa-IR"_s;
    QTest::newRow("noise") << QByteArray("\x00\xff[[[=\n", 7) << u"fa-IR"_s;
}

void LanguagePreferenceTest::load()
{
    QFETCH(QByteArray, content);
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
    file.close();
    QTEST(loadLanguage(path()), "language");
}

void LanguagePreferenceTest::missingFileIsPersian()
{
    QCOMPARE(loadLanguage(path()), u"fa-IR"_s);
    QVERIFY(!QFile::exists(path()));
}

void LanguagePreferenceTest::emptyPathIsPersian()
{
    QCOMPARE(loadLanguage({}), u"fa-IR"_s);
}

void LanguagePreferenceTest::savedLanguageIsLoaded()
{
    QVERIFY(saveLanguage(path(), u"en-US"_s));
    QCOMPARE(loadLanguage(path()), u"en-US"_s);
    QVERIFY(saveLanguage(path(), u"fa-IR"_s));
    QCOMPARE(loadLanguage(path()), u"fa-IR"_s);
}

void LanguagePreferenceTest::savingKeepsOtherSettings()
{
    {
        QSettings settings(path(), QSettings::IniFormat);
        settings.setValue("Updates/lastSuccess"_L1, 17);
    }
    QVERIFY(saveLanguage(path(), u"en-US"_s));
    const QSettings settings(path(), QSettings::IniFormat);
    QCOMPARE(settings.value("Updates/lastSuccess"_L1).toInt(), 17);
    QCOMPARE(settings.value("language"_L1).toString(), u"en-US"_s);
}

void LanguagePreferenceTest::failedSaveKeepsThePreviousLanguage()
{
    QVERIFY(saveLanguage(path(), u"en-US"_s));
    {
        const DiskLimit limit(0);
        QVERIFY(!saveLanguage(path(), u"fa-IR"_s));
    }
    // What the next start finds; this process still remembers what it could not write.
    QCOMPARE(fileContent(path()).replace("\r\n", "\n"), "[General]\nlanguage=en-US\n");
}

void LanguagePreferenceTest::directoryInPlaceOfTheFileFails()
{
    QVERIFY(QDir(folder_->path()).mkdir(u"settings.ini"_s));
    QVERIFY(!saveLanguage(path(), u"en-US"_s));
    QCOMPARE(loadLanguage(path()), u"fa-IR"_s);
}

void LanguagePreferenceTest::fileInPlaceOfTheFolderFails()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QVERIFY(!saveLanguage(path() + u"/settings.ini"_s, u"en-US"_s));
}

void LanguagePreferenceTest::hugeFileIsLeftAlone()
{
    const QByteArray content = "[General]\nlanguage=en-US\nnoise=" + QByteArray(1024 * 1024, 'x');
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
    file.close();
    QCOMPARE(loadLanguage(path()), u"fa-IR"_s);
    QVERIFY(!saveLanguage(path(), u"fa-IR"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

void LanguagePreferenceTest::valueThatAsksForAllMemory()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("[General]\nlanguage=@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0\\0)\n") > 0);
    file.close();
    QCOMPARE(loadLanguage(path()), u"fa-IR"_s);
    QVERIFY(!saveLanguage(path(), u"en-US"_s));
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::LanguagePreferenceTest)
#include "language_preference_test.moc"
