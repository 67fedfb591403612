// JSON for standard output.
// SPDX-License-Identifier: MIT
#include "console/JsonText.h"

#include <QJsonDocument>

// Qt escapes those below the blank. U+007F is one byte, U+0080 to U+009F are C2 80 to C2 9F.
QByteArray jsonText(const QJsonDocument& document)
{
    constexpr char lead = '\xC2';
    const auto escape = [](unsigned code) { return "\\u00" + QByteArray::number(code, 16); };
    QByteArray text;
    const QByteArray json = document.toJson();
    text.reserve(json.size());
    for (qsizetype place = 0; place < json.size(); ++place) {
        const auto next = place + 1 < json.size() ? static_cast<unsigned char>(json[place + 1]) : 0U;
        if (json[place] == '\x7F') {
            text += escape(0x7F);
        } else if (json[place] == lead && next < 0xA0) {
            text += escape(next);
            ++place;
        } else {
            text += json[place];
        }
    }
    return text;
}
