// Sector numbers of seeded discs against a plain reckoning: files of any size, there or not, with all results.
#include "tests/disc/disc_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <string>

namespace {

constexpr uint64_t SECTOR = 2048;

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
    uint64_t bytes(uint64_t sectors)
    {
        static const uint64_t SIZES[] = { 0, 1, 2047, 2048, 2049, 4095, 4096 };
        return oneIn(3) ? SIZES[below(std::size(SIZES))] : below(sectors * SECTOR);
    }
};

// A disc before a call, then after it.
struct Reckoned {
    Files files;
    std::map<uint64_t, bool> skipped;
};

std::string stemOf(const std::string& folder, uint64_t number)
{
    return folder + (number < 10 ? "VTS_0" : "VTS_") + std::to_string(number) + "_";
}

uint64_t numberAt(const Bytes& bytes, uint64_t at, uint64_t size)
{
    uint64_t number = 0;
    for (uint64_t i = 0; i < size; i++) number = number * 256 + bytes.at(at + i);
    return number;
}

void setNumber(Bytes& bytes, uint64_t at, uint64_t number)
{
    for (uint64_t i = 0; i < 4; i++) bytes.at(at + i) = uint8_t(number >> (24 - 8 * i));
}

uint64_t opened(const Files& files, const std::string& name)
{
    if (files.contains(name + "/")) return IS_A_FOLDER;
    return files.contains(name) ? 0 : FILE_MISSING;
}

uint64_t sizeOf(const Files& files, const std::string& name)
{
    return opened(files, name) == 0 ? files.at(name).size() : 0;
}

uint64_t reckonTitleSet(Reckoned& disc, uint64_t number, uint64_t& sectors)
{
    const bool skipped = disc.skipped[number];
    const std::string stem = stemOf(skipped ? "previous/" : "disc/", number);
    if (const uint64_t error = opened(disc.files, stem + "0.IFO")) return error;
    Bytes& ifo = disc.files[stem + "0.IFO"];
    if (ifo.size() < SECTOR) return 0x840007EB;
    const uint64_t menu = sizeOf(disc.files, stem + "0.VOB");
    uint64_t titles = 0, ninth = 0;
    for (uint64_t k = 1; k <= 9; k++) {
        titles += sizeOf(disc.files, stem + std::to_string(k) + ".VOB") / SECTOR;
        ninth = opened(disc.files, stem + std::to_string(k) + ".VOB");
    }
    sectors = (menu + 2 * ifo.size()) / SECTOR + titles;
    if (skipped) return ninth;
    setNumber(ifo, 0x0C, sectors - 1);
    setNumber(ifo, 0x1C, ifo.size() / SECTOR - 1);
    setNumber(ifo, 0xC0, ifo.size() / SECTOR);
    setNumber(ifo, 0xC4, (menu + ifo.size()) / SECTOR);
    if (!disc.files.contains(stem + "0.BUP/")) disc.files[stem + "0.BUP"] = ifo;
    return 0;
}

uint64_t reckon(Reckoned& disc)
{
    if (opened(disc.files, "disc/VIDEO_TS.IFO")) return 0x840007D5;
    Bytes ifo = disc.files["disc/VIDEO_TS.IFO"];
    if (ifo.size() < SECTOR) return 0x840007E9;
    const uint64_t tableAt = numberAt(ifo, 0xC4, 4) * SECTOR;
    if (tableAt + SECTOR > ifo.size()) return 0x840007E9;
    Bytes table(ifo.begin() + ptrdiff_t(tableAt), ifo.begin() + ptrdiff_t(tableAt + SECTOR));
    const uint64_t backup = opened(disc.files, "disc/VIDEO_TS.BUP");
    const uint64_t count = numberAt(ifo, 0x3E, 2);
    uint64_t running = (sizeOf(disc.files, "disc/VIDEO_TS.BUP") + 2 * ifo.size()) / SECTOR;
    setNumber(ifo, 0x0C, running - 1);
    setNumber(ifo, 0x1C, ifo.size() / SECTOR - 1);
    setNumber(ifo, 0xC0, ifo.size() / SECTOR);
    for (uint64_t n = 1; n <= count; n++) {
        if (8 + 12 * n <= SECTOR) setNumber(table, 8 + 12 * (n - 1) + 8, running);
        uint64_t sectors = 0;
        if (const uint64_t error = reckonTitleSet(disc, n, sectors)) return error;
        running += sectors;
    }
    std::copy(table.begin(), table.end(), ifo.begin() + ptrdiff_t(tableAt));
    disc.files["disc/VIDEO_TS.IFO"] = ifo;
    if (backup == IS_A_FOLDER) return 0x840007EA;
    if (backup == 0 && OPEN_BACKUP_RESULT) return OPEN_BACKUP_RESULT;
    disc.files["disc/VIDEO_TS.BUP"] = ifo;
    return 0;
}

void putVob(DiscRig& rig, Dice& dice, const std::string& name)
{
    if (dice.oneIn(40))
        rig.putFolder(name + "/");
    else
        rig.put(name, Bytes(dice.bytes(6), uint8_t(dice.below(256))));
}

void putRandomTitleSet(DiscRig& rig, Dice& dice, const std::string& folder, uint64_t number, bool skipped)
{
    const std::string stem = stemOf(folder, number);
    if (dice.oneIn(30)) return;
    const uint64_t bytes = dice.oneIn(30) ? dice.below(SECTOR) : SECTOR + dice.bytes(4);
    if (dice.oneIn(60))
        rig.putFolder(stem + "0.IFO/");
    else
        rig.put(stem + "0.IFO", makeIfo(bytes, uint8_t(dice.below(256))));
    if (dice.oneIn(2))
        rig.put(stem + "0.BUP", makeIfo(dice.bytes(4), uint8_t(dice.below(256))));
    else if (dice.oneIn(10))
        rig.putFolder(stem + "0.BUP/");
    if (dice.oneIn(2)) putVob(rig, dice, stem + "0.VOB");
    const uint64_t often = 1 + dice.below(5);
    for (uint64_t k = 1; k <= 11; k++) {
        if (dice.oneIn(often) || (k == 9 && skipped && !dice.oneIn(6))) {
            putVob(rig, dice, stem + std::to_string(k) + ".VOB");
        }
    }
}

std::map<uint64_t, bool> putRandomDisc(DiscRig& rig, Dice& dice)
{
    const bool many = dice.oneIn(40);
    const uint64_t titleSets = many ? 168 + dice.below(6) : dice.below(8);
    const uint64_t sectors = 1 + dice.below(5);
    uint64_t table = dice.below(sectors);
    if (dice.oneIn(20)) table = dice.oneIn(2) ? sectors + dice.below(3) : dice.source();
    uint64_t count = titleSets;
    if (dice.oneIn(12)) count = dice.below(12);
    uint64_t bytes = sectors * SECTOR + (dice.oneIn(2) ? 0 : dice.below(SECTOR));
    if (dice.oneIn(25)) bytes = dice.below(SECTOR);
    if (!dice.oneIn(25)) rig.put("disc/VIDEO_TS.IFO", makeManager(bytes, uint16_t(count), uint32_t(table)));
    if (dice.oneIn(3))
        rig.put("disc/VIDEO_TS.BUP", makeIfo(dice.bytes(6), 7));
    else if (dice.oneIn(10))
        rig.putFolder("disc/VIDEO_TS.BUP/");
    if (dice.oneIn(2)) rig.put("disc/VIDEO_TS.VOB", Bytes(dice.bytes(5)));

    std::map<uint64_t, bool> skipped;
    std::string project = "[VMG]\nskipvts=1\n";
    for (uint64_t n = 1; n <= titleSets; n++) {
        if (many) {
            rig.put(stemOf("disc/", n) + "0.IFO", makeIfo(SECTOR + dice.below(100), uint8_t(n)));
            continue;
        }
        skipped[n] = dice.oneIn(6);
        project += "[VTS_" + std::to_string(n) + "]\nskipvts=" + (skipped[n] ? "1" : "0") + "\n";
        if (!skipped[n] || dice.oneIn(2)) putRandomTitleSet(rig, dice, "disc/", n, false);
        if (skipped[n] || dice.oneIn(2)) putRandomTitleSet(rig, dice, "previous/", n, skipped[n]);
    }
    if (!dice.oneIn(10) || !skipped.empty()) rig.put("project.ini", project);
    return skipped;
}

}   // namespace

TEST(StructureCheck, RandomDiscs)
{
    Dice dice{ std::mt19937(711) };
    std::map<uint64_t, uint64_t> results;
    for (uint64_t round = 0; round < 250; round++) {
        SCOPED_TRACE(round);
        DiscRig rig;
        const std::map<uint64_t, bool> skipped = putRandomDisc(rig, dice);
        Reckoned disc = { rig.before, skipped };
        const uint64_t expected = reckon(disc);
        ASSERT_EQ(rig.check(), expected);
        ASSERT_EQ(rig.differences(disc.files), "");
        results[expected]++;
    }
    // The dice showed every result, and success most often.
    EXPECT_GT(results[0], 60u);
    for (const uint64_t result : { FILE_MISSING, IS_A_FOLDER, uint64_t(0x840007D5), uint64_t(0x840007E9),
                                   uint64_t(0x840007EA), uint64_t(0x840007EB) }) {
        EXPECT_GT(results[result], 0u) << result;
    }
}
