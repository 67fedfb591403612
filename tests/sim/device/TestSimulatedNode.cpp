// The object store of a simulated device: access rights, widths, limits, stored values and NMT states.
// SPDX-License-Identifier: MIT
#include "NodeSheet.h"
#include "SheetFile.h"
#include "device/SimulatedNetwork.h"

#include <QTest>

#include <memory>

namespace
{

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

const QByteArray saveSignature("save");
const QByteArray loadSignature("load");

} // namespace

class TestSimulatedNode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void defaultsAreRead_data();
    void defaultsAreRead();
    void missingAndWriteOnlyEntriesAbortTheRead_data();
    void missingAndWriteOnlyEntriesAbortTheRead();
    void refusedWritesAbortAndChangeNothing_data();
    void refusedWritesAbortAndChangeNothing();
    void writtenValuesAreReadBack_data();
    void writtenValuesAreReadBack();
    void resetPutsDefaultsBack();
    void resetOfCommunicationLeavesOtherObjects();
    void savedValuesSurviveAReset();
    void savedCommunicationIsOnlyThat();
    void loadBringsTheDefaultsBackAtTheNextReset();
    void wrongSignatureIsRefused();
    void stoppedDeviceAnswersNoSdo();
    void writesAreCheckedBeforeTheirDataCome();
    void entriesTellTheirType();
    void listenerIsToldOfResetsStatesAndValues();

private:
    const CSheetFile m_sheet{ nodeSheet };
    std::unique_ptr<CSimulatedNetwork> m_network;
    CSimulatedNode* m_node = nullptr;
};

void TestSimulatedNode::init()
{
    m_network = std::make_unique<CSimulatedNetwork>();
    QCOMPARE(m_network->add(5, m_sheet.name()), QString());
    m_node = m_network->node(5);
    QVERIFY(m_node != nullptr);
    QCOMPARE(m_node->objectCount(), 14);
    QCOMPARE(m_node->state(), statePreOperational);
}

void TestSimulatedNode::defaultsAreRead_data()
{
    QTest::addColumn<unsigned>("index");
    QTest::addColumn<unsigned>("subIndex");
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("node-id") << 0x1005U << 0U << hex("85000000");
    QTest::newRow("read only") << 0x2000U << 0U << hex("3412");
    QTest::newRow("constant") << 0x2002U << 0U << hex("0700");
    QTest::newRow("missing default") << 0x2005U << 0U << hex("00");
    QTest::newRow("text") << 0x2006U << 0U << QByteArray("Velmora");
    QTest::newRow("array size") << 0x6000U << 0U << hex("02");
    QTest::newRow("first of two descriptions") << 0x6000U << 2U << hex("FEFFFFFF");
}

void TestSimulatedNode::defaultsAreRead()
{
    QFETCH(unsigned, index);
    QFETCH(unsigned, subIndex);
    QFETCH(QByteArray, data);
    const tSdoData result = m_node->read(index, subIndex);
    QCOMPARE(result.abortCode, abortNone);
    QCOMPARE(result.data, data);
}

void TestSimulatedNode::missingAndWriteOnlyEntriesAbortTheRead_data()
{
    QTest::addColumn<unsigned>("index");
    QTest::addColumn<unsigned>("subIndex");
    QTest::addColumn<tAbortCode>("code");
    QTest::newRow("object") << 0x5FFFU << 0U << 0x06020000U;
    QTest::newRow("sub-index of a variable") << 0x2000U << 1U << 0x06090011U;
    QTest::newRow("sub-index of an array") << 0x6000U << 1U << 0x06090011U;
    QTest::newRow("array without entries") << 0x2008U << 0U << 0x06090011U;
    QTest::newRow("write-only") << 0x2001U << 0U << 0x06010001U;
}

void TestSimulatedNode::missingAndWriteOnlyEntriesAbortTheRead()
{
    QFETCH(unsigned, index);
    QFETCH(unsigned, subIndex);
    QFETCH(tAbortCode, code);
    QCOMPARE(m_node->read(index, subIndex).abortCode, code);
}

void TestSimulatedNode::refusedWritesAbortAndChangeNothing_data()
{
    QTest::addColumn<unsigned>("index");
    QTest::addColumn<unsigned>("subIndex");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<tAbortCode>("code");
    QTest::newRow("object") << 0x5FFFU << 0U << hex("00") << 0x06020000U;
    QTest::newRow("sub-index") << 0x2003U << 1U << hex("00") << 0x06090011U;
    QTest::newRow("read only") << 0x2000U << 0U << hex("0000") << 0x06010002U;
    QTest::newRow("read only, wrong length") << 0x2000U << 0U << hex("00") << 0x06010002U;
    QTest::newRow("constant") << 0x2002U << 0U << hex("0000") << 0x06010002U;
    QTest::newRow("too long") << 0x2003U << 0U << hex("0000") << 0x06070012U;
    QTest::newRow("too short") << 0x2004U << 0U << hex("0000") << 0x06070013U;
    QTest::newRow("empty") << 0x2004U << 0U << QByteArray() << 0x06070013U;
    QTest::newRow("signed above") << 0x2003U << 0U << hex("15") << 0x06090031U;
    QTest::newRow("signed below") << 0x2003U << 0U << hex("F5") << 0x06090032U;
    QTest::newRow("unsigned above") << 0x2004U << 0U << hex("06010000") << 0x06090031U;
    QTest::newRow("unsigned far above") << 0x2004U << 0U << hex("FFFFFFFF") << 0x06090031U;
    QTest::newRow("unsigned below") << 0x2004U << 0U << hex("0F000000") << 0x06090032U;
    QTest::newRow("neither true nor false") << 0x2005U << 0U << hex("02") << 0x06090031U;
    QTest::newRow("real above") << 0x2007U << 0U << hex("00004040") << 0x06090031U;
    QTest::newRow("real below") << 0x2007U << 0U << hex("000000C0") << 0x06090032U;
}

void TestSimulatedNode::refusedWritesAbortAndChangeNothing()
{
    QFETCH(unsigned, index);
    QFETCH(unsigned, subIndex);
    QFETCH(QByteArray, data);
    QFETCH(tAbortCode, code);
    const QByteArray before = m_node->read(index, subIndex).data;
    QCOMPARE(m_node->write(index, subIndex, data), code);
    QCOMPARE(m_node->read(index, subIndex).data, before);
}

void TestSimulatedNode::writtenValuesAreReadBack_data()
{
    QTest::addColumn<unsigned>("index");
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("low limit, signed") << 0x2003U << hex("F6");
    QTest::newRow("high limit, signed") << 0x2003U << hex("14");
    QTest::newRow("low limit, unsigned") << 0x2004U << hex("10000000");
    QTest::newRow("high limit, with node-id") << 0x2004U << hex("05010000");
    QTest::newRow("true") << 0x2005U << hex("01");
    QTest::newRow("longer text") << 0x2006U << QByteArray(300, 'x');
    QTest::newRow("no text") << 0x2006U << QByteArray();
    QTest::newRow("real") << 0x2007U << hex("0000C0BF");
}

void TestSimulatedNode::writtenValuesAreReadBack()
{
    QFETCH(unsigned, index);
    QFETCH(QByteArray, data);
    QCOMPARE(m_node->write(index, 0, data), abortNone);
    QCOMPARE(m_node->read(index, 0).data, data);
}

void TestSimulatedNode::resetPutsDefaultsBack()
{
    QCOMPARE(m_node->write(0x2003, 0, hex("01")), abortNone);
    QCOMPARE(m_node->write(0x1017, 0, hex("0000")), abortNone);
    m_node->command(nmtResetNode);
    QCOMPARE(m_node->read(0x2003, 0).data, hex("05"));
    QCOMPARE(m_node->read(0x1017, 0).data, hex("E803"));
}

void TestSimulatedNode::resetOfCommunicationLeavesOtherObjects()
{
    QCOMPARE(m_node->write(0x2003, 0, hex("01")), abortNone);
    QCOMPARE(m_node->write(0x1017, 0, hex("0000")), abortNone);
    m_node->command(nmtResetCommunication);
    QCOMPARE(m_node->read(0x2003, 0).data, hex("01"));
    QCOMPARE(m_node->read(0x1017, 0).data, hex("E803"));
}

void TestSimulatedNode::savedValuesSurviveAReset()
{
    QCOMPARE(m_node->write(0x2003, 0, hex("01")), abortNone);
    QCOMPARE(m_node->write(0x1010, 1, saveSignature), abortNone);
    QCOMPARE(m_node->write(0x2003, 0, hex("02")), abortNone);
    m_node->command(nmtResetNode);
    QCOMPARE(m_node->read(0x2003, 0).data, hex("01"));
    QCOMPARE(m_node->read(0x1010, 1).data, hex("01000000"));
}

void TestSimulatedNode::savedCommunicationIsOnlyThat()
{
    QCOMPARE(m_node->write(0x2003, 0, hex("01")), abortNone);
    QCOMPARE(m_node->write(0x1017, 0, hex("0000")), abortNone);
    QCOMPARE(m_node->write(0x1010, 2, saveSignature), abortNone);
    m_node->command(nmtResetNode);
    QCOMPARE(m_node->read(0x2003, 0).data, hex("05"));
    QCOMPARE(m_node->read(0x1017, 0).data, hex("0000"));
}

void TestSimulatedNode::loadBringsTheDefaultsBackAtTheNextReset()
{
    QCOMPARE(m_node->write(0x2003, 0, hex("01")), abortNone);
    QCOMPARE(m_node->write(0x1010, 4, saveSignature), abortNone);
    QCOMPARE(m_node->write(0x1011, 1, loadSignature), abortNone);
    QCOMPARE(m_node->read(0x2003, 0).data, hex("01"));
    m_node->command(nmtResetNode);
    QCOMPARE(m_node->read(0x2003, 0).data, hex("05"));
}

void TestSimulatedNode::wrongSignatureIsRefused()
{
    QCOMPARE(m_node->write(0x1010, 1, loadSignature), 0x08000020U);
    QCOMPARE(m_node->write(0x1011, 1, saveSignature), 0x08000020U);
    QCOMPARE(m_node->write(0x1010, 1, "sav"), 0x06070013U);
    QCOMPARE(m_node->write(0x2003, 0, hex("01")), abortNone);
    m_node->command(nmtResetNode);
    QCOMPARE(m_node->read(0x2003, 0).data, hex("05"));
}

void TestSimulatedNode::stoppedDeviceAnswersNoSdo()
{
    struct tRow {
        tNmtCommand command;
        tNmtState state;
        bool answers;
    };
    for (const tRow& row : std::initializer_list<tRow>{ { nmtStart, stateOperational, true },
                                                        { nmtStop, stateStopped, false },
                                                        { nmtPreOperational, statePreOperational, true },
                                                        { nmtStop, stateStopped, false },
                                                        { nmtResetNode, statePreOperational, true },
                                                        { nmtStop, stateStopped, false },
                                                        { nmtResetCommunication, statePreOperational, true } }) {
        m_node->command(row.command);
        QCOMPARE(m_node->state(), row.state);
        QCOMPARE(m_node->answersSdo(), row.answers);
    }
}

void TestSimulatedNode::writesAreCheckedBeforeTheirDataCome()
{
    QCOMPARE(m_node->checkWrite(0x5FFF, 0, 1), abortNoObject);
    QCOMPARE(m_node->checkWrite(0x2003, 1, 1), abortNoSubIndex);
    QCOMPARE(m_node->checkWrite(0x2000, 0, std::nullopt), abortReadOnly);
    QCOMPARE(m_node->checkWrite(0x2003, 0, 2), abortLengthHigh);
    QCOMPARE(m_node->checkWrite(0x2003, 0, 0), abortLengthLow);
    QCOMPARE(m_node->checkWrite(0x2003, 0, 1), abortNone);
    QCOMPARE(m_node->checkWrite(0x2003, 0, std::nullopt), abortNone);
    QCOMPARE(m_node->checkWrite(0x2006, 0, 65536), abortNone);
}

void TestSimulatedNode::entriesTellTheirType()
{
    const auto type = m_node->typeOf(0x2003, 0);
    QVERIFY(type);
    QCOMPARE(type->kind, kindSigned);
    QCOMPARE(type->width, 1);
    QVERIFY(!m_node->typeOf(0x2003, 1));
    QVERIFY(!m_node->typeOf(0x5FFF, 0));
}

void TestSimulatedNode::listenerIsToldOfResetsStatesAndValues()
{
    QList<tNodeEvent> events;
    m_node->setListener([&](tNodeEvent event) { events += event; });
    for (const tNmtCommand command : { nmtStart, nmtStop, nmtPreOperational, nmtResetNode, nmtResetCommunication })
        m_node->command(command);
    QCOMPARE(events, (QList<tNodeEvent>{ nodeChanged, nodeChanged, nodeChanged, nodeRestarted, nodeRestarted }));
    events.clear();
    QCOMPARE(m_node->write(0x2003, 0, hex("01")), abortNone);
    QCOMPARE(m_node->write(0x2000, 0, hex("0000")), abortReadOnly);
    QCOMPARE(events, QList<tNodeEvent>{ nodeChanged });
    m_node->setListener({});
    QCOMPARE(m_node->write(0x2003, 0, hex("02")), abortNone);
    QCOMPARE(events.size(), 1);
}

QTEST_GUILESS_MAIN(TestSimulatedNode)
#include "TestSimulatedNode.moc"
