// The control area of a sub-picture unit, byte by byte.
#include "menu/sub_picture.h"

#include "base/memory.h"
#include "base/result.h"
#include "tests/menu/sub_picture_rig.h"

#include <gtest/gtest.h>

namespace {

struct ControlRun {
    uint64_t result;
    Bytes unit;
};

struct Places {
    uint64_t control = 0x0064, top = 4, bottom = 0x0034;
};

ControlRun writeControl(const std::vector<SpuSequence>& sequences, const Places& at = {},
                        int64_t standard = STANDARD_NTSC)
{
    const Bytes start = fromHex("A1 B2 C3 D4");
    uint8_t* unit = nullptr;
    EXPECT_EQ(osAllocMemCopy(start.data(), 0, start.size(), &unit), 0u);
    const uint64_t result =
        orvWriteSpuControl(&unit, standard, sequences.data(), sequences.size(), at.control, at.top, at.bottom);
    return { result, takeBlock(unit) };
}

// What is appended behind A1 B2 C3 D4.
std::string controlText(const std::vector<SpuSequence>& sequences, const Places& at = {},
                        int64_t standard = STANDARD_NTSC)
{
    const ControlRun run = writeControl(sequences, at, standard);
    EXPECT_EQ(run.result, 0u);
    const std::string text = toHex(run.unit);
    EXPECT_EQ(text.substr(0, 11), "A1 B2 C3 D4");
    return text.size() > 12 ? text.substr(12) : "";
}

std::string commandText(const SpuCommand& command, const Places& at = {})
{
    const std::string text = controlText({ { 0, 0, &command, 1 } }, at);
    EXPECT_EQ(text.substr(0, 5), "00 00");
    EXPECT_EQ(text.substr(text.size() - 3), " FF");
    return text.substr(12, text.size() - 15);   // between delay and link, and the end of commands
}

std::string encodersText(uint16_t lastLine, const Places& at, int64_t standard)
{
    const SpuCommand commands[] = {
        { SPU_FORCED_START, {} },
        { SPU_SET_COLOR, { 3, 2, 1, 0 } },
        { SPU_SET_CONTRAST, { 0, 0, 0, 0 } },
        { SPU_SET_DISPLAY_AREA, { 0, 719, 2, lastLine } },
        { SPU_SET_PIXEL_ADDRESSES, {} },
    };
    return controlText({ { 0, 0, commands, 5 } }, at, standard);
}

}   // namespace

TEST(SubPictureControl, SequenceOfABlankPicture)
{
    EXPECT_EQ(encodersText(477, { 964, 4, 484 }, STANDARD_NTSC),
              "00 00 03 C4 00 03 32 10 04 00 00 05 00 02 CF 00 21 DD "
              "06 00 06 01 E6 FF");
    EXPECT_EQ(encodersText(573, { 1156, 4, 580 }, STANDARD_PAL),
              "00 00 04 84 00 03 32 10 04 00 00 05 00 02 CF 00 22 3D "
              "06 00 06 02 46 FF");
}

TEST(SubPictureControl, EachCommand)
{
    const struct {
        const char* what;
        SpuCommand command;
        const char* bytes;
    } cases[] = {
        { "forced start", { 0, {} }, "00" },
        { "start", { 1, {} }, "01" },
        { "stop", { 2, {} }, "02" },
        { "colours: emphasis 2, emphasis 1, pattern, background", { 3, { 15, 14, 13, 12 } }, "03 FE DC" },
        { "colours by the code", { 3, { 3, 2, 1, 0 } }, "03 32 10" },
        { "contrasts", { 4, { 1, 2, 4, 8 } }, "04 12 48" },
        { "full contrast", { 4, { 15, 15, 15, 0 } }, "04 FF F0" },
        { "area of a PAL picture", { 5, { 0, 719, 2, 573 } }, "05 00 02 CF 00 22 3D" },
        { "area of 12-bit values", { 5, { 0x123, 0x456, 0x789, 0xABC } }, "05 12 34 56 78 9A BC" },
        { "area of one pixel", { 5, { 0, 0, 0, 0 } }, "05 00 00 00 00 00 00" },
        { "addresses", { 6, {} }, "06 00 06 00 36" },
        { "change of colours", { 7, {} }, "07 00 02" },
    };
    for (const auto& given : cases) EXPECT_EQ(commandText(given.command), given.bytes) << given.what;
}

// A unit's pixels are declared two bytes behind the start of each field. Fields and links have 16 bits.
TEST(SubPictureControl, AddressesAndLinksOfLongUnits)
{
    const SpuCommand addresses = { SPU_SET_PIXEL_ADDRESSES, {} };
    EXPECT_EQ(controlText({ { 0, 0, &addresses, 1 } }, { 0xFFEE, 0xFFFD, 0x8000 }), "00 00 FF EE 06 FF FF 80 02 FF");
    EXPECT_EQ(controlText({ { 0, 0, &addresses, 1 } }, { 0x11D04, 4, 0xFFFE }), "00 00 1D 04 06 00 06 00 00 FF");
    EXPECT_EQ(controlText({ { 0, 0, &addresses, 1 } }, { 0x20001, 0x10003, 0x12345 }), "00 00 00 01 06 00 05 23 47 FF");
}

TEST(SubPictureControl, ASequenceWithoutCommands)
{
    EXPECT_EQ(controlText({ { 0x1234, 0, nullptr, 0 } }), "12 34 00 64 FF");
}

TEST(SubPictureControl, NoSequence)
{
    EXPECT_EQ(controlText({}), "");
}

TEST(SubPictureControl, SequencesInAChain)
{
    const SpuCommand show[] = { { SPU_SET_COLOR, { 0, 1, 2, 3 } }, { SPU_SET_PIXEL_ADDRESSES, {} }, { SPU_START, {} } };
    const SpuCommand fade[] = { { SPU_SET_CONTRAST, { 7, 7, 7, 7 } }, { SPU_CHANGE_COLORS, {} } };
    const SpuCommand hide[] = { { SPU_STOP, {} } };
    // At 100: 14 bytes; at 114: 11; at 125: 6, the last.
    EXPECT_EQ(controlText({ { 0, 14, show, 3 }, { 0x0123, 11, fade, 2 }, { 0xFFFE, 0, hide, 1 } }),
              "00 00 00 72 03 01 23 06 00 06 00 36 01 FF "
              "01 23 00 7D 04 77 77 07 00 02 FF "
              "FF FE 00 7D 02 FF");
    // Two of one kind.
    EXPECT_EQ(controlText({ { 1, 6, hide, 1 }, { 2, 0, hide, 1 } }), "00 01 00 6A 02 FF 00 02 00 6A 02 FF");
}

TEST(SubPictureControl, APlayerFollowsTheChain)
{
    const SpuCommand first[] = { { SPU_FORCED_START, {} },
                                 { SPU_SET_COLOR, { 4, 5, 6, 7 } },
                                 { SPU_SET_CONTRAST, { 15, 14, 13, 12 } },
                                 { SPU_SET_DISPLAY_AREA, { 0, 719, 0, 3 } },
                                 { SPU_SET_PIXEL_ADDRESSES, {} } };
    const SpuCommand second[] = { { SPU_STOP, {} } };
    // Four lines of two bytes, the first of each field to be skipped, so three lines a field.
    Bytes unit = fromHex("00 2E 00 10 00 01 00 02 00 03 00 01 00 02 00 03");
    uint8_t* block = nullptr;
    ASSERT_EQ(osAllocMemCopy(unit.data(), 0, unit.size(), &block), 0u);
    const SpuSequence sequences[] = { { 0, 24, first, 5 }, { 500, 0, second, 1 } };
    ASSERT_EQ(orvWriteSpuControl(&block, STANDARD_NTSC, sequences, 2, 16, 4, 10), 0u);
    const DecodedSubPicture read = decodeSubPicture(takeBlock(block), 4);
    EXPECT_EQ(read.faults, std::vector<std::string>());
    ASSERT_EQ(read.sequences.size(), 2u);
    EXPECT_EQ(read.sequences[1].offset, 40u);
    EXPECT_EQ(read.sequences[1].delay, 500u);
    EXPECT_TRUE(read.forced && read.stopped && !read.started);
    EXPECT_EQ(toHex(read.colors, 4), "07 06 05 04");
    EXPECT_EQ(toHex(read.contrasts, 4), "0C 0D 0E 0F");
    for (uint64_t line = 0; line < 4; line++) EXPECT_EQ(read.plane.at(719, line), line < 2 ? 2 : 3) << line;
}

// A control area has the same scratch as a field: 10922 sequences of six bytes are 65532.
TEST(SubPictureControl, AControlAreaHasToFitTheScratch)
{
    const SpuCommand stop = { SPU_STOP, {} };
    std::vector<SpuSequence> sequences(10922, SpuSequence{ 0, 6, &stop, 1 });
    const ControlRun full = writeControl(sequences);
    EXPECT_EQ(full.result, 0u);
    EXPECT_EQ(full.unit.size(), 4u + 65532u);
    sequences.push_back({ 0, 0, &stop, 1 });
    EXPECT_EQ(writeControl(sequences).result, ORV_SUBPICTURE_TOO_LARGE);
    const std::vector<SpuCommand> many(70000, stop);
    EXPECT_EQ(writeControl({ { 0, 0, many.data(), many.size() } }).result, ORV_SUBPICTURE_TOO_LARGE);
    const std::vector<SpuCommand> areas(10000, SpuCommand{ SPU_SET_DISPLAY_AREA, { 1, 2, 3, 4 } });
    EXPECT_EQ(writeControl({ { 0, 0, areas.data(), areas.size() } }).result, ORV_SUBPICTURE_TOO_LARGE);
}
