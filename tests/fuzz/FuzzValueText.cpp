// Texts to values and values to texts, of all data types, against a second evaluation of each. The first byte of the
// input chooses what the rest is: the text of a number, a date or a time, or the bytes of a value.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"

#include "CANopenTypes.h"
#include "dic/CANopenObjectEntry.h"
#include "dic/ValueTypes.h"
#include "network/TypedValue.h"
#include "values/ValueFormats.h"

#include <QDate>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <ctime>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

using entry = CCANopenObjectEntry;
using types = CCANopenTypes;
using namespace valueFormats;
__extension__ typedef __int128 tWide;

// Integers

/// The digits of a text and their base; "0x" and "0" stand before them.
struct tDigits {
    bool isPattern;
    unsigned base;
    std::string digits;
};

static tDigits digitsOf(const std::string& text)
{
    if (text[0] != '0' || text.size() == 1)
        return { false, 10, text };
    if (text[1] == 'x' || text[1] == 'X')
        return { true, 16, text.substr(2) };
    return { true, 8, text.substr(1) };
}

/// The number that all of the digits stand for, if they are digits; large ones are cut to 2^100.
static bool evaluate(const tDigits& digits, tWide& number)
{
    number = 0;
    for (const char letter : digits.digits) {
        const char* const all = "0123456789abcdef";
        const char* digit =
            letter == '\0' ? nullptr : std::strchr(all, letter >= 'A' && letter <= 'F' ? letter + 32 : letter);
        if (digit == nullptr || digit - all >= int(digits.base))
            return false;
        number = std::min(number * digits.base + (digit - all), tWide{ 1 } << 100);
    }
    return true;
}

static std::string stripped(const std::string& text, const char* blanks)
{
    const size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// As the window takes a number: digits may be missing, but not all of a text, and a sign has something after it.
template <typename Value>
static bool readAsWindow(const std::string& text, Value& value)
{
    using tLimits = std::numeric_limits<Value>;
    std::string word = stripped(text, " \t");
    if (word.empty())
        return false;
    const bool negative = std::is_signed_v<Value> && word[0] == '-';
    const bool hasSign = negative || word[0] == '+';
    if (hasSign && text.find(word[0]) + 1 == text.size())
        return false;
    const tDigits digits = hasSign ? tDigits{ false, 10, word.substr(1) } : digitsOf(word);
    tWide number = 0;
    // Blanks after a sign are those at the end, and stripped: there are no digits then.
    if (!evaluate(digits, number))
        return false;
    const tWide limit = digits.isPattern || word == "0" ? std::numeric_limits<std::make_unsigned_t<Value>>::max()
                                                        : tWide{ tLimits::max() } + (negative ? 1 : 0);
    value = static_cast<Value>(negative ? -number : number);
    return number <= limit;
}

template <typename Value>
static void readInteger(bool (*read)(const char*, Value*), const std::string& text)
{
    Value value = 0;
    Value expected = 0;
    const bool isValue = read(text.c_str(), &value);
    require(isValue == readAsWindow(text, expected));
    require(!isValue || value == expected);
}

/// The layouts of the types with numbers, written down again.
struct tNumberType {
    int type;
    int bits;
    bool isSigned;
};
static constexpr tNumberType numberTypes[] = {
    { 2, 8, true },    { 3, 16, true },   { 4, 32, true },   { 16, 24, true },  { 18, 40, true }, { 19, 48, true },
    { 20, 56, true },  { 21, 64, true },  { 5, 8, false },   { 6, 16, false },  { 7, 32, false }, { 22, 24, false },
    { 24, 40, false }, { 25, 48, false }, { 26, 56, false }, { 27, 64, false }, { 1, 1, false },
};

/// As the command line takes a number: with digits, and no minus where there is no negative number.
static std::optional<QByteArray> readTyped(const tNumberType& type, const std::string& text)
{
    const bool isOfWindow = type.type <= 7 && type.type > 1;
    const std::string word = stripped(text, isOfWindow ? " \t" : " \t\n\v\f\r\x85\xA0");
    if (word.empty())
        return std::nullopt;
    const bool negative = word[0] == '-';
    const bool hasSign = negative || word[0] == '+';
    const tDigits digits = hasSign ? tDigits{ false, 10, word.substr(1) } : digitsOf(word);
    tWide number = 0;
    if (digits.digits.empty() || !evaluate(digits, number) || (negative && !type.isSigned))
        return std::nullopt;
    const int bits = type.isSigned && !digits.isPattern ? type.bits - 1 : type.bits;
    if (number > (tWide{ 1 } << bits) - (negative ? 0 : 1))
        return std::nullopt;
    return littleEndian(static_cast<quint64>(negative ? -number : number), (type.bits + 7) / 8);
}

static bool isDecimal(const std::string& text)
{
    size_t at = text[0] == '+' || text[0] == '-' ? 1 : 0;
    const size_t digits = std::min(text.find_first_not_of("0123456789", at), text.size());
    if (digits == at)
        return false;
    at = digits;
    if (text[at] == '.')
        at = std::min(text.find_first_not_of("0123456789", at + 1), text.size());
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        at += text[at + 1] == '+' || text[at + 1] == '-' ? 2U : 1U;
        return at < text.size() && text.find_first_not_of("0123456789", at) == std::string::npos;
    }
    return at == text.size();
}

template <typename Real>
static void readReal(int type, const std::string& text, Real (*convert)(const char*, char**))
{
    if (!isDecimal(text) || (text[0] == '0' && text.find_first_not_of("0123456789") == std::string::npos))
        return; // other forms are none, or bit patterns
    errno = 0;
    const Real value = convert(text.c_str(), nullptr);
    if (errno == ERANGE || !std::isfinite(value))
        return;
    const auto bytes = typedValue::bytesOf(type, QString::fromStdString(text));
    require(bytes == QByteArray(reinterpret_cast<const char*>(&value), sizeof value));
}

static void numbersFromText(const std::string& text)
{
    const std::string plain = text.c_str();
    readInteger(&types::ascii2integer8, plain);
    readInteger(&types::ascii2integer16, plain);
    readInteger(&types::ascii2integer32, plain);
    readInteger(&types::ascii2unsigned8, plain);
    readInteger(&types::ascii2unsigned16, plain);
    readInteger(&types::ascii2unsigned32, plain);
    const QString typed = QString::fromLatin1(plain.data(), qsizetype(plain.size()));
    for (const tNumberType& type : numberTypes)
        require(typedValue::bytesOf(type.type, typed) == readTyped(type, plain));
    readReal<float>(8, plain, &std::strtof);
    readReal<double>(17, plain, &std::strtod);
}

// Values to texts

static std::string formatted(const tNumberType& type, tDirection direction, uint32_t bits, int mode)
{
    const uint32_t value = type.bits == 32 ? bits : bits & ((1U << type.bits) - 1);
    const bool isExchanged = type.type == 4 && direction == valueFormats::read;
    const int octal = isExchanged ? 6 : type.bits == 8 ? 3 : type.bits == 16 ? 6 : 11;
    char text[32];
    if (mode == modeOct) {
        std::snprintf(text, sizeof text, "%0*o", octal, value);
    } else if (mode != modeDec) {
        std::snprintf(text, sizeof text, "0x%0*X", isExchanged ? 11 : type.bits / 4, value);
    } else if (type.isSigned) {
        const bool negative = (value >> (type.bits - 1) & 1) != 0;
        const int64_t number = negative ? int64_t{ value } - (int64_t{ 1 } << type.bits) : value;
        std::snprintf(text, sizeof text, "%+lld", static_cast<long long>(number));
    } else {
        std::snprintf(text, sizeof text, "%u", value);
    }
    return text;
}

/// What is shown is the second text, and reads as the value; an octal number only where a 0 tells that it is one.
static void showInteger(int type, uint32_t bits, TDisplayMode mode)
{
    const auto* row = std::find_if(std::begin(numberTypes), std::end(numberTypes),
                                   [type](const tNumberType& each) { return each.type == type && type > 1; });
    for (const tDirection direction : { valueFormats::read, valueFormats::sent }) {
        const QString text = integer(type, direction, bits, mode);
        if (row == std::end(numberTypes) || row->type > 7) {
            require(text.isEmpty());
            continue;
        }
        require(text.toStdString() == formatted(*row, direction, bits, mode));
        if (mode != modeOct || text.startsWith(u'0'))
            require(typedValue::bytesOf(type, text) == littleEndian(bits, row->bits / 8));
    }
}

static void showBytes(const std::string& bytes, TDisplayMode mode)
{
    const char* const format = mode == modeDec ? "%u " : mode == modeOct ? "%03o " : "0x%02X ";
    std::string expected;
    for (const char byte : bytes) {
        char text[8];
        std::snprintf(text, sizeof text, format, unsigned{ static_cast<unsigned char>(byte) });
        expected += text;
    }
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    require(valueFormats::bytes(data, int(bytes.size()), mode).toStdString() == expected);
}

// Dates and times

struct tMoment {
    long parts[7] = {}; // year, month, day, hour, minute, second, millisecond
    bool given[7] = {};
};

/// The numbers of a text and what stands between them; false when it is no date.
static bool splitMoment(const std::string& text, tMoment& moment)
{
    static constexpr size_t orders[3][3] = { { 2, 1, 0 }, { 0, 1, 2 }, { 1, 2, 0 } };
    size_t at = std::min(text.find_first_not_of(' '), text.size());
    if (at == text.size())
        return true;
    const size_t first = std::min(text.find_first_not_of("0123456789", at), text.size());
    const char separator = first == text.size() ? '.' : text[first];
    const size_t layout = std::string(".-/").find(separator);
    if (layout == std::string::npos)
        return false;
    const char separators[] = { separator, separator, ' ', ':', ':', '.', ' ' };
    for (size_t place = 0; place < 7; ++place) {
        const size_t part = place < 3 ? orders[layout][place] : place;
        const size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
        errno = 0;
        const long number = at == end ? 0 : std::strtol(text.substr(at, end - at).c_str(), nullptr, 10);
        moment.parts[part] = std::min<long>(number, std::numeric_limits<int>::max());
        moment.given[part] = true;
        at = end;
        if (text.find_first_not_of(' ', at) == std::string::npos)
            return true;
        if (text[at] != separators[place])
            return false;
        ++at;
        if (separators[place] == ' ')
            at = text.find_first_not_of(' ', at);
    }
    return false;
}

/// True when the moment is one; what is not given is taken as fitting, and its year completed.
static bool complete(tMoment& moment, long firstYear)
{
    static constexpr long lowest[] = { 0, 1, 1, 0, 0, 0, 0 };
    static constexpr long highest[] = { 2037, 12, 31, 23, 59, 59, 999 };
    if (moment.given[0] && moment.parts[0] < 100)
        moment.parts[0] += moment.parts[0] < firstYear % 100 ? 2000 : 1900;
    for (size_t part = 0; part < 7; ++part)
        if (moment.given[part] &&
            (moment.parts[part] < (part == 0 ? firstYear : lowest[part]) || moment.parts[part] > highest[part]))
            return false;
    return true;
}

static void readDate(const std::string& text)
{
    tMoment moment;
    SDO_t_DATE value;
    std::memset(value.data, 0xA5, sizeof value.data);
    const bool isValue = types::ascii2date(text.c_str(), &value);
    require(isValue == (splitMoment(text, moment) && complete(moment, 1970)));
    const long* parts = moment.parts;
    const bool* given = moment.given;
    const auto is = [&](size_t byte, long number, bool known) {
        require(!known || value.data[byte] == static_cast<uint8_t>(number));
    };
    if (!isValue)
        return require(
            std::all_of(std::begin(value.data), std::end(value.data), [](uint8_t byte) { return byte == 0xA5; }));
    is(0, parts[5] * 1000 + parts[6], given[5]);
    is(1, 0, true);
    is(2, parts[4], given[4]);
    is(3, parts[3], given[3]);
    is(4, parts[2], given[2]);
    is(5, parts[1], given[1]);
    is(6, parts[0] % 100, given[0]);
}

/// In Berlin, where the clocks are one hour ahead in winter, which is taken for the whole year.
static void readTimeOfDay(const std::string& text)
{
    tMoment moment;
    SDO_t_TIME_OF_DAY value;
    std::memset(value.data, 0xA5, sizeof value.data);
    const bool isValue = types::ascii2timeOfDay(text.c_str(), &value);
    require(isValue == (splitMoment(text, moment) && complete(moment, 1984)));
    if (!isValue)
        return require(value.member.msec == 0xA5A5A5A5 && value.member.days == 0xA5A5);
    if (!std::all_of(moment.given, moment.given + 6, [](bool given) { return given; }))
        return;
    const long* parts = moment.parts;
    const qint64 day = QDate(int(parts[0]), int(parts[1]), 1).toJulianDay() + parts[2] - 1;
    const qint64 seconds =
        (day - QDate(1970, 1, 1).toJulianDay()) * 86400 + parts[3] * 3600 + parts[4] * 60 + parts[5] - 3600;
    require(value.member.days == static_cast<uint16_t>(seconds / 86400 - 5113));
    require(value.member.msec == static_cast<uint32_t>(seconds % 86400 * 1000 + parts[6]));
}

static int daysIn(int month, int year)
{
    static constexpr int days[] = { 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31 };
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month < 1 || month > 12 ? 0 : days[month - 1] + (month == 2 && isLeap ? 1 : 0);
}

static void showDate(const std::string& bytes)
{
    SDO_t_DATE value = {};
    bytes.copy(reinterpret_cast<char*>(value.data), sizeof value.data);
    const uint8_t* data = value.data;
    const bool isNone = data[4] == 0 && data[5] == 0 && data[6] == 0;
    const int year = isNone ? 1970 : data[6] + (data[6] > 69 ? 1900 : 2000);
    const int month = isNone ? 1 : data[5];
    const int day = isNone ? 1 : data[4] & 0x1F;
    const int milliseconds = data[0] | data[1] << 8;
    const int hour = data[3] & 0x1F;
    char date[16] = "";
    char time[16] = "";
    if (day >= 1 && day <= daysIn(month, year))
        std::snprintf(date, sizeof date, "%04d-%02d-%02d", year, month, day);
    if (hour < 24 && data[2] < 60 && milliseconds < 60000)
        std::snprintf(time, sizeof time, "%02d:%02d:%02d.%03d", hour, int{ data[2] }, milliseconds / 1000,
                      milliseconds % 1000);
    QString text;
    require(types::date2ascii(value, text));
    require(text.toStdString() == std::string(date) + " " + time);
}

static void showTimeOfDay(const std::string& bytes)
{
    SDO_t_TIME_OF_DAY value = {};
    bytes.copy(reinterpret_cast<char*>(value.data), sizeof value.data);
    std::time_t seconds = (value.member.days + 5113L) * 86400 + value.member.msec / 1000;
    if (seconds > 2145916800)
        seconds = 0;
    std::tm local;
    localtime_r(&seconds, &local);
    char expected[32];
    std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S.000", &local);
    QString text;
    require(types::timeOfDay2ascii(value, text) && text.toStdString() == expected);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool isInBerlin = setenv("TZ", "Europe/Berlin", 1) == 0 && (tzset(), true);
    require(isInBerlin);
    CFuzzInput input(data, size);
    const unsigned what = input.byte() % 4;
    if (what == 0) {
        numbersFromText(std::string(input.rest()));
    } else if (what == 1) {
        const std::string text(input.rest());
        readDate(text.c_str());
        readTimeOfDay(text.c_str());
    } else if (what == 2) {
        const std::string bytes(input.rest());
        showDate(bytes);
        showTimeOfDay(bytes);
    } else {
        const auto mode = static_cast<TDisplayMode>(input.byte() % 5);
        const uint32_t bits = input.number();
        for (int type = 0; type < 0x21; ++type)
            showInteger(type, bits, mode);
        showBytes(std::string(input.rest()), mode);
    }
    return 0;
}
