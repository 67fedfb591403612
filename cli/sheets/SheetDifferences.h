// What differs between two data sheets, by meaning and not by text.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

class CDataSheet;

/// A field that differs. Without an index it belongs to the device, without a sub-index to the object.
struct tSheetDifference {
    enum tKind { text, value, presence };

    std::optional<unsigned> index;
    std::optional<unsigned> subIndex;
    bool isVariable = false; ///< the only entry of its object in both sheets, which its index names
    tKind kind = value;      ///< presence: one of the sheets has no such object or entry, and there the text is null
    QString field;
    QString a;
    QString b;
};

/// In the order of the indexes, the device before them. Compared are the device information, but not who made the file
/// and when; of objects their names, codes, types and whether they are mandatory; of entries names, types, access,
/// limits, default values, the values of a configuration and PDO mapping. What is described twice counts as the browser
/// shows it: the first one.
std::vector<tSheetDifference> sheetDifferences(const CDataSheet& a, const CDataSheet& b);
/// The same of two files; ends the command with `exitUsage` when one does not load.
std::vector<tSheetDifference> sheetDifferences(const QString& fileA, const QString& fileB);

/// A line for each: "1017: default 0 -> 1000", "1018:4: only in FILE".
QByteArray differencesAsText(const std::vector<tSheetDifference>& differences, const QString& nameA,
                             const QString& nameB);
/// {"a":FILE,"b":FILE,"differences":[{"index":"0x1017","subindex":0,"field":"default","a":"0","b":"1000"},...]}; null
/// for an empty value, and for the index and sub-index that a difference does not have.
QByteArray differencesAsJson(const std::vector<tSheetDifference>& differences, const QString& nameA,
                             const QString& nameB);
