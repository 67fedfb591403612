// Network management of the CANopen master: commands to one node or to all (CiA 301, NMT node control).
// SPDX-License-Identifier: MIT
#include "cop/cop_nms.h"

#include "base/NodeId.h"
#include "cop/cop_api.h"
#include "cop/cop_internal.h"

static constexpr uint32_t nmt_cob_id = 0x000;

static int32_t nmt_command(BYTE specifier, BYTE node)
{
    if (node > highestNodeId)
        return cop_error = ERR_NODE_ID;
    cop_buffer[0] = specifier;
    cop_buffer[1] = node;
    return cop_transmit(nmt_cob_id, 2, cop_buffer);
}

int32_t nmt_start_remote_node(BYTE node)
{
    return nmt_command(0x01, node);
}

int32_t nmt_stop_remote_node(BYTE node)
{
    return nmt_command(0x02, node);
}

int32_t nmt_enter_preoperational(BYTE node)
{
    return nmt_command(0x80, node);
}

int32_t nmt_reset_node(BYTE node)
{
    return nmt_command(0x81, node);
}

int32_t nmt_reset_communication(BYTE node)
{
    return nmt_command(0x82, node);
}

const char* nmt_version()
{
    return "Velmora CANopen master, cop_nms, 2026-11-21";
}
