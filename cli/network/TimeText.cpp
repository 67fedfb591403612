// Times on the command line.
//
//     time = digits [ "." digits ] ( "ms" | "s" | "min" )
// SPDX-License-Identifier: MIT
#include "network/TimeText.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace
{

struct tUnit {
    const char* word;
    int milliseconds;
};
constexpr tUnit units[] = { { "ms", 1 }, { "s", 1000 }, { "min", 60000 } };
constexpr int longest = 86400000;

} // namespace

std::optional<int> millisecondsOf(const QString& text)
{
    static const QRegularExpression grammar(QStringLiteral("\\A([0-9]+(?:\\.[0-9]+)?)([a-z]+)\\z"));
    const auto match = grammar.match(text);
    const auto* unit = std::find_if(std::begin(units), std::end(units), [&match](const tUnit& each) {
        return match.capturedView(2) == QLatin1String(each.word);
    });
    if (unit == std::end(units))
        return std::nullopt;
    const double milliseconds = match.captured(1).toDouble() * unit->milliseconds;
    return milliseconds <= longest ? std::optional(static_cast<int>(milliseconds)) : std::nullopt;
}
