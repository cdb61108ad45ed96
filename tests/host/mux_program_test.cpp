// mux_program_test.cpp: `orven mux`, by running it: usage, what it says of streams that do not fit, and what its movies
// hold.
#include "tests/host/process.h"
#include "tests/host/usage.h"
#include "tests/support/elementary.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

Bytes joined(const std::vector<Bytes>& parts)
{
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

/** PAL video of so many half seconds, 40,000 bytes each; its end code is left out or not. */
Bytes palVideo(uint64_t groups, bool end = true)
{
    std::vector<GopSpec> all = gops(groups, { .bytes = { 10000, 2500 } });
    all.back().end = end;
    return makeVideo(all).bytes;
}

/** LPCM of so many bytes in a plain RIFF/WAVE file. */
Bytes waveFile(const Bytes& samples, WaveSpec wave = {})
{
    wave.dataBytes = samples.size();
    return joined({ waveHeader(wave), samples });
}

// ---- packs --------------------------------------------------------------------------------------------------------

/** Payload of one stream of a movie. subStreamId is that of private stream 1, with so many bytes of its own header. */
Bytes payloadOf(const Bytes& movie, uint8_t streamId, uint8_t subStreamId = 0, uint64_t subHeader = 0)
{
    Bytes all;
    for (uint64_t sector = 0; sector + 2048 <= movie.size(); sector += 2048) {
        const uint8_t* pack = movie.data() + sector;
        const uint64_t data = 23 + uint64_t(pack[22]), end = 20 + (uint64_t(pack[18]) << 8 | pack[19]);
        if (pack[17] != streamId || (subHeader && pack[data] != subStreamId)) continue;
        all.insert(all.end(), pack + data + subHeader, pack + end);
    }
    return all;
}

ProcessResult mux(const TempDir& folder, const std::vector<std::string>& sounds,
                  const std::vector<std::string>& more = {})
{
    std::vector<std::string> arguments = { "mux", "--out", "out.vob", "--video", "v.m2v" };
    for (const std::string& sound : sounds) arguments.insert(arguments.end(), { "--audio", sound });
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runOrven(arguments, folder.root);
}

bool madeNothing(const TempDir& folder)
{
    return !fs::exists(folder.root / "out.vob");
}

// ---- usage --------------------------------------------------------------------------------------------------------

TEST(MuxProgram, WrongUsageIsExitCode2)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", palVideo(2));
    writeFile(folder / u"a.ac3", ac3Frames(0x14, 4));
    fs::create_directory(folder.root / "dir");
    std::vector<std::string> nine = { "mux", "-o", "out.vob", "-v", "v.m2v" };
    for (int i = 0; i < 9; i++) nine.insert(nine.end(), { "-a", "a.ac3" });
    const UsageCase cases[] = {
        { "no output", { "mux", "-v", "v.m2v" }, "--out" },
        { "no video", { "mux", "-o", "out.vob" }, "--video" },
        { "word without option", { "mux", "-o", "out.vob", "-v", "v.m2v", "a.ac3" }, "a.ac3" },
        { "video is missing", { "mux", "-o", "out.vob", "-v", "no.m2v" }, "error: no.m2v: there is no such file" },
        { "sound is missing",
          { "mux", "-o", "out.vob", "-v", "v.m2v", "-a", "no" },
          "error: no: there is no such file" },
        { "video is a folder", { "mux", "-o", "out.vob", "-v", "dir" }, "error: dir: that is a folder\n" },
        { "output is a folder",
          { "mux", "-o", "dir", "-v", "v.m2v" },
          "error: the output dir is there and is no plain file\n" },
        { "both standards",
          { "mux", "-o", "out.vob", "-v", "v.m2v", "--pal", "--ntsc" },
          "error: --pal and --ntsc exclude each other\n" },
        { "nine sounds", nine, "error: a movie has at most eight sound tracks\n" },
    };
    for (const UsageCase& usage : cases) {
        SCOPED_TRACE(usage.what);
        expectRefused(usage, folder.root);
        EXPECT_TRUE(madeNothing(folder));
    }
}

TEST(MuxProgram, NeverWritesOverAnInput)
{
    const TempDir folder;
    const Bytes video = palVideo(2), sound = ac3Frames(0x14, 4);
    writeFile(folder / u"v.m2v", video);
    writeFile(folder / u"a.ac3", sound);
    fs::create_directory(folder.root / "dir");
    fs::create_hard_link(folder.root / "a.ac3", folder.root / "other");
    for (const char* out : { "v.m2v", "a.ac3", "dir/../a.ac3", "other" }) {
        const ProcessResult result = runOrven({ "mux", "-o", out, "-v", "v.m2v", "-a", "a.ac3" }, folder.root);
        EXPECT_EQ(result.exitCode, 2) << out;
        EXPECT_TRUE(result.err.ends_with(" is one of the inputs\n")) << result.err;
    }
    EXPECT_TRUE(readFile(folder / u"v.m2v") == video);
    EXPECT_TRUE(readFile(folder / u"a.ac3") == sound);
}

TEST(MuxProgram, HelpTeaches)
{
    const TempDir folder;
    const ProcessResult help = runOrven({ "mux", "--help" }, folder.root);
    EXPECT_EQ(help.exitCode, 0);
    for (const char* part :
         { "--out", "--video", "--audio", "--pal", "--ntsc", "--scan-file", "--interval", "--cells", "--quiet",
           "10.08 Mbit/s", "orven mux -o disc/VIDEO_TS/VTS_01_1.VOB --video film.m2v --audio film.ac3" }) {
        EXPECT_NE(help.out.find(part), std::string::npos) << part;
    }
    EXPECT_NE(runOrven({ "--help" }, folder.root).out.find("Make a movie of elementary streams"), std::string::npos);
}

TEST(MuxProgram, EveryFailureOfTheMultiplexerIsExplained)
{
    const TempDir folder;
    for (const char* code : { "3001", "3002", "3006", "3008", "3010", "3014", "3015", "3017" }) {
        const ProcessResult result = runOrven({ "explain", code }, folder.root);
        EXPECT_GT(result.out.size() - result.out.find("\n\n"), 40u) << result.out;
        EXPECT_EQ(result.out.find("A result of the multiplexer."), std::string::npos) << result.out;
    }
}

// ---- streams that do not fit --------------------------------------------------------------------------------------

struct FaultCase {
    const char* what;
    Bytes video, sound;
    std::vector<std::string> options;
    const char* err;   // all that it says
};

TEST(MuxProgram, FaultsOfStreamsAreExplained)
{
    const Bytes video = palVideo(2), ac3 = ac3Frames(0x14, 40);
    const FaultCase cases[] = {
        { "sound as video", ac3, ac3, {}, "error: v.m2v: it is no video but AC-3, 192 kbit/s\n" },
        { "video as sound", video, video, {}, "error: a: it is video, of which a movie has one: name it by --video\n" },
        { "NTSC asked for", video, ac3, { "--ntsc" }, "error: v.m2v: it is PAL video, and --ntsc was asked for\n" },
        { "PAL asked for",
          makeVideo(gops(2, { .rateCode = RATE_CODE_NTSC, .height = 480 })).bytes,
          ac3,
          { "--pal" },
          "error: v.m2v: it is NTSC video, and --pal was asked for\n" },
        { "film",
          makeVideo(gops(2, { .rateCode = RATE_CODE_24 })).bytes,
          ac3,
          {},
          "error: Warning 3010: video stream must be PAL or NTSC (0x84000BC2)\n"
          "  v.m2v: it has 24 pictures a second; PAL has 25, NTSC has 29.97\n"
          "  more: orven explain 3010\n" },
        { "layer 3",
          video,
          joined({ fromHex("FF FB 94 00"), filler(800) }),
          {},
          "error: Warning 3001: mpeg audio is not layer 2 (0x84000BB9)\n"
          "  a: it is MPEG audio of layer 3\n"
          "  more: orven explain 3001\n" },
        { "44.1 kHz",
          video,
          waveFile(filler(4000), { .rate = 44100 }),
          {},
          "error: Error 3002: audio sampling rate is not DVD conform (0x84000BBA)\n"
          "  a: it is LPCM, 2 channels, 16 bits, 44100 Hz\n"
          "  more: orven explain 3002\n" },
        { "three channels",
          video,
          waveFile(filler(6000), { .channels = 3 }),
          {},
          "error: Error 3006: unsupported LPCM format used (0x84000BBE)\n"
          "  a: it is LPCM, 3 channels, 16 bits, 48000 Hz\n"
          "  more: orven explain 3006\n" },
        { "floating point",
          video,
          waveFile(filler(8000), { .bits = 32, .tag = 3 }),
          {},
          "error: Error 3015: RIFF file must be uncompressed LPCM (0x84000BC7)\n"
          "  a: it is LPCM, 2 channels, 32 bits, 48000 Hz\n"
          "  more: orven explain 3015\n" },
        { "no picture",
          joined({ sequenceHeader(), gopHeader(), filler(3000) }),
          ac3,
          {},
          "error: v.m2v: no picture begins in its first 3020 bytes\n" },
        { "neither",
          joined({ fromHex("4D 5A"), filler(100) }),
          ac3,
          {},
          "error: v.m2v: it begins neither as MPEG-2 video (00 00 01 B3) nor as AC-3 (0B 77), MPEG audio of layer 2 "
          "(FF Fx) or RIFF/WAVE\n" },
    };
    for (const FaultCase& fault : cases) {
        SCOPED_TRACE(fault.what);
        const TempDir folder;
        writeFile(folder / u"v.m2v", fault.video);
        writeFile(folder / u"a", fault.sound);
        std::vector<std::string> options = fault.options;
        options.push_back("--quiet");
        const ProcessResult result = mux(folder, { "a" }, options);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, fault.err);
        EXPECT_TRUE(madeNothing(folder));
    }
}

// Nothing of a run that fails stays: half a movie looks like a whole one.
TEST(MuxProgram, FaultInTheMiddleLeavesNoMovie)
{
    const TempDir folder;
    const Bytes video = palVideo(20), good = ac3Frames(0x14, 200), other = ac3Frames(0x16, 20);
    writeFile(folder / u"v.m2v", video);
    writeFile(folder / u"a", joined({ good, other }));
    const ProcessResult result = mux(folder, { "a" }, { "-q" });
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "error: a: at byte 153600 a frame of 768 bytes should begin as those in front of it do: the "
                          "stream is damaged, or its bit rate changes\n");
    EXPECT_TRUE(madeNothing(folder));

    writeFile(folder / u"a", joined({ layer2Frames(11, 300), filler(5000) }));
    const ProcessResult layer2 = mux(folder, { "a" }, { "-q" });
    EXPECT_EQ(layer2.exitCode, 1);
    EXPECT_TRUE(layer2.err.starts_with("error: a: at byte 201600 a frame of 672 bytes should begin")) << layer2.err;
    EXPECT_TRUE(madeNothing(folder));
}

TEST(MuxProgram, FaultAtTheStartLeavesAnEarlierMovieAlone)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", palVideo(2));
    writeFile(folder / u"a", waveFile(filler(4000), { .rate = 44100 }));
    writeFile(folder / u"out.vob", std::string_view("earlier"));
    EXPECT_EQ(mux(folder, { "a" }).exitCode, 1);
    EXPECT_EQ(readFile(folder / u"out.vob").size(), 7u);
}

// 12 Mbit/s.
TEST(MuxProgram, TooManyBytesASecond)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", makeVideo(gops(6, { .bytes = { 62500 } })).bytes);
    const ProcessResult result = mux(folder, {}, { "-q" });
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.err.starts_with("error: Error 3008: multiplex buffer underrun (0x84000BC0)\n"
                                       "  out.vob: the streams do not fit together, near second "))
        << result.err;
    EXPECT_TRUE(result.err.ends_with("\n  more: orven explain 3008\n")) << result.err;
    EXPECT_TRUE(madeNothing(folder));
}

TEST(MuxProgram, OutputThatCannotBeMade)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", palVideo(2));
    const ProcessResult result = runOrven({ "mux", "-q", "-o", "no/out.vob", "-v", "v.m2v" }, folder.root);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.err.starts_with("error: Error 4019: write file to destination failed (0x84000FB3)\n"))
        << result.err;
    EXPECT_TRUE(result.err.ends_with("out.vob: the file can't be written\n  more: orven explain 4019\n")) << result.err;
}

// ---- movies -------------------------------------------------------------------------------------------------------

TEST(MuxProgram, MakesAMovie)
{
    const TempDir folder;
    const Bytes video = palVideo(8), ac3 = ac3Frames(0x14, 120), layer2 = layer2Frames(11, 160);
    writeFile(folder / u"v.m2v", video);
    writeFile(folder / u"a.ac3", ac3);
    writeFile(folder / u"a.mp2", layer2);
    const ProcessResult result = mux(folder, { "a.ac3", "a.mp2" }, { "--pal" });
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const Bytes movie = readFile(folder / u"out.vob");
    EXPECT_EQ(movie.size() % 2048, 0u);
    EXPECT_EQ(toHex(Bytes(movie.begin() + 14, movie.begin() + 18)), "00 00 01 BB");   // a navigation pack first
    EXPECT_TRUE(payloadOf(movie, 0xE0) == video);
    EXPECT_TRUE(payloadOf(movie, 0xBD, 0x80, 4) == ac3);
    EXPECT_TRUE(payloadOf(movie, 0xC1) == layer2);
    EXPECT_EQ(result.out, "video: v.m2v, PAL video, 720 x 576\n"
                          "sound 1: a.ac3, AC-3, 192 kbit/s\n"
                          "sound 2: a.mp2, MPEG audio of layer 2, 224 kbit/s\n"
                          "movie written to out.vob, " +
                              std::to_string(movie.size()) + " bytes\n");
    EXPECT_TRUE(result.err.starts_with("  0%  multiplexing\n 10%  multiplexing\n")) << result.err;
    EXPECT_TRUE(result.err.ends_with(" 90%  multiplexing\n100%  multiplexing\n")) << result.err;
}

TEST(MuxProgram, QuietRunSaysNothingAndWritesOver)
{
    const TempDir folder;
    writeFile(folder / u"v.m2v", palVideo(2));
    writeFile(folder / u"out.vob", filler(9000000));
    const ProcessResult result = mux(folder, {}, { "-q" });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_TRUE(payloadOf(readFile(folder / u"out.vob"), 0xE0) == palVideo(2));
    EXPECT_LT(readFile(folder / u"out.vob").size(), 200000u);
}

// One picture, and a sound of one frame.
TEST(MuxProgram, ShortestStreams)
{
    const TempDir folder;
    const Bytes video = makeVideo({ { .types = "I", .bytes = { 3000 } } }).bytes;
    writeFile(folder / u"v.m2v", video);
    writeFile(folder / u"a", ac3Frame(0x14));
    const ProcessResult result = mux(folder, { "a" }, { "-q" });
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const Bytes movie = readFile(folder / u"out.vob");
    EXPECT_TRUE(payloadOf(movie, 0xE0) == video);
    EXPECT_TRUE(payloadOf(movie, 0xBD, 0x80, 4) == ac3Frame(0x14));
}

TEST(MuxProgram, Ac3OfTheOtherByteOrderAndWithATornEnd)
{
    const TempDir folder;
    const Bytes frames = ac3Frames(0x1E, 30), torn(frames.begin(), frames.end() - 1000);
    writeFile(folder / u"v.m2v", palVideo(2));
    writeFile(folder / u"a", swappedPairs(torn));
    const ProcessResult result = mux(folder, { "a" }, { "-q" });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "warning: a ends within a frame; its last 792 bytes are left out\n");
    EXPECT_TRUE(payloadOf(readFile(folder / u"out.vob"), 0xBD, 0x80, 4) == Bytes(frames.begin(), frames.end() - 1792));
}

/** Samples as a movie has them: the bytes of each exchanged. */
Bytes storedSamples(Bytes samples)
{
    samples.resize((samples.size() + 2007) / 2008 * 2008);   // silence up to the end of the last pack
    return swappedPairs(samples);
}

// Where the samples begin like one of the multiplexer's marks, at the start and at the start of a chunk.
TEST(MuxProgram, SamplesThatLookLikeMarks)
{
    for (const char* mark : { "RIFF", "END " }) {
        SCOPED_TRACE(mark);
        const TempDir folder;
        Bytes samples = filler(150000, 3);
        for (const size_t at : { size_t(0), size_t(32768), size_t(65536) })
            std::copy(mark, mark + 4, samples.begin() + std::ptrdiff_t(at));
        writeFile(folder / u"v.m2v", palVideo(3));
        writeFile(folder / u"a", waveFile(samples));
        const ProcessResult result = mux(folder, { "a" }, { "-q" });
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_TRUE(payloadOf(readFile(folder / u"out.vob"), 0xBD, 0xA0, 7) == storedSamples(samples));
    }
}

// Chunks of other kinds around the samples are no sound.
TEST(MuxProgram, WaveFileWithOtherChunks)
{
    const TempDir folder;
    const Bytes samples = filler(20000, 5), header = waveHeader({ .channels = 1, .dataBytes = samples.size() });
    const Bytes list = fromHex("4C 49 53 54 04 00 00 00 61 62 63 64");
    writeFile(folder / u"v.m2v", palVideo(2));
    writeFile(folder / u"a", joined({ Bytes(header.begin(), header.begin() + 12), list,
                                      Bytes(header.begin() + 12, header.begin() + 36), list,
                                      Bytes(header.begin() + 36, header.end()), samples, list, filler(3000) }));
    const ProcessResult result = mux(folder, { "a" }, { "-q" });
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(payloadOf(readFile(folder / u"out.vob"), 0xBD, 0xA0, 7) == storedSamples(samples));
}

TEST(MuxProgram, EightSoundsAndVideoWithoutEndCode)
{
    const TempDir folder;
    const Bytes video = palVideo(4, false);
    writeFile(folder / u"v.m2v", video);
    std::vector<std::string> sounds;
    for (uint32_t i = 0; i < 8; i++) {
        sounds.push_back("a" + std::to_string(i));
        writeFile(folder / toWide(sounds.back()),
                  i % 2 ? layer2Frames(4, 30 * (i + 1), i) : ac3Frames(6, 20 * (8 - i), i));
    }
    const ProcessResult result = mux(folder, sounds, { "-q" });
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const Bytes movie = readFile(folder / u"out.vob");
    EXPECT_TRUE(payloadOf(movie, 0xE0) == video);
    for (uint32_t i = 0; i < 8; i++) {
        const Bytes payload =
            i % 2 ? payloadOf(movie, uint8_t(0xC0 + i)) : payloadOf(movie, 0xBD, uint8_t(0x80 + i), 4);
        EXPECT_TRUE(payload == readFile(folder / toWide(sounds[i]))) << i;
    }
}

TEST(MuxProgram, PathsInAnyLanguage)
{
    const TempDir folder;
    const fs::path inner = folder.root / u"Проект \u00E4 \u65E5\u672C";
    fs::create_directory(inner);
    writeFile((inner / u"звук.mp2").u16string(), layer2Frames(4, 60));
    writeFile((inner / u"кино.m2v").u16string(), palVideo(2));
    const std::string name = toUtf8(u"Проект \u00E4 \u65E5\u672C/");
    const ProcessResult result = runOrven({ "mux", "-q", "-o", name + toUtf8(u"диск.vob"), "-v",
                                            name + toUtf8(u"кино.m2v"), "-a", name + toUtf8(u"звук.mp2") },
                                          folder.root);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const Bytes movie = readFile((inner / u"диск.vob").u16string());
    EXPECT_TRUE(payloadOf(movie, 0xC0) == layer2Frames(4, 60));
}

}   // namespace
