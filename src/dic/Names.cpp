// Look-up of names and numbers of the model's enumerations, for C strings and Qt texts.
// SPDX-License-Identifier: MIT
#include "dic/Names.h"

int valueByName(TNames names, const char* text, int unknown)
{
    return text ? valueOf(names, text, unknown) : unknown;
}

QString nameByValue(TNames names, int value, std::string_view unknown)
{
    const std::string_view name = nameOf(names, value, unknown);
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}
