// The persistent settings: keys, slots, limits and defaults.
// SPDX-License-Identifier: MIT
#include "widgets/Settings.h"

#include "TempSettings.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

class TestSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void newSettingsHoldNothing();
    void recentFilesStandInNumberedSlots();
    void usedInterfacesStandInNumberedSlots();
    void theSettingsFileHasTheseGroupsAndKeys();
    void onlyTenElementsAreWritten();
    void aShorterListLeavesTheTailSlots();
    void whatIsWrittenAtOnceIsRead();
    void emptySlotsAreUnused();
    void namesKeepTheirBlanks();
    void displayModeIsStoredAsANumber();
    void aForeignDisplayModeReadsAsStoredOrAsZero_data();
    void aForeignDisplayModeReadsAsStoredOrAsZero();
    void settingsOfTheWholeSystemDoNotCount();
    void anEmptyFileIsFilled();
    void aFileWithACommentIsFilled();
    void anUnwritableFileIsIgnored();
    void promotedMovesANameToTheFront_data();
    void promotedMovesANameToTheFront();
    void withoutDropsEveryEqualName();

private:
    std::optional<CTempSettings> m_store;
};

void TestSettings::newSettingsHoldNothing()
{
    QCOMPARE(settings::recentFiles(), QStringList());
    QCOMPARE(settings::usedInterfaces(), QStringList());
    QCOMPARE(settings::displayMode(), valueFormats::modeHex);
}

void TestSettings::recentFilesStandInNumberedSlots()
{
    settings::setRecentFiles({ "a.eds", "b.eds" });
    QCOMPARE(m_store->value("Recent File List/File1"), QString("a.eds"));
    QCOMPARE(m_store->value("Recent File List/File2"), QString("b.eds"));
    QVERIFY(!m_store->contains("Recent File List/File3"));
}

void TestSettings::usedInterfacesStandInNumberedSlots()
{
    settings::setUsedInterfaces({ "localhost:60000", "can0" });
    QCOMPARE(m_store->value("Used Interfaces/Interface1"), QString("localhost:60000"));
    QCOMPARE(m_store->value("Used Interfaces/Interface2"), QString("can0"));
}

void TestSettings::theSettingsFileHasTheseGroupsAndKeys()
{
    settings::setRecentFiles({ "/tmp/a.eds" });
    settings::setDisplayMode(valueFormats::modeOct);
    QCOMPARE(QFileInfo(m_store->fileName()).fileName(), QString("Brask Works.conf"));
    QFile file(m_store->fileName());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("[CANopen%20Object%20Browser]\n"
                                        "Recent%20File%20List\\File1=/tmp/a.eds\n"
                                        "Settings\\Display=2\n"));
}

void TestSettings::onlyTenElementsAreWritten()
{
    QStringList twelve;
    for (int n = 1; n <= 12; ++n)
        twelve << QString("file %1").arg(n);
    settings::setRecentFiles(twelve);
    QCOMPARE(m_store->value("Recent File List/File10"), QString("file 10"));
    QVERIFY(!m_store->contains("Recent File List/File11"));
    QCOMPARE(settings::recentFiles(), twelve.first(10));
}

void TestSettings::aShorterListLeavesTheTailSlots()
{
    settings::setRecentFiles({ "a", "b", "c" });
    settings::setRecentFiles({ "b", "c" });
    QCOMPARE(settings::recentFiles(), QStringList({ "b", "c", "c" }));
}

// All within a tick of the file system's clock, and of the same size.
void TestSettings::whatIsWrittenAtOnceIsRead()
{
    for (int turn = 0; turn < 100; ++turn) {
        const auto mode = turn % 2 == 0 ? valueFormats::modeDec : valueFormats::modeOct;
        const QStringList files = turn % 2 == 0 ? QStringList({ "a", "b" }) : QStringList({ "b", "a" });
        settings::setDisplayMode(mode);
        QCOMPARE(settings::displayMode(), mode);
        settings::setRecentFiles(files);
        QCOMPARE(settings::recentFiles(), files);
        QCOMPARE(settings::displayMode(), mode);
    }
}

void TestSettings::emptySlotsAreUnused()
{
    m_store->setValue("Recent File List/File2", "b");
    m_store->setValue("Recent File List/File3", "");
    m_store->setValue("Recent File List/File10", "j");
    m_store->setValue("Recent File List/File11", "k");
    QCOMPARE(settings::recentFiles(), QStringList({ "b", "j" }));
}

void TestSettings::namesKeepTheirBlanks()
{
    const QStringList names{ " a.eds", "a.eds ", "a  b.eds", " " };
    settings::setRecentFiles(names);
    QCOMPARE(settings::recentFiles(), names);
    settings::setUsedInterfaces(names);
    QCOMPARE(settings::usedInterfaces(), names);
}

void TestSettings::displayModeIsStoredAsANumber()
{
    settings::setDisplayMode(valueFormats::modeDec);
    QCOMPARE(m_store->value("Settings/Display"), QString("1"));
    QCOMPARE(settings::displayMode(), valueFormats::modeDec);
}

void TestSettings::aForeignDisplayModeReadsAsStoredOrAsZero_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<int>("mode");
    QTest::newRow("7") << QVariant(7) << 7;
    QTest::newRow("-1") << QVariant("-1") << -1;
    QTest::newRow("octal") << QVariant("octal") << 0;
    QTest::newRow("empty") << QVariant("") << 0;
    QTest::newRow("a list") << QVariant(QStringList({ "1", "2" })) << 0;
}

void TestSettings::aForeignDisplayModeReadsAsStoredOrAsZero()
{
    QFETCH(const QVariant, stored);
    m_store->setValue("Settings/Display", stored);
    QTEST(int{ settings::displayMode() }, "mode");
}

void TestSettings::settingsOfTheWholeSystemDoNotCount()
{
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, folder.path());
    {
        QSettings store(QSettings::SystemScope, "Brask Works");
        store.setValue("/CANopen Object Browser/Recent File List/File1", "a");
        store.setValue("/CANopen Object Browser/Settings/Display", 2);
    }
    QCOMPARE(QSettings("Brask Works").value("/CANopen Object Browser/Settings/Display").toInt(), 2); // it can be seen
    QCOMPARE(settings::recentFiles(), QStringList());
    QCOMPARE(settings::displayMode(), valueFormats::modeHex);
}

void TestSettings::anEmptyFileIsFilled()
{
    QVERIFY(QFile(m_store->fileName()).open(QIODevice::WriteOnly));
    settings::setDisplayMode(valueFormats::modeOct);
    QCOMPARE(m_store->value("Settings/Display"), QString::number(valueFormats::modeOct));
}

void TestSettings::aFileWithACommentIsFilled()
{
    QFile file(m_store->fileName());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(";a=b\n");
    file.close();
    settings::setDisplayMode(valueFormats::modeOct);
    QCOMPARE(m_store->value("Settings/Display"), QString::number(valueFormats::modeOct));
}

void TestSettings::anUnwritableFileIsIgnored()
{
    qputenv("XDG_CONFIG_HOME", "/dev/null/none");
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/dev/null/none");
    settings::setDisplayMode(valueFormats::modeOct);
    settings::setRecentFiles({ "a" });
    QCOMPARE(QFileInfo::exists("/dev/null/none"), false);
}

void TestSettings::promotedMovesANameToTheFront_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("after");
    QTest::newRow("to an empty list") << QStringList() << QStringList("x");
    QTest::newRow("a new name") << QStringList({ "a", "b" }) << QStringList({ "x", "a", "b" });
    QTest::newRow("already third") << QStringList({ "a", "b", "x" }) << QStringList({ "x", "a", "b" });
    QTest::newRow("held twice") << QStringList({ "x", "a", "x" }) << QStringList({ "x", "a" });
    QTest::newRow("another case") << QStringList({ "X", "a" }) << QStringList({ "x", "X", "a" });
}

void TestSettings::promotedMovesANameToTheFront()
{
    QFETCH(const QStringList, before);
    QTEST(settings::promoted(before, "x"), "after");
}

void TestSettings::withoutDropsEveryEqualName()
{
    QCOMPARE(settings::without({ "x", "a", "X", "x" }, "x"), QStringList({ "a", "X" }));
}

QTEST_MAIN(TestSettings)
#include "TestSettings.moc"
