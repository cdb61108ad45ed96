// project_file.h: a project file in a folder of its own, with the run that reads it and the run's log beside it.
#pragma once

#include "base/profile.h"
#include "project/model.h"
#include "tests/support/files.h"
#include "tests/support/log.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct ProjectFile {
    /** Text in UTF-8; if it is not plain ASCII, the file is written in UTF-16LE with a mark. */
    explicit ProjectFile(std::string_view text);
    ~ProjectFile();
    ProjectFile(const ProjectFile&) = delete;
    ProjectFile& operator=(const ProjectFile&) = delete;

    /** Whether the log holds exactly these entries. */
    testing::AssertionResult logged(const std::vector<LogEntry>& entries) const
    {
        return logHolds(logPath, entries);
    }

    TempDir dir;
    std::u16string path = dir / u"project.ini";
    std::u16string logPath = dir / u"errors.log";
    RunHead run = {};
    OsProfile* file = nullptr;
};

// A root and a title set that free themselves with all that hangs from them.
struct ContextFree {
    void operator()(DiscContext* context) const
    {
        orvFreeDiscContext(&context);
    }
};
struct TitleSetFree {
    void operator()(TitleSetDesc* titleSet) const
    {
        orvFreeTitleSet(&titleSet);
    }
};
typedef std::unique_ptr<DiscContext, ContextFree> ContextPtr;
typedef std::unique_ptr<TitleSetDesc, TitleSetFree> TitleSetPtr;

ContextPtr makeContext(const ProjectFile& project);
TitleSetPtr makeTitleSet();

/** A string object of the model as a text; "(null)" for null. */
std::u16string textOf(const char16_t* string);

/** Text that stands behind a fault, so that the first half of a log entry shows the whole message. */
inline const std::u16string FILLER(80, u'~');
