// A scripted device into which values are restored.
// SPDX-License-Identifier: MIT
#pragma once

#include "CliRun.h"
#include "DumpFile.h"
#include "ScriptedDevice.h"

#include <memory>

// The device has 0x0001 in 2000, 0x0002 in 2001 and so on; each of these is to be another one.
inline const QByteArrayList threeLines = { "0x2000,0,First,Unsigned16,RW,2,0x0011,",
                                           "0x2001,0,Second,Unsigned16,RW,2,0x0012,",
                                           "0x2002,0,Third,Unsigned16,RW,2,0x0013," };
inline const QString threePlanned = "2000: 0x0001 -> 0x0011  First\n2001: 0x0002 -> 0x0012  Second\n"
                                    "2002: 0x0003 -> 0x0013  Third\n";
inline const QStringList threeWritten = { "2000 = 11 00", "2001 = 12 00", "2002 = 13 00" };

/// Gives this answer to a step.
inline CScriptedDevice::tHook answering(const QString& step, const QByteArray& answer)
{
    return [=](const QString& each) { return each == step ? std::optional(answer) : std::nullopt; };
}

/// Node 5, of the kind of `identityLines`.
class CRestoredDevice : public CScriptedDevice
{
public:
    CRestoredDevice()
    {
        set(0x1000, 0, "91010F00");
        set(0x1018, 1, "B5F00000");
        set(0x1018, 2, "01040000");
        set(0x2000, 0, "0100");
        set(0x2001, 0, "0200");
        set(0x2002, 0, "0300");
    }

    QStringList arguments(const QString& file, const QStringList& more = {}) const
    {
        return QStringList{ "restore", "-i", interface(), "-n", "5", file } + more;
    }
    /// Restores a dump with these lines. @return what came of it
    QString restore(const QByteArrayList& lines, const QStringList& more = {}) const
    {
        const CDumpFile file(identityLines + lines);
        CCliRun run(arguments(file.name(), more));
        return run.outcome();
    }
};
