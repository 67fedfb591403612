// Any bytes from a client of the simulated gateway, at once and in pieces: the answers are those of the commands, line
// by line, and the gateway client understands them.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"
#include "FuzzedDevice.h"

#include "gateway/GatewayConnection.h"
#include "tcp/tcp_eval.h"

#include <QCoreApplication>

#include <cstring>

/// A connected socket without a connection: takes what it is fed, keeps what is written.
class CFedSocket : public QTcpSocket
{
public:
    CFedSocket()
    {
        setOpenMode(ReadWrite | Unbuffered);
        setSocketState(ConnectedState);
    }
    ~CFedSocket() override { setSocketState(UnconnectedState); }

    void feed(const QByteArray& bytes)
    {
        m_input += bytes;
        Q_EMIT readyRead();
    }
    const QByteArray& written() const { return m_written; }

    qint64 bytesAvailable() const override { return m_input.size(); }
    qint64 bytesToWrite() const override { return 0; }
    void disconnectFromHost() override { setSocketState(UnconnectedState); }

protected:
    qint64 readData(char* data, qint64 most) override
    {
        const qsizetype count = std::min<qsizetype>(most, m_input.size());
        std::memcpy(data, m_input.constData(), size_t(count));
        m_input.remove(0, count);
        return count;
    }
    qint64 writeData(const char* data, qint64 size) override
    {
        m_written.append(data, size);
        return size;
    }

private:
    QByteArray m_input;
    QByteArray m_written;
};

/// The devices 5 and 127, as they are after a start.
static CSimulatedNetwork& network()
{
    static const fuzzedDevice::CSheet file;
    static CSimulatedNetwork devices;
    static const bool isLoaded = devices.add(5, file.name()).isEmpty() && devices.add(127, file.name()).isEmpty();
    require(isLoaded);
    for (const unsigned id : { 5U, 127U }) {
        require(devices.node(id)->write(fuzzedDevice::restoreIndex, 1, "load") == abortNone);
        devices.node(id)->command(nmtResetNode);
    }
    return devices;
}

/// What a client receives that sends the bytes in pieces of this size.
static QByteArray answersTo(const QByteArray& bytes, qsizetype piece, const QList<tFault>& faults)
{
    CGatewayCommands commands(network());
    const auto log = [](const QByteArray& line) { require(!line.contains('\n') && !line.contains('\r')); };
    tGatewayContext context = { commands, faults, log };
    auto* socket = new CFedSocket; // the connection takes it over
    const CGatewayConnection connection(socket, context, "client", nullptr);
    for (qsizetype at = 0; at < bytes.size(); at += piece)
        socket->feed(bytes.mid(at, piece));
    return socket->written();
}

/// A value that the client has read, against that of the device.
static void checkRead(const tGatewayRequest& request, const QByteArray& line, const CSimulatedNode& node)
{
    const QByteArray held = node.value(request.index, request.subIndex);
    const QByteArray word = QByteArray(request.type->word).toLower();
    uint32_t number = 0;
    uint32_t abort = 0;
    short length = 0;
    QByteArray data(line.size() + 1, '\0');
    const auto room = short(data.size());
    if (word == "d") {
        require(tcp_eval_sdo_domain(line.constData(), &length, reinterpret_cast<BYTE*>(data.data()), room, &abort) ==
                0);
        require(data.left(length) == held);
    } else if (word == "vs") {
        require(tcp_eval_sdo_string(line.constData(), &length, data.data(), room, &abort) == 0);
        const bool isPlain = std::all_of(held.begin(), held.end(), [](char c) { return c >= ' ' && c <= '~'; });
        require(!isPlain || data.left(length) == held);
    } else if (word == "u8" || word == "u16" || word == "u32") {
        require(tcp_eval_sdo_unsigned32(line.constData(), &number, &abort) == 0);
        require(littleEndian(number, request.type->type.width) == held);
    } else if (word == "i8" || word == "i16" || word == "i32") {
        int32_t value = 0;
        require(tcp_eval_sdo_integer32(line.constData(), &value, &abort) == 0);
        require(littleEndian(static_cast<uint32_t>(value), request.type->type.width) == held);
    }
}

static bool isStatedError(uint32_t number)
{
    static constexpr uint32_t stated[] = { gatewayNotSupported, gatewaySyntax, gatewayState, gatewayTimeOut,
                                           gatewayNode };
    return number >= 0x05000000 || std::find(std::begin(stated), std::end(stated), number) != std::end(stated);
}

/// What the client makes of an answer, and what the device holds then.
static void checkAnswer(const tGatewayRequest& request, const QByteArray& text, const QByteArray& line,
                        const CSimulatedNode* node)
{
    require(std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' || c < 0; }));
    uint32_t number = 0;
    if (text.startsWith("ERROR: "))
        return require(tcp_eval_is_error(line.constData(), &number) && isStatedError(number));
    require(request.error == gatewayNoError && request.node <= lastNodeId);
    if (!request.isSdo())
        return;
    if (request.rule->command == commandRead)
        checkRead(request, line, *node);
    else if (request.index >= fuzzedDevice::firstIndex)
        require(node->value(request.index, request.subIndex) == request.data);
}

/// The same commands without a connection. Their answers, up to the first that takes time.
static QByteArray answersByLine(const QByteArray& bytes)
{
    CSimulatedNetwork& devices = network();
    CGatewayCommands commands(devices);
    QByteArray written;
    tGatewayRequest request;
    const auto lines = bytes.left(bytes.lastIndexOf('\n')).split('\n');
    for (QByteArray line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (request.awaitsData)
            readDataLine(line, request);
        else if (line.trimmed().isEmpty())
            continue;
        else
            request = readRequest(line);
        if (request.awaitsData)
            continue;
        const tGatewayAnswer answer = commands.execute(request);
        if (answer.delay != 0)
            break;
        const QByteArray sent = '[' + QByteArray::number(request.sequence) + "] " + answer.text + "\r\n";
        checkAnswer(request, answer.text, sent, devices.node(request.node));
        written += sent;
    }
    return written;
}

static QList<tFault> faultOf(unsigned which)
{
    static const char* const texts[] = { "silence",  "delay=1@2000", "double",        "abort=0x06060000",
                                         "drop",     "garbage",      "sequence",      "bytewise",
                                         "overlong", "error=104",    "silence@2008:0" };
    if (which >= std::size(texts))
        return {};
    const auto fault = readFault(QString::fromLatin1(texts[which]), gatewayFaultKinds(), nullptr);
    require(fault.has_value());
    return { *fault };
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int count = 1;
    static char name[] = "fuzzer";
    static char* arguments[] = { name, nullptr };
    static const QCoreApplication application(count, arguments);
    CFuzzInput input(data, size);
    const unsigned fault = input.byte() % 32;
    const qsizetype offset = input.byte();
    const std::string_view rest = input.rest();
    const QByteArray bytes(rest.data(), qsizetype(rest.size()));
    const QList<tFault> faults = faultOf(fault);
    const QByteArray answers = answersTo(bytes, bytes.size() + 1, faults);
    require(answersTo(bytes, bytes.size() / 5 + 1 + offset, faults) == answers);
    require(!faults.isEmpty() || answersByLine(bytes) == answers);
    return 0;
}
