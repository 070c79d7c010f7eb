#pragma once

#include "cparsetabletdata.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

// The leading bytes of a report; the rest of the 64-byte buffer stays 0.
using ReportBytes = std::vector<unsigned char>;

struct Decoded {
    int result;
    TabletDataEX data;
};

// Decodes as the dispatcher does: a zeroed buffer and a zeroed record with the product id.
inline Decoded decode(CParseTabletData &decoder, const ReportBytes &bytes, int length,
                      int productId)
{
    std::array<unsigned char, kReportBufferSize> buffer{};
    std::copy(bytes.begin(), bytes.end(), buffer.begin());
    Decoded decoded{};
    decoded.data.productId = productId;
    decoded.result = decoder.ParseData(buffer.data(), length, &decoded.data);
    return decoded;
}

// A key array as 40 numbers, from the keys listed as down.
inline std::vector<int> keysDown(const std::vector<int> &down)
{
    std::vector<int> states(kTabletKeyCount, 0);
    for (int key : down)
        states[key] = 1;
    return states;
}

inline std::vector<int> keyArray(const uint8_t (&states)[kTabletKeyCount])
{
    return std::vector<int>(states, states + kTabletKeyCount);
}

inline std::vector<int> allKeys()
{
    std::vector<int> keys;
    for (int key = 0; key < kTabletKeyCount; ++key)
        keys.push_back(key);
    return keys;
}

// The wheel history is process-wide, so every test starts from the state of a new process.
class DecoderTest : public ::testing::Test
{
protected:
    void SetUp() override { CParseTabletData::resetWheelState(); }

    CParseTabletData decoder;
};

template <typename Case>
class DecoderCaseTest : public DecoderTest, public ::testing::WithParamInterface<Case>
{
};

template <typename Case> std::string caseName(const ::testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}
