// audio_agreement_test.cpp: the host reads a refused DVD-Audio project once more to find its line. Here it has to agree
// with the library itself, over projects that chance has spoiled.
#include "spoiled.h"

#include "host/codes.h"
#include "host/project_fault.h"
#include "host/run_log.h"
#include "host/text.h"
#include "tests/support/bitmaps.h"
#include "tests/support/elementary.h"
#include "tests/support/files.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <orven/orven.h>

namespace {

// A sound project of finished title sets. Every kind of key occurs; the library runs in its folder.
const char SOUND[] =
    "[COMMON]\nversion=1.0\nmode=PAL\n[AMG]\ntitlesets=2\nmenus=1\n"
    "[AMG_MENU]\nvideomode=4:3\nresolution=720x576\naudio=AC3\nlanguage=en\ncolortable1=1,2,3\n"
    "[AMG_MENU1]\nbackground=m.mpg\nsubpicture=m.bmp\ncolorset1=1,2,3,4,5,6,7,8\nbuttons=1\n"
    "button1=1,2,3,4,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0),1\n"
    "[ASVS]\nstills=2\nattributes=1\ncolortable2=4,5,6\n[ASVU_ATTRIBUTE1]\nmpegtype=mpeg2\nvideomode=16:9\n"
    "resolution=352x288\n[ASV01]\nbackground=m.mpg\nsubpicture=m.bmp\n[ASV02]\nbackground=m.mpg\nbuttons=1\n"
    "button1=1,2,3,4,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0)\n"
    "[ATS_01]\nalbum=a\nartist=b\ntracks=2\n[TRACK_01_01]\ntitle=t\nformat=LPCM\nassign=1\nsamplesize=16\n"
    "samplerate=44100\nplaytime=900\nchannel1=/x/ATS_01_1.AOB\n[TRACK_01_02]\nformat=LPCM\nchannels=6\nsamplesize=24\n"
    "samplerate=192000\nstartsample=1\nendsample=9000\nchannel1=/x/ATS_01_1.AOB\n"
    "[ATS_02]\ntracks=1\n[TRACK_02_01]\nformat=LPCM\nassign=20\nsamplesize=16\nsamplerate=88200\nplaytime=900\n"
    "channel1=/x/ATS_02_1.AOB\nchannel6=/x/b.wav\n";

// Codes that tell of the files of a project, or of the tables: the run has come so far.
bool isStagesCode(uint64_t code)
{
    return code == 0 || code == CODE_MENU_ASSET || code == CODE_NOT_MPEG || code == CODE_WRONG_WAVE ||
           code == CODE_20_BITS || code == CODE_BASE_ARGUMENT || isPlatformCode(code);
}

TEST(AudioAgreement, HostAndLibraryRefuseTheSameKey)
{
    const char* runs = std::getenv("ORVEN_AGREEMENT_RUNS");
    const int count = runs ? std::atoi(runs) : 300;
    const TempDir folder;
    const std::u16string path = folder / u"p.ini", log = folder / u"run.log";
    writeFile(folder / u"m.mpg", makeVideo({ { .types = "I", .bytes = { 3000 } } }).bytes);
    writeFile(folder / u"m.bmp", bmpFile(ByteImage(576)));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.root);
    std::mt19937 chance(6);
    int refusals = 0, explained = 0, unread = 0;
    for (int run = 0; run < count; run++) {
        const std::string text = spoiled(SOUND, chance);
        SCOPED_TRACE(text);
        writeFile(path, std::string_view(text));
        std::filesystem::remove(std::filesystem::path(log));
        std::filesystem::create_directory(folder.root / "t");
        const std::u16string target = folder / u"t/";
        const uint64_t code = ParseAudioDescW(path.c_str(), target.c_str(), nullptr, nullptr, 0, log.c_str());
        std::filesystem::remove_all(folder.root / "t");
        const RunOutcome outcome = { .code = code,
                                     .log = readLog(std::filesystem::path(log), 0),
                                     .target = folder.root / "t",
                                     .previous = {},
                                     .isAudio = true };
        uint64_t refused = 0;
        std::u16string logText;
        ProjectFault fault;
        const ProjectFile file = parseProject(text);
        const bool found = findRefusedAudioKey(file, &refused, &logText, &fault);
        if (isStagesCode(code)) {
            // Only a file fault ends a run before it comes to a key that it refuses.
            unread += found;
            ASSERT_FALSE(found && code == 0);
            // A file is what has failed, or a track: the host finds it too.
            // A name that is no text can't be looked up.
            const bool isText = text.find('\xC3') == text.npos;
            const bool explains = findProjectFault(file, outcome, &fault);
            if (isText || code == 0) {
                ASSERT_EQ(explains, code != 0) << hexCode(code);
            }
            explained += code != 0;
            continue;
        }
        ASSERT_TRUE(found) << hexCode(code);
        refusals++;
        ASSERT_EQ(hexCode(refused), hexCode(code));
        ASSERT_TRUE(findProjectFault(file, outcome, &fault)) << utf8Of(logText);   // the log agrees too
    }
    std::filesystem::current_path(before);
    EXPECT_GT(refusals, count / 4);   // chance has spoiled enough
    EXPECT_GT(explained, count / 30);
    EXPECT_LT(unread, explained);
}

}   // namespace
