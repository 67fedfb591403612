// Dumps of a test.
// SPDX-License-Identifier: MIT
#pragma once

#include "SheetFile.h"

/// A CSV dump with these lines: "0x1017,0,Heartbeat,Unsigned16,RW,2,0x03E8,".
inline QByteArray dumpOf(const QByteArrayList& lines)
{
    return "index,subindex,name,type,access,size,value,abort\n" + lines.join('\n') + '\n';
}

/// The lines that tell the device: as velmora-demo.eds has them.
inline const QByteArrayList identityLines = {
    "0x1000,0,Device type,Unsigned32,RO,4,0x000F0191,",
    "0x1018,1,Vendor-ID,Unsigned32,RO,4,0x0000F0B5,",
    "0x1018,2,Product code,Unsigned32,RO,4,0x00000401,",
};

/// A file with such a dump.
class CDumpFile : public CSheetFile
{
public:
    explicit CDumpFile(const QByteArrayList& lines) : CSheetFile(dumpOf(lines), QStringLiteral("saved.csv")) {}
};
