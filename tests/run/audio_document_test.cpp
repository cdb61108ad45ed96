// What docs/audio-project-format.md shows is true: its complete projects make discs, and the keys that the run itself
// reads give the errors that stand beside them. tests/project has the other keys.
#include "tests/run/disc_run.h"
#include "tests/run/menu_project.h"
#include "tests/support/bitmaps.h"
#include "tests/support/document.h"

#include <tuple>

namespace {

std::string document()
{
    return documentText("audio-project-format.md");
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (size_t at = text.find(from); at != text.npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// A run of the document's n-th project with its folders in place of those that it names.
struct DocumentRun : DiscRun {
    explicit DocumentRun(size_t n)
    {
        audio = true;
        const std::vector<std::string> projects = documentProjects(document());
        if (n < projects.size()) text = projects[n];
        text = replaced(text, "/discs/night/AUDIO_TS/", toUtf8(target));
        text = replaced(text, "C:\\Night\\Disc\\AUDIO_TS\\", toUtf8(target));
        text = replaced(text, "C:\\Night\\", toUtf8(folder.prefix()));
        put("ATS_01.nfo", Bytes(INFO.begin(), INFO.end()));
    }

    static inline const std::string INFO = "[TRACKINFO_01]\nTrackFirstCellPts=0\nTrackBlockSize=1000\n"
                                           "[TRACKINFO_02]\nTrackFirstCellPts=16200000\nTrackBlockSize=2000\n";
    std::string text;
};

// Tracks and the playing times of the first two, as AUDIO_PP.IFO has them: at 12 the number, records of 52 bytes at 18.
std::string table(const DiscRun& run)
{
    const Bytes bytes = run.get("AUDIO_PP.IFO");
    if (bytes.size() < 122) return "short";
    return toHex(&bytes[12], 2) + ", " + toHex(&bytes[18 + 6], 4) + ", " + toHex(&bytes[70 + 6], 4);
}

}   // namespace

TEST(AudioDocument, SmallProject)
{
    DocumentRun run(0);
    ASSERT_EQ(run.author(run.text), 0u);
    // 16200000 and 27000000 ticks
    EXPECT_EQ(table(run), "00 02, 00 F7 31 40, 01 9B FC C0");
    const Bytes bytes = run.get("AUDIO_PP.IFO");
    EXPECT_EQ(toHex(&bytes[70 + 2], 4), "00 F7 31 40");   // first time stamp of track 2, as the information file says
    for (const char* name : { "ATS_01_0.IFO", "ATS_01_0.BUP", "AUDIO_TS.IFO", "AUDIO_TS.BUP" }) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    for (const char* name : { "AUDIO_TS.VOB", "AUDIO_SV.IFO", "ATS_01_1.AOB" }) EXPECT_FALSE(run.has(name)) << name;
    EXPECT_TRUE(logHolds(run.log, {}));
}

TEST(AudioDocument, LargerProject)
{
    DocumentRun run(1);
    for (const char16_t* name : { u"menu.m2v", u"moon.m2v", u"sea.m2v" }) writeFile(run.folder / name, stillAsset());
    for (const char16_t* name : { u"menu.bmp", u"sea.bmp" }) writeFile(run.folder / name, bmpFile(ByteImage(480)));
    ASSERT_EQ(run.author(run.text), 0u);
    EXPECT_EQ(table(run), "00 02, 00 F7 31 40, 01 9B FC C0");
    for (const char* name : { "ATS_01_0.IFO", "ATS_02_0.IFO", "AUDIO_TS.IFO", "AUDIO_TS.VOB", "AUDIO_SV.IFO",
                              "AUDIO_SV.BUP", "AUDIO_SV.VOB" }) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_TRUE(logHolds(run.log, {}));
}

// The keys of AMG with each of their errors; what is behind it is not read.
TEST(AudioDocument, KeysOfTheManager)
{
    const std::tuple<const char*, unsigned, const char*> probes[] = {
        { "titlesets", 6005, "titlesets=0\nmenus=100\n" },
        { "titlesets", 6006, "titlesets=100\n" },
        { "menus", 6023, "titlesets=1\nmenus=100\n" },
    };
    std::vector<std::pair<std::string, unsigned>> told, tried;
    for (const DocumentRow& row : documentRows(document())) {
        if (row.heading != "AMG") continue;
        for (const unsigned error : numbersIn(row.cells[4])) told.push_back({ namesIn(row.cells[0])[0], error });
    }
    for (const auto& [key, error, lines] : probes) {
        tried.push_back({ key, error });
        DiscRun run;
        run.audio = true;
        const std::string project = std::string("[COMMON]\nversion=1.0\n[AMG]\n") + lines;
        EXPECT_EQ(run.author(project), 0x84000000 + error) << lines;
        EXPECT_TRUE(logHolds(run.log, {})) << lines;
    }
    EXPECT_EQ(told, tried);
}
