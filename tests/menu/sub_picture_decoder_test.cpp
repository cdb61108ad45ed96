// The tests' own reader of sub-picture units, held against units written out by hand.
#include "tests/support/sub_picture_decoder.h"

#include <gtest/gtest.h>

static std::string lineText(const DecodedSubPicture& unit, uint64_t line, uint64_t count)
{
    std::string text;
    for (uint64_t x = 0; x < count; x++) {
        const uint8_t code = unit.plane.at(x, line);
        text += code == SPU_NOTHING ? '.' : char('0' + code);
    }
    return text;
}

// An area of columns 2 to 9 and lines 1 to 3 in a picture of six lines.
static const char SMALL_UNIT[] = "00 2C 00 0A"
                                 "5A 00 03"   // line 1: one of 1, two of 2, the rest of 3
                                 "00 01"      // line 3: all of 1
                                 "22"         // line 2, without an end code: 8 of 2
                                 "00 00 00 26 00 03 32 10 04 FE DC 05 00 20 09 00 10 03 06 00 04 00 09 07 00 02 01 FF"
                                 "00 05 00 26 02 FF";

TEST(SubPictureDecoder, ReadsAUnitWrittenByHand)
{
    const DecodedSubPicture unit = decodeSubPicture(fromHex(SMALL_UNIT), 6);
    EXPECT_EQ(unit.faults, std::vector<std::string>());
    EXPECT_EQ(unit.size, 44u);
    EXPECT_EQ(unit.controlOffset, 10u);
    ASSERT_EQ(unit.sequences.size(), 2u);
    EXPECT_EQ(unit.sequences[0].offset, 10u);
    EXPECT_EQ(unit.sequences[0].next, 38u);
    EXPECT_EQ(unit.sequences[0].commands.size(), 7u);
    EXPECT_EQ(unit.sequences[1].delay, 5u);
    EXPECT_EQ(unit.sequences[1].next, 38u);
    ASSERT_EQ(unit.sequences[1].commands.size(), 1u);
    EXPECT_EQ(unit.sequences[1].commands[0].number, 2);
    EXPECT_TRUE(unit.forced && unit.started && unit.stopped);
    EXPECT_EQ(toHex(unit.colors, 4), "00 01 02 03");
    EXPECT_EQ(toHex(unit.contrasts, 4), "0C 0D 0E 0F");
    EXPECT_EQ(std::vector<uint64_t>({ unit.left, unit.right, unit.top, unit.bottom }),
              std::vector<uint64_t>({ 2, 9, 1, 3 }));
    EXPECT_EQ(unit.fieldOffset[0], 4u);
    EXPECT_EQ(unit.fieldEnd[0], 9u);
    EXPECT_EQ(unit.fieldOffset[1], 9u);
    EXPECT_EQ(unit.fieldEnd[1], 10u);
    EXPECT_EQ(lineText(unit, 0, 12), "............");
    EXPECT_EQ(lineText(unit, 1, 12), "..12233333..");
    EXPECT_EQ(lineText(unit, 2, 12), "..22222222..");
    EXPECT_EQ(lineText(unit, 3, 12), "..11111111..");
    EXPECT_EQ(lineText(unit, 4, 12), "............");
}

TEST(SubPictureDecoder, ReadsEachLengthOfCode)
{
    // 3, 4, 15, 16, 63, 64 and 255 pixels of 3, 2, 1, 0, 3, 2, 1; then 300 of 0 and a last one of 3.
    const Bytes bytes = fromHex("F1 23 D0 40 0F F0 10 20 3F D0 3F C0 B4 70");
    std::vector<std::string> faults;
    uint64_t end = 0;
    const std::vector<Bytes> lines = decodeSpuLines(bytes, 0, bytes.size(), 721, 1, &faults, &end);
    EXPECT_EQ(faults, std::vector<std::string>());
    EXPECT_EQ(end, bytes.size());
    Bytes expected;
    for (const auto& [count, code] : std::vector<std::pair<uint64_t, uint8_t>>{ { 3, 3 },
                                                                                { 4, 2 },
                                                                                { 15, 1 },
                                                                                { 16, 0 },
                                                                                { 63, 3 },
                                                                                { 64, 2 },
                                                                                { 255, 1 },
                                                                                { 255, 0 },
                                                                                { 45, 0 },
                                                                                { 1, 3 } }) {
        expected.insert(expected.end(), count, code);
    }
    EXPECT_EQ(toHex(lines.at(0)), toHex(expected));
}

// One change to the small unit each, and what is said of it.
TEST(SubPictureDecoder, ReportsWhatBreaksTheFormat)
{
    const struct {
        uint64_t at;
        const char* bytes;
        std::vector<std::string> faults;
    } cases[] = {
        { 0, "00 2D", { "0: size 45 for 44 bytes" } },
        { 2, "00 03", { "2: a control sequence within the head" } },
        { 2, "00 29", { "41: a sequence outside the unit", "41: no display area" } },
        { 9, "26", { "9: run of 9 where the line has 8" } },
        { 4, "80", { "6: the nibble that fills a line's last byte is not 0" } },
        { 12, "00 0C", { "12: the next sequence is not where this one ends" } },
        { 12, "00 0A", { "38: 6 bytes behind the last sequence" } },
        { 14, "08", { "14: unknown command 8", "10: no display area" } },
        { 22, "2D 0F FF", { "10: a display area outside the picture" } },
        { 25, "06", { "10: a display area outside the picture" } },
        { 29, "00 03", { "3: pixels of field 0 outside the unit's pixel data" } },
        { 29, "00 09", { "10: pixels end within a line" } },
        { 31, "00 0A", { "10: pixels of field 1 outside the unit's pixel data" } },
        { 34, "00 01", { "33: a change of colours smaller than its own size" } },
        { 43, "00", { "44: a sequence without an end of commands" } },
        { 42, "03 FF", { "42: a command that is cut off" } },
    };
    for (const auto& change : cases) {
        SCOPED_TRACE(std::to_string(change.at) + ": " + change.bytes);
        Bytes unit = fromHex(SMALL_UNIT);
        const Bytes bytes = fromHex(change.bytes);
        std::copy(bytes.begin(), bytes.end(), unit.begin() + std::ptrdiff_t(change.at));
        EXPECT_EQ(decodeSubPicture(unit, 6).faults, change.faults);
    }
}

TEST(SubPictureDecoder, ReportsALongerCodeThanNeeded)
{
    const Bytes bytes = fromHex("00 05 00 00");   // one pixel of 1 in 16 bits
    std::vector<std::string> faults;
    const std::vector<Bytes> lines = decodeSpuLines(bytes, 0, bytes.size(), 2, 1, &faults);
    EXPECT_EQ(faults, std::vector<std::string>{ "0: a run in a longer code than it needs" });
    EXPECT_EQ(toHex(lines.at(0)), "01 00");
}

TEST(SubPictureDecoder, ReadsNothingBehindACutUnit)
{
    const Bytes whole = fromHex(SMALL_UNIT);
    for (uint64_t count = 0; count < whole.size(); count++) {
        const Bytes cut(whole.begin(), whole.begin() + std::ptrdiff_t(count));
        EXPECT_FALSE(decodeSubPicture(cut, 6).faults.empty()) << count;
    }
}
