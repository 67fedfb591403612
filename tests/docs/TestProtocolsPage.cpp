// Plays the examples of docs/protocols.md: on the fake CAN bus, and with a scripted gateway.
// SPDX-License-Identifier: MIT
#include "FakeBus.h"
#include "FakeGateway.h"
#include "ProtocolCalls.h"
#include "ProtocolsPage.h"
#include "cop/cop_api.h"
#include "tcp/tcp_open.h"

#include <QRegularExpression>
#include <QtTest>

#include <optional>

Q_DECLARE_METATYPE(tPageExample)

namespace
{

constexpr qint64 timeOfCalls = 5; // ms, at most, that the fake bus takes for its calls in an example

struct tPageFrame {
    uint32_t id;
    QByteArray data; // in hexadecimal
};

std::optional<tPageFrame> frameOf(const QString& text)
{
    static const QRegularExpression frame("^([0-9A-F]{3}|[0-9A-F]{8}):((?: [0-9A-F]{2}){0,8})$");
    const auto match = frame.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return tPageFrame{ match.captured(1).toUInt(nullptr, 16), match.captured(2).trimmed().toLatin1() };
}

// The number of a line, nothing without one.
std::optional<long> numberOf(const QString& line)
{
    static const QRegularExpression bracketed("^\\[(\\d+)\\]");
    const auto match = bracketed.match(line);
    return match.hasMatch() ? std::optional(match.captured(1).toLong()) : std::nullopt;
}

// Plays the steps of an example on the bus. @return what is wrong, or nothing
class CBusPlayer
{
public:
    CBusPlayer() { cop_init(-1, &m_bus.param, 0); }

    QString play(const tPageStep& step)
    {
        switch (step.kind) {
        case tPageStep::Call:
            m_call = step.text;
            m_request = nullptr;
            m_start = m_bus.milliseconds();
            m_pause = m_pauses = 0;
            return QString();
        case tPageStep::Pause:
            m_pause = step.text.section(' ', 0, 0).toInt();
            m_pauses += m_pause;
            return step.text.endsWith(" ms") ? QString() : "no time: " + step.text;
        case tPageStep::Result:
            return check(step.text);
        default:
            return script(step);
        }
    }

private:
    QString script(const tPageStep& step)
    {
        const auto frame = frameOf(step.text);
        if (!frame)
            return "no frame: " + step.text;
        if (step.kind == tPageStep::Sent)
            m_request = &m_bus.expect(frame->id, frame->data);
        else if (m_request != nullptr)
            m_request->after(m_pause).answer(frame->id, frame->data);
        else
            m_bus.injectAfter(m_pause, frame->id, frame->data);
        m_pause = 0;
        return QString();
    }

    QString check(const QString& expected)
    {
        const QString result = makeProtocolCall(m_call);
        const qint64 late = m_bus.milliseconds() - m_start - m_pauses;
        if (result != expected)
            return m_call + " returns " + result;
        if (!m_bus.finished())
            return m_call + " sends something else";
        return m_pauses == 0 || (late >= 0 && late <= timeOfCalls) ? QString() : m_call + " takes another time";
    }

    CFakeBus m_bus;
    QString m_call;
    CFakeBusRequest* m_request = nullptr; // the one that is answered next
    int m_pause = 0;                      // ms before the next frame
    int m_pauses = 0;                     // ms of the whole call
    qint64 m_start = 0;
};

// The same with a gateway.
class CGatewayPlayer
{
public:
    CGatewayPlayer() { top_init(CFakeGateway::address, m_gateway.port(), nullptr, 0); }
    ~CGatewayPlayer() { top_exit(); }
    CGatewayPlayer(const CGatewayPlayer&) = delete;
    CGatewayPlayer& operator=(const CGatewayPlayer&) = delete;

    QString play(const tPageStep& step)
    {
        switch (step.kind) {
        case tPageStep::Call:
            m_call = step.text;
            m_command = m_answer = QByteArray();
            return QString();
        case tPageStep::Sent:
            m_number = numberOf(step.text).value_or(0);
            m_command = scripted(step.text);
            return m_number > 0 ? QString() : "no command: " + step.text;
        case tPageStep::Came:
            m_answer += scripted(step.text);
            return QString();
        case tPageStep::Pause:
            return happens(step.text);
        case tPageStep::Result:
            return check(step.text);
        }
        return "no such step";
    }

private:
    QString happens(const QString& event)
    {
        if (event == "the gateway hangs up")
            m_answer = QByteArray();
        else if (event == "not connected")
            top_exit();
        else
            return "unknown: " + event;
        return QString();
    }

    // A line as the gateway's script has it: numbers count from that of the command.
    QByteArray scripted(const QString& line) const
    {
        QByteArray text = line.toLatin1() + "\r\n";
        if (const auto number = numberOf(line))
            text = "[#" + QByteArray::number(qlonglong(*number - m_number)) + text.mid(text.indexOf(']'));
        return text;
    }

    QString check(const QString& expected)
    {
        const auto end = m_answer.isEmpty() ? tGatewayAnswer::hangUp : tGatewayAnswer::together;
        if (!m_command.isEmpty())
            m_gateway.expect(m_command.toStdString(), { m_answer.toStdString(), end });
        const QString result = makeProtocolCall(m_call);
        if (result != expected)
            return m_call + " returns " + result + ' ' + QString::fromStdString(m_gateway.problem());
        if (!m_gateway.finished())
            return QString::fromStdString(m_gateway.problem());
        return m_command.isEmpty() || countsOn() ? QString() : m_call + " has another number";
    }

    // The numbers on the page increase as those on the wire do; rows with several answers to one command repeat it.
    bool countsOn()
    {
        const long shown = m_number - std::exchange(m_shown, m_number);
        const long sent = m_gateway.lastNumber() - std::exchange(m_sent, m_gateway.lastNumber());
        return std::exchange(m_first, false) || shown == 0 || shown == sent;
    }

    CFakeGateway m_gateway;
    QString m_call;
    QByteArray m_command;
    QByteArray m_answer;
    long m_number = 0; // of the command, as the page has it
    bool m_first = true;
    long m_shown = 0, m_sent = 0; // numbers of the command before
};

} // namespace

class TestProtocolsPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(!examples.isEmpty()); }

    void framesAreWhatTheMasterSendsAndTakes_data() { addExamples(false); }
    void framesAreWhatTheMasterSendsAndTakes() { play<CBusPlayer>(); }
    void linesAreWhatTheGatewayClientSendsAndTakes_data() { addExamples(true); }
    void linesAreWhatTheGatewayClientSendsAndTakes() { play<CGatewayPlayer>(); }
    void everyCallIsShown();

private:
    void addExamples(bool ofGateway) const
    {
        QTest::addColumn<tPageExample>("example");
        for (const tPageExample& example : examples)
            if (example.ofGateway() == ofGateway)
                QTest::addRow("line %d", example.line()) << example;
    }

    template <typename Player>
    static void play()
    {
        QFETCH(tPageExample, example);
        Player player;
        for (const tPageStep& step : example.steps) {
            const QString problem = player.play(step);
            QVERIFY2(problem.isEmpty(), qPrintable(QString("line %1: %2").arg(step.line).arg(problem)));
        }
        QCOMPARE(example.steps.last().kind, tPageStep::Result);
    }

    const QList<tPageExample> examples = readProtocolsPage(VELMORA_PROTOCOLS_PAGE);
};

void TestProtocolsPage::everyCallIsShown()
{
    QStringList missing = protocolCalls();
    for (const tPageExample& example : examples)
        for (const tPageStep& step : example.steps)
            if (step.kind == tPageStep::Call)
                missing.removeOne(step.text.section('(', 0, 0));
    QCOMPARE(missing.join(", "), QString());
}

QTEST_GUILESS_MAIN(TestProtocolsPage)
#include "TestProtocolsPage.moc"
