// How commands write indexes, sub-indexes and values of entries.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// "0x1018"
QString indexText(unsigned index);
/// "9", "0xA"
QString subIndexText(unsigned subIndex);
/// "1018:1", both hexadecimal, or "1017" for sub-index 0, as parameters are written on the command line and in messages
QString parameterText(unsigned index, unsigned subIndex);
/// "1018:0": the same with every sub-index, where the object itself is "1018"
QString entryText(unsigned index, unsigned subIndex);

/// The name of a data type as the window shows it: "Unsigned32".
QString dataTypeName(int dataType);

/// The number in the text, decimal or hexadecimal after "0x"; none when it is no number or larger than `most`.
std::optional<unsigned> numberIn(const QString& text, unsigned most);

/// The bytes of a text such as "$NODEID+0x180" minus the node-id, that is, of node 0; none for a text that is no such
/// sum, or has the node-id in it twice.
std::optional<QByteArray> relativeValue(const QString& text, int dataType);

/// The text of a value in a data sheet, see `textFromValue`. `relative`: to a node-id, which has been subtracted from
/// it.
std::optional<QString> sheetText(const QByteArray& value, int dataType, bool relative);

/// A value in a dump: as in a data sheet, but a text is written as it is, and a value of another length than its type
/// has, as octets.
QString dumpedText(const QByteArray& value, int dataType, bool relative);

/// The value of `size` bytes that `dumpedText` has written, or that anybody else may write so; none when the text is no
/// such value.
std::optional<QByteArray> dumpedValue(const QString& text, int dataType, qsizetype size);
