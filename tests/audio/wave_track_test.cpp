// The direct driver: what it takes of WAVE files, when it waits, what it reports, and the files that it refuses.
#include "audio/wave_track.h"
#include "base/result.h"
#include "tests/audio/wave_rig.h"
#include "tests/support/aob_reader.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

const ModelTrack STEREO = {};
const ModelTrack FORMATS[] = { { 2, 1, 16, 48000 },  { 2, 1, 24, 44100 },  { 4, 3, 16, 96000 },  { 4, 3, 24, 48000 },
                               { 5, 19, 16, 44100 }, { 5, 19, 24, 48000 }, { 6, 20, 16, 96000 }, { 6, 20, 24, 48000 } };

// Samples of a channel in a track's first pack.
uint64_t firstSamples(const ModelTrack& track)
{
    return aobRow(track.channels, track.bits)->firstPayload / (track.channels * track.bits / 8);
}

// A stereo track of 16 bits with so many samples, whose values are 0x0101, 0x0202, ... in the left channel and
// 0x0181, 0x0282, ... in the right.
ModelWave countedWave(uint64_t samples)
{
    Channels channels(2);
    for (uint64_t i = 1; i <= samples; i++) {
        channels[0].push_back(int32_t(i % 100 << 8 | i % 100));
        channels[1].push_back(int32_t(i % 100 << 8 | (0x80 + i % 100)));
    }
    return waveOf(STEREO, channels, true);
}

}   // namespace

// A source ends with its first pack, however much is left in it: a complete track is made by the callback driver.
TEST(WaveTrack, EndsWithItsFirstPack)
{
    const WaveRun run = runWaves({ countedWave(5000) });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.packs(), 1u);
    EXPECT_EQ(run.hexAt(0, 0, 64), "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 "
                                   "00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A "
                                   "00 00 01 BD 07 DA 81 81 08 21 00 01 00 01 1E 60 0A "
                                   "A0 00 00 0B 00 0A 10 0F 0F 00 01 80 00 00 00");
    EXPECT_EQ(run.hexAt(0, 64, 12), "01 01 01 81 02 02 02 82 03 03 03 83");
    EXPECT_EQ(run.hexAt(0, 2044, 4), "60 60 60 E0");   // the 496th
    EXPECT_EQ(run.tracks, (std::vector<ModelWaveResult>{ { 0, 1, 20044 } }));
    EXPECT_EQ(run.clock.bytesMuxed, 1984u);
    EXPECT_EQ(run.clock.clock, 0u);
}

TEST(WaveTrack, SamplesOfEachFormat)
{
    for (const ModelTrack& format : FORMATS) {
        for (const bool oneFile : { true, false }) {
            if (oneFile && format.channels != 2) continue;
            for (const uint64_t start : { 0u, 1u, 500u }) {
                SCOPED_TRACE(testing::Message() << format.channels << " channels, " << format.bits << " bits, one file "
                                                << oneFile << ", from " << start);
                const Channels channels = makeChannels(format.channels, format.bits, 1200, 5);
                ModelWave wave = waveOf(format, channels, oneFile);
                wave.startSample = start;
                const WaveRun run = runWaves({ wave });
                ASSERT_EQ(run.result, 0u);
                const AobFile file = readAob(run.aob);
                EXPECT_EQ(describeFaults(file), "");
                ASSERT_EQ(file.tracks.size(), 1u);
                EXPECT_EQ(file.tracks[0].packs.size(), 1u);
                EXPECT_EQ(file.tracks[0].assignment, format.assignment);
                EXPECT_EQ(file.tracks[0].rate, format.rate);
                ASSERT_EQ(file.tracks[0].samples.size(), format.channels);
                for (size_t channel = 0; channel < format.channels; channel++) {
                    const auto from = channels[channel].begin() + int64_t(start);
                    EXPECT_EQ(file.tracks[0].samples[channel],
                              std::vector<int32_t>(from, from + int64_t(firstSamples(format))));
                }
                EXPECT_EQ(run.tracks[0].sourceSize, wave.files[0].size());
            }
        }
    }
}

// Two channels come from one file unless they are said to lie in two; whatever the assignment, they are laid as stereo.
TEST(WaveTrack, TwoChannels)
{
    const Channels channels = makeChannels(2, 16, 600, 9);
    ModelWave wave = waveOf(STEREO, channels, true);
    const Bytes should = runWaves({ wave }).aob;
    wave.files.push_back({});   // a second file that is none is not looked at
    EXPECT_EQ(firstDifference(runWaves({ wave }).aob, should), "");
    EXPECT_EQ(firstDifference(runWaves({ waveOf(STEREO, channels, false) }).aob, should), "");
    wave.multiFile = 2;
    EXPECT_EQ(firstDifference(runWaves({ wave }).aob, should), "");
    wave.multiFile = 1;
    EXPECT_EQ(runWaves({ wave }).result, ORV_WRONG_WAVE);

    wave.multiFile = 0;
    wave.track.assignment = 18;
    const WaveRun run = runWaves({ wave });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.hexAt(0, 49 + 7, 4), "00 00 00 12");
    EXPECT_EQ(run.hexAt(0, 64, 1984), toHex(should.data() + 64, 1984));
}

// More channels go by the assignment; those that packs do not know give a pack of headers.
TEST(WaveTrack, AssignmentsWithoutUnits)
{
    for (const uint64_t channels : { 4u, 5u, 6u }) {
        for (const uint64_t assignment : { 5u, 8u, 12u, 14u, 17u, 18u }) {
            const ModelTrack format = { channels, assignment, 16, 48000 };
            const WaveRun run = runWaves({ waveOf(format, makeChannels(channels, 16, 600, 3), false) });
            EXPECT_EQ(run.result, 0u);
            ASSERT_EQ(run.packs(), 1u);
            const uint64_t header = channels == 4 ? 64 : channels == 5 ? 68 : 63;
            EXPECT_EQ(run.hexAt(0, header, PACK_BYTES - header), toHex(Bytes(PACK_BYTES - header)));
            EXPECT_EQ(run.clock.bytesMuxed, 0u);
            EXPECT_EQ(run.tracks[0].blockSize, 1u);
        }
    }
    // Fewer files than the assignment has channels: nothing is read of those that are not there.
    for (const uint64_t channels : { 4u, 5u, 6u }) {
        for (const uint64_t assignment : { 3u, 19u, 20u }) {
            for (const uint64_t bits : { 16u, 24u }) {
                const ModelTrack format = { channels, assignment, bits, 48000 };
                const WaveRun run = runWaves({ waveOf(format, makeChannels(channels, bits, 600, 3), false) });
                EXPECT_EQ(run.result, 0u);
                EXPECT_EQ(run.packs(), 1u);
            }
        }
    }
}

// What is taken: (endSample + 1) samples and all that the file has behind the place where reading begins, if that is
// less than fits. What the file does not give is silence.
TEST(WaveTrack, BytesOfAShortFile)
{
    static const struct {
        uint64_t samples, start, end;   // of the file
        uint64_t taken;                 // bytes
        const char* length;             // of the packet: 2010 less the gap of 1984 - taken
    } CASES[] = {
        { 10, 0, 9, 80, "00 6A" },                                   // (9 + 1 + 10) x 4
        { 10, 0, 0, 44, "00 46" },      { 10, 4, 9, 64, "00 5A" },   // (9 + 1 + 6) x 4
        { 10, 10, 9, 40, "00 42" },                                  // all is silence
        { 0, 0, 0, 4, "00 1E" },        { 100, 90, 99, 440, "01 D2" },
        { 247, 0, 246, 1976, "07 D2" },   // 494 samples: a gap of 8
        { 248, 0, 246, 1980, "07 DA" },   // 495: a gap of 4, in the pack header
        { 248, 0, 247, 1984, "07 DA" },   // 496
    };
    for (const auto& each : CASES) {
        SCOPED_TRACE(testing::Message() << each.samples << " samples from " << each.start << " to " << each.end);
        ModelWave wave = countedWave(std::max<uint64_t>(each.samples, 1));
        wave.files[0].resize(44 + each.samples * 4);
        wave.startSample = each.start;
        wave.endSample = each.end;
        const WaveRun run = runWaves({ wave });
        EXPECT_EQ(run.result, 0u);
        ASSERT_EQ(run.packs(), 1u);
        const uint64_t gap = 1984 - each.taken, stuffing = gap < 8 ? gap : 0;
        EXPECT_EQ(run.hexAt(0, 13, 1), toHex({ uint8_t(0xF8 | stuffing) }));
        EXPECT_EQ(run.hexAt(0, 36 + stuffing, 2), each.length);
        Bytes should(wave.files[0].begin() + int64_t(44 + each.start * 4), wave.files[0].end());
        should.resize(each.taken);
        for (size_t i = 0; i < should.size(); i += 2) std::swap(should[i], should[i + 1]);
        EXPECT_EQ(run.hexAt(0, 64 + stuffing, each.taken), toHex(should));
        EXPECT_EQ(run.hexAt(0, 64 + stuffing + each.taken, 4), gap < 8 ? "" : "00 00 01 BE");
        EXPECT_EQ(run.clock.bytesMuxed, each.taken);
        EXPECT_EQ(run.tracks, (std::vector<ModelWaveResult>{ { 0, 1, 44 + each.samples * 4 } }));
    }
}

// With one file a channel the sum counts once for each.
TEST(WaveTrack, BytesOfShortFilesOfOneChannel)
{
    const ModelTrack format = { 4, 3, 24, 48000 };
    ModelWave wave = waveOf(format, makeChannels(4, 24, 10, 8), false);
    WaveRun run = runWaves({ wave });
    ASSERT_EQ(run.packs(), 1u);
    // (9 + 1 + 10) samples of 3 bytes, four times, are 240: ten units. The gap is 2048 - 63 - 240 = 1745
    EXPECT_EQ(run.clock.bytesMuxed, 240u);
    EXPECT_EQ(run.hexAt(0, 36, 2), "01 09");                     // 1993 + 17 - 1745
    EXPECT_EQ(run.hexAt(0, 303, 7), "00 00 01 BE 06 CB FF");     // 1739
    EXPECT_EQ(run.hexAt(0, 63 + 120, 120), toHex(Bytes(120)));   // ten times of silence
    wave.endSample = 10;                                         // an odd sample more, which is dropped
    run = runWaves({ wave });
    EXPECT_EQ(run.clock.bytesMuxed, 240u);
    wave.endSample = 11;
    run = runWaves({ wave });
    EXPECT_EQ(run.clock.bytesMuxed, 264u);

    const ModelTrack stereo = { 2, 1, 16, 48000 };
    run = runWaves({ waveOf(stereo, makeChannels(2, 16, 10, 8), false) });
    EXPECT_EQ(run.clock.bytesMuxed, 80u);
    const ModelTrack stereo24 = { 2, 1, 24, 48000 };
    run = runWaves({ waveOf(stereo24, makeChannels(2, 24, 9, 8), true) });
    EXPECT_EQ(run.clock.bytesMuxed, 108u);   // (9 + 9) samples are nine units
}

// Past the last byte of a file there is silence, in each file by itself.
TEST(WaveTrack, FilesOfUnequalLength)
{
    const ModelTrack format = { 6, 20, 24, 48000 };
    const Channels channels = makeChannels(6, 24, 110, 8);
    ModelWave wave = waveOf(format, channels, false);
    wave.endSample = 1000;
    const uint64_t lengths[] = { 110, 0, 50, 109, 1, 110 };
    for (size_t channel = 0; channel < 6; channel++) wave.files[channel].resize(44 + lengths[channel] * 3);
    const WaveRun run = runWaves({ wave });
    ASSERT_EQ(run.result, 0u);
    const AobFile file = readAob(run.aob);
    EXPECT_EQ(describeFaults(file), "");
    for (size_t channel = 0; channel < 6; channel++) {
        std::vector<int32_t> should = channels[channel];
        should.resize(lengths[channel]);
        should.resize(110);
        EXPECT_EQ(file.tracks.at(0).samples.at(channel), should) << channel;
    }
    EXPECT_EQ(run.tracks, (std::vector<ModelWaveResult>{ { 0, 1, 44 + 110 * 3 } }));   // the size of the last one

    // What is taken goes by that size too: (10 + 1 + 4) samples, and one of them has no partner.
    wave.endSample = 10;
    wave.files[5].resize(44 + 4 * 3);
    EXPECT_EQ(runWaves({ wave }).clock.bytesMuxed, 14 * 6 * 3u);
}

TEST(WaveTrack, StartBehindTheFile)
{
    ModelWave wave = countedWave(100);
    for (const uint64_t start : { uint64_t(101), uint64_t(1000), uint64_t(0xFFFFFFFF) }) {
        wave.startSample = start;
        for (const uint64_t end : { uint64_t(0), uint64_t(99), start }) {
            wave.endSample = end;
            const WaveRun run = runWaves({ wave });
            EXPECT_EQ(run.result, 0u);
            ASSERT_EQ(run.packs(), 1u);
            // Samples that are behind the end count against those that are asked for; less than none are none.
            const uint64_t taken = end + 1 + 100 > start ? std::min<uint64_t>((end + 1 + 100 - start) * 4, 1984) : 0;
            EXPECT_EQ(run.clock.bytesMuxed, taken);
            const uint64_t stuffing = taken == 1980 ? 4 : 0;
            EXPECT_EQ(run.hexAt(0, 64 + stuffing, taken), toHex(Bytes(taken)));
        }
    }
}

// ---- the file's structure ---------------------------------------------------------------------------------------

TEST(WaveTrack, HeadersThatPass)
{
    const Bytes samples = pcmBytes(makeChannels(2, 16, 600, 4), 16);
    const Bytes should = runWaves({ waveOf(STEREO, makeChannels(2, 16, 600, 4), true) }).aob;
    std::vector<std::pair<const char*, Bytes>> files;
    files.push_back({ "two bytes of extension", waveFile({ .samples = samples, .formatExtra = Bytes(2) }) });
    files.push_back({ "extensible", waveFile({ .samples = samples, .formatExtra = Bytes(24, 0x64) }) });
    files.push_back({ "a chunk before", waveFile({ .samples = samples, .before = { { "LIST", Bytes(26, 'd') } } }) });
    files.push_back({ "an empty chunk and another",
                      waveFile({ .samples = samples, .before = { { "JUNK" }, { "bext", Bytes(602, 'd') } } }) });
    files.push_back(
        { "other channels, bits and rate", waveFile({ .channels = 1, .bits = 8, .rate = 8000, .samples = samples }) });
    Bytes file = waveFile({ .samples = samples });
    file[19] = 0x7F;   // the size's highest byte does not count
    files.push_back({ "a huge format", file });
    file = waveFile({ .samples = samples });
    std::fill(file.begin() + 4, file.begin() + 8, uint8_t(0));
    files.push_back({ "no size of the file", file });
    file = waveFile({ .samples = samples });
    std::fill(file.begin() + 40, file.begin() + 44, uint8_t(0xFF));
    files.push_back({ "no size of the data", file });
    for (const auto& [what, bytes] : files) {
        const WaveRun run = runWaves({ { .endSample = 599, .files = { bytes } } });
        EXPECT_EQ(run.result, 0u) << what;
        EXPECT_EQ(firstDifference(run.aob, should), "") << what;
        EXPECT_EQ(run.tracks, (std::vector<ModelWaveResult>{ { 0, 1, bytes.size() } })) << what;
    }
}

// What lies behind the data counts as samples.
TEST(WaveTrack, ChunkBehindTheData)
{
    const Bytes samples = pcmBytes(makeChannels(2, 16, 5, 4), 16);
    const Bytes file = waveFile({ .samples = samples, .behind = { { "LIST", fromHex("61 62 63 64") } } });
    const WaveRun run = runWaves({ { .endSample = 4, .files = { file } } });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.clock.bytesMuxed, (5 + 5 + 3) * 4u);
    EXPECT_EQ(run.hexAt(0, 64 + 20, 12), "49 4C 54 53 00 04 00 00 62 61 64 63");
}

TEST(WaveTrack, HeadersThatDoNot)
{
    const Bytes good = waveFile({ .samples = Bytes(2000), .before = { { "LIST", Bytes(4) } } });
    std::vector<std::pair<const char*, Bytes>> files = { { "an empty file", {} } };
    static const struct {
        const char* what;
        size_t at;
    } NAMES[] = { { "RIFF", 0 }, { "RIFF", 3 }, { "WAVE", 8 },  { "WAVE", 11 },
                  { "fmt", 12 }, { "fmt", 15 }, { "data", 48 }, { "data", 51 } };
    for (const auto& each : NAMES) {
        Bytes file = good;
        file[each.at] ^= 0x20;   // the other case is another name
        files.push_back({ each.what, file });
    }
    // Cut before the data: 12 of the file, 24 of the format, 12 of the list, 4 of the name.
    for (const size_t size : { 1u, 3u, 4u, 8u, 11u, 12u, 15u, 16u, 19u, 20u, 35u, 36u, 40u, 44u, 48u, 51u }) {
        Bytes file = good;
        file.resize(size);
        files.push_back({ "cut", file });
    }
    Bytes file = good;
    file[18] = 1;   // the format goes on past the end
    files.push_back({ "format too long", file });
    file = good;
    file[16] = 17;   // one byte on, there are no names
    files.push_back({ "format of another length", file });
    file = good;
    file[42] = 1;
    files.push_back({ "list too long", file });
    for (const auto& [what, bytes] : files) {
        const WaveRun run = runWaves({ { .endSample = 100, .files = { bytes } } });
        EXPECT_EQ(run.result, 0x84001783u) << what << ", " << bytes.size() << " bytes";
        EXPECT_EQ(run.aob, Bytes()) << what;
        EXPECT_TRUE(run.progress.empty());
        // Of several files each is looked at.
        const ModelTrack format = { 4, 3, 16, 48000 };
        for (size_t channel = 0; channel < 4; channel++) {
            ModelWave wave = waveOf(format, makeChannels(4, 16, 300, 2), false);
            wave.files[channel] = bytes;
            EXPECT_EQ(runWaves({ wave }).result, ORV_WRONG_WAVE) << what << ", channel " << channel;
        }
    }
    EXPECT_EQ(ORV_WRONG_WAVE, 0x84001783u);
}

// ---- codes ------------------------------------------------------------------------------------------------------

TEST(WaveTrack, WithoutAFile)
{
    const WaveRun run = runWaves({ countedWave(100) }, { .noFile = true });
    EXPECT_EQ(run.result, 0x84001784u);
    EXPECT_EQ(run.result, ORV_WRONG_AOB_FILE);
    EXPECT_TRUE(run.progress.empty());
    // Before the source is looked at.
    EXPECT_EQ(runWaves({ { .files = { {} } } }, { .noFile = true }).result, 0x84001784u);
}

TEST(WaveTrack, FileThatCantBeWritten)
{
    const WaveRun run = runWaves({ countedWave(100) }, { .readOnly = true });
    EXPECT_EQ(run.result, ORV_AOB_NOT_WRITTEN);
    EXPECT_EQ(run.aob, Bytes());
    EXPECT_TRUE(run.progress.empty());
}

TEST(WaveTrack, FormatsThatPacksDoNotCarry)
{
    ModelWave wave = countedWave(100);
    wave.track.rate = 32000;
    EXPECT_EQ(runWaves({ wave }).result, ORV_WRONG_SAMPLE_RATE);
    wave.track.bits = 20;
    EXPECT_EQ(runWaves({ wave }).result, ORV_WRONG_SAMPLE_RATE);
    wave.track.rate = 48000;
    EXPECT_EQ(runWaves({ wave }).result, ORV_SAMPLE_SIZE_20_UNSUPPORTED);
    for (const uint64_t channels : { 1u, 3u }) {
        const ModelTrack format = { channels, channels == 1 ? 0u : 2u, 16, 48000 };
        const WaveRun run = runWaves({ waveOf(format, makeChannels(channels, 16, 300, 2), false) });
        EXPECT_EQ(run.result, ORV_SAMPLE_SIZE_20_UNSUPPORTED);
        EXPECT_EQ(run.aob, Bytes());
    }
}

TEST(WaveTrack, SourceThatIsNotThere)
{
    const TempDir folder;
    std::u16string missing = folder / u"missing.wav";
    for (char16_t* const path : { missing.data(), static_cast<char16_t*>(nullptr) }) {
        const auto context = std::make_unique<AudioDiscContext>();
        context->head.titleSetCount = 1;
        const auto titleSet = std::make_unique<AudioTitleSetDesc>();
        titleSet->trackCount = 1;
        titleSet->tracks[0] = trackRecord(2, 1, 16, 48000);
        titleSet->tracks[0].channelPaths[0] = path;
        OSFILE aob = 0;
        ASSERT_EQ(osOpenFile((folder / u"aob").c_str(), OS_CREATE, &aob), 0u);
        AobClock clock = {};
        // The platform has number 2 for it, both here and there; a key that was missing is an argument that is.
        EXPECT_EQ(orvMuxWaveTrack(context.get(), aob, titleSet.get(), 0, 1, &clock), path ? 2u : OS_INVALID_ARGUMENT);
        EXPECT_EQ(osCloseFile(&aob), 0u);
        EXPECT_EQ(readFile(folder / u"aob"), Bytes());
    }
}

// ---- progress ---------------------------------------------------------------------------------------------------

TEST(WaveTrack, ReportsProgress)
{
    typedef std::vector<ProgressCall> Calls;
    // One track is a hundred percent: 100 - 90 + 1 x 102, of 1 x 102 + 25.
    EXPECT_EQ(runWaves({ countedWave(600) }).progress, (Calls{ { 127, 112, 1 } }));
    // Third of four title sets with three tracks: 33, 66 and 100 percent, of 4 x 102 + 25.
    const std::vector<ModelWave> three(3, countedWave(600));
    const WaveRun run = runWaves(three, { .atsNumber = 3, .titleSets = 4 });
    EXPECT_EQ(run.progress, (Calls{ { 433, 249, 1 }, { 433, 282, 1 }, { 433, 316, 1 } }));
    EXPECT_EQ(run.packs(), 3u);
    const WaveRun silent = runWaves(three, { .noCallback = true });
    EXPECT_EQ(silent.result, 0u);
    EXPECT_EQ(silent.aob, run.aob);
}

TEST(WaveTrack, CanBeCanceled)
{
    const std::vector<ModelWave> three(3, countedWave(600));
    for (const uint64_t at : { 1u, 2u, 3u }) {
        const WaveRun run = runWaves(three, { .cancelAt = at });
        EXPECT_EQ(run.result, 0x8400040Au);
        EXPECT_EQ(run.packs(), at);
        EXPECT_EQ(run.progress.size(), at);
    }
}

// ---- tracks that follow -----------------------------------------------------------------------------------------

TEST(WaveTrack, TracksGoOn)
{
    const ModelTrack format = { 2, 1, 24, 44100 };
    const WaveRun run = runWaves({ countedWave(600), waveOf(format, makeChannels(2, 24, 600, 2), true) });
    ASSERT_EQ(run.packs(), 2u);
    // The clock is that of the first track's only pack. 1984 bytes are 8.27 frames of 240: the 9th, at 734.69 ticks.
    EXPECT_EQ(run.hexAt(1, 0, 68), "00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 "
                                   "00 00 01 BB 00 0C 80 C4 E1 04 A0 7F B8 C0 40 BD E0 0A "
                                   "00 00 01 BD 07 DA 81 81 08 21 00 01 05 BD 1E 60 0A "
                                   "A0 00 00 0F 00 0E 10 2F 8F 00 01 80 00 00 00 00 00 00 00");
    EXPECT_EQ(run.tracks, (std::vector<ModelWaveResult>{ { 0, 1, 2444 }, { 734, 1, 3644 } }));
}

// Four first packs fill the buffer. A fifth has to wait until 8192 bytes less the fill are more than 1984, that is for
// eleven frames of 160. A decoder whose time lies behind the clock makes the clock jump by 2^63 - 1; in the round there
// nothing is taken, since more frames are due than there are, and the next jump leads back by the carry. The fifth pack
// goes out in such a round: at 9,223,372,039,982,490,093, which is tick 3,074,457,346,660 and 249; 32 bits are stored.
TEST(WaveTrack, WaitsForTheDecoder)
{
    const WaveRun run = runWaves(std::vector<ModelWave>(6, countedWave(600)));
    ASSERT_EQ(run.result, 0u);
    ASSERT_EQ(run.packs(), 6u);
    static const struct {
        const char *clock, *pts;
    } PACKS[] = {
        { "44 00 04 00 04 01", "21 00 01 00 01" },   // 0
        { "44 00 04 00 04 01", "21 00 01 07 9F" },   // 12.4 frames: 975
        { "44 00 04 00 04 01", "21 00 01 0E A7" },   // 24.8: 1875
        { "44 00 04 00 04 01", "21 00 01 16 45" },   // 37.2: 2850
        { "5D 3F 05 13 25 F3", "21 00 01 1D 4D" },   // 49.6: 3750
        { "5D 3F 05 31 9D F3", "21 00 01 24 55" },   // 62: 4650
    };
    for (uint64_t pack = 0; pack < 6; pack++) {
        EXPECT_EQ(run.hexAt(pack, 4, 6), PACKS[pack].clock) << pack;
        EXPECT_EQ(run.hexAt(pack, 41, 5), PACKS[pack].pts) << pack;
    }
    // 24 frames were decoded before the sixth pack: 5 x 1984 - 24 x 160, and one more pack.
    EXPECT_EQ(run.clock.framesDecoded, 24u);
    // The last wait but one began at 23 frames, at 1725 ticks, and led a pack's time on; the last one another, and the
    // jump.
    EXPECT_EQ(run.clock.clock, 5'175'000'000u + 2 * 438'857'143u + 9'223'372'036'854'775'807u);
    EXPECT_EQ(run.clock.bufferFill, 6 * 1984u - 24 * 160);
    EXPECT_EQ(run.tracks.back(), (ModelWaveResult{ 4650, 1, 2444 }));
}

// A decoder that would run dry fails the callback driver alone.
TEST(WaveTrack, NeverRunsDry)
{
    const WaveRun run = runWaves({ countedWave(10) }, { .clock = { .clock = 438'857'143 } });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.packs(), 1u);
    EXPECT_EQ(run.hexAt(0, 4, 6), "44 00 04 04 94 AB");
    EXPECT_EQ(run.clock.framesDecoded, 0u);   // 80 bytes are less than a frame: nothing was taken
    EXPECT_EQ(run.clock.bufferFill, 80u);
}
