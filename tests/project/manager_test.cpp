#include "base/result.h"
#include "project/reader.h"
#include "tests/project/project_file.h"

namespace {

constexpr int64_t PAL = 1;
const std::string MENU = "background=bg.mpg\nsubpicture=sp.bmp\n";

struct Read {
    explicit Read(const std::string& text) : project(text)
    {
        result = orvReadManager(context.get(), project.file, PAL, &context->vmg);
    }

    ProjectFile project;
    ContextPtr context = makeContext(project);
    uint64_t result;
};

}   // namespace

TEST(Manager, TitleSetCount)
{
    const struct {
        std::string text;
        uint64_t result, count;
    } cases[] = {
        { "", 0x840003F4, 0 },
        { "[VMG]\ntitlesets=0\n", 0x840003F4, 0 },
        { "[VMG]\ntitlesets=many\n", 0x840003F4, 0 },
        { "[VMG]\ntitlesets=100\n", 0x840007D7, 0 },
        { "[VMG]\ntitlesets=4294967295\n", 0x840007D7, 0 },
        { "[VMG]\ntitlesets=1\n[VTS_1]\nsource=a\n", 0, 1 },
    };
    for (const auto& c : cases) {
        const Read read(c.text);
        EXPECT_EQ(read.result, c.result) << c.text;
        EXPECT_EQ(read.context->head.titleSetCount, c.count) << c.text;
        EXPECT_TRUE(read.project.logged({})) << c.text;
    }
}

TEST(Manager, NinetyNineTitleSets)
{
    std::string text = "[VMG]\ntitlesets=99\n";
    for (int n = 1; n <= 99; n++) text += "[VTS_" + std::to_string(n) + "]\nsource=s" + std::to_string(n) + "\n";
    const Read read(text);
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.context->head.titleSetCount, 99u);
    for (size_t n = 1; n <= 99; n++) {
        ASSERT_NE(read.context->titleSets[n - 1], nullptr) << n;
        EXPECT_EQ(textOf(read.context->titleSets[n - 1]->sources[0]), u"s" + toWide(std::to_string(n)));
    }
}

TEST(Manager, SkippedTitleSetLeavesANullSlot)
{
    const Read read("[VMG]\ntitlesets=3\n[VTS_1]\nsource=a\n[VTS_2]\nskipvts=1\n[VTS_03]\nsource=c\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.context->head.titleSetCount, 3u);
    EXPECT_EQ(textOf(read.context->titleSets[0]->sources[0]), u"a");
    EXPECT_EQ(read.context->titleSets[1], nullptr);
    EXPECT_EQ(textOf(read.context->titleSets[2]->sources[0]), u"c");
    EXPECT_EQ(read.context->titleSets[3], nullptr);
}

// What was read of the refused title set is freed: the sanitizer's leak check would show it.
TEST(Manager, FailedTitleSetIsNotStored)
{
    const Read read("[VMG]\ntitlesets=3\nmenus=100\n[VTS_1]\nsource=a\n[VTS_2]\nsource=b\nsource1=,\nmenus=1\n"
                    "[VTS_2_MENU1]\n" +
                    MENU);
    EXPECT_EQ(read.result, 0x840003ECu);
    EXPECT_NE(read.context->titleSets[0], nullptr);
    EXPECT_EQ(read.context->titleSets[1], nullptr);
    EXPECT_EQ(read.context->titleSets[2], nullptr);
    EXPECT_EQ(read.context->vmg.menuCount, 0u);
}

TEST(Manager, Menus)
{
    const Read read("[VMG]\ntitlesets=1\nmenus=2\n[VTS_1]\nskipvts=1\n[VMG_MENU]\nvideomode=16:9\n[VMG_MENU1]\n" +
                    MENU + "[VMG_MENU2]\nbackground=two\nsubpicture=s\n");
    EXPECT_EQ(read.result, 0u);
    EXPECT_EQ(read.context->vmg.menuCount, 2u);
    EXPECT_EQ(textOf(read.context->vmg.menus[0].background), u"bg.mpg");
    EXPECT_EQ(textOf(read.context->vmg.menus[1].background), u"two");
    EXPECT_EQ(read.context->vmg.menuAttributes.aspectRatio, 3u);
    EXPECT_EQ(read.context->vmg.menuAttributes.mpegVersion, 1u);
}

TEST(Manager, MenuCount)
{
    const std::string skipped = "titlesets=1\n[VTS_1]\nskipvts=1\n";
    std::string text = "[VMG]\nmenus=99\n" + skipped;
    for (int m = 1; m <= 99; m++) text += "[VMG_MENU" + std::to_string(m) + "]\n" + MENU;
    const Read most(text);
    EXPECT_EQ(most.result, 0u);
    EXPECT_EQ(most.context->vmg.menuCount, 99u);
    const Read more("[VMG]\nmenus=100\n" + skipped);
    EXPECT_EQ(more.result, 0x840003FAu);
    EXPECT_TRUE(more.project.logged({}));
    const Read failing("[VMG]\nmenus=3\n" + skipped + "[VMG_MENU1]\n" + MENU + "[VMG_MENU2]\nbackground=b\n");
    EXPECT_EQ(failing.result, 0x840003F7u);
    EXPECT_EQ(failing.context->vmg.menuCount, 2u);   // counted before it was read
}

// Title sets come first, the manager's attributes and menus last.
TEST(Manager, Order)
{
    EXPECT_EQ(Read("[VMG]\ntitlesets=1\nmenus=100\n[VTS_1]\n[VMG_MENU]\nmpegtype=x\n").result, 0x84000409u);
    EXPECT_EQ(Read("[VMG]\ntitlesets=1\nmenus=100\n[VTS_1]\nsource=a\n[VMG_MENU]\nmpegtype=x\n").result, 0x840003FFu);
    EXPECT_EQ(Read("[VMG]\ntitlesets=1\nmenus=100\n[VTS_1]\nsource=a\n").result, 0x840003FAu);
}
