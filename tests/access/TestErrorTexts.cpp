// Tests of the texts of error codes and SDO abort codes, row by row, and of the codes themselves.
// SPDX-License-Identifier: MIT
#include "access/ErrorTexts.h"
#include "base/CANopenErrors.h"

#include <QByteArray>
#include <QSet>
#include <QtTest>

namespace
{

constexpr char fallbackOfErrors[] = "Resistance is futile, prepare to assimilate!";
constexpr char fallbackOfAborts[] = "Unknown SDO abort code.";

const struct tErrorRow {
    const char* name;
    int code, value;
    const char* text;
} errors[] = {
    { "ERR_NO_ERROR", ERR_NO_ERROR, 0, "No error occurred." },
    { "ERR_BUS_OFF", ERR_BUS_OFF, -1, "Bus-off status." },
    { "ERR_WARNING_LEVEL", ERR_WARNING_LEVEL, -2, "Error warning status." },
    { "ERR_BUS_ERROR", ERR_BUS_ERROR, -3, "Bus error." },
    { "ERR_NOT_STARTED", ERR_NOT_STARTED, -9, "Not started yet." },
    { "ERR_ALREADY_STARTED", ERR_ALREADY_STARTED, -8, "Already started." },
    { "ERR_MESSAGE_LOST", ERR_MESSAGE_LOST, -10, "Message lost (overrun)." },
    { "ERR_STUFF", ERR_STUFF, -11, "Stuff error." },
    { "ERR_FORM", ERR_FORM, -12, "Form error." },
    { "ERR_ACKNOWLEDGE", ERR_ACKNOWLEDGE, -13, "Acknowledge error." },
    { "ERR_RECESSIVE_BIT", ERR_RECESSIVE_BIT, -14, "Recessive bit error." },
    { "ERR_DOMINANT_BIT", ERR_DOMINANT_BIT, -15, "Dominant bit error." },
    { "ERR_CHECKSUM", ERR_CHECKSUM, -16, "Checksum error." },
    { "ERR_TRANSMITTER_BUSY", ERR_TRANSMITTER_BUSY, -20, "Transmitter busy." },
    { "ERR_RECEIVER_EMPTY", ERR_RECEIVER_EMPTY, -30, "Receiver empty." },
    { "ERR_QUEUE_OVERRUN", ERR_QUEUE_OVERRUN, -40, "Queue overrun." },
    { "ERR_TIMEOUT", ERR_TIMEOUT, -50, "Time-out error." },
    { "ERR_LENGTH", ERR_LENGTH, -60, "Invalid length." },
    { "ERR_FORMAT", ERR_FORMAT, -70, "Format error." },
    { "ERR_ILLEGAL_STATUS", ERR_ILLEGAL_STATUS, -80, "Illegal status." },
    { "ERR_NODE_ID", ERR_NODE_ID, -90, "Illegal node-id." },
    { "ERR_BAUDRATE", ERR_BAUDRATE, -91, "Illegal baud rate." },
    { "ERR_PARAMETER", ERR_PARAMETER, -93, "Illegal parameter." },
    { "ERR_NULL_POINTER", ERR_NULL_POINTER, -94, "Illegal parameter (NULL-Pointer)." },
    { "ERR_NOT_INITIALIZED", ERR_NOT_INITIALIZED, -95, "Not initialized." },
    { "ERR_ALREADY_INITIALIZED", ERR_ALREADY_INITIALIZED, -96, "Already initialized." },
    { "ERR_NOT_SUPPORTED", ERR_NOT_SUPPORTED, -98, "Function not supported!" },
    { "ERR_FATAL", ERR_FATAL, -99, "Fatal error!" },
    { "ERR_SDO_ABORTED", ERR_SDO_ABORTED, 4, "Transfer aborted." },
};

const struct tAbortRow {
    std::uint32_t code;
    const char* text;
} aborts[] = {
    { 0x05030000, "Toggle bit not alternated." },
    { 0x05040000, "SDO protocol timed out." },
    { 0x05040001, "Client/server command specifier not valid or unknown." },
    { 0x05040002, "Invalid block size (block mode only)." },
    { 0x05040003, "Invalid sequence number (block mode only)." },
    { 0x05040004, "CRC error (block mode only)." },
    { 0x05040005, "Out of memory." },
    { 0x06010000, "Unsupported access to an object." },
    { 0x06010001, "Attempt to read a write only object." },
    { 0x06010002, "Attempt to write a read only object." },
    { 0x06020000, "Object does not exist in the object dictionary." },
    { 0x06040041, "Object cannot be mapped to the PDO." },
    { 0x06040042, "The number and length of the objects to be mapped would exceed PDO length." },
    { 0x06040043, "General parameter incompatibility reason." },
    { 0x06040047, "General internal incompatibility in the device." },
    { 0x06060000, "Access failed due to an hardware error." },
    { 0x06070010, "Data type does not match, length of service parameter does not match" },
    { 0x06070012, "Data type does not match, length of service parameter too high" },
    { 0x06070013, "Data type does not match, length of service parameter too low" },
    { 0x06090011, "Sub-index does not exist." },
    { 0x06090030, "Value range of parameter exceeded (only for write access)." },
    { 0x06090031, "Value of parameter written too high." },
    { 0x06090032, "Value of parameter written too low." },
    { 0x06090036, "Maximum value is less than minimum value." },
    { 0x08000000, "general error" },
    { 0x08000020, "Data cannot be transferred or stored to the application." },
    { 0x08000021, "Data cannot be transferred or stored to the application because of local control." },
    { 0x08000022, "Data cannot be transferred or stored to the application because of the present device state." },
    { 0x08000023,
      "Object dictionary dynamic generation fails or no object dictionary is present (e.g. object dictionary is "
      "generated from file and generation fails because of an file error)." },
};

} // namespace

class TestErrorTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyErrorCodeHasItsText_data();
    void everyErrorCodeHasItsText();
    void everyOtherErrorHasTheFallbackText();
    void everyAbortCodeHasItsText_data();
    void everyAbortCodeHasItsText();
    void everyOtherAbortIsUnknown_data();
    void everyOtherAbortIsUnknown();
};

void TestErrorTexts::everyErrorCodeHasItsText_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("value");
    QTest::addColumn<QByteArray>("text");
    for (const tErrorRow& row : errors)
        QTest::newRow(row.name) << row.code << row.value << QByteArray(row.text);
}

void TestErrorTexts::everyErrorCodeHasItsText()
{
    QFETCH(int, code);
    QTEST(code, "value");
    QTEST(QByteArray(errorTexts::ofError(code)), "text");
}

void TestErrorTexts::everyOtherErrorHasTheFallbackText()
{
    QSet<int> known;
    for (const tErrorRow& row : errors)
        known.insert(row.value);
    for (int code = -32768; code <= 32767; ++code)
        QCOMPARE(QByteArray(errorTexts::ofError(code)) == fallbackOfErrors, !known.contains(code));
    for (const int code : { -20000, -793, -703, -92, -97, -32768, INT_MIN, INT_MAX, 0x06020000 })
        QCOMPARE(QByteArray(errorTexts::ofError(code)), QByteArray(fallbackOfErrors));
}

void TestErrorTexts::everyAbortCodeHasItsText_data()
{
    QTest::addColumn<uint>("code");
    QTest::addColumn<QByteArray>("text");
    for (const tAbortRow& row : aborts)
        QTest::addRow("0x%08X", row.code) << row.code << QByteArray(row.text);
}

void TestErrorTexts::everyAbortCodeHasItsText()
{
    QFETCH(uint, code);
    QTEST(QByteArray(errorTexts::ofAbort(code)), "text");
    QCOMPARE(QByteArray(errorTexts::ofAbort(code ^ 0x100000)), QByteArray(fallbackOfAborts));
}

void TestErrorTexts::everyOtherAbortIsUnknown_data()
{
    QTest::addColumn<uint>("code");
    for (const uint code : { 0u, 1u, 4u, 0x05000000u, 0x0503FFFFu, 0x06070011u, 0x06090000u, 0x08000024u, 0x86020000u,
                             0xFFFFFFFEu, 0xFFFFFFFFu })
        QTest::addRow("0x%08X", code) << code;
}

void TestErrorTexts::everyOtherAbortIsUnknown()
{
    QFETCH(uint, code);
    QCOMPARE(QByteArray(errorTexts::ofAbort(code)), QByteArray(fallbackOfAborts));
}

QTEST_APPLESS_MAIN(TestErrorTexts)
#include "TestErrorTexts.moc"
