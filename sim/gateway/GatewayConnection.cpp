// One client of the gateway: reads its lines, sends the answers, and applies the faults.
// SPDX-License-Identifier: MIT
#include "gateway/GatewayConnection.h"

#include <QTimer>

#include <utility>

namespace
{

constexpr qsizetype chunkSize = 65536;
constexpr qint64 unreadLimit = 1 << 20; // bytes of answers that a client may leave unread
constexpr qsizetype headSize = 32;      // characters kept of a line that is too long, for its sequence number

// A line as the log shows it: bytes that are no printable ASCII are written as \xFF.
QByteArray escaped(const QByteArray& line)
{
    QByteArray text;
    for (char c : line) {
        const auto code = static_cast<unsigned char>(c);
        if (code >= 0x20 && code < 0x7F)
            text += c;
        else
            text += "\\x" + QByteArray::number(code, 16).toUpper().rightJustified(2, '0');
    }
    return text;
}

} // namespace

CGatewayConnection::CGatewayConnection(QTcpSocket* socket, tGatewayContext& context, const QByteArray& name,
                                       QObject* parent)
    : QObject(parent), m_socket(socket), m_context(context), m_name(name)
{
    socket->setParent(this);
    socket->setReadBufferSize(chunkSize);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(socket, &QTcpSocket::readyRead, this, &CGatewayConnection::process);
    connect(socket, &QTcpSocket::disconnected, this, [this] {
        log("disconnected");
        deleteLater();
    });
    log("connected from " + socket->peerAddress().toString().toLatin1() + ':' + QByteArray::number(socket->peerPort()));
}

void CGatewayConnection::process()
{
    QByteArray line;
    while (!m_busy && m_socket->state() == QAbstractSocket::ConnectedState) {
        if (takeLine(line)) {
            handleLine(line);
            continue;
        }
        const QByteArray chunk = m_socket->read(chunkSize);
        if (chunk.isEmpty())
            return;
        m_input += chunk;
    }
}

// True: `line` is the next line, without its end. False: more input is needed; m_input holds at most one line.
bool CGatewayConnection::takeLine(QByteArray& line)
{
    const qsizetype end = m_input.indexOf('\n', m_scanned);
    if (end >= 0) {
        line = m_skipping ? m_head : m_input.mid(m_taken, end - m_taken);
        if (line.endsWith('\r'))
            line.chop(1);
        m_taken = m_scanned = end + 1;
        return true;
    }
    m_input.remove(0, m_taken);
    m_taken = 0;
    if (m_skipping || m_input.size() > longestLine) {
        if (!m_skipping)
            m_head = m_input.left(headSize);
        m_skipping = true;
        m_input.clear();
    }
    m_scanned = m_input.size();
    return false;
}

void CGatewayConnection::handleLine(const QByteArray& line)
{
    const bool tooLong = m_skipping || line.size() > longestLine;
    m_skipping = false;
    log("< " + (tooLong ? QByteArray("(line too long)") : escaped(line)));
    tGatewayRequest request;
    if (m_unfinished.awaitsData) {
        request = std::exchange(m_unfinished, tGatewayRequest());
        readDataLine(line, request);
    } else {
        if (line.trimmed().isEmpty() && !tooLong)
            return;
        request = readRequest(line);
    }
    if (tooLong)
        request.error = gatewaySyntax;
    if (request.awaitsData)
        m_unfinished = request;
    else
        execute(request);
}

void CGatewayConnection::execute(const tGatewayRequest& request)
{
    const tFault* fault = findFault(m_context.faults, request);
    tGatewayAnswer answer;
    if (fault != nullptr)
        log(QByteArray("fault ") + fault->kind.name);
    if (const auto text = faultAnswer(fault))
        answer.text = *text;
    else
        answer = m_context.commands.execute(request);
    if (m_context.log && request.error == gatewayNoError && request.isSdo())
        m_context.log(describeSdo(request, answer));
    answer.delay += lineDelay(fault);
    const QByteArray lines = answerLines(fault, request.sequence, answer.text);
    if (answer.delay == 0) {
        deliver(fault, lines);
        return;
    }
    m_busy = true;
    QTimer::singleShot(answer.delay, this, [this, fault, lines] {
        m_busy = false;
        deliver(fault, lines);
        process();
    });
}

void CGatewayConnection::deliver(const tFault* fault, const QByteArray& lines)
{
    const tDelivery delivery = lineDelivery(fault);
    const QByteArray sent = lines.isEmpty() ? QByteArray("(nothing)") : escaped(lines.trimmed());
    log("> " + (delivery == deliverDrop ? QByteArray("(closed)") : sent));
    if (delivery == deliverDrop) {
        m_socket->disconnectFromHost();
        return;
    }
    if (delivery == deliverBytewise) {
        m_busy = true;
        m_output = lines;
        sendNextByte();
        return;
    }
    m_socket->write(lines);
    if (m_socket->bytesToWrite() > unreadLimit)
        m_socket->abort();
}

// Sends the first byte of m_output in a packet of its own, then the next one from the event loop, until none is left.
void CGatewayConnection::sendNextByte()
{
    if (m_output.isEmpty()) {
        m_busy = false;
        process();
        return;
    }
    m_socket->write(m_output.left(1));
    m_socket->flush();
    m_output.remove(0, 1);
    QTimer::singleShot(1, this, &CGatewayConnection::sendNextByte);
}

void CGatewayConnection::log(const QByteArray& text) const
{
    if (m_context.log)
        m_context.log(m_name + ' ' + text);
}
