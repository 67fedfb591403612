// The program writes no file but its settings. What the toolkit keeps for its own file dialog is the toolkit's.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "FakeGateway.h"
#include "FrameDriver.h"
#include "SheetFile.h"

#include <QDirIterator>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

namespace
{

// All files below a folder, with paths relative to it.
QStringList filesBelow(const QString& folder)
{
    QStringList names;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (entries.hasNext())
        names << QDir(folder).relativeFilePath(entries.next());
    names.sort();
    return names;
}

} // namespace

class TestOwnFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void onlyTheSettingsAreWritten();
    void settingsHoldNothingButListsAndDisplayMode();

private:
    void useTheProgram();

    std::unique_ptr<QTemporaryDir> m_home; // that of the user, and the folder where the program was started
    std::unique_ptr<CSheetFile> m_sheet;
};

void TestOwnFiles::init()
{
    m_sheet = std::make_unique<CSheetFile>(sheetOf(0x2000, 5));
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_home->path()).mkdir("tmp"));
    for (const auto& [variable, folder] :
         { std::pair("HOME", ""), std::pair("XDG_CONFIG_HOME", "/config"), std::pair("XDG_DATA_HOME", "/data"),
           std::pair("XDG_CACHE_HOME", "/cache"), std::pair("XDG_STATE_HOME", "/state"), std::pair("TMPDIR", "/tmp") })
        qputenv(variable, QFile::encodeName(m_home->path() + folder));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_home->path() + "/config");
    QVERIFY(QDir::setCurrent(m_home->path()));
}

void TestOwnFiles::cleanup()
{
    QVERIFY(QDir::setCurrent(QDir::rootPath())); // the folders vanish
    qunsetenv("TMPDIR");
}

void TestOwnFiles::useTheProgram()
{
    const CBoxCatcher catcher;
    const CSheetFile broken("no section\n");
    CFakeGateway gateway;
    gateway.answerWith([](const std::string& line) {
        return line.find(" read ") != std::string::npos ? "[#] 7\r\n" : "[#] Error: 103\r\n";
    });
    CFrameDriver driver;
    driver.initialize("no such interface");
    driver.initializeGateway(gateway.port());
    driver.open(m_sheet->name(), 5);
    driver.open(broken.name());
    CMDIWindow* document = driver.document(0);
    driver.workspace()->setActiveSubWindow(driver.subWindow(0));
    document->mouseLeftPressed(document->findChild<QTreeWidget*>()->topLevelItem(0)->child(0)->child(0));
    document->findChild<QLineEdit*>("new value line edit")->setText("9");
    document->buttonSendClicked();
    document->buttonReadClicked();
    document->buttonOctClicked();
    {
        const CWhenShown<QDialog> info(&inDialog::cancel);
        driver.frame.deviceInfo();
    }
    driver.frame.interfaceProperties();
    driver.frame.filePrint();
    driver.frame.helpTopic();
    driver.frame.helpAbout();
    QVERIFY(driver.frame.close());
}

void TestOwnFiles::onlyTheSettingsAreWritten()
{
    useTheProgram();
    QStringList files = filesBelow(m_home->path());
    files.removeAll("config/QtProject.conf");
    QCOMPARE(files, QStringList{ "config/Brask Works.conf" });
    QCOMPARE(filesBelow(QFileInfo(m_sheet->name()).absolutePath()), QStringList{ "device.eds" });
}

void TestOwnFiles::settingsHoldNothingButListsAndDisplayMode()
{
    useTheProgram();
    const QSettings stored(m_home->path() + "/config/Brask Works.conf", QSettings::NativeFormat);
    QCOMPARE(stored.allKeys(),
             QStringList({ "CANopen Object Browser/Recent File List/File1", "CANopen Object Browser/Settings/Display",
                           "CANopen Object Browser/Used Interfaces/Interface1" }));
}

QTEST_MAIN(TestOwnFiles)
#include "TestOwnFiles.moc"
