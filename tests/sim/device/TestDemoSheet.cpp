// The sample data sheet: complete, consistent, and served by the simulator as it stands.
// SPDX-License-Identifier: MIT
#include "DemoSheet.h"
#include "device/SimulatedNetwork.h"

#include "dic/CANopen.h"
#include "dic/CANopenReader.h"

#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

namespace
{

// The file by section and key, read without the project's reader.
using tSections = QMap<QString, QMap<QString, QString>>;

tSections readSections()
{
    tSections sections;
    QFile file(demoSheet());
    if (!file.open(QIODevice::ReadOnly))
        return sections;
    QString section;
    const auto lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString& line : lines) {
        if (line.startsWith(u'['))
            section = line.mid(1, line.size() - 2);
        else if (line.contains(u'=') && !line.startsWith(u';'))
            sections[section].insert(line.section(u'=', 0, 0), line.section(u'=', 1));
    }
    return sections;
}

const QRegularExpression objectSection(QStringLiteral("^[1-9A-F][0-9A-F]{3}$"));
const QRegularExpression entrySection(QStringLiteral("^[1-9A-F][0-9A-F]{3}sub(0|[1-9A-F][0-9A-F]?)$"));

} // namespace

class TestDemoSheet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void allSectionsAreThere();
    void objectListsCountAndNameTheirObjects_data();
    void objectListsCountAndNameTheirObjects();
    void entriesCountInTheirObject();
    void everyDataTypeOccurs_data();
    void everyDataTypeOccurs();
    void everyAccessTypeOccurs_data();
    void everyAccessTypeOccurs();
    void everyObjectClassOccurs();
    void readerSeesTheSameObjects();
    void everyEntryIsServedWithItsAccess();
    void defaultsAreWithinTheLimits();

private:
    int count(const QString& key, const QString& value) const;

    tSections m_sections;
};

void TestDemoSheet::initTestCase()
{
    m_sections = readSections();
    QVERIFY(!m_sections.isEmpty());
}

// How many sections of objects and entries have this key with this value.
int TestDemoSheet::count(const QString& key, const QString& value) const
{
    int found = 0;
    for (auto section = m_sections.begin(); section != m_sections.end(); ++section)
        if (section->value(key) == value)
            ++found;
    return found;
}

void TestDemoSheet::allSectionsAreThere()
{
    for (const char* name : { "FileInfo", "DeviceInfo", "DummyUsage", "Comments", "MandatoryObjects", "OptionalObjects",
                              "ManufacturerObjects" })
        QVERIFY2(m_sections.contains(QLatin1String(name)), name);
    QCOMPARE(m_sections[QStringLiteral("Comments")].size(),
             m_sections[QStringLiteral("Comments")][QStringLiteral("Lines")].toInt() + 1);
    QCOMPARE(m_sections[QStringLiteral("DeviceInfo")][QStringLiteral("VendorName")], QStringLiteral("Brask Works"));
}

void TestDemoSheet::objectListsCountAndNameTheirObjects_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("MandatoryObjects") << 0x1000 << 0x1FFF;
    QTest::newRow("OptionalObjects") << 0x1000 << 0x9FFF;
    QTest::newRow("ManufacturerObjects") << 0x2000 << 0x5FFF;
}

void TestDemoSheet::objectListsCountAndNameTheirObjects()
{
    QFETCH(int, first);
    QFETCH(int, last);
    const auto list = m_sections[QString::fromLatin1(QTest::currentDataTag())];
    const int supported = list[QStringLiteral("SupportedObjects")].toInt();
    QVERIFY(supported > 0);
    QCOMPARE(list.size(), supported + 1);
    for (int number = 1; number <= supported; ++number) {
        const QString index = list[QString::number(number)];
        QVERIFY2(m_sections.contains(index.mid(2)), qPrintable(index));
        QVERIFY2(index.toInt(nullptr, 16) >= first && index.toInt(nullptr, 16) <= last, qPrintable(index));
    }
}

void TestDemoSheet::entriesCountInTheirObject()
{
    QMap<QString, int> entries;
    for (auto section = m_sections.begin(); section != m_sections.end(); ++section)
        if (entrySection.match(section.key()).hasMatch())
            ++entries[section.key().left(4)];
    QVERIFY(entries.size() > 10);
    for (auto object = entries.begin(); object != entries.end(); ++object)
        QCOMPARE(m_sections[object.key()][QStringLiteral("SubNumber")].toInt(), object.value());
}

void TestDemoSheet::everyDataTypeOccurs_data()
{
    QTest::addColumn<int>("dataType");
    for (int type : { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15, 16, 17, 18, 19, 20, 21, 22, 24, 25, 26, 27 })
        QTest::newRow(QByteArray::number(type)) << type;
}

void TestDemoSheet::everyDataTypeOccurs()
{
    QFETCH(int, dataType);
    QVERIFY(count(QStringLiteral("DataType"), QStringLiteral("0x%1")
                                                  .arg(dataType, 4, 16, QLatin1Char('0'))
                                                  .toUpper()
                                                  .replace(QLatin1Char('X'), QLatin1Char('x'))) > 0);
}

void TestDemoSheet::everyAccessTypeOccurs_data()
{
    QTest::addColumn<QString>("access");
    for (const char* access : { "ro", "wo", "rw", "rwr", "rww", "const" })
        QTest::newRow(access) << QString::fromLatin1(access);
}

void TestDemoSheet::everyAccessTypeOccurs()
{
    QFETCH(QString, access);
    QVERIFY(count(QStringLiteral("AccessType"), access) > 0);
}

void TestDemoSheet::everyObjectClassOccurs()
{
    for (const char* objectType : { "0x2", "0x7", "0x8", "0x9" })
        QVERIFY2(count(QStringLiteral("ObjectType"), QLatin1String(objectType)) > 0, objectType);
}

void TestDemoSheet::readerSeesTheSameObjects()
{
    CCANopen dictionary;
    CCANopenReader reader(&dictionary, CCANopen::typeEDS);
    QCOMPARE(reader.load(QFile::encodeName(demoSheet()).constData()), 1);
    int objects = 0;
    int entries = 0;
    for (auto section = m_sections.begin(); section != m_sections.end(); ++section) {
        const bool object = objectSection.match(section.key()).hasMatch();
        objects += object ? 1 : 0;
        const QString type = section->value(QStringLiteral("ObjectType"));
        const bool compound = type == QLatin1String("0x8") || type == QLatin1String("0x9");
        if (entrySection.match(section.key()).hasMatch() || (object && !compound))
            ++entries;
    }
    QCOMPARE(static_cast<int>(dictionary.m_objectArray.size()), objects);
    int read = 0;
    for (const auto& object : dictionary.m_objectArray)
        read += static_cast<int>(object->m_objectEntryArray.size());
    QCOMPARE(read, entries);
    QVERIFY(dictionary.m_deviceInfo != nullptr);
}

void TestDemoSheet::everyEntryIsServedWithItsAccess()
{
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, demoSheet()), QString());
    int served = 0;
    for (auto section = m_sections.begin(); section != m_sections.end(); ++section) {
        const QString access = section->value(QStringLiteral("AccessType"));
        if (access.isEmpty())
            continue;
        const unsigned index = section.key().left(4).toUInt(nullptr, 16);
        const unsigned subIndex = section.key().mid(7).toUInt(nullptr, 16);
        const tAbortCode expected = access == QLatin1String("wo") ? abortWriteOnly : abortNone;
        QVERIFY2(network.node(5)->read(index, subIndex).abortCode == expected, qPrintable(section.key()));
        const QByteArray tooLong(100, '\0');
        const tAbortCode refused = network.node(5)->write(index, subIndex, tooLong);
        const bool writable = access != QLatin1String("ro") && access != QLatin1String("const");
        QVERIFY2((refused != abortReadOnly) == writable, qPrintable(section.key()));
        ++served;
    }
    QVERIFY(served > 100);
}

// Every value can be written back, so each default is within its limits. 0x1010 and 0x1011 need a signature.
void TestDemoSheet::defaultsAreWithinTheLimits()
{
    CSimulatedNetwork network;
    QCOMPARE(network.add(5, demoSheet()), QString());
    for (auto section = m_sections.begin(); section != m_sections.end(); ++section) {
        const unsigned index = section.key().left(4).toUInt(nullptr, 16);
        const unsigned subIndex = section.key().mid(7).toUInt(nullptr, 16);
        const QString access = section->value(QStringLiteral("AccessType"));
        if (!access.startsWith(QLatin1String("rw")) || index == 0x1010 || index == 0x1011)
            continue;
        const QByteArray value = network.node(5)->read(index, subIndex).data;
        QVERIFY2(network.node(5)->write(index, subIndex, value) == abortNone, qPrintable(section.key()));
    }
}

QTEST_GUILESS_MAIN(TestDemoSheet)
#include "TestDemoSheet.moc"
