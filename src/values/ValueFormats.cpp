// The text of a value in each display mode.
// SPDX-License-Identifier: MIT
#include "values/ValueFormats.h"

#include "dic/CANopenObjectEntry.h"

namespace
{

using entry = CCANopenObjectEntry;
using namespace valueFormats;

// One row a data type, one column a display mode.
struct tFormats {
    const char* hexadecimal;
    const char* decimal;
    const char* octal;

    const char* of(TDisplayMode mode) const
    {
        return mode == modeDec ? decimal : mode == modeOct ? octal : hexadecimal;
    }
};

struct tIntegerFormat {
    int type;
    int bits;
    bool isSigned;
    tFormats whenRead;
    tFormats whenSent;
};

// clang-format off
constexpr tIntegerFormat integerFormats[] = {
    { entry::typeInteger8,    8, true,  { "0x%02lX",  "%+li", "%03lo"  }, { "0x%02lX", "%+li", "%03lo"  } },
    { entry::typeInteger16,  16, true,  { "0x%04lX",  "%+li", "%06lo"  }, { "0x%04lX", "%+li", "%06lo"  } },
    // Kept: a value that was read has the widths of octal and hexadecimal exchanged: compatible behaviour.
    { entry::typeInteger32,  32, true,  { "0x%011lX", "%+li", "%06lo"  }, { "0x%08lX", "%+li", "%011lo" } },
    { entry::typeUnsigned8,   8, false, { "0x%02lX",  "%lu",  "%03lo"  }, { "0x%02lX", "%lu",  "%03lo"  } },
    { entry::typeUnsigned16, 16, false, { "0x%04lX",  "%lu",  "%06lo"  }, { "0x%04lX", "%lu",  "%06lo"  } },
    { entry::typeUnsigned32, 32, false, { "0x%08lX",  "%lu",  "%011lo" }, { "0x%08lX", "%lu",  "%011lo" } },
};
// clang-format on

constexpr tFormats byteFormats = { "0x%02X ", "%u ", "%03o " };

long signedValue(unsigned long value, int bits)
{
    const unsigned long sign = 1UL << (bits - 1);
    return static_cast<long>(value ^ sign) - static_cast<long>(sign);
}

} // namespace

QString valueFormats::integer(int type, tDirection direction, std::uint32_t bits, TDisplayMode mode)
{
    for (const tIntegerFormat& row : integerFormats) {
        if (row.type != type)
            continue;
        const tFormats& formats = direction == sent ? row.whenSent : row.whenRead;
        const unsigned long value = bits & (0xFFFFFFFFUL >> (32 - row.bits));
        // Hexadecimal and octal show the bits of a negative value, in its own width.
        if (row.isSigned && mode == modeDec)
            return QString::asprintf(formats.decimal, signedValue(value, row.bits));
        return QString::asprintf(formats.of(mode), value);
    }
    return QString();
}

QString valueFormats::bytes(const std::uint8_t* data, int length, TDisplayMode mode)
{
    QString text;
    for (int position = 0; position < length; ++position)
        text += QString::asprintf(byteFormats.of(mode), static_cast<unsigned>(data[position]));
    return text;
}
