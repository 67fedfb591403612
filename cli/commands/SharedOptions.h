// Options that several sub-commands have, and how texts of the command line are taken.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/DataSheet.h"
#include "network/Network.h"
#include "network/TypedValue.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <string>

namespace CLI
{
class App;
class Option;
} // namespace CLI

/// Adds an option or a positional argument for a text, in the encoding of the terminal.
CLI::Option* addText(CLI::App& command, const std::string& name, QString& text, const std::string& description);

/// The same for a positional argument that is given once or more often; required.
CLI::Option* addTexts(CLI::App& command, const std::string& name, const std::string& description, QStringList& texts);

/// The same for names of files, which are those of `sheetFileOf`. An empty one is refused.
CLI::Option* addFile(CLI::App& command, const std::string& name, QString& fileName, const std::string& description);
CLI::Option* addFiles(CLI::App& command, const std::string& name, const std::string& description,
                      QStringList& fileNames);

/// Refuses an empty name of a file: that of a variable of a script that is not set.
void requireName(const std::string& text);

/// The file of this name; where there is none and the name has no folder, the installed data sheet of this name.
QString sheetFileOf(const std::string& text);

/// The decimal number of a text, from `least` to `most`. Nothing else is taken: "010" is 10, and "0x10" is refused with
/// an error of the command line that names the option.
int decimalOf(const std::string& text, const std::string& option, int least, int most);

/// Adds an option for such a number.
CLI::Option* addNumber(CLI::App& command, const std::string& name, int least, int most,
                       const std::function<void(int number)>& set, const std::string& description);

/// Adds -i and the time-outs. @return -i, which is required
CLI::Option* addNetwork(CLI::App& command, tNetworkOptions& options);

/// Adds -n, which takes 1 to 127. Not required.
CLI::Option* addNode(CLI::App& command, int& node);

/// Adds -s for a data sheet.
CLI::Option* addSheet(CLI::App& command, QString& fileName);

/// Adds --mode hex|dec|oct, hexadecimal by itself.
void addMode(CLI::App& command, valueFormats::TDisplayMode& mode);

/// Adds --type and its words; `type` is none as long as it is not given.
void addType(CLI::App& command, std::optional<int>& type);

/// Loads the sheet; null without a name. Ends the command with `exitUsage`, and the reason, when it is refused.
std::unique_ptr<CDataSheet> loadSheetIfNamed(const QString& fileName);
