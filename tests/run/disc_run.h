// disc_run.h: one authoring run from end to end: a folder with a target in it, a project file, what the host is told.
#pragma once

#include "tests/support/files.h"
#include "tests/support/log.h"
#include "tests/support/packs.h"

#include <orven/authoring.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

// A call of the host's callback.
struct ProgressCall {
    uint32_t total, done, kind;
    bool operator==(const ProgressCall&) const = default;
};

void PrintTo(const ProgressCall& call, std::ostream* out);

// Files of a folder and its subfolders by name relative to it, folders with a trailing slash.
typedef std::map<std::string, Bytes> Snapshot;
Snapshot takeSnapshot(const std::filesystem::path& folder);

// The four files that a run of one title set without menus writes.
inline const std::vector<std::string> WRITTEN = { "VIDEO_TS.BUP", "VIDEO_TS.IFO", "VTS_01_0.BUP", "VTS_01_0.IFO" };

struct DiscRun {
    DiscRun();
    DiscRun(const DiscRun&) = delete;
    DiscRun& operator=(const DiscRun&) = delete;

    /** Path of a file in the target folder. */
    std::u16string inTarget(const std::string& name) const;
    /** The same as UTF-8, for a project file. */
    std::string text(const std::string& name) const;
    /** Writes a file of the target folder. */
    void put(const std::string& name, const Bytes& bytes) const;
    Bytes get(const std::string& name) const;
    bool has(const std::string& name) const;

    /** Writes the project file and runs it through ParseDVDDescW, or through ParseDVDDesc if narrow is set; a DVD-Audio
        run if audio is set, which gets `previous` as the argument that it ignores. */
    uint64_t author(const std::string& projectText);
    uint64_t author();   // with the project file as it stands

    TempDir folder;
    std::u16string project = folder / u"disc.ini";
    std::u16string target;     // with its separator
    std::u16string previous;   // empty: none
    std::u16string log = folder / u"run.log";
    bool nullLog = false;       // hands no log path
    bool nullPrevious = true;   // hands null in place of an empty previousPath
    bool nullProgress = false;
    bool narrow = false;
    bool audio = false;
    uint64_t cancelAt = 0;   // the call of this number, from 1, cancels
    uint32_t cancelWith = 1;
    std::vector<ProgressCall> calls;
};

/** A small movie: units of 12 pictures in one video pack, filled up with padding to these sizes in sectors. */
Movie smallMovie(const std::vector<uint64_t>& unitSectors, int64_t standard = 1);

/** Four units of five sectors: 1 second and 23 frames, PAL. */
Movie fourUnits();

/** Sections of a plain project: PAL unless mode says otherwise, title sets of one source each, named VTS_nn_1.VOB in
   the run's target; extra is put behind each [VTS_n]. */
std::string plainProject(const DiscRun& run, uint64_t titleSets, const std::string& mode = "PAL",
                         const std::string& extra = "");

/** Bytes in which two program streams differ although none of them lies in a navigation pack. */
uint64_t changedOutsideNavPacks(const Bytes& before, const Bytes& after);

/** The target is a disc in which sizes, tables and navigation packs agree. */
void expectSoundDisc(const DiscRun& run);
