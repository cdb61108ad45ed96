#include "tests/readers/mux_rig.h"

#include <gtest/gtest.h>

#include <map>
#include <tuple>

namespace fs = std::filesystem;

// ---- material -----------------------------------------------------------------------------------------------------

const fs::path& realVideo(Standard standard, int seconds)
{
    static std::map<std::tuple<Standard, int>, fs::path> made;
    fs::path& video = made[{ standard, seconds }];
    if (video.empty()) {
        video = shelve({});
        const std::string picture = standard == PAL ? "s=720x576:r=25" : "s=720x480:r=30000/1001";
        runEncoder("-f lavfi -i testsrc2=" + picture + " -t " + std::to_string(seconds) +
                   " -c:v mpeg2video -b:v 4000k -maxrate 8000k -bufsize 1835k -bf 2 -g " +
                   (standard == PAL ? "12" : "15") + " -f mpeg2video " + video.string());
    }
    return video;
}

const fs::path& realSound(const std::string& options, const std::string& ending, int seconds)
{
    static std::map<std::tuple<std::string, std::string, int>, fs::path> made;
    fs::path& sound = made[{ options, ending, seconds }];
    if (sound.empty()) {
        sound = shelve({});
        runEncoder("-f lavfi -i anoisesrc=sample_rate=48000:amplitude=0.2 -t " + std::to_string(seconds) + " " +
                   options + " -f " + ending + " " + sound.string());
    }
    return sound;
}

// ---- multiplexing -------------------------------------------------------------------------------------------------

static uint64_t keepSectors(uint64_t user, const uint8_t* sectors, uint64_t bytes)
{
    Bytes* program = reinterpret_cast<Bytes*>(user);
    program->insert(program->end(), sectors, sectors + bytes);
    return 0;
}

static void feed(MuxContext* handle, MuxStream* stream, const Bytes& chunk, uint64_t flags = 0)
{
    uint64_t used = 0;
    ASSERT_EQ(MuxData(handle, stream, chunk.data(), chunk.size(), &used, flags), 0u);
}

static void feedAll(MuxContext* handle, const std::vector<MuxInput>& inputs, const std::vector<MuxStream*>& streams)
{
    constexpr uint64_t SHARES = 40;
    for (uint64_t share = 0; share < SHARES; share++) {
        for (size_t i = 0; i < inputs.size(); i++) {
            const Bytes& bytes = inputs[i].bytes;
            const uint64_t from = bytes.size() * share / SHARES, to = bytes.size() * (share + 1) / SHARES;
            ASSERT_NO_FATAL_FAILURE(feed(
                handle, streams[i], Bytes(bytes.begin() + std::ptrdiff_t(from), bytes.begin() + std::ptrdiff_t(to))));
        }
    }
    for (size_t i = 0; i < inputs.size(); i++) {
        if (inputs[i].endMark) feed(handle, streams[i], { 'E', 'N', 'D', ' ' });
    }
}

Bytes multiplex(const std::vector<MuxInput>& inputs)
{
    Bytes program;
    MuxContext* handle = nullptr;
    EXPECT_EQ(InitMuxer(&handle, keepSectors, reinterpret_cast<uint64_t>(&program)), 0u);
    std::vector<MuxStream*> streams;
    for (const MuxInput& input : inputs) {
        MuxStream* stream = nullptr;
        EXPECT_EQ(AddStream(handle, 0, input.flags, &stream), 0u);
        if (!input.waveFormat.empty()) feed(handle, stream, input.waveFormat, ORV_MUX_WAVEFORMAT);
        streams.push_back(stream);
    }
    feedAll(handle, inputs, streams);
    EXPECT_EQ(ExitMuxer(handle), 0u);
    EXPECT_EQ(program.size() % 2048, 0u);
    return program;
}

// ---- packs --------------------------------------------------------------------------------------------------------

static uint64_t timeStamp(const uint8_t* at)
{
    return uint64_t(at[0] & 0x0E) << 29 | uint64_t(at[1]) << 22 | uint64_t(at[2] & 0xFE) << 14 | uint64_t(at[3]) << 7 |
           at[4] >> 1;
}

static uint64_t subHeaderBytes(uint64_t subStreamId)
{
    return subStreamId == 0 ? 0 : subStreamId >= 0xA0 ? 7 : subStreamId >= 0x80 ? 4 : 1;
}

std::vector<PesPack> packsOf(const Bytes& program, uint64_t streamId, uint64_t subStreamId)
{
    std::vector<PesPack> packs;
    for (uint64_t sector = 0; sector + 2048 <= program.size(); sector += 2048) {
        const uint8_t* pack = program.data() + sector;
        if (pack[17] != streamId) continue;
        const uint64_t end = 20 + (uint64_t(pack[18]) << 8 | pack[19]), data = 23 + uint64_t(pack[22]);
        const uint64_t sub = streamId == 0xBD ? pack[data] : 0;
        if (sub != subStreamId) continue;
        const bool hasPts = (pack[21] & 0x80) != 0;
        const uint64_t at = data + subHeaderBytes(sub);
        packs.push_back({ streamId, sub, hasPts, hasPts ? timeStamp(pack + 23) : 0, at, Bytes(pack + at, pack + end) });
    }
    return packs;
}

uint64_t videoDelayOf(const Bytes& video, uint64_t streams)
{
    uint64_t pictures = 0, third = 0;
    for (uint64_t at = 0; at + 4 <= video.size() && pictures < 3; at++) {
        const bool picture = video[at] == 0 && video[at + 1] == 0 && video[at + 2] == 1 && video[at + 3] == 0;
        if (picture && ++pictures == 3) third = at;
    }
    EXPECT_EQ(pictures, 3u);
    const uint64_t packs = (third + (streams - 1) * 4096 + 2019) / 2020;
    return (packs + 4) * 43886 / 300;
}
