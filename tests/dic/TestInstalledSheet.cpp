// Data sheets that are named without a folder: those of the current folder, then the installed ones.
// SPDX-License-Identifier: MIT
#include "dic/InstalledSheet.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestInstalledSheet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void aSheetOfTheCurrentFolderComesFirst();
    void anInstalledSheetIsFoundBesideThePrograms();
    void whatIsNoInstalledFileKeepsItsName_data();
    void whatIsNoInstalledFileKeepsItsName();

private:
    static void put(const QString& name) { QVERIFY(QFile(name).open(QIODevice::WriteOnly)); }

    // Where a program that stands in bin/ finds share/velmora/. The process' number keeps two runs apart.
    const QString m_name = QString("installed-%1.eds").arg(QCoreApplication::applicationPid());
    QString m_folder;
    QTemporaryDir m_current;
};

void TestInstalledSheet::initTestCase()
{
    m_folder = QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../share/velmora");
    QVERIFY(QDir().mkpath(m_folder + "/" + m_name + ".folder"));
    put(m_folder + "/" + m_name);
    QVERIFY(QDir::setCurrent(m_current.path()));
}

void TestInstalledSheet::cleanupTestCase()
{
    QVERIFY(QFile::remove(m_folder + "/" + m_name));
    QVERIFY(QDir().rmdir(m_folder + "/" + m_name + ".folder"));
}

void TestInstalledSheet::aSheetOfTheCurrentFolderComesFirst()
{
    put(m_name);
    QCOMPARE(findSheet(m_name), m_name);
    QVERIFY(QFile::remove(m_name));
}

void TestInstalledSheet::anInstalledSheetIsFoundBesideThePrograms()
{
    QCOMPARE(findSheet(m_name), m_folder + "/" + m_name);
}

void TestInstalledSheet::whatIsNoInstalledFileKeepsItsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no file") << "none-" + m_name;
    QTest::newRow("a folder") << m_name + ".folder";
    QTest::newRow("named with a folder") << "./" + m_name;
}

void TestInstalledSheet::whatIsNoInstalledFileKeepsItsName()
{
    QFETCH(const QString, name);
    QCOMPARE(findSheet(name), name);
}

QTEST_GUILESS_MAIN(TestInstalledSheet)
#include "TestInstalledSheet.moc"
