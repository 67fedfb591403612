// What converts the data of the gateway's lines, each to be run as often as wanted.
// SPDX-License-Identifier: MIT
#pragma once

#include <span>

struct tCodec {
    const char* name;
    /// Prepares `length` bytes of input once, then converts them `runs` times. The evaluators store at most 32,767
    /// bytes. @return false if a result was wrong
    bool (*run)(int length, int runs);
};

/// "domain" and "string", the evaluators of lines with `length` characters of data; "encode" and "decode", base64 in
/// groups. `length` counts bytes of input.
extern const std::span<const tCodec> codecs;
