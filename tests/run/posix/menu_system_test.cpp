// Menus on a system that refuses: units that can't be opened again, read or written, a VOB that can't grow.
#include "tests/run/menu_project.h"
#include "tests/run/posix/system.h"
#include "tests/support/environment.h"
#include "tests/video/table_bytes.h"

namespace {

const std::vector<std::string> NONE = {};

MenuSpec pair(MenuSpec menu)
{
    menu.letterbox = bmpFile(ByteImage(576));
    return menu;
}

MenuSpec animated(uint64_t units)
{
    return { .background = shortUnits(units).bytes, .keys = "type=animated\n" };
}

// A project whose title set was authored before, so that a run makes what is left: the manager.
std::string managerProject(DiscRun& run, const MenuSpec& menu)
{
    std::string project = menuProject(run, discOf(MENU_DOMAINS[1], { menu }));
    EXPECT_EQ(0u, run.author(project));
    return project.replace(project.find("[VTS_1]\n"), 8, "[VTS_1]\nskipvts=1\n");
}

}   // namespace

// Meant: the manager's text for a pair says "create" where nothing is created.
TEST(MenuSystem, UnitThatCannotBeOpened)
{
    const struct {
        const MenuDomain& domain;
        bool pair;
        uint64_t opens;   // units opened before
        uint64_t code;
        std::u16string text;
    } cases[] = {
        { MENU_DOMAINS[0], false, 0, 0x840007EF, u"Failed to open file in <CreateVideoTitleSet>: " },
        { MENU_DOMAINS[0], true, 0, 0x840007EF, u"Failed to open file in <CreateVideoTitleSet>: " },
        { MENU_DOMAINS[0], true, 1, 0x840007EF, u"Failed to open file in <CreateVideoTitleSet>: " },
        { MENU_DOMAINS[1], false, 0, 0x840007D1, u"Failed to open file in <CreateVideoManager>: " },
        { MENU_DOMAINS[1], true, 0, 0x840007D1, u"Failed to create file in <CreateVideoManager>: " },
        { MENU_DOMAINS[1], true, 1, 0x840007D1, u"Failed to create file in <CreateVideoManager>: " },
    };
    for (const auto& c : cases) {
        for (const MenuSpec& menu : { MenuSpec(), animated(2) }) {
            const TempFolder temporary;
            DiscRun run;
            const std::string project = menuProject(run, discOf(c.domain, { c.pair ? pair(menu) : menu }));
            systemAnswers.vanishingUnits = true;
            systemAnswers.opensBeforeIt = c.opens;
            const uint64_t result = run.author(project);
            systemAnswers = {};
            EXPECT_EQ(c.code, result) << c.domain.name << c.pair << c.opens;
            // The unit's name ends in six characters of the system's choice, in the half that the log leaves out.
            EXPECT_TRUE(logHolds(run.log, { { c.code, c.text + temporary.dir.prefix() + u"spuXXXXXX" } }));
            EXPECT_EQ(NONE, temporary.unitFiles());
            EXPECT_EQ(Bytes(), run.get(c.domain.vob));
        }
    }
}

// Animated menus look at whether a unit can be read; stills don't.
TEST(MenuSystem, UnitThatCannotBeRead)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        for (const bool two : { false, true }) {
            for (uint64_t opens = 0; opens <= (two ? 1u : 0u); opens++) {
                const TempFolder temporary;
                DiscRun run;
                const std::string project = menuProject(run, discOf(domain, { two ? pair(animated(2)) : animated(2) }));
                systemAnswers.unreadableUnits = true;
                systemAnswers.opensBeforeIt = opens;
                const uint64_t result = run.author(project);
                systemAnswers = {};
                EXPECT_EQ(0x840007E7u, result) << domain.name << two << opens;
                EXPECT_FALSE(fileExists(run.log));
                EXPECT_EQ(NONE, temporary.unitFiles());
            }
        }
        const TempFolder temporary;
        DiscRun run;
        const std::string project = menuProject(run, discOf(domain, { {} }));
        systemAnswers.unreadableUnits = true;
        const uint64_t result = run.author(project);
        systemAnswers = {};
        EXPECT_EQ(0u, result) << domain.name;
        EXPECT_EQ(NONE, temporary.unitFiles());
    }
}

// A unit of 1180 bytes where files may have 1000
TEST(MenuSystem, UnitThatCannotBeWritten)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        for (const bool two : { false, true }) {
            const TempFolder temporary;
            DiscRun run;
            const MenuSpec menu = two ? pair({}) : MenuSpec();
            const std::string project =
                domain.manager ? managerProject(run, menu) : menuProject(run, discOf(domain, { menu }));
            writeFile(run.project, project);
            uint64_t result = 0;
            {
                const FileLimit limit(1000);
                result = run.author();
            }
            EXPECT_EQ(0x840007EEu, result) << domain.name;
            EXPECT_FALSE(fileExists(run.log));
            EXPECT_EQ(NONE, temporary.unitFiles());
        }
    }
}

// An animated menu whose VOB may not grow: at its first sector, its second, in the sub-picture, in the rest
TEST(MenuSystem, VobThatCannotBeWritten)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        for (const bool two : { false, true }) {
            const uint64_t sectors = two ? 6 : 5;   // of the whole VOB
            for (uint64_t most = 1; most < sectors; most++) {
                const TempFolder temporary;
                DiscRun run;
                const MenuSpec menu = two ? pair(animated(2)) : animated(2);
                const std::string project =
                    domain.manager ? managerProject(run, menu) : menuProject(run, discOf(domain, { menu }));
                writeFile(run.project, project);
                uint64_t result = 0;
                {
                    const FileLimit limit(most * 2048 + 1);
                    result = run.author();
                }
                EXPECT_EQ(0x840007E8u, result) << domain.name << ", " << most << " sectors";
                EXPECT_FALSE(fileExists(run.log));
                EXPECT_EQ(NONE, temporary.unitFiles());
            }
        }
    }
}

// The units before a loop point are copied with the same care.
TEST(MenuSystem, LeadingUnitsThatCannotBeWritten)
{
    for (uint64_t most = 1; most < 9; most++) {
        const TempFolder temporary;
        DiscRun run;
        MenuSpec menu = animated(4);
        menu.keys += "loop=86400\n";
        writeFile(run.project, menuProject(run, discOf(MENU_DOMAINS[0], { menu })));
        uint64_t result = 0;
        {
            const FileLimit limit(most * 2048 + 100);
            result = run.author();
        }
        EXPECT_EQ(0x840007E8u, result) << most;
        EXPECT_EQ(NONE, temporary.unitFiles());
    }
}

// The VOB is opened again for its size, for the scan and, by a title set, for its size once more: the manager has taken
// it before.
TEST(MenuSystem, VobThatVanishes)
{
    const std::u16string count = u"Failed to open file in <orvCountFilePacks>: ";
    const std::u16string scan = u"Failed to open file in <orvGetMovieInfo>: ";
    for (const MenuDomain& domain : MENU_DOMAINS) {
        const std::vector<std::u16string> texts[] = { { count, scan }, { scan }, { count } };
        for (uint64_t opens = 0; opens < 3; opens++) {
            DiscRun run;
            const std::string project = menuProject(run, discOf(domain, { {} }));
            systemAnswers.vanishing = domain.vob;
            systemAnswers.opensBeforeIt = opens;
            const uint64_t result = run.author(project);
            systemAnswers = {};
            const bool fails = opens < 2 || !domain.manager;
            EXPECT_EQ(fails ? 0x84000FB4u : 0u, result) << domain.name << opens;
            std::vector<LogEntry> entries;
            for (const std::u16string& text : texts[opens])
                entries.push_back({ 0x84000FB4, text + run.inTarget(domain.vob) });
            EXPECT_TRUE(logHolds(run.log, fails ? entries : std::vector<LogEntry>()));
        }
    }
}

// A menu whose background is the VOB that it is laid into: what lay there before it is its animation, not what it adds
// itself. (Where files are shared as their openers say, it could not be opened.)
TEST(MenuSystem, BackgroundThatIsTheVobItself)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        for (const bool two : { false, true }) {
            const TempFolder temporary;
            DiscRun run;
            const MenuSpec second = two ? pair({}) : MenuSpec();
            const std::string project = menuProject(run, discOf(domain, { {}, second }));
            const std::u16string background = assetPath(run, domain.manager ? "VMG_MENU2" : "VTS_1_MENU2", ".mpg");
            std::filesystem::remove(std::filesystem::path(background));
            std::filesystem::create_symlink(std::filesystem::path(run.inTarget(domain.vob)),
                                            std::filesystem::path(background));
            writeFile(run.project, project);
            uint64_t result = 0;
            {
                const FileLimit limit(0x100000);   // so that the test ends in any case
                result = run.author();
            }
            EXPECT_EQ(0u, result) << domain.name;
            // 3 of the first menu; those again and the second one's sub-pictures
            EXPECT_EQ((two ? 8u : 7u) * 2048, run.get(domain.vob).size()) << domain.name;
        }
    }
}
