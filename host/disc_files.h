// disc_files.h: the files of a finished disc, and what keeps the library from bringing its tables into line. The
// library tells a number; here is the file that it means.
#pragma once

#include "elementary.h"
#include "project_file.h"

#include <filesystem>
#include <string>
#include <vector>

struct DiscFiles {
    std::filesystem::path folder;     // VIDEO_TS
    std::filesystem::path previous;   // where skipped title sets lie; may be empty
    std::vector<bool> skipped;        // title set n is entry n - 1: the project skips it
};

// A fault and the file that it is about.
struct DiscFault {
    std::filesystem::path path = {};
    FileFault fault = {};

    explicit operator bool() const
    {
        return bool(fault);
    }
};

/** Folder of the tables: this one, or VIDEO_TS within it. Empty if neither has them. */
std::filesystem::path videoFolder(const std::filesystem::path& disc);

/** Fills the list of title sets from VIDEO_TS.IFO and the project. */
DiscFault planTitleSets(const ProjectFile& project, DiscFiles* disc);

/** The first file that can't be treated. Nothing is changed by looking. */
DiscFault findDiscFault(const DiscFiles& disc);

/** The first backup that is not its IFO, byte for byte. */
DiscFault findBackupFault(const DiscFiles& disc);

/** Copies VIDEO_TS.IFO over its backup. */
DiscFault copyManagerBackup(const DiscFiles& disc);

/** What there is to say where the first title set does not begin where the tables say so; or an empty text. */
std::string firstSectorWarning(const DiscFiles& disc);
