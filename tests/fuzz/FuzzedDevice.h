// A device for the fuzzers of the simulator: entries of all kinds, with and without limits and access.
// SPDX-License-Identifier: MIT
#pragma once

#include "FuzzInput.h"
#include "MemoryFile.h"

#include <QString>

namespace fuzzedDevice
{

/// A data type of the entry, its number in the sheet, and what else stands in its section.
struct tRow {
    int type;
    const char* keys;
};

/// The entries 2000 to 2015: sub-index 0 of a variable each.
inline constexpr tRow rows[] = {
    { 1, "AccessType=rw\n" },
    { 2, "AccessType=rw\nDefaultValue=-3\nLowLimit=-100\nHighLimit=100\n" },
    { 3, "AccessType=rw\nDefaultValue=0x8000\n" },
    { 4, "AccessType=rw\n" },
    { 5, "AccessType=ro\nDefaultValue=7\n" },
    { 6, "AccessType=rw\nDefaultValue=$NODEID+0x180\n" },
    { 7, "AccessType=wo\n" },
    { 8, "AccessType=rw\nDefaultValue=1.5\nHighLimit=100.5\n" },
    { 9, "AccessType=rw\nDefaultValue=text \"and\" more\n" },
    { 10, "AccessType=rw\nDefaultValue=01 02 FF\n" },
    { 11, "AccessType=rw\nDefaultValue=\n" },
    { 12, "AccessType=rw\n" },
    { 13, "AccessType=rw\n" },
    { 15, "AccessType=rw\n" },
    { 16, "AccessType=rw\n" },
    { 17, "AccessType=rw\nDefaultValue=2.5\n" },
    { 18, "AccessType=rw\n" },
    { 21, "AccessType=rw\nLowLimit=-5\n" },
    { 22, "AccessType=const\nDefaultValue=9\n" },
    { 24, "AccessType=rw\n" },
    { 27, "AccessType=rww\nHighLimit=0xFFFFFFFFFFFFFFF0\n" },
    { 7, "AccessType=rwr\nLowLimit=10\nHighLimit=20\nDefaultValue=15\n" },
};
inline constexpr unsigned firstIndex = 0x2000;
inline constexpr unsigned storeIndex = 0x1010;   // sub-index 1
inline constexpr unsigned restoreIndex = 0x1011; // sub-index 1

inline QByteArray recordText(unsigned index)
{
    const QByteArray name = QByteArray::number(index, 16);
    return "[" + name + "]\nParameterName=Record\nObjectType=9\nSubNumber=2\n[" + name +
           "sub0]\nParameterName=Number\nDataType=5\nAccessType=ro\nDefaultValue=1\n[" + name +
           "sub1]\nParameterName=All\nDataType=7\nAccessType=rw\n";
}

inline QByteArray sheetText()
{
    QByteArray text = "[MandatoryObjects]\nSupportedObjects=2\n1=0x1010\n2=0x1011\n" + recordText(storeIndex) +
                      recordText(restoreIndex) +
                      "[ManufacturerObjects]\nSupportedObjects=" + QByteArray::number(qsizetype(std::size(rows))) +
                      "\n";
    QByteArray sections;
    unsigned number = 0;
    for (const tRow& row : rows) {
        const QByteArray index = QByteArray::number(firstIndex + number++, 16);
        text += QByteArray::number(number) + "=0x" + index + "\n";
        sections += "[" + index + "]\nParameterName=Entry\nObjectType=7\nDataType=" + QByteArray::number(row.type) +
                    "\n" + row.keys;
    }
    return text + sections;
}

/// The sheet as a file; it must be there for as long as it is read.
class CSheet
{
public:
    CSheet() : m_text(sheetText()), m_file(reinterpret_cast<const uint8_t*>(m_text.constData()), size_t(m_text.size()))
    {
    }
    QString name() const { return QString::fromLatin1(m_file.name()); }

private:
    QByteArray m_text;
    CMemoryFile m_file;
};

/// An entry of the device or, now and then, one that it does not have.
inline unsigned takeIndex(CFuzzInput& input)
{
    const unsigned which = input.byte();
    if (which == 0xFF)
        return input.word();
    if (which >= 0xF0)
        return (which & 1) != 0 ? storeIndex : restoreIndex;
    return firstIndex + which % unsigned{ std::size(rows) + 1 };
}

} // namespace fuzzedDevice
