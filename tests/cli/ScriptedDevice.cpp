// A device behind the scripted gateway.
// SPDX-License-Identifier: MIT
#include "ScriptedDevice.h"

#include "Patience.h"

#include <iterator>

namespace
{

constexpr quint32 noObject = 0x06020000;
constexpr quint32 notInThisState = 0x08000022;
constexpr quint32 invalid = 0x80000000;
constexpr quint32 identifierBits = 0x1FFFFFFF;

unsigned keyOf(unsigned index, unsigned subIndex)
{
    return index << 8 | subIndex;
}

QString nameOf(unsigned key)
{
    const QString index = QString::number(key >> 8, 16).toUpper();
    return (key & 0xFF) == 0 ? index : index + ':' + QString::number(key & 0xFF, 16).toUpper();
}

quint32 numberOf(const QByteArray& bytes)
{
    quint32 number = 0;
    for (qsizetype place = 0; place < std::min<qsizetype>(bytes.size(), 4); ++place)
        number |= static_cast<quint32>(static_cast<unsigned char>(bytes[place])) << (8 * place);
    return number;
}

// The value of a write by the word of its type.
QByteArray bytesOf(const QString& type, const QString& text)
{
    if (type == "d")
        return QByteArray::fromBase64(text.toLatin1());
    QByteArray bytes;
    for (int place = 0; place < type.mid(1).toInt() / 8; ++place)
        bytes += static_cast<char>(text.toUInt(nullptr, 16) >> (8 * place) & 0xFF);
    return bytes;
}

QByteArray abortOf(quint32 code)
{
    return "ERROR: 0x" + QByteArray::number(code, 16).rightJustified(8, '0');
}

// COB-IDs: the bits that say that they are in use, and what these are when they are not.
constexpr struct {
    unsigned first;
    unsigned last;
    quint32 mask;
    quint32 off;
} cobIds[] = {
    { 0x100500, 0x100500, 0x40000000, 0 },    { 0x101200, 0x101200, 0xC0000000, 0 },
    { 0x101400, 0x101400, invalid, invalid }, { 0x128001, 0x128002, invalid, invalid },
    { 0x140001, 0x140001, invalid, invalid }, { 0x180001, 0x180001, invalid, invalid },
};

} // namespace

CScriptedDevice::CScriptedDevice()
{
    m_gateway.answerWith([this](const std::string& line) { return answer(line); });
}

void CScriptedDevice::set(unsigned index, unsigned subIndex, const char* bytes)
{
    const std::lock_guard lock(m_mutex);
    m_values[keyOf(index, subIndex)] = QByteArray::fromHex(bytes);
}

QByteArray CScriptedDevice::value(unsigned index, unsigned subIndex)
{
    const std::lock_guard lock(m_mutex);
    return m_values[keyOf(index, subIndex)].toHex(' ').toUpper();
}

void CScriptedDevice::setHook(const tHook& hook)
{
    const std::lock_guard lock(m_mutex);
    m_hook = hook;
}

void CScriptedDevice::setOperational()
{
    const std::lock_guard lock(m_mutex);
    m_preOperational = false;
}

QStringList CScriptedDevice::steps()
{
    const std::lock_guard lock(m_mutex);
    return m_steps;
}

bool CScriptedDevice::awaitStep(const QString& step)
{
    return QTest::qWaitFor([&] { return steps().contains(step); }, patience);
}

// "[7] 5 read 0x1017 0x0 d", "[7] 5 write 0x1017 0x0 u16 0x3E8", "[7] 5 start"
tGatewayAnswer CScriptedDevice::answer(const std::string& line)
{
    const std::lock_guard lock(m_mutex);
    const QStringList words = QString::fromStdString(line).simplified().split(' ');
    const QString verb = words.value(2);
    const unsigned key = keyOf(words.value(3).toUInt(nullptr, 16), words.value(4).toUInt(nullptr, 16));
    QByteArray text = "OK";
    if (verb == "read")
        text = read(key, "read " + nameOf(key));
    else if (verb == "write")
        text = write(key, bytesOf(words.value(5), words.value(6)), nameOf(key));
    else
        text = command(verb);
    if (verb == "preoperational" || verb == "start")
        m_preOperational = verb == "preoperational";
    return text.isEmpty() ? tGatewayAnswer("") : tGatewayAnswer("[#] " + text.toStdString() + "\r\n");
}

QByteArray CScriptedDevice::command(const QString& verb)
{
    m_steps += verb;
    return m_hook ? m_hook(verb).value_or("OK") : "OK";
}

QByteArray CScriptedDevice::read(unsigned key, const QString& step)
{
    if (const auto hooked = m_hook ? m_hook(step) : std::nullopt)
        return *hooked;
    const auto place = m_values.find(key);
    if (place == m_values.end())
        return abortOf(noObject);
    return place->second.isEmpty() ? QByteArray("=") : place->second.toBase64();
}

QByteArray CScriptedDevice::write(unsigned key, const QByteArray& bytes, const QString& step)
{
    m_steps += step + " = " + bytes.toHex(' ').toUpper();
    if (const auto hooked = m_hook ? m_hook(m_steps.last()) : std::nullopt)
        return *hooked;
    if (const quint32 code = refusal(key, bytes))
        return abortOf(code);
    m_values[key] = bytes;
    return "OK";
}

quint32 CScriptedDevice::number(unsigned key) const
{
    const auto place = m_values.find(key);
    return place == m_values.end() ? 0 : numberOf(place->second);
}

// The abort code of a write that comes at the wrong time; 0 otherwise.
quint32 CScriptedDevice::refusal(unsigned key, const QByteArray& bytes) const
{
    const unsigned index = key >> 8;
    const unsigned subIndex = key & 0xFF;
    const bool isPdo = index >= 0x1400 && index < 0x1C00;
    const bool isMapping = isPdo && (index & 0x200) != 0;
    if (isPdo && !m_preOperational)
        return notInThisState;
    for (const auto& row : cobIds) {
        const bool inUse = (number(key) & row.mask) != row.off;
        if (key >= row.first && key <= row.last && inUse && ((number(key) ^ numberOf(bytes)) & identifierBits) != 0)
            return notInThisState;
    }
    const bool pdoInUse = isPdo && (number(keyOf(index & ~0x200U, 1)) & invalid) == 0;
    const bool inhibitTime = isPdo && !isMapping && subIndex == 3;
    if (pdoInUse && (isMapping || inhibitTime))
        return notInThisState;
    if (isMapping && subIndex != 0 && number(keyOf(index, 0)) != 0)
        return notInThisState;
    return index == 0x1019 && number(0x100600) != 0 ? notInThisState : 0;
}
