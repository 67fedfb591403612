// The calls that docs/protocols.md shows, made from their text.
// SPDX-License-Identifier: MIT
#include "ProtocolCalls.h"

#include "cop/cop_api.h"
#include "cop/cop_nms.h"
#include "cop/cop_sdo.h"
#include "tcp/tcp_open.h"

#include <QByteArray>
#include <QRegularExpression>

#include <algorithm>

namespace
{

constexpr int32_t firstAbortCode = 0x05000000;
constexpr short roomOfMessage = 8;

// The arguments of a call, as numbers or bytes.
class CArguments
{
public:
    explicit CArguments(const QString& text)
    {
        static const QRegularExpression argument("\"[^\"]*\"|[^,\" ][^,\"]*");
        for (auto match = argument.globalMatch(text); match.hasNext();)
            m_texts += match.next().captured();
    }

    template <typename Number>
    Number number(int place) const
    {
        bool read = false;
        const uint value = m_texts.value(place).toUInt(&read, 0);
        if (!read)
            qFatal("no number: %s", qPrintable(m_texts.join(", ")));
        return static_cast<Number>(value);
    }
    QByteArray bytes(int place) const
    {
        const QByteArray text = m_texts.value(place).toLatin1();
        return text.startsWith('"') ? text.mid(1, text.size() - 2) : QByteArray::fromHex(text);
    }
    const BYTE* data(int place)
    {
        m_data = bytes(place);
        return reinterpret_cast<const BYTE*>(m_data.constData());
    }

    BYTE node() const { return number<BYTE>(0); }
    WORD index() const { return number<WORD>(1); }
    BYTE subindex() const { return number<BYTE>(2); }

private:
    QStringList m_texts;
    QByteArray m_data;
};

QString hexadecimal(uint value, int digits = 0)
{
    return "0x" + QString("%1").arg(value, digits, 16, QLatin1Char('0')).toUpper();
}

QString outcome(int32_t result, const QString& delivered = {})
{
    if (result >= firstAbortCode)
        return hexadecimal(uint(result), 8);
    return result == 0 && !delivered.isEmpty() ? "0, " + delivered : QString::number(result);
}

QString hexBytes(const QByteArray& data)
{
    return QString(data.toHex(' ')).toUpper();
}

QString message(uint id, const QByteArray& data)
{
    return QString("%1: ").arg(id, 3, 16, QLatin1Char('0')).toUpper() + hexBytes(data);
}

template <int32_t (*command)(BYTE)>
QString node(CArguments& arguments)
{
    return outcome(command(arguments.node()));
}

template <typename Number, int32_t (*read)(BYTE, WORD, BYTE, Number*)>
QString readNumber(CArguments& arguments)
{
    Number value = 0;
    const int32_t result = read(arguments.node(), arguments.index(), arguments.subindex(), &value);
    return outcome(result, hexadecimal(value));
}

template <typename Number, int32_t (*write)(BYTE, WORD, BYTE, Number)>
QString writeNumber(CArguments& arguments)
{
    return outcome(write(arguments.node(), arguments.index(), arguments.subindex(), arguments.number<Number>(3)));
}

template <int32_t (*read)(BYTE, WORD, BYTE, short*, BYTE*, short)>
QString readBytes(CArguments& arguments)
{
    QByteArray data(arguments.number<short>(3), '?');
    short length = 0;
    const int32_t result = read(arguments.node(), arguments.index(), arguments.subindex(), &length,
                                reinterpret_cast<BYTE*>(data.data()), short(data.size()));
    return outcome(result, '"' + QString::fromLatin1(data.left(length)) + '"');
}

template <int32_t (*write)(BYTE, WORD, BYTE, short, const BYTE*)>
QString writeBytes(CArguments& arguments)
{
    const auto length = short(arguments.bytes(3).size());
    return outcome(write(arguments.node(), arguments.index(), arguments.subindex(), length, arguments.data(3)));
}

template <typename Identifier, int32_t (*transmit)(Identifier, short, const BYTE*)>
QString send(CArguments& arguments)
{
    return outcome(transmit(arguments.number<Identifier>(0), short(arguments.bytes(1).size()), arguments.data(1)));
}

template <typename Identifier, int32_t (*read)(Identifier*, short*, BYTE*)>
QString receive(CArguments&)
{
    Identifier id = 0;
    short length = 0;
    char data[roomOfMessage];
    const int32_t result = read(&id, &length, reinterpret_cast<BYTE*>(data));
    return outcome(result, message(id, QByteArray(data, length)));
}

template <int32_t (*query)(char*, short)>
QString text(CArguments& arguments)
{
    QByteArray buffer(arguments.number<short>(0), '?');
    const int32_t result = query(buffer.data(), short(buffer.size()));
    return outcome(result, '"' + QString::fromLatin1(buffer.constData()) + '"');
}

QString request(CArguments& arguments)
{
    auto length = arguments.number<short>(1);
    char data[roomOfMessage];
    const int32_t result = cop_request(arguments.number<uint32_t>(0), &length, reinterpret_cast<BYTE*>(data));
    return outcome(result, hexBytes(QByteArray(data, length)));
}

QString clear(CArguments&)
{
    return outcome(cop_queue_clear());
}

QString timeout(CArguments& arguments)
{
    return outcome(top_timeout(arguments.number<WORD>(0), nullptr));
}

template <bool (*refusal)(uint32_t*)>
QString refused(CArguments&)
{
    uint32_t number = 0;
    return refusal(&number) ? "1, " + hexadecimal(number, 8) : "0";
}

QString lastAnswer(CArguments&)
{
    const char* const names[] = { "none", "closed", "cut", "odd", "whole" };
    static_assert(top_answer_none == 0 && top_answer_closed == 1 && top_answer_cut == 2 && top_answer_odd == 3 &&
                  top_answer_whole == 4);
    return QString("top_answer_") + names[top_last_answer()];
}

const struct tProtocolCall {
    const char* name;
    QString (*make)(CArguments& arguments);
} calls[] = {
    { "nmt_start_remote_node", node<nmt_start_remote_node> },
    { "nmt_stop_remote_node", node<nmt_stop_remote_node> },
    { "nmt_enter_preoperational", node<nmt_enter_preoperational> },
    { "nmt_reset_node", node<nmt_reset_node> },
    { "nmt_reset_communication", node<nmt_reset_communication> },
    { "sdo_write", writeBytes<sdo_write> },
    { "sdo_write_8bit", writeNumber<uint8_t, sdo_write_8bit> },
    { "sdo_write_16bit", writeNumber<uint16_t, sdo_write_16bit> },
    { "sdo_write_32bit", writeNumber<uint32_t, sdo_write_32bit> },
    { "sdo_read", readBytes<sdo_read> },
    { "sdo_read_8bit", readNumber<uint8_t, sdo_read_8bit> },
    { "sdo_read_16bit", readNumber<uint16_t, sdo_read_16bit> },
    { "sdo_read_32bit", readNumber<uint32_t, sdo_read_32bit> },
    { "sdo_last_abort", refused<sdo_last_abort> },
    { "cop_transmit", send<uint32_t, cop_transmit> },
    { "cop_request", request },
    { "cop_queue_read", receive<uint32_t, cop_queue_read> },
    { "cop_queue_clear", clear },
    { "top_reset", node<top_reset> },
    { "top_timeout", timeout },
    { "top_write", writeBytes<top_write> },
    { "top_write_8bit", writeNumber<uint8_t, top_write_8bit> },
    { "top_write_16bit", writeNumber<uint16_t, top_write_16bit> },
    { "top_write_32bit", writeNumber<uint32_t, top_write_32bit> },
    { "top_read", readBytes<top_read> },
    { "top_read_8bit", readNumber<uint8_t, top_read_8bit> },
    { "top_read_16bit", readNumber<uint16_t, top_read_16bit> },
    { "top_read_32bit", readNumber<uint32_t, top_read_32bit> },
    { "top_start_remote_node", node<top_start_remote_node> },
    { "top_stop_remote_node", node<top_stop_remote_node> },
    { "top_enter_preoperational", node<top_enter_preoperational> },
    { "top_reset_node", node<top_reset_node> },
    { "top_reset_communication", node<top_reset_communication> },
    { "top_transmit", send<int32_t, top_transmit> },
    { "top_queue_read", receive<WORD, top_queue_read> },
    { "top_last_answer", lastAnswer },
    { "top_last_error", refused<top_last_error> },
    { "top_hardware", text<top_hardware> },
    { "top_software", text<top_software> },
    { "top_copyright", text<top_copyright> },
};

} // namespace

QString makeProtocolCall(const QString& call)
{
    const qsizetype open = call.indexOf('(');
    const auto* found = std::find_if(std::begin(calls), std::end(calls), [&](const tProtocolCall& each) {
        return call.left(open) == QLatin1String(each.name);
    });
    if (found == std::end(calls) || !call.endsWith(')'))
        return "no such call";
    CArguments arguments(call.mid(open + 1).chopped(1));
    return found->make(arguments);
}

QStringList protocolCalls()
{
    QStringList names;
    for (const tProtocolCall& call : calls)
        names += call.name;
    return names;
}
