// What converts the data of the gateway's lines, in bytes per second.
// SPDX-License-Identifier: MIT
#include "CodecWork.h"
#include "Pair.h"

namespace
{

constexpr int length = 30000;
constexpr int runs = 20; // in one measured time

class CCodecPair : public CPair
{
public:
    explicit CCodecPair(const tCodec& codec) : m_codec(codec) {}

    double ours() override
    {
        return secondsOf([this] { return m_codec.run(length, runs); });
    }

private:
    const tCodec& m_codec;
};

[[maybe_unused]] const bool added = [] {
    for (const tCodec& codec : codecs)
        addPair({ std::string("codec/") + codec.name, double(length) * runs, 1,
                  [&codec] { return std::make_unique<CCodecPair>(codec); } });
    return true;
}();

} // namespace
