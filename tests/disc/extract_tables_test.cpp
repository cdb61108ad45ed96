// The tables of a disc as the two readers take them, byte for byte.
#include "tests/disc/extract_rig.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

namespace {

// ---- AUDIO_PP.IFO -----------------------------------------------------------------------------------------------

uint64_t readAudio(Extraction& run, const Bytes& ifo, bool opened)
{
    run.create();
    run.put("AUDIO_PP.IFO", ifo);
    run.infos.clear();
    run.context->opened = opened;
    return orvReadAudioTables(run.context, run.file("AUDIO_PP.IFO"), noteInfo(), userOf(&run));
}

// The stored bytes are taken for a little-endian number, the first track's sector is taken from that, and the bytes are
// exchanged last. Worked out for a first sector of 200, 00 00 00 C8, which little-endian is C8000000:
//   00 00 00 C8:  C8000000 - C8 = C7FFFF38, exchanged 38FFFFC7
//   00 00 01 2B:  2B010000 - C8 = 2B00FF38, exchanged 38FF002B
//   00 00 01 2C:  2C010000 - C8 = 2C00FF38, exchanged 38FF002C
//   00 01 00 00:  00000100 - C8 = 00000038, exchanged 38000000
//   00 00 00 00:  00000000 - C8 = FFFFFF38, exchanged 38FFFFFF
TEST(ExtractAudio, SubtractsBeforeTheSwap)
{
    Extraction run;
    const Bytes ifo = samgIfo({ { 200, 299 }, { 300, 0x10000 }, { 0, 200 } });
    ASSERT_EQ(readAudio(run, ifo, false), 0u);
    ASSERT_EQ(run.infos.size(), 3u);
    const ExtractTrack* tracks = run.context->tracks;
    EXPECT_EQ(tracks[0].firstSector, 0x38FFFFC7u);
    EXPECT_EQ(tracks[0].lastSector, 0x38FF002Bu);
    EXPECT_EQ(tracks[1].firstSector, 0x38FF002Cu);
    EXPECT_EQ(tracks[1].lastSector, 0x38000000u);
    EXPECT_EQ(tracks[2].firstSector, 0x38FFFFFFu);
    EXPECT_EQ(tracks[2].lastSector, 0x38FFFFC7u);
    // A first sector of 0 takes nothing away.
    ASSERT_EQ(readAudio(run, samgIfo({ { 0, 0x01020304 } }), false), 0u);
    EXPECT_EQ(run.context->tracks[0].firstSector, 0u);
    EXPECT_EQ(run.context->tracks[0].lastSector, 0x01020304u);
}

// d2wOpenDisc counts from the first track's sector, the tracks in whatever order.
TEST(ExtractAudio, PlainSectors)
{
    Extraction run;
    ASSERT_EQ(readAudio(run, samgIfo({ { 0x12345678, 0x12345679 }, { 0x1234567A, 0x1235567A } }), true), 0u);
    EXPECT_EQ(run.context->tracks[0].firstSector, 0u);
    EXPECT_EQ(run.context->tracks[0].lastSector, 1u);
    EXPECT_EQ(run.context->tracks[1].firstSector, 2u);
    EXPECT_EQ(run.context->tracks[1].lastSector, 0x10002u);
}

struct CodeCase {
    uint8_t sizes, rates;
    uint32_t size1, size2, rate1, rate2;
};

// clang-format off
const CodeCase CODES[] = {
    { 0x0F, 0x0F, 16, 76,  48000,      0 },
    { 0x2F, 0x1F, 24, 76,  96000,      0 },
    { 0x00, 0x00, 16, 16,  48000,  48000 },
    { 0x22, 0x22, 24, 24, 192000, 192000 },
    { 0x11, 0x88, 20, 20,  44100,  44100 },
    { 0x20, 0x9A, 24, 16,  88200, 176400 },
    { 0x02, 0xA9, 16, 24, 176400,  88200 },
    { 0x3C, 0x34, 28, 64,      0,      0 },
    { 0xF4, 0x57, 76, 32,      0,      0 },
    { 0x56, 0x6B, 36, 40,      0,      0 },
    { 0x78, 0xCD, 44, 48,      0,      0 },
    { 0x9A, 0xE1, 52, 56,      0,  96000 },
    { 0xBD, 0xF8, 60, 68,      0,  44100 },
    { 0xE0, 0x02, 72, 16,  48000, 192000 },
};
// clang-format on

TEST(ExtractAudio, CodesOfSizeAndRate)
{
    for (const CodeCase& row : CODES) {
        Extraction run;
        ASSERT_EQ(readAudio(run, samgIfo({ { 0, 0, 20, row.sizes, row.rates } }), false), 0u);
        const ExtractTrack& track = run.context->tracks[0];
        EXPECT_EQ(track.sampleSize1, row.size1) << int(row.sizes);
        EXPECT_EQ(track.sampleSize2, row.size2) << int(row.sizes);
        EXPECT_EQ(track.sampleRate1, row.rate1) << int(row.rates);
        EXPECT_EQ(track.sampleRate2, row.rate2) << int(row.rates);
    }
}

// A record written out by hand, and the bytes that the reader has no use for set to anything.
TEST(ExtractAudio, RecordByteForByte)
{
    Bytes ifo(16384, 0xEE);
    const Bytes head = fromHex("44 56 44 41 55 44 49 4F 53 41 50 50 00 01 EE EE EE EE");
    const Bytes record = fromHex("EE EE EE EE EE EE 00 01 5F 90 EE EE EE EE CF 22 88 F4 "   // offsets 0 to 17
                                 "EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE "
                                 "00 00 00 00 EE EE EE EE 00 00 02 01 EE EE");
    std::copy(head.begin(), head.end(), ifo.begin());
    std::copy(record.begin(), record.end(), ifo.begin() + 18);
    for (const bool opened : { false, true }) {
        Extraction run;
        ASSERT_EQ(readAudio(run, ifo, opened), 0u);
        EXPECT_EQ(run.context->sourceKind, SOURCE_AUDIO);
        ASSERT_EQ(run.infos.size(), 1u);
        EXPECT_EQ(run.infos[0].index, 0u);
        // first, last, time, assignment 0xF4 & 31, reserved, 24 bits twice, 44100 Hz twice
        EXPECT_EQ(textOf(run.infos[0].track), "0 513 90000 20 0 24 24 44100 44100");
        EXPECT_EQ(textOf(run.context->tracks[0]), textOf(run.infos[0].track));
    }
}

// Bit 4 of the attributes alone says it. The tracks in front of it are told, it and those behind it are not.
TEST(ExtractAudio, LosslessTrackEndsTheReading)
{
    struct Case {
        uint8_t attributes;
        uint64_t at, result;
    };
    const Case cases[] = {
        { 0x10, 2, MLP_FOUND }, { 0xD8, 0, MLP_FOUND }, { 0xFF, 1, MLP_FOUND }, { 0xEF, 1, 0 }, { 0xC8, 0, 0 }
    };
    for (const Case& row : cases) {
        for (const bool opened : { false, true }) {
            Extraction run;
            std::vector<SamgTrack> tracks = { { 0, 4 }, { 5, 9 }, { 10, 14 }, { 15, 19 } };
            tracks[row.at].attributes = row.attributes;
            EXPECT_EQ(readAudio(run, samgIfo(tracks), opened), row.result) << int(row.attributes);
            EXPECT_EQ(run.infos.size(), row.result ? row.at : 4u) << int(row.attributes);
            for (uint64_t i = 0; i < run.infos.size(); i++) EXPECT_EQ(run.infos[i].index, i);
            EXPECT_EQ(run.context->sourceKind, SOURCE_AUDIO);
        }
    }
}

TEST(ExtractAudio, TrackCounts)
{
    for (const uint64_t count : std::vector<uint64_t>{ 0, 1, 2, 98, 99 }) {
        Extraction run;
        ASSERT_EQ(readAudio(run, samgIfo(std::vector<SamgTrack>(count)), false), 0u);
        EXPECT_EQ(run.context->trackCount, count);
        EXPECT_EQ(run.infos.size(), count);
    }
    for (const uint16_t count : std::vector<uint16_t>{ 100, 255, 256, 314, 315, 0x8000, 0xFFFF }) {
        Extraction run;
        EXPECT_EQ(readAudio(run, samgIfo({ { 0, 0 } }, count), false), INVALID_SAMG) << count;
        EXPECT_EQ(run.infos.size(), 0u);
        EXPECT_LE(run.context->trackCount, MAX_EXTRACT_TRACKS);
    }
}

TEST(ExtractAudio, MarksAndShortFiles)
{
    const Bytes good = samgIfo({ { 0, 0 } });
    for (uint64_t i = 0; i < 12; i++) {
        Extraction run;
        Bytes ifo = good;
        ifo[i] ^= 0x20;
        EXPECT_EQ(readAudio(run, ifo, false), INVALID_SAMG) << i;
        EXPECT_EQ(run.context->sourceKind, SOURCE_AUDIO);
        EXPECT_EQ(run.infos.size(), 0u);
    }
    for (const uint64_t size : std::vector<uint64_t>{ 0, 1, 12, 70, 2048, 16383 }) {
        Extraction run;
        EXPECT_EQ(readAudio(run, Bytes(good.begin(), good.begin() + std::ptrdiff_t(size)), false), SAMG_NOT_READ)
            << size;
        EXPECT_EQ(run.context->sourceKind, SOURCE_AUDIO);
        EXPECT_EQ(run.infos.size(), 0u);
    }
    Extraction run;
    EXPECT_EQ(readAudio(run, good + Bytes(1), false), 0u);   // no more is read
    run.create();
    EXPECT_EQ(orvReadAudioTables(run.context, 0, noteInfo(), userOf(&run)), SAMG_NOT_READ);
    EXPECT_EQ(run.context->sourceKind, SOURCE_AUDIO);
}

TEST(ExtractAudio, NoCallback)
{
    Extraction run;
    run.put("AUDIO_PP.IFO", samgIfo({ { 0, 0 }, { 1, 1 } }));
    run.create();
    EXPECT_EQ(orvReadAudioTables(run.context, run.file("AUDIO_PP.IFO"), nullptr, 0), 0u);
    EXPECT_EQ(run.context->trackCount, 2u);
}

// ---- the parts of the sound -------------------------------------------------------------------------------------

// Sizes of ATS_01_1.AOB and on, in bytes; no size: no file. Each first sector is the sizes before it in bytes, summed,
// divided by 2048.
struct PartsCase {
    std::vector<std::optional<uint64_t>> sizes;
    uint64_t count;
    std::vector<uint64_t> firstSectors;
};

const PartsCase PARTS[] = {
    { {}, 0, { 0, 0, 0, 0, 0, 0, 0, 0, 0 } },
    { { 4096 }, 1, { 0, 2, 2, 2, 2, 2, 2, 2, 2 } },
    { { 4096, 2048, 6144 }, 3, { 0, 2, 3, 6, 6, 6, 6, 6, 6 } },
    { { 2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048 }, 9, { 0, 1, 2, 3, 4, 5, 6, 7, 8 } },
    { { 3000, 1096, 0, 2047, 1 }, 5, { 0, 1, 2, 2, 2, 3, 3, 3, 3 } },
    { { 2048, {}, 2048 }, 2, { 0, 1, 1, 2, 2, 2, 2, 2, 2 } },
    { { {}, 2048 }, 1, { 0, 0, 1, 1, 1, 1, 1, 1, 1 } },
};

TEST(ExtractParts, SizesAndFirstSectors)
{
    for (const bool video : { false, true }) {
        for (const bool opened : { false, true }) {
            for (const PartsCase& row : PARTS) {
                if (opened && row.count < row.sizes.size() && row.sizes.size() < 10) continue;   // gaps: below
                Extraction run;
                for (uint64_t i = 0; i < row.sizes.size(); i++) {
                    const std::string number = std::to_string(i + 1);
                    const std::string name = video ? "VTS_01_" + number + ".VOB" : "ATS_01_" + number + ".AOB";
                    if (row.sizes[i]) run.put(name, Bytes(*row.sizes[i]));
                }
                run.create();
                run.context->opened = opened;
                (void)orvOpenExtractFiles(run.context, video ? u"%sVTS_01_%.1d.VOB" : u"%sATS_01_%.1d.AOB");
                SCOPED_TRACE(testing::PrintToString(row.firstSectors));
                EXPECT_EQ(run.context->fileCount, row.count);
                const uint64_t* first = run.context->fileFirstSector;
                EXPECT_EQ(std::vector<uint64_t>(first, first + 9), row.firstSectors);
                for (uint64_t i = 0; i < 9; i++) {
                    const bool there = i < row.sizes.size() && row.sizes[i];
                    EXPECT_EQ(run.context->files[i] != 0, there && opened) << i;
                }
            }
        }
    }
}

// A disc that is read ends with its last part in a row: no part is taken for one that is missing or can't be opened.
TEST(ExtractParts, AnOpenedDiscHasNoGaps)
{
    Extraction run;
    run.put("ATS_01_1.AOB", Bytes(4096));
    run.put("ATS_01_3.AOB", Bytes(2048));
    run.create();
    run.context->opened = true;
    EXPECT_EQ(orvOpenExtractFiles(run.context, u"%sATS_01_%.1d.AOB"), 0u);
    EXPECT_EQ(run.context->fileCount, 1u);
    EXPECT_NE(run.context->files[0], 0u);
    for (uint64_t i = 1; i < 9; i++) {
        EXPECT_EQ(run.context->files[i], 0u);
        EXPECT_EQ(run.context->fileFirstSector[i], 2u);
    }
    run.release();
    std::filesystem::create_directory(std::filesystem::path(run.disc + u"ATS_01_2.AOB"));
    run.create();
    run.context->opened = true;
    EXPECT_NE(orvOpenExtractFiles(run.context, u"%sATS_01_%.1d.AOB"), 0u);
    run.release();
    run.create();   // d2wInitContext would not mind
    EXPECT_EQ(orvOpenExtractFiles(run.context, u"%sATS_01_%.1d.AOB"), 0u);
    EXPECT_EQ(run.context->fileCount, 2u);
}

// ---- VIDEO_TS.IFO and VTS_01_0.IFO ------------------------------------------------------------------------------

uint64_t readVideo(Extraction& run, const Bytes& manager, const Bytes& titleSet, bool opened = false)
{
    run.create();
    run.put("VIDEO_TS.IFO", manager);
    run.put("VTS_01_0.IFO", titleSet);
    run.infos.clear();
    run.context->opened = opened;
    return orvReadVideoTables(run.context, run.file("VIDEO_TS.IFO"), run.file("VTS_01_0.IFO"), noteInfo(),
                              userOf(&run));
}

TEST(ExtractVideo, TracksAreCells)
{
    // 1:02:03 and 10 frames are 3723 seconds; the frames and their rate do not count.
    const VideoIfoSpec recipe = {
        .cells = { { 0, 99, "00 00 01 40" }, { 100, 0x01020304, "01 02 03 50" }, { 0xFFFFFFFE, 5, "10 59 59 E9" } }
    };
    for (const bool opened : { false, true }) {
        Extraction run;
        ASSERT_EQ(readVideo(run, managerIfo(recipe), titleSetIfo(recipe), opened), 0u);
        EXPECT_EQ(run.context->sourceKind, SOURCE_VIDEO);
        EXPECT_EQ(run.context->trackCount, 3u);
        ASSERT_EQ(run.infos.size(), 3u);
        EXPECT_EQ(textOf(run.infos[0].track), "0 99 90000 1 0 16 0 48000 0");
        EXPECT_EQ(textOf(run.infos[1].track), "100 16909060 335070000 1 0 16 0 48000 0");
        // 39599 seconds
        EXPECT_EQ(textOf(run.infos[2].track), "4294967294 5 3563910000 1 0 16 0 48000 0");
        for (uint64_t i = 0; i < 3; i++) {
            EXPECT_EQ(run.infos[i].index, i);
            EXPECT_EQ(textOf(run.context->tracks[i]), textOf(run.infos[i].track));
        }
    }
}

struct AudioAttributeCase {
    uint8_t audio0, audio1;
    uint64_t result;
    const char* track;   // assignment, sizes and rates
};

// clang-format off
const AudioAttributeCase ATTRIBUTES[] = {
    { 0x80, 0x01, 0,       "1 0 16 0 48000 0" },
    { 0x9F, 0x01, 0,       "1 0 16 0 48000 0" },
    { 0x80, 0x41, 0,       "1 0 20 0 48000 0" },
    { 0x80, 0x81, 0,       "1 0 24 0 48000 0" },
    { 0x80, 0xC1, 0,       "1 0 28 0 48000 0" },
    { 0x80, 0x11, 0,       "1 0 16 0 0 0"     },   // 96 kHz
    { 0x80, 0xB9, 0,       "1 0 24 0 0 0"     },
    { 0x80, 0x09, 0,       "1 0 16 0 48000 0" },   // bit 3 says nothing
    { 0x80, 0x00, 0,       "0 0 16 0 48000 0" },   // mono
    { 0x80, 0x05, 0,       "0 0 16 0 48000 0" },
    { 0x80, 0x03, 0,       "0 0 16 0 48000 0" },
    { 0x00, 0x01, NO_LPCM, ""                 },   // AC-3
    { 0x40, 0x01, NO_LPCM, ""                 },
    { 0x60, 0x01, NO_LPCM, ""                 },
    { 0xA0, 0x01, NO_LPCM, ""                 },
    { 0xC0, 0x01, NO_LPCM, ""                 },   // DTS
    { 0xE0, 0x01, NO_LPCM, ""                 },
};
// clang-format on

TEST(ExtractVideo, AudioAttributes)
{
    for (const AudioAttributeCase& row : ATTRIBUTES) {
        Extraction run;
        const VideoIfoSpec recipe = { .cells = { { 7, 8 } }, .audio0 = row.audio0, .audio1 = row.audio1 };
        EXPECT_EQ(readVideo(run, managerIfo(recipe), titleSetIfo(recipe)), row.result);
        ASSERT_EQ(run.infos.size(), row.result ? 0u : 1u) << int(row.audio0) << ", " << int(row.audio1);
        if (!row.result) {
            EXPECT_EQ(textOf(run.infos[0].track), std::string("7 8 90000 ") + row.track);
        }
        EXPECT_EQ(run.context->sourceKind, SOURCE_VIDEO);
    }
}

// The smaller file can't give as many bytes as the manager has; of a larger one the rest is not looked at.
TEST(ExtractVideo, TitleSetIsReadWithTheManagersSize)
{
    struct Case {
        uint64_t managerSectors, titleSetSectors, result;
    };
    const Case cases[] = { { 3, 3, 0 }, { 4, 3, VTS_NOT_READ }, { 3, 9, 0 }, { 4, 4, 0 }, { 10, 9, VTS_NOT_READ } };
    for (const Case& row : cases) {
        Extraction run;
        const VideoIfoSpec recipe = { .cells = { { 0, 1 } },
                                      .managerSectors = row.managerSectors,
                                      .titleSetSectors = row.titleSetSectors };
        EXPECT_EQ(readVideo(run, managerIfo(recipe), titleSetIfo(recipe)), row.result);
        EXPECT_EQ(run.infos.size(), row.result ? 0u : 1u);
    }
    // Cell addresses behind the manager's size are outside what was read.
    Extraction run;
    const VideoIfoSpec recipe = { .cells = { { 0, 1 } }, .titleSetSectors = 5 };
    Bytes titleSet = titleSetIfo(recipe);
    std::copy(titleSet.begin() + 4096, titleSet.begin() + 6144, titleSet.begin() + 8192);
    put(titleSet, 224, 4, 4);
    EXPECT_EQ(readVideo(run, managerIfo(recipe), titleSet), NO_VTS);
    // One byte short.
    titleSet = titleSetIfo({ .cells = { { 0, 1 } } });
    titleSet.pop_back();
    EXPECT_EQ(readVideo(run, managerIfo(recipe), titleSet), VTS_NOT_READ);
}

struct BadIfoCase {
    const char* what;
    std::function<void(Bytes& manager, Bytes& titleSet)> change;
    uint64_t result;
};

const BadIfoCase BAD_IFOS[] = {
    { "nothing", [](Bytes&, Bytes&) {}, 0 },
    { "no manager's mark", [](Bytes& manager, Bytes&) { manager[11] = 'X'; }, NO_VMG },
    { "title set's mark in the manager", [](Bytes& manager, Bytes&) { put(manager, 9, 3, 0x565453); }, NO_VMG },
    { "no title set's mark", [](Bytes&, Bytes& titleSet) { titleSet[0] = 'd'; }, NO_VTS },
    { "title set's last letter", [](Bytes&, Bytes& titleSet) { titleSet[11] = 'G'; }, NO_VTS },
    { "both marks", [](Bytes& manager, Bytes& titleSet) { manager[0] = titleSet[0] = 0; }, NO_VMG },
    { "an empty manager", [](Bytes& manager, Bytes&) { manager.clear(); }, NO_VMG },
    { "a manager of one byte", [](Bytes& manager, Bytes&) { manager.resize(1); }, NO_VMG },
    { "a manager of a header", [](Bytes& manager, Bytes&) { manager.resize(2048); }, NO_VMG },
    { "titles outside", [](Bytes& manager, Bytes&) { put(manager, 196, 4, 3); }, NO_VMG },
    { "titles far outside", [](Bytes& manager, Bytes&) { put(manager, 196, 4, 0xFFFFFFFF); }, NO_VMG },
    { "titles beyond 32 bits", [](Bytes& manager, Bytes&) { put(manager, 196, 4, 0x00200001); }, NO_VMG },
    { "titles at the very end",
      [](Bytes& manager, Bytes& titleSet) {
          put(manager, 196, 4, 3);
          manager.resize(6144 + 19);
          titleSet.resize(8192);
      },
      NO_VMG },
    { "titles within the end",
      [](Bytes& manager, Bytes& titleSet) {
          put(manager, 196, 4, 3);
          manager.resize(6144 + 20);
          put(manager, 6144 + 10, 2, 1);
          titleSet.resize(8192);
      },
      0 },
    { "attributes outside", [](Bytes& manager, Bytes&) { put(manager, 208, 4, 3); }, NO_VMG },
    { "attributes far outside", [](Bytes& manager, Bytes&) { put(manager, 208, 4, 0x80000000); }, NO_VMG },
    { "entry outside", [](Bytes& manager, Bytes&) { put(manager, 4096 + 8, 4, 2048); }, NO_VMG },
    { "entry's audio outside", [](Bytes& manager, Bytes&) { put(manager, 4096 + 8, 4, 2048 - 269); }, NO_VMG },
    { "entry's audio at the very end",
      [](Bytes& manager, Bytes&) {
          put(manager, 4096 + 8, 4, 2048 - 270);
          put(manager, 6142, 2, 0x8001);
      },
      0 },
    { "entry far outside", [](Bytes& manager, Bytes&) { put(manager, 4096 + 8, 4, 0xFFFFFF00); }, NO_VMG },
    { "cells outside", [](Bytes&, Bytes& titleSet) { put(titleSet, 224, 4, 3); }, NO_VTS },
    { "cells far outside", [](Bytes&, Bytes& titleSet) { put(titleSet, 224, 4, 0xFFFFFFFF); }, NO_VTS },
    { "chains outside", [](Bytes&, Bytes& titleSet) { put(titleSet, 204, 4, 0x00200001); }, NO_VTS },
    { "the chain outside", [](Bytes&, Bytes& titleSet) { put(titleSet, 2048 + 12, 4, 4096); }, NO_VTS },
    { "the chain's offsets outside", [](Bytes&, Bytes& titleSet) { put(titleSet, 2048 + 12, 4, 4096 - 233); }, NO_VTS },
    { "the chain far outside", [](Bytes&, Bytes& titleSet) { put(titleSet, 2048 + 12, 4, 0xFFFFFFF0); }, NO_VTS },
    { "playback records outside", [](Bytes&, Bytes& titleSet) { put(titleSet, 2064 + 232, 2, 0xFFFF); }, NO_VTS },
};

TEST(ExtractVideo, PointersThatLeadOutside)
{
    for (const BadIfoCase& row : BAD_IFOS) {
        for (const bool opened : { false, true }) {
            Extraction run;
            const VideoIfoSpec recipe = { .cells = { { 0, 1 } } };
            Bytes manager = managerIfo(recipe), titleSet = titleSetIfo(recipe);
            row.change(manager, titleSet);
            EXPECT_EQ(readVideo(run, manager, titleSet, opened), row.result) << row.what;
            EXPECT_EQ(run.infos.size(), row.result ? 0u : 1u) << row.what;
            EXPECT_EQ(run.context->sourceKind, SOURCE_VIDEO) << row.what;
        }
    }
}

// More chapters than there are entries: those that lie within the IFO are told, whatever they hold.
TEST(ExtractVideo, MoreChaptersThanEntries)
{
    struct Case {
        uint16_t chapters;
        uint64_t titleSetSectors, result, infos;
    };
    // 170 address entries of 12 bytes reach the end of their sector: 8 + 170 * 12 = 2048.
    const Case cases[] = { { 2, 3, 0, 2 }, { 99, 3, 0, 99 } };
    for (const Case& row : cases) {
        Extraction run;
        const VideoIfoSpec recipe = { .cells = { { 3, 4 } }, .chapters = row.chapters };
        EXPECT_EQ(readVideo(run, managerIfo(recipe), titleSetIfo(recipe)), row.result);
        EXPECT_EQ(run.infos.size(), row.infos);
        EXPECT_EQ(run.context->trackCount, row.infos);
    }
    // Entries that leave the file: cell addresses at its last 20 bytes hold one.
    Extraction run;
    const VideoIfoSpec recipe = { .cells = { { 3, 4 } }, .managerSectors = 4, .titleSetSectors = 4, .chapters = 2 };
    Bytes manager = managerIfo(recipe), titleSet = titleSetIfo(recipe);
    manager.resize(6144 + 20);
    titleSet.resize(6144 + 20);
    std::copy(titleSet.begin() + 4096, titleSet.begin() + 4116, titleSet.begin() + 6144);
    put(titleSet, 224, 4, 3);
    EXPECT_EQ(readVideo(run, manager, titleSet), NO_VTS);
    put(manager, 2048 + 10, 2, 1);
    EXPECT_EQ(readVideo(run, manager, titleSet), 0u);
    EXPECT_EQ(textOf(run.context->tracks[0]), "3 4 90000 1 0 16 0 48000 0");
}

// A title may have up to 255 chapters; a table of more than there is room for is none.
TEST(ExtractVideo, MoreChaptersThanRoom)
{
    for (const uint16_t chapters : std::vector<uint16_t>{ 100, 255, 0xFFFF }) {
        Extraction run;
        VideoIfoSpec recipe = { .cells = std::vector<VideoCell>(99, { 3, 4 }), .managerSectors = 400 };
        recipe.titleSetSectors = 400;
        recipe.chapters = chapters;
        EXPECT_EQ(readVideo(run, managerIfo(recipe), titleSetIfo(recipe)), NO_VMG) << chapters;
        EXPECT_EQ(run.context->trackCount, 0u);
        EXPECT_EQ(run.infos.size(), 0u);
    }
}

TEST(ExtractVideo, FilesThatAreNotOpen)
{
    Extraction run;
    const VideoIfoSpec recipe = { .cells = { { 0, 1 } } };
    run.put("VIDEO_TS.IFO", managerIfo(recipe));
    run.put("VTS_01_0.IFO", titleSetIfo(recipe));
    run.create();
    EXPECT_EQ(orvReadVideoTables(run.context, 0, 0, noteInfo(), userOf(&run)), VMG_NOT_READ);
    EXPECT_EQ(run.context->sourceKind, SOURCE_VIDEO);
    run.create();
    EXPECT_EQ(orvReadVideoTables(run.context, 0, run.file("VTS_01_0.IFO"), noteInfo(), userOf(&run)), VMG_NOT_READ);
    run.create();
    EXPECT_EQ(orvReadVideoTables(run.context, run.file("VIDEO_TS.IFO"), 0, noteInfo(), userOf(&run)), VTS_NOT_READ);
    EXPECT_EQ(run.infos.size(), 0u);
    run.create();
    EXPECT_EQ(orvReadVideoTables(run.context, run.file("VIDEO_TS.IFO"), run.file("VTS_01_0.IFO"), nullptr, 0), 0u);
    EXPECT_EQ(run.context->trackCount, 1u);
}

}   // namespace
