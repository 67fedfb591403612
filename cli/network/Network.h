// The connection of velmora-cli to a CANopen network.
// SPDX-License-Identifier: MIT
#pragma once

#include "CANopenAccess.h"
#include "base/CANopenErrors.h"
#include "console/Console.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>

/// Which network, and how long to wait there.
struct tNetworkOptions {
    QString interface;                 ///< as the window takes it: "can0", "localhost:60000", "192.168.1.10:5000"
    std::optional<int> sdoTimeout;     ///< of a transfer, in milliseconds; a gateway is told. Not given: 500 on CAN
    std::optional<int> gatewayTimeout; ///< for each line of a gateway, in milliseconds; not given: 66000
};

/// How an operation ended that did not end as it should.
struct tFailure {
    tExitStatus status;      ///< `exitNetwork`, `exitAborted` or `exitUsage`
    std::uint32_t abortCode; ///< of the device; 0 unless it aborted the transfer
    QString text;            ///< "aborted by the device: 0x06010001 (...)", "the gateway does not answer"
    bool silent = false;     ///< nobody has answered: further attempts would wait as long
};

/// What a read has brought: the bytes, or why there are none.
struct tReadResult {
    QByteArray bytes;
    std::optional<tFailure> failure;
};

inline constexpr int usualSdoTimeout = 500; ///< milliseconds, on CAN

inline constexpr unsigned sdoAnswerCobId = 0x580;  ///< plus the node-id
inline constexpr unsigned sdoRequestCobId = 0x600; ///< plus the node-id

// Errors of the facade behind a gateway: this one minus the number that the gateway answered (CiA 309-3).
inline constexpr int gatewayError = -600;
inline constexpr int gatewayDeviceTimeout = 103;
inline constexpr int gatewayNoNetwork = 106;
inline constexpr int gatewayNoNode = 107;

/// A CAN message that no transfer has asked for.
struct tCanMessage {
    std::uint32_t identifier;
    QByteArray data;
};

/// One open interface. Silence, a cut answer and the answer to another command are failures, never values. Ctrl-C ends
/// the command (`tEnd` with `exitInterrupted`) in the operation that it makes fail, or before the next one: what was
/// answered in spite of it is done.
class CNetwork
{
public:
    /// Opens the interface; ends the command with `exitNetwork` when it cannot be opened.
    CNetwork(const tNetworkOptions& options, CConsole& console);
    ~CNetwork();
    Q_DISABLE_COPY_MOVE(CNetwork)

    bool isGateway() const { return m_isGateway; }

    /// One SDO upload, as bytes. A value as long as what can be received is a failure: it may go on.
    tReadResult read(BYTE node, WORD index, BYTE subIndex);
    /// One SDO download. What `refusal` refuses is a failure, and nothing is sent.
    /// `isNumber`: the bytes are a number, for which a gateway has words of its own.
    std::optional<tFailure> write(BYTE node, WORD index, BYTE subIndex, const QByteArray& bytes, bool isNumber);

    /// Why a value cannot be sent (`exitUsage`): it has more bytes than a gateway's line holds, or none at all on CAN,
    /// where four zero bytes would be sent. None when it can.
    std::optional<tFailure> refusal(const QByteArray& bytes) const;
    /// From now on a device has so many milliseconds for its answers, on CAN; a gateway has a time-out of its own.
    void waitAtLeast(int milliseconds);
    /// Whether the gateway has hung up: no operation will be answered any more.
    bool isLost() const;

    /// An operation of the facade that is answered, such as an NMT command: none when it was done.
    template <typename Operation>
    std::optional<tFailure> run(Operation operation)
    {
        begin();
        return failureOf(operation(m_access), 0);
    }

    /// The facade itself, for messages that are no transfers.
    CCANopenAccess& access() { return m_access; }

    /// Takes the messages that came in unasked, and warns once when another SDO client is at work on the bus: there are
    /// its requests, or answers that nobody here has asked for.
    void watchOthers();
    /// The oldest of these messages, for those who look at them themselves; what they do not know goes to `watch`.
    std::optional<tCanMessage> takeMessage();
    /// Warns as `watchOthers` does when the message is a sign of another client.
    void watch(const tCanMessage& message);
    /// An answer of this node may come later: it is no sign of another client.
    void expectLateAnswer(unsigned node) { m_late.insert(node); }
    /// It has come.
    void expectNoAnswer(unsigned node) { m_late.erase(node); }

private:
    static constexpr short longestValue = std::numeric_limits<short>::max();

    static void begin();
    // `node`: that of a transfer, 0 for other operations.
    std::optional<tFailure> failureOf(bool done, unsigned node) const;
    std::optional<tFailure> refusalBy(unsigned node) const;
    QString gatewayTrouble() const;
    QString canTrouble(unsigned node) const;
    QString numberedError() const;
    std::optional<tFailure> transferFailure(bool done, BYTE node);
    void open(const tNetworkOptions& options);
    void setTimeouts(const tNetworkOptions& options);

    CConsole& m_console;
    CCANopenAccess m_access;
    int m_sdoTimeout; // in milliseconds, on CAN
    bool m_isGateway = false;
    std::set<unsigned> m_late; // nodes whose answers may still come
    int m_transfers = 0;
    std::array<BYTE, longestValue> m_buffer{}; // of each value read: filling it with zeros takes longer than a read
    bool m_warned = false;
};
