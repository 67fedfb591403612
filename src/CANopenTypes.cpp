// Value types from and to text: one grammar for the six integer types, the packing of dates and times, and their texts.
// SPDX-License-Identifier: MIT
#include "CANopenTypes.h"

#include "base/Assertion.h"
#include "base/Digits.h"
#include "values/DateTimeText.h"

#include <QDateTime>

#include <algorithm>
#include <ctime>
#include <limits>
#include <type_traits>

namespace
{

// Integers:
//   text    = blanks ( decimal | hex | octal ) blanks
//   decimal = [ '+' | '-' ] digits       '-' for signed types only; starts with another character than '0'
//   hex     = '0' ( 'x' | 'X' ) digits   digits may be missing in each form
//   octal   = '0' digits

void skipBlanksAndTabs(const char*& text)
{
    while (*text == ' ' || *text == '\t')
        ++text;
}

// False when the number exceeds `limit`; `number` then holds the digits before the one that is too much.
bool readDigits(const char*& text, std::uint32_t base, std::uint32_t limit, std::uint32_t& number)
{
    for (std::uint32_t digit = digitOf(*text); digit < base; digit = digitOf(*++text)) {
        if (number > (limit - digit) / base)
            return false;
        number = number * base + digit;
    }
    return true;
}

template <typename Value>
bool readInteger(const char* text, Value& value)
{
    constexpr std::uint32_t allBits = std::numeric_limits<std::make_unsigned_t<Value>>::max();
    constexpr std::uint32_t largest = static_cast<std::uint32_t>(std::numeric_limits<Value>::max());
    value = 0;
    skipBlanksAndTabs(text);
    if (*text == '\0')
        return false;

    std::uint32_t base = 10;
    std::uint32_t limit = largest;
    const bool negative = std::is_signed_v<Value> && *text == '-';
    if (*text == '0') {
        base = 8;
        limit = allBits;
        ++text;
        if (*text == 'x' || *text == 'X') {
            base = 16;
            ++text;
        }
    } else if (negative || *text == '+') {
        limit = negative ? largest + 1 : largest;
        // Kept: a sign needs a character after it, which may be a blank: "- " is 0, as "0x" is: compatible behaviour.
        if (*++text == '\0')
            return false;
    }

    std::uint32_t number = 0;
    const bool fits = readDigits(text, base, limit, number);
    value = static_cast<Value>(negative ? 0 - number : number);
    skipBlanksAndTabs(text);
    return fits && *text == '\0';
}

// Dates and times

using dateTimeText::tMoment;

struct tRange {
    int tMoment::*part;
    int first;
    int last;
};

// clang-format off
constexpr tRange ranges[] = {
    { &tMoment::month,       1, 12  },
    { &tMoment::day,         1, 31  }, // of any month
    { &tMoment::hour,        0, 23  },
    { &tMoment::minute,      0, 59  },
    { &tMoment::second,      0, 59  },
    { &tMoment::millisecond, 0, 999 },
};
// clang-format on
constexpr int lastYear = 2037;

constexpr std::int64_t secondsPerDay = 86400;
constexpr std::int64_t daysTo1984 = 5113;               // from 1970-01-01 to 1984-01-01
constexpr std::int64_t secondsTo2038 = 2145916800;      // from 1970-01-01
static_assert(daysTo1984 * secondsPerDay == 441763200); // seconds from 1970-01-01 to 1984-01-01

// The moment that `text` gives, with its full year. Two digits stand for the first such year from `firstYear` on.
bool readMoment(const char* text, int firstYear, tMoment& moment)
{
    moment = dateTimeText::currentMoment();
    if (!dateTimeText::read(text, moment))
        return false;
    if (moment.year < 100)
        moment.year += moment.year < firstYear - 1900 ? 2000 : 1900;
    return moment.year >= firstYear && moment.year <= lastYear &&
           std::all_of(std::begin(ranges), std::end(ranges), [&moment](const tRange& range) {
               return moment.*range.part >= range.first && moment.*range.part <= range.last;
           });
}

bool readDate(const char* text, SDO_t_DATE& value)
{
    tMoment moment;
    if (!readMoment(text, 1970, moment))
        return false;
    const auto byte = [](int number) { return static_cast<std::uint8_t>(number); };
    // Kept: of the milliseconds only the low byte is sent, the high one is 0: compatible behaviour.
    value = { .data = { byte(moment.second * 1000 + moment.millisecond), 0, byte(moment.minute), byte(moment.hour),
                        byte(moment.day), byte(moment.month), byte(moment.year % 100) } };
    return true;
}

bool readTimeOfDay(const char* text, SDO_t_TIME_OF_DAY& value)
{
    tMoment moment;
    if (!readMoment(text, 1984, moment))
        return false;
    std::tm local{};
    local.tm_year = moment.year - 1900;
    local.tm_mon = moment.month - 1;
    local.tm_mday = moment.day;
    local.tm_hour = moment.hour;
    local.tm_min = moment.minute;
    local.tm_sec = moment.second;
    local.tm_isdst = 0; // Kept: taken as standard time also in summer: compatible behaviour
    const std::int64_t seconds = std::mktime(&local);
    // Kept: east of Greenwich the first hours of 1984 lie before day 0, and are sent as day 65535.
    value.member.days = static_cast<std::uint16_t>(seconds / secondsPerDay - daysTo1984);
    value.member.msec = static_cast<std::uint32_t>(seconds % secondsPerDay * 1000 + moment.millisecond);
    return true;
}

template <typename Value>
bool convert(const char* string, Value* value, bool (*read)(const char*, Value&), int line)
{
    Value unused{};
    const char* text = assertion(string != nullptr, "string", "CANopenTypes", line) ? string : "";
    return read(text, assertion(value != nullptr, "value", "CANopenTypes", line) ? *value : unused);
}

} // namespace

bool CCANopenTypes::ascii2integer8(const char* string, SDO_t_INTEGER8* value)
{
    return convert(string, value, readInteger, __LINE__);
}

bool CCANopenTypes::ascii2integer16(const char* string, SDO_t_INTEGER16* value)
{
    return convert(string, value, readInteger, __LINE__);
}

bool CCANopenTypes::ascii2integer32(const char* string, SDO_t_INTEGER32* value)
{
    return convert(string, value, readInteger, __LINE__);
}

bool CCANopenTypes::ascii2unsigned8(const char* string, SDO_t_UNSIGNED8* value)
{
    return convert(string, value, readInteger, __LINE__);
}

bool CCANopenTypes::ascii2unsigned16(const char* string, SDO_t_UNSIGNED16* value)
{
    return convert(string, value, readInteger, __LINE__);
}

bool CCANopenTypes::ascii2unsigned32(const char* string, SDO_t_UNSIGNED32* value)
{
    return convert(string, value, readInteger, __LINE__);
}

bool CCANopenTypes::ascii2date(const char* string, SDO_t_DATE* value)
{
    return convert(string, value, readDate, __LINE__);
}

bool CCANopenTypes::ascii2timeOfDay(const char* string, SDO_t_TIME_OF_DAY* value)
{
    return convert(string, value, readTimeOfDay, __LINE__);
}

bool CCANopenTypes::date2ascii(SDO_t_DATE value, QString& string)
{
    auto& member = value.member;
    if (member.day_of_month == 0 && member.day_of_week == 0 && member.month == 0 && member.year == 0) {
        member.day_of_month = 1;
        member.day_of_week = 4;
        member.month = 1;
        member.year = 70;
    }
    const QTime time(member.hour, member.minutes, member.milliseconds / 1000, member.milliseconds % 1000);
    const QDate date(member.year + (member.year > 69 ? 1900 : 2000), member.month, member.day_of_month);
    // Date and time are converted separately: one local moment would shift a time that daylight saving skips.
    string =
        date.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char(' ') + time.toString(QStringLiteral("hh:mm:ss.zzz"));
    return true;
}

bool CCANopenTypes::timeOfDay2ascii(SDO_t_TIME_OF_DAY value, QString& string)
{
    std::int64_t seconds = (value.member.days + daysTo1984) * secondsPerDay + value.member.msec / 1000;
    if (seconds > secondsTo2038)
        seconds = 0;
    // Kept: shows whole seconds, and 000 for the milliseconds: compatible behaviour.
    string = QDateTime::fromSecsSinceEpoch(seconds).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    return true;
}

const char* CCANopenTypes::version()
{
    return "Velmora value types, revision 2026-11-21";
}
