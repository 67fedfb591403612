// Reading local dates and times.
// SPDX-License-Identifier: MIT
//
//   text = blanks [ date ]
//   date = day | day '.' month '.' year time | year '-' month '-' day time | month '/' day '/' year time
//   time = ' ' blanks hour ':' minute ':' second '.' milliseconds ' ' blanks
// Each part is a run of digits, 0 when the run is empty. The text may end after any part, and with blanks after any
// part but a day that stands alone.
#include "values/DateTimeText.h"

#include <QDateTime>

#include <algorithm>
#include <limits>

namespace
{

using dateTimeText::tMoment;

using tPart = int tMoment::*;

struct tPlace {
    tPart part;
    char separator; // expected after the part when the text goes on; a blank stands for one or more
};

struct tLayout {
    char separator; // after the first number, where it selects the layout, and after the second one
    tPart parts[3];
};

// clang-format off
constexpr tLayout dateLayouts[] = {
    { '.',  { &tMoment::day,   &tMoment::month, &tMoment::year } },
    { '-',  { &tMoment::year,  &tMoment::month, &tMoment::day  } },
    { '/',  { &tMoment::month, &tMoment::day,   &tMoment::year } },
    { '\0', { &tMoment::day,   &tMoment::month, &tMoment::year } }, // the text ends: a day alone
};
// clang-format on

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

void skipBlanks(const char*& text)
{
    while (*text == ' ')
        ++text;
}

// Nothing follows but blanks.
bool isEnd(const char* text)
{
    skipBlanks(text);
    return *text == '\0';
}

int readNumber(const char*& text)
{
    constexpr int largest = std::numeric_limits<int>::max();
    int number = 0;
    for (; isDigit(*text); ++text) {
        const int digit = *text - '0';
        number = number > (largest - digit) / 10 ? largest : number * 10 + digit;
    }
    return number;
}

const tLayout* layoutOf(const char* text)
{
    readNumber(text);
    const auto* layout = std::find_if(std::begin(dateLayouts), std::end(dateLayouts),
                                      [text](const tLayout& row) { return row.separator == *text; });
    return layout != std::end(dateLayouts) ? layout : nullptr;
}

} // namespace

tMoment dateTimeText::currentMoment()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDate date = now.date();
    const QTime time = now.time();
    return { date.year(), date.month(), date.day(), time.hour(), time.minute(), time.second(), 0 };
}

bool dateTimeText::read(const char* text, tMoment& moment)
{
    skipBlanks(text);
    if (*text == '\0')
        return true;
    const tLayout* layout = layoutOf(text);
    if (layout == nullptr)
        return false;

    // clang-format off
    const tPlace places[] = {
        { layout->parts[0],      layout->separator },
        { layout->parts[1],      layout->separator },
        { layout->parts[2],      ' ' },
        { &tMoment::hour,        ':' },
        { &tMoment::minute,      ':' },
        { &tMoment::second,      '.' },
        { &tMoment::millisecond, ' ' },
    };
    // clang-format on
    for (const auto& place : places) {
        moment.*place.part = readNumber(text);
        if (isEnd(text))
            return true;
        if (*text++ != place.separator)
            return false;
        if (place.separator == ' ')
            skipBlanks(text);
    }
    return false;
}
