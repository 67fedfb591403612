// The texts of the error codes and SDO abort codes: two tables and the function that searches them.
// SPDX-License-Identifier: MIT
#include "access/ErrorTexts.h"

#include "base/CANopenErrors.h"

#include <cstddef>
#include <string_view>

namespace
{

template <typename Code>
struct tCodeText {
    Code code;
    const char* text;
};

// clang-format off
// Both tables are searched from top to bottom. The text of the last row is that of all codes without a row.
constexpr tCodeText<int> errorTable[] = {
    { ERR_NO_ERROR,            "No error occurred." },
    { ERR_BUS_OFF,             "Bus-off status." },
    { ERR_WARNING_LEVEL,       "Error warning status." },
    { ERR_BUS_ERROR,           "Bus error." },
    { ERR_NOT_STARTED,         "Not started yet." },
    { ERR_ALREADY_STARTED,     "Already started." },
    { ERR_MESSAGE_LOST,        "Message lost (overrun)." },
    { ERR_STUFF,               "Stuff error." },
    { ERR_FORM,                "Form error." },
    { ERR_ACKNOWLEDGE,         "Acknowledge error." },
    { ERR_RECESSIVE_BIT,       "Recessive bit error." },
    { ERR_DOMINANT_BIT,        "Dominant bit error." },
    { ERR_CHECKSUM,            "Checksum error." },
    { ERR_TRANSMITTER_BUSY,    "Transmitter busy." },
    { ERR_RECEIVER_EMPTY,      "Receiver empty." },
    { ERR_QUEUE_OVERRUN,       "Queue overrun." },
    { ERR_TIMEOUT,             "Time-out error." },
    { ERR_LENGTH,              "Invalid length." },
    { ERR_FORMAT,              "Format error." },
    { ERR_ILLEGAL_STATUS,      "Illegal status." },
    { ERR_NODE_ID,             "Illegal node-id." },
    { ERR_BAUDRATE,            "Illegal baud rate." },
    { ERR_PARAMETER,           "Illegal parameter." },
    { ERR_NULL_POINTER,        "Illegal parameter (NULL-Pointer)." },
    { ERR_NOT_INITIALIZED,     "Not initialized." },
    { ERR_ALREADY_INITIALIZED, "Already initialized." },
    { ERR_NOT_SUPPORTED,       "Function not supported!" },
    { ERR_FATAL,               "Fatal error!" },
    { ERR_SDO_ABORTED,         "Transfer aborted." },
    // Kept: the text of every code without a row, for example -10000. It does not tell what has failed.
    { -32768,                  "Resistance is futile, prepare to assimilate!" },
};

constexpr tCodeText<std::uint32_t> abortTable[] = {
    { ABORT_TOGGLE_BIT,             "Toggle bit not alternated." },
    { ABORT_TIMEOUT,                "SDO protocol timed out." },
    { ABORT_COMMAND_SPECIFIER,      "Client/server command specifier not valid or unknown." },
    { ABORT_BLOCK_SIZE,             "Invalid block size (block mode only)." },
    { ABORT_SEQUENCE_NUMBER,        "Invalid sequence number (block mode only)." },
    { ABORT_CHECKSUM,               "CRC error (block mode only)." },
    { ABORT_OUT_OF_MEMORY,          "Out of memory." },
    { ABORT_UNSUPPORTED_ACCESS,     "Unsupported access to an object." },
    { ABORT_WRITE_ONLY,             "Attempt to read a write only object." },
    { ABORT_READ_ONLY,              "Attempt to write a read only object." },
    { ABORT_NO_OBJECT,              "Object does not exist in the object dictionary." },
    { ABORT_NOT_MAPPABLE,           "Object cannot be mapped to the PDO." },
    { ABORT_PDO_LENGTH,             "The number and length of the objects to be mapped would exceed PDO length." },
    { ABORT_PARAMETER_INCOMPATIBLE, "General parameter incompatibility reason." },
    { ABORT_INTERNAL_INCOMPATIBLE,  "General internal incompatibility in the device." },
    { ABORT_HARDWARE,               "Access failed due to an hardware error." }, // sic
    { ABORT_LENGTH,                 "Data type does not match, length of service parameter does not match" }, // sic
    { ABORT_LENGTH_HIGH,            "Data type does not match, length of service parameter too high" }, // sic
    { ABORT_LENGTH_LOW,             "Data type does not match, length of service parameter too low" }, // sic
    { ABORT_NO_SUBINDEX,            "Sub-index does not exist." },
    { ABORT_VALUE_RANGE,            "Value range of parameter exceeded (only for write access)." },
    { ABORT_VALUE_HIGH,             "Value of parameter written too high." },
    { ABORT_VALUE_LOW,              "Value of parameter written too low." },
    { ABORT_MAXIMUM_BELOW_MINIMUM,  "Maximum value is less than minimum value." },
    { ABORT_GENERAL,                "general error" }, // sic
    { ABORT_STORAGE,                "Data cannot be transferred or stored to the application." },
    { ABORT_LOCAL_CONTROL,          "Data cannot be transferred or stored to the application "
                                    "because of local control." },
    { ABORT_DEVICE_STATE,           "Data cannot be transferred or stored to the application "
                                    "because of the present device state." },
    { ABORT_NO_DICTIONARY,          "Object dictionary dynamic generation fails or no object dictionary is present "
                                    "(e.g. object dictionary is generated from file and generation fails "
                                    "because of an file error)." }, // sic
    { 0xFFFFFFFF,                   "Unknown SDO abort code." },
};
// clang-format on

template <typename Row, std::size_t N>
constexpr const char* textOf(const Row (&table)[N], decltype(Row::code) code)
{
    std::size_t row = 0;
    while (row < N - 1 && table[row].code != code)
        ++row;
    return table[row].text;
}

static_assert(textOf(errorTable, 0) == std::string_view("No error occurred."));
static_assert(textOf(errorTable, -50) == std::string_view("Time-out error."));
static_assert(textOf(errorTable, -92) == textOf(errorTable, -32768));
static_assert(textOf(abortTable, 0x06090011) == std::string_view("Sub-index does not exist."));
static_assert(textOf(abortTable, 0x06070011) == textOf(abortTable, 0xFFFFFFFF));

} // namespace

const char* errorTexts::ofError(int error)
{
    return textOf(errorTable, error);
}

const char* errorTexts::ofAbort(std::uint32_t code)
{
    return textOf(abortTable, code);
}
