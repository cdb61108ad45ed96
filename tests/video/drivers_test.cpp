// The stages of a run called by themselves: numbers of title sets that no run asks for.
#include "video/drivers.h"

#include "tests/support/packs.h"
#include "tests/video/ifo_run.h"
#include "tests/video/table_bytes.h"

namespace {

uint64_t create(TestRun& run, uint64_t number)
{
    return CreateVideoTitleSet(run.context.get(), number, run.folder.prefix().c_str());
}

bool folderIsEmpty(const TestRun& run)
{
    return std::filesystem::is_empty(run.folder.root);
}

}   // namespace

TEST(TitleSetDriver, NumberOutOfRange)
{
    TestRun run(99);
    for (const uint64_t number : { uint64_t(0), uint64_t(100), uint64_t(101), ~uint64_t(0), uint64_t(1) << 32 }) {
        EXPECT_EQ(0x840007D7u, create(run, number)) << number;
    }
    EXPECT_TRUE(folderIsEmpty(run));   // nothing written, nothing logged
}

TEST(TitleSetDriver, SkippedTitleSet)
{
    TestRun run(99);
    for (const uint64_t number : { uint64_t(1), uint64_t(50), uint64_t(99) }) {
        run.context->titleSets[number - 1] = nullptr;
        EXPECT_EQ(0u, create(run, number)) << number;
    }
    EXPECT_TRUE(folderIsEmpty(run));
}

// Numbers make the names of files, with two digits.
TEST(TitleSetDriver, FirstAndLastNumber)
{
    TestRun run(99);
    std::u16string source = run.folder / u"movie.vob";
    for (const uint64_t number : { uint64_t(1), uint64_t(99) }) {
        writeFile(source, makeMovie({ .vobus = vobus(3) }).bytes);
        run.titleSet(number).sources[0] = source.data();
        EXPECT_EQ(0u, create(run, number)) << number;
    }
    for (const char16_t* name : { u"VTS_01_0.IFO", u"VTS_01_0.BUP", u"VTS_99_0.IFO", u"VTS_99_0.BUP" }) {
        EXPECT_TRUE(fileExists(run.folder / name)) << toUtf8(name);
    }
    EXPECT_EQ(readFile(run.folder / u"VTS_01_0.IFO"), readFile(run.folder / u"VTS_99_0.IFO"));
}

TEST(ManagerDriver, NoTitleSets)
{
    TestRun run(1);
    run.context->head.titleSetCount = 0;
    EXPECT_EQ(0x840007D7u, CreateVideoManager(run.context.get(), run.folder.prefix().c_str(), nullptr));
    EXPECT_TRUE(folderIsEmpty(run));
}
