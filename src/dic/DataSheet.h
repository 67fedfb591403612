// A data sheet for programs that serve or check a device: with the values of a configuration, and with the reason when
// it is refused.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopen.h"
#include "dic/EdsLoad.h"

#include <QString>

class CDataSheet
{
public:
    /// What `load` found: a sheet, no file that can be read, or a file that is no sheet or describes no object.
    enum tResult { loaded, noFile, refused };

    /// Loads an electronic data sheet, or a device configuration file: its name ends in ".dcf", in any case. Once only.
    /// `lines`: where to put the lines of the entries, for those who need them.
    tResult load(const QString& fileName, tSheetLines* lines = nullptr);

    /// Why the sheet was not loaded, with the file, the line and the text where reading stopped.
    const QString& error() const { return m_error; }

    const CCANopen& dictionary() const { return m_dictionary; }

    /// The values that a device configuration file gives to entries; none for an electronic data sheet.
    const tParameterValues& parameterValues() const { return m_parameterValues; }

private:
    CCANopen m_dictionary;
    tParameterValues m_parameterValues;
    QString m_error;
};

/// "cannot read FILE".
QString unreadText(const QString& fileName);

/// A text for a message, such as the name of a file: control and format characters as "\t", "\r", "\x1B" or "\u200B".
QString visibleText(const QString& text);

/// A line of a file for a message: visible, and cut, with "..." after it, where it would need more than 80 characters.
QString visibleLine(const QString& line);
