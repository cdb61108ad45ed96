// Menus that can't be made: results, log, what is left, in both domains. No unit of a sub-picture stays behind.
#include "tests/run/menu_project.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

namespace fs = std::filesystem;

namespace {

const std::vector<std::string> NONE = {};

// A file of the domain's first menu.
std::u16string fileOf(const DiscRun& run, const MenuDomain& domain, const std::string& ending)
{
    return assetPath(run, domain.section, ending);
}

void removeFile(const std::u16string& path)
{
    EXPECT_TRUE(fs::remove(fs::path(path)));
}

// The stages before have written their files, this one no table.
void expectStoppedIn(const DiscRun& run, const MenuDomain& domain)
{
    EXPECT_EQ(domain.manager, run.has("VTS_01_0.IFO")) << domain.name;
    EXPECT_EQ(domain.manager, run.has("VTS_01_0.BUP")) << domain.name;
    EXPECT_FALSE(run.has("VIDEO_TS.IFO")) << domain.name;
    EXPECT_FALSE(run.has("VIDEO_TS.BUP")) << domain.name;
}

// A run of one menu, of which a file is something else.
struct FaultyRun {
    explicit FaultyRun(const MenuDomain& whose) : domain(whose) {}

    uint64_t author(const MenuSpec& menu, const std::string& mode = "PAL")
    {
        return run.author(menuProject(run, discOf(domain, { menu }, mode)));
    }
    void expectStopped(uint64_t expected, uint64_t result, const std::string& what) const
    {
        EXPECT_EQ(expected, result) << domain.name << ", " << what;
        EXPECT_EQ(NONE, temporary.unitFiles()) << domain.name << ", " << what;
        expectStoppedIn(run, domain);
    }

    const MenuDomain& domain;
    TempFolder temporary;
    DiscRun run;
};

MenuSpec withBackground(const Bytes& background, const std::string& keys = "type=animated\n")
{
    return { .background = background, .keys = keys };
}

}   // namespace

// ---- the VOB ------------------------------------------------------------------------------------------------------

// Meant: the name of the stage in the text is written in another way than in its other texts.
TEST(MenuFaults, VobThatCannotBeOpened)
{
    const struct {
        uint64_t code;
        std::u16string text;
    } expected[] = {
        { 0x840007E3, u"Failed to open file in <CreateVideoTitleset>: " },
        { 0x840007D3, u"Failed to open file in <CreateVideoManager>: " },
    };
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const auto& want = expected[domain.manager ? 1 : 0];
        FaultyRun faulty(domain);
        fs::create_directory(fs::path(faulty.run.inTarget(domain.vob)));
        faulty.expectStopped(want.code, faulty.author({}), "folder");
        EXPECT_TRUE(logHolds(faulty.run.log, { { want.code, want.text + faulty.run.inTarget(domain.vob) } }));
        EXPECT_TRUE(fs::is_empty(fs::path(faulty.run.inTarget(domain.vob))));
        ASSERT_FALSE(faulty.run.calls.empty() && domain.manager);
    }
}

TEST(MenuFaults, TargetThatIsNotThere)
{
    FaultyRun faulty(MENU_DOMAINS[0]);
    const std::string project = menuProject(faulty.run, discOf(faulty.domain, { {} }));
    faulty.run.target = (faulty.run.folder.root / "missing" / "").u16string();
    EXPECT_EQ(0x840007E3u, faulty.run.author(project));
    EXPECT_TRUE(logHolds(faulty.run.log, { { 0x840007E3, u"Failed to open file in <CreateVideoTitleset>: " +
                                                             faulty.run.inTarget("VTS_01_0.VOB") } }));
    EXPECT_EQ(NONE, faulty.temporary.unitFiles());
}

// ---- the background -----------------------------------------------------------------------------------------------

// Meant: a title set does not look at whether the file was opened; the probe of nothing fails. The manager does.
TEST(MenuFaults, BackgroundThatIsNotThere)
{
    for (const bool folder : { false, true }) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            FaultyRun faulty(domain);
            const std::string project = menuProject(faulty.run, discOf(domain, { {} }));
            const std::u16string path = fileOf(faulty.run, domain, ".mpg");
            removeFile(path);
            if (folder) fs::create_directory(fs::path(path));
            const uint64_t code = domain.manager ? 0x840007EF : 0x840007D8;
            faulty.expectStopped(code, faulty.run.author(project), folder ? "folder" : "missing");
            EXPECT_TRUE(logHolds(
                faulty.run.log,
                { { code, domain.manager ? u"Failed to open file in <CreateVideoManager>: " + path
                                         : u"Video is not animated in <CreateVideoTitleSet>, file: " + path } }));
            EXPECT_TRUE(faulty.run.has(domain.vob));
        }
    }
}

TEST(MenuFaults, BackgroundOfNeitherForm)
{
    const char* const starts[] = { "",
                                   "00",
                                   "00 00 01",
                                   "00 00 01 B5 00 00 00 00",
                                   "00 00 01 E0",
                                   "00 00 01 00",
                                   "00 00 00 01 B3",
                                   "B3 01 00 00",
                                   "47 40 00 10 00 00 01 BA",
                                   "52 49 46 46" };
    for (const char* const start : starts) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            FaultyRun faulty(domain);
            const uint64_t result = faulty.author(withBackground(fromHex(start)));
            faulty.expectStopped(0x840007D8, result, start);
            const std::u16string path = fileOf(faulty.run, domain, ".mpg");
            EXPECT_TRUE(logHolds(
                faulty.run.log,
                { { 0x840007D8, domain.manager ? u"Video is not animated in <CreateVideoManager>, file: " + path
                                               : u"Video is not animated in <CreateVideoTitleSet>, file: " + path } }))
                << start;
        }
    }
}

// The four bytes that an elementary stream has to have are enough; it then holds no picture, and its menu is no still.
TEST(MenuFaults, StillOfFourBytes)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        FaultyRun faulty(domain);
        ASSERT_EQ(0u, faulty.author(withBackground(fromHex("00 00 01 B3"), "")));
        EXPECT_EQ(3u * 2048, faulty.run.get(domain.vob).size());
        EXPECT_EQ(NONE, faulty.temporary.unitFiles());
    }
}

TEST(MenuFaults, AnimatedAssetThatIsTooShort)
{
    const Movie asset = shortUnits(4);
    Bytes farUnit = asset.bytes;
    std::copy_n("\x7F\xFF\xFF\xFF", 4, farUnit.begin() + 1039);
    Bytes farthestUnit = asset.bytes;
    std::copy_n("\xFF\xFF\xFF\xFF", 4, farthestUnit.begin() + 1039);
    Bytes pastTheEnd = asset.bytes;
    pastTheEnd[1042] = 7;   // the sector behind the last
    const struct {
        const char* what;
        Bytes background;
        const char* loop;
    } cases[] = {
        { "the start code alone", fromHex("00 00 01 BA"), "" },
        { "less than a pack", slice(asset.bytes, 0, 2047), "" },
        { "one pack", slice(asset.bytes, 0, 2048), "" },
        { "less than two packs", slice(asset.bytes, 0, 4095), "" },
        { "less than a pack, with a loop point", slice(asset.bytes, 0, 2047), "loop=2\n" },
        { "nothing behind the navigation pack of the loop point", slice(asset.bytes, 0, 3 * 2048), "loop=2\n" },
        { "cut within it", slice(asset.bytes, 0, 3 * 2048 - 1), "loop=2\n" },
        { "loop point behind the end", asset.bytes, "loop=129601\n" },
        { "delay behind the end", asset.bytes, "delay=129601\n" },
        { "greatest loop point", asset.bytes, "loop=4294967295\n" },
        { "a unit that ends behind the end", pastTheEnd, "loop=2\n" },
        { "a unit of 4 TB", farUnit, "loop=2\n" },
        { "a unit of 8 TB", farthestUnit, "delay=2\n" },
    };
    for (const auto& c : cases) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            for (const bool pair : { false, true }) {
                FaultyRun faulty(domain);
                MenuSpec menu = withBackground(c.background, std::string("type=animated\n") + c.loop);
                if (pair) menu.letterbox = bmpFile(ByteImage(576));
                faulty.expectStopped(0x840007E6, faulty.author(menu), c.what);
                EXPECT_FALSE(fileExists(faulty.run.log)) << c.what;
            }
        }
    }
}

// The rest of the video ends where no whole pack is left.
TEST(MenuFaults, AnimatedAssetThatEndsWithinAPack)
{
    const Movie asset = shortUnits(2);
    for (const uint64_t more : { 1u, 4u, 2047u }) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            FaultyRun faulty(domain), whole(domain);
            ASSERT_EQ(0u, faulty.author(withBackground(asset.bytes + slice(asset.bytes, 0, more))));
            ASSERT_EQ(0u, whole.author(withBackground(asset.bytes)));
            EXPECT_EQ(whole.run.get(domain.vob), faulty.run.get(domain.vob)) << more;
            expectSoundDisc(faulty.run);
        }
    }
}

// Packs without navigation: nothing is numbered, and no menu has a cell.
TEST(MenuFaults, AnimatedAssetWithoutNavigationPack)
{
    const Bytes asset = videoPack(picture(500, 0, 1), { .clock = {}, .pts = 18000 }) + paddingPack() + paddingPack();
    for (const MenuDomain& domain : MENU_DOMAINS) {
        FaultyRun faulty(domain);
        ASSERT_EQ(0u, faulty.author(withBackground(asset)));
        EXPECT_EQ(4u * 2048, faulty.run.get(domain.vob).size());
        const Bytes ifo = faulty.run.get(domain.ifo);
        const uint64_t unit = numberAt(ifo, domain.manager ? 200 : 208, 4) * 2048 + 16;
        expectAt(ifo, unit + numberAt(ifo, unit + 12, 4), "00 00 00 00 00 00 00 40", "a chain without cells");
        EXPECT_EQ(NONE, faulty.temporary.unitFiles());
    }
}

// A clock that starts later numbers nothing; one that starts again within an asset numbers what no menu stands for.
// Both are menus without buttons.
TEST(MenuFaults, VobsThatAreNoMenus)
{
    const VobuSpec plain = { .pictureBytes = { 100 } };
    VobuSpec late = plain, again = plain;
    late.scr = 5;
    again.newVob = true;
    const struct {
        const char* what;
        Movie asset;
        const char* keys;
        std::vector<uint64_t> units, vobs;
    } cases[] = {
        { "late", animatedAsset({ .vobus = vobus(2, late) }), "", { 0, 3 }, { 0, 0 } },
        { "again",
          animatedAsset({ .vobus = vobus(1, plain) + vobus(1, again) + vobus(1, plain) }),
          "delay=43200\n",
          { 0, 2, 4 },
          { 1, 2, 2 } },
        // Behind the sub-picture the second start is no longer at 0.
        { "moved", animatedAsset({ .vobus = vobus(1, plain) + vobus(1, again) }), "", { 0, 3 }, { 1, 1 } },
    };
    for (const auto& c : cases) {
        for (const MenuDomain& domain : MENU_DOMAINS) {
            FaultyRun faulty(domain);
            ASSERT_EQ(0u, faulty.author(withBackground(c.asset.bytes, "type=animated\n" + (c.keys + buttonKeys(3)))));
            const Bytes vob = faulty.run.get(domain.vob);
            for (uint64_t i = 0; i < c.units.size(); i++) {
                const uint64_t at = c.units[i] * 2048;
                EXPECT_EQ(c.vobs[i], numberAt(vob, at + 1055, 2)) << c.what << ", unit " << i;
                expectAt(vob, at + 158, c.vobs[i] == 1 ? "03 03" : "00 00", std::string(c.what) + ", buttons");
                if (c.vobs[i] != 1) expectZeros(vob, at + 163, at + 1024, c.what);
            }
        }
    }
}

// ---- the second menu ----------------------------------------------------------------------------------------------

// The menus before stay in the VOB.
TEST(MenuFaults, SecondMenu)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        FaultyRun faulty(domain);
        const MenuDisc disc = discOf(domain, { {}, withBackground(fromHex("00 00 01 E0 00 00")), {} });
        faulty.expectStopped(0x840007D8, faulty.run.author(menuProject(faulty.run, disc)), "second of three");
        EXPECT_EQ(3u * 2048, faulty.run.get(domain.vob).size());
        // The first menu has been told.
        EXPECT_EQ(domain.kind, faulty.run.calls.back().kind);
    }
}

// ---- the temporary folder -----------------------------------------------------------------------------------------

TEST(MenuFaults, TemporaryFolderThatIsNotThere)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        FaultyRun faulty(domain);
        const std::string project = menuProject(faulty.run, discOf(domain, { {} }));
        const TempFolder missing((faulty.run.folder.root / "missing").u16string());
        faulty.expectStopped(0x840007ED, faulty.run.author(project), "no folder");
        EXPECT_FALSE(fileExists(faulty.run.log));
        EXPECT_FALSE(fileExists(faulty.run.folder / u"missing"));
    }
}

// The name is made before anything is encoded: a bad bitmap is not looked at.
TEST(MenuFaults, TemporaryNameComesFirst)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        FaultyRun faulty(domain);
        MenuSpec menu;
        menu.subPicture = {};
        const std::string project = menuProject(faulty.run, discOf(domain, { menu }));
        const TempFolder missing((faulty.run.folder.root / "missing").u16string());
        faulty.expectStopped(0x840007ED, faulty.run.author(project), "no folder and no bitmap");
    }
}
