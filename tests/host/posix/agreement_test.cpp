// agreement_test.cpp: the host reads a refused project once more to find its line. Here it has to agree with the
// library itself, over projects and bitmaps that chance has spoiled.
#include "spoiled.h"

#include "host/codes.h"
#include "host/project_fault.h"
#include "host/run_log.h"
#include "host/text.h"
#include "tests/support/bitmaps.h"
#include "tests/support/files.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <orven/orven.h>

namespace {

// A sound project, but for its files. Every kind of key occurs.
const char SOUND[] =
    "[COMMON]\nversion=1.0\nmode=PAL\n[FIRSTPLAY]\ncmd=BTN_ACTION_JUMP_TT(1,0,0)\n"
    "[VMG]\ntitlesets=2\nmenus=1\n[VMG_MENU]\nvideomode=4:3\ncolortable1=1,2,3\n"
    "[VMG_MENU1]\nbackground=m.mpg\nsubpicture=m.bmp\ntype=animated\nmenutype=title\n"
    "colorset1=1,2,3,4,5,6,7,8\nbuttons=1\nbutton1=1,2,3,4,0,0,0,0,1,BTN_ACTION_LINKPGCN(1,0,0),1\n"
    "playtime=00:00:10.05\nblink=3,4\n"
    "[VTS_1]\nresolution=720x576\nbitrate=cbr\nmpegtype=mpeg2\naudio=AC3\nchannel=2\nsamplerate=48\n"
    "samplesize=16\nlanguage=en\nastreams=2\naudio2=PCM\nchannel2=6\nchapters=3\nchapter1=0\n"
    "chapter2=900000,1,1\npostcmd=next\nmenus=1\nsource=a.vob\nsource3=b.vob\n"
    "[VTS_1_MENU]\nvideomode=16:9\n[VTS_1_MENU1]\nbackground=n.mpg\nsubpicture=n.bmp\n"
    "spuletterbox=l.bmp\nsubpicture32=s.bmp\nspuletterbox32=t.bmp\nbuttons=2\nbutton2=1,2,,,4,0,0,0,0,1,,(1,0,0)\n"
    "[VTS_02]\nrestricted=yes\nsource=c.vob\nstreamscanfile=d.scan\n[VTS_2_MENU]\nskipmenu=1\n";

bool isReadersCode(uint64_t code)
{
    return (code >= libraryCode(1000) && code < libraryCode(1100)) || code == CODE_TITLE_SETS || code == CODE_CHAPTERS;
}

TEST(Agreement, HostAndLibraryRefuseTheSameKey)
{
    const char* runs = std::getenv("ORVEN_AGREEMENT_RUNS");
    const int count = runs ? std::atoi(runs) : 300;
    const TempDir folder;
    const std::u16string path = folder / u"p.ini", log = folder / u"run.log";
    std::mt19937 chance(12);
    int refusals = 0;
    for (int run = 0; run < count; run++) {
        const std::string text = spoiled(SOUND, chance);
        SCOPED_TRACE(text);
        writeFile(path, std::string_view(text));
        std::filesystem::remove(std::filesystem::path(log));
        const uint64_t code = ParseDVDDescW(path.c_str(), folder.prefix().c_str(), nullptr, nullptr, 0, log.c_str());
        const RunOutcome outcome = {
            .code = code, .log = readLog(std::filesystem::path(log), 0), .target = folder.root, .previous = {}
        };
        uint64_t refused = 0;
        std::u16string logText;
        ProjectFault fault;
        const ProjectFile file = parseProject(text);
        const bool found = findRefusedKey(file, &refused, &logText, &fault);
        ASSERT_EQ(found, isReadersCode(code)) << hexCode(code) << " " << hexCode(refused);
        if (!found) continue;
        refusals++;
        ASSERT_EQ(hexCode(refused), hexCode(code));
        ASSERT_TRUE(findProjectFault(file, outcome, &fault)) << utf8Of(logText);   // the log agrees too
    }
    EXPECT_GT(refusals, count / 3);   // chance has spoiled enough
}

// ---- bitmaps --------------------------------------------------------------------------------------------------------

const char* const BITMAPS[] = { "good.bmp", "good.bmp", "good.bmp",  "alpha.bmp", "alpha.bmp",
                                "cut.bmp",  "text.bmp", "small.bmp", "none.bmp" };

void writeBitmaps(const TempDir& folder)
{
    const Bytes good = bmpFile(ByteImage(576));
    writeFile(folder / u"good.bmp", good);
    writeFile(folder / u"alpha.bmp", bmpFile(AlphaImage(576)));
    writeFile(folder / u"cut.bmp", Bytes(good.begin(), good.begin() + 50000));
    writeFile(folder / u"text.bmp", std::string(60, 'x'));
    writeFile(folder / u"small.bmp", bmpFile(ByteImage(480)));
}

// A menu whose keys name bitmaps by chance; most often those that fit.
std::string menuOf(const std::string& section, const TempDir& folder, std::mt19937& chance)
{
    std::string text = "[" + section + "]\nbackground=a\n";
    for (const char* key : { "subpicture", "spuletterbox", "subpicture32", "spuletterbox32" }) {
        const bool alpha = std::string(key).ends_with("32");
        if (key != std::string("subpicture") && chance() % 2) continue;
        const char* name = chance() % 6 ? (alpha ? "alpha.bmp" : "good.bmp") : BITMAPS[chance() % std::size(BITMAPS)];
        text += std::string(key) + "=" + toUtf8(folder / toWide(name)) + "\n";
    }
    return text;
}

uint32_t passOver(const OrvMenuPreview*, uint64_t)
{
    return 0;
}

// Without buttons the bitmaps alone decide: whenever the library refuses one, the host finds one for the same reason.
TEST(Agreement, HostAndLibraryRefuseABitmapForTheSameReason)
{
    const TempDir folder;
    writeBitmaps(folder);
    const std::string path = toUtf8(folder / u"p.ini");
    std::mt19937 chance(12);
    int refusals = 0;
    for (int run = 0; run < 200; run++) {
        const std::string text = "[COMMON]\nversion=1.0\n[VMG]\ntitlesets=2\nmenus=1\n[VTS_1]\nsource=a\nmenus=2\n"
                                 "[VTS_2]\nsource=a\nmenus=1\n" +
                                 menuOf("VTS_1_MENU1", folder, chance) + menuOf("VTS_1_MENU2", folder, chance) +
                                 menuOf("VMG_MENU1", folder, chance) + menuOf("VTS_2_MENU1", folder, chance);
        SCOPED_TRACE(text);
        writeFile(folder / u"p.ini", std::string_view(text));
        const uint64_t code = PreviewMenus(path.c_str(), passOver, 0, nullptr);
        if (code == 0) continue;
        refusals++;
        const ProjectFile file = parseProject(text);
        ProjectFault fault;
        ASSERT_TRUE(findProjectFault(file, { .code = code, .log = {}, .target = {}, .previous = {}, .menusOnly = true },
                                     &fault))
            << hexCode(code);
        ASSERT_TRUE(fault.key);
    }
    EXPECT_GT(refusals, 60);
    EXPECT_LT(refusals, 190);   // some have no fault at all
}

}   // namespace
