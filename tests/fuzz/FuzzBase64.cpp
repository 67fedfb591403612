// Encodes and decodes any bytes and texts as the gateway client does, group by group and as domains: they must agree
// with Qt's base64. The first two bytes of the input are the room, the rest the data.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"

#include "tcp/base64.h"
#include "tcp/tcp_scan.h"

#include <QByteArray>

#include <cstring>
#include <memory>

static QByteArray encodedByGroups(const QByteArray& data)
{
    QByteArray text;
    for (qsizetype place = 0; place < data.size(); place += 3) {
        const int length = static_cast<int>(std::min<qsizetype>(3, data.size() - place));
        uint8_t group[4] = {}; // the byte after a group is zero
        std::memcpy(group, data.constData() + place, static_cast<size_t>(length));
        char characters[4];
        require(base64_encode(group, length, characters, 4) == length + 1);
        text.append(characters, sizeof characters);
    }
    return text;
}

/// Any group, with buffers of the exact size, so that the address sanitizer finds overruns.
static void anyGroup(const char* data, int length, int room)
{
    char text[5] = {};
    std::memcpy(text, data, static_cast<size_t>(length));
    const auto size = static_cast<size_t>(room);
    const std::unique_ptr<uint8_t[]> bytes(new uint8_t[size]());
    const int decoded = base64_decode(text, length, bytes.get(), room);
    require(decoded >= 0 && decoded <= std::min(room, 3));
    const std::unique_ptr<char[]> characters(new char[size]());
    const auto* group = reinterpret_cast<const uint8_t*>(data);
    const int encoded = base64_encode(group, std::min(length, 3), characters.get(), room);
    require(encoded >= 0 && encoded <= room);
}

static bool isOf(char character, const char* characters)
{
    return character != '\0' && std::strchr(characters, character) != nullptr;
}

/// The end of the run of such characters that begins at `start`.
static qsizetype endOf(const QByteArray& text, qsizetype start, const char* characters)
{
    while (start < text.size() && isOf(text[start], characters))
        ++start;
    return start;
}

/// A group that is not complete stands for one byte more than Qt takes, if this is all that it has or has a bit set.
static QByteArray decodedByQt(const QByteArray& text)
{
    const qsizetype rest = text.size() % 4;
    const QByteArray filled = QByteArray::fromBase64(text + QByteArray((4 - rest) % 4, 'A'));
    const qsizetype whole = text.size() * 6 / 8;
    if (rest == 0 || (rest > 1 && filled[whole] == '\0'))
        return filled.first(whole);
    return filled.first(whole + 1);
}

/// The domain at the start of any text, with memory of the exact size; what is after it stays.
static void readDomain(const QByteArray& text, short room)
{
    const auto size = static_cast<size_t>(text.size());
    const std::unique_ptr<char[]> line(new char[size + 1]());
    std::memcpy(line.get(), text.constData(), size);
    const std::unique_ptr<uint8_t[]> buffer(new uint8_t[static_cast<size_t>(room)]());
    uint32_t cursor = 0;
    short length = -1;
    require(ascii2domain(line.get(), &cursor, buffer.get(), &length, room) == 1);

    static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const qsizetype start = endOf(text, 0, " \t");
    const qsizetype end = endOf(text, start, alphabet);
    require(cursor == endOf(text, end, "="));
    const QByteArray domain = decodedByQt(text.mid(start, end - start)).left(room);
    require(domain == QByteArray(reinterpret_cast<const char*>(buffer.get()), length));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const auto room = static_cast<short>(input.word() % 300);
    const std::string_view rest = input.rest();
    const QByteArray bytes(rest.data(), static_cast<qsizetype>(rest.size()));
    for (qsizetype place = 0; place + 4 <= bytes.size(); place += 4)
        anyGroup(bytes.constData() + place, static_cast<int>(place / 4 % 4) + 1, room % 6);
    const QByteArray text = encodedByGroups(bytes);
    require(text == bytes.toBase64());
    readDomain(text, room);
    readDomain(bytes, room);
    return 0;
}
