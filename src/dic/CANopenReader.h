// Fills an object dictionary from a data sheet, and the readers of section names and numbers in such sheets.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopen.h"

/// Tolerant of values, strict of syntax: what is no number counts as 0, unknown sections and keys are skipped, but a
/// line that is no INI line ends the load.
class CCANopenReader
{
public:
    CCANopenReader() = default;
    /// `dictionary` is borrowed and must outlive the reader.
    CCANopenReader(CCANopen* dictionary, CCANopen::TFileType type) : m_dictionary(dictionary), m_fileType(type) {}

    /// Notes name and type of the file in the dictionary and loads it (name as `QFile::encodeName` gives it).
    /// @return 1 on success; 0 without a dictionary, for an unsupported type or after a syntax error. The dictionary
    /// keeps what was read until then.
    int load(const char* fileName);
    /// Loads an electronic data sheet or a device configuration file; the results as above. A file that cannot be
    /// opened reads as an empty one. Loading again adds to the objects and replaces the device information.
    int loadEDS(const char* fileName);
    /// Not supported: 0.
    int loadXML(const char* fileName);
    /// Not supported: 0.
    int loadCOP(const char* fileName);

    static const char* version();

private:
    CCANopen* m_dictionary = nullptr;
    CCANopen::TFileType m_fileType = CCANopen::typeUnknown;
};

// The functions below store what they have read also when they return false. A null pointer is reported as a warning;
// a null text then counts as empty, and for a null result nothing is stored.

/// Section name of an object: 1 to 4 hexadecimal digits, the first not 0. Example: "1A00".
bool IsObject(const char* name, unsigned short* index);

/// Section name of an entry: an index of 4 hexadecimal digits, "sub" in either case, and a sub-index of 1 or 2
/// hexadecimal digits; the first digit of either is not 0, except for sub-index "0". Example: "1018sub1".
bool IsObjectEntry(const char* name, unsigned short* index, unsigned char* subIndex);

/// Unsigned number, decimal ("20", "+20"), hexadecimal ("0x14") or octal ("024"), with blanks and tabs around it. False
/// for an empty text, any other character, a sign '-' and numbers beyond 255.
bool Ascii2Unsigned8(const char* text, unsigned char* value);
/// The same up to 65535.
bool Ascii2Unsigned16(const char* text, unsigned short* value);
/// The same up to 4294967295.
bool Ascii2Unsigned32(const char* text, unsigned long* value);
