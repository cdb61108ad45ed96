#include "tests/readers/menu_vob.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

constexpr uint64_t PACK = 2048;

static uint32_t clockOf(const uint8_t* pack)
{
    return uint32_t(pack[4] & 0x18) << 27 | uint32_t(pack[4] & 3) << 28 | uint32_t(pack[5]) << 20 |
           uint32_t(pack[6] & 0xF8) << 12 | uint32_t(pack[6] & 3) << 13 | uint32_t(pack[7]) << 5 | pack[8] >> 3;
}

std::vector<MenuPack> menuPacks(const std::vector<uint8_t>& vob)
{
    EXPECT_EQ(vob.size() % PACK, 0u);
    std::vector<MenuPack> packs;
    uint32_t page = 0;
    for (uint64_t at = 0; at + PACK <= vob.size(); at += PACK) {
        const uint8_t* pack = vob.data() + at;
        EXPECT_TRUE(pack[0] == 0 && pack[1] == 0 && pack[2] == 1 && pack[3] == 0xBA) << at;
        MenuPack found = { .clock = clockOf(pack), .stream = pack[17], .at = at };
        if (found.stream == 0xBB && found.clock == 0) page++;
        found.page = page;
        const uint64_t header = 9u + pack[22], length = uint64_t(pack[18]) << 8 | pack[19];
        if (found.stream != 0xBB) {
            EXPECT_LE(14 + 6 + length, PACK) << at;
            found.payload = at + 14 + header;
            found.bytes = 6 + length - header;
        }
        if (found.stream == 0xBD) {
            found.subStream = pack[14 + header];
            found.payload++;
            found.bytes--;
        }
        packs.push_back(found);
    }
    return packs;
}

/** The packs of one page that hold this sub-picture, with its contrasts raised: a unit is transparent by itself, until
   a player lays the colours of a button over it, and a decoder would show nothing. */
static std::vector<uint8_t> visibleUnit(const std::vector<uint8_t>& vob, uint32_t page, int stream)
{
    std::vector<uint8_t> copy;
    std::vector<uint64_t> unit;   // where its bytes stand in the copy
    for (const MenuPack& pack : menuPacks(vob)) {
        if (pack.page != page) continue;
        if (pack.stream == 0xBD && pack.subStream != 0x20 + stream) continue;
        if (pack.stream == 0xBD) {
            for (uint64_t i = 0; i < pack.bytes; i++) unit.push_back(copy.size() + pack.payload - pack.at + i);
        }
        copy.insert(copy.end(), vob.begin() + int64_t(pack.at), vob.begin() + int64_t(pack.at + PACK));
    }
    const auto word = [&](uint64_t at) { return uint64_t(copy[unit.at(at)]) << 8 | copy[unit.at(at + 1)]; };
    EXPECT_EQ(word(0), unit.size());
    const uint64_t contrast = word(2) + 8;   // behind date, link, start and colours
    EXPECT_EQ(copy[unit.at(contrast)], 4);
    EXPECT_EQ(word(contrast + 1), 0u) << "the unit is visible by itself";
    copy[unit.at(contrast + 1)] = 0xFF;
    copy[unit.at(contrast + 2)] = 0xF0;
    return copy;
}

ByteImage decodeSubPicture(const fs::path& vob, Standard standard, uint32_t page, int stream)
{
    const fs::path source = shelve(visibleUnit(bytesOf(vob), page, stream));
    const fs::path timed = fs::path(source).concat(".mkv"), shown = fs::path(source).concat(".rgb");
    char number[8];
    snprintf(number, sizeof(number), "0x%02x", unsigned(0x20 + stream));
    // A unit has no end, so the encoder's filters would show it for no time: a copy gets one.
    runEncoder("-i " + source.string() + " -map 0:i:" + number + " -c copy -bsf:s setts=duration=900000 " +
               timed.string());
    const std::string size = "720x" + std::to_string(pictureLines(standard));
    runEncoder(
        "-palette 000000,010000,020000,030000,0,0,0,0,0,0,0,0,0,0,0,0 -i " + timed.string() +
        " -filter_complex 'color=black:s=" + size +
        ":d=2,format=rgb24[black];[black][0:s:0]overlay=format=rgb' -ss 1 -frames:v 1 -pix_fmt rgb24 -f rawvideo " +
        shown.string());
    const std::vector<uint8_t> pixels = bytesOf(shown);
    ByteImage image(pictureLines(standard));
    EXPECT_EQ(pixels.size(), image.pixels.size() * 3);
    for (size_t i = 0; i < image.pixels.size() && 3 * i + 2 < pixels.size(); i++) image.pixels[i] = pixels[3 * i];
    return image;
}
