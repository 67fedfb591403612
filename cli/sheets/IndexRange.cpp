// Ranges of indexes, as commands are given them.
// SPDX-License-Identifier: MIT
#include "sheets/IndexRange.h"

#include <QRegularExpression>

std::optional<tIndexRange> indexRange(const QString& text)
{
    static const QRegularExpression grammar(QStringLiteral("\\A(?:0x)?([0-9A-F]{1,4})(?:-(?:0x)?([0-9A-F]{1,4}))?\\z"),
                                            QRegularExpression::CaseInsensitiveOption);
    const auto match = grammar.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    tIndexRange range;
    range.first = match.captured(1).toUInt(nullptr, 16);
    range.last = match.hasCaptured(2) ? match.captured(2).toUInt(nullptr, 16) : range.first;
    return range.first <= range.last ? std::optional(range) : std::nullopt;
}
