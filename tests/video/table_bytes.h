// table_bytes.h: what the tests of the IFO tables share: VOBU lists from one-line records, blocks taken over as bytes,
// expected bytes as hex text at their offsets, and a comparison that names the offset of each difference.
#pragma once

#include "base/memory.h"
#include "project/model.h"
#include "tests/support/files.h"
#include "video/vobu_record.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

// One unit of a list, in the fields that tables look at.
struct Vobu {
    uint64_t sector = 0;
    uint64_t lastSector = 0;
    uint64_t pictures = 12;
    uint64_t vob = 1;
    uint64_t cell = 1;
    uint64_t firstPts = 0;
    uint64_t temporalRef = 0;
};

// A VOBU list as the engine takes it, freed with the test.
struct VobuBlock {
    explicit VobuBlock(const std::vector<Vobu>& units)
    {
        EXPECT_EQ(0u, osAllocMem(0, &list));
        for (const Vobu& unit : units) {
            VobuRecord record = {};
            record.sector = unit.sector;
            record.lastSector = unit.lastSector;
            record.firstPts = unit.firstPts;
            record.pictureCount = unit.pictures;
            record.vobId = unit.vob;
            record.cellId = unit.cell;
            record.temporalRef = unit.temporalRef;
            EXPECT_EQ(0u, osInsertMem(&list, OS_BLOCK_END, &record, sizeof(record)));
        }
    }
    ~VobuBlock()
    {
        (void)osFreeMem(&list);
    }
    VobuBlock(const VobuBlock&) = delete;
    VobuBlock& operator=(const VobuBlock&) = delete;

    VobuRecord* list = nullptr;
};

inline AudioStreamDesc audioStream(int64_t format, uint64_t streamId, uint64_t subStreamId, uint64_t channels = 2,
                                   uint64_t quantization = 0, uint64_t sampleRateCode = 0)
{
    AudioStreamDesc stream = {};
    stream.audioFormat = format;
    stream.streamId = streamId;
    stream.subStreamId = subStreamId;
    stream.channelCount = channels;
    stream.quantization = quantization;
    stream.sampleRateCode = sampleRateCode;
    stream.languageCode = 25956;   // "de", as the reader presets it: no table stores it
    return stream;
}

/** What the reader leaves of a stream without a format. */
inline AudioStreamDesc noAudioStream()
{
    AudioStreamDesc stream = {};
    stream.audioFormat = AUDIO_NONE;
    return stream;
}

/** Content of a block, which is freed. */
inline Bytes takeBlock(uint8_t* block)
{
    if (!block) return {};
    Bytes bytes(block, block + osMemSize(block));
    (void)osFreeMem(&block);
    return bytes;
}

// A piece of expected bytes: hex text at its offset.
typedef std::pair<uint64_t, std::string> Piece;

/** A structure of so many bytes: the pieces, and zeros wherever no piece stands. */
inline Bytes layout(uint64_t size, const std::vector<Piece>& pieces)
{
    Bytes bytes(size, 0);
    for (const auto& [at, hex] : pieces) {
        const Bytes part = fromHex(hex);
        EXPECT_LE(at + part.size(), size) << "a piece of expected bytes leaves its structure";
        for (uint64_t i = 0; i < part.size() && at + i < size; i++) bytes[at + i] = part[i];
    }
    return bytes;
}

/** count bytes at an offset; what lies behind the end is left out. */
inline Bytes slice(const Bytes& bytes, uint64_t at, uint64_t count)
{
    Bytes part;
    for (uint64_t i = at; i < at + count && i < bytes.size(); i++) part.push_back(bytes[i]);
    return part;
}

/** Compares whole structures and reports each differing stretch, up to ten of them. */
inline void expectSameBytes(const Bytes& expected, const Bytes& actual, const std::string& what)
{
    EXPECT_EQ(expected.size(), actual.size()) << what << ": size";
    const uint64_t common = std::min(expected.size(), actual.size());
    int reported = 0;
    for (uint64_t i = 0; i < common && reported < 10; i++) {
        if (expected[i] == actual[i]) continue;
        const uint64_t start = i & ~uint64_t(3);
        ADD_FAILURE() << what << ": at " << start << " is " << toHex(slice(actual, start, 16)) << ", should be "
                      << toHex(slice(expected, start, 16));
        i = start + 15;
        reported++;
    }
}

/** Compares the bytes at an offset with hex text. */
inline void expectAt(const Bytes& bytes, uint64_t at, const std::string& hex, const std::string& what)
{
    const Bytes expected = fromHex(hex);
    EXPECT_EQ(toHex(expected), toHex(slice(bytes, at, expected.size()))) << what << " at " << at;
}

/** Everything in [from, to) is 0. */
inline void expectZeros(const Bytes& bytes, uint64_t from, uint64_t to, const std::string& what)
{
    ASSERT_LE(to, bytes.size()) << what;
    for (uint64_t i = from; i < to; i++) {
        if (bytes[i] == 0) continue;
        ADD_FAILURE() << what << ": at " << i << " is " << toHex(slice(bytes, i, 8)) << ", should be 0";
        return;
    }
}

inline uint64_t numberAt(const Bytes& bytes, uint64_t at, uint64_t width)
{
    uint64_t value = 0;
    for (const uint8_t byte : slice(bytes, at, width)) value = value << 8 | byte;
    return value;
}
