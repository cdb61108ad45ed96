// ifo_run.h: a run's root with its title sets, made by a test in place of a project file.
#pragma once

#include "base/time_code.h"
#include "project/model.h"
#include "tests/support/files.h"

#include <memory>
#include <string>
#include <vector>

struct TestRun {
    explicit TestRun(uint64_t titleSets = 1, int64_t standard = STANDARD_PAL)
    {
        context->head.videoStandard = standard;
        context->head.frameTicks = standard == STANDARD_PAL ? 3600 : 3003;
        context->head.titleSetCount = titleSets;
        context->head.logFilePath = logPath.data();
        for (uint64_t i = 0; i < titleSets && i < MAX_TITLE_SETS; i++) {
            owned.push_back(std::make_unique<TitleSetDesc>());
            context->titleSets[i] = owned.back().get();
        }
    }
    TestRun(const TestRun&) = delete;
    TestRun& operator=(const TestRun&) = delete;

    TitleSetDesc& titleSet(uint64_t number)
    {
        return *context->titleSets[number - 1];
    }

    TempDir folder;   // target of the run
    std::u16string logPath = folder / u"run.log";
    std::unique_ptr<DiscContext> context = std::make_unique<DiscContext>();
    std::vector<std::unique_ptr<TitleSetDesc>> owned;
};
