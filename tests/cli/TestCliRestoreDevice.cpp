// velmora-cli restore: into which device it writes at all.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "RestoredDevice.h"

#include <QTest>

class TestCliRestoreDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_device = std::make_unique<CRestoredDevice>(); }

    void refusesAnotherDevice_data();
    void refusesAnotherDevice();
    void forceWritesAllTheSame();
    void anotherRevisionIsOnlyTold();
    void fileThatTellsNoDeviceNeedsForce();
    void fileMustTellAllOfTheDeviceThatItDescribes();
    void deviceThatDoesNotTellWhatItIs();
    void configurationTellsTheDeviceByItsDefaults();

private:
    std::unique_ptr<CRestoredDevice> m_device;
};

void TestCliRestoreDevice::refusesAnotherDevice_data()
{
    QTest::addColumn<unsigned>("index");
    QTest::addColumn<unsigned>("subIndex");
    QTest::addColumn<QString>("message");
    QTest::newRow("type") << 0x1000U << 0U
                          << "1000 (Device type) is 0x000F0191 in the file and 0x00000009 in the device";
    QTest::newRow("vendor") << 0x1018U << 1U
                            << "1018:1 (Vendor-ID) is 0x0000F0B5 in the file and 0x00000009 in the device";
    QTest::newRow("product") << 0x1018U << 2U
                             << "1018:2 (Product code) is 0x00000401 in the file and 0x00000009 in the device";
}

void TestCliRestoreDevice::refusesAnotherDevice()
{
    QFETCH(const unsigned, index);
    QFETCH(const unsigned, subIndex);
    QFETCH(const QString, message);
    m_device->set(index, subIndex, "09000000");
    const QString refused = "-- 1\n" + message + "\nnothing was written; --force does it nevertheless\n";
    QCOMPARE(m_device->restore(threeLines, { "--store" }), refused);
    QCOMPARE(m_device->restore(threeLines, { "--keep-going" }), refused);
    QCOMPARE(m_device->steps(), QStringList());
}

void TestCliRestoreDevice::forceWritesAllTheSame()
{
    m_device->set(0x1000, 0, "09000000");
    QCOMPARE(m_device->restore(threeLines, { "--force" }),
             threePlanned + "-- 0\n1000 (Device type) is 0x000F0191 in the file and 0x00000009 in the device\n"
                            "3 of 3 values were written\n");
    QCOMPARE(m_device->steps(), threeWritten);
}

void TestCliRestoreDevice::anotherRevisionIsOnlyTold()
{
    m_device->set(0x1018, 3, "01000000");
    m_device->set(0x1018, 4, "01000000");
    QCOMPARE(
        m_device->restore({ "0x1018,3,Revision,Unsigned32,RO,4,0x2,", "0x1018,4,Serial number,Unsigned32,RO,4,0x2," }),
        "-- 0\n1018:3 (Revision) is 0x00000002 in the file and 0x00000001 in the device\n"
        "nothing differs\n");
}

void TestCliRestoreDevice::fileThatTellsNoDeviceNeedsForce()
{
    const CDumpFile file(threeLines);
    CCliRun run(m_device->arguments(file.name()));
    const QString told = "the file does not tell of which device it is (1000, 1018)\n";
    QCOMPARE(run.outcome(), "-- 1\n" + told + "nothing was written; --force does it nevertheless\n");
    QCOMPARE(m_device->steps(), QStringList());
    CCliRun forced(m_device->arguments(file.name(), { "--force" }));
    QCOMPARE(forced.outcome(), threePlanned + "-- 0\n" + told + "3 of 3 values were written\n");
}

void TestCliRestoreDevice::fileMustTellAllOfTheDeviceThatItDescribes()
{
    const auto shown = [this](const QByteArrayList& lines) {
        const CDumpFile file(lines);
        CCliRun run(m_device->arguments(file.name()));
        return run.outcome();
    };
    const QString refused = "nothing was written; --force does it nevertheless\n";
    QByteArrayList lines = identityLines;
    lines[2] = "0x1018,2,Product code,Unsigned32,RO,,,";
    QCOMPARE(shown(lines), "-- 1\nthe file has no value of 1018:2 (Product code)\n" + refused);
    lines.removeLast(); // a device of this kind has none
    QCOMPARE(shown(lines), "-- 0\nnothing differs\n");
    QCOMPARE(shown({ "0x1018,3,Revision,Unsigned32,RO,,," }),
             "-- 1\nthe file does not tell of which device it is (1000, 1018)\n" + refused);
}

void TestCliRestoreDevice::deviceThatDoesNotTellWhatItIs()
{
    m_device->setHook(answering("read 1018:1", "ERROR: 0x08000020"));
    const QString told = "1018:1: aborted by the device: 0x08000020 (Data cannot be transferred or stored to the "
                         "application.)\n";
    QCOMPARE(m_device->restore(threeLines), "-- 4\n" + told + "nothing was written; --force does it nevertheless\n");
    QCOMPARE(m_device->steps(), QStringList());
    QCOMPARE(m_device->restore(threeLines, { "--force" }),
             threePlanned + "-- 0\n" + told + "3 of 3 values were written\n");
}

// Many write a value into a configuration only where it is not the default one.
void TestCliRestoreDevice::configurationTellsTheDeviceByItsDefaults()
{
    const CSheetFile file(sheetOf(0x1000, 7, "ro", "Device type", "DefaultValue=0xF0191\n"), "device.dcf");
    CCliRun run(m_device->arguments(file.name()));
    QCOMPARE(run.outcome(), "-- 0\nnothing differs\n");
    m_device->set(0x1000, 0, "92010F00");
    CCliRun other(m_device->arguments(file.name()));
    QCOMPARE(other.outcome(), "-- 1\n1000 (Device type) is 0x000F0191 in the file and 0x000F0192 in the device\n"
                              "nothing was written; --force does it nevertheless\n");
}

QTEST_GUILESS_MAIN(TestCliRestoreDevice)
#include "TestCliRestoreDevice.moc"
