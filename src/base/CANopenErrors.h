// Error codes and SDO abort codes shared by every device-access function, and the types of their arguments.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;

// Error codes: 0 is success, negative values are failures. Their texts follow this order.

inline constexpr int ERR_NO_ERROR = 0;
inline constexpr int ERR_BUS_OFF = -1;
inline constexpr int ERR_WARNING_LEVEL = -2;
inline constexpr int ERR_BUS_ERROR = -3;
inline constexpr int ERR_NOT_STARTED = -9;
inline constexpr int ERR_ALREADY_STARTED = -8;
inline constexpr int ERR_MESSAGE_LOST = -10;
inline constexpr int ERR_STUFF = -11;
inline constexpr int ERR_FORM = -12;
inline constexpr int ERR_ACKNOWLEDGE = -13;
inline constexpr int ERR_RECESSIVE_BIT = -14;
inline constexpr int ERR_DOMINANT_BIT = -15;
inline constexpr int ERR_CHECKSUM = -16;
inline constexpr int ERR_TRANSMITTER_BUSY = -20;
inline constexpr int ERR_RECEIVER_EMPTY = -30;
inline constexpr int ERR_QUEUE_OVERRUN = -40;
inline constexpr int ERR_TIMEOUT = -50;
inline constexpr int ERR_LENGTH = -60;
inline constexpr int ERR_FORMAT = -70;
inline constexpr int ERR_ILLEGAL_STATUS = -80;
inline constexpr int ERR_NODE_ID = -90;
inline constexpr int ERR_BAUDRATE = -91;
inline constexpr int ERR_PARAMETER = -93;
inline constexpr int ERR_NULL_POINTER = -94;
inline constexpr int ERR_NOT_INITIALIZED = -95;
inline constexpr int ERR_ALREADY_INITIALIZED = -96;
inline constexpr int ERR_NOT_SUPPORTED = -98;
inline constexpr int ERR_FATAL = -99;
inline constexpr int ERR_SDO_ABORTED = 4; ///< the server aborted the transfer; its abort code is kept separately

// SDO abort codes: what a server answers in place of a result, and what a client sends to give up.

inline constexpr std::uint32_t lowestAbortCode = 0x05000000; ///< smaller numbers are errors of a gateway
inline constexpr std::uint32_t ABORT_TOGGLE_BIT = 0x05030000;
inline constexpr std::uint32_t ABORT_TIMEOUT = 0x05040000;
inline constexpr std::uint32_t ABORT_COMMAND_SPECIFIER = 0x05040001;
inline constexpr std::uint32_t ABORT_BLOCK_SIZE = 0x05040002;
inline constexpr std::uint32_t ABORT_SEQUENCE_NUMBER = 0x05040003;
inline constexpr std::uint32_t ABORT_CHECKSUM = 0x05040004;
inline constexpr std::uint32_t ABORT_OUT_OF_MEMORY = 0x05040005;
inline constexpr std::uint32_t ABORT_UNSUPPORTED_ACCESS = 0x06010000;
inline constexpr std::uint32_t ABORT_WRITE_ONLY = 0x06010001;
inline constexpr std::uint32_t ABORT_READ_ONLY = 0x06010002;
inline constexpr std::uint32_t ABORT_NO_OBJECT = 0x06020000;
inline constexpr std::uint32_t ABORT_NOT_MAPPABLE = 0x06040041;
inline constexpr std::uint32_t ABORT_PDO_LENGTH = 0x06040042;
inline constexpr std::uint32_t ABORT_PARAMETER_INCOMPATIBLE = 0x06040043;
inline constexpr std::uint32_t ABORT_INTERNAL_INCOMPATIBLE = 0x06040047;
inline constexpr std::uint32_t ABORT_HARDWARE = 0x06060000;
inline constexpr std::uint32_t ABORT_LENGTH = 0x06070010;
inline constexpr std::uint32_t ABORT_LENGTH_HIGH = 0x06070012;
inline constexpr std::uint32_t ABORT_LENGTH_LOW = 0x06070013;
inline constexpr std::uint32_t ABORT_NO_SUBINDEX = 0x06090011;
inline constexpr std::uint32_t ABORT_VALUE_RANGE = 0x06090030;
inline constexpr std::uint32_t ABORT_VALUE_HIGH = 0x06090031;
inline constexpr std::uint32_t ABORT_VALUE_LOW = 0x06090032;
inline constexpr std::uint32_t ABORT_MAXIMUM_BELOW_MINIMUM = 0x06090036;
inline constexpr std::uint32_t ABORT_GENERAL = 0x08000000;
inline constexpr std::uint32_t ABORT_STORAGE = 0x08000020;
inline constexpr std::uint32_t ABORT_LOCAL_CONTROL = 0x08000021;
inline constexpr std::uint32_t ABORT_DEVICE_STATE = 0x08000022;
inline constexpr std::uint32_t ABORT_NO_DICTIONARY = 0x08000023;
