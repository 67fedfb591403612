// The command grammar of the ASCII gateway: reads a line as a command and its arguments.
// SPDX-License-Identifier: MIT
//
//   line      = "[" sequence "]" command
//   command   = node "read" index sub-index type          node "start"        "init" bit-rate
//             | node "write" index sub-index type value   node "stop"         "set" "sdo_timeout" milliseconds
//             | "send" identifier length EOL data         node "preop..."     "info" topic
//             | "send" identifier "rtr" length            node "reset" what   "receive"
//   data      = one number for each byte, on the next line; this line follows also when there are no data and when the
//               command is wrong
//
// Words are written in upper or lower case; some have a short form ("r" for "read"). Numbers are decimal, "0x"
// hexadecimal or "0" octal. Items are separated by blanks or tabs.
#pragma once

#include "device/TypeWords.h"

#include <QByteArray>

/// The most bytes that a CAN message carries.
constexpr quint32 longestMessage = 8;

/// Error numbers that the gateway answers with.
enum tGatewayError {
    gatewayNoError = 0,
    gatewayNotSupported = 100,
    gatewaySyntax = 101,
    gatewayState = 102,   // not processed because of the internal state
    gatewayTimeOut = 103, // the device did not answer
    gatewayNode = 107,    // no such node-id
};

/// What a rule asks for. `CGatewayCommands` carries it out.
enum tGatewayCommand {
    commandRead,
    commandWrite,
    commandNmt, // the rule's parameter is a `tNmtCommand`
    commandInit,
    commandSetTimeOut,
    commandInfo, // the rule's parameter is a `tInfoTopic`
    commandRemoteFrame,
    commandSend,
    commandReceive,
};

enum tInfoTopic { infoHardware, infoSoftware, infoFirmware, infoCopyright, infoVersion };

enum tArgument {
    argNone,
    argIndex,
    argSubIndex,
    argType,
    argValue,
    argIdentifier,
    argRtr,
    argLength,
    argBitRate,
    argTime
};

/// What belongs to a command besides its words and arguments.
enum tForm {
    formPlain,
    formNode,     // a node-id before the words
    formDataLine, // a data line after the command line
};

/// One rule: its words (alternatives divided by '|'), the command that they stand for, and what follows them.
struct tGatewayRule {
    const char* words;
    tGatewayCommand command;
    tArgument arguments[4];
    int parameter; // of the command
    tForm form;
};

/// One command line as read.
struct tGatewayRequest {
    const tGatewayRule* rule = nullptr; // null when the line is no command
    tGatewayError error = gatewayNoError;
    quint32 sequence = 0; // 0 also when the line has none
    quint32 node = 0;
    quint32 index = 0;
    quint32 subIndex = 0;
    quint32 number = 0; // the bit rate, time, or message length
    quint32 identifier = 0;
    const tTypeWord* type = nullptr;
    QByteArray data;         // the value of a write, the bytes of a message
    bool awaitsData = false; // its data line comes next, also when there is an error

    bool isSdo() const { return type != nullptr; }
};

/// Reads a command line without its line end. When the request then awaits data, the next line goes to `readDataLine`.
tGatewayRequest readRequest(const QByteArray& line);

/// Reads the data line of a request that awaits it. Too few, too many or wrong numbers set the request's error.
void readDataLine(const QByteArray& line, tGatewayRequest& request);
