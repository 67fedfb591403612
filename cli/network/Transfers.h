// Reading and writing parameters of one device, as texts.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/DataSheet.h"
#include "network/Network.h"
#include "network/ParameterName.h"
#include "network/TypedValue.h"

#include <QStringList>

#include <optional>

enum tValueFormat { formatPlain, formatJson };

/// What `read` and `write` are asked for.
struct tTransferOptions {
    tNetworkOptions network;
    int node = 0;
    QString sheet;           ///< empty: none
    std::optional<int> type; ///< in place of the sheet's
    valueFormats::TDisplayMode mode = valueFormats::modeHex;
    tValueFormat format = formatPlain;
    QStringList arguments; ///< of `read`: parameters; of `write`: parameters, each followed by its value
    int repeat = 1;        ///< of `read`; 0: until Ctrl-C
    int every = -1;        ///< milliseconds from one reading to the next; below 0: no series
};

/// Reads each parameter and prints its value, one a line. A device that aborts does not end it, an interface without an
/// answer does. @return the exit status
int readParameters(const tTransferOptions& options, const CCANopen* sheet, CConsole& console);

/// Reads all parameters again and again and prints them as CSV with the time of each reading. @return the exit status
int readSeries(const tTransferOptions& options, const CCANopen* sheet, CConsole& console);

/// Writes each value in its turn and prints it as it was sent. Before the first one is sent, all are checked. The first
/// failure ends it. @return the exit status
int writeParameters(const tTransferOptions& options, const CCANopen* sheet, CConsole& console);
