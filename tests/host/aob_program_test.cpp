// aob_program_test.cpp: `orven aob`, by running it: options, refusals, files that lie, whole sounds and their projects.
#include "tests/host/process.h"
#include "tests/host/usage.h"
#include "tests/support/aob_reader.h"
#include "tests/support/packs.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

ProcessResult aob(const TempDir& folder, const std::vector<std::string>& tracks,
                  const std::vector<std::string>& options = {})
{
    std::vector<std::string> arguments = { "aob", "--target", "t" };
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), tracks.begin(), tracks.end());
    return runOrven(arguments, folder.root);
}

void writeSound(const TempDir& folder, const std::string& name, const Channels& channels, uint64_t bits = 16,
                uint64_t rate = 44100)
{
    writeFile((folder.root / name).u16string(), waveFile(channels, bits, rate));
}

Bytes little(uint64_t value, uint64_t bytes)
{
    Bytes out;
    for (uint64_t i = 0; i < bytes; i++) out.push_back(uint8_t(value >> (8 * i)));
    return out;
}

// A file of 44 bytes and its samples, with sizes as they may be.
struct RawWave {
    uint64_t tag = 1, channels = 2, rate = 44100, bits = 16;
    uint64_t riff = 36, data = 0;   // the sizes that it tells
    uint64_t bytes = 0;             // of samples that are there
};

Bytes rawWave(const RawWave& wave)
{
    const uint64_t block = wave.channels * ((wave.bits + 7) / 8);
    Bytes file = fromHex("52 49 46 46") + little(wave.riff, 4);
    file += fromHex("57 41 56 45 66 6D 74 20 10 00 00 00") + little(wave.tag, 2) + little(wave.channels, 2);
    file += little(wave.rate, 4) + little(wave.rate * block, 4) + little(block, 2) + little(wave.bits, 2);
    file += fromHex("64 61 74 61") + little(wave.data, 4);
    for (uint64_t i = 0; i < wave.bytes; i++) file.push_back(uint8_t(i * 7 + i / 256 + 1));
    return file;
}

RawWave honest(RawWave wave, uint64_t bytes = 400)
{
    wave.riff = 36 + bytes;
    wave.data = wave.bytes = bytes;
    return wave;
}

std::string pathText(const fs::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

/** How the program names a file of the target folder. */
std::string inTarget(const TempDir& folder, const char* name)
{
    return pathText((fs::canonical(folder.root) / "t" / name).make_preferred());
}

std::string textOf(const std::u16string& path)
{
    const Bytes bytes = readFile(path);
    return std::string(bytes.begin(), bytes.end());
}

// ---- usage --------------------------------------------------------------------------------------------------------

TEST(AobProgram, WrongUsageIsExitCode2)
{
    const TempDir folder;
    writeSound(folder, "a", makeChannels(1, 16, 100, 1));
    writeFile(folder / u"file", std::string_view("x"));
    writeFile(folder / u"p.ini", std::string_view("mine"));
    fs::create_directories(folder.root / "odd" / "ATS_01_1.AOB");
    fs::create_directories(folder.root / "even" / "ATS_02.nfo");
    std::vector<std::string> hundred = { "aob", "-t", "t" };
    hundred.insert(hundred.end(), 100, "a");
    const UsageCase cases[] = {
        { "no target", { "aob", "a" }, "--target" },
        { "no track", { "aob", "-t", "t" }, "TRACK" },
        { "empty target", { "aob", "-t", "", "a" }, "error: the target has no name\n" },
        { "target is a file",
          { "aob", "-t", "file", "a" },
          "error: the target file is a file; the disc needs a folder\n" },
        { "title set 0", { "aob", "-t", "t", "-n", "0", "a" }, "--title-set" },
        { "title set 100", { "aob", "-t", "t", "-n", "100", "a" }, "--title-set" },
        { "a hundred tracks", hundred, "error: a title set has at most 99 tracks, and these are 100\n" },
        { "missing track",
          { "aob", "-t", "t", "a", "none.wav" },
          "error: none.wav: there is no such file, seen from " },
        { "missing channel", { "aob", "-t", "t", "a+none.wav" }, "error: none.wav: there is no such file, seen from " },
        { "folder as a track", { "aob", "-t", "t", "odd" }, "error: odd: that is a folder\n" },
        { "three files",
          { "aob", "-t", "t", "a", "a+a+a" },
          "error: track 2 joins 3 files; a track has one, or a mono file for each of 2, 4, 5 or 6 channels\n" },
        { "seven files", { "aob", "-t", "t", "a+a+a+a+a+a+a" }, "error: track 1 joins 7 files; " },
        { "output is a folder", { "aob", "-t", "odd", "a" }, "ATS_01_1.AOB is there and is no plain file\n" },
        { "list is a folder", { "aob", "-t", "even", "-n", "2", "a" }, "ATS_02.nfo is there and is no plain file\n" },
        { "project is there",
          { "aob", "-t", "t", "--project", "p.ini", "a" },
          "error: the project p.ini is there already; it is not written over\n" },
        { "project of another title set",
          { "aob", "-t", "t", "-n", "2", "--project", "q.ini", "a" },
          "error: --project writes a project whose only title set is number 1; " },
        { "project over the sound",
          { "aob", "-t", "t", "--project", "x/../t/ATS_01_1.AOB", "a" },
          "error: the project can't have the name of the sound\n" },
        { "project over the list",
          { "aob", "-t", "t", "--project", "t/ATS_01.nfo", "a" },
          "error: the project can't have the name of the sound\n" },
    };
    for (const UsageCase& usage : cases) expectRefused(usage, folder.root);
    EXPECT_FALSE(fs::exists(folder.root / "t"));
    EXPECT_FALSE(fs::exists(folder.root / "q.ini"));
    EXPECT_EQ(textOf(folder / u"p.ini"), "mine");
}

TEST(AobProgram, InputIsNeverWrittenOver)
{
    const TempDir folder;
    const Bytes sound = waveFile(makeChannels(2, 16, 100, 1), 16, 44100);
    fs::create_directory(folder.root / "t");
    for (const char16_t* name : { u"t/ATS_01_1.AOB", u"t/ATS_02.nfo", u"a" }) writeFile(folder / name, sound);
    EXPECT_EQ(aob(folder, { "a", "t/../t/ATS_01_1.AOB" }).err,
              "error: the output " + inTarget(folder, "ATS_01_1.AOB") + " is one of the inputs\n");
    EXPECT_EQ(aob(folder, { "t/ATS_02.nfo" }, { "-n", "2" }).err,
              "error: the output " + inTarget(folder, "ATS_02.nfo") + " is one of the inputs\n");
    EXPECT_TRUE(readFile(folder / u"t/ATS_01_1.AOB") == sound);
    EXPECT_TRUE(readFile(folder / u"t/ATS_02.nfo") == sound);
}

TEST(AobProgram, HelpTeaches)
{
    const TempDir folder;
    const ProcessResult help = runOrven({ "aob", "--help" }, folder.root);
    EXPECT_EQ(help.exitCode, 0);
    for (const char* part : { "TRACK", "--target", "--title-set", "--project", "--quiet", "9.6 Mbit/s", "low frequency",
                              "orven author disc.ini --target disc/AUDIO_TS" }) {
        EXPECT_NE(help.out.find(part), std::string::npos) << part;
    }
    EXPECT_NE(runOrven({ "--help" }, folder.root).out.find("Make the sound of a DVD-Audio title set"),
              std::string::npos);
}

// ---- files that do not do -----------------------------------------------------------------------------------------

struct FaultCase {
    const char* what;
    Bytes a, b;
    std::vector<std::string> tracks;
    const char* err;   // all that it says
};

const char SIX[] = "a+a+a+a+a+b";

TEST(AobProgram, FaultsOfFilesAreExplained)
{
    const Bytes stereo = rawWave(honest({})), mono = rawWave(honest({ .channels = 1 }));
    Bytes noData = rawWave(honest({}, 0));
    noData.resize(36);
    Bytes noFormat = rawWave(honest({}));
    noFormat[12] = 'x';
    const FaultCase cases[] = {
        { "8 bits",
          rawWave(honest({ .bits = 8 })),
          stereo,
          { "a" },
          "error: error 6008: wrong audio sample size (0x84001778)\n"
          "  a: track 1: its samples have 8 bits; write them with 16 or 24\n"
          "  more: orven explain 6008\n" },
        { "20 bits",
          rawWave(honest({ .bits = 20 }, 600)),
          stereo,
          { "b", "a" },
          "error: error 6017: sample size 20bit is not supported (0x84001781)\n"
          "  a: track 2: its samples have 20 bits; write them with 16 or 24\n"
          "  more: orven explain 6017\n" },
        { "32 bits",
          rawWave(honest({ .bits = 32 })),
          stereo,
          { "a" },
          "error: error 6008: wrong audio sample size (0x84001778)\n"
          "  a: track 1: its samples have 32 bits; write them with 16 or 24\n"
          "  more: orven explain 6008\n" },
        { "floating point",
          rawWave(honest({ .tag = 3, .bits = 32 })),
          stereo,
          { "a" },
          "error: Error 3015: RIFF file must be uncompressed LPCM (0x84000BC7)\n"
          "  a: track 1: its samples are no whole numbers; write them as PCM of 16 or 24 bits\n"
          "  more: orven explain 3015\n" },
        { "32 kHz",
          rawWave(honest({ .rate = 32000 })),
          stereo,
          { "a" },
          "error: error 6009: wrong sample rate (0x84001779)\n"
          "  a: track 1: it has 32000 samples a second; DVD-Audio has 44100, 48000, 88200, 96000, 176400 and 192000\n"
          "  more: orven explain 6009\n" },
        { "three channels",
          rawWave(honest({ .channels = 3 }, 600)),
          stereo,
          { "a" },
          "error: error 6010: wrong channel count (0x8400177A)\n"
          "  a: track 1: it has 3 channels; a file has one or two. Give a mono file for each of 2, 4, 5 or 6 "
          "channels, joined by +: left, right, left surround, right surround, centre, low frequency\n"
          "  more: orven explain 6010\n" },
        { "stereo among mono files",
          stereo,
          mono,
          { "b+a" },
          "error: error 6010: wrong channel count (0x8400177A)\n"
          "  a: track 1: it has 2 channels; of files joined by + each has one\n"
          "  more: orven explain 6010\n" },
        { "other rate",
          mono,
          rawWave(honest({ .channels = 1, .rate = 48000 })),
          { SIX },
          "error: b: track 1: it has 48000 samples a second, and a has 44100; the files of a track are alike in "
          "that\n" },
        { "other size",
          mono,
          rawWave(honest({ .channels = 1, .bits = 24 }, 600)),
          { SIX },
          "error: b: track 1: it has 24 bits a sample, and a has 16; the files of a track are alike in that\n" },
        { "other length",
          mono,
          rawWave(honest({ .channels = 1 }, 402)),
          { SIX },
          "error: b: track 1: it has 201 samples, and a has 200; the files of a track are alike in that\n" },
        { "tracks of different rates",
          stereo,
          rawWave(honest({ .rate = 48000 })),
          { "a", "b" },
          "error: b: track 2: it has 2 channels, 16 bits, 48000 Hz, and track 1 has 2 channels, 16 bits, 44100 Hz; the "
          "tracks of a title set are alike in that. Put it onto a disc of its own\n" },
        { "tracks of different channels",
          mono,
          stereo,
          { "b", "a+a+a+a" },
          "error: a: track 2: it has 4 channels, 16 bits, 44100 Hz, and track 1 has 2 channels, 16 bits, 44100 Hz; the "
          "tracks of a title set are alike in that. Put it onto a disc of its own\n" },
        { "no samples",
          rawWave(honest({}, 0)),
          stereo,
          { "a" },
          "error: error 6019: wrong wave file structure (0x84001783)\n"
          "  a: track 1: it holds no samples\n"
          "  more: orven explain 6019\n" },
        { "less than a sample",
          rawWave(honest({}, 3)),
          stereo,
          { "a" },
          "error: error 6019: wrong wave file structure (0x84001783)\n"
          "  a: track 1: it holds no samples\n"
          "  more: orven explain 6019\n" },
        { "no data chunk",
          noData,
          stereo,
          { "a" },
          "error: error 6019: wrong wave file structure (0x84001783)\n"
          "  a: track 1: there is no `data` chunk in it\n"
          "  more: orven explain 6019\n" },
        { "no format chunk",
          noFormat,
          stereo,
          { "a" },
          "error: error 6019: wrong wave file structure (0x84001783)\n"
          "  a: track 1: there is no `fmt ` chunk in front of its samples\n"
          "  more: orven explain 6019\n" },
        { "empty",
          {},
          stereo,
          { "a" },
          "error: error 6019: wrong wave file structure (0x84001783)\n"
          "  a: track 1: it holds 0 bytes, too few for a RIFF/WAVE file\n"
          "  more: orven explain 6019\n" },
        { "FLAC",
          fromHex("66 4C 61 43 00 00 00 22 10 00 10 00 00 00 0E 00"),
          stereo,
          { "a" },
          "error: error 6019: wrong wave file structure (0x84001783)\n"
          "  a: track 1: it is FLAC; a DVD has LPCM, so write it as RIFF/WAVE\n"
          "  more: orven explain 6019\n" },
        { "text",
          Bytes(40, 'x'),
          stereo,
          { "a" },
          "error: error 6019: wrong wave file structure (0x84001783)\n"
          "  a: track 1: it does not begin as a RIFF/WAVE file\n"
          "  more: orven explain 6019\n" },
    };
    for (const FaultCase& fault : cases) {
        SCOPED_TRACE(fault.what);
        const TempDir folder;
        writeFile(folder / u"a", fault.a);
        writeFile(folder / u"b", fault.b);
        const ProcessResult result = aob(folder, fault.tracks, { "--project", "p.ini" });
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, fault.err);
        EXPECT_FALSE(fs::exists(folder.root / "t"));
        EXPECT_FALSE(fs::exists(folder.root / "p.ini"));
    }
}

TEST(AobProgram, OutputThatCannotBeMadeLeavesNothing)
{
    const TempDir folder;
    writeSound(folder, "a", makeChannels(2, 16, 100, 1));
    const ProcessResult result = aob(folder, { "a" }, { "-q", "--project", "no/p.ini" });
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.err.ends_with("p.ini: the file can't be written\n")) << result.err;
    EXPECT_FALSE(fs::exists(folder.root / "t"));
    EXPECT_FALSE(fs::exists(folder.root / "no"));
}

// ---- files that lie -----------------------------------------------------------------------------------------------

struct LieCase {
    const char* what;
    RawWave wave;
    uint64_t samples;   // that are taken
    const char* err;    // all that it says
};

TEST(AobProgram, FilesThatLieAboutTheirSizes)
{
    const LieCase cases[] = {
        { "written into a pipe",
          { .riff = 0xFFFFFFFF, .data = 0xFFFFFFFF, .bytes = 4000 },
          1000,
          "warning: a does not say how many samples it has; all 4000 bytes behind its header are taken for samples\n" },
        { "zeros in both",
          { .riff = 0, .data = 0, .bytes = 4000 },
          1000,
          "warning: a does not say how many samples it has; all 4000 bytes behind its header are taken for samples\n" },
        { "stopped before its sizes were known",
          { .riff = 36, .data = 0, .bytes = 4000 },
          1000,
          "warning: a does not say how many samples it has; all 4000 bytes behind its header are taken for samples\n" },
        { "cut",
          { .riff = 40036, .data = 40000, .bytes = 4000 },
          1000,
          "warning: a says that it has 40000 bytes of samples, but ends after 4000; those are taken\n" },
        { "cut within a sample",
          { .riff = 40036, .data = 40000, .bytes = 4003 },
          1000,
          "warning: a says that it has 40000 bytes of samples, but ends after 4003; those are taken\n"
          "warning: a ends within a sample; what there is of it, 3 bytes, is left out\n" },
        { "torn, and honest about it",
          { .riff = 4037, .data = 4001, .bytes = 4001 },
          1000,
          "warning: a ends within a sample; what there is of it, 1 byte, is left out\n" },
        { "RIFF alone lies, which does no harm", { .riff = 0, .data = 4000, .bytes = 4000 }, 1000, "" },
        { "something behind the samples", { .riff = 9000, .data = 2000, .bytes = 4000 }, 500, "" },
    };
    for (const LieCase& lie : cases) {
        SCOPED_TRACE(lie.what);
        const TempDir folder;
        const Bytes file = rawWave(lie.wave);
        writeFile(folder / u"a", file);
        const ProcessResult result = aob(folder, { "a" }, { "-q" });
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, lie.err);
        const AobFile sound = readAob(readFile(folder / u"t/ATS_01_1.AOB"));
        EXPECT_EQ(describeFaults(sound), "");
        ASSERT_EQ(sound.tracks.size(), 1u);
        const Bytes samples(file.begin() + 44, file.begin() + 44 + std::ptrdiff_t(4 * lie.samples));
        EXPECT_TRUE(pcmBytes(sound.tracks[0].samples, 16) == samples);
    }
}

// ---- sounds -------------------------------------------------------------------------------------------------------

// The long form of the format chunk, as programs write it for 24 bits, with the sub-format of plain PCM.
TEST(AobProgram, LongFormatChunk)
{
    const TempDir folder;
    const Channels channels = makeChannels(2, 24, 1001, 3);
    Bytes file =
        waveFile({ .channels = 2,
                   .bits = 24,
                   .rate = 96000,
                   .samples = pcmBytes(channels, 24),
                   .formatExtra = fromHex("16 00 18 00 03 00 00 00 01 00 00 00 00 00 10 00 80 00 00 AA 00 38 9B 71"),
                   .before = { { .id = "LIST", .data = fromHex("01 02 03 04") } } });
    file[20] = 0xFE;
    file[21] = 0xFF;
    writeFile(folder / u"a", file);
    const ProcessResult result = aob(folder, { "a" }, { "-q" });
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const AobFile sound = readAob(readFile(folder / u"t/ATS_01_1.AOB"));
    EXPECT_EQ(describeFaults(sound), "");
    Channels expected = channels;
    for (std::vector<int32_t>& channel : expected) channel.push_back(0);
    ASSERT_EQ(sound.tracks.size(), 1u);
    EXPECT_TRUE(sound.tracks[0].samples == expected);

    file[44] = 0x03;   // the sub-format of floating point
    writeFile(folder / u"a", file);
    EXPECT_TRUE(aob(folder, { "a" }).err.starts_with("error: Error 3015"));
}

TEST(AobProgram, SixMonoFilesAndTheirProject)
{
    const TempDir folder;
    const Channels channels = makeChannels(6, 24, 48001, 9);   // a second, and a sample that needs a second one
    std::string track;
    for (const char* name : { "L.wav", "R.wav", "LS.wav", "RS.wav", "C.wav", "LFE.wav" }) {
        writeSound(folder, name,
                   { channels[size_t(track.empty() ? 0 : std::count(track.begin(), track.end(), '+') + 1)] }, 24,
                   48000);
        track += (track.empty() ? "" : "+") + std::string(name);
    }
    const ProcessResult result = aob(folder, { track }, { "--project", "disc.ini" });
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const Bytes file = readFile(folder / u"t/ATS_01_1.AOB");
    const AobFile sound = readAob(file);
    EXPECT_EQ(describeFaults(sound), "");
    ASSERT_EQ(sound.tracks.size(), 1u);
    Channels expected = channels;
    for (std::vector<int32_t>& channel : expected) channel.push_back(0);
    EXPECT_TRUE(sound.tracks[0].samples == expected);
    EXPECT_EQ(sound.tracks[0].assignment, 20u);
    EXPECT_EQ(sound.tracks[0].rate, 48000u);
    // 48002 x 15 / 8 ticks are 90003.75.
    EXPECT_EQ(textOf(folder / u"disc.ini"), "[COMMON]\nversion=1.0\nmode=PAL\n\n[AMG]\ntitlesets=1\n\n"
                                            "[ATS_01]\ntracks=1\n\n[TRACK_01_01]\nformat=LPCM\nassign=20\n"
                                            "samplesize=24\nsamplerate=48000\nplaytime=90004\nchannel1=" +
                                                inTarget(folder, "ATS_01_1.AOB") + "\n");
    EXPECT_EQ(result.out, "track 1: L.wav + R.wav + LS.wav + RS.wav + C.wav + LFE.wav, 6 channels, 24 bits, 48000 Hz, "
                          "0:01.00\n"
                          "sound written to " +
                              inTarget(folder, "ATS_01_1.AOB") + ", " + std::to_string(file.size()) +
                              " bytes\nproject written to disc.ini\n");
    EXPECT_TRUE(result.err.starts_with("  0%  multiplexing\n 10%  multiplexing\n")) << result.err;
    EXPECT_TRUE(result.err.ends_with(" 90%  multiplexing\n100%  multiplexing\n")) << result.err;
}

// The numbers of each track that the tables of the disc will be made from.
TEST(AobProgram, ThreeTracksAndTheirList)
{
    const TempDir folder;
    const std::vector<Channels> tracks = { makeChannels(2, 16, 44100, 1), makeChannels(1, 16, 496, 2),
                                           makeChannels(2, 16, 497, 3) };
    for (size_t i = 0; i < 3; i++) writeSound(folder, "t" + std::to_string(i), tracks[i]);
    const ProcessResult result = aob(folder, { "t0", "t1", "t2" }, { "-n", "12" });
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const Bytes file = readFile(folder / u"t/ATS_12_1.AOB");
    const AobFile sound = readAob(file);
    EXPECT_EQ(describeFaults(sound), "");
    ASSERT_EQ(sound.tracks.size(), 3u);
    EXPECT_TRUE(sound.tracks[0].samples == tracks[0]);
    EXPECT_TRUE(sound.tracks[1].samples == Channels({ tracks[1][0], tracks[1][0] }));
    EXPECT_TRUE(sound.tracks[2].samples == tracks[2]);
    // 176400 bytes: 1984, 87 times 2000, 416. 1984 are one pack, 1988 two.
    EXPECT_EQ(sound.tracks[0].packs.size(), 89u);
    EXPECT_EQ(sound.tracks[1].packs.size(), 1u);
    EXPECT_EQ(sound.tracks[2].packs.size(), 2u);
    // Frames of 160 bytes: track 2 begins with frame 1102.5, so with 1103, track 3 behind 178384 bytes with 1115.
    EXPECT_EQ(sound.tracks[1].packs[0].pts, 90040u);   // 1103 x 40 x 90000 / 44100, cut
    EXPECT_EQ(sound.tracks[2].packs[0].pts, 91020u);
    std::string list = textOf(folder / u"t/ATS_12.nfo");
    std::erase(list, '\r');
    EXPECT_EQ(list, "[TRACKINFO_01]\nTrackBlockSize=89\nTrackFirstCellPts=0\n"
                    "[TRACKINFO_02]\nTrackBlockSize=1\nTrackFirstCellPts=90040\n"
                    "[TRACKINFO_03]\nTrackBlockSize=2\nTrackFirstCellPts=91020\n");
    const std::string keys = "format=LPCM\nassign=1\nsamplesize=16\nsamplerate=44100\nplaytime=",
                      channel = "channel1=" + inTarget(folder, "ATS_12_1.AOB") + "\n";
    EXPECT_EQ(result.out,
              "track 1: t0, 2 channels, 16 bits, 44100 Hz, 0:01.00\n"
              "track 2: t1, 2 channels, 16 bits, 44100 Hz, 0:00.01; the file is mono, both channels get the same "
              "samples\n"
              "track 3: t2, 2 channels, 16 bits, 44100 Hz, 0:00.01\n"
              "sound written to " +
                  inTarget(folder, "ATS_12_1.AOB") +
                  ", 188416 bytes\n"   // 92 packs
                  "a project names it by these sections:\n\n[ATS_12]\ntracks=3\n\n[TRACK_12_01]\n" +
                  keys + "90000\n" + channel + "\n[TRACK_12_02]\n" + keys + "1013\n" + channel + "\n[TRACK_12_03]\n" +
                  keys + "1015\n" + channel);   // 1012.2 and 1014.3
}

TEST(AobProgram, ListOfAnEarlierRunGoes)
{
    const TempDir folder;
    writeSound(folder, "a", makeChannels(2, 16, 100, 1));
    ASSERT_EQ(aob(folder, { "a", "a", "a" }, { "-q" }).exitCode, 0);
    ASSERT_EQ(aob(folder, { "a" }, { "-q" }).exitCode, 0);
    const std::string list = textOf(folder / u"t/ATS_01.nfo");
    EXPECT_NE(list.find("TRACKINFO_01"), list.npos);
    EXPECT_EQ(list.find("TRACKINFO_02"), list.npos) << list;
    EXPECT_EQ(readFile(folder / u"t/ATS_01_1.AOB").size(), 2048u);
}

TEST(AobProgram, NinetyNineTracks)
{
    const TempDir folder;
    writeSound(folder, "a", makeChannels(2, 16, 700, 1));
    const ProcessResult result = aob(folder, std::vector<std::string>(99, "a"), { "-q" });
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const AobFile sound = readAob(readFile(folder / u"t/ATS_01_1.AOB"));
    EXPECT_EQ(describeFaults(sound), "");
    EXPECT_EQ(sound.tracks.size(), 99u);
}

// A project with names that are not plain ASCII is UTF-16 with its mark, which the readers of both systems take.
TEST(AobProgram, PathsInAnyLanguage)
{
    const TempDir folder;
    const fs::path inner = folder.root / u"Музыка \u00E4 \u65E5\u672C";
    fs::create_directory(inner);
    writeFile((inner / u"звук.wav").u16string(), waveFile(makeChannels(2, 16, 2000, 5), 16, 96000));
    const std::string name = toUtf8(u"Музыка \u00E4 \u65E5\u672C/");
    const ProcessResult result = runOrven(
        { "aob", "-q", "-t", name + "AUDIO_TS", "--project", name + toUtf8(u"диск.ini"), name + toUtf8(u"звук.wav") },
        folder.root);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(describeFaults(readAob(readFile((inner / "AUDIO_TS" / "ATS_01_1.AOB").u16string()))), "");
    const Bytes project = readFile((inner / u"диск.ini").u16string());
    EXPECT_EQ(toHex(project.data(), 4), "FF FE 5B 00");
    std::u16string text;
    for (size_t i = 2; i + 1 < project.size(); i += 2) text += char16_t(project[i] | project[i + 1] << 8);
    const fs::path named = (fs::canonical(inner) / "AUDIO_TS" / "ATS_01_1.AOB").make_preferred();
    EXPECT_TRUE(text.ends_with(u"\nchannel1=" + named.u16string() + u"\n")) << toUtf8(text);
}

}   // namespace
