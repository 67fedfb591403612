// The differences between two sets of values.
// SPDX-License-Identifier: MIT
#include "network/Compare.h"
#include "network/NodeReading.h"

#include "dic/CANopenObjectEntry.h"

#include <QTest>

namespace
{

using tEntry = CCANopenObjectEntry;

tSnapshotEntry base(unsigned index, int access)
{
    tSnapshotEntry made;
    made.index = index;
    made.access = access;
    made.type = tEntry::typeUnsigned16;
    return made;
}

tSnapshotEntry entry(unsigned index, const char* bytes, int access = tEntry::accessRW)
{
    tSnapshotEntry made = base(index, access);
    if (bytes != nullptr)
        made.value = QByteArray::fromHex(bytes);
    return made;
}

tSnapshotEntry relative(unsigned index, const char* bytes)
{
    tSnapshotEntry made = entry(index, bytes);
    made.relative = true;
    return made;
}

tSnapshot snapshotOf(const std::vector<tSnapshotEntry>& entries, unsigned nodeId = 0)
{
    tSnapshot snapshot;
    snapshot.nodeId = nodeId;
    snapshot.entries = entries;
    return snapshot;
}

// "2000 0x0001 0x0002, 1001 0x0000 0x0001 by itself"
QString differences(const tSnapshot& first, const tSnapshot& second)
{
    QStringList texts;
    for (const tDifference& each : compareSnapshots(first, second))
        texts += QString::number(each.first->index, 16) + ' ' + each.firstValue + ' ' + each.secondValue +
                 (each.byItself ? " by itself" : "");
    return texts.join(", ");
}

} // namespace

class TestCompare : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalValuesAreNoDifference();
    void differencesComeInTheOrderOfTheFirst();
    void unknownValuesAreNotCompared();
    void entriesOfOneSideOnlyAreDifferences();
    void valuesThatTheDeviceChangesAreToldApart();
    void relativeValuesAreComparedAsSuch();
    void relativeAndPlainValuesAreComparedOnTheBus();
    void textThatIsNoValueDiffersFromAllButItself();
    void valuesOfOtherSizesDiffer();
    void graverStatusWins();
};

void TestCompare::equalValuesAreNoDifference()
{
    QCOMPARE(differences(snapshotOf({ entry(0x2000, "0100") }), snapshotOf({ entry(0x2000, "0100") })), "");
}

void TestCompare::differencesComeInTheOrderOfTheFirst()
{
    QCOMPARE(differences(snapshotOf({ entry(0x2001, "0100"), entry(0x2002, "0300"), entry(0x2000, "0200") }),
                         snapshotOf({ entry(0x2000, "0300"), entry(0x2002, "0300"), entry(0x2001, "0400") })),
             "2001 0x0001 0x0004, 2000 0x0002 0x0003");
}

void TestCompare::unknownValuesAreNotCompared()
{
    QCOMPARE(differences(snapshotOf({ entry(0x2000, nullptr), entry(0x2001, "0100") }),
                         snapshotOf({ entry(0x2000, "0100"), entry(0x2001, nullptr) })),
             "");
}

void TestCompare::entriesOfOneSideOnlyAreDifferences()
{
    QCOMPARE(differences(snapshotOf({ entry(0x2000, "0100"), entry(0x2002, nullptr) }),
                         snapshotOf({ entry(0x2001, "0200", tEntry::accessRO), entry(0x2003, nullptr) })),
             "2000 0x0001 -, 2001 - 0x0002 by itself");
}

void TestCompare::valuesThatTheDeviceChangesAreToldApart()
{
    const auto differ = [](unsigned index, int firstAccess, int secondAccess) {
        return differences(snapshotOf({ entry(index, "0100", firstAccess) }),
                           snapshotOf({ entry(index, "0200", secondAccess) }))
            .section(' ', 3);
    };
    const int writable = tEntry::accessRW;
    QCOMPARE(differ(0x1001, writable, writable), "by itself");
    QCOMPARE(differ(0x1003, writable, writable), "by itself");
    QCOMPARE(differ(0x2000, tEntry::accessRO, writable), "by itself");
    QCOMPARE(differ(0x2000, writable, tEntry::accessRO), "by itself");
    for (const int access : { tEntry::accessRW, tEntry::accessRWR, tEntry::accessRWW, tEntry::accessCONST })
        QCOMPARE(differ(0x2000, access, access), "");
}

void TestCompare::relativeValuesAreComparedAsSuch()
{
    QCOMPARE(differences(snapshotOf({ relative(0x2000, "8001") }, 5), snapshotOf({ relative(0x2000, "8001") }, 7)), "");
    QCOMPARE(differences(snapshotOf({ relative(0x2000, "8001") }, 5), snapshotOf({ relative(0x2000, "8002") }, 7)),
             "2000 $NODEID+0x0180 $NODEID+0x0280");
}

// As if the first were restored to the node of the second. A dump does not tell its node-id: it is taken for that of
// the other side.
void TestCompare::relativeAndPlainValuesAreComparedOnTheBus()
{
    const tSnapshotEntry plain = entry(0x2000, "8501");
    const tSnapshotEntry held = relative(0x2000, "8001");
    QCOMPARE(differences(snapshotOf({ held }, 5), snapshotOf({ plain }, 5)), "");
    QCOMPARE(differences(snapshotOf({ plain }, 7), snapshotOf({ held }, 5)), "");
    QCOMPARE(differences(snapshotOf({ held }, 0), snapshotOf({ plain }, 5)), "");
    QCOMPARE(differences(snapshotOf({ plain }, 5), snapshotOf({ held }, 0)), "");
    QCOMPARE(differences(snapshotOf({ held }, 7), snapshotOf({ plain }, 5)), "");
    QCOMPARE(differences(snapshotOf({ held }, 5), snapshotOf({ plain }, 7)), "2000 $NODEID+0x0180 0x0185");
    QCOMPARE(differences(snapshotOf({ held }, 0), snapshotOf({ plain }, 0)), "2000 $NODEID+0x0180 0x0185");
}

void TestCompare::textThatIsNoValueDiffersFromAllButItself()
{
    tSnapshotEntry wrong = entry(0x2000, nullptr);
    wrong.wrongText = "70000";
    const tSnapshotEntry right = entry(0x2000, "0100");
    QCOMPARE(differences(snapshotOf({ wrong }), snapshotOf({ right })), "2000 \"70000\" (no value) 0x0001");
    QCOMPARE(differences(snapshotOf({ right }), snapshotOf({ wrong })), "2000 0x0001 \"70000\" (no value)");
    QCOMPARE(differences(snapshotOf({ wrong }), snapshotOf({ wrong })), "");
    QCOMPARE(differences(snapshotOf({ wrong }), snapshotOf({})), "2000 \"70000\" (no value) -");
}

void TestCompare::valuesOfOtherSizesDiffer()
{
    QCOMPARE(differences(snapshotOf({ entry(0x2000, "0100") }), snapshotOf({ entry(0x2000, "01000000") })),
             "2000 0x0001 0x01 0x00 0x00 0x00");
}

void TestCompare::graverStatusWins()
{
    const std::vector<int> order{ exitDone, exitDifference, exitUsage, exitAborted, exitNetwork, exitInterrupted };
    for (std::size_t less = 0; less < order.size(); ++less) {
        for (std::size_t more = less; more < order.size(); ++more) {
            QCOMPARE(graver(order[less], order[more]), order[more]);
            QCOMPARE(graver(order[more], order[less]), order[more]);
        }
    }
}

QTEST_GUILESS_MAIN(TestCompare)
#include "TestCompare.moc"
