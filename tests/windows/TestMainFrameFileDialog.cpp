// The file dialog of the main frame: how it opens, what it offers, and what becomes of the answer.
// SPDX-License-Identifier: MIT
#include "FrameDriver.h"
#include "SheetFile.h"
#include "TempSettings.h"

#include <QFileInfo>
#include <QTest>
#include <QToolButton>

#include <optional>

class TestMainFrameFileDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }

    void keyOpensTheFileDialog();
    void toolButtonOpensTheFileDialog();
    void fileDialogOffersDataSheets();
    void fileDialogOpensOneExistingFile();
    void fileDialogStartsInTheFolderOfTheToolkit();
    void cancelledFileDialogAborts();
    void symbolicLinksAreResolved();

private:
    std::optional<CTempSettings> m_store;
};

void TestMainFrameFileDialog::keyOpensTheFileDialog()
{
    const CSheetFile sheet("[FileInfo]\nCreatedBy=me\n");
    CFrameDriver driver;
    driver.open(sheet.name());
    QCOMPARE(driver.documentCount(), 1);
    QCOMPARE(driver.document(0)->windowTitle(), sheet.name());
}

void TestMainFrameFileDialog::toolButtonOpensTheFileDialog()
{
    CFrameDriver driver;
    const CWhenShown<QFileDialog> files(&inDialog::cancel);
    for (auto* button : driver.frame.findChildren<QToolButton*>())
        if (button->defaultAction() == driver.action("file open"))
            QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(files.count(), 1);
}

void TestMainFrameFileDialog::fileDialogOffersDataSheets()
{
    CFrameDriver driver;
    QStringList filters, names;
    QObject* parent = nullptr;
    const CWhenShown<QFileDialog> files([&](QFileDialog* dialog) {
        filters = dialog->nameFilters();
        names << dialog->objectName();
        parent = dialog->parent();
        inDialog::cancel(dialog);
    });
    driver.choose("&File", "&Open...");
    QCOMPARE(files.count(), 1);
    QCOMPARE(filters, QStringList({ "CANopen EDS-files (*.eds)", "Any files (*)" }));
    QCOMPARE(names, QStringList({ "file open dialog" }));
    QCOMPARE(parent, &driver.frame);
}

void TestMainFrameFileDialog::fileDialogOpensOneExistingFile()
{
    CFrameDriver driver;
    QList<QFileDialog::FileMode> modes;
    QList<QFileDialog::AcceptMode> acceptModes;
    QStringList titles;
    const CWhenShown<QFileDialog> files([&](QFileDialog* dialog) {
        modes << dialog->fileMode();
        acceptModes << dialog->acceptMode();
        titles << dialog->windowTitle();
        inDialog::cancel(dialog);
    });
    driver.press(Qt::Key_O);
    QCOMPARE(modes, QList<QFileDialog::FileMode>{ QFileDialog::ExistingFile });
    QCOMPARE(acceptModes, QList<QFileDialog::AcceptMode>{ QFileDialog::AcceptOpen });
    QCOMPARE(titles, QStringList{ QFileDialog().windowTitle() }); // the toolkit's
}

// The toolkit keeps the folder in which a file was last looked for; the program has none of its own.
void TestMainFrameFileDialog::fileDialogStartsInTheFolderOfTheToolkit()
{
    const QTemporaryDir last;
    CFrameDriver driver;
    QFileDialog().setDirectory(last.path());
    QStringList folders;
    const CWhenShown<QFileDialog> files([&](QFileDialog* dialog) {
        folders << dialog->directory().absolutePath();
        inDialog::cancel(dialog);
    });
    driver.press(Qt::Key_O);
    QCOMPARE(folders, QStringList{ last.path() });
}

void TestMainFrameFileDialog::cancelledFileDialogAborts()
{
    CFrameDriver driver;
    m_store->setValue("Recent File List/File1", "/tmp/a.eds");
    const CWhenShown<QFileDialog> files(&inDialog::cancel);
    driver.press(Qt::Key_O);
    QCOMPARE(files.count(), 1);
    QCOMPARE(driver.statusText(), QString("Operation aborted"));
    QCOMPARE(driver.statusTime(), 2000);
    QCOMPARE(driver.documentCount(), 0);
    QCOMPARE(driver.frame.windowTitle(), QString("CANopen Object Browser - Version 0.2 Build 61"));
    QCOMPARE(m_store->value("Recent File List/File1"), QString("/tmp/a.eds"));
}

void TestMainFrameFileDialog::symbolicLinksAreResolved()
{
    const CSheetFile sheet("[FileInfo]\n");
    const QString link = sheet.name() + ".link.eds", linkToLink = sheet.name() + ".second.eds";
    QVERIFY(QFile::link(sheet.name(), link) && QFile::link(link, linkToLink));
    const QString name = QFileInfo(sheet.name()).canonicalFilePath();
    CFrameDriver driver;
    driver.open(linkToLink);
    QCOMPARE(driver.document(0)->windowTitle(), name);
    QCOMPARE(m_store->value("Recent File List/File1"), name);
}

QTEST_MAIN(TestMainFrameFileDialog)
#include "TestMainFrameFileDialog.moc"
