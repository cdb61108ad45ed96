// audio_project.h: the root of a DVD-Audio run that frees itself with all that hangs from it, and its title sets.
#pragma once

#include "base/memory.h"
#include "project/audio_model.h"
#include "tests/project/project_file.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

struct AudioContextFree {
    void operator()(AudioDiscContext* context) const
    {
        orvFreeAudioContext(&context);
    }
};
typedef std::unique_ptr<AudioDiscContext, AudioContextFree> AudioContextPtr;

inline AudioContextPtr makeAudioContext(const ProjectFile& project)
{
    AudioDiscContext* context = nullptr;
    EXPECT_EQ(orvCreateAudioContext(project.logPath.c_str(), nullptr, 0, &context), 0u);
    return AudioContextPtr(context);
}

/** Title set number, from 1, as a run hangs it into the root before it is read. */
inline AudioTitleSetDesc* addTitleSet(AudioDiscContext* context, uint64_t number)
{
    EXPECT_EQ(osAllocMem(sizeof(AudioTitleSetDesc), &context->audioTitleSets[number - 1]), 0u);
    return context->audioTitleSets[number - 1];
}

// A section's lines with a fault in one value, what the reader gives for it and what it logs.
struct FaultCase {
    std::string lines;
    uint64_t result;
    std::vector<LogEntry> log;
};
