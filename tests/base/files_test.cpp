// files_test.cpp: files by mode, their positions and sizes, copies, and what is known of a path.
#include "base/files.h"

#include "base/result.h"
#include "base/strings.h"
#include "tests/base/platform_numbers.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

static std::string textOf(const std::u16string& path)
{
    const Bytes bytes = readFile(path);
    return std::string(bytes.begin(), bytes.end());
}

static OSFILE opened(const std::u16string& path, uint64_t mode)
{
    OSFILE file = 0;
    EXPECT_EQ(osOpenFile(path.c_str(), mode, &file), 0u) << toUtf8(path);
    EXPECT_NE(file, 0u);
    return file;
}

static uint64_t positionOf(OSFILE file)
{
    uint64_t position = 99;
    EXPECT_EQ(osTellFile(file, &position), 0u);
    return position;
}

struct ModeCase {
    uint64_t mode;
    bool mustExist, empties, reads, writes;
    uint64_t position;   // in a file of six bytes
};
// clang-format off
static const ModeCase MODES[] = {
    // mode          exists empties reads  writes at
    { OS_READ,        true,  false, true,  false, 0 },
    { OS_CREATE,      false, true,  false, true,  0 },
    { OS_EXTEND,      false, false, true,  true,  0 },
    { OS_APPEND,      false, false, false, true,  6 },
    { OS_FIX,         true,  false, true,  true,  0 },
    { OS_CREATE_READ, false, true,  true,  true,  0 },
    { OS_TEMPORARY,   false, true,  true,  true,  0 },
};
// clang-format on

TEST(Files, ModesOnAFileThatIsThere)
{
    const TempDir dir;
    const std::u16string path = dir / u"file";
    for (const ModeCase& row : MODES) {
        writeFile(path, "abcdef");
        OSFILE file = opened(path, row.mode);
        EXPECT_EQ(positionOf(file), row.position) << row.mode;
        uint64_t size = 99;
        EXPECT_EQ(osFileSize(file, &size), 0u);
        EXPECT_EQ(size, row.empties ? 0u : 6u) << row.mode;
        EXPECT_EQ(osWriteFile(file, "XY", 2) == 0, row.writes) << row.mode;
        ASSERT_EQ(osSeekFile(file, 0, OS_FROM_START), 0u);
        char buffer[2] = {};
        EXPECT_EQ(osReadFile(file, buffer, 2) == 0, row.reads) << row.mode;
        EXPECT_EQ(osCloseFile(&file), 0u);
        EXPECT_EQ(file, 0u);
        EXPECT_EQ(textOf(path), row.mode == OS_READ     ? "abcdef"
                                : row.empties           ? "XY"
                                : row.mode == OS_APPEND ? "abcdefXY"
                                                        : "XYcdef")
            << row.mode;
    }
}

TEST(Files, ModesOnAFileThatIsNotThere)
{
    const TempDir dir;
    for (const ModeCase& row : MODES) {
        const std::u16string path = dir / (u"file" + std::u16string(1, char16_t(u'0' + row.mode)));
        OSFILE file = 99;
        EXPECT_EQ(osOpenFile(path.c_str(), row.mode, &file), row.mustExist ? FILE_NOT_FOUND : 0u) << row.mode;
        EXPECT_EQ(file == 0, row.mustExist) << row.mode;
        EXPECT_EQ(fileExists(path), !row.mustExist) << row.mode;
        EXPECT_EQ(osCloseFile(&file), 0u);
    }
}

TEST(Files, WrongModesTouchNothing)
{
    const TempDir dir;
    const std::u16string path = dir / u"file";
    for (const uint64_t mode : { uint64_t(0), uint64_t(8), ~uint64_t(0), uint64_t(1) << 32 | 2 }) {
        OSFILE file = 99;
        EXPECT_EQ(osOpenFile(path.c_str(), mode, &file), OS_INVALID_ARGUMENT) << mode;
        EXPECT_EQ(file, 0u);
        EXPECT_FALSE(fileExists(path));
    }
    EXPECT_EQ(osOpenFile(path.c_str(), OS_CREATE, nullptr), OS_INVALID_ARGUMENT);
    EXPECT_FALSE(fileExists(path));
    OSFILE file = 99;
    EXPECT_EQ(osOpenFile(nullptr, OS_CREATE, &file), OS_INVALID_ARGUMENT);
    EXPECT_EQ(file, 0u);
}

TEST(Files, FoldersAreNoFiles)
{
    const TempDir dir;
    std::filesystem::create_directory(dir.root / "folder");
    for (const ModeCase& row : MODES) {
        OSFILE file = 99;
        EXPECT_EQ(osOpenFile((dir / u"folder").c_str(), row.mode, &file), FOLDER_AS_FILE) << row.mode;
        EXPECT_EQ(file, 0u);
        EXPECT_NE(osOpenFile((dir / u"folder/").c_str(), row.mode, &file), 0u) << row.mode;
        EXPECT_NE(osOpenFile(u"", row.mode, &file), 0u) << row.mode;
        EXPECT_NE(osOpenFile((dir / u"none/file").c_str(), row.mode, &file), 0u) << row.mode;
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir.root / "folder"));
}

TEST(Files, BothSeparatorsAndAnyLanguage)
{
    const TempDir dir;
    std::filesystem::create_directory(dir.root / "VIDEO_TS");
    OSFILE file = opened(dir.prefix() + u"VIDEO_TS\\a.ifo", OS_CREATE);
    EXPECT_EQ(osCloseFile(&file), 0u);
    file = opened(dir.prefix() + u"VIDEO_TS/b.ifo", OS_CREATE);
    EXPECT_EQ(osCloseFile(&file), 0u);
    EXPECT_TRUE(fileExists(dir / u"VIDEO_TS/a.ifo"));
    EXPECT_TRUE(fileExists(dir / u"VIDEO_TS/b.ifo"));

    const std::u16string name = u"men\u00FC \u20AC \U0001F600.vob";
    file = opened(dir / name, OS_CREATE);
    EXPECT_EQ(osCloseFile(&file), 0u);
    EXPECT_TRUE(fileExists(dir / name));
}

TEST(Files, CloseTwiceIsHarmless)
{
    const TempDir dir;
    OSFILE file = opened(dir / u"file", OS_CREATE);
    EXPECT_EQ(osCloseFile(&file), 0u);
    EXPECT_EQ(file, 0u);
    EXPECT_EQ(osCloseFile(&file), 0u);
    EXPECT_EQ(osCloseFile(nullptr), 0u);
}

TEST(Files, AFileThatIsNotOpen)
{
    char buffer[4] = {};
    uint64_t number = 99;
    EXPECT_EQ(osReadFile(0, buffer, 4), BAD_FILE);
    EXPECT_EQ(osReadFileSome(0, buffer, 4, &number), BAD_FILE);
    EXPECT_EQ(number, 0u);
    EXPECT_EQ(osWriteFile(0, buffer, 4), BAD_FILE);
    EXPECT_EQ(osSeekFile(0, 0, OS_FROM_START), BAD_FILE);
    number = 99;
    EXPECT_EQ(osTellFile(0, &number), BAD_FILE);
    EXPECT_EQ(number, 0u);
    number = 99;
    EXPECT_EQ(osFileSize(0, &number), BAD_FILE);
    EXPECT_EQ(number, 0u);
}

TEST(Files, Seek)
{
    const TempDir dir;
    writeFile(dir / u"file", "0123456789");
    OSFILE file = opened(dir / u"file", OS_FIX);
    struct {
        int64_t offset;
        uint64_t origin, result, position;
    } const cases[] = {
        { 4, OS_FROM_START, 0, 4 },
        { 3, OS_FROM_CURRENT, 0, 7 },
        { -2, OS_FROM_CURRENT, 0, 5 },
        { -1, OS_FROM_END, 0, 9 },
        { 0, OS_FROM_END, 0, 10 },
        { -11, OS_FROM_END, NEGATIVE_SEEK, 10 },
        { -1, OS_FROM_START, NEGATIVE_SEEK, 10 },
        { -11, OS_FROM_CURRENT, NEGATIVE_SEEK, 10 },
        { INT64_MIN, OS_FROM_START, NEGATIVE_SEEK, 10 },
        { 3, 3, OS_INVALID_ARGUMENT, 10 },
        { 5000000000, OS_FROM_START, 0, 5000000000 },   // past the end, past 32 bits
        { -1, OS_FROM_CURRENT, 0, 4999999999 },
        { 0xFFFFFFFF, OS_FROM_START, 0, 0xFFFFFFFF },
        { 10, OS_FROM_START, 0, 10 },
    };
    for (const auto& row : cases) {
        EXPECT_EQ(osSeekFile(file, row.offset, row.origin), row.result) << row.offset << ' ' << row.origin;
        EXPECT_EQ(positionOf(file), row.position) << row.offset << ' ' << row.origin;
    }
    uint64_t size = 0;
    EXPECT_EQ(osFileSize(file, &size), 0u);
    EXPECT_EQ(size, 10u);   // a seek alone makes no file longer
    EXPECT_EQ(osTellFile(file, nullptr), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osFileSize(file, nullptr), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osCloseFile(&file), 0u);
}

TEST(Files, Read)
{
    const TempDir dir;
    writeFile(dir / u"file", "0123456789");
    OSFILE file = opened(dir / u"file", OS_READ);
    char buffer[20] = {};
    EXPECT_EQ(osReadFile(file, buffer, 4), 0u);
    EXPECT_STREQ(buffer, "0123");
    EXPECT_EQ(osReadFile(file, buffer, 0), 0u);
    EXPECT_EQ(osReadFile(file, buffer, 7), OS_SHORT_READ);
    EXPECT_EQ(osReadFile(file, buffer, 1), OS_SHORT_READ);
    EXPECT_EQ(osReadFile(file, buffer, 0), 0u);

    ASSERT_EQ(osSeekFile(file, 7, OS_FROM_START), 0u);
    uint64_t got = 99;
    EXPECT_EQ(osReadFileSome(file, buffer, 20, &got), 0u);
    EXPECT_EQ(got, 3u);
    EXPECT_EQ(std::string(buffer, 3), "789");
    EXPECT_EQ(osReadFileSome(file, buffer, 20, &got), 0u);
    EXPECT_EQ(got, 0u);   // the end of the file is no failure
    EXPECT_EQ(osReadFileSome(file, buffer, 20, nullptr), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osCloseFile(&file), 0u);
}

TEST(Files, WriteInPlaceAndBehindTheEnd)
{
    const TempDir dir;
    writeFile(dir / u"file", "0123456789");
    OSFILE file = opened(dir / u"file", OS_FIX);
    ASSERT_EQ(osSeekFile(file, 3, OS_FROM_START), 0u);
    EXPECT_EQ(osWriteFile(file, "xyz", 3), 0u);
    EXPECT_EQ(osWriteFile(file, nullptr, 0), 0u);
    EXPECT_EQ(positionOf(file), 6u);
    ASSERT_EQ(osSeekFile(file, 12, OS_FROM_START), 0u);
    EXPECT_EQ(osWriteFile(file, "!", 1), 0u);
    EXPECT_EQ(osCloseFile(&file), 0u);
    EXPECT_EQ(textOf(dir / u"file"), std::string("012xyz6789\0\0!", 13));
}

TEST(Files, Copy)
{
    const TempDir dir;
    Bytes large(200001);
    for (uint64_t i = 0; i < large.size(); i++) large[i] = uint8_t(i * 7 + i / 251);
    writeFile(dir / u"large", large);
    writeFile(dir / u"small", "abc");
    writeFile(dir / u"empty", "");
    const auto copy = [&](const char16_t* from, const char16_t* to, bool failIfExists) {
        return osCopyFile((dir / from).c_str(), (dir / to).c_str(), failIfExists);
    };

    EXPECT_EQ(copy(u"large", u"copy", false), 0u);
    EXPECT_EQ(readFile(dir / u"copy"), large);
    EXPECT_EQ(copy(u"small", u"copy", true), FILE_EXISTS);
    EXPECT_EQ(readFile(dir / u"copy"), large);
    EXPECT_EQ(copy(u"small", u"copy", false), 0u);
    EXPECT_EQ(textOf(dir / u"copy"), "abc");   // nothing of the longer file is left
    EXPECT_EQ(copy(u"empty", u"copy", false), 0u);
    EXPECT_EQ(textOf(dir / u"copy"), "");
    EXPECT_EQ(copy(u"small", u"new", true), 0u);
    EXPECT_EQ(textOf(dir / u"new"), "abc");

    EXPECT_EQ(copy(u"none", u"other", false), FILE_NOT_FOUND);
    EXPECT_FALSE(fileExists(dir / u"other"));
    EXPECT_NE(copy(u"small", u"none/other", false), 0u);
    EXPECT_EQ(osCopyFile(nullptr, (dir / u"other").c_str(), false), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osCopyFile((dir / u"small").c_str(), nullptr, false), OS_INVALID_ARGUMENT);
}

TEST(Files, CopyOntoItselfDestroysNothing)
{
    const TempDir dir;
    writeFile(dir / u"file", "abc");
    EXPECT_EQ(osCopyFile((dir / u"file").c_str(), (dir / u"file").c_str(), false), COPIED_ONTO_ITSELF);
    EXPECT_EQ(textOf(dir / u"file"), "abc");
}

TEST(Files, Delete)
{
    const TempDir dir;
    writeFile(dir / u"file", "abc");
    EXPECT_NE(osDeleteFile((dir / u"file").c_str()), 0u);
    EXPECT_FALSE(fileExists(dir / u"file"));
    EXPECT_EQ(osDeleteFile((dir / u"file").c_str()), 0u);
    EXPECT_EQ(osDeleteFile(nullptr), 0u);
    std::filesystem::create_directory(dir.root / "folder");
    EXPECT_EQ(osDeleteFile((dir / u"folder").c_str()), 0u);
    EXPECT_TRUE(fileExists(dir / u"folder"));
}

TEST(Files, Info)
{
    constexpr uint64_t IN_2020 = 132223104000000000;   // 2020-01-01, 153036 days behind 1601-01-01
    constexpr uint64_t IN_2200 = 189025920000000000;   // 2200-01-01, 218780 days
    const TempDir dir;
    writeFile(dir / u"file", "abcde");
    uint64_t size = 99;
    uint64_t times[3] = { 1, 2, 3 };
    ASSERT_EQ(osGetFileInfo((dir / u"file").c_str(), &size, times), 0u);
    EXPECT_EQ(size, 5u);
    for (const uint64_t time : times) {
        EXPECT_GT(time, IN_2020);
        EXPECT_LT(time, IN_2200);
    }
    size = 99;
    EXPECT_EQ(osGetFileInfo(dir.root.u16string().c_str(), &size, nullptr), 0u);
    EXPECT_EQ(size, 0u);   // a folder is there, without a size
    EXPECT_EQ(osGetFileInfo((dir / u"file").c_str(), nullptr, nullptr), 0u);
    EXPECT_EQ(osGetFileInfo((dir / u"none").c_str(), nullptr, nullptr), FILE_NOT_FOUND);

    size = 99;
    EXPECT_EQ(osGetFileInfo((dir / u"none").c_str(), &size, times), FILE_NOT_FOUND);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(times[0] | times[1] | times[2], 0u);
    EXPECT_EQ(osGetFileInfo(nullptr, &size, times), OS_INVALID_ARGUMENT);
    EXPECT_NE(osGetFileInfo(u"", &size, times), 0u);
}

TEST(Files, TemporaryFiles)
{
    std::set<std::u16string> names;
    for (int i = 0; i < 10; i++) {
        char16_t* name = nullptr;
        ASSERT_EQ(osGetTempFile(u"spu", &name), 0u);
        const std::u16string path(name);
        EXPECT_EQ(osStrObjectLength(name), path.size());
        (void)osStrFree(&name);
        EXPECT_EQ(path.substr(osLastSeparator(path.c_str()) + 1, 3), u"spu") << toUtf8(path);
        EXPECT_EQ(textOf(path), "");
        EXPECT_TRUE(names.insert(path).second);
        EXPECT_NE(osDeleteFile(path.c_str()), 0u);
        writeFile(path, "");   // the name stays taken
    }
    for (const std::u16string& path : names) EXPECT_NE(osDeleteFile(path.c_str()), 0u);

    char16_t* name = nullptr;
    EXPECT_EQ(osGetTempFile(nullptr, &name), OS_INVALID_ARGUMENT);
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(osGetTempFile(u"spu", nullptr), 0u);
}

TEST(Files, CurrentDirectory)
{
    char16_t* path = nullptr;
    ASSERT_EQ(osGetCurrentDirectory(&path), 0u);
    EXPECT_EQ(std::u16string(path), std::filesystem::current_path().u16string());
    EXPECT_EQ(osStrObjectLength(path), osStrLength(path));
    (void)osStrFree(&path);
    EXPECT_EQ(osGetCurrentDirectory(nullptr), OS_INVALID_ARGUMENT);
}

TEST(Files, DriveType)
{
    const TempDir dir;
    uint64_t type = 99;
    EXPECT_EQ(osGetDriveType(dir.prefix().c_str(), &type), 0u);
    EXPECT_EQ(type, OS_DRIVE_FIXED);
    EXPECT_EQ(osGetDriveType(nullptr, &type), OS_INVALID_ARGUMENT);
    EXPECT_EQ(osGetDriveType(dir.prefix().c_str(), nullptr), OS_INVALID_ARGUMENT);
#ifdef _WIN32
    for (const char16_t* path : { u"", u"x", u"dir\\file", u"\\dir", u"1:\\x", u"\\\\server\\share" }) {
        type = 99;
        EXPECT_EQ(osGetDriveType(path, &type), 0u);
        EXPECT_EQ(type, OS_DRIVE_UNKNOWN);
    }
    EXPECT_EQ(osGetDriveType(u"c:relative", &type), 0u);
    EXPECT_EQ(type, OS_DRIVE_FIXED);
#else
    EXPECT_EQ(osGetDriveType((dir / u"none").c_str(), &type), FILE_NOT_FOUND);
    EXPECT_EQ(type, OS_DRIVE_UNKNOWN);
#endif
}

TEST(Files, Separator)
{
    EXPECT_EQ(osPathSeparator(), SEPARATOR);
}

TEST(Files, SystemTextFitsOrStaysAway)
{
    char16_t text[512];
    const uint64_t length = osSystemText(2, text, 512);
    ASSERT_GT(length, 0u);
    EXPECT_EQ(osStrLength(text), length);
    const std::u16string whole(text);
    char16_t room[513];
    for (const uint64_t size : { length + 1, length, uint64_t(1) }) {
        std::fill(std::begin(room), std::end(room), u'#');
        EXPECT_EQ(osSystemText(2, room, size), size > length ? length : 0u);
        EXPECT_EQ(std::u16string(room), size > length ? whole : u"");
        EXPECT_EQ(room[size], u'#');
    }
    EXPECT_EQ(osSystemText(999999, text, 512), 0u);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(osSystemText(0xFFFFFFFFF, text, 512), 0u);
    EXPECT_EQ(osSystemText(2, text, 0), 0u);
    EXPECT_EQ(osSystemText(2, nullptr, 512), 0u);
}
