// Data sheets that break a rule, and paths that are no data sheets at all: nothing hangs, nothing crashes.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"
#include "dic/IniReader.h"

#include "Sheet.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

/// Takes the superuser's rights away while it lives, since the superuser may read every file.
class COrdinaryUser
{
public:
    COrdinaryUser() : m_user(geteuid())
    {
        if (m_user == 0 && seteuid(65534) != 0)
            qFatal("cannot become an ordinary user");
    }
    ~COrdinaryUser()
    {
        if (seteuid(m_user) != 0)
            qFatal("cannot become the superuser again");
    }
    Q_DISABLE_COPY_MOVE(COrdinaryUser)

private:
    const uid_t m_user;
};

struct tBadSheet {
    const char* file;
    int line;
    int objects; // created before the error
};

static const tBadSheet badSheets[] = {
    { "blank_before_equals_sign.eds", 4, 1 }, { "blank_before_section_header.eds", 4, 1 },
    { "blank_in_section_name.eds", 4, 1 },    { "bracket_nested.eds", 4, 1 },
    { "bracket_not_closed.eds", 4, 1 },       { "carriage_returns_only.eds", 1, 0 },
    { "comment_with_hash_sign.eds", 4, 1 },   { "key_before_any_section.eds", 4, 0 },
    { "key_named_underscore.eds", 4, 1 },     { "key_with_hyphen.eds", 4, 1 },
    { "key_without_equals_sign.eds", 4, 1 },  { "key_without_name.eds", 4, 1 },
    { "section_named_underscore.eds", 4, 1 }, { "section_without_name.eds", 4, 1 },
    { "text_after_blanks.eds", 4, 1 },        { "text_behind_section_header.eds", 4, 1 },
    { "two_carriage_returns.eds", 4, 1 },     { "zero_byte_in_key.eds", 4, 1 },
};

class TestBadSheets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void brokenRuleEndsTheLoadInItsLine_data();
    void brokenRuleEndsTheLoadInItsLine();
    void everyBadSheetHasARow();
    void pathsThatCannotBeReadAreEmptySheets_data();
    void pathsThatCannotBeReadAreEmptySheets();
    void fileWithoutPermissionIsAnEmptySheet();
    void pipeWithoutWriterDoesNotHang();
    void endlessDevicesDoNotHang_data();
    void endlessDevicesDoNotHang();
    void emptyDeviceIsAnEmptySheet() { expectEmpty("/dev/null"); }
    void linkToItselfIsAnEmptySheet();
    void fileThatShrinksWhileItIsReadEndsThere();
    void fileThatGrowsWhileItIsReadDoesNotHang();
    void fileThatTurnsIntoContinuationBytesIsReadInLines();
    void anyBytesLoadOrFail();          // random, but the same in every run
    void anyPiecesOfASheetLoadOrFail(); // these get further than random bytes

private:
    static void expectEmpty(const QString& path)
    {
        CCANopen dictionary;
        QCOMPARE(CCANopenReader(&dictionary, CCANopen::typeEDS).load(QFile::encodeName(path)), 1);
        QCOMPARE(dictionary.getFileName(), path);
        QCOMPARE(qsizetype(dictionary.m_objectArray.size()), 0);
        QVERIFY(!dictionary.m_deviceInfo);
    }
};

void TestBadSheets::brokenRuleEndsTheLoadInItsLine_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("objects");
    for (const tBadSheet& sheet : badSheets)
        QTest::newRow(sheet.file) << sheet.line << sheet.objects;
}

void TestBadSheets::brokenRuleEndsTheLoadInItsLine()
{
    const QString path = QString(VELMORA_TEST_DATA "/bad/%1").arg(QString(QTest::currentDataTag()));
    QVERIFY(QFile::exists(path));
    CCANopen dictionary;
    QCOMPARE(CCANopenReader(&dictionary, CCANopen::typeEDS).load(QFile::encodeName(path)), 0);
    QTEST(CIniReader().getLineOfError(), "line");
    QTEST(int(dictionary.m_objectArray.size()), "objects");
}

void TestBadSheets::everyBadSheetHasARow()
{
    QStringList rows;
    for (const tBadSheet& sheet : badSheets)
        rows << sheet.file;
    QCOMPARE(QDir(VELMORA_TEST_DATA "/bad").entryList(QDir::Files), rows);
}

void TestBadSheets::pathsThatCannotBeReadAreEmptySheets_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("empty") << "";
    QTest::newRow("directory") << QDir::tempPath();
    QTest::newRow("missing") << QDir::tempPath() + "/no/such/sheet.eds";
    QTest::newRow("below a file") << VELMORA_TEST_DATA "/simple_variable.eds/sheet.eds";
    QTest::newRow("too long") << QDir::tempPath() + '/' + QString(5000, 'x');
    QTest::newRow("unreadable memory") << "/proc/self/mem"; // opens, and every read fails
}

void TestBadSheets::pathsThatCannotBeReadAreEmptySheets()
{
    QFETCH(QString, path);
    expectEmpty(path);
}

void TestBadSheets::fileWithoutPermissionIsAnEmptySheet()
{
    const CSheetFile file("[1000]\nObjectType=7\n");
    QVERIFY(QFile::setPermissions(file.path(), {}));
    const COrdinaryUser user;
    QVERIFY(!QFile(file.path()).open(QIODevice::ReadOnly));
    expectEmpty(file.path());
}

void TestBadSheets::pipeWithoutWriterDoesNotHang()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("pipe.eds");
    QCOMPARE(mkfifo(QFile::encodeName(path), 0600), 0);
    expectEmpty(path);
}

void TestBadSheets::endlessDevicesDoNotHang_data()
{
    QTest::addColumn<QByteArray>("device");
    for (const char* device : { "/dev/zero", "/dev/full", "/dev/urandom" })
        QTest::newRow(device) << QByteArray(device);
}

void TestBadSheets::endlessDevicesDoNotHang()
{
    QFETCH(QByteArray, device);
    CCANopen dictionary;
    const int result = CCANopenReader(&dictionary, CCANopen::typeEDS).load(device);
    QVERIFY(result == 0 || result == 1);
    QCOMPARE(qsizetype(dictionary.m_objectArray.size()), 0);
}

void TestBadSheets::linkToItselfIsAnEmptySheet()
{
    const QTemporaryDir folder;
    QVERIFY(QFile::link("loop.eds", folder.filePath("loop.eds")));
    expectEmpty(folder.filePath("loop.eds"));
}

void TestBadSheets::fileThatShrinksWhileItIsReadEndsThere()
{
    const CSheetFile file("[a]\n" + QByteArray("k=1\n").repeated(1000000));
    CIniReader reader(file.name());
    QCOMPARE(reader.moveToNextItem(), 1);
    QVERIFY(QFile::resize(file.path(), 8));
    int result = 2;
    int items = 1;
    for (; result == 2; ++items)
        result = reader.moveToNextItem();
    QVERIFY(result == -1 || result == 0);
    QVERIFY(items <= 1000001);
}

void TestBadSheets::fileThatGrowsWhileItIsReadDoesNotHang()
{
    const CSheetFile file("[a]\nk=1\n");
    CIniReader reader(file.name());
    QCOMPARE(reader.moveToNextItem(), 1);
    QFile more(file.path());
    QVERIFY(more.open(QIODevice::Append));
    more.write(QByteArray("l=\xFF\n").repeated(1000));
    more.close();
    int result = 2;
    while (result == 2)
        result = reader.moveToNextItem();
    QVERIFY(result == -1 || result == 0);
}

void TestBadSheets::fileThatTurnsIntoContinuationBytesIsReadInLines() // none of them begins a character
{
    const QByteArray text = "[a]\nk=1\n;" + QByteArray(1000000, 'x');
    const CSheetFile file(text);
    CIniReader reader(file.name());
    QFile changed(file.path());
    QVERIFY(changed.open(QIODevice::ReadWrite));
    changed.write("[a]\nk=1\n;" + QByteArray(1000000, '\x80'));
    changed.close();
    QCOMPARE(reader.moveToNextItem(), 1);
    QCOMPARE(reader.moveToNextItem(), 0); // the rest of the comment is not one
    QCOMPARE(reader.getLineOfError(), 4);
}

void TestBadSheets::anyBytesLoadOrFail()
{
    QRandomGenerator random(20);
    for (int round = 0; round < 100; ++round) {
        QByteArray bytes(random.bounded(2000), '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random.bounded(256));
        const CLoadedSheet sheet(bytes);
        QVERIFY(sheet.result == 0 || sheet.result == 1);
    }
}

void TestBadSheets::anyPiecesOfASheetLoadOrFail()
{
    static const char* const pieces[] = { "[",
                                          "]",
                                          "\n",
                                          "\r\n",
                                          "=",
                                          ";",
                                          "1018",
                                          "sub",
                                          "1",
                                          "0x1000",
                                          " ",
                                          "\t",
                                          "_",
                                          "FileInfo",
                                          "[1018sub",
                                          "[1000]",
                                          "DataType",
                                          "ObjectType=7\n",
                                          "OptionalObjects",
                                          "\xE4",
                                          "[MandatoryObjects]\n",
                                          "1=0x1000\n",
                                          "[DeviceInfo]\n",
                                          "VendorName=x\n",
                                          "ParameterName=\xC3\xA4\n",
                                          "[1018sub1]\n",
                                          "LowLimit=1\n",
                                          "$NODEID+" };
    QRandomGenerator random(21);
    int loaded = 0;
    int objects = 0;
    for (int round = 0; round < 500; ++round) {
        QByteArray text;
        for (int count = random.bounded(30); count > 0; --count)
            text += pieces[random.bounded(int(std::size(pieces)))];
        const CLoadedSheet sheet(text);
        QVERIFY(sheet.result == 0 || sheet.result == 1);
        loaded += sheet.result;
        objects += int(sheet.count());
    }
    QVERIFY(loaded > 0 && loaded < 500 && objects > 0); // some load, some fail
}

QTEST_APPLESS_MAIN(TestBadSheets)
#include "TestBadSheets.moc"
