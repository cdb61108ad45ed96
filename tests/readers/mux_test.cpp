// mux_test.cpp: real streams, multiplexed through the library and taken apart again by ffmpeg: what comes back, when it
// begins, and whether it decodes.
#include "tests/readers/mux_rig.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace fs = std::filesystem;

namespace {

// ---- readers ------------------------------------------------------------------------------------------------------

/** One stream of a program, as ffmpeg takes it out of its packs. */
Bytes demuxed(const fs::path& program, const std::string& stream, const std::string& form)
{
    const fs::path out = shelve({});
    runEncoder("-i " + program.string() + " -map 0:" + stream + " " + form + " " + out.string());
    return bytesOf(out);
}

/** What ffmpeg complains about while it decodes everything. */
std::string decodingErrors(const fs::path& program)
{
    const fs::path errors = shelve({});
    const std::string command = std::string(ORVEN_FFMPEG) + " -nostdin -v error -xerror -i " + program.string() +
                                " -map 0:v -map '0:a?' -f null - 2> " + errors.string();
    const int result = std::system(command.c_str());
    const Bytes text = bytesOf(errors);
    return std::string(text.begin(), text.end()) + (result ? "it has given up" : "");
}

// ---- sounds -------------------------------------------------------------------------------------------------------

struct Sound {
    const char* options;   // of the encoder
    const char* ending;    // its form
    uint64_t flags;
    const char* id;   // of the stream in a program, as ffmpeg counts, but for its number
    uint64_t streamId, subStreamId;
};

const Sound AC3_192 = { "-c:a ac3 -b:a 192k -ac 2", "ac3", ORV_MUX_AC3, "0x8", 0xBD, 0x80 };
const Sound AC3_448 = { "-c:a ac3 -b:a 448k -ac 6", "ac3", ORV_MUX_AC3, "0x8", 0xBD, 0x80 };
const Sound AC3_ANY = { "-c:a ac3 -b:a 448k -ac 6", "ac3", ORV_MUX_AC3_ANY, "0x8", 0xBD, 0x80 };
const Sound LAYER2_224 = { "-c:a mp2 -b:a 224k -ac 2", "mp2", ORV_MUX_MPEG_AUDIO, "0x1c", 0xC0, 0 };

struct MuxCase {
    const char* what;
    Standard standard;
    std::vector<Sound> sounds;
};

// A first chunk of the sounds must begin a frame; then any cut does.
std::vector<MuxInput> inputsOf(const MuxCase& mux)
{
    std::vector<MuxInput> inputs = { { ORV_MUX_VIDEO, bytesOf(realVideo(mux.standard, 3)) } };
    for (const Sound& sound : mux.sounds) {
        const bool ends = sound.flags != ORV_MUX_MPEG_AUDIO;
        inputs.push_back({ sound.flags, bytesOf(realSound(sound.options, sound.ending, 3)), {}, ends });
    }
    return inputs;
}

TEST(Mux, StreamsComeBackUnchanged)
{
    const MuxCase cases[] = {
        { "PAL without sound", PAL, {} },
        { "PAL, AC-3 of 192", PAL, { AC3_192 } },
        { "PAL, AC-3 of 448 and layer 2", PAL, { AC3_448, LAYER2_224 } },
        { "NTSC, AC-3 of 448", NTSC, { AC3_448 } },
        { "NTSC, layer 2, AC-3 of 192, AC-3 in any chunks", NTSC, { LAYER2_224, AC3_192, AC3_ANY } },
    };
    for (const MuxCase& mux : cases) {
        SCOPED_TRACE(mux.what);
        const std::vector<MuxInput> inputs = inputsOf(mux);
        const Bytes program = multiplex(inputs);
        const fs::path file = shelve(program);
        EXPECT_TRUE(demuxed(file, "v", "-c copy -f mpeg2video") == inputs[0].bytes);
        const uint64_t delay = videoDelayOf(inputs[0].bytes, inputs.size()), frame = mux.standard == PAL ? 3600 : 3003;
        const std::vector<PesPack> pictures = packsOf(program, 0xE0, 0);
        ASSERT_FALSE(pictures.empty());
        EXPECT_EQ(pictures[0].pts, delay + frame);
        for (size_t i = 0; i < mux.sounds.size(); i++) {
            const Sound& sound = mux.sounds[i];
            SCOPED_TRACE(sound.options);
            const std::string stream = "i:" + std::string(sound.id) + std::to_string(i);
            EXPECT_TRUE(demuxed(file, stream, "-c copy -f " + std::string(sound.ending)) == inputs[i + 1].bytes);
            const std::vector<PesPack> packs = packsOf(program, sound.subStreamId ? sound.streamId : sound.streamId + i,
                                                       sound.subStreamId ? sound.subStreamId + i : 0);
            ASSERT_FALSE(packs.empty());
            EXPECT_TRUE(packs[0].hasPts);
            EXPECT_EQ(packs[0].pts, delay + frame);
        }
        EXPECT_EQ(decodingErrors(file), "");
    }
}

// ---- LPCM ---------------------------------------------------------------------------------------------------------

void putLittle(Bytes* bytes, uint64_t value, int count)
{
    for (int i = 0; i < count; i++) bytes->push_back(uint8_t(value >> 8 * i));
}

/** A WAVEFORMATEX of plain PCM at 48 kHz. */
Bytes waveFormat(uint64_t channels, uint64_t bits)
{
    const uint64_t block = channels * bits / 8;
    Bytes format;
    putLittle(&format, 1, 2);
    putLittle(&format, channels, 2);
    putLittle(&format, 48000, 4);
    putLittle(&format, 48000 * block, 4);
    putLittle(&format, block, 2);
    putLittle(&format, bits, 2);
    putLittle(&format, 0, 2);
    return format;
}

/** Samples without a header; capacity is a full pack's, so that the last pack is full too. */
Bytes samples(const std::string& form, uint64_t channels, uint64_t capacity)
{
    Bytes bytes = bytesOf(realSound("-c:a pcm_" + form + " -ac " + std::to_string(channels), form, 2));
    bytes.resize(bytes.size() / capacity * capacity);
    return bytes;
}

Bytes joined(const std::vector<PesPack>& packs)
{
    Bytes all;
    for (const PesPack& pack : packs) all.insert(all.end(), pack.payload.begin(), pack.payload.end());
    return all;
}

TEST(Mux, SamplesOf16BitsComeBack)
{
    for (const uint64_t channels : { uint64_t(1), uint64_t(2) }) {
        SCOPED_TRACE(channels);
        const Bytes video = bytesOf(realVideo(PAL, 2)), pcm = samples("s16le", channels, 2008);
        const Bytes program =
            multiplex({ { ORV_MUX_VIDEO, video }, { ORV_MUX_LPCM, pcm, waveFormat(channels, 16), true } });
        const fs::path file = shelve(program);
        EXPECT_TRUE(demuxed(file, "v", "-c copy -f mpeg2video") == video);
        EXPECT_TRUE(demuxed(file, "i:0xa0", "-c:a pcm_s16le -f s16le") == pcm);
        const std::vector<PesPack> packs = packsOf(program, 0xBD, 0xA0);
        ASSERT_FALSE(packs.empty());
        EXPECT_EQ(packs[0].pts, videoDelayOf(video, 2) + 3600);
        EXPECT_EQ(decodingErrors(file), "");
    }
}

/** Groups of 12 bytes put in another order. */
Bytes regrouped(const Bytes& bytes, uint64_t from, uint64_t to, const std::vector<uint64_t>& order)
{
    Bytes result;
    for (uint64_t at = from; at < to; at += order.size()) {
        for (const uint64_t place : order) result.push_back(bytes.at(at + place));
    }
    return result;
}

// The first pack has its samples from byte 44 on, the others from byte 35. What stands at which byte of a group of four
// samples then follows from the words that are exchanged, worked out by hand. A player wants 2 1 5 4 8 7 11 10 0 3 6 9.
TEST(Mux, SamplesOf24BitsAreCountedButNotFound)
{
    const std::vector<uint64_t> first = { 0, 1, 2, 3, 6, 7, 11, 8, 11, 8, 5, 2 },
                                later = { 0, 3, 4, 11, 8, 9, 10, 5, 2, 9, 10, 11 };
    const Bytes video = bytesOf(realVideo(NTSC, 2)), pcm = samples("s24le", 2, 2004);
    const Bytes program = multiplex({ { ORV_MUX_VIDEO, video }, { ORV_MUX_LPCM, pcm, waveFormat(2, 24), true } });
    const fs::path file = shelve(program);
    EXPECT_TRUE(demuxed(file, "v", "-c copy -f mpeg2video") == video);
    EXPECT_EQ(demuxed(file, "i:0xa0", "-c:a pcm_s24le -f s24le").size(), pcm.size());
    const std::vector<PesPack> packs = packsOf(program, 0xBD, 0xA0);
    ASSERT_GT(packs.size(), 2u);
    EXPECT_EQ(packs[0].pts, videoDelayOf(video, 2) + 3003);
    EXPECT_EQ(packs[0].at, 44u);
    EXPECT_EQ(packs[1].at, 35u);
    Bytes expected = regrouped(pcm, 0, 2004, first);
    const Bytes rest = regrouped(pcm, 2004, pcm.size(), later);
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_TRUE(joined(packs) == expected);
    EXPECT_EQ(decodingErrors(file), "");
}

// Behind the first pack the samples begin at the odd byte 35, so the pairs are shifted by one: the last byte of the
// header, 80, comes first, and then every pair of what follows is exchanged.
TEST(Mux, SamplesOfSixChannelsAreCountedButNotFound)
{
    const Bytes video = bytesOf(realVideo(PAL, 2)), pcm = samples("s16le", 6, 1992);
    const Bytes program = multiplex({ { ORV_MUX_VIDEO, video }, { ORV_MUX_LPCM, pcm, waveFormat(6, 16), true } });
    const fs::path file = shelve(program);
    EXPECT_TRUE(demuxed(file, "v", "-c copy -f mpeg2video") == video);
    EXPECT_EQ(demuxed(file, "i:0xa0", "-c:a pcm_s16le -f s16le").size(), pcm.size());
    const std::vector<PesPack> packs = packsOf(program, 0xBD, 0xA0);
    ASSERT_GT(packs.size(), 2u);
    EXPECT_EQ(packs[0].pts, videoDelayOf(video, 2) + 3600);
    EXPECT_EQ(packs[0].at, 38u);
    EXPECT_EQ(packs[1].at, 35u);
    Bytes expected = regrouped(pcm, 0, 1992, { 1, 0 });
    for (uint64_t at = 1992; at < pcm.size(); at += 1992) {
        expected.push_back(0x80);
        const Bytes pairs = regrouped(pcm, at + 1, at + 1991, { 1, 0 });
        expected.insert(expected.end(), pairs.begin(), pairs.end());
        expected.push_back(pcm[at + 1991]);
    }
    EXPECT_TRUE(joined(packs) == expected);
    EXPECT_EQ(decodingErrors(file), "");
}

}   // namespace
