// The exported functions: handles, folders and files.
#include "base/result.h"
#include "tests/audio/aob_rig.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

namespace {

namespace fs = std::filesystem;
typedef std::basic_string<OrvWChar> WideText;

WideText wide(const std::u16string& text)
{
    return WideText(text.begin(), text.end());
}

uint64_t nothing(uint64_t, uint8_t*, uint64_t, uint64_t, uint64_t* outCount, uint64_t)
{
    *outCount = 0;
    return ORV_AOB_END;
}

const AobTrackDesc STEREO = aobTrack(2, 1, 16, 48000);

// Creates, muxes a track without samples, releases.
uint64_t makeEmpty(const std::u16string& path, uint64_t atsNumber)
{
    AobMuxer* muxer = nullptr;
    const uint64_t result = aobCreateMuxerW(wide(path).c_str(), atsNumber, 1, &STEREO, nothing, 0, &muxer);
    EXPECT_EQ(muxer == nullptr, result != 0);
    if (result) return result;
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    return 0;
}

std::vector<std::string> namesIn(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

typedef std::vector<std::string> Names;

}   // namespace

// ---- creating ---------------------------------------------------------------------------------------------------

TEST(AobMuxer, FolderWithAndWithoutSeparator)
{
    for (const std::u16string end : { u"", u"/", u"\\" }) {
        const TempDir folder;
        const std::u16string path = folder.root.u16string() + end;
        EXPECT_EQ(makeEmpty(path, 1), 0u) << toUtf8(path);
        EXPECT_EQ(namesIn(folder.root), (Names{ "ATS_01.nfo", "ATS_01_1.AOB" })) << toUtf8(path);
    }
    const TempDir folder;
    fs::create_directory(folder.root / "AUDIO_TS");
    EXPECT_EQ(makeEmpty(folder.root.u16string() + u"\\AUDIO_TS", 1), 0u);
    EXPECT_EQ(namesIn(folder.root), Names{ "AUDIO_TS" });
    EXPECT_EQ(namesIn(folder.root / "AUDIO_TS"), (Names{ "ATS_01.nfo", "ATS_01_1.AOB" }));
}

TEST(AobMuxer, NumberOfTheTitleSet)
{
    const TempDir folder;
    for (const uint64_t number : { 2u, 42u, 99u }) EXPECT_EQ(makeEmpty(folder.prefix(), number), 0u);
    EXPECT_EQ(namesIn(folder.root),
              (Names{ "ATS_02.nfo", "ATS_02_1.AOB", "ATS_42.nfo", "ATS_42_1.AOB", "ATS_99.nfo", "ATS_99_1.AOB" }));
}

TEST(AobMuxer, NarrowPath)
{
    const TempDir folder;
    const std::string path = folder.root.string();
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxer(path.c_str(), 7, 1, &STEREO, nothing, 0, &muxer), 0u);
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(namesIn(folder.root), (Names{ "ATS_07.nfo", "ATS_07_1.AOB" }));
}

#ifndef _WIN32   // there the file would lie in C:\ ...
TEST(AobMuxer, NullPathIsTheCurrentFolder)
{
    struct Here {
        fs::path before = fs::current_path();
        ~Here()
        {
            fs::current_path(before);
        }
    };
    const TempDir folder;
    const Here here;
    fs::current_path(folder.root);
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxer(nullptr, 1, 1, &STEREO, nothing, 0, &muxer), 0u);
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(namesIn(folder.root), (Names{ "ATS_01.nfo", "ATS_01_1.AOB" }));
    ASSERT_EQ(aobCreateMuxerW(nullptr, 2, 1, &STEREO, nothing, 0, &muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(namesIn(folder.root), (Names{ "ATS_01.nfo", "ATS_01_1.AOB", "ATS_02_1.AOB" }));
}

TEST(AobMuxer, NarrowPathIsUtf8)
{
    const TempDir folder;
    const std::string path = folder.root.string() + "/\xC3\xA9t\xC3\xA9";
    fs::create_directory(path);
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxer(path.c_str(), 1, 1, &STEREO, nothing, 0, &muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(namesIn(path), Names{ "ATS_01_1.AOB" });
}
#endif

TEST(AobMuxer, CountOfTracks)
{
    const std::vector<AobTrackDesc> tracks(100, STEREO);
    for (const uint64_t count : { uint64_t(0), uint64_t(100), uint64_t(1) << 32, ~uint64_t(0) }) {
        const TempDir folder;
        AobMuxer* muxer = reinterpret_cast<AobMuxer*>(&muxer);
        EXPECT_EQ(aobCreateMuxerW(wide(folder.prefix()).c_str(), 1, count, tracks.data(), nothing, 0, &muxer),
                  0x84000C1Cu)
            << count;
        EXPECT_EQ(muxer, nullptr);
        EXPECT_EQ(namesIn(folder.root), Names());
        EXPECT_EQ(aobCreateMuxer(folder.root.string().c_str(), 1, count, tracks.data(), nothing, 0, &muxer),
                  0x84000C1Cu);
    }
    const AobRun run =
        runAob(std::vector<AobTrackDesc>(99, STEREO), [](const SampleCall&) { return SampleAnswer{ ORV_AOB_END }; });
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.packs(), 99u);
    EXPECT_EQ(run.nfo.size(), 198u);
    EXPECT_EQ(run.nfo.at("TRACKINFO_99.TrackBlockSize"), "1");
    EXPECT_EQ(run.calls.back(), (SampleCall{ 98, 1, 0 }));
}

TEST(AobMuxer, NullArguments)
{
    const TempDir folder;
    const WideText path = wide(folder.prefix());
    const std::string narrow = folder.root.string();
    AobMuxer* muxer = reinterpret_cast<AobMuxer*>(&muxer);
    EXPECT_EQ(aobCreateMuxerW(path.c_str(), 1, 1, &STEREO, nothing, 0, nullptr), 0x84000057u);
    EXPECT_EQ(aobCreateMuxer(narrow.c_str(), 1, 1, &STEREO, nothing, 0, nullptr), 0x84000057u);
    EXPECT_EQ(aobCreateMuxerW(path.c_str(), 1, 0, &STEREO, nothing, 0, nullptr), 0x84000057u);   // before the count
    EXPECT_EQ(aobCreateMuxerW(path.c_str(), 1, 1, nullptr, nothing, 0, &muxer), 0x84000057u);
    EXPECT_EQ(muxer, nullptr);
    EXPECT_EQ(aobCreateMuxerW(path.c_str(), 1, 1, &STEREO, nullptr, 0, &muxer), 0x84000057u);
    EXPECT_EQ(aobStartMuxing(nullptr), 0x84000057u);
    EXPECT_EQ(aobReleaseMuxer(nullptr), 0x84000057u);
    EXPECT_EQ(namesIn(folder.root), Names());
}

TEST(AobMuxer, FolderThatIsNotThere)
{
    const TempDir folder;
    AobMuxer* muxer = reinterpret_cast<AobMuxer*>(&muxer);
    const WideText path = wide(folder / u"missing");
    const uint64_t result = aobCreateMuxerW(path.c_str(), 1, 1, &STEREO, nothing, 0, &muxer);
#ifdef _WIN32
    EXPECT_EQ(result, 3u);   // ERROR_PATH_NOT_FOUND
#else
    EXPECT_EQ(result, uint64_t(ENOENT));
#endif
    EXPECT_EQ(muxer, nullptr);
    EXPECT_EQ(namesIn(folder.root), Names());
}

// The AOB is there, and empty, as soon as the handle is; whatever it held before is gone.
TEST(AobMuxer, CreatesTheFileAnew)
{
    const TempDir folder;
    writeFile(folder / u"ATS_01_1.AOB", Bytes(5 * PACK_BYTES, 0x77));
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxerW(wide(folder.prefix()).c_str(), 1, 1, &STEREO, nothing, 0, &muxer), 0u);
    EXPECT_EQ(fs::file_size(folder.root / "ATS_01_1.AOB"), 0u);
    EXPECT_EQ(namesIn(folder.root), Names{ "ATS_01_1.AOB" });
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(fs::file_size(folder.root / "ATS_01_1.AOB"), 0u);
}

TEST(AobMuxer, TracksAreCopied)
{
    const TempDir folder;
    std::vector<AobTrackDesc> tracks = { STEREO, aobTrack(6, 20, 24, 96000) };
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxerW(wide(folder.prefix()).c_str(), 1, 2, tracks.data(), nothing, 0, &muxer), 0u);
    memset(tracks.data(), 0xEE, tracks.size() * sizeof(AobTrackDesc));
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    const Bytes aob = readFile(folder / u"ATS_01_1.AOB");
    EXPECT_EQ(packHex(aob, 0, 49 + 6, 5), "10 0F 0F 00 01");
    EXPECT_EQ(packHex(aob, 1, 49 + 6, 5), "30 22 11 00 14");
}

// ---- the information file ---------------------------------------------------------------------------------------

TEST(AobMuxer, InformationFileKeepsWhatStandsThere)
{
    const TempDir folder;
    writeFile(folder / u"ATS_01.nfo", "[HOST]\r\nname=kept\r\n"
                                      "[TRACKINFO_01]\r\nTrackBlockSize=777\r\nOther=kept too\r\n"
                                      "[TRACKINFO_02]\r\nTrackBlockSize=55\r\nTrackFirstCellPts=66\r\n");
    EXPECT_EQ(makeEmpty(folder.prefix(), 1), 0u);
    const std::map<std::string, std::string> should = {
        { "HOST.name", "kept" },
        { "TRACKINFO_01.Other", "kept too" },
        { "TRACKINFO_01.TrackBlockSize", "1" },
        { "TRACKINFO_01.TrackFirstCellPts", "0" },
        { "TRACKINFO_02.TrackBlockSize", "55" },
        { "TRACKINFO_02.TrackFirstCellPts", "66" },
    };
    EXPECT_EQ(readNfo(folder / u"ATS_01.nfo"), should);
}

// A section is written behind its track: the host may read it while the next one is on.
TEST(AobMuxer, InformationFollowsEachTrack)
{
    const TempDir folder;
    struct Host {
        const TempDir* folder;
        std::vector<size_t> values;
    } host = { &folder, {} };
    const auto look = [](uint64_t, uint8_t*, uint64_t, uint64_t, uint64_t* outCount, uint64_t user) -> uint64_t {
        Host* const to = reinterpret_cast<Host*>(user);
        to->values.push_back(readNfo(*to->folder / u"ATS_01.nfo").size());
        *outCount = 0;
        return ORV_AOB_END;
    };
    const std::vector<AobTrackDesc> tracks(3, STEREO);
    AobMuxer* muxer = nullptr;
    ASSERT_EQ(aobCreateMuxerW(wide(folder.prefix()).c_str(), 1, 3, tracks.data(), look,
                              reinterpret_cast<uint64_t>(&host), &muxer),
              0u);
    EXPECT_EQ(aobStartMuxing(muxer), 0u);
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(host.values, (std::vector<size_t>{ 0, 0, 2, 2, 4, 4 }));
}

TEST(AobMuxer, FailingTrackLeavesTheOnesBefore)
{
    const std::vector<AobSound> sounds = { aobSound(2, 1, 16, 48000, 1000), aobSound(2, 1, 24, 44100, 20),
                                           aobSound(2, 1, 20, 48000, 20), aobSound(2, 1, 16, 48000, 20) };
    const AobRun run = runAob(sounds);
    EXPECT_EQ(run.result, ORV_SAMPLE_SIZE_20_UNSUPPORTED);
    EXPECT_EQ(run.packs(), 4u);
    // 4000 bytes are 16.67 frames of the second track's 240 bytes: the 17th, at 1387.76 ticks.
    const std::map<std::string, std::string> nfo = { { "TRACKINFO_01.TrackBlockSize", "3" },
                                                     { "TRACKINFO_01.TrackFirstCellPts", "0" },
                                                     { "TRACKINFO_02.TrackBlockSize", "1" },
                                                     { "TRACKINFO_02.TrackFirstCellPts", "1387" } };
    EXPECT_EQ(run.nfo, nfo);
}

TEST(AobMuxer, InformationFileThatCantBeWritten)
{
    const TempDir folder;
    fs::create_directory(folder.root / "ATS_01.nfo");
    AobMuxer* muxer = nullptr;
    const std::vector<AobTrackDesc> tracks(2, STEREO);
    ASSERT_EQ(aobCreateMuxerW(wide(folder.prefix()).c_str(), 1, 2, tracks.data(), nothing, 0, &muxer), 0u);
    const uint64_t result = aobStartMuxing(muxer);
    EXPECT_NE(result, 0u);
    EXPECT_LT(result, ORV_LIBRARY);   // a number of the platform
    EXPECT_EQ(aobReleaseMuxer(muxer), 0u);
    EXPECT_EQ(readFile(folder / u"ATS_01_1.AOB").size(), PACK_BYTES);   // the first track's
}

TEST(AobMuxer, FileThatCantBeMade)
{
    const TempDir folder;
    fs::create_directory(folder.root / "ATS_01_1.AOB");
    const uint64_t result = makeEmpty(folder.prefix(), 1);   // which looks at the handle
    EXPECT_NE(result, 0u);
    EXPECT_LT(result, ORV_LIBRARY);
    EXPECT_EQ(namesIn(folder.root), Names{ "ATS_01_1.AOB" });
}
