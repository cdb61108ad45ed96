// One sector of a disc: the file that holds it, and its samples.
#include "tests/disc/extract_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>

namespace {

struct Pack {
    uint64_t result = NOT_WRITTEN;
    uint64_t at = 0;   // of the samples; 0 without any
    uint64_t length = 0;
};

// The samples lie in the buffer that was given, and nothing is written beside it.
Pack readSector(const ExtractContext* context, uint64_t sector)
{
    std::vector<uint8_t> buffer(SECTOR_BYTES, 0x77);   // of exactly its size, so that a read behind it shows
    const uint8_t* data = nullptr;
    uint64_t length = 0;
    Pack pack;
    pack.result = orvReadExtractPack(context, sector, buffer.data(), &data, &length);
    if (pack.result || length == 0) return pack;
    pack.at = uint64_t(data - buffer.data());
    pack.length = length;
    EXPECT_LE(pack.at, SECTOR_BYTES);
    EXPECT_LE(pack.length, SECTOR_BYTES - std::min(pack.at, SECTOR_BYTES));
    return pack;
}

Pack readPack(uint64_t sourceKind, const Bytes& pack, bool opened = false)
{
    Extraction run;
    run.put("sound", pack);
    run.lend(sourceKind, "sound", {}, opened);
    return readSector(run.context, 0);
}

// ---- packs of an AOB --------------------------------------------------------------------------------------------

struct AudioPackCase {
    const char* what;
    AobPackSpec recipe;
    uint64_t samples;      // put into it
    uint64_t at, length;   // found
};

// clang-format off
const AudioPackCase AUDIO_PACKS[] = {
    // 14 + 9 + 5 + 4 + 16 = 48; with a system header 66
    { "a later pack of stereo, 16 bits",   {},                                                         2000, 48, 2000 },
    { "a first pack of stereo, 16 bits",   { .system = true, .pesHeader = 8, .privateHeader = 11 },    1984, 64, 1984 },
    { "a later pack of six channels",      { .privateHeader = 10 },                                    1992, 42, 1992 },
    { "a first pack of six channels",      { .system = true, .pesHeader = 8, .privateHeader = 10 },    1968, 63, 1968 },
    { "a few samples",                     {},                                                            4, 48,    4 },
    { "one byte",                          {},                                                            1, 48,    1 },
    { "no samples",                        {},                                                            0,  0,    0 },
    { "no PES header data",                { .pesHeader = 0 },                                          100, 43,  100 },
    { "a long PES header",                 { .pesHeader = 255 },                                        100, 298, 100 },
    { "a private header of its own bytes", { .privateHeader = 0 },                                      100, 32,  100 },
    { "a long private header",             { .privateHeader = 255 },                                    100, 287, 100 },
    { "to the last byte of the pack",      { .pesHeader = 0, .privateHeader = 0 },                     2021, 27, 2021 },
    // Any other sub-stream is taken as it comes, its header with it: 28 = 14 + 9 + 5, 20 + 100
    { "no LPCM sub-stream",                { .subStream = 0x80 },                                       100, 28,  120 },
    { "sub-stream A1",                     { .subStream = 0xA1 },                                       100, 28,  120 },
    // No private stream 1: nothing.
    { "video",                             { .streamId = 0xE0 },                                        100,  0,    0 },
    { "private stream 2",                  { .streamId = 0xBF },                                        100,  0,    0 },
    { "padding",                           { .streamId = 0xBE },                                        100,  0,    0 },
    { "video behind a system header",      { .system = true, .streamId = 0xE0 },                        100,  0,    0 },
    // Lengths that lie. The PES packet's ends the samples; 3 + 5 + 20 is the header's share of it.
    { "a short packet",                    { .pesLength = 28 + 40 },                                    100, 48,   40 },
    { "a packet of its headers",           { .pesLength = 28 },                                         100,  0,    0 },
    { "a packet up to the pack's end",     { .pesLength = 2028 },                                      1000, 48, 2000 },
    { "a packet a byte behind it",         { .pesLength = 2029 },                                      1000, 48, 2000 },
    { "a packet far behind it",            { .pesLength = 0xFFFF },                                    1000, 48, 2000 },
    // 51 bytes of private header to skip
    { "a lying private header",            { .privateLength = 51 },                                     100, 83,   65 },
    { "a private header to the end",       { .privateLength = 116 },                                    100,  0,    0 },
    // The sub-stream byte is looked for 9 + 55 bytes behind the packet's start: a sample, and none is A0.
    { "a lying PES header",                { .pesHeaderLength = 55 },                                   100, 78,   70 },
    // A system header of 30 bytes ends within what follows it, where no packet begins.
    { "a lying system header",             { .system = true, .systemLength = 24 },                      100,  0,    0 },
    { "a system header of 255 bytes",      { .system = true, .systemLength = 255 },                     100,  0,    0 },
};
// clang-format on

TEST(ExtractPack, Audio)
{
    for (const AudioPackCase& row : AUDIO_PACKS) {
        for (const bool opened : { false, true }) {
            const Pack pack = readPack(SOURCE_AUDIO, aobPack(Bytes(row.samples, 0x55), row.recipe), opened);
            EXPECT_EQ(pack.result, 0u) << row.what;
            EXPECT_EQ(pack.at, row.at) << row.what << (opened ? ", opened" : "");
            EXPECT_EQ(pack.length, row.length) << row.what << (opened ? ", opened" : "");
        }
    }
}

// Headers that lead out of the pack leave no samples.
TEST(ExtractPack, AudioHeadersThatLeadOutside)
{
    struct Case {
        const char* what;
        std::function<void(Bytes& pack)> change;
    };
    // Offsets 14: PES packet, 18 its length, 22 its header length, 28 private header, 31 its length.
    const Case cases[] = {
        { "system header to the last byte", [](Bytes& pack) { pack[17] = 0xBB, put(pack, 18, 2, 2027); } },
        { "system header behind the end", [](Bytes& pack) { pack[17] = 0xBB, put(pack, 18, 2, 2028); } },
        { "system header of 65535 bytes", [](Bytes& pack) { pack[17] = 0xBB, put(pack, 18, 2, 0xFFFF); } },
        { "packet begins at the last four bytes",
          [](Bytes& pack) {
              pack[17] = 0xBB;
              put(pack, 18, 2, 2024);
              put(pack, 2044, 4, 0x000001BD);
          } },
        { "packet's header ends behind the end",
          [](Bytes& pack) {
              pack[17] = 0xBB;
              put(pack, 18, 2, 1900);
              put(pack, 1920, 4, 0x000001BD);
              put(pack, 1924, 2, 0x00FF);
              pack[1928] = 200;
          } },
        { "sub-stream byte is the last",
          [](Bytes& pack) {
              pack[17] = 0xBB;
              put(pack, 18, 2, 2018);
              put(pack, 2038, 4, 0x000001BD);
              put(pack, 2042, 2, 0x00FF);
              pack[2046] = 0;
              pack[2047] = 0xA0;
          } },
        { "private header ends behind the end",
          [](Bytes& pack) {
              pack[17] = 0xBB;
              put(pack, 18, 2, 1980);
              put(pack, 2000, 4, 0x000001BD);
              put(pack, 2004, 2, 0xFFFF);
              pack[2008] = 0;
              put(pack, 2009, 4, 0xA0000000 | 40);
          } },
    };
    for (const Case& row : cases) {
        for (const bool opened : { false, true }) {
            Bytes bytes = aobPack(Bytes(100, 0x55));
            row.change(bytes);
            const Pack pack = readPack(SOURCE_AUDIO, bytes, opened);
            EXPECT_EQ(pack.result, 0u) << row.what;
            EXPECT_EQ(pack.length, 0u) << row.what << (opened ? ", opened" : "");
        }
    }
}

// A packet shorter than its own headers ends before its samples begin.
TEST(ExtractPack, PacketShorterThanItsHeaders)
{
    for (const uint16_t length : std::vector<uint16_t>{ 0, 1, 7, 8, 9, 27 }) {
        for (const bool opened : { false, true }) {
            const Pack pack = readPack(SOURCE_AUDIO, aobPack(Bytes(100, 0x55), { .pesLength = length }), opened);
            EXPECT_EQ(pack.result, 0u) << length;
            EXPECT_EQ(pack.length, 0u) << length << (opened ? ", opened" : "");
        }
    }
}

// Pack stuffing moves all behind it. A context of d2wInitContext looks at fixed places and finds nothing; d2wOpenDisc
// finds the samples, which end with the pack, as the packet's length was not told of the move.
TEST(ExtractPack, StuffingIsSeenByOpenDiscAlone)
{
    for (uint64_t stuffing = 1; stuffing <= 7; stuffing++) {
        const AobPackSpec full = { .stuffing = stuffing, .pesLength = 2028 };
        Pack pack = readPack(SOURCE_AUDIO, aobPack(Bytes(2000 - stuffing, 0x55), full), true);
        EXPECT_EQ(pack.at, 48 + stuffing);
        EXPECT_EQ(pack.length, 2000 - stuffing);
        pack = readPack(SOURCE_AUDIO, aobPack(Bytes(2000 - stuffing, 0x55), full), false);
        EXPECT_EQ(pack.result, 0u);
        EXPECT_EQ(pack.length, 0u) << stuffing;
        const AobPackSpec first = {
            .system = true, .stuffing = stuffing, .pesHeader = 8, .privateHeader = 11, .pesLength = 2010
        };
        pack = readPack(SOURCE_AUDIO, aobPack(Bytes(1984 - stuffing, 0x55), first), true);
        EXPECT_EQ(pack.at, 64 + stuffing);
        EXPECT_EQ(pack.length, 1984 - stuffing);
    }
}

// ---- packs of a VOB ---------------------------------------------------------------------------------------------

struct VideoPackCase {
    const char* what;
    Bytes pack;
    uint64_t at, length;
};

// The samples of an LPCM pack lie behind 14 + 9 bytes, the PES header data and 7 bytes of sub-stream header.
std::vector<VideoPackCase> videoPacks()
{
    const Bytes sound(100, 0x55);
    Bytes otherPrefix = privatePack(0xA0, {}, sound), otherCode = otherPrefix;
    otherPrefix[16] = 0;
    otherCode[16] = 2;
    Bytes ignored = privatePack(0xA0, {}, sound);   // the two bytes in front of these are not looked at
    ignored[14] = ignored[15] = 0x99;
    return {
        { "with a time stamp", privatePack(0xA0, { .clock = {}, .pts = 900 }, Bytes(2013, 0x55)), 35, 2013 },
        { "and five bytes of header stuffing", privatePack(0xA0, { .clock = {}, .pts = 900 }, Bytes(2008, 0x55)), 40,
          2008 },
        { "without one", privatePack(0xA0, {}, Bytes(2018, 0x55)), 30, 2018 },
        { "with header stuffing", privatePack(0xA0, { .clock = {}, .pts = 900, .stuffing = 5 }, sound), 40, 100 },
        { "one sample", privatePack(0xA0, {}, Bytes(4, 0x55)), 30, 4 },
        { "other bytes in front", ignored, 30, 100 },
        { "the second stream", privatePack(0xA1, {}, sound), 0, 0 },
        { "AC-3", privatePack(0x80, {}, sound), 0, 0 },
        { "a sub-picture", privatePack(0x20, {}, sound), 0, 0 },
        { "video", videoPack(sound), 0, 0 },
        { "navigation", navPack({}), 0, 0 },
        { "padding", paddingPack(), 0, 0 },
        { "no start code", otherPrefix, 0, 0 },
        { "another code", otherCode, 0, 0 },
        { "a short packet", privatePack(0xA0, { .clock = {}, .lyingLength = 50 }, sound), 30, 40 },
        { "a packet of its headers", privatePack(0xA0, { .clock = {}, .lyingLength = 10 }, sound), 0, 0 },
        { "a packet shorter than its headers", privatePack(0xA0, { .clock = {}, .lyingLength = 9 }, sound), 0, 0 },
        { "a packet of nothing", privatePack(0xA0, { .clock = {}, .lyingLength = 0 }, sound), 0, 0 },
        { "a packet to the end", privatePack(0xA0, { .clock = {}, .lyingLength = 2028 }, sound), 30, 2018 },
        { "a packet behind the end", privatePack(0xA0, { .clock = {}, .lyingLength = 2029 }, sound), 30, 2018 },
        { "a packet far behind the end", privatePack(0xA0, { .clock = {}, .lyingLength = 0xFFFF }, sound), 30, 2018 },
    };
}

TEST(ExtractPack, Video)
{
    for (const VideoPackCase& row : videoPacks()) {
        for (const bool opened : { false, true }) {
            const Pack pack = readPack(SOURCE_VIDEO, row.pack, opened);
            EXPECT_EQ(pack.result, 0u) << row.what;
            EXPECT_EQ(pack.at, row.at) << row.what << (opened ? ", opened" : "");
            EXPECT_EQ(pack.length, row.length) << row.what << (opened ? ", opened" : "");
        }
    }
}

// The sub-stream byte lies at 23 + byte 22, at most at 278.
TEST(ExtractPack, VideoHeaderLengths)
{
    for (const uint64_t header : std::vector<uint64_t>{ 0, 1, 20, 128, 255 }) {
        Bytes pack = privatePack(0xA0, { .clock = {}, .lyingLength = uint16_t(1000), .lyingHeader = uint8_t(header) },
                                 Bytes(1500, 0x55));
        pack[23 + header] = 0xA0;
        const Pack found = readPack(SOURCE_VIDEO, pack);
        EXPECT_EQ(found.at, 30 + header);
        EXPECT_EQ(found.length, 1000 - header - 10);
    }
}

// Stuffing of a VOB's pack is read over as that of an AOB's.
TEST(ExtractPack, VideoStuffing)
{
    for (uint64_t stuffing = 1; stuffing <= 7; stuffing++) {
        Bytes pack = privatePack(0xA0, {}, Bytes(1000, 0x55));
        pack[13] = uint8_t(0xF8 | stuffing);
        pack.insert(pack.begin() + 14, stuffing, 0xFF);
        pack.resize(SECTOR_BYTES);
        const Pack opened = readPack(SOURCE_VIDEO, pack, true);
        EXPECT_EQ(opened.at, 30 + stuffing);
        EXPECT_EQ(opened.length, 1000u);
        const Pack plain = readPack(SOURCE_VIDEO, pack, false);
        EXPECT_EQ(plain.result, 0u);
        EXPECT_EQ(plain.length, 0u);
    }
}

// ---- what is no pack --------------------------------------------------------------------------------------------

TEST(ExtractPack, StartCode)
{
    for (const uint64_t kind : { uint64_t(SOURCE_AUDIO), uint64_t(SOURCE_VIDEO) }) {
        for (uint64_t i = 0; i < 4; i++) {
            for (const bool opened : { false, true }) {
                Bytes pack = aobPack(Bytes(100, 0x55));
                pack[i] ^= 0x10;
                EXPECT_EQ(readPack(kind, pack, opened).result, WRONG_PACK) << i;
            }
        }
        EXPECT_EQ(readPack(kind, Bytes(SECTOR_BYTES)).result, WRONG_PACK);
    }
}

// Bytes that no encoder writes: the samples stay within the sector. readSector sees to that.
TEST(ExtractPack, AnyBytes)
{
    std::mt19937_64 random(20260304);
    Extraction run;
    Bytes packs;
    constexpr uint64_t COUNT = 4000;
    for (uint64_t i = 0; i < COUNT; i++) {
        Bytes pack = i % 2 ? aobPack(Bytes(1000, 0x55), { .system = random() % 2 == 0, .stuffing = random() % 8 })
                           : privatePack(0xA0, { .clock = {}, .pts = 900 }, Bytes(1000, 0x55));
        for (uint64_t edits = random() % 6; edits > 0; edits--) {
            const uint8_t values[] = { 0x00, 0xA0, 0xBB, 0xBD, 0xFF, uint8_t(random()) };
            pack[12 + random() % 60] = values[random() % 6];
        }
        packs += pack;
    }
    run.put("sound", packs);
    uint64_t withSamples = 0;
    for (const uint64_t kind : { uint64_t(SOURCE_AUDIO), uint64_t(SOURCE_VIDEO) }) {
        for (const bool opened : { false, true }) {
            run.create();
            run.lend(kind, "sound", {}, opened);
            for (uint64_t i = 0; i < COUNT; i++) {
                const Pack pack = readSector(run.context, i);
                EXPECT_EQ(pack.result, 0u) << i;
                withSamples += pack.length > 0;
            }
        }
    }
    EXPECT_GT(withSamples, COUNT);   // there was something to find
}

// ---- several files ----------------------------------------------------------------------------------------------

// ATS_01_1.AOB and on, of so many sectors each. Each sector's samples are as many as its number, plus one.
void putParts(const Extraction& run, const std::vector<uint64_t>& sectors)
{
    uint64_t sector = 0;
    for (uint64_t i = 0; i < sectors.size(); i++) {
        Bytes part;
        for (uint64_t k = 0; k < sectors[i]; k++) part += aobPack(Bytes(++sector, 0x55));
        run.put("ATS_01_" + std::to_string(i + 1) + ".AOB", part);
    }
}

TEST(ExtractPack, SectorsOfSeveralFiles)
{
    const std::vector<uint64_t> cases[] = { { 1 },       { 5 },          { 3, 2, 4 },
                                            { 1, 1, 1 }, { 2, 0, 0, 3 }, { 4, 4, 4, 4, 4, 4, 4, 4, 4 } };
    for (const std::vector<uint64_t>& sectors : cases) {
        SCOPED_TRACE(testing::PrintToString(sectors));
        Extraction run;
        putParts(run, sectors);
        run.create();
        run.context->sourceKind = SOURCE_AUDIO;
        run.context->opened = true;
        ASSERT_EQ(orvOpenExtractFiles(run.context, u"%sATS_01_%.1d.AOB"), 0u);
        uint64_t total = 0;
        for (const uint64_t part : sectors) total += part;
        for (uint64_t sector = 0; sector < total; sector++) {
            EXPECT_EQ(readSector(run.context, sector).length, sector + 1);
        }
        for (uint64_t sector = total; sector > 0; sector--) {   // and in any order
            EXPECT_EQ(readSector(run.context, sector - 1).length, sector);
        }
        // Whatever is asked for behind the last can't be read.
        for (const uint64_t sector : { total, total + 1, uint64_t(0x38FFFFC7), uint64_t(0xFFFFFFFF) }) {
            EXPECT_EQ(readSector(run.context, sector).result, AOB_NOT_READ) << sector;
        }
    }
}

// The search for the file goes on up to the count of files, so one that lies behind a gap is reached, the next is not.
TEST(ExtractPack, FilesBehindAGap)
{
    Extraction run;
    run.put("first", aobPack(Bytes(1, 0x55)));
    run.put("third", aobPack(Bytes(2, 0x55)));
    run.put("fourth", aobPack(Bytes(3, 0x55)));
    run.create();
    ExtractContext* context = run.context;
    context->sourceKind = SOURCE_AUDIO;
    context->fileCount = 2;
    context->files[0] = run.file("first");
    context->files[2] = run.file("third");
    context->files[3] = run.file("fourth");
    const uint64_t firstSectors[] = { 0, 1, 1, 2, 3, 3, 3, 3, 3 };
    std::copy(std::begin(firstSectors), std::end(firstSectors), context->fileFirstSector);
    EXPECT_EQ(readSector(context, 0).length, 1u);
    EXPECT_EQ(readSector(context, 1).length, 2u);
    EXPECT_EQ(readSector(context, 2).result, AOB_NOT_READ);
    std::fill(std::begin(context->files), std::end(context->files), OSFILE(0));   // they are the test's
}

// A file that ends within a sector: its own part of it can't be read, and the next file begins where the sum of the
// bytes has it.
TEST(ExtractPack, CutSector)
{
    Extraction run;
    putParts(run, { 2 });
    Bytes part = readFile(run.disc + u"ATS_01_1.AOB");
    part.pop_back();
    run.put("ATS_01_1.AOB", part);
    run.create();
    run.context->sourceKind = SOURCE_AUDIO;
    run.context->opened = true;
    ASSERT_EQ(orvOpenExtractFiles(run.context, u"%sATS_01_%.1d.AOB"), 0u);
    EXPECT_EQ(readSector(run.context, 0).length, 1u);
    EXPECT_EQ(readSector(run.context, 1).result, AOB_NOT_READ);
}

// The readers of d2wInitContext keep the values of files that they have closed. Nothing is read through them, and files
// of the host that have come to the same values since are not touched, neither by a read nor by the release.
TEST(ExtractPack, FilesOfAnInitialisedContextCannotBeRead)
{
    for (const bool video : { false, true }) {
        Extraction run;
        const Bytes sound = aobPack(Bytes(100, 0x55)) + aobPack(Bytes(100, 0x55));
        run.put("AUDIO_PP.IFO", samgIfo({ { 0, 1 } }));
        run.put("VIDEO_TS.IFO", managerIfo({ .cells = { { 0, 1 } } }));
        run.put("VTS_01_0.IFO", titleSetIfo({ .cells = { { 0, 1 } } }));
        run.put("ATS_01_1.AOB", sound);
        run.put("VTS_01_1.VOB", sound);
        run.create();
        const OSFILE first = run.file(video ? "VIDEO_TS.IFO" : "AUDIO_PP.IFO");
        ASSERT_EQ(video ? orvReadVideoTables(run.context, first, run.file("VTS_01_0.IFO"), nullptr, 0)
                        : orvReadAudioTables(run.context, first, nullptr, 0),
                  0u);
        ASSERT_EQ(run.context->fileCount, 1u);
        std::vector<OSFILE> hosts;
        for (int i = 0; i < 4; i++) hosts.push_back(run.file("ATS_01_1.AOB"));
        EXPECT_EQ(readSector(run.context, 0).result, AOB_NOT_READ);
        EXPECT_EQ(readSector(run.context, 1).result, AOB_NOT_READ);
        EXPECT_EQ(run.extract(0, 0), AOB_NOT_READ);
        EXPECT_EQ(run.outputs(), "track001_lf.wav track001_rf.wav");
        EXPECT_EQ(run.output("track001_lf.wav"), Bytes(46));
        EXPECT_EQ(run.output("track001_rf.wav"), Bytes(46));
        EXPECT_EQ(run.progress.size(), 0u);
        for (const OSFILE file : hosts) {
            uint64_t position = NOT_WRITTEN;
            EXPECT_EQ(osTellFile(file, &position), 0u);
            EXPECT_EQ(position, 0u);
        }
        run.release();
        for (const OSFILE file : hosts) {
            Bytes read(sound.size());
            EXPECT_EQ(osReadFile(file, read.data(), read.size()), 0u);
            EXPECT_EQ(read, sound);
        }
    }
}

}   // namespace
