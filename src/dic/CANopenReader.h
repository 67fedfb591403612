// Fills an object dictionary from a data sheet.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopen.h"
#include "dic/EdsGrammar.h"

/// A value that is no number reads as 0, unknown sections and keys are skipped, but a line that is not INI syntax ends
/// the load.
class CCANopenReader
{
public:
    CCANopenReader() = default;
    /// `dictionary` is borrowed and must outlive the reader.
    CCANopenReader(CCANopen* dictionary, CCANopen::TFileType type) : m_dictionary(dictionary), m_fileType(type) {}

    /// Stores name and type of the file in the dictionary and loads it (name as `QFile::encodeName` gives it).
    /// @return 1 on success; 0 without a dictionary, for an unsupported type or after a syntax error. The dictionary
    /// keeps what was read before the error.
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
