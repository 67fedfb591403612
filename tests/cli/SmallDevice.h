// A small device: its sheet, and what a dump of it holds.
// SPDX-License-Identifier: MIT
#pragma once

#include "ScriptedDevice.h"

#include <QFile>

/// A number, a text with a default, a write-only entry, an octet string, and a COB-ID.
inline QByteArray smallSheet()
{
    const auto section = [](const char* index, const char* type, const char* access, const char* more = "") {
        return QByteArray("[") + index + "]\r\nParameterName=Entry " + index + "\r\nObjectType=7\r\nDataType=" + type +
               "\r\nAccessType=" + access + "\r\n" + more + "\r\n";
    };
    return "[ManufacturerObjects]\r\nSupportedObjects=5\r\n1=0x2000\r\n2=0x2001\r\n3=0x2002\r\n4=0x2003\r\n5=0x2004\r\n"
           "\r\n" +
           section("2000", "6", "rw") + section("2001", "9", "rw", "DefaultValue=none\r\n") +
           section("2002", "5", "wo") + section("2003", "10", "ro") +
           section("2004", "7", "rw", "DefaultValue=$NODEID+0x180\r\n");
}

/// Gives the device its values.
inline void setValues(CScriptedDevice& device)
{
    device.set(0x2000, 0, "E803");
    device.set(0x2001, 0, "6162");
    device.set(0x2003, 0, "01FF");
    device.set(0x2004, 0, "85010000");
}

inline const QByteArray smallCsv = "index,subindex,name,type,access,size,value,abort\n"
                                   "0x2000,0,Entry 2000,Unsigned16,RW,2,0x03E8,\n"
                                   "0x2001,0,Entry 2001,Visible String,RW,2,ab,\n"
                                   "0x2002,0,Entry 2002,Unsigned8,WO,,,\n"
                                   "0x2003,0,Entry 2003,Octet String,RO,2,01 FF,\n"
                                   "0x2004,0,Entry 2004,Unsigned32,RW,4,$NODEID+0x00000180,\n";

inline QByteArray bytesOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
}
