// Cells of navigation packs against a plain reckoning: seeded lists of chapters in any order and spelling, seeded
// packs.
#include "tests/disc/raw_chapters_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

struct Dice {
    std::mt19937 source;

    uint64_t below(uint64_t limit)
    {
        return source() % limit;
    }
    bool oneIn(uint64_t count)
    {
        return below(count) == 0;
    }
};

struct Chapters {
    std::string text;                  // of the project
    uint64_t count = 0;                // as the key says
    std::vector<uint32_t> positions;   // as the keys say, a missing one as 0
};

uint32_t randomPosition(Dice& dice, uint64_t span)
{
    switch (dice.below(6)) {
    case 0: return 0;
    case 1: return uint32_t(0xFFFFFFFF - dice.below(3));
    case 2: return uint32_t(0x7FFFFFFF + dice.below(3));
    default: return uint32_t(dice.below(span));
    }
}

Chapters randomChapters(Dice& dice, uint64_t span)
{
    static const uint64_t COUNTS[] = { 0, 1, 2, 5, 17, 253, 254, 255, 256 };
    static const char* const TAILS[] = { "", "", ",1,2", " , 1", "x", ".5", "-1", " 7", ",,,", "\t" };
    Chapters chapters;
    chapters.count = dice.oneIn(3) ? COUNTS[dice.below(std::size(COUNTS))] : 1 + dice.below(20);
    std::vector<std::string> lines;
    if (chapters.count || dice.oneIn(2)) lines.push_back("chapters=" + std::to_string(chapters.count));
    for (uint64_t i = 1; i <= chapters.count; i++) {
        uint32_t position = randomPosition(dice, span);
        if (dice.oneIn(6)) {
            position = 0;   // a key that is missing, empty or no number
            if (dice.oneIn(2)) lines.push_back("chapter" + std::to_string(i) + (dice.oneIn(2) ? "=" : "=none"));
        } else {
            lines.push_back("Chapter" + std::to_string(i) + " = " + std::to_string(position) +
                            TAILS[dice.below(std::size(TAILS))]);
        }
        chapters.positions.push_back(position);
    }
    for (uint64_t i = lines.size(); i > 1; i--) std::swap(lines[i - 1], lines[dice.below(i)]);
    chapters.text = "[VTS_02]\nchapters=9\n[VTS_2]\n";
    for (const std::string& line : lines) chapters.text += line + (dice.oneIn(2) ? "\r\n" : "\n");
    return chapters;
}

uint32_t numberAt(const Bytes& bytes, uint64_t at)
{
    return uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8 | bytes[at + 3];
}

Bytes randomPack(Dice& dice, const Chapters& chapters, uint64_t span)
{
    Bytes pack(2048);
    for (uint8_t& byte : pack) byte = uint8_t(dice.below(256));
    setBytes(pack, 0, "00 00 01 BA");
    setBytes(pack, 16, "01 BB");
    setBytes(pack, 40, "01 BF");
    uint32_t position = randomPosition(dice, span);
    if (!chapters.positions.empty() && dice.oneIn(2)) {
        position = chapters.positions[dice.below(chapters.positions.size())] + uint32_t(dice.below(3)) - 1;
    }
    setBytes(pack, 1031, hexOf(position));
    if (dice.oneIn(2)) pack[1058] = uint8_t(1 + dice.below(chapters.count + 1));
    if (dice.oneIn(3)) setBytes(pack, 65, toHex(pack.data() + 61, 4));
    if (dice.oneIn(8)) pack[dice.below(4)] ^= uint8_t(1 << dice.below(8));
    if (dice.oneIn(8)) pack[16 + dice.below(2)] ^= uint8_t(1 << dice.below(8));
    if (dice.oneIn(8)) pack[40 + dice.below(2)] ^= uint8_t(1 << dice.below(8));
    return pack;
}

Answer reckon(const Chapters& chapters, const Bytes& pack)
{
    Answer answer = { 0, UNTOUCHED, UNTOUCHED, pack };
    if (chapters.count == 0) return answer;
    if (chapters.count > 254)
        answer.result = 0x840007E0;
    else if (numberAt(pack, 0) != 0x1BA)
        answer.result = 0x84000FAF;
    else if (numberAt(pack, 16) >> 16 != 0x1BB || numberAt(pack, 40) >> 16 != 0x1BF)
        answer.result = 0x84002329;
    if (answer.result) return answer;
    uint64_t cell = 1;
    uint32_t last = 0;
    for (const uint32_t position : chapters.positions) {
        if (position != 0) last = position;
        if (last <= numberAt(pack, 1031)) cell++;
    }
    answer.changed = cell != pack[1058] ? 1 : 0;
    answer.sector[1058] = uint8_t(cell);
    answer.nextVobu = numberAt(pack, 61) == numberAt(pack, 65) ? 0xFFFFFFFF : numberAt(pack, 1039);
    return answer;
}

}   // namespace

TEST(RawChapters, RandomPacks)
{
    Dice dice{ std::mt19937(20260) };
    uint64_t results[4] = {}, changed = 0, last = 0;
    for (uint64_t round = 0; round < 150; round++) {
        const uint64_t span = dice.oneIn(2) ? 20 : 100000000;
        const Chapters chapters = randomChapters(dice, span);
        const ChapterProject project(chapters.text);
        for (uint64_t i = 0; i < 6; i++) {
            SCOPED_TRACE("round " + std::to_string(round) + "\n" + chapters.text);
            const Bytes pack = randomPack(dice, chapters, span);
            const Answer expected = reckon(chapters, pack);
            const Answer answer = project.ask(pack, 2);
            ASSERT_EQ(answer.result, expected.result);
            ASSERT_EQ(answer.nextVobu, expected.nextVobu);
            ASSERT_EQ(answer.changed, expected.changed);
            ASSERT_EQ(toHex(answer.sector), toHex(expected.sector));
            results[answer.result == 0 ? 0 : answer.result == 0x840007E0 ? 1 : answer.result == 0x84000FAF ? 2 : 3]++;
            changed += answer.changed == 1 ? 1 : 0;
            last += answer.nextVobu == 0xFFFFFFFF ? 1 : 0;
        }
    }
    // The dice showed every side.
    for (const uint64_t count : results) EXPECT_GT(count, 20u);
    EXPECT_GT(changed, 100u);
    EXPECT_GT(last, 50u);
}
