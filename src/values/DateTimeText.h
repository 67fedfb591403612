// Local dates and times as typed by a user.
// SPDX-License-Identifier: MIT
#pragma once

namespace dateTimeText
{

/// A date and time in its parts, each as written: not checked against the calendar, a year may have two digits.
struct tMoment {
    int year;
    int month;
    int day;
    int hour;
    int minute;
    int second;
    int millisecond;
};

/// Now, in local time and whole seconds.
tMoment currentMoment();

/// Overwrites the parts of `moment` that `text` gives: "24.12.2009 18:30:15.250", "2009-12-24 18:30", "12/24", "15"
/// (the day) or nothing. Parts beyond the largest number are cut to it. False when the text has another form; `moment`
/// is then partly overwritten.
bool read(const char* text, tMoment& moment);

} // namespace dateTimeText
