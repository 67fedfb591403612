// JSON for standard output.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

class QJsonDocument;

/// The document as indented text. Control characters that JSON allows in a string are escaped, too: no terminal may
/// take them for commands.
QByteArray jsonText(const QJsonDocument& document);
