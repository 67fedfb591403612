// The order in which parameters are written.
// SPDX-License-Identifier: MIT
#include "network/WriteOrder.h"
#include "sheets/EntryAccess.h"

#include "dic/CANopenObjectEntry.h"

#include <QTest>

namespace
{

using tEntry = CCANopenObjectEntry;

tSnapshotEntry entry(unsigned index, unsigned subIndex, const char* bytes, int access = tEntry::accessRW)
{
    tSnapshotEntry made;
    made.index = index;
    made.subIndex = subIndex;
    made.access = access;
    if (bytes != nullptr)
        made.value = QByteArray::fromHex(bytes);
    const qsizetype size = made.value.value_or(QByteArray(4, '\0')).size();
    made.type = size == 1 ? tEntry::typeUnsigned8 : size == 2 ? tEntry::typeUnsigned16 : tEntry::typeUnsigned32;
    return made;
}

tSnapshotEntry relative(tSnapshotEntry made)
{
    made.relative = true;
    return made;
}

using tEntries = std::vector<tSnapshotEntry>;

tSnapshot snapshotOf(const tEntries& entries, unsigned nodeId = 5)
{
    tSnapshot snapshot;
    snapshot.nodeId = nodeId;
    snapshot.entries = entries;
    return snapshot;
}

// The entries of the file that the device has otherwise.
std::vector<const tSnapshotEntry*> differing(const tSnapshot& file, const tSnapshot& device)
{
    std::vector<const tSnapshotEntry*> wanted;
    for (std::size_t place = 0; place < file.entries.size(); ++place)
        if (file.entries[place].value && isWritable(file.entries[place].access) &&
            file.entries[place].value != device.entries[place].value)
            wanted.push_back(&file.entries[place]);
    return wanted;
}

// "1A00=00* 1A00:1=08 01 00 60 1A00=01": a star marks a step on the way.
QString orderOf(const tEntries& fileEntries, const tEntries& deviceEntries, unsigned node = 5)
{
    const tSnapshot file = snapshotOf(fileEntries);
    const tSnapshot device = snapshotOf(deviceEntries, node);
    QStringList texts;
    for (const tWrite& write : orderOfWrites(differing(file, device), file, device)) {
        QString text = QString::number(write.entry->index, 16).toUpper();
        if (write.entry->subIndex != 0)
            text += ':' + QString::number(write.entry->subIndex, 16).toUpper();
        texts += text + '=' + write.bytes.toHex().toUpper() + (write.isStep ? "*" : "");
    }
    return texts.join(' ');
}

QString neededFor(const tEntries& fileEntries, const tEntries& deviceEntries)
{
    const tSnapshot file = snapshotOf(fileEntries);
    const tSnapshot device = snapshotOf(deviceEntries);
    QStringList texts;
    for (const std::size_t place : neededForOrder(differing(file, device), device))
        texts += QString::number(device.entries[place].index << 8 | device.entries[place].subIndex, 16).toUpper();
    return texts.join(' ');
}

} // namespace

class TestWriteOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pdoParametersAreThoseOfCommunicationAndMapping_data();
    void pdoParametersAreThoseOfCommunicationAndMapping();
    void otherParametersKeepTheirOrder();
    void pdoIsSwitchedOffMappedAndSwitchedOn();
    void switchingOffLeavesTheOtherBitsOfTheDevice();
    void relativeCobIdsAreThoseOfTheNode();
    void sameMappingIsNotTouched();
    void receivePdoAndEachPdoOnce();
    void readOnlyPartsAreNeverWritten();
    void objectsBehindTheMappedOnesAreWrittenOnlyWhenTheyDiffer();
    void multiplexedMappingsAreFilledToTheirEnd();
    void whatTheFileDoesNotTellStaysAsInTheDevice();
    void entriesThatTheOrderNeedsAreNamed();
    void otherCobIdsAreSwitchedOffBeforeTheyChange_data();
    void otherCobIdsAreSwitchedOffBeforeTheyChange();
    void cobIdsOfAnotherSizeAreOnlyWritten();
    void syncCounterIsWrittenWhileThePeriodIsZero();
};

void TestWriteOrder::pdoParametersAreThoseOfCommunicationAndMapping_data()
{
    QTest::addColumn<unsigned>("index");
    QTest::addColumn<bool>("is");
    for (const unsigned index : { 0x13FFU, 0x1C00U, 0x2400U, 0x1005U })
        QTest::addRow("%X", index) << index << false;
    for (const unsigned index : { 0x1400U, 0x15FFU, 0x1600U, 0x17FFU, 0x1800U, 0x19FFU, 0x1A00U, 0x1BFFU })
        QTest::addRow("%X", index) << index << true;
}

void TestWriteOrder::pdoParametersAreThoseOfCommunicationAndMapping()
{
    QFETCH(const unsigned, index);
    QTEST(isPdoParameter(index), "is");
}

void TestWriteOrder::otherParametersKeepTheirOrder()
{
    QCOMPARE(orderOf({ entry(0x2005, 0, "0A00"), entry(0x1017, 0, "E803"), entry(0x2001, 2, "07") },
                     { entry(0x2005, 0, "0B00"), entry(0x1017, 0, "E903"), entry(0x2001, 2, nullptr) }),
             "2005=0A00 1017=E803 2001:2=07");
}

void TestWriteOrder::pdoIsSwitchedOffMappedAndSwitchedOn()
{
    QCOMPARE(orderOf({ entry(0x1800, 1, "85010000"), entry(0x1800, 2, "FE"), entry(0x1800, 5, "6400"),
                       entry(0x2005, 0, "0A00"), entry(0x1A00, 0, "02"), entry(0x1A00, 1, "08010060"),
                       entry(0x1A00, 2, "08020060") },
                     { entry(0x1800, 1, "85020000"), entry(0x1800, 2, "FF"), entry(0x1800, 5, "6400"),
                       entry(0x2005, 0, "0B00"), entry(0x1A00, 0, "01"), entry(0x1A00, 1, "08010060"),
                       entry(0x1A00, 2, "00000000") }),
             "1800:1=85020080* 1A00=00* 1A00:1=08010060 1A00:2=08020060 1A00=02 1800:2=FE 1800:1=85010000 2005=0A00");
}

void TestWriteOrder::switchingOffLeavesTheOtherBitsOfTheDevice()
{
    QCOMPARE(orderOf({ entry(0x1801, 1, "86030080") }, { entry(0x1801, 1, "85020040") }),
             "1801:1=850200C0* 1801:1=86030080");
}

void TestWriteOrder::relativeCobIdsAreThoseOfTheNode()
{
    QCOMPARE(orderOf({ relative(entry(0x1800, 1, "80010000")), entry(0x1800, 2, "01") },
                     { relative(entry(0x1800, 1, "80020000")), entry(0x1800, 2, "02") }, 7),
             "1800:1=87020080* 1800:2=01 1800:1=87010000");
}

void TestWriteOrder::sameMappingIsNotTouched()
{
    const auto mapping = { entry(0x1A00, 0, "01"), entry(0x1A00, 1, "08010060") };
    tEntries file{ entry(0x1800, 1, "85010000"), entry(0x1800, 5, "6400") };
    tEntries device{ entry(0x1800, 1, "85010000"), entry(0x1800, 5, "0000") };
    file.insert(file.end(), mapping);
    device.insert(device.end(), mapping);
    QCOMPARE(orderOf(file, device), "1800:1=85010080* 1800:5=6400 1800:1=85010000");
}

void TestWriteOrder::receivePdoAndEachPdoOnce()
{
    QCOMPARE(orderOf({ entry(0x1401, 1, "05030000"), entry(0x1401, 2, "01"), entry(0x15FF, 2, "01"),
                       entry(0x1601, 0, "00"), entry(0x17FF, 0, "00") },
                     { entry(0x1401, 1, "05030000"), entry(0x1401, 2, "02"), entry(0x15FF, 2, "02"),
                       entry(0x1601, 0, "01"), entry(0x17FF, 0, "01") }),
             "1401:1=05030080* 1601=00* 1601=00 1401:2=01 1401:1=05030000 17FF=00* 17FF=00 15FF:2=01");
}

void TestWriteOrder::readOnlyPartsAreNeverWritten()
{
    const int readOnly = tEntry::accessRO;
    const int constant = tEntry::accessCONST;
    QCOMPARE(orderOf({ entry(0x1800, 1, "85010000", readOnly), entry(0x1A00, 0, "02", constant),
                       entry(0x1A00, 1, "08010060"), entry(0x1A00, 2, "08020060", readOnly) },
                     { entry(0x1800, 1, "85010000", readOnly), entry(0x1A00, 0, "02", constant),
                       entry(0x1A00, 1, "08030060"), entry(0x1A00, 2, "08020060", readOnly) }),
             "1A00:1=08010060");
    QVERIFY(!isWritable(readOnly));
    QVERIFY(!isWritable(constant));
    for (const int access : { tEntry::accessWO, tEntry::accessRW, tEntry::accessRWR, tEntry::accessRWW })
        QVERIFY(isWritable(access));
}

void TestWriteOrder::objectsBehindTheMappedOnesAreWrittenOnlyWhenTheyDiffer()
{
    QCOMPARE(orderOf({ entry(0x1A00, 0, "01"), entry(0x1A00, 1, "08010060"), entry(0x1A00, 2, "08020060"),
                       entry(0x1A00, 3, "00000000") },
                     { entry(0x1A00, 0, "01"), entry(0x1A00, 1, "08010060"), entry(0x1A00, 2, "00000000"),
                       entry(0x1A00, 3, "00000000") }),
             "1A00=00* 1A00:1=08010060 1A00:2=08020060 1A00=01");
}

void TestWriteOrder::multiplexedMappingsAreFilledToTheirEnd()
{
    QCOMPARE(orderOf({ entry(0x1A00, 0, "FF"), entry(0x1A00, 1, "08010060"), entry(0x1A00, 0xFE, "08020060") },
                     { entry(0x1A00, 0, "00"), entry(0x1A00, 1, "08010060"), entry(0x1A00, 0xFE, "08020060") }),
             "1A00=00* 1A00:1=08010060 1A00:FE=08020060 1A00=FF");
}

// A configuration file may have only some values.
void TestWriteOrder::whatTheFileDoesNotTellStaysAsInTheDevice()
{
    QCOMPARE(orderOf({ relative(entry(0x1800, 1, nullptr)), entry(0x1800, 2, nullptr), entry(0x1A00, 0, nullptr),
                       entry(0x1A00, 1, nullptr), entry(0x1A00, 2, "08020060") },
                     { relative(entry(0x1800, 1, "80010000")), entry(0x1800, 2, "01"), entry(0x1A00, 0, "02"),
                       entry(0x1A00, 1, "08010060"), entry(0x1A00, 2, "08030060") }),
             "1800:1=85010080* 1A00=00* 1A00:1=08010060 1A00:2=08020060 1A00=02 1800:1=85010000");
}

void TestWriteOrder::entriesThatTheOrderNeedsAreNamed()
{
    const tEntries device{ entry(0x1006, 0, nullptr), entry(0x1019, 0, "01"),    entry(0x1800, 1, nullptr),
                           entry(0x1800, 2, nullptr), entry(0x1801, 1, nullptr), entry(0x1801, 5, "00"),
                           entry(0x1A00, 0, nullptr), entry(0x1A00, 1, "00"),    entry(0x1A00, 2, nullptr),
                           entry(0x1A01, 0, nullptr), entry(0x2000, 0, nullptr) };
    const auto neededWhenDiffers = [&](std::size_t place) {
        tEntries file = device;
        file[place].value = QByteArray(1, '\7');
        return neededFor(file, device);
    };
    QCOMPARE(neededWhenDiffers(1), "100600");
    QCOMPARE(neededWhenDiffers(5), "180101");
    QCOMPARE(neededWhenDiffers(7), "180001 1A0000 1A0002");
    tEntries same = device;
    QCOMPARE(neededFor(same, device), "");
}

void TestWriteOrder::otherCobIdsAreSwitchedOffBeforeTheyChange_data()
{
    QTest::addColumn<unsigned>("index");
    QTest::addColumn<unsigned>("subIndex");
    QTest::addColumn<QByteArray>("present");
    QTest::addColumn<QByteArray>("off"); // empty: needs not be switched off
    QTest::newRow("SYNC, produced") << 0x1005U << 0U << QByteArray("81000040") << QByteArray("81000000");
    QTest::newRow("SYNC, consumed") << 0x1005U << 0U << QByteArray("81000000") << QByteArray();
    QTest::newRow("time stamp") << 0x1012U << 0U << QByteArray("010100C0") << QByteArray("01010000");
    QTest::newRow("emergency") << 0x1014U << 0U << QByteArray("86000000") << QByteArray("86000080");
    QTest::newRow("emergency, off") << 0x1014U << 0U << QByteArray("86000080") << QByteArray();
    QTest::newRow("emergency of another node") << 0x1028U << 3U << QByteArray("83000000") << QByteArray("83000080");
    QTest::newRow("SDO server") << 0x1201U << 1U << QByteArray("01060000") << QByteArray("01060080");
    QTest::newRow("SDO server in use") << 0x1200U << 1U << QByteArray("05060000") << QByteArray();
    QTest::newRow("SDO client") << 0x1280U << 2U << QByteArray("81050000") << QByteArray("81050080");
    QTest::newRow("node of the SDO client") << 0x1280U << 3U << QByteArray("81050000") << QByteArray();
    QTest::newRow("any number") << 0x2014U << 0U << QByteArray("86000000") << QByteArray();
}

void TestWriteOrder::otherCobIdsAreSwitchedOffBeforeTheyChange()
{
    QFETCH(const unsigned, index);
    QFETCH(const unsigned, subIndex);
    QFETCH(const QByteArray, present);
    QFETCH(const QByteArray, off);
    QString name = QString::number(index, 16);
    if (subIndex != 0)
        name += ':' + QString::number(subIndex);
    QString expected = name + "=85000000";
    if (!off.isEmpty())
        expected.prepend(name + '=' + off + "* ");
    QCOMPARE(orderOf({ entry(index, subIndex, "85000000") }, { entry(index, subIndex, present.constData()) }),
             expected);
}

void TestWriteOrder::cobIdsOfAnotherSizeAreOnlyWritten()
{
    QCOMPARE(orderOf({ entry(0x1014, 0, "8500"), entry(0x1800, 1, "8501") },
                     { entry(0x1014, 0, "8600"), entry(0x1800, 1, "8601") }),
             "1014=8500 1800:1=8501");
    QCOMPARE(orderOf({ entry(0x1014, 0, "85000000"), entry(0x1800, 1, "85010000") },
                     { entry(0x1014, 0, "8600"), entry(0x1800, 1, "8601") }),
             "1014=85000080* 1014=85000000 1800:1=85010080* 1800:1=85010000");
}

void TestWriteOrder::syncCounterIsWrittenWhileThePeriodIsZero()
{
    QCOMPARE(orderOf({ entry(0x1006, 0, "E8030000"), entry(0x1019, 0, "0A") },
                     { entry(0x1006, 0, "D0070000"), entry(0x1019, 0, "00") }),
             "1006=00000000* 1019=0A 1006=E8030000");
    QCOMPARE(orderOf({ entry(0x1006, 0, nullptr), entry(0x1019, 0, "0A") },
                     { entry(0x1006, 0, "D0070000"), entry(0x1019, 0, "00") }),
             "1006=00000000* 1019=0A 1006=D0070000");
    QCOMPARE(orderOf({ entry(0x1006, 0, "E8030000"), entry(0x1019, 0, "0A") },
                     { entry(0x1006, 0, "D0070000"), entry(0x1019, 0, "0A") }),
             "1006=E8030000");
}

QTEST_GUILESS_MAIN(TestWriteOrder)
#include "TestWriteOrder.moc"
