// The entries of a data sheet as a list.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/IndexRange.h"

#include <QByteArray>
#include <QRegularExpression>
#include <QStringList>

#include <vector>

class CCANopen;

/// Which entries are listed: all, unless limited.
struct tListChoice {
    QRegularExpression pattern;      ///< found in the name, in the index ("0x1018") or in "1018:1"
    std::vector<tIndexRange> ranges; ///< none: all indexes

    // Both end the command with `exitUsage` when the text is wrong.

    void setPattern(const QString& text); ///< a regular expression, for upper and lower case alike
    void addRange(const QString& text);   ///< see `indexRange`
};

/// An entry under the index of its object, with the texts that the browser shows; limits and default value as they are
/// in the sheet.
struct tListRow {
    unsigned index;
    unsigned subIndex;
    QString name;
    QString type;
    QString access;
    QString low;
    QString high;
    QString defaultValue;
    bool isMapped;
};

/// All entries that were loaded, in their order, also those that are described twice.
std::vector<tListRow> dictionaryList(const CCANopen& dictionary, const tListChoice& choice);
/// The same of a file; ends the command with `exitUsage` when it does not load.
std::vector<tListRow> dictionaryList(const QString& fileName, const tListChoice& choice);

// The rows with the columns index, subindex, name, type, access, low, high, default and pdo; in JSON a list of objects.

QByteArray listAsTable(const std::vector<tListRow>& rows);
QByteArray listAsCsv(const std::vector<tListRow>& rows);
QByteArray listAsJson(const std::vector<tListRow>& rows);
