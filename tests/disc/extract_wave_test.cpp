// Sample units taken apart, byte by byte, and the headers of WAVE files.
#include "tests/disc/extract_rig.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

// ---- layouts ----------------------------------------------------------------------------------------------------

struct LayoutCase {
    uint64_t assign;
    const char* text;
    std::vector<std::string> pairs, singles;
};

const LayoutCase LAYOUTS[] = {
    { 1, "extract 2.0 track", { "lrf" }, { "lf", "rf" } },
    { 3, "extract 4.0 track", { "lrf", "lrs" }, { "lf", "rf", "ls", "rs" } },
    { 19, "extract 5.0 track", { "lrf", "lrs", "c" }, { "lf", "rf", "ls", "rs", "c" } },
    { 20, "extract 5.1 track", { "lrf", "lrs", "c_lfe" }, { "lf", "rf", "ls", "rs", "c", "lfe" } },
};

std::vector<std::string> suffixesOf(const ExtractOutput* outputs, uint64_t count)
{
    std::vector<std::string> names;
    for (uint64_t i = 0; i < count; i++) names.push_back(toUtf8(outputs[i].suffix));
    return names;
}

TEST(ExtractLayout, FourAssignments)
{
    for (uint64_t assign = 0; assign <= 32; assign++) {
        const LayoutCase* row = nullptr;
        for (const LayoutCase& layout : LAYOUTS) {
            if (layout.assign == assign) row = &layout;
        }
        bool known = !row;
        const ExtractLayout* layout = orvExtractLayout(assign, &known);
        ASSERT_NE(layout, nullptr);
        EXPECT_EQ(known, row != nullptr) << assign;
        if (!row) row = &LAYOUTS[0];   // the front files come to be in any case
        EXPECT_EQ(suffixesOf(layout->pairs, layout->pairCount), row->pairs) << assign;
        EXPECT_EQ(suffixesOf(layout->singles, layout->singleCount), row->singles) << assign;
        if (known) {
            EXPECT_EQ(toUtf8(layout->text), row->text);
        }
    }
}

// ---- units ------------------------------------------------------------------------------------------------------

struct UnitCase {
    uint64_t assign;
    uint32_t bits;
    uint64_t unitBytes;
    std::vector<const char*> singles, pairs;   // what each file gets of a unit of the bytes 00, 01, 02, ...
};

// clang-format off
const UnitCase UNITS[] = {
    // front pair, then the same one sample later
    { 1, 16, 8,
      { "01 00 05 04", "03 02 07 06" },
      { "01 00 03 02 05 04 07 06" } },
    // high and middle bytes 00 01, 02 03, 04 05, 06 07 of left, right, left, right; low bytes 08 to 0B
    { 1, 24, 12,
      { "08 01 00 0A 05 04", "09 03 02 0B 07 06" },
      { "08 01 00 09 03 02 0A 05 04 0B 07 06" } },
    // surrounds in front of the front pair
    { 3, 16, 16,
      { "09 08 0D 0C", "0B 0A 0F 0E", "01 00 05 04", "03 02 07 06" },
      { "09 08 0B 0A 0D 0C 0F 0E", "01 00 03 02 05 04 07 06" } },
    { 3, 24, 24,
      { "14 0D 0C 16 11 10", "15 0F 0E 17 13 12", "08 01 00 0A 05 04", "09 03 02 0B 07 06" },
      { "14 0D 0C 15 0F 0E 16 11 10 17 13 12", "08 01 00 09 03 02 0A 05 04 0B 07 06" } },
    // centre 00 01, 02 03; four channels at 04 and at 0C
    { 19, 16, 20,
      { "05 04 0D 0C", "07 06 0F 0E", "09 08 11 10", "0B 0A 13 12", "01 00 03 02" },
      { "05 04 07 06 0D 0C 0F 0E", "09 08 0B 0A 11 10 13 12", "01 00 00 00 03 02 00 00" } },
    // centre 00 01, 02 03, its low bytes 04, 05; four channels at 06 and 0E, their low bytes at 16 and 1A
    { 19, 24, 30,
      { "16 07 06 1A 0F 0E", "17 09 08 1B 11 10", "18 0B 0A 1C 13 12", "19 0D 0C 1D 15 14", "04 01 00 05 03 02" },
      { "16 07 06 17 09 08 1A 0F 0E 1B 11 10", "18 0B 0A 19 0D 0C 1C 13 12 1D 15 14",
        "04 01 00 00 00 00 05 03 02 00 00 00" } },
    // centre and low frequency 00 01 02 03, 04 05 06 07; four channels at 08 and 10
    { 20, 16, 24,
      { "09 08 11 10", "0B 0A 13 12", "0D 0C 15 14", "0F 0E 17 16", "01 00 05 04", "03 02 07 06" },
      { "09 08 0B 0A 11 10 13 12", "0D 0C 0F 0E 15 14 17 16", "01 00 03 02 05 04 07 06" } },
    // centre and low frequency as a pair of 12 bytes; four channels at 0C and 14, their low bytes at 1C and 20
    { 20, 24, 36,
      { "1C 0D 0C 20 15 14", "1D 0F 0E 21 17 16", "1E 11 10 22 19 18", "1F 13 12 23 1B 1A", "08 01 00 0A 05 04",
        "09 03 02 0B 07 06" },
      { "1C 0D 0C 1D 0F 0E 20 15 14 21 17 16", "1E 11 10 1F 13 12 22 19 18 23 1B 1A",
        "08 01 00 09 03 02 0A 05 04 0B 07 06" } },
};
// clang-format on

ExtractTrack trackOf(uint64_t assign, uint32_t size1, uint32_t size2)
{
    ExtractTrack track = {};
    track.assign = uint32_t(assign);
    track.sampleSize1 = size1;
    track.sampleSize2 = size2;
    track.sampleRate1 = 48000;
    return track;
}

/** What the files of a track get of some data. */
std::vector<std::string> deinterleave(const ExtractTrack& track, bool pairs, const Bytes& data, bool opened)
{
    Extraction run;
    run.create();
    run.context->opened = opened;
    bool known = false;
    const ExtractLayout* layout = orvExtractLayout(track.assign, &known);
    const uint64_t count = pairs ? layout->pairCount : layout->singleCount;
    std::vector<OSFILE> files(count);
    for (uint64_t i = 0; i < count; i++) {
        const std::u16string path = run.out + toWide("file" + std::to_string(i));
        EXPECT_EQ(osOpenFile(path.c_str(), OS_CREATE, &files[i]), 0u);
    }
    const Bytes exact(data.begin(), data.end());
    EXPECT_EQ(orvDeinterleave(run.context, &track, pairs ? layout->pairs : layout->singles, files.data(), count, pairs,
                              exact.data(), exact.size()),
              0u);
    std::vector<std::string> written;
    for (uint64_t i = 0; i < count; i++) {
        (void)osCloseFile(&files[i]);
        written.push_back(toHex(run.output("file" + std::to_string(i))));
    }
    return written;
}

std::vector<std::string> textsOf(const std::vector<const char*>& parts)
{
    return std::vector<std::string>(parts.begin(), parts.end());
}

TEST(ExtractWave, OneUnit)
{
    for (const UnitCase& row : UNITS) {
        SCOPED_TRACE(std::to_string(row.assign) + " of " + std::to_string(row.bits) + " bits");
        const ExtractTrack track = trackOf(row.assign, row.bits, row.bits);
        for (const bool opened : { false, true }) {
            EXPECT_EQ(deinterleave(track, false, counting(row.unitBytes), opened), textsOf(row.singles));
            EXPECT_EQ(deinterleave(track, true, counting(row.unitBytes), opened), textsOf(row.pairs));
        }
    }
}

// A hexadecimal text with a number added to each byte, but to those of a silent channel.
std::string shifted(const std::string& hex, uint8_t by)
{
    Bytes bytes = fromHex(hex);
    for (uint8_t& byte : bytes) byte = uint8_t(byte + by);
    return toHex(bytes);
}

// Units in their order, and what is left behind the last whole one is lost.
TEST(ExtractWave, WholeUnitsInOrder)
{
    for (const UnitCase& row : UNITS) {
        SCOPED_TRACE(std::to_string(row.assign) + " of " + std::to_string(row.bits) + " bits");
        const ExtractTrack track = trackOf(row.assign, row.bits, row.bits);
        const uint8_t unit = uint8_t(row.unitBytes);
        std::vector<std::string> expected;
        for (const char* part : row.singles) {
            expected.push_back(std::string(part) + " " + shifted(part, unit) + " " + shifted(part, uint8_t(2 * unit)));
        }
        for (uint64_t left = 0; left < unit; left++) {
            // Stereo of 16 bits has another whole sample in four bytes, which d2wOpenDisc alone keeps.
            const bool plain = row.assign != 1 || row.bits != 16 || left < 4;
            const Bytes data = counting(3 * unit + left);
            EXPECT_EQ(deinterleave(track, false, data, false), expected) << left;
            if (plain) {
                EXPECT_EQ(deinterleave(track, false, data, true), expected) << left;
            }
        }
        for (uint64_t less = 0; less < unit; less++) {
            if (row.assign == 1 && row.bits == 16 && less >= 4) continue;
            for (const std::string& part : deinterleave(track, true, counting(less), true)) EXPECT_EQ(part, "");
        }
    }
}

TEST(ExtractWave, OpenDiscKeepsTheLastSampleOfStereo)
{
    const ExtractTrack track = trackOf(1, 16, 76);
    for (uint64_t left = 4; left < 8; left++) {
        const Bytes data = counting(8 + left);
        EXPECT_EQ(deinterleave(track, false, data, true),
                  (std::vector<std::string>{ "01 00 05 04 09 08", "03 02 07 06 0B 0A" }));
        EXPECT_EQ(deinterleave(track, true, data, true),
                  (std::vector<std::string>{ "01 00 03 02 05 04 07 06 09 08 0B 0A" }));
        EXPECT_EQ(deinterleave(track, true, data, false), (std::vector<std::string>{ "01 00 03 02 05 04 07 06" }));
        EXPECT_EQ(deinterleave(track, true, counting(left), true), (std::vector<std::string>{ "01 00 03 02" }));
        EXPECT_EQ(deinterleave(track, true, counting(left), false), (std::vector<std::string>{ "" }));
    }
}

// A whole pack, as many units as there are: the largest payload, and one that the buffers may not hold at once.
TEST(ExtractWave, FullPacks)
{
    for (const UnitCase& row : UNITS) {
        const ExtractTrack track = trackOf(row.assign, row.bits, row.bits);
        const uint64_t units = 2048 / row.unitBytes;
        const Bytes data = repeated(counting(row.unitBytes), units) + Bytes(2048 - units * row.unitBytes, 0x99);
        for (const bool pairs : { false, true }) {
            const std::vector<std::string> one = textsOf(pairs ? row.pairs : row.singles);
            std::vector<std::string> expected(one.size());
            for (uint64_t i = 0; i < one.size(); i++) {
                expected[i] = toHex(repeated(fromHex(one[i]), units));
            }
            EXPECT_EQ(deinterleave(track, pairs, data, false), expected) << row.assign << ", " << row.bits;
        }
    }
}

TEST(ExtractWave, OtherSizesWriteNothing)
{
    const uint32_t sizes[] = { 0, 8, 12, 16, 20, 24, 28, 32, 76 };
    for (const LayoutCase& layout : LAYOUTS) {
        for (const uint32_t size1 : sizes) {
            for (const uint32_t size2 : sizes) {
                const bool known = size1 == 16 || size1 == 24;
                if (known && (layout.assign == 1 || size1 == size2)) continue;   // the second group of stereo is none
                for (const bool pairs : { false, true }) {
                    const ExtractTrack track = trackOf(layout.assign, size1, size2);
                    for (const std::string& part : deinterleave(track, pairs, counting(200), pairs)) {
                        EXPECT_EQ(part, "") << layout.assign << ": " << size1 << ", " << size2;
                    }
                }
            }
        }
    }
}

// ---- headers ----------------------------------------------------------------------------------------------------

struct HeaderCase {
    uint32_t rate, bits;
    bool pairs;
    uint64_t dataBytes;
    const char* header;
};

const HeaderCase HEADERS[] = {
    { 48000, 16, false, 0,
      "52 49 46 46 26 00 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 01 00 "
      "80 BB 00 00 00 77 01 00 02 00 10 00 00 00 64 61 74 61 00 00 00 00" },
    { 44100, 16, true, 1000,
      "52 49 46 46 0E 04 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 02 00 "
      "44 AC 00 00 10 B1 02 00 04 00 10 00 00 00 64 61 74 61 E8 03 00 00" },
    { 96000, 24, false, 300,
      "52 49 46 46 52 01 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 01 00 "
      "00 77 01 00 00 65 04 00 03 00 18 00 00 00 64 61 74 61 2C 01 00 00" },
    { 192000, 24, true, 6,
      "52 49 46 46 2C 00 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 02 00 "
      "00 EE 02 00 00 94 11 00 06 00 18 00 00 00 64 61 74 61 06 00 00 00" },
    { 176400, 24, false, 70000,
      "52 49 46 46 96 11 01 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 01 00 "
      "10 B1 02 00 30 13 08 00 03 00 18 00 00 00 64 61 74 61 70 11 01 00" },
    { 88200, 16, true, 4,
      "52 49 46 46 2A 00 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 02 00 "
      "88 58 01 00 20 62 05 00 04 00 10 00 00 00 64 61 74 61 04 00 00 00" },
    // A rate that no code names, and a size that nothing is extracted of: 20 bits of two channels are 5 bytes.
    { 0, 20, true, 0,
      "52 49 46 46 26 00 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 02 00 "
      "00 00 00 00 00 00 00 00 05 00 14 00 00 00 64 61 74 61 00 00 00 00" },
};

TEST(ExtractWave, Headers)
{
    for (const HeaderCase& row : HEADERS) {
        Extraction run;
        run.put("wave", Bytes(46) + Bytes(row.dataBytes, 0x99));
        OSFILE file = 0;
        ASSERT_EQ(osOpenFile((run.disc + u"wave").c_str(), OS_FIX, &file), 0u);
        ASSERT_EQ(osSeekFile(file, 0, OS_FROM_END), 0u);
        ExtractTrack track = trackOf(1, row.bits, 96);
        track.sampleRate1 = row.rate;
        track.sampleRate2 = 12345;
        EXPECT_EQ(orvWriteWaveHeader(&track, file, row.pairs), 0u);
        (void)osCloseFile(&file);
        const Bytes wave = readFile(run.disc + u"wave");
        ASSERT_EQ(wave.size(), 46 + row.dataBytes);
        EXPECT_EQ(toHex(wave.data(), 46), row.header);
        EXPECT_EQ(Bytes(wave.begin() + 46, wave.end()), Bytes(row.dataBytes, 0x99));
        EXPECT_EQ(toHex(waveFile(row.rate, uint16_t(row.bits), row.pairs ? 2 : 1, Bytes(row.dataBytes))).substr(0, 137),
                  row.header);   // the support's own headers
    }
}

TEST(ExtractWave, HeaderOfAFileThatIsNotOpen)
{
    const ExtractTrack track = trackOf(1, 16, 16);
    EXPECT_NE(orvWriteWaveHeader(&track, 0, false), 0u);
}

}   // namespace
