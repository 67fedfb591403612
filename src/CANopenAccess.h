// The object through which the program reaches a CANopen network: binds one of the device-access libraries, forwards
// every operation to it and keeps the result of the last one. One class, although long: the operations belong together.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"
#include "cop/can_ctrl.h"
#include "tcp/tcp_open.h"

#include <cstdint>
#include <optional>
#include <type_traits>

/// Numbers of the device-access libraries.
inline constexpr short libraryNone = -1;
inline constexpr short librarySocketCAN = 0;
inline constexpr short libraryGateway = 700;

/// The gateway to connect to, the parameter of library 700.
struct _top_param {
    unsigned long addr;     ///< its IPv4 address in host byte order, 0x7F000001 for 127.0.0.1
    unsigned short port;    ///< its TCP port in host byte order
    _top_settings settings; ///< network number, node-id and master used towards it
};

/// Every operation that returns `bool` is true on success; after a failure `getLastError` is its error. Without a bound
/// library, each operation that needs one fails with ERR_NOT_INITIALIZED. Each blocks until it is answered or has timed
/// out.
class CCANopenAccess
{
public:
    CCANopenAccess() = default;
    ~CCANopenAccess(); ///< closes the interface when it is still open
    CCANopenAccess(const CCANopenAccess&) = delete;
    CCANopenAccess& operator=(const CCANopenAccess&) = delete;

    /// Opens the interface and binds its library. `librarySocketCAN`: `param` is a `_can_param`, `board` must be -1.
    /// `libraryGateway`: `param` is a `_top_param`, `board` is not used. `baudrate` is an index 0 to 8 (1000, 800, 500,
    /// 250, 125, 100, 50, 20, 10 kbit/s). Fails with ERR_ALREADY_INITIALIZED while a library is bound,
    /// ERR_NOT_SUPPORTED for other libraries, ERR_PARAMETER for other boards, ERR_NULL_POINTER without `param`,
    /// ERR_BAUDRATE with the SocketCAN master for index 1 and above 8. Two codes have no name: -10000 when the CAN
    /// interface, -20000 when the gateway cannot be opened.
    bool initialize(short library, long board, void* param, BYTE baudrate);
    /// Closes the interface; the object can then be initialised again.
    bool terminate();
    bool reset(BYTE baudrate);

    /// SDO transfers to and from an object of a node. `size` is the room at `data`, in bytes; `length` counts bytes.
    /// One more byte after the data of `write` must be readable. When the node aborts the transfer, the last error is
    /// ERR_SDO_ABORTED and the last abort its code; success clears the last abort, other failures leave it unchanged.
    bool write(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data);
    bool read(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size);
    bool writeUnsigned8(BYTE node, WORD index, BYTE subindex, std::uint8_t value);
    bool writeUnsigned16(BYTE node, WORD index, BYTE subindex, std::uint16_t value);
    bool writeUnsigned32(BYTE node, WORD index, BYTE subindex, std::uint32_t value);
    bool readUnsigned8(BYTE node, WORD index, BYTE subindex, std::uint8_t* value);
    bool readUnsigned16(BYTE node, WORD index, BYTE subindex, std::uint16_t* value);
    bool readUnsigned32(BYTE node, WORD index, BYTE subindex, std::uint32_t* value);
    /// The same with the bits of the value taken as two's complement: -1 is sent as 0xFF by `writeInteger8`.
    bool writeInteger8(BYTE node, WORD index, BYTE subindex, std::int8_t value);
    bool writeInteger16(BYTE node, WORD index, BYTE subindex, std::int16_t value);
    bool writeInteger32(BYTE node, WORD index, BYTE subindex, std::int32_t value);
    bool readInteger8(BYTE node, WORD index, BYTE subindex, std::int8_t* value);
    bool readInteger16(BYTE node, WORD index, BYTE subindex, std::int16_t* value);
    bool readInteger32(BYTE node, WORD index, BYTE subindex, std::int32_t* value);
    /// Sets the time-out of SDO transfers in milliseconds. `previous` may be null. With the SocketCAN master, this call
    /// and the two version texts below leave the last error unchanged when they succeed.
    bool setSDOTimeout(WORD timeout, WORD* previous);

    /// How the last operation was answered. A gateway's silence is no error of the operation: who must not take it for
    /// a value asks here. With the SocketCAN master a time-out is `answerNone`, everything else `answerWhole`.
    enum TAnswer { answerNone, answerClosed, answerCut, answerOdd, answerWhole };
    /// `answerClosed`: the gateway has closed the connection before it. `answerCut`: the answer was longer than the
    /// client keeps, or ended with the connection. `answerOdd`: `read` made a value of something that is none.
    /// `answerNone` without a bound library.
    TAnswer lastAnswer() const;
    /// The number with which a node or a gateway refused the last SDO transfer, with a gateway also another operation;
    /// none when it was not refused. It is the abort code of the node or, below lowestAbortCode, the gateway's error.
    /// Some numbers are hidden by the results, which are as described above: 0 and others read as success or as other
    /// errors.
    std::optional<std::uint32_t> lastRefusal() const;
    /// Sets how long the client of a gateway waits for each line, in milliseconds, 66000 at first, for the whole
    /// process. Fails with ERR_NOT_SUPPORTED with the SocketCAN master. `previous` may be null.
    bool setLineTimeout(std::int32_t milliseconds, std::int32_t* previous);

    /// Has `ended` asked while an SDO transfer of the SocketCAN master waits for an answer: when it returns true, the
    /// transfer ends as after a time-out. Null, as at first: nobody is asked. For the whole process. Fails with
    /// ERR_NOT_SUPPORTED with a gateway, where a signal ends a wait.
    bool endTransfersWhen(bool (*ended)());

    /// Network management of one node.
    bool startRemoteNode(BYTE node);
    bool stopRemoteNode(BYTE node);
    bool enterPreOperationalState(BYTE node);
    bool resetNode(BYTE node);
    bool resetCommunication(BYTE node);

    /// CAN messages of at most eight bytes.
    bool transmitMessage(WORD cob_id, short length, const BYTE* data);
    bool requestMessage(WORD cob_id, short* length, BYTE* data);
    /// Takes the oldest message received; fails with ERR_RECEIVER_EMPTY when there is none. `cob_id` needs room for 32
    /// bits: the SocketCAN master writes that many.
    bool readQueue(WORD* cob_id, short* length, BYTE* data);
    bool clearQueue();

    /// Texts about the opened interface: at most `size` characters, terminated only when shorter. Fails with
    /// ERR_NULL_POINTER for a null buffer.
    bool getHardwareVersion(char* buffer, short size);
    bool getFirmwareVersion(char* buffer, short size);
    /// The revision line of the bound library; null without one.
    const char* getAPIVersion();
    /// The copyright notice: at most `size` characters, terminated only when shorter. Needs no library. Success leaves
    /// the last error unchanged; fails with ERR_NULL_POINTER for a null buffer.
    bool getCopyright(char* buffer, short size);
    static const char* version();

    bool isSDOAborted() const { return m_lastError == ERR_SDO_ABORTED; }
    int getLastError() const { return m_lastError; }
    long getLastAbort() const { return m_lastAbort; }
    /// Text of an error or an abort code; never null. A code of 0 stands for the last error or the last abort.
    const char* getErrorText(int error) const;
    const char* getAbortText(long code) const;

private:
    struct tLibrary; // the functions of a library
    static const tLibrary libraries[];
    static const tLibrary* libraryOf(int number);

    template <typename... Parameters>
    std::int32_t call(std::int32_t (*tLibrary::*operation)(Parameters...),
                      std::type_identity_t<Parameters>... arguments) const;
    bool storeSdoResult(std::int32_t result);
    bool storeResult(std::int32_t result);
    bool storeLocalResult(std::int32_t result);

    int m_library = libraryNone; // the bound library
    int m_lastError = 0;
    long m_lastAbort = 0;
};
