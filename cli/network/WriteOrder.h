// The order in which parameters can be written.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/Snapshot.h"

#include <QByteArray>

#include <vector>

/// One SDO download.
struct tWrite {
    const tSnapshotEntry* entry; ///< what it is for; a step on the way has the entry that it belongs to
    QByteArray bytes;            ///< as on the bus
    bool isStep;                 ///< not the value of the file yet: switches something off on the way
};

/// Whether the object is a parameter of a PDO: communication (1400 to 15FF, 1800 to 19FF) or mapping (1600 to 17FF, 1A00
/// to 1BFF).
bool isPdoParameter(unsigned index);

/// Whether an entry can be written at all.
bool isWritable(const tSnapshotEntry& entry);

/// The downloads that bring the values of `wanted` into a node, in an order that devices accept (CiA 301). `wanted` are
/// the entries that differ, in the order of the file, `file` all that it has, and `device` those of the node. For each
/// PDO that is concerned: it is switched off (bit 31 of its COB-ID), its mapping is emptied, filled and counted again, its other
/// parameters follow, and the COB-ID of the file comes last. The COB-ID of the emergency message (1014) is switched off
/// before it changes. Everything else keeps its order.
std::vector<tWrite> orderOfWrites(const std::vector<const tSnapshotEntry*>& wanted, const tSnapshot& file,
                                  const tSnapshot& device);
