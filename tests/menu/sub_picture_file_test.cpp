// Sub-picture units in temporary files.
#include "menu/sub_picture.h"

#include "base/result.h"
#include "base/strings.h"
#include "tests/base/platform_numbers.h"
#include "tests/menu/sub_picture_rig.h"
#include "tests/support/environment.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

struct FileRun {
    uint64_t result;
    std::u16string path;   // empty if none was given
};

FileRun encodeToFile(const MenuDesc* menu, const std::u16string& bitmap, const char16_t* alpha, uint64_t blinkCount = 0,
                     uint64_t blinkDelay = 0)
{
    static char16_t before[] = u"before";
    char16_t* path = before;
    const uint64_t result =
        orvEncodeSubPictureFile(STANDARD_NTSC, menu, blinkCount, blinkDelay, bitmap.c_str(), alpha, &path);
    EXPECT_NE(path, before);
    FileRun run = { result, path && path != before ? path : u"" };
    EXPECT_EQ(osStrObjectLength(path), run.path.size());
    if (path != before) (void)osStrFree(&path);
    return run;
}

}   // namespace

TEST(SubPictureFile, HoldsTheUnitAndNothingElse)
{
    const TempFolder temporary;
    const TempDir dir;
    const ByteImage image = randomCodes(LINES_OF_NTSC, 50, 3);
    writeFile(dir / u"codes.bmp", bmpFile(image));
    const FileRun run = encodeToFile(nullptr, dir / u"codes.bmp", nullptr);
    ASSERT_EQ(run.result, 0u);
    const fs::path path(run.path);
    EXPECT_EQ(path.filename().u16string().substr(0, 3), u"spu");
    EXPECT_EQ(temporary.unitFiles().size(), 1u);
    EXPECT_TRUE(readFile(run.path) == encodeCodes(image));
    EXPECT_EQ(decodeSubPicture(readFile(run.path), LINES_OF_NTSC).size, fs::file_size(path));
    EXPECT_TRUE(fs::remove(path));   // nobody holds it open
}

TEST(SubPictureFile, HasANameOfItsOwn)
{
    const TempDir dir;
    writeFile(dir / u"1.bmp", bmpFile(ByteImage(LINES_OF_NTSC, 1)));
    writeFile(dir / u"2.bmp", bmpFile(ByteImage(LINES_OF_NTSC, 2)));
    const FileRun first = encodeToFile(nullptr, dir / u"1.bmp", nullptr);
    const FileRun second = encodeToFile(nullptr, dir / u"2.bmp", nullptr);
    ASSERT_EQ(first.result, 0u);
    ASSERT_EQ(second.result, 0u);
    EXPECT_NE(first.path, second.path);
    const Bytes unit = readFile(first.path), other = readFile(second.path);
    EXPECT_EQ(unit.size(), 988u);
    EXPECT_EQ(toHex(unit.data(), 8), "03 DC 03 C4 00 01 00 01");
    EXPECT_EQ(other.size(), 988u);
    EXPECT_EQ(toHex(other.data(), 8), "03 DC 03 C4 00 02 00 02");
    EXPECT_TRUE(fs::remove(fs::path(first.path)));
    EXPECT_TRUE(fs::remove(fs::path(second.path)));
}

TEST(SubPictureFile, BlinkingIsNoPartOfAUnit)
{
    const TempDir dir;
    writeFile(dir / u"codes.bmp", bmpFile(ByteImage(LINES_OF_NTSC)));
    const FileRun run = encodeToFile(nullptr, dir / u"codes.bmp", nullptr, 16, 50);
    ASSERT_EQ(run.result, 0u);
    EXPECT_TRUE(readFile(run.path) == encodeCodes(ByteImage(LINES_OF_NTSC)));
    EXPECT_TRUE(fs::remove(fs::path(run.path)));
}

TEST(SubPictureFile, IsMadeFromTheBitmapsOfAMenuToo)
{
    const TempDir dir;
    MenuBitmaps files(STANDARD_NTSC);
    files.menu.buttonsOverlap = 1;
    files.menu.buttonCount = 1;
    files.menu.buttons[0].color = 3;
    files.collision.fill(100, 100, 100, 100, 1);
    files.alpha.fill(150, 150, 100, 100, { 1, 2, 3, 255 });
    writeFile(dir / u"collision.bmp", bmpFile(files.collision));
    writeFile(dir / u"alpha.bmp", bmpFile(files.alpha));
    const FileRun run = encodeToFile(&files.menu, dir / u"collision.bmp", (dir / u"alpha.bmp").c_str());
    ASSERT_EQ(run.result, 0u);
    ByteImage expected(LINES_OF_NTSC);
    expected.fill(150, 150, 50, 50, 3);
    EXPECT_EQ(firstDifference(shownOf(expected), decodeSubPicture(readFile(run.path), LINES_OF_NTSC).plane), "");
    EXPECT_TRUE(fs::remove(fs::path(run.path)));
}

TEST(SubPictureFile, FailuresLeaveNoFile)
{
    const TempFolder temporary;
    const TempDir dir;
    writeFile(dir / u"24.bmp", rawBmp({ .bits = 24, .pixels = Bytes(2160 * 480) }));
    writeFile(dir / u"8.bmp", bmpFile(ByteImage(LINES_OF_NTSC)));
    writeFile(dir / u"32.bmp", bmpFile(AlphaImage(LINES_OF_NTSC)));
    writeFile(dir / u"pal.bmp", bmpFile(ByteImage(LINES_OF_PAL)));
    writeFile(dir / u"cut.bmp", rawBmp({ .fileBytes = 54 + NTSC_PLANE, .pixels = Bytes(1000) }));
    ByteImage noise(LINES_OF_NTSC);
    for (uint64_t i = 0; i < noise.pixels.size(); i++) noise.pixels[i] = uint8_t(i % 4);
    writeFile(dir / u"noise.bmp", bmpFile(noise));
    MenuDesc single = {};
    single.hasSubPicture32 = 1;
    MenuDesc overlapping = single;
    overlapping.buttonsOverlap = 1;
    const struct {
        const MenuDesc* menu;
        const char *bitmap, *alpha;
        uint64_t result;
    } cases[] = {
        { nullptr, "none.bmp", "32.bmp", FILE_NOT_FOUND },
        { nullptr, "pal.bmp", "32.bmp", ORV_INVALID_ARGUMENT },
        { nullptr, "cut.bmp", "32.bmp", OS_SHORT_READ },
        { nullptr, "noise.bmp", "32.bmp", ORV_SUBPICTURE_TOO_LARGE },
        { &single, "8.bmp", "none.bmp", FILE_NOT_FOUND },
        { &single, "8.bmp", "24.bmp", ORV_ALPHA_BITMAP_NOT_32BIT },
        { &overlapping, "24.bmp", "24.bmp", ORV_COLLISION_BITMAP_NOT_8BIT },
        { &overlapping, "8.bmp", "24.bmp", ORV_ALPHA_BITMAP_NOT_32BIT },
        { &overlapping, "8.bmp", "cut.bmp", OS_SHORT_READ },
    };
    for (const auto& given : cases) {
        const FileRun run = encodeToFile(given.menu, dir / toWide(given.bitmap), (dir / toWide(given.alpha)).c_str());
        EXPECT_EQ(run.result, given.result) << given.bitmap << ", " << given.alpha;
        EXPECT_EQ(run.path, u"") << given.bitmap << ", " << given.alpha;
        EXPECT_EQ(temporary.unitFiles(), std::vector<std::string>()) << given.bitmap << ", " << given.alpha;
    }
    // The folder is the one that is looked at.
    EXPECT_NE(encodeToFile(&overlapping, dir / u"8.bmp", (dir / u"32.bmp").c_str()).path, u"");
    EXPECT_EQ(temporary.unitFiles().size(), 1u);
}

// The name is asked for before a bitmap is looked at.
TEST(SubPictureFile, ATemporaryFolderThatIsNotThereIsToldFirst)
{
    const TempDir dir;
    writeFile(dir / u"codes.bmp", bmpFile(ByteImage(LINES_OF_NTSC)));
    const TempFolder missing(dir / u"no such folder");
    for (const char16_t* bitmap : { u"codes.bmp", u"none.bmp" }) {
        const FileRun run = encodeToFile(nullptr, dir / bitmap, nullptr);
        EXPECT_EQ(run.result, ORV_NO_TEMP_FILE_FOR_SPU);
        EXPECT_EQ(run.path, u"");
    }
}
