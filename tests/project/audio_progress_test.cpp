#include "project/audio_progress.h"

#include "tests/project/audio_project.h"

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

// A run of so many title sets.
struct ReportingRun {
    explicit ReportingRun(uint64_t titleSets)
    {
        context->head.progressCallback = recordCall;
        context->head.progressUser = 0x123456789ABCDEF0;
        context->head.titleSetCount = titleSets;
        lastCall.reset();
        answer = 0;
    }

    uint32_t report(uint32_t kind, uint64_t value, uint64_t index)
    {
        return orvReportAudioProgress(context.get(), kind, value, index);
    }

    ProjectFile project{ "" };
    AudioContextPtr context = makeAudioContext(project);
};

}   // namespace

// Three title sets, so 331 units: stills to 12, title set n from n x 102 - 90, the manager from 318.
TEST(AudioProgress, UnitsOfEachKind)
{
    const struct {
        uint32_t kind;
        uint64_t value, index;
        uint32_t done;
    } cases[] = {
        { 1, 0, 1, 12 },         { 1, 1, 1, 13 },     { 1, 50, 1, 62 },   { 1, 100, 1, 112 }, { 1, 0, 2, 114 },
        { 1, 100, 3, 316 },   // index x 102 + value - 90
        { 2, 0, 1, 112 },        { 2, 99, 1, 112 },   { 2, 100, 1, 113 }, { 2, 100, 3, 317 }, { 3, 0, 1, 113 },
        { 3, 99, 1, 113 },       { 3, 100, 1, 114 },  { 3, 100, 3, 318 }, { 4, 0, 0, 0 },     { 4, 9, 0, 0 },
        { 4, 10, 0, 1 },         { 4, 55, 0, 5 },     { 4, 99, 0, 9 },    { 4, 100, 0, 10 },  { 5, 0, 0, 10 },
        { 5, 99, 0, 10 },        { 5, 100, 0, 11 },   { 6, 0, 0, 11 },    { 6, 100, 0, 12 },  { 6, 100, 7, 12 },
        { 7, 0, 0, 318 },        { 7, 19, 0, 319 },   { 7, 99, 0, 327 },  { 7, 100, 0, 328 }, { 8, 0, 0, 328 },
        { 8, 100, 0, 329 },      { 9, 0, 0, 329 },    { 9, 100, 0, 330 }, { 10, 0, 0, 330 },  { 10, 99, 0, 330 },
        { 10, 100, 0, 331 },     { 10, 100, 5, 331 }, { 0, 100, 1, 0 },   { 11, 100, 1, 0 },  { 0xFFFFFFFF, 100, 1, 0 },
        { 1, 0, 0, 0xFFFFFFA6 },   // -90
    };
    ReportingRun run(3);
    for (const auto& c : cases) {
        lastCall.reset();
        EXPECT_EQ(run.report(c.kind, c.value, c.index), 0u) << c.kind;
        ASSERT_TRUE(lastCall) << c.kind;
        EXPECT_EQ(lastCall->total, 331u);
        EXPECT_EQ(lastCall->done, c.done) << "kind " << c.kind << ", value " << c.value << ", index " << c.index;
        EXPECT_EQ(lastCall->kind, c.kind);
        EXPECT_EQ(lastCall->user, 0x123456789ABCDEF0u);
    }
}

TEST(AudioProgress, TotalIsReachedAtTheEnd)
{
    const struct {
        uint64_t titleSets;
        uint32_t total;
    } cases[] = { { 1, 127 }, { 2, 229 }, { 99, 10123 } };
    for (const auto& c : cases) {
        ReportingRun run(c.titleSets);
        EXPECT_EQ(run.report(4, 0, 0), 0u);
        EXPECT_EQ(lastCall->total, c.total);
        EXPECT_EQ(lastCall->done, 0u);
        EXPECT_EQ(run.report(10, PROGRESS_ALL, 0), 0u);
        EXPECT_EQ(lastCall->total, c.total);
        EXPECT_EQ(lastCall->done, c.total);
    }
}

// In the order of a run nothing goes back, from the first still to the last file.
TEST(AudioProgress, RisesThroughARun)
{
    ReportingRun run(2);
    uint32_t before = 0;
    const auto report = [&](uint32_t kind, uint64_t index) {
        for (uint64_t value = 0; value <= 100; value++) {
            EXPECT_EQ(run.report(kind, value, index), 0u);
            EXPECT_GE(lastCall->done, before) << kind << " " << value;
            before = lastCall->done;
        }
    };
    for (const uint32_t kind : { PROGRESS_STILLS, PROGRESS_ASVS_IFO, PROGRESS_ASVS_BACKUP }) report(kind, 0);
    for (uint64_t titleSet = 1; titleSet <= 2; titleSet++) {
        for (const uint32_t kind : { PROGRESS_AOB, PROGRESS_ATS_IFO, PROGRESS_ATS_BACKUP }) report(kind, titleSet);
    }
    for (const uint32_t kind : { PROGRESS_AMG_MENUS, PROGRESS_AMG_IFO, PROGRESS_AMG_BACKUP, PROGRESS_AUDIO_PP }) {
        report(kind, 0);
    }
    EXPECT_EQ(before, 229u);
}

TEST(AudioProgress, AnswerComesBack)
{
    ReportingRun run(1);
    for (const uint32_t value : { 0u, 1u, 0xFFFFFFFFu }) {
        answer = value;
        EXPECT_EQ(run.report(1, 0, 1), value);
        EXPECT_EQ(run.report(99, 0, 1), value);
    }
}

TEST(AudioProgress, NullCallback)
{
    ReportingRun run(1);
    run.context->head.progressCallback = nullptr;
    answer = 1;
    EXPECT_EQ(run.report(1, 0, 1), 0u);
    EXPECT_FALSE(lastCall);
}
