// What the facade hands to the gateway client: the settings, which no command carries and which can only be seen in
// the client, whose source is therefore included.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_open.cpp"

#include "CANopenAccess.h"
#include "FakeGateway.h"

#include <QtTest>

class TestCANopenAccessGateway : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settingsReachTheClientUntilTheEnd();
};

void TestCANopenAccessGateway::settingsReachTheClientUntilTheEnd()
{
    const auto stored = [] { return QList<int>{ top_settings.net, top_settings.node, top_settings.master }; };
    CFakeGateway gateway;
    _top_param parameter = { CFakeGateway::address, gateway.port(), { 2, 3, 4 } };
    {
        CCANopenAccess access;
        QVERIFY(access.initialize(libraryGateway, -1, &parameter, 0));
        QCOMPARE(stored(), (QList<int>{ 2, 3, 4 }));
        QVERIFY(access.terminate());
        QCOMPARE(stored(), (QList<int>{ 1, 1, 255 }));
        QVERIFY(access.initialize(libraryGateway, 5, &parameter, 255)); // board and bit rate do not matter
    }
    QCOMPARE(stored(), (QList<int>{ 1, 1, 255 }));
}

QTEST_GUILESS_MAIN(TestCANopenAccessGateway)
#include "TestCANopenAccessGateway.moc"
