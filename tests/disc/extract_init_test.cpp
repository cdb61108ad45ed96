// Contexts, and what d2wInitContext makes of a folder: it looks for a disc in its own way and never reads one.
#include "tests/disc/extract_rig.h"

#include "base/files.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

// ---- contexts ---------------------------------------------------------------------------------------------------

TEST(ExtractCreate, NullArguments)
{
    ExtractContext* context = reinterpret_cast<ExtractContext*>(uintptr_t(1));
    EXPECT_EQ(d2wCreateContext(nullptr, "out", &context), 0x84001B5Au);
    EXPECT_EQ(context, nullptr);
    context = reinterpret_cast<ExtractContext*>(uintptr_t(1));
    EXPECT_EQ(d2wCreateContextW(nullptr, wide(u"out"), &context), 0x84001B5Au);
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(d2wCreateContext("disc", "out", nullptr), NULL_ARGUMENT);
    EXPECT_EQ(d2wCreateContextW(wide(u"disc"), wide(u"out"), nullptr), NULL_ARGUMENT);
    EXPECT_EQ(d2wReleaseContext(nullptr), NULL_ARGUMENT);
    uint64_t count = NOT_WRITTEN;
    EXPECT_EQ(d2wInitContext(nullptr, &count, nullptr, 0), NULL_ARGUMENT);
    EXPECT_EQ(d2wOpenDisc(nullptr, &count, nullptr, 0), NULL_ARGUMENT);
    EXPECT_EQ(count, NOT_WRITTEN);
    EXPECT_EQ(d2wExtractTrack(nullptr, 0, 0, nullptr, 0), NULL_ARGUMENT);
    EXPECT_EQ(d2wExtractTrackW(nullptr, 0, 0, nullptr, 0), NULL_ARGUMENT);
}

// A fresh context is empty, whether its folders are there or not.
TEST(ExtractCreate, FreshContext)
{
    for (const bool narrow : { false, true }) {
        Extraction run;
        run.narrow = narrow;
        run.disc = run.folder / u"nowhere";
        run.create();
        EXPECT_EQ(run.context->sourceKind, SOURCE_NONE);
        EXPECT_EQ(run.context->trackCount, 0u);
        EXPECT_EQ(run.context->fileCount, 0u);
        for (uint64_t i = 0; i < MAX_EXTRACT_FILES; i++) {
            EXPECT_EQ(run.context->files[i], 0u);
            EXPECT_EQ(run.context->fileFirstSector[i], 0u);
        }
        const std::u16string source = run.context->sourcePath, dest = run.context->destPath;
        EXPECT_EQ(toUtf8(source), toUtf8(run.disc + osPathSeparator()));   // added
        EXPECT_EQ(toUtf8(dest), toUtf8(run.out));                          // there already
        EXPECT_EQ(run.extract(0, 0), NO_SOURCE);
        EXPECT_EQ(run.extract(5, 1), NO_SOURCE);
        EXPECT_EQ(run.outputs(), "");
    }
}

struct HomeFolder {
    explicit HomeFolder(const fs::path& path) : before(fs::current_path())
    {
        fs::current_path(path);
    }
    ~HomeFolder()
    {
        fs::current_path(before);
    }
    HomeFolder(const HomeFolder&) = delete;
    HomeFolder& operator=(const HomeFolder&) = delete;

    fs::path before;
};

TEST(ExtractCreate, NullDestinationIsTheCurrentDirectory)
{
    for (const bool narrow : { false, true }) {
        Extraction run;
        run.putAudio({ { 100, 100 } }, aobPack(counting(8)));
        const HomeFolder home{ fs::path(run.out) };
        if (narrow) {
            ASSERT_EQ(d2wCreateContext(toUtf8(run.disc).c_str(), nullptr, &run.context), 0u);
        } else {
            ASSERT_EQ(d2wCreateContextW(wide(run.disc), nullptr, &run.context), 0u);
        }
        ASSERT_EQ(run.open(), 0u);
        EXPECT_EQ(run.extract(0, 1), 0u);
        EXPECT_EQ(run.outputs(), "track001_lrf.wav");
        run.release();
    }
}

// Both directories with letters beyond the narrow ones.
TEST(ExtractCreate, WideNames)
{
    Extraction run;
    run.putAudio({ { 100, 100 } }, aobPack(counting(8)));
    fs::rename(fs::path(run.disc), run.folder.root / fs::path(u"dis\u0107 \u97F3"));
    fs::rename(fs::path(run.out), run.folder.root / fs::path(u"o\u00FBt \u97F3"));
    run.disc = run.folder / u"dis\u0107 \u97F3";
    run.out = (run.folder.root / fs::path(u"o\u00FBt \u97F3") / "").u16string();
    ASSERT_EQ(run.open(), 0u);
    EXPECT_EQ(run.extract(0, 0), 0u);
    EXPECT_EQ(run.outputs(), "track001_lf.wav track001_rf.wav");
}

// ---- which of three files are there -----------------------------------------------------------------------------

struct BranchCase {
    bool audio, manager, titleSet;
    uint64_t result;
    bool counted;       // outTrackCount is written
    uint64_t extract;   // what an extraction of track 0 gives afterwards
};

// clang-format off
const BranchCase BRANCHES[] = {
    // AUDIO_PP  VIDEO_TS  VTS_01_0  result         counted  extract
    {  false,    false,    false,    NO_SAMG,       false,   NO_SOURCE        },
    {  false,    true,     false,    NO_SAMG,       false,   NO_SOURCE        },
    {  false,    false,    true,     NO_SAMG,       false,   NO_SOURCE        },
    {  false,    true,     true,     SAMG_NOT_READ, true,    WRONG_ASSIGNMENT },
    {  true,     false,    false,    VMG_NOT_READ,  true,    WRONG_ASSIGNMENT },
    {  true,     true,     false,    0,             false,   NO_SOURCE        },
    {  true,     false,    true,     0,             false,   NO_SOURCE        },
    {  true,     true,     true,     0,             false,   NO_SOURCE        },
};
// clang-format on

// A disc of which all parts could be read; the row says which IFO files are left of it.
void putFiles(const Extraction& run, const BranchCase& row)
{
    const Bytes sound = aobPack(counting(8));
    const VideoIfoSpec video = { .cells = { { 0, 0 } } };
    if (row.audio) run.put("AUDIO_PP.IFO", samgIfo({ { 100, 100 } }));
    if (row.manager) run.put("VIDEO_TS.IFO", managerIfo(video));
    if (row.titleSet) run.put("VTS_01_0.IFO", titleSetIfo(video));
    run.put("ATS_01_1.AOB", sound);
    run.put("VTS_01_1.VOB", privatePack(0xA0, {}, counting(8)));
}

std::string nameOf(const BranchCase& row)
{
    return std::string(row.audio ? "audio " : "- ") + (row.manager ? "manager " : "- ") +
           (row.titleSet ? "title set" : "-");
}

// With AUDIO_PP.IFO alone the tables of DVD-Video are asked for, with those alone AUDIO_PP.IFO, with all three nothing.
TEST(ExtractInit, BranchesAreCrossed)
{
    for (const BranchCase& row : BRANCHES) {
        SCOPED_TRACE(nameOf(row));
        for (const bool narrow : { false, true }) {
            for (const bool callbacks : { true, false }) {
                Extraction run;
                run.narrow = narrow;
                run.nullCallbacks = !callbacks;
                putFiles(run, row);
                EXPECT_EQ(run.init(), row.result);
                EXPECT_EQ(run.count, row.counted ? 0 : NOT_WRITTEN);
                EXPECT_EQ(run.infos.size(), 0u);
                EXPECT_EQ(run.context->trackCount, 0u);
                EXPECT_EQ(run.extract(0, 0), row.extract);
                EXPECT_EQ(run.extract(1, 0), row.extract == NO_SOURCE ? NO_SOURCE : NO_TRACKS);
                EXPECT_EQ(run.progress.size(), 0u);
                EXPECT_EQ(run.outputs(), row.extract == NO_SOURCE ? "" : "track001_lf.wav track001_rf.wav");
            }
        }
    }
}

TEST(ExtractInit, CountMayBeNull)
{
    for (const BranchCase& row : BRANCHES) {
        Extraction run;
        putFiles(run, row);
        run.create();
        EXPECT_EQ(d2wInitContext(run.context, nullptr, noteInfo(), userOf(&run)), row.result) << nameOf(row);
        EXPECT_EQ(run.infos.size(), 0u) << nameOf(row);
    }
}

// A folder of one of the names is no file, and counts as not there.
TEST(ExtractInit, FoldersAreNoFiles)
{
    Extraction run;
    fs::create_directory(fs::path(run.disc) / "AUDIO_PP.IFO");
    EXPECT_EQ(run.init(), NO_SAMG);
    putFiles(run, { false, true, true, 0, false, 0 });
    run.release();
    EXPECT_EQ(run.init(), SAMG_NOT_READ);
}

// The reader that failed was the source all the same: no track has an assignment, so the front files alone come to be.
TEST(ExtractInit, AfterAFailedReadNoAssignmentIsKnown)
{
    for (const bool audio : { false, true }) {
        Extraction run;
        putFiles(run, { audio, !audio, !audio, 0, false, 0 });
        EXPECT_EQ(run.init(), audio ? VMG_NOT_READ : SAMG_NOT_READ);
        EXPECT_EQ(run.context->sourceKind, audio ? SOURCE_VIDEO : SOURCE_AUDIO);
        EXPECT_EQ(run.extract(0, 1), WRONG_ASSIGNMENT);
        EXPECT_EQ(run.outputs(), "track001_lrf.wav");
        EXPECT_EQ(run.output("track001_lrf.wav"), Bytes(46));
        run.clearOutputs();
        EXPECT_EQ(run.extract(0, 0), WRONG_ASSIGNMENT);
        EXPECT_EQ(run.outputs(), "track001_lf.wav track001_rf.wav");
        EXPECT_EQ(run.output("track001_lf.wav"), Bytes(46));
        EXPECT_EQ(run.output("track001_rf.wav"), Bytes(46));
        EXPECT_EQ(run.extract(1, 0), NO_TRACKS);
        EXPECT_EQ(run.extract(UINT64_MAX, 0), NO_TRACKS);
    }
}

// Nothing of the disc is changed by being looked at, and nothing appears beside it.
TEST(ExtractInit, LeavesTheDiscAlone)
{
    for (const BranchCase& row : BRANCHES) {
        Extraction run;
        putFiles(run, row);
        uint64_t files = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(run.disc))) files += entry.exists();
        const Bytes sound = readFile(run.disc + u"ATS_01_1.AOB");
        EXPECT_EQ(run.init(), row.result);
        run.release();
        for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(run.disc))) files -= entry.exists();
        EXPECT_EQ(files, 0u) << nameOf(row);
        EXPECT_EQ(readFile(run.disc + u"ATS_01_1.AOB"), sound);
        // All handles are given back: Windows refuses to delete a file that is open.
        std::error_code error;
        fs::remove_all(fs::path(run.disc), error);
        EXPECT_FALSE(error) << nameOf(row) << ": " << error.message();
    }
}

}   // namespace
