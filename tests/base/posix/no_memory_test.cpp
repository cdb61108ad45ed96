// no_memory_test.cpp: what is left when memory is short.
#include "base/files.h"
#include "base/memory.h"
#include "base/profile.h"
#include "base/result.h"
#include "base/strings.h"
#include "tests/base/posix/failing_memory.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <string>

TEST(NoMemory, Blocks)
{
    uint8_t* block = nullptr;
    const auto free = [&] { (void)osFreeMem(&block); };
    const auto isNull = [&] { EXPECT_EQ(block, nullptr); };
    EXPECT_EQ(failEveryAllocation({ [&] { return osAllocMem(5, &block); }, free, isNull }, ENOMEM), 2u);
    EXPECT_EQ(failEveryAllocation({ [&] { return osAllocMemCopy("abc", 0, 3, &block); }, free, isNull }, ENOMEM), 2u);
}

TEST(NoMemory, BlocksThatCannotGrowStayAsTheyWere)
{
    const std::string more(300000, 'x');
    char* block = nullptr;
    ASSERT_EQ(osAllocMemCopy("abc", 0, 3, &block), 0u);
    const auto isAsBefore = [&] { EXPECT_EQ(std::string(block, osMemSize(block)), "abc"); };
    const auto anew = [&] {
        EXPECT_EQ(osMemSize(block) > 3, true);
        (void)osFreeMem(&block);
        EXPECT_EQ(osAllocMemCopy("abc", 0, 3, &block), 0u);
    };
    // A growth is tried twice, with room to spare and without, so it fails only where both fail.
    const auto resize = [&] { return osResizeMem(&block, 300000); };
    const auto insert = [&] { return osInsertMem(&block, 1, more.data(), more.size()); };
    const auto append = [&] { return osInsertMem(&block, OS_BLOCK_END, nullptr, more.size()); };
    EXPECT_EQ(failEveryAllocation({ resize, anew, isAsBefore }, ENOMEM), 1u);
    EXPECT_EQ(failEveryAllocation({ insert, anew, isAsBefore }, ENOMEM), 1u);
    EXPECT_EQ(failEveryAllocation({ append, anew, isAsBefore }, ENOMEM), 1u);
    (void)osFreeMem(&block);
}

TEST(Memory, LongListsAskSeldomForMore)
{
    const uint8_t record[48] = {};
    uint8_t* list = nullptr;
    ASSERT_EQ(osAllocMem(0, &list), 0u);
    const uint64_t before = reallocations();
    for (uint64_t i = 0; i < 1100000; i++) ASSERT_EQ(osInsertMem(&list, OS_BLOCK_END, record, 48), 0u);
    EXPECT_LT(reallocations() - before, 64u);   // by pages alone it would be some 13000
    // Near a border, to and fro asks for nothing.
    ASSERT_EQ(osResizeMem(&list, 8143), 0u);
    const uint64_t atBorder = reallocations();
    for (uint64_t i = 0; i < 100; i++) ASSERT_EQ(osResizeMem(&list, i % 2 ? 8143 : 8144), 0u);
    EXPECT_LE(reallocations() - atBorder, 1u);
    (void)osFreeMem(&list);
}

TEST(NoMemory, Strings)
{
    char16_t* text = nullptr;
    const auto free = [&] { (void)osStrFree(&text); };
    const auto isNull = [&] { EXPECT_EQ(text, nullptr); };
    const std::function<uint64_t()> steps[] = {
        [&] { return osStrDup(u"abc", &text); },
        [&] { return osStrAlloc(9, nullptr, &text); },
        [&] { return osStrFormat(&text, u"%d", nullptr, 5); },
        [&] { return osAnsiToWide(&text, "abc", nullptr); },
        [&] { return osGetCurrentDirectory(&text); },
    };
    for (const auto& step : steps) EXPECT_EQ(failEveryAllocation({ step, free, isNull }, OS_OUT_OF_MEMORY), 2u);
}

TEST(NoMemory, AddBackslashKeepsThePath)
{
    char16_t* path = nullptr;
    ASSERT_EQ(osStrDup(u"dir", &path), 0u);
    const auto anew = [&] {
        EXPECT_EQ(std::u16string(path), u"dir/");
        (void)osStrFree(&path);
        EXPECT_EQ(osStrDup(u"dir", &path), 0u);
    };
    const auto isAsBefore = [&] { EXPECT_EQ(std::u16string(path), u"dir"); };
    EXPECT_EQ(failEveryAllocation({ [&] { return osAddBackslash(&path); }, anew, isAsBefore }, OS_OUT_OF_MEMORY), 2u);
    (void)osStrFree(&path);
}

TEST(NoMemory, TemporaryFilesAreNotLeftBehind)
{
    const TempDir dir;
    const char* before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    (void)setenv("TMPDIR", dir.root.c_str(), 1);
    char16_t* name = nullptr;
    const auto remove = [&] {
        EXPECT_NE(osDeleteFile(name), 0u);
        (void)osStrFree(&name);
    };
    const auto isEmpty = [&] {
        EXPECT_EQ(name, nullptr);
        EXPECT_TRUE(std::filesystem::is_empty(dir.root));
    };
    EXPECT_EQ(failEveryAllocation({ [&] { return osGetTempFile(u"spu", &name); }, remove, isEmpty }, OS_OUT_OF_MEMORY),
              4u);
    if (before) {
        (void)setenv("TMPDIR", kept.c_str(), 1);
    } else {
        (void)unsetenv("TMPDIR");
    }
}

static std::ptrdiff_t openFiles()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

TEST(NoMemory, Profiles)
{
    const TempDir dir;
    const std::u16string path = dir / u"project.ini";
    std::string file = "[a]\n";
    for (int i = 0; i < 50; i++) file += "key" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    writeFile(path, file);
    const std::ptrdiff_t before = openFiles();
    OsProfile* profile = nullptr;
    const auto open = [&] { return osOpenProfile(path.c_str(), &profile); };
    const auto close = [&] {
        EXPECT_EQ(osProfileInt(profile, u"a", u"key7", 77), 7u);
        osCloseProfile(&profile);
    };
    const auto isNull = [&] { EXPECT_EQ(profile, nullptr); };
    EXPECT_GE(failEveryAllocation({ open, close, isNull }, OS_OUT_OF_MEMORY), 12u);

    uint64_t number = 0;
    const auto read = [&] { return osGetIniInt(path.c_str(), u"a", u"key7", 77, &number); };
    const auto isSeven = [&] { EXPECT_EQ(number, 7u); };
    const auto isAbsent = [&] { EXPECT_EQ(number, 77u); };
    EXPECT_GE(failEveryAllocation({ read, isSeven, isAbsent }, OS_OUT_OF_MEMORY), 12u);
    EXPECT_EQ(openFiles(), before);
}

TEST(NoMemory, AKeyIsSetWholeOrNotAtAll)
{
    const TempDir dir;
    const std::u16string path = dir / u"file.nfo";
    const std::string narrow = "[a]\nthe longest key of them all=1\n" + std::string(500, ';') + "\n";
    Bytes wide = { 0xFF, 0xFE };
    for (const char c : narrow) {
        wide.push_back(uint8_t(c));
        wide.push_back(0);
    }
    const std::u16string value(100, u'v');
    const std::ptrdiff_t before = openFiles();
    for (const Bytes& bytes : { Bytes(narrow.begin(), narrow.end()), wide }) {
        writeFile(path, bytes);
        const auto set = [&] {
            return osSetIniString(path.c_str(), u"a", u"another long key of the section", value.c_str());
        };
        const auto anew = [&] {
            EXPECT_GT(readFile(path).size(), bytes.size());
            writeFile(path, bytes);
        };
        const auto isAsBefore = [&] { EXPECT_EQ(readFile(path), bytes); };
        EXPECT_GE(failEveryAllocation({ set, anew, isAsBefore }, OS_OUT_OF_MEMORY), 12u);
    }
    EXPECT_EQ(openFiles(), before);
}
