// Sub-picture units where memory or the disk is short.
#include "menu/sub_picture.h"

#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "menu/bitmap.h"
#include "tests/base/posix/failing_memory.h"
#include "tests/menu/sub_picture_rig.h"
#include "tests/support/environment.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>

namespace {

// Lets no file of this process grow beyond so many bytes.
struct FileLimit {
    explicit FileLimit(rlim_t bytes)
    {
        handler = std::signal(SIGXFSZ, SIG_IGN);
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit limit = { bytes, before.rlim_max };
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileLimit()
    {
        (void)setrlimit(RLIMIT_FSIZE, &before);
        (void)std::signal(SIGXFSZ, handler);
    }
    FileLimit(const FileLimit&) = delete;
    FileLimit& operator=(const FileLimit&) = delete;

    void (*handler)(int);
    rlimit before = {};
};

uint64_t encodeWithin(rlim_t bytes, const std::u16string& bitmap, char16_t** path)
{
    const FileLimit limit(bytes);
    return orvEncodeSubPictureFile(STANDARD_NTSC, nullptr, 0, 0, bitmap.c_str(), nullptr, path);
}

// A menu of each kind over the same two bitmaps.
struct Kinds {
    Kinds()
    {
        single.hasSubPicture32 = overlapping.hasSubPicture32 = colorful.hasSubPicture32 = 1;
        overlapping.buttonsOverlap = colorful.manyColors = 1;
        writeFile(collision, bmpFile(ByteImage(LINES_OF_NTSC, 1)));
        writeFile(alpha, bmpFile(AlphaImage(LINES_OF_NTSC, { 1, 2, 3, 255 })));
    }

    TempDir dir;
    std::u16string collision = dir / u"collision.bmp", alpha = dir / u"alpha.bmp";
    MenuDesc single = {}, overlapping = {}, colorful = {};
    std::vector<const MenuDesc*> menus = { nullptr, &single, &overlapping, &colorful };
};

}   // namespace

TEST(SubPictureFile, AUnitThatCannotBeWrittenIsRemoved)
{
    const TempFolder temporary;
    const TempDir dir;
    writeFile(dir / u"codes.bmp", bmpFile(ByteImage(LINES_OF_NTSC)));
    static char16_t before[] = u"before";
    for (const rlim_t bytes : { 0u, 500u, 987u }) {
        char16_t* path = before;
        EXPECT_EQ(encodeWithin(bytes, dir / u"codes.bmp", &path), ORV_TEMP_SPU_NOT_WRITTEN) << bytes;
        EXPECT_EQ(path, nullptr) << bytes;
        EXPECT_EQ(temporary.unitFiles(), std::vector<std::string>()) << bytes;
    }
    char16_t* path = nullptr;
    EXPECT_EQ(encodeWithin(988, dir / u"codes.bmp", &path), 0u);
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(readFile(path).size(), 988u);
    (void)osStrFree(&path);
}

TEST(SubPictureFile, EachAllocationMayFail)
{
    const TempFolder temporary;
    const Kinds kinds;
    for (const MenuDesc* menu : kinds.menus) {
        uint8_t* unit = nullptr;
        const auto run = [&] {
            return orvEncodeSubPicture(menu, kinds.collision.c_str(), kinds.alpha.c_str(), STANDARD_NTSC, &unit);
        };
        const uint64_t failures =
            failEveryAllocation({ run, [&] { (void)osFreeMem(&unit); }, [&] { EXPECT_EQ(unit, nullptr); } }, ENOMEM);
        EXPECT_GE(failures, 2u);   // pixels and unit, at the least
    }
}

TEST(SubPictureFile, EachAllocationOfTheFileMayFail)
{
    const TempFolder temporary;
    const Kinds kinds;
    char16_t* path = nullptr;
    uint64_t code = 0;
    const auto run = [&] {
        code = orvEncodeSubPictureFile(STANDARD_NTSC, &kinds.overlapping, 0, 0, kinds.collision.c_str(),
                                       kinds.alpha.c_str(), &path);
        return code ? 1 : 0;
    };
    const auto undo = [&] {
        EXPECT_TRUE(osDeleteFile(path));
        (void)osStrFree(&path);
    };
    uint64_t nameless = 0;
    const auto check = [&] {
        EXPECT_TRUE(code == ENOMEM || code == ORV_NO_TEMP_FILE_FOR_SPU) << code;
        nameless += code == ORV_NO_TEMP_FILE_FOR_SPU;
        EXPECT_EQ(path, nullptr);
        EXPECT_EQ(temporary.unitFiles(), std::vector<std::string>());
    };
    EXPECT_GE(failEveryAllocation({ run, undo, check }, 1), 5u);
    EXPECT_GE(nameless, 1u);
}

TEST(Bitmap, NoMemoryIsTakenForPixelsThatAreNotThere)
{
    const TempDir dir;
    const struct {
        const char* what;
        RawBmp form;
    } cases[] = {
        { "4 GiB", { .fileBytes = 0xFFFFFFFF, .pixels = {} } },
        { "4 GiB of 32 bits", { .bits = 32, .fileBytes = 0xFFFFFFFF } },
        { "65535 bits a pixel", { .bits = 65535, .fileBytes = 0xFFFFFFFF } },
        { "2 GiB from the file's start", { .dataOffset = 0, .fileBytes = 0x80000000 } },
    };
    for (const auto& given : cases) {
        writeFile(dir / u"picture.bmp", rawBmp(given.form));
        const std::u16string path = dir / u"picture.bmp";
        uint8_t* pixels = nullptr;
        (void)largestAllocation();
        EXPECT_EQ(orvReadBitmap(path.c_str(), STANDARD_NTSC, nullptr, &pixels), OS_SHORT_READ) << given.what;
        EXPECT_LT(largestAllocation(), 4000000u) << given.what;
        EXPECT_EQ(pixels, nullptr) << given.what;
    }
    writeFile(dir / u"picture.bmp", rawBmp({}));
    uint8_t* pixels = nullptr;
    (void)largestAllocation();
    EXPECT_EQ(orvReadBitmap((dir / u"picture.bmp").c_str(), STANDARD_NTSC, nullptr, &pixels), 0u);
    EXPECT_GE(largestAllocation(), NTSC_PLANE);   // what is measured is measured
    (void)osFreeMem(&pixels);
}
