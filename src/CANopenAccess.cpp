// Forwarding to the device-access libraries: one row of functions for each library, and how results are stored.
// SPDX-License-Identifier: MIT
#include "CANopenAccess.h"

#include "access/ErrorTexts.h"
#include "access/LibraryAdapters.h"
#include "base/Product.h"
#include "cop/cop_api.h"
#include "cop/cop_nms.h"
#include "cop/cop_sdo.h"

#include <algorithm>
#include <iterator>

struct CCANopenAccess::tLibrary {
    int number;
    std::int32_t (*init)(long board, void* param, BYTE baudrate);
    std::int32_t (*exit)();
    std::int32_t (*reset)(BYTE baudrate);
    std::int32_t (*write)(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data);
    std::int32_t (*read)(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size);
    std::int32_t (*write8)(BYTE node, WORD index, BYTE subindex, std::uint8_t value);
    std::int32_t (*write16)(BYTE node, WORD index, BYTE subindex, std::uint16_t value);
    std::int32_t (*write32)(BYTE node, WORD index, BYTE subindex, std::uint32_t value);
    std::int32_t (*read8)(BYTE node, WORD index, BYTE subindex, std::uint8_t* value);
    std::int32_t (*read16)(BYTE node, WORD index, BYTE subindex, std::uint16_t* value);
    std::int32_t (*read32)(BYTE node, WORD index, BYTE subindex, std::uint32_t* value);
    std::int32_t (*timeout)(WORD timeout, WORD* previous);
    int (*lastAnswer)();
    bool (*lastRefusal)(std::uint32_t* number);
    std::int32_t (*lineTimeout)(std::int32_t milliseconds, std::int32_t* previous);
    std::int32_t (*endWhen)(bool (*ended)());
    std::int32_t (*startNode)(BYTE node);
    std::int32_t (*stopNode)(BYTE node);
    std::int32_t (*enterPreOperational)(BYTE node);
    std::int32_t (*resetNode)(BYTE node);
    std::int32_t (*resetCommunication)(BYTE node);
    std::int32_t (*transmit)(std::int32_t cob_id, short length, const BYTE* data);
    std::int32_t (*request)(std::int32_t cob_id, short* length, BYTE* data);
    std::int32_t (*readQueue)(WORD* cob_id, short* length, BYTE* data);
    std::int32_t (*clearQueue)();
    std::int32_t (*hardware)(char* buffer, short size);
    std::int32_t (*software)(char* buffer, short size);
    const char* (*version)();
};

// The numbers of the gateway client are those of the facade.
static_assert(int{ CCANopenAccess::answerNone } == top_answer_none &&
              int{ CCANopenAccess::answerClosed } == top_answer_closed &&
              int{ CCANopenAccess::answerCut } == top_answer_cut &&
              int{ CCANopenAccess::answerOdd } == top_answer_odd &&
              int{ CCANopenAccess::answerWhole } == top_answer_whole);

using namespace libraryAdapters;

// clang-format off
constexpr CCANopenAccess::tLibrary CCANopenAccess::libraries[] = {
    { librarySocketCAN, initMaster, cop_exit, cop_reset,
      sdo_write, sdo_read,
      sdo_write_8bit, sdo_write_16bit, sdo_write_32bit, sdo_read_8bit, sdo_read_16bit, sdo_read_32bit, setMasterTimeout,
      masterAnswer, sdo_last_abort, setMasterLineTimeout, endMasterTransfersWhen,
      nmt_start_remote_node, nmt_stop_remote_node, nmt_enter_preoperational, nmt_reset_node, nmt_reset_communication,
      transmitByMaster, requestByMaster, readMasterQueue, cop_queue_clear,
      masterHardware, masterSoftware, cop_version },
    { libraryGateway, initGateway, top_exit, top_reset,
      top_write, top_read,
      top_write_8bit, top_write_16bit, top_write_32bit, top_read_8bit, top_read_16bit, top_read_32bit, top_timeout,
      top_last_answer, top_last_error, setGatewayLineTimeout, endGatewayTransfersWhen,
      top_start_remote_node, top_stop_remote_node, top_enter_preoperational, top_reset_node, top_reset_communication,
      top_transmit, top_request, top_queue_read, top_queue_clear,
      top_hardware, top_software, top_version },
};
// clang-format on

CCANopenAccess::~CCANopenAccess()
{
    call(&tLibrary::exit);
}

bool CCANopenAccess::initialize(short library, long board, void* param, BYTE baudrate)
{
    if (m_library != libraryNone)
        return storeResult(ERR_ALREADY_INITIALIZED);
    const tLibrary* row = libraryOf(library);
    if (!storeResult(row != nullptr ? row->init(board, param, baudrate) : ERR_NOT_SUPPORTED))
        return false;
    m_library = library;
    return true;
}

bool CCANopenAccess::terminate()
{
    if (!storeResult(call(&tLibrary::exit)))
        return false;
    m_library = libraryNone;
    return true;
}

bool CCANopenAccess::reset(BYTE baudrate)
{
    return storeResult(call(&tLibrary::reset, baudrate));
}

bool CCANopenAccess::write(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data)
{
    return storeSdoResult(call(&tLibrary::write, node, index, subindex, length, data));
}

bool CCANopenAccess::read(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size)
{
    return storeSdoResult(call(&tLibrary::read, node, index, subindex, length, data, size));
}

bool CCANopenAccess::writeUnsigned8(BYTE node, WORD index, BYTE subindex, std::uint8_t value)
{
    return storeSdoResult(call(&tLibrary::write8, node, index, subindex, value));
}

bool CCANopenAccess::writeUnsigned16(BYTE node, WORD index, BYTE subindex, std::uint16_t value)
{
    return storeSdoResult(call(&tLibrary::write16, node, index, subindex, value));
}

bool CCANopenAccess::writeUnsigned32(BYTE node, WORD index, BYTE subindex, std::uint32_t value)
{
    return storeSdoResult(call(&tLibrary::write32, node, index, subindex, value));
}

bool CCANopenAccess::readUnsigned8(BYTE node, WORD index, BYTE subindex, std::uint8_t* value)
{
    return storeSdoResult(call(&tLibrary::read8, node, index, subindex, value));
}

bool CCANopenAccess::readUnsigned16(BYTE node, WORD index, BYTE subindex, std::uint16_t* value)
{
    return storeSdoResult(call(&tLibrary::read16, node, index, subindex, value));
}

bool CCANopenAccess::readUnsigned32(BYTE node, WORD index, BYTE subindex, std::uint32_t* value)
{
    return storeSdoResult(call(&tLibrary::read32, node, index, subindex, value));
}

bool CCANopenAccess::writeInteger8(BYTE node, WORD index, BYTE subindex, std::int8_t value)
{
    return writeUnsigned8(node, index, subindex, static_cast<std::uint8_t>(value));
}

bool CCANopenAccess::writeInteger16(BYTE node, WORD index, BYTE subindex, std::int16_t value)
{
    return writeUnsigned16(node, index, subindex, static_cast<std::uint16_t>(value));
}

bool CCANopenAccess::writeInteger32(BYTE node, WORD index, BYTE subindex, std::int32_t value)
{
    return writeUnsigned32(node, index, subindex, static_cast<std::uint32_t>(value));
}

// A signed integer may be written through a pointer to the unsigned integer of its width.
bool CCANopenAccess::readInteger8(BYTE node, WORD index, BYTE subindex, std::int8_t* value)
{
    return readUnsigned8(node, index, subindex, reinterpret_cast<std::uint8_t*>(value));
}

bool CCANopenAccess::readInteger16(BYTE node, WORD index, BYTE subindex, std::int16_t* value)
{
    return readUnsigned16(node, index, subindex, reinterpret_cast<std::uint16_t*>(value));
}

bool CCANopenAccess::readInteger32(BYTE node, WORD index, BYTE subindex, std::int32_t* value)
{
    return readUnsigned32(node, index, subindex, reinterpret_cast<std::uint32_t*>(value));
}

bool CCANopenAccess::setSDOTimeout(WORD timeout, WORD* previous)
{
    return storeLocalResult(call(&tLibrary::timeout, timeout, previous));
}

CCANopenAccess::TAnswer CCANopenAccess::lastAnswer() const
{
    const tLibrary* library = libraryOf(m_library);
    return library != nullptr ? static_cast<TAnswer>(library->lastAnswer()) : answerNone;
}

std::optional<std::uint32_t> CCANopenAccess::lastRefusal() const
{
    const tLibrary* library = libraryOf(m_library);
    std::uint32_t number = 0;
    return library != nullptr && library->lastRefusal(&number) ? std::optional(number) : std::nullopt;
}

bool CCANopenAccess::setLineTimeout(std::int32_t milliseconds, std::int32_t* previous)
{
    return storeResult(call(&tLibrary::lineTimeout, milliseconds, previous));
}

bool CCANopenAccess::endTransfersWhen(bool (*ended)())
{
    return storeResult(call(&tLibrary::endWhen, ended));
}

bool CCANopenAccess::startRemoteNode(BYTE node)
{
    return storeResult(call(&tLibrary::startNode, node));
}

bool CCANopenAccess::stopRemoteNode(BYTE node)
{
    return storeResult(call(&tLibrary::stopNode, node));
}

bool CCANopenAccess::enterPreOperationalState(BYTE node)
{
    return storeResult(call(&tLibrary::enterPreOperational, node));
}

bool CCANopenAccess::resetNode(BYTE node)
{
    return storeResult(call(&tLibrary::resetNode, node));
}

bool CCANopenAccess::resetCommunication(BYTE node)
{
    return storeResult(call(&tLibrary::resetCommunication, node));
}

bool CCANopenAccess::transmitMessage(WORD cob_id, short length, const BYTE* data)
{
    return storeResult(call(&tLibrary::transmit, cob_id, length, data));
}

bool CCANopenAccess::requestMessage(WORD cob_id, short* length, BYTE* data)
{
    return storeResult(call(&tLibrary::request, cob_id, length, data));
}

bool CCANopenAccess::readQueue(WORD* cob_id, short* length, BYTE* data)
{
    return storeResult(call(&tLibrary::readQueue, cob_id, length, data));
}

bool CCANopenAccess::clearQueue()
{
    return storeResult(call(&tLibrary::clearQueue));
}

bool CCANopenAccess::getHardwareVersion(char* buffer, short size)
{
    return storeLocalResult(call(&tLibrary::hardware, buffer, size));
}

bool CCANopenAccess::getFirmwareVersion(char* buffer, short size)
{
    return storeLocalResult(call(&tLibrary::software, buffer, size));
}

const char* CCANopenAccess::getAPIVersion()
{
    const tLibrary* library = libraryOf(m_library);
    if (library != nullptr)
        return library->version();
    storeResult(ERR_NOT_INITIALIZED);
    return nullptr;
}

bool CCANopenAccess::getCopyright(char* buffer, short size)
{
    const std::int32_t result = copyText(product::copyright, buffer, size);
    return result == ERR_NO_ERROR || storeResult(result);
}

const char* CCANopenAccess::version()
{
    return "Velmora CANopen access facade, revision 2026-11-21";
}

const char* CCANopenAccess::getErrorText(int error) const
{
    return errorTexts::ofError(error != 0 ? error : m_lastError);
}

const char* CCANopenAccess::getAbortText(long code) const
{
    return errorTexts::ofAbort(static_cast<std::uint32_t>(code != 0 ? code : m_lastAbort));
}

const CCANopenAccess::tLibrary* CCANopenAccess::libraryOf(int number)
{
    const auto* row = std::find_if(std::begin(libraries), std::end(libraries),
                                   [number](const tLibrary& library) { return library.number == number; });
    return row != std::end(libraries) ? row : nullptr;
}

template <typename... Parameters>
std::int32_t CCANopenAccess::call(std::int32_t (*tLibrary::*operation)(Parameters...),
                                  std::type_identity_t<Parameters>... arguments) const
{
    const tLibrary* library = libraryOf(m_library);
    return library != nullptr ? (library->*operation)(arguments...) : ERR_NOT_INITIALIZED;
}

// For SDO reads and writes: a positive result is the abort code of the node.
bool CCANopenAccess::storeSdoResult(std::int32_t result)
{
    if (result > 0) {
        m_lastAbort = result;
        return storeResult(ERR_SDO_ABORTED);
    }
    if (result == 0)
        m_lastAbort = 0;
    return storeResult(result);
}

// For everything else: the result becomes the last error unchanged. Text queries to a gateway may return an abort code.
bool CCANopenAccess::storeResult(std::int32_t result)
{
    m_lastError = result;
    return result == 0;
}

// For the SDO time-out and the version texts. Kept: with the SocketCAN master, which does not use the bus for them,
// success leaves the last error as it was: compatible behaviour.
bool CCANopenAccess::storeLocalResult(std::int32_t result)
{
    return (result == ERR_NO_ERROR && m_library == librarySocketCAN) || storeResult(result);
}
