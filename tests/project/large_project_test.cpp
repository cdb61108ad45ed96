// The largest project that the format allows: it must be read in a moment.
#include "project/reader.h"
#include "tests/project/project_file.h"

#include <chrono>
#include <iostream>

namespace {

#ifdef _WIN32
constexpr int TITLE_SETS = 2, MENUS = 3;   // Windows' profile functions look through the whole file for each key
#else
constexpr int TITLE_SETS = 99, MENUS = 99;
#endif
constexpr int BUTTONS = 36;
// A release build takes a third of a second, a build under sanitizers five; the rest is for a busy machine.
#ifdef NDEBUG
constexpr double LIMIT_SECONDS = 5;
#else
constexpr double LIMIT_SECONDS = 60;
#endif

std::string button(int b)
{
    return "button" + std::to_string(b) + "=" + std::to_string(b) + ",719,10,575,1,2,3,4,1,BTN_ACTION_LINKPGCN(" +
           std::to_string(b) + ",0,0),1\n";
}

std::string menuSection(const std::string& name, const std::string& buttons)
{
    return "[" + name + "]\nbackground=" + name + ".mpg\nsubpicture=" + name + ".bmp\ncolorset1=1,2,3,4,5,6,7,8\n" +
           "playtime=00:00:10.00\nblink=3,20\nbuttons=" + std::to_string(BUTTONS) + "\n" + buttons;
}

std::string largeProject()
{
    std::string buttons;
    for (int b = 1; b <= BUTTONS; b++) buttons += button(b);
    std::string text = "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=" + std::to_string(TITLE_SETS) +
                       "\nmenus=" + std::to_string(MENUS) + "\n";
    for (int n = 1; n <= TITLE_SETS; n++) {
        const std::string title = "VTS_" + std::to_string(n);
        text += "[" + title + "]\nsource=m.vob\nchapters=255\nmenus=" + std::to_string(MENUS) + "\n";
        for (int i = 1; i <= 255; i++) text += "chapter" + std::to_string(i) + "=" + std::to_string(i * 90000) + "\n";
        for (int m = 1; m <= MENUS; m++) text += menuSection(title + "_MENU" + std::to_string(m), buttons);
    }
    for (int m = 1; m <= MENUS; m++) text += menuSection("VMG_MENU" + std::to_string(m), buttons);
    return text;
}

}   // namespace

TEST(LargeProject, IsReadInAMoment)
{
    ProjectFile project(largeProject());
    const auto start = std::chrono::steady_clock::now();
    osCloseProfile(&project.file);
    ASSERT_EQ(osOpenProfile(project.path.c_str(), &project.file), 0u);
    const auto opened = std::chrono::steady_clock::now();
    const ContextPtr context = makeContext(project);
    ASSERT_EQ(orvReadManager(context.get(), project.file, 1, &context->vmg), 0u);
    const auto end = std::chrono::steady_clock::now();

    const double openSeconds = std::chrono::duration<double>(opened - start).count();
    const double readSeconds = std::chrono::duration<double>(end - opened).count();
    std::cout << TITLE_SETS << " title sets of " << MENUS << " menus of " << BUTTONS << " buttons: opened in "
              << openSeconds << " s, read in " << readSeconds << " s\n";
    EXPECT_LT(openSeconds + readSeconds, LIMIT_SECONDS);

    const TitleSetDesc& last = *context->titleSets[TITLE_SETS - 1];
    EXPECT_EQ(last.chapters[254].startFrame, 255 * 90000);
    EXPECT_EQ(last.menuCount, uint64_t(MENUS));
    EXPECT_EQ(last.menus[MENUS - 1].buttons[35].xStart, 36u);
    EXPECT_EQ(last.menus[MENUS - 1].buttons[35].param1, 36u);
    EXPECT_EQ(last.menus[MENUS - 1].blinkDelay, 20u);
    EXPECT_EQ(context->vmg.menus[MENUS - 1].buttons[0].autoAction, 1u);
    EXPECT_TRUE(project.logged({}));
}
