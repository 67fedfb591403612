// The order in which parameters can be written.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/Snapshot.h"

#include <QByteArray>

#include <cstddef>
#include <functional>
#include <vector>

/// One SDO download.
struct tWrite {
    const tSnapshotEntry* entry; ///< what it is for; a step on the way has the entry that it belongs to
    QByteArray bytes;            ///< as on the bus
    bool isStep;                 ///< not the value of the file yet: switches something off on the way
    unsigned unit;               ///< the number of what belongs together: when one of them fails, what is on the way to
                                 ///< another value must not stay so
    bool isApart;                ///< the others of its unit do not depend on it
};

/// Whether the object is a parameter of a PDO: communication (1400 to 15FF, 1800 to 19FF) or mapping (1600 to 17FF,
/// 1A00 to 1BFF).
bool isPdoParameter(unsigned index);

/// The downloads that bring the values of `wanted` into a node, in an order that devices accept (CiA 301). `wanted` are
/// the entries that differ, in the order of the file, `file` all that it has, and `device` those of the node. For each
/// PDO that is concerned: it is switched off (bit 31 of its COB-ID), its mapping is emptied, filled and counted again
/// if anything of it differs, its other parameters follow, and its COB-ID comes last. What the file does not have of
/// these stays as the device has it. Other COB-IDs (1005, 1012, 1014, 1028, 1201 to 12FF) are switched off before they
/// change. The period of SYNC (1006) is 0 while its counter (1019) changes. Everything else keeps its order.
/// `isAllowed`: whether the value of the file may be written; where not, it is as if the file did not have it.
std::vector<tWrite> orderOfWrites(
    const std::vector<const tSnapshotEntry*>& wanted, const tSnapshot& file, const tSnapshot& device,
    const std::function<bool(const tSnapshotEntry&)>& isAllowed = [](const tSnapshotEntry&) { return true; });

/// The places in `device` of entries without a value that `orderOfWrites` can make use of: they should be read before.
std::vector<std::size_t> neededForOrder(const std::vector<const tSnapshotEntry*>& wanted, const tSnapshot& device);
