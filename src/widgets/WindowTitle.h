// File names as window titles: Qt takes "[*]" in a title for a placeholder and shows it only when it is doubled.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace windowTitle
{

/// The title that shows as `text`.
inline QString titleOf(const QString& text)
{
    return QString(text).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

/// What such a title shows.
inline QString textOf(const QString& title)
{
    return QString(title).replace(QStringLiteral("[*][*]"), QStringLiteral("[*]"));
}

} // namespace windowTitle
