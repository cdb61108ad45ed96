#include "project/progress.h"

#include "base/memory.h"
#include "tests/project/project_file.h"

#include <optional>

namespace {

struct Call {
    uint32_t total, done, kind;
    uint64_t user;
};

std::optional<Call> lastCall;
uint32_t answer = 0;

uint32_t recordCall(uint32_t total, uint32_t done, uint32_t kind, uint64_t user)
{
    lastCall = { total, done, kind, user };
    return answer;
}

// A run of two title sets: the first without menus, the second skipped, the third with both.
struct ReportingRun {
    ReportingRun()
    {
        context->head.progressCallback = recordCall;
        context->head.progressUser = 0x123456789ABCDEF0;
        context->progressTotal = 1000;
        context->titleSetsUnits = 700;
        context->vmg.menuUnits = 90;
        context->titleSets[0] = makeTitleSet().release();
        context->titleSets[2] = makeTitleSet().release();
        context->titleSets[2]->startUnits = 200;
        context->titleSets[2]->menuUnits = 50;
        context->titleSets[2]->titleUnits = 300;
        lastCall.reset();
        answer = 0;
    }

    uint32_t report(uint32_t kind, uint64_t value, uint64_t titleSetNumber)
    {
        return orvReportProgress(context.get(), kind, value, titleSetNumber);
    }

    ProjectFile project{ "" };
    ContextPtr context = makeContext(project);
};

void addPath(const TempDir& dir, std::u16string_view name, size_t bytes, char16_t** path)
{
    const std::u16string full = dir / name;
    writeFile(full, Bytes(bytes));
    ASSERT_EQ(osStrDup(full.c_str(), path), 0u);
}

}   // namespace

TEST(Progress, Done)
{
    const struct {
        const char* what;
        uint32_t kind;
        uint64_t value, titleSetNumber;
        uint32_t done;
    } cases[] = {
        { "menus begin", 1, 0, 3, 200 },
        { "menus half way", 1, 0x8000, 3, 225 },
        { "menus done", 1, 0x10000, 3, 250 },
        { "parts of units are cut", 1, 0x0FFFF, 3, 249 },
        { "movie begins", 2, 0, 3, 250 },
        { "movie scanned", 2, 0x8000, 3, 400 },
        { "movie done", 2, 0x10000, 3, 550 },
        { "IFO", 3, 0x10000, 3, 551 },
        { "IFO not yet", 3, 0xFFFF, 3, 550 },
        { "backup", 4, 0x10000, 3, 552 },
        { "backup not yet", 4, 0, 3, 551 },
        { "title set without units", 4, 0x10000, 1, 2 },
        { "manager's menus", 5, 0x8000, 0, 745 },
        { "manager's menus done", 5, 0x10000, 0, 790 },
        { "manager's IFO", 6, 0x10000, 0, 791 },
        { "manager's backup", 7, 0x10000, 0, 792 },
        { "the title set does not count for the manager", 7, 0, 3, 791 },
        { "kind 0", 0, 0x10000, 1, 0 },
        { "kind 8", 8, 0x10000, 1, 0 },
        { "no such title set", 1, 0x10000, 0, 0 },
        { "no such title set", 4, 0x10000, 100, 0 },
        { "skipped title set", 2, 0x10000, 2, 0 },
    };
    ReportingRun run;
    for (const auto& c : cases) {
        lastCall.reset();
        EXPECT_EQ(run.report(c.kind, c.value, c.titleSetNumber), 0u) << c.what;
        ASSERT_TRUE(lastCall) << c.what;
        EXPECT_EQ(lastCall->total, 1000u) << c.what;
        EXPECT_EQ(lastCall->done, c.done) << c.what;
        EXPECT_EQ(lastCall->kind, c.kind) << c.what;
        EXPECT_EQ(lastCall->user, 0x123456789ABCDEF0u) << c.what;
    }
}

TEST(Progress, LowHalvesAreReported)
{
    ReportingRun run;
    run.context->progressTotal = 0x500000007;
    run.context->titleSetsUnits = 0x300000002;
    EXPECT_EQ(run.report(6, 0x10000, 0), 0u);
    EXPECT_EQ(lastCall->total, 7u);
    EXPECT_EQ(lastCall->done, 93u);
}

TEST(Progress, AnswerComesBack)
{
    ReportingRun run;
    for (const uint32_t value : { 0u, 1u, 0xFFFFFFFFu }) {
        answer = value;
        EXPECT_EQ(run.report(1, 0, 3), value);
    }
}

TEST(Progress, NullCallback)
{
    ReportingRun run;
    run.context->head.progressCallback = nullptr;
    answer = 1;
    EXPECT_EQ(run.report(1, 0, 3), 0u);
    EXPECT_FALSE(lastCall);
}

// units = (size + 16383) >> 12, so three to four more than whole pages.
TEST(Progress, UnitsOfFiles)
{
    const struct {
        size_t bytes;
        uint64_t units;
    } cases[] = { { 0, 3 }, { 1, 4 }, { 4096, 4 }, { 4097, 5 }, { 40960, 13 } };
    for (const auto& c : cases) {
        ProjectFile project("");
        const ContextPtr context = makeContext(project);
        context->titleSets[0] = makeTitleSet().release();
        addPath(project.dir, u"movie.vob", c.bytes, &context->titleSets[0]->sources[0]);
        orvPrepareUnits(context.get());
        EXPECT_EQ(context->titleSets[0]->titleUnits, c.units) << c.bytes;
    }
}

TEST(Progress, PrepareUnits)
{
    ProjectFile project("");
    const ContextPtr context = makeContext(project);
    TitleSetDesc* const first = context->titleSets[0] = makeTitleSet().release();
    addPath(project.dir, u"a.vob", 4096, &first->sources[0]);    // 4
    addPath(project.dir, u"b.vob", 8192, &first->sources[31]);   // 5
    TitleSetDesc* const third = context->titleSets[2] = makeTitleSet().release();
    addPath(project.dir, u"c.vob", 1, &third->sources[0]);                                 // 4
    ASSERT_EQ(osStrDup((project.dir / u"missing.vob").c_str(), &third->sources[1]), 0u);   // 0
    third->menuCount = 2;
    addPath(project.dir, u"m1.mpg", 0, &third->menus[0].background);       // 3
    addPath(project.dir, u"m2.mpg", 12288, &third->menus[1].background);   // 6
    addPath(project.dir, u"m3.mpg", 12288, &third->menus[2].background);   // beyond menuCount
    addPath(project.dir, u"sp.bmp", 12288, &third->menus[0].subPicture);   // not a background
    context->vmg.menuCount = 1;
    context->vmg.titleUnits = 5;
    context->vmg.startUnits = 5;
    addPath(project.dir, u"v.mpg", 4096, &context->vmg.menus[0].background);   // 4

    orvPrepareUnits(context.get());
    EXPECT_EQ(first->startUnits, 0u);
    EXPECT_EQ(first->titleUnits, 9u);
    EXPECT_EQ(first->menuUnits, 0u);
    EXPECT_EQ(third->startUnits, 11u);   // 9 and the two of IFO and backup
    EXPECT_EQ(third->titleUnits, 4u);
    EXPECT_EQ(third->menuUnits, 9u);
    EXPECT_EQ(context->vmg.titleUnits, 0u);
    EXPECT_EQ(context->vmg.startUnits, 0u);
    EXPECT_EQ(context->vmg.menuUnits, 4u);
    EXPECT_EQ(context->titleSetsUnits, 26u);
    EXPECT_EQ(context->progressTotal, 32u);
}

TEST(Progress, LastReportOfARunIsTheTotal)
{
    ProjectFile project("");
    const ContextPtr context = makeContext(project);
    context->titleSets[4] = makeTitleSet().release();
    addPath(project.dir, u"a.vob", 100000, &context->titleSets[4]->sources[0]);
    context->head.progressCallback = recordCall;
    answer = 0;
    orvPrepareUnits(context.get());
    EXPECT_EQ(orvReportProgress(context.get(), 7, 0x10000, 0), 0u);
    EXPECT_EQ(lastCall->done, lastCall->total);
    EXPECT_EQ(lastCall->total, 32u);   // (100000 + 16383) >> 12 is 28, and two and two
}
