// Network management of the CANopen master: commands to one node or to all (CiA 301, NMT node control).
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

// Each sends one message on the identifier 0x000: a command specifier and the node-id, 1 to 127 or 0 for all nodes. No
// answer is awaited. They return what cop_transmit returns, or ERR_NODE_ID for a node-id above 127: nothing is sent.
// Example: nmt_start_remote_node(5) sends 01 05.

int32_t nmt_start_remote_node(BYTE node);    ///< 01: to operational
int32_t nmt_stop_remote_node(BYTE node);     ///< 02: to stopped
int32_t nmt_enter_preoperational(BYTE node); ///< 80: to pre-operational
int32_t nmt_reset_node(BYTE node);           ///< 81: restarts the device
int32_t nmt_reset_communication(BYTE node);  ///< 82: restarts its communication

const char* nmt_version(); ///< this module and its date
