// The reader of authored discs sees what there is to see of menus: a sound disc, then one byte of it changed.
#include "tests/run/menu_project.h"
#include "tests/support/disc_reader.h"
#include "tests/video/table_bytes.h"

namespace {

// A pair with 20 buttons and an animated menu that begins to loop with its second unit, in both domains.
// Sectors: 0 navigation pack, 1 video, 2 and 3 sub-pictures; 4, 6 and 9 navigation packs of three units, 8 sub-picture.
// Offsets of the first sub-picture's unit: 1180 bytes from sector 2, 32 on.
void authorMenus(DiscRun& run)
{
    const MenuSpec pair = { .letterbox = bmpFile(ByteImage(576)), .keys = buttonKeys(20) };
    const MenuSpec looping = { .background = shortUnits(3).bytes,
                               .keys = "type=animated\ndelay=43200\n" + buttonKeys(2) };
    MenuDisc disc = { .titleSet = { pair, looping }, .manager = { pair, looping } };
    ASSERT_EQ(0u, run.author(menuProject(run, disc)));
}

struct Change {
    const char* what;
    uint64_t at;
};

void expectSeen(const DiscRun& run, const std::string& file, const std::vector<Change>& changes)
{
    const Bytes sound = run.get(file);
    const bool isIfo = file.ends_with("IFO");
    const std::string backup = file.substr(0, 8) + ".BUP";
    for (const Change& change : changes) {
        Bytes changed = sound;
        ASSERT_LT(change.at, changed.size()) << change.what;
        changed[change.at] ^= 0x11;
        run.put(file, changed);
        if (isIfo) run.put(backup, changed);
        EXPECT_NE("", describeFaults(readDisc(run.folder.root / "target"))) << file << ", " << change.what;
    }
    run.put(file, sound);
    if (isIfo) run.put(backup, sound);
    EXPECT_EQ("", describeFaults(readDisc(run.folder.root / "target")));
}

}   // namespace

TEST(MenuReader, SoundDisc)
{
    DiscRun run;
    authorMenus(run);
    const DiscReport report = readDisc(run.folder.root / "target");
    EXPECT_EQ("", describeFaults(report));
    EXPECT_EQ(4u, report.menus);
    EXPECT_EQ(6u, report.subPictures);
    // A letterbox menu tells 18 of its buttons.
    EXPECT_EQ(2u * (18 + 3 * 2), report.buttons);
    EXPECT_EQ(2u * 4, report.subPicturePointers);
    EXPECT_EQ(2u * 4 + 4, report.navPacks);
    EXPECT_EQ(2u * 2 + 1, report.cells);
}

TEST(MenuReader, EveryFieldOfTheVobCounts)
{
    constexpr uint64_t FIRST = 0, SPU = 2 * 2048, SECOND = 4 * 2048, UNIT = 6 * 2048, LAST = 9 * 2048;
    const std::vector<Change> changes = {
        { "clock of the first pack", FIRST + 8 },
        { "audio bound", FIRST + 23 },
        { "PCI sector", FIRST + 48 },
        { "display end", FIRST + 61 },
        { "end of the last unit of a menu, told in another", UNIT + 68 },
        { "elapsed time", FIRST + 71 },
        { "highlight status", FIRST + 142 },
        { "highlight status of a later unit", UNIT + 142 },
        { "highlight end", FIRST + 147 },
        { "selection end", FIRST + 154 },
        { "button groups", FIRST + 155 },
        { "second group", FIRST + 156 },
        { "buttons", FIRST + 158 },
        { "buttons by number", FIRST + 159 },
        { "left edge of a letterbox button", FIRST + 187 + 18 * 18 + 1 },
        { "its lines", FIRST + 187 + 18 * 18 + 4 },
        { "its neighbour", FIRST + 187 + 18 * 18 + 6 },
        { "its command", FIRST + 187 + 35 * 18 + 15 },
        { "a button behind the last", SECOND + 187 + 2 * 18 + 5 },
        { "columns of a button", SECOND + 187 + 18 },
        { "unit end", FIRST + 1042 },
        { "VOB number", SECOND + 1056 },
        { "cell number", UNIT + 1058 },
        { "pointer to the sub-picture", UNIT + 1452 },
        { "pointer to an earlier one", LAST + 1452 },
        { "pointer to the letterbox sub-picture", LAST + 1453 },
        { "sub-stream", SPU + 31 },
        { "letterbox sub-stream", SPU + 2048 + 31 },
        { "size of a sub-picture", SPU + 33 },
        { "control sequence", SPU + 35 },
        { "contrast", SPU + 32 + 1156 + 9 },
        { "display area", SPU + 32 + 1156 + 14 },
        { "length of its packet", SPU + 19 },
    };
    DiscRun run;
    authorMenus(run);
    ASSERT_EQ(0x20, run.get("VTS_01_0.VOB")[SPU + 31]);
    ASSERT_EQ(fromHex("80 00 00 03"), slice(run.get("VTS_01_0.VOB"), LAST + 1449, 4));
    for (const MenuDomain& domain : MENU_DOMAINS) expectSeen(run, domain.vob, changes);
}

TEST(MenuReader, EveryFieldOfTheTablesCounts)
{
    DiscRun run;
    authorMenus(run);
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Bytes ifo = run.get(domain.ifo);
        const uint64_t unit = numberAt(ifo, domain.manager ? 200 : 208, 4) * 2048 + 16;
        const uint64_t cells = numberAt(ifo, 216, 4) * 2048, map = numberAt(ifo, 220, 4) * 2048;
        const uint64_t first = unit + numberAt(ifo, unit + 12, 4), second = unit + numberAt(ifo, unit + 20, 4);
        const uint64_t playback = second + numberAt(ifo, second + 232, 2),
                       position = second + numberAt(ifo, second + 234, 2);
        expectSeen(run, domain.ifo,
                   { { "start of the menus", 195 },
                     { "picture height", 256 },
                     { "sub-picture streams", 341 },
                     { "menus", unit + 1 },
                     { "end of the unit", unit + 7 },
                     { "place of a chain", unit + 22 },
                     { "programs", first + 2 },
                     { "cells", first + 3 },
                     { "play time", first + 7 },
                     { "sub-picture stream", first + 28 },
                     { "letterbox stream", first + 30 },
                     { "letterbox stream of another", second + 30 },
                     { "a third stream", first + 32 },
                     { "command counts", second + 237 },
                     { "cell command", playback + 3 },
                     { "first sector", playback + 11 },
                     { "last unit", playback + 19 },
                     { "last sector", playback + 23 },
                     { "VOB of a cell", position + 1 },
                     { "cell number", position + 3 },
                     { "VOBs of the cell table", cells + 1 },
                     { "VOB of an entry", cells + 8 + 12 + 1 },
                     { "start of an entry", cells + 8 + 12 + 7 },
                     { "end of an entry", cells + 8 + 11 },
                     { "size of the unit map", map + 3 },
                     { "a unit of the map", map + 4 + 4 * 2 + 3 } });
    }
}

TEST(MenuReader, VobThatIsMissingOrLonger)
{
    DiscRun run;
    authorMenus(run);
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const Bytes sound = run.get(domain.vob);
        const auto faults = [&] { return describeFaults(readDisc(run.folder.root / "target")); };
        std::filesystem::remove(run.folder.root / "target" / domain.vob);
        EXPECT_NE("", faults()) << domain.vob << " missing";
        run.put(domain.vob, slice(sound, 0, sound.size() - 2048));
        EXPECT_NE("", faults()) << domain.vob << " a sector shorter";
        run.put(domain.vob, sound + Bytes(2048, 0));
        EXPECT_NE("", faults()) << domain.vob << " a sector longer";
        run.put(domain.vob, sound);
        EXPECT_EQ("", faults());
    }
}
