// Every system call fails with which velmora-cli and the browser read sheets and dumps, and write files: what is read
// is whole or refused, what is written is the new file or the old one.
// SPDX-License-Identifier: MIT
#include "FaultRun.h"
#include "SheetFile.h"

#include "console/OutputFile.h"
#include "dic/CANopenReader.h"
#include "sheets/DcfText.h"
#include "sheets/DictionaryList.h"
#include "sheets/SheetCheck.h"
#include "sheets/Snapshot.h"
#include "sheets/SnapshotText.h"

#include "dic/DataSheet.h"

#include <QCryptographicHash>

using faultRun::failEach;
using faultRun::tFault;

namespace
{

// A sheet of several blocks, most of it comments, with characters of Windows-1252 at its end, so that all blocks count.
QByteArray largeSheet(bool isConfiguration)
{
    QByteArray list, sections;
    constexpr int objects = 20;
    const QByteArray comment = "; " + QByteArray(7'000, 'x') + '\n';
    for (int n = 1; n <= objects; ++n) {
        const QByteArray index = QByteArray::number(0x2000 + n, 16);
        list += QByteArray::number(n) + "=0x" + index + "\n";
        sections += comment + "[" + index + "]\nParameterName=" + (n == objects ? "\xC4\xD6\xDC" : "Value") +
                    "\nObjectType=7\nDataType=6\nAccessType=rw\nDefaultValue=" + QByteArray::number(n) + "\n" +
                    (isConfiguration ? "ParameterValue=" + QByteArray::number(n + 1) + "\n" : QByteArray());
    }
    return "[ManufacturerObjects]\nSupportedObjects=20\n" + list + sections +
           (isConfiguration ? "[DeviceComissioning]\nNodeID=5\n" : "");
}

QString digest(const QByteArray& bytes)
{
    return QString::number(bytes.size()) + ' ' +
           QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

QString listOf(const CCANopen& dictionary)
{
    return digest(listAsCsv(dictionaryList(dictionary, {})));
}

// What becomes of a command, as the program shows it.
template <typename Command>
QString outcomeOf(Command command)
{
    try {
        return command();
    } catch (const tEnd& end) {
        return QString("status %1: %2").arg(end.status).arg(end.message);
    }
}

bool isRefusal(const QString& outcome, const QString& name)
{
    const QString end = QString("status %1: ").arg(exitUsage);
    return outcome == end + "no such file: " + name || outcome == end + "not a file: " + name ||
           outcome == end + "cannot read " + name || outcome.startsWith(end + "cannot read " + name + ": ");
}

using tOperation = QString (*)(const QString& fileName);

QString loadOf(const QString& name)
{
    CDataSheet sheet;
    loadSheet(sheet, name);
    return listOf(sheet.dictionary()) + ' ' + QString::number(sheet.parameterValues().size());
}

QString checkOf(const QString& name)
{
    const tCheckResult result = checkSheet(name, tRuleSet().set());
    if (!result.isRead)
        return QString("status %1: %2").arg(exitUsage).arg(result.verdict);
    QString text = result.verdict;
    for (const tFinding& finding : result.findings)
        text += QString(", %1:%2 %3").arg(finding.place.line).arg(finding.column).arg(finding.rule);
    return text;
}

QString dcfOf(const QString& name)
{
    CDataSheet sheet;
    loadSheet(sheet, name);
    tSnapshot snapshot = snapshotOf(sheet, 7);
    snapshot.nodeId = 7;
    const tDcfText dcf = dcfText(name, snapshot);
    return digest(dcf.text) + ' ' + QString::number(dcf.unwritten.size());
}

QString snapshotIn(const QString& name)
{
    const tSnapshot snapshot = loadSnapshot(name);
    return digest(snapshotAsCsv(snapshot)) + ' ' + QString::number(snapshot.nodeId);
}

} // namespace

class TestFailingFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsReadIsWholeOrRefused_data();
    void whatIsReadIsWholeOrRefused();
    void whatIsWrittenIsTheNewFileOrTheOld_data();
    void whatIsWrittenIsTheNewFileOrTheOld();
    void browserReadsOnAfterAFault();
    void cleanupTestCase() { qInfo("%d calls on files were failed", failedCalls); }

private:
    static inline int failedCalls = 0;
};

void TestFailingFiles::whatIsReadIsWholeOrRefused_data()
{
    QTest::addColumn<tOperation>("operation");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("load a sheet") << &loadOf << "large.eds" << largeSheet(false);
    QTest::newRow("load a configuration") << &loadOf << "large.dcf" << largeSheet(true);
    QTest::newRow("check a sheet") << &checkOf << "large.eds" << largeSheet(false);
    QTest::newRow("check a sheet of UTF-16") << &checkOf << "wide.eds" << QByteArray("\xFF\xFE[\0F\0", 6);
    QTest::newRow("make a configuration") << &dcfOf << "large.eds" << largeSheet(false);
    QTest::newRow("renew a configuration") << &dcfOf << "large.dcf" << largeSheet(true);
    QTest::newRow("take the values of a configuration") << &snapshotIn << "large.dcf" << largeSheet(true);
    QTest::newRow("take the values of a dump")
        << &snapshotIn << "dump.csv" << snapshotAsCsv({ 5, "a.eds", { tSnapshotEntry() }, true });
    QTest::newRow("take the values of a JSON dump")
        << &snapshotIn << "dump.json" << snapshotAsJson({ 5, "a.eds", { tSnapshotEntry() }, true });
}

void TestFailingFiles::whatIsReadIsWholeOrRefused()
{
    QFETCH(const tOperation, operation);
    QFETCH(const QString, name);
    QFETCH(const QByteArray, content);
    const CSheetFile file(content, name);
    const QString path = file.name();
    QString whole, outcome;
    const int failed = failEach(
        QFileInfo(path).path(), [] {}, [&] { outcome = outcomeOf([&] { return operation(path); }); },
        [&](const tFault& fault) {
            if (fault.nth == 0)
                whole = outcome;
            if (outcome == whole)
                return whole.startsWith("status") ? whole : QString();
            if (!isRefusal(outcome, path))
                return QString("neither the whole nor a refusal: ") + outcome;
            const QString next = outcomeOf([&] { return operation(path); });
            return next == whole ? QString() : "the next one gives " + next;
        });
    QVERIFY(failed > 0);
    failedCalls += failed;
}

void TestFailingFiles::whatIsWrittenIsTheNewFileOrTheOld_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<int>("size");
    for (const int size : { 0, 100, 1'000'000 }) {
        QTest::addRow("%d bytes in place of a file", size) << true << size;
        QTest::addRow("%d bytes", size) << false << size;
    }
}

void TestFailingFiles::whatIsWrittenIsTheNewFileOrTheOld()
{
    QFETCH(const bool, exists);
    QFETCH(const int, size);
    const QTemporaryDir folder;
    const QString path = folder.filePath("output.csv");
    const QByteArray before = exists ? QByteArray("before") : QByteArray(), after(size, 'x');
    const auto writeNew = [&] {
        CConsole console;
        writeOutput(console, path, after);
        return QString("written");
    };
    const auto found = [&] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? "\"" + file.readAll() + "\"" : QByteArray("none");
    };
    const QByteArray old = exists ? "\"before\"" : "none", renewed = '"' + after + '"';
    QString outcome;
    const auto prepare = [&] {
        for (const QString& name : QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System))
            QFile::remove(folder.filePath(name));
        QFile file(path);
        if (exists && (!file.open(QIODevice::WriteOnly) || file.write(before) != before.size()))
            qFatal("no file");
    };
    const auto check = [&](const tFault& fault) {
        const bool isWritten = outcome == "written";
        if (!isWritten && !outcome.startsWith(QString("status %1: cannot write %2: ").arg(exitUsage).arg(path)))
            return QString("outcome ") + outcome;
        if (found() != (isWritten ? renewed : old))
            return outcome + " and the file holds " + QString::fromUtf8(found().left(20));
        if (fault.call == "fsync" && isWritten && fault.error != EINTR && fault.error != EINVAL)
            return QString("written, but not known to be on the disk");
        const auto names = QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
        if (fault.call != "unlink" && names.size() != (found() == "none" ? 0 : 1))
            return "left over: " + names.join(' ');
        const QString next = outcomeOf(writeNew);
        return next == "written" && found() == renewed ? QString() : "the next one gives " + next;
    };
    const int failed = failEach(
        folder.path(), prepare, [&] { outcome = outcomeOf(writeNew); }, check);
    QVERIFY(failed > 0);
    failedCalls += failed;
}

// The browser takes what it can read of a sheet. It then reads another one as if nothing had happened.
void TestFailingFiles::browserReadsOnAfterAFault()
{
    const CSheetFile file(largeSheet(false), "large.eds");
    const QByteArray path = file.name().toLocal8Bit();
    QString whole;
    std::unique_ptr<CCANopen> dictionary;
    const auto load = [&] {
        dictionary = std::make_unique<CCANopen>();
        CCANopenReader reader(dictionary.get(), CCANopen::typeEDS);
        return reader.load(path.constData()) != 0;
    };
    bool isLoaded = false;
    const int failed = failEach(
        QFileInfo(file.name()).path(), [] {}, [&] { isLoaded = load(); },
        [&](const tFault& fault) {
            if (fault.nth == 0)
                whole = listOf(*dictionary);
            if (!isLoaded)
                return QString("refused");
            for (const auto& object : dictionary->m_objectArray)
                if (object->m_objectEntryArray.size() > 1)
                    return QString("an object is described twice");
            return load() && listOf(*dictionary) == whole ? QString() : QString("the next one is another");
        });
    QVERIFY(failed > 0);
    failedCalls += failed;
}

QTEST_GUILESS_MAIN(TestFailingFiles)
#include "TestFailingFiles.moc"
