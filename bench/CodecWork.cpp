// What converts the data of the gateway's lines, each to be run as often as wanted.
// SPDX-License-Identifier: MIT
#include "CodecWork.h"

#include "tcp/base64.h"
#include "tcp/tcp_eval.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace
{

constexpr int bytesOfGroup = 3;
constexpr int charactersOfGroup = 4;

bool evaluateDomain(int length, int runs)
{
    const std::string line = "[1] " + std::string(std::size_t(length), 'Q') + "\r\n";
    std::vector<BYTE> bytes(std::numeric_limits<short>::max());
    bool right = true;
    for (int run = 0; run < runs; ++run) {
        short stored = 0;
        right &= tcp_eval_sdo_domain(line.c_str(), &stored, bytes.data(), short(bytes.size()), nullptr) == 0 &&
                 stored == length / charactersOfGroup * bytesOfGroup;
    }
    return right;
}

bool evaluateString(int length, int runs)
{
    const std::string line = "[1] \"" + std::string(std::size_t(length), 'Q') + "\"\r\n";
    std::vector<char> text(std::numeric_limits<short>::max());
    bool right = true;
    for (int run = 0; run < runs; ++run) {
        short stored = 0;
        right &= tcp_eval_sdo_string(line.c_str(), &stored, text.data(), short(text.size()), nullptr) == 0 &&
                 stored == length;
    }
    return right;
}

bool encode(int length, int runs)
{
    const std::vector<unsigned char> input(std::size_t(length) + 1, 'B');
    char group[charactersOfGroup] = {};
    bool right = true;
    for (int run = 0; run < runs; ++run)
        for (int at = 0; at < length; at += bytesOfGroup)
            right &= base64_encode(&input[std::size_t(at)], std::min(bytesOfGroup, length - at), group,
                                   charactersOfGroup) > 0;
    return right;
}

bool decode(int length, int runs)
{
    const std::string input(std::size_t(length), 'Q');
    unsigned char group[bytesOfGroup] = {};
    bool right = true;
    for (int run = 0; run < runs; ++run)
        for (int at = 0; at < length; at += charactersOfGroup)
            right &= base64_decode(&input[std::size_t(at)], std::min(charactersOfGroup, length - at), group,
                                   bytesOfGroup) > 0;
    return right;
}

constexpr tCodec table[] = {
    { "domain", evaluateDomain },
    { "string", evaluateString },
    { "encode", encode },
    { "decode", decode },
};

} // namespace

constinit const std::span<const tCodec> codecs = table;
