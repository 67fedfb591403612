// The access facade: binding and releasing a library, and the texts of errors.
// SPDX-License-Identifier: MIT
#include "AccessOperations.h"

#include <QByteArray>
#include <QtTest>

#include <cstring>

class TestCANopenAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newObjectIsUnbound();
    void unboundOperationsFail_data() { addOperations(); }
    void unboundOperationsFail();
    void unboundOperationsWithoutALineFail();
    void textsWorkUnbound();
    void libraryMustBeKnown_data();
    void libraryMustBeKnown();
    void gatewayNeedsAParameter();
    void masterNeedsAParameterAndAnInterface();
    void refusedGatewayLeavesTheObjectUnbound();
    void secondInitializeFailsWithoutTouchingTheLibrary();
    void terminatedObjectCanBeInitializedAgain();
    void aTerminateThatFailsLeavesTheLibraryBound();
    void destructorClosesTheConnection();
    void copyrightIsCopiedUpToTheSize();
    void errorTextOfZeroIsTheLastError();
    void abortTextOfZeroIsTheLastAbort();
    void codesOfTheGatewayHaveTheFallbackText();
};

void TestCANopenAccess::newObjectIsUnbound()
{
    CCANopenAccess access;
    QCOMPARE(access.getLastError(), 0);
    QCOMPARE(access.getLastAbort(), 0L);
    QVERIFY(!access.isSDOAborted());
    QVERIFY(!access.terminate());
    QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
}

void TestCANopenAccess::unboundOperationsFail()
{
    CCANopenAccess access;
    QVERIFY(!fetched().run(access));
    QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
    QCOMPARE(QByteArray(access.getErrorText(0)), QByteArray("Not initialized."));
    QCOMPARE(access.getLastAbort(), 0L);
}

void TestCANopenAccess::unboundOperationsWithoutALineFail()
{
    short length = 0;
    BYTE data[8] = {};
    {
        CCANopenAccess access;
        QVERIFY(!access.requestMessage(0x181, &length, data));
        QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
    }
    {
        CCANopenAccess access;
        QVERIFY(!access.clearQueue());
        QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
    }
    CCANopenAccess access;
    QVERIFY(access.getAPIVersion() == nullptr);
    QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
}

void TestCANopenAccess::textsWorkUnbound()
{
    CCANopenAccess access;
    char text[100] = {};
    QVERIFY(access.getCopyright(text, sizeof text));
    QCOMPARE(QByteArray(text), QByteArray("2009-2026 Brask Works"));
    QCOMPARE(QByteArray(CCANopenAccess::version()), QByteArray("Velmora CANopen access facade, revision 2026-11-21"));
    QCOMPARE(QByteArray(access.getErrorText(0)), QByteArray("No error occurred."));
    QCOMPARE(QByteArray(access.getErrorText(-50)), QByteArray("Time-out error."));
    QCOMPARE(QByteArray(access.getAbortText(0)), QByteArray("Unknown SDO abort code."));
    QCOMPARE(QByteArray(access.getAbortText(0x06090011)), QByteArray("Sub-index does not exist."));
    QCOMPARE(access.getLastError(), 0);
}

void TestCANopenAccess::libraryMustBeKnown_data()
{
    QTest::addColumn<short>("library");
    for (const short library : { short(5), short(-1), short(1), short(699), short(701), short(-700) })
        QTest::addRow("%d", library) << library;
}

void TestCANopenAccess::libraryMustBeKnown()
{
    QFETCH(short, library);
    CCANopenAccess access;
    _can_param param = { "can0", 29, 3, 1 };
    QVERIFY(!access.initialize(library, -1, &param, 0));
    QCOMPARE(access.getLastError(), ERR_NOT_SUPPORTED);
    QCOMPARE(QByteArray(access.getErrorText(0)), QByteArray("Function not supported!"));
    QVERIFY(!access.initialize(library, -1, nullptr, 0));
    QCOMPARE(access.getLastError(), ERR_NOT_SUPPORTED);
    QVERIFY(!access.terminate());
    QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
}

void TestCANopenAccess::gatewayNeedsAParameter()
{
    CCANopenAccess access;
    QVERIFY(!access.initialize(gatewayLibrary, 0, nullptr, 0));
    QCOMPARE(access.getLastError(), ERR_NULL_POINTER);
    QVERIFY(!access.terminate());
}

// With the real CAN of this machine, if it has any. TestCANopenAccessSocketCAN uses a fake bus.
void TestCANopenAccess::masterNeedsAParameterAndAnInterface()
{
    CCANopenAccess access;
    QVERIFY(!access.initialize(0, -1, nullptr, 0));
    QCOMPARE(access.getLastError(), ERR_NULL_POINTER);
    _can_param param = { "no such one", 29, 3, 1 };
    QVERIFY(!access.initialize(0, -1, &param, 0));
    QCOMPARE(access.getLastError(), -10000);
    QCOMPARE(QByteArray(access.getErrorText(0)), QByteArray("Resistance is futile, prepare to assimilate!"));
    QVERIFY(!access.terminate());
    QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);
}

void TestCANopenAccess::refusedGatewayLeavesTheObjectUnbound()
{
    CFakeGateway gateway;
    QVERIFY(gateway.refuse());
    CCANopenAccess access;
    _top_param param = { CFakeGateway::address, gateway.port(), { 1, 1, 255 } };
    QVERIFY(!access.initialize(gatewayLibrary, 0, &param, 0));
    QCOMPARE(access.getLastError(), -20000);
    QVERIFY(!access.resetNode(5));
    QCOMPARE(access.getLastError(), ERR_NOT_INITIALIZED);

    CFakeGateway next;
    param.port = next.port();
    QVERIFY(access.initialize(gatewayLibrary, 0, &param, 0));
    QCOMPARE(access.getLastError(), 0);
}

void TestCANopenAccess::secondInitializeFailsWithoutTouchingTheLibrary()
{
    CGatewayLink on;
    QCOMPARE(on.access.getLastError(), 0);
    CFakeGateway other;
    _top_param param = { CFakeGateway::address, other.port(), { 1, 1, 255 } };
    for (const short library : { short(gatewayLibrary), short(0), short(5) }) {
        QVERIFY(!on.access.initialize(library, 0, &param, 0));
        QCOMPARE(on.access.getLastError(), ERR_ALREADY_INITIALIZED);
    }
    QVERIFY(!on.access.initialize(gatewayLibrary, 0, nullptr, 0));
    QCOMPARE(on.access.getLastError(), ERR_ALREADY_INITIALIZED);
    on.gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QVERIFY(on.access.startRemoteNode(5));
    QVERIFY2(on.gateway.finished(), on.gateway.problem().c_str());
}

void TestCANopenAccess::terminatedObjectCanBeInitializedAgain()
{
    CGatewayLink on;
    QVERIFY(on.access.terminate());
    QCOMPARE(on.access.getLastError(), 0);
    QVERIFY(on.gateway.awaitClosed());
    QVERIFY(!on.access.terminate());
    QCOMPARE(on.access.getLastError(), ERR_NOT_INITIALIZED);
    QVERIFY(!on.access.startRemoteNode(5));
    QCOMPARE(on.access.getLastError(), ERR_NOT_INITIALIZED);
    _top_param param = { CFakeGateway::address, on.gateway.port(), { 1, 1, 255 } };
    QVERIFY(on.access.initialize(gatewayLibrary, -1, &param, 8));
    on.gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QVERIFY(on.access.startRemoteNode(5));
}

void TestCANopenAccess::aTerminateThatFailsLeavesTheLibraryBound()
{
    CGatewayLink on;
    QCOMPARE(top_exit(), 0); // without the facade, which finds nothing to close then
    QVERIFY(!on.access.terminate());
    QCOMPARE(on.access.getLastError(), ERR_NOT_INITIALIZED);
    _top_param param = { CFakeGateway::address, on.gateway.port(), { 1, 1, 255 } };
    QVERIFY(!on.access.initialize(gatewayLibrary, -1, &param, 8));
    QCOMPARE(on.access.getLastError(), ERR_ALREADY_INITIALIZED);
    QVERIFY(!on.access.startRemoteNode(5));
    QCOMPARE(on.access.getLastError(), -793); // of the gateway's client
}

void TestCANopenAccess::destructorClosesTheConnection()
{
    CFakeGateway gateway;
    _top_param param = { CFakeGateway::address, gateway.port(), { 1, 1, 255 } };
    {
        CCANopenAccess access;
        QVERIFY(access.initialize(gatewayLibrary, 0, &param, 0));
    }
    QVERIFY(gateway.awaitClosed());
    {
        CCANopenAccess bound;
        QVERIFY(bound.initialize(gatewayLibrary, 0, &param, 0));
        {
            CCANopenAccess unbound; // does not close the connection of the other one
        }
        gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
        QVERIFY(bound.startRemoteNode(5));
    }
}

void TestCANopenAccess::copyrightIsCopiedUpToTheSize()
{
    CCANopenAccess access;
    char text[300];
    std::memset(text, '~', sizeof text);
    QVERIFY(access.getCopyright(text, sizeof text));
    const QByteArray notice(text);
    QVERIFY(notice.size() > 5 && notice.size() < 299);
    for (const qsizetype size : { qsizetype(0), qsizetype(1), qsizetype(5), notice.size() }) {
        std::memset(text, '~', sizeof text);
        QVERIFY(access.getCopyright(text, static_cast<short>(size)));
        QCOMPARE(QByteArray(text, size + 5), notice.left(size) + "~~~~~"); // a full buffer has no terminator
    }
    for (const qsizetype size : { notice.size() + 1, notice.size() + 5, qsizetype(300) }) { // nothing is padded
        std::memset(text, '~', sizeof text);
        QVERIFY(access.getCopyright(text, static_cast<short>(size)));
        QCOMPARE(QByteArray(text, 300), (notice + '\0').leftJustified(300, '~'));
    }
    QVERIFY(!access.getCopyright(nullptr, 100));
    QCOMPARE(access.getLastError(), ERR_NULL_POINTER);
}

void TestCANopenAccess::errorTextOfZeroIsTheLastError()
{
    CGatewayLink on;
    QVERIFY(!on.access.clearQueue());
    QCOMPARE(QByteArray(on.access.getErrorText(0)), QByteArray("Function not supported!"));
    QCOMPARE(QByteArray(on.access.getErrorText(4)), QByteArray("Transfer aborted."));
    QCOMPARE(QByteArray(on.access.getErrorText(-92)), QByteArray("Resistance is futile, prepare to assimilate!"));
    QCOMPARE(QByteArray(on.access.getErrorText(-97)), QByteArray("Resistance is futile, prepare to assimilate!"));
    on.gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QVERIFY(on.access.startRemoteNode(5));
    QCOMPARE(QByteArray(on.access.getErrorText(0)), QByteArray("No error occurred."));
}

void TestCANopenAccess::abortTextOfZeroIsTheLastAbort()
{
    CGatewayLink on;
    on.gateway.expect("[#] 5 read 0x2000 0x1 d\r\n", "[#] Error: 0x06090011\r\n");
    QVERIFY(!readDomain(on.access));
    QCOMPARE(QByteArray(on.access.getAbortText(0)), QByteArray("Sub-index does not exist."));
    QCOMPARE(QByteArray(on.access.getAbortText(0x06070011)), QByteArray("Unknown SDO abort code."));
    QCOMPARE(QByteArray(on.access.getAbortText(0x08000000)), QByteArray("general error"));
}

void TestCANopenAccess::codesOfTheGatewayHaveTheFallbackText()
{
    CGatewayLink on;
    on.gateway.expect("[#] 5 start\r\n", "[#] Error: 103\r\n");
    QVERIFY(!on.access.startRemoteNode(5));
    QCOMPARE(QByteArray(on.access.getErrorText(0)), QByteArray("Resistance is futile, prepare to assimilate!"));
}

QTEST_GUILESS_MAIN(TestCANopenAccess)
#include "TestCANopenAccess.moc"
