// preview_files_test.cpp: `orven preview` where links and pipes stand in the place of its pictures.
#include "tests/host/process.h"
#include "tests/support/bitmaps.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

// A file elsewhere that a picture's name leads to is not the user's picture; a pipe would never be read.
TEST(PreviewFiles, LinksAndPipesAreLeftAlone)
{
    const TempDir folder;
    writeFile(folder / u"a.bmp", bmpFile(ByteImage(576)));
    writeFile(folder / u"p.ini",
              std::string_view("[COMMON]\nversion=1.0\n[VMG]\ntitlesets=1\nmenus=1\n[VTS_1]\nsource=a\n"
                               "[VMG_MENU1]\nbackground=a\nsubpicture=a.bmp\n"));
    writeFile(folder / u"precious", std::string_view("precious"));
    const fs::path picture = folder.root / "o" / "vmg-menu1.png";
    fs::create_directory(folder.root / "o");
    fs::create_symlink(folder.root / "precious", picture);
    const ProcessResult link = runOrven({ "preview", "p.ini", "--out", "o" }, folder.root);
    EXPECT_EQ(link.exitCode, 1);
    EXPECT_EQ(link.err, "error: o/vmg-menu1.png is there and is no plain file\n");
    EXPECT_EQ(readFile(folder / u"precious").size(), 8u);
    EXPECT_TRUE(fs::is_symlink(picture));
    fs::remove(picture);
    ASSERT_EQ(mkfifo(picture.c_str(), 0600), 0);
    EXPECT_EQ(runOrven({ "preview", "p.ini", "--out", "o" }, folder.root).err, link.err);
}

}   // namespace
