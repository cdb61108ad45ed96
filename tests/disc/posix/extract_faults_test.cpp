// Extraction where memory or the disk is short, where files change meanwhile, and what it leaves open.
#include "tests/base/posix/failing_memory.h"
#include "tests/disc/extract_rig.h"
#include "tests/support/write_limit.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

uint64_t openDescriptors()
{
    uint64_t count = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) count += !entry.path().empty();
    return count;
}

// ---- memory -----------------------------------------------------------------------------------------------------

TEST(ExtractFaults, MemoryOfAContext)
{
    const TempDir folder;
    const std::u16string source = folder / u"disc", dest = folder / u"out";   // both get a separator
    const std::string narrowSource = toUtf8(source), narrowDest = toUtf8(dest);
    for (const bool narrow : { false, true }) {
        for (const bool nullDest : { false, true }) {
            ExtractContext* context = nullptr;
            const MemoryStep step = {
                .run =
                    [&] {
                        if (narrow) {
                            return d2wCreateContext(narrowSource.c_str(), nullDest ? nullptr : narrowDest.c_str(),
                                                    &context);
                        }
                        return d2wCreateContextW(wide(source), nullDest ? nullptr : wide(dest), &context);
                    },
                .undo =
                    [&] {
                        EXPECT_EQ(d2wReleaseContext(context), 0u);
                        context = nullptr;
                    },
                .checkFail = [&] { EXPECT_EQ(context, nullptr); },
            };
            EXPECT_GE(failEveryAllocation(step, 0x84001B59), 5u);
        }
    }
}

// A disc is opened whole or not at all, and never taken for one of another kind.
TEST(ExtractFaults, MemoryOfAnOpening)
{
    for (const bool audio : { false, true }) {
        Extraction run;
        const VideoIfoSpec video = { .cells = { { 0, 0 }, { 1, 1 } } };
        run.putVideo(video, privatePack(0xA0, {}, counting(8)));
        run.put("VTS_01_2.VOB", privatePack(0xA0, {}, counting(8, 0x40)));
        if (audio) {
            run.putAudio({ { 5, 5 }, { 6, 6 }, { 7, 7 } }, aobPack(counting(8)));
            run.put("ATS_01_2.AOB", aobPack(counting(8)) + aobPack(counting(8)));
        }
        run.create();
        const uint64_t before = openDescriptors();
        uint64_t tracks = 0;
        const MemoryStep step = {
            .run = [&] { return d2wOpenDisc(run.context, &tracks, nullptr, 0) ? 1u : 0u; },
            .undo =
                [&] {
                    EXPECT_EQ(tracks, audio ? 3u : 2u);
                    EXPECT_EQ(run.context->fileCount, 2u);
                    run.release();
                    run.create();
                },
            .checkFail =
                [&] {
                    EXPECT_EQ(openDescriptors(), before);
                    EXPECT_EQ(run.extract(0, 0), NO_SOURCE);
                },
        };
        EXPECT_GE(failEveryAllocation(step, 1), 10u);
    }
}

TEST(ExtractFaults, MemoryOfAnInitialisation)
{
    Extraction run;
    run.put("VIDEO_TS.IFO", managerIfo({ .cells = { { 0, 0 } } }));
    run.put("VTS_01_0.IFO", titleSetIfo({ .cells = { { 0, 0 } } }));
    const uint64_t before = openDescriptors();
    // Without memory it fails in its own way: SAMG_NOT_READ is what it comes to in any case.
    uint64_t succeeded = 0;
    run.create();
    const MemoryStep step = {
        .run =
            [&] {
                const uint64_t result = d2wInitContext(run.context, nullptr, nullptr, 0);
                succeeded += result == SAMG_NOT_READ;
                return result == SAMG_NOT_READ ? 0 : result;
            },
        .undo =
            [&] {
                run.release();
                EXPECT_EQ(openDescriptors(), before);
                run.create();
            },
        .checkFail = [&] { EXPECT_EQ(openDescriptors(), before); },
    };
    EXPECT_GE(failEveryAllocation(step, 0x88010002), 3u);
    EXPECT_GE(succeeded, 1u);
}

TEST(ExtractFaults, MemoryOfATrack)
{
    Extraction run;
    run.putAudio({ { 5, 6, 20, 0x22, 0x00 } }, aobPack(counting(36)) + aobPack(counting(36)));
    ASSERT_EQ(run.open(), 0u);
    const uint64_t before = openDescriptors();
    for (const bool narrow : { false, true }) {
        const MemoryStep step = {
            .run =
                [&] {
                    return narrow ? d2wExtractTrack(run.context, 0, 0, nullptr, 0)
                                  : d2wExtractTrackW(run.context, 0, 0, nullptr, 0);
                },
            .undo = [&] { EXPECT_EQ(run.output("track001_lfe.wav").size(), 46u + 12); },
            .checkFail = [&] { EXPECT_EQ(openDescriptors(), before); },
        };
        EXPECT_GE(failEveryAllocation(step, NO_OUTPUT), 6u);
    }
}

// ---- a full disk ------------------------------------------------------------------------------------------------

TEST(ExtractFaults, FullDisk)
{
    // Four packs of 800 bytes: each of two files gets 400 bytes a pack, and the pair 800.
    Extraction run;
    run.putAudio({ { 5, 8 } }, repeated(aobPack(counting(800)), 4));
    ASSERT_EQ(run.open(), 0u);
    const uint64_t before = openDescriptors();
    for (const bool pairs : { false, true }) {
        const uint64_t whole = 46 + (pairs ? 3200 : 1600);
        for (const uint64_t limit : { uint64_t(0), uint64_t(1), uint64_t(45), uint64_t(46), uint64_t(47), uint64_t(446),
                                      uint64_t(500), whole - 1, whole }) {
            run.clearOutputs();
            uint64_t result = NOT_WRITTEN;
            {
                const WriteLimit full(limit);
                result = run.extract(0, pairs);
            }
            EXPECT_EQ(result, limit < 46 ? NO_OUTPUT : limit < whole ? uint64_t(EFBIG) : 0) << limit;
            EXPECT_EQ(openDescriptors(), before);
            for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(run.out))) {
                const Bytes wave = run.output(entry.path().filename().string());
                EXPECT_LE(wave.size(), limit);
                if (limit < whole) {
                    const uint64_t head = std::min<uint64_t>(wave.size(), 46);
                    EXPECT_EQ(Bytes(wave.begin(), wave.begin() + std::ptrdiff_t(head)), Bytes(head)) << limit;
                }
            }
            // The last call comes for a track that is complete, and for no other.
            const bool told = !run.progress.empty() && run.progress.back().text == "setup wave header";
            EXPECT_EQ(told, limit == whole) << limit;
        }
    }
}

// ---- files that change ------------------------------------------------------------------------------------------

TEST(ExtractFaults, SoundThatShrinks)
{
    Extraction run;
    run.putAudio({ { 5, 6 } }, aobPack(counting(8)) + aobPack(counting(8)));
    ASSERT_EQ(run.open(), 0u);
    fs::resize_file(fs::path(run.disc + u"ATS_01_1.AOB"), 3000);
    EXPECT_EQ(run.extract(0, 1), AOB_NOT_READ);
    EXPECT_EQ(run.progress.size(), 1u);
    EXPECT_EQ(run.output("track001_lrf.wav").size(), 46u + 8);
    fs::remove(fs::path(run.disc + u"ATS_01_1.AOB"));   // the disc has it open
    EXPECT_EQ(run.extract(0, 1), AOB_NOT_READ);
}

// ---- what is left open ------------------------------------------------------------------------------------------

TEST(ExtractFaults, NothingIsLeftOpen)
{
    const uint64_t before = openDescriptors();
    for (uint64_t files = 0; files < 64; files++) {
        for (const bool init : { false, true }) {
            Extraction run;
            const VideoIfoSpec video = { .cells = { { 0, 1 } } };
            const bool bad = files & 32;
            if (files & 1) run.put("AUDIO_PP.IFO", bad ? Bytes(16384) : samgIfo({ { 5, 6 } }));
            if (files & 2) run.put("VIDEO_TS.IFO", bad ? Bytes(6144) : managerIfo(video));
            if (files & 4) run.put("VTS_01_0.IFO", bad ? Bytes(6144) : titleSetIfo(video));
            if (files & 8) run.put("ATS_01_1.AOB", aobPack(counting(8)));
            if (files & 16) run.put("VTS_01_1.VOB", privatePack(0xA0, {}, counting(8)));
            (void)(init ? run.init() : run.open());
            const uint64_t opened = openDescriptors();
            for (uint64_t track = 0; track < 3; track++) (void)run.extract(track, track % 2);
            EXPECT_EQ(openDescriptors(), opened) << files;   // each track closes its files, the one that breaks off too
            (void)(init ? run.init() : run.open());
            run.release();
            EXPECT_EQ(openDescriptors(), before) << files;
        }
    }
}

}   // namespace
