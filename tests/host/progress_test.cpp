// progress_test.cpp: what a run's progress looks like on a terminal and in a file.
#include "host/progress.h"

#include <gtest/gtest.h>

namespace {

// Title sets 1 and 3, of which 3 has menus; the manager has none.
ProgressDisplay displayOf(ProgressMode mode)
{
    ProgressDisplay display;
    display.mode = mode;
    display.titleSets = { { 1, false }, { 3, true } };
    return display;
}

struct Report {
    uint32_t done, kind;
};

// The reports of such a run, of 100 units.
const Report RUN[] = { { 0, 1 },  { 10, 2 }, { 30, 2 }, { 39, 3 }, { 40, 4 }, { 45, 1 }, { 50, 1 },
                       { 60, 2 }, { 96, 3 }, { 97, 4 }, { 98, 5 }, { 99, 6 }, { 100, 7 } };

TEST(Progress, OneLineAStage)
{
    ProgressDisplay display = displayOf(PROGRESS_LINES);
    std::string text;
    for (const Report& report : RUN) text += progressStep(&display, 100, report.done, report.kind, 0);
    text += progressEnd(&display);
    EXPECT_EQ(text, " 10%  title set 1: movie\n"
                    " 39%  title set 1: tables\n"
                    " 40%  title set 1: backup\n"
                    " 45%  title set 3: menus\n"
                    " 60%  title set 3: movie\n"
                    " 96%  title set 3: tables\n"
                    " 97%  title set 3: backup\n"
                    " 99%  disc manager: tables\n"
                    "100%  disc manager: backup\n");
}

// A run of DVD-Audio: stills, the first title set laid from WAVE files and the second one finished, no menus.
TEST(Progress, StagesOfDvdAudio)
{
    ProgressDisplay display;
    display.mode = PROGRESS_LINES;
    display.isAudio = true;
    display.titleSets = { { 1, false }, { 2, false } };
    const Report run[] = { { 0, 4 },  { 10, 4 }, { 11, 5 }, { 12, 6 }, { 20, 1 }, { 40, 1 }, { 41, 2 },
                           { 42, 3 }, { 80, 2 }, { 81, 3 }, { 90, 7 }, { 91, 8 }, { 92, 9 }, { 100, 10 } };
    std::string text;
    for (const Report& report : run) text += progressStep(&display, 100, report.done, report.kind, 0);
    EXPECT_EQ(text, "  0%  stills\n"
                    " 11%  stills: tables\n"
                    " 12%  stills: backup\n"
                    " 20%  title set 1: sound\n"
                    " 41%  title set 1: tables\n"
                    " 42%  title set 1: backup\n"
                    " 80%  title set 2: tables\n"
                    " 81%  title set 2: backup\n"
                    " 91%  disc manager: tables\n"
                    " 92%  disc manager: backup\n"
                    "100%  disc manager: player table\n");
    display.managerMenus = true;
    EXPECT_EQ(stageName(display, 7), "disc manager: menus");
    EXPECT_EQ(stageName(display, 0), "");
    EXPECT_EQ(stageName(display, 11), "");
}

TEST(Progress, BarIsRedrawnOnlyWhenItChanges)
{
    ProgressDisplay display = displayOf(PROGRESS_BAR);
    EXPECT_EQ(progressStep(&display, 1000, 0, 2, 80),
              "\rtitle set 1: movie     [-------------------------------------------------]   0%");
    EXPECT_EQ(progressStep(&display, 1000, 1, 2, 80), "");
    EXPECT_NE(progressStep(&display, 1000, 10, 2, 80), "");
    EXPECT_EQ(progressStep(&display, 1000, 10, 2, 80), "");
    EXPECT_EQ(progressEnd(&display), "\n");
    EXPECT_EQ(progressEnd(&display), "");
}

// A narrower window leaves nothing of the line before.
TEST(Progress, ShorterLineCoversTheLongerOne)
{
    ProgressDisplay display = displayOf(PROGRESS_BAR);
    const size_t wide = progressStep(&display, 10, 1, 2, 80).size();
    const std::string narrow = progressStep(&display, 10, 1, 2, 30);
    EXPECT_EQ(narrow.size(), wide);
    EXPECT_EQ(narrow.substr(0, 27), "\rtitle set 1: movie     10%");
    EXPECT_EQ(narrow.find_last_not_of(' '), 26u);
}

TEST(Progress, LineFitsEveryWidth)
{
    for (uint64_t columns = 1; columns < 200; columns++) {
        EXPECT_LE(progressLine("title set 99: backup", 50, 100, columns).size(), columns);
    }
    EXPECT_EQ(progressLine("title set 1: movie", 5, 10, 42), "title set 1: movie     [######------]  50%");
    EXPECT_EQ(progressLine("title set 1: movie", 5, 10, 26), "title set 1: movie     50%");
    EXPECT_EQ(progressLine("x", 0, 0, 26), "x                       0%");
    EXPECT_EQ(progressLine("x", 7, 5, 26), "x                     100%");   // never more than all
}

TEST(Progress, QuietSaysNothing)
{
    ProgressDisplay display = displayOf(PROGRESS_NONE);
    for (const Report& report : RUN) EXPECT_EQ(progressStep(&display, 100, report.done, report.kind, 80), "");
    EXPECT_EQ(progressEnd(&display), "");
}

TEST(Progress, WorkOfOneStage)
{
    ProgressDisplay lines, bar, none;
    lines.mode = PROGRESS_LINES;
    bar.mode = PROGRESS_BAR;
    std::string text;
    for (const uint32_t done : { 0u, 1u, 99u, 100u, 350u, 999u, 1000u, 1000u }) {
        text += progressWork(&lines, "work", 1000, done, 0);
        EXPECT_EQ(progressWork(&none, "work", 1000, done, 80), "");
    }
    EXPECT_EQ(text, "  0%  work\n 10%  work\n 30%  work\n 90%  work\n100%  work\n");
    EXPECT_EQ(progressWork(&bar, "work", 1000, 500, 43), "\rwork                   [######------]  50%");
    EXPECT_EQ(progressWork(&bar, "work", 1000, 501, 43), "");
    EXPECT_EQ(progressEnd(&bar), "\n");
}

TEST(Progress, MoreTitleSetsThanPlanned)
{
    ProgressDisplay display;
    display.managerMenus = true;
    EXPECT_EQ(stageName(display, 2), "title set: movie");
    EXPECT_EQ(stageName(display, 5), "disc manager: menus");
    EXPECT_EQ(stageName(display, 0), "");
    EXPECT_EQ(stageName(display, 8), "");
}

}   // namespace
