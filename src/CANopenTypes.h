// The value types of CANopen and their conversion from and to text.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <bit>
#include <cstdint>

using SDO_t_INTEGER8 = std::int8_t;
using SDO_t_INTEGER16 = std::int16_t;
using SDO_t_INTEGER32 = std::int32_t;
using SDO_t_UNSIGNED8 = std::uint8_t;
using SDO_t_UNSIGNED16 = std::uint16_t;
using SDO_t_UNSIGNED32 = std::uint32_t;

// The records below lie in memory as they are sent: least significant byte and bit first, without gaps.
static_assert(std::endian::native == std::endian::little);

/// DATE: the bytes on the bus and the fields in them.
union [[gnu::packed]] SDO_t_DATE {
    std::uint8_t data[7];
    struct [[gnu::packed]] {
        std::uint16_t milliseconds : 16; ///< within the minute
        std::uint8_t minutes : 8;
        std::uint8_t hour : 5;
        std::uint8_t reserved : 2;
        std::uint8_t daylight_saving : 1;
        std::uint8_t day_of_month : 5;
        std::uint8_t day_of_week : 3;
        std::uint8_t month : 8;
        std::uint8_t year : 8; ///< after 1900 when above 69, otherwise after 2000
    } member;
};
static_assert(sizeof(SDO_t_DATE) == 7);

/// TIME_OF_DAY: the bytes on the bus and the fields in them.
union [[gnu::packed]] SDO_t_TIME_OF_DAY {
    std::uint8_t data[6];
    struct [[gnu::packed]] {
        std::uint32_t msec : 32; ///< milliseconds after midnight
        std::uint16_t days : 16; ///< since 1984-01-01
    } member;
};
static_assert(sizeof(SDO_t_TIME_OF_DAY) == 6);

/// Text to value and back. `false` means that the text is no value of the type. A null pointer causes a warning in the
/// log; a null text is then taken as empty, and for a null result nothing is stored.
class CCANopenTypes
{
public:
    /// Integers: decimal with an optional sign ("-12", "+12"; no "-" for unsigned types), hexadecimal ("0x1F") or octal
    /// ("017"), with blanks and tabs around. Hexadecimal and octal digits are the raw bits: "0xFF" is -1 as INTEGER8.
    /// After a failure the result holds the digits read until then, and is no value.
    static bool ascii2integer8(const char* string, SDO_t_INTEGER8* value);
    static bool ascii2integer16(const char* string, SDO_t_INTEGER16* value);
    static bool ascii2integer32(const char* string, SDO_t_INTEGER32* value);
    static bool ascii2unsigned8(const char* string, SDO_t_UNSIGNED8* value);
    static bool ascii2unsigned16(const char* string, SDO_t_UNSIGNED16* value);
    static bool ascii2unsigned32(const char* string, SDO_t_UNSIGNED32* value);

    /// Local date and time, as in "24.12.2009 18:30:15.250", "2009-12-24 18:30" or "12/24/2009"; a single number is the
    /// day. What is not given is taken from the current moment. Years are 1970 to 2037 for a DATE and 1984 to 2037 for
    /// a TIME_OF_DAY; two digits stand for 1970 to 2069 and 1984 to 2083. After a failure the result is unchanged.
    static bool ascii2date(const char* string, SDO_t_DATE* value);
    static bool ascii2timeOfDay(const char* string, SDO_t_TIME_OF_DAY* value);

    /// "2009-12-24 18:30:15.250"; a date or a time that does not exist is left empty. Always true.
    static bool date2ascii(SDO_t_DATE value, QString& string);
    /// The same in local time and whole seconds; a moment after the year 2037 shows as the start of 1970. Always true.
    static bool timeOfDay2ascii(SDO_t_TIME_OF_DAY value, QString& string);

    static const char* version();
};
