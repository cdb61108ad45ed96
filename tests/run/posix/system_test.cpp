// system_test.cpp: runs on a system that answers as the tests want: a source on read-only media, and a title set's file
// that is gone when the manager comes back to it.
#include "tests/run/disc_run.h"
#include "tests/run/menu_project.h"
#include "tests/run/posix/system.h"

namespace fs = std::filesystem;

// A path that the formatter would have to cut names another file than it says: none is written.
TEST(Target, PathsPastTheFormattersRoom)
{
    for (const size_t length : { 1010u, 1011u, 1012u, 1020u, 1030u }) {
        DiscRun run;
        std::u16string path = run.folder.prefix();
        while (path.size() + 101 < length) path += std::u16string(100, u'd') + u'/';
        path += std::u16string(length - path.size() - 1, u'e');
        fs::create_directories(fs::path(path));
        run.put("VTS_01_1.VOB", fourUnits().bytes);
        const std::string project = plainProject(run, 1);
        run.target = path + u'/';
        // VTS_01_0.IFO is 12 characters long, and a path holds at most 1023.
        EXPECT_EQ(run.target.size() + 12 <= 1023 ? 0u : 0x840007DBu, run.author(project)) << length;
        const bool written = !fs::is_empty(fs::path(path));
        EXPECT_EQ(run.target.size() + 12 <= 1023, written) << length;
    }
}

TEST(Target, MenuVobsPastTheFormattersRoom)
{
    for (const MenuDomain& domain : MENU_DOMAINS) {
        DiscRun run;
        std::u16string path = run.folder.prefix();
        while (path.size() + 101 < 1020) path += std::u16string(100, u'd') + u'/';
        path += std::u16string(1020 - path.size() - 1, u'e');
        fs::create_directories(fs::path(path));
        const std::string project = menuProject(run, discOf(domain, { {} }));
        run.target = path + u'/';
        // The title set's tables come in front of the manager's menus, and have no place there either.
        const uint64_t expected = domain.manager ? 0x840007DBu : 0x840007E3u;
        EXPECT_EQ(expected, run.author(project)) << domain.name;
        if (domain.manager) continue;
        EXPECT_TRUE(
            logHolds(run.log, { { expected, u"Failed to open file in <CreateVideoTitleset>: " + run.target } }));
    }
}

// The scan runs and the tables are written; the packs of such a source can't be.
TEST(ReadOnlyMedia, SourceIsScannedAndNotPatched)
{
    DiscRun patched, untouched;
    for (DiscRun* const run : { &patched, &untouched }) {
        run->put("VTS_01_1.VOB", fourUnits().bytes);
        systemAnswers.readOnlyMedia = run == &untouched;
        EXPECT_EQ(0u, run->author(plainProject(*run, 1, "PAL", "chapters=2\nchapter2=40000\n")));
        systemAnswers.readOnlyMedia = false;
    }
    EXPECT_EQ(fourUnits().bytes, untouched.get("VTS_01_1.VOB"));
    EXPECT_NE(fourUnits().bytes, patched.get("VTS_01_1.VOB"));
    for (const std::string& name : WRITTEN) EXPECT_EQ(patched.get(name), untouched.get(name)) << name;
    // The second half of the movie's progress is left out, its end is told all the same.
    ASSERT_LT(untouched.calls.size(), patched.calls.size());
    EXPECT_EQ(patched.calls.back(), untouched.calls.back());
}

// The manager reads each title set's IFO for its chapters, for its attributes, and for its size.
TEST(VanishingFile, OpensOfATitleSetsIfo)
{
    for (uint64_t opens = 0; opens < 4; opens++) {
        DiscRun run;
        run.put("VTS_01_1.VOB", fourUnits().bytes);
        systemAnswers.vanishing = "VTS_01_0.IFO";
        systemAnswers.opensBeforeIt = opens + 1;   // and the copy to the backup
        const uint64_t result = run.author(plainProject(run, 1));
        systemAnswers = {};
        const uint64_t results[] = { 0x840007E4, 0x840007E4, 0x840007D9, 0 };
        EXPECT_EQ(results[opens], result) << opens;
        // In the log it is the reader's own failure each time.
        if (opens < 3) {
            EXPECT_TRUE(logHolds(run.log, { { 0x840007E4, u"Failed to open file for read in <orvReadVTSInfo>: " +
                                                              run.inTarget("VTS_01_0.IFO") } }));
        } else {
            EXPECT_FALSE(fileExists(run.log));
        }
    }
}
