// The name of an interface on the command line.
//
//     interface = name | address ":" port
//     address   = "localhost" | number "." number "." number "." number
// SPDX-License-Identifier: MIT
#include "network/InterfaceName.h"

#include "dic/NumberText.h"

#include <QStringList>

#include <algorithm>

namespace
{

// With a sign or blanks the browser would read another number, or take the whole for the name of a CAN interface.
bool isNumberWithin(const QString& text, quint64 least, quint64 most)
{
    const bool plain = std::all_of(text.cbegin(), text.cend(), [](QChar letter) { return letter.isLetterOrNumber(); });
    const auto number = readNumber(text);
    return plain && number && number->bits >= least && number->bits <= most;
}

bool isAddress(const QString& text)
{
    const QStringList parts = text.split(u'.');
    return text == QLatin1String("localhost") ||
           (parts.size() == 4 && std::all_of(parts.cbegin(), parts.cend(),
                                             [](const QString& part) { return isNumberWithin(part, 0, 255); }));
}

// As the kernel has it. Longer names would find the interface of their first letters.
bool isNameOfDevice(const QString& text)
{
    constexpr qsizetype longest = 15;
    return !text.isEmpty() && text.toLocal8Bit().size() <= longest &&
           std::none_of(text.cbegin(), text.cend(),
                        [](QChar letter) { return letter == u'/' || letter == u':' || letter.isSpace(); });
}

} // namespace

bool isInterfaceName(const QString& text)
{
    const qsizetype colon = text.indexOf(u':');
    if (colon < 0)
        return isNameOfDevice(text) && !isAddress(text); // an address without its port
    return isAddress(text.left(colon)) && isNumberWithin(text.mid(colon + 1), 1, 65535);
}
