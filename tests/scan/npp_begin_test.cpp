// Beginning and ending a scan: arguments, the scan file's making, what a full or missing folder gives.
#include "base/result.h"
#include "tests/scan/npp_rig.h"
#include "tests/support/packs.h"
#include "tests/support/write_limit.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

uint64_t refuseAll(const uint8_t*, uint64_t, uint64_t)
{
    ADD_FAILURE() << "no unit was to come out";
    return 1;
}

uint64_t countUnits(const uint8_t*, uint64_t bytes, uint64_t user)
{
    *reinterpret_cast<uint64_t*>(user) += bytes;
    return 0;
}

NppScan* const SOME = reinterpret_cast<NppScan*>(uintptr_t(0x10));   // not null, never followed

// A wide description of one cell; the name has to outlive it.
NppScanDescW describe(const std::basic_string<OrvWChar>& name)
{
    NppScanDescW desc = {};
    desc.path = name.c_str();
    desc.cellInterval = 900000;
    return desc;
}

TEST(NppBegin, NullArgumentsAreRefused)
{
    const TempDir folder;
    const std::u16string path = folder / u"scan";
    const std::basic_string<OrvWChar> name = wideName(path);
    const std::string narrow = toUtf8(path);
    NppScanDescW wideDesc = describe(name);
    NppScanDesc narrowDesc = {};
    narrowDesc.path = narrow.c_str();
    narrowDesc.cellInterval = 900000;

    NppScan* scan = SOME;
    EXPECT_EQ(nppBeginStreamScanW(nullptr, refuseAll, 0, &scan), 0x84000057u);
    EXPECT_EQ(scan, nullptr);
    scan = SOME;
    EXPECT_EQ(nppBeginStreamScanW(&wideDesc, nullptr, 0, &scan), 0x84000057u);
    EXPECT_EQ(scan, nullptr);
    EXPECT_EQ(nppBeginStreamScanW(&wideDesc, refuseAll, 0, nullptr), 0x84000057u);
    scan = SOME;
    EXPECT_EQ(nppBeginStreamScan(nullptr, refuseAll, 0, &scan), 0x84000057u);
    EXPECT_EQ(scan, nullptr);
    scan = SOME;
    EXPECT_EQ(nppBeginStreamScan(&narrowDesc, nullptr, 0, &scan), 0x84000057u);
    EXPECT_EQ(scan, nullptr);
    EXPECT_EQ(nppBeginStreamScan(&narrowDesc, refuseAll, 0, nullptr), 0x84000057u);

    wideDesc.path = nullptr;
    narrowDesc.path = nullptr;
    scan = SOME;
    EXPECT_EQ(nppBeginStreamScanW(&wideDesc, refuseAll, 0, &scan), 0x84000057u);
    EXPECT_EQ(scan, nullptr);
    scan = SOME;
    EXPECT_EQ(nppBeginStreamScan(&narrowDesc, refuseAll, 0, &scan), 0x84000057u);
    EXPECT_EQ(scan, nullptr);
    EXPECT_FALSE(fileExists(path));
}

TEST(NppBegin, AnIntervalOfNothingIsRefused)
{
    const TempDir folder;
    const std::u16string path = folder / u"scan";
    const std::basic_string<OrvWChar> name = wideName(path);
    NppScanDescW desc = describe(name);
    desc.cellInterval = 0;
    NppScan* scan = SOME;
    EXPECT_EQ(nppBeginStreamScanW(&desc, refuseAll, 0, &scan), 0x84000057u);
    EXPECT_EQ(scan, nullptr);
    EXPECT_FALSE(fileExists(path));
}

TEST(NppBegin, NullHandlesAreRefused)
{
    const uint8_t byte = 0;
    EXPECT_EQ(nppScanBuffer(nullptr, &byte, 1), 0x84000057u);
    EXPECT_EQ(nppEndStreamScan(nullptr), 0x84000057u);
    uint64_t bytes = 7;
    EXPECT_EQ(nppGetBuffer(nullptr, &bytes), 0x84000057u);

    ScanHost host;
    EXPECT_EQ(nppScanBuffer(host.handle, nullptr, 1), 0x84000057u);
    EXPECT_EQ(nppGetBuffer(host.handle, nullptr), 0u);   // of no use, and no fault
    EXPECT_EQ(host.end(), 0u);
}

// Both forms of the name make the same file, and hand the user's value on.
TEST(NppBegin, NarrowAndWideActAlike)
{
    const TempDir folder;
    const Bytes stream = streamOf({ { .start = 0, .packs = 2 }, { .start = 900000, .packs = 3 } });
    Bytes files[2];
    for (const bool wide : { false, true }) {
#ifdef _WIN32
        const std::u16string path = folder / (wide ? u"wide-\u00E4\u4E16" : u"narrow");   // ASCII is in any code page
#else
        const std::u16string path = folder / (wide ? u"wide-\u00E4\u4E16" : u"narrow-\u00E4\u4E16");
#endif
        uint64_t taken = 0;
        const uint64_t user = reinterpret_cast<uint64_t>(&taken);
        NppScan* scan = nullptr;
        if (wide) {
            const std::basic_string<OrvWChar> name = wideName(path);
            NppScanDescW desc = describe(name);
            desc.reserved[0] = 0xDEADBEEF;   // nobody looks
            desc.reserved[1] = 0xFFFFFFFF;
            ASSERT_EQ(nppBeginStreamScanW(&desc, countUnits, user, &scan), 0u);
        } else {
            const std::string name = toUtf8(path);
            NppScanDesc desc = {};
            desc.path = name.c_str();
            desc.cellInterval = 900000;
            ASSERT_EQ(nppBeginStreamScan(&desc, countUnits, user, &scan), 0u);
        }
        EXPECT_EQ(nppScanBuffer(scan, stream.data(), stream.size()), 0u);
        EXPECT_EQ(nppEndStreamScan(scan), 0u);
        EXPECT_EQ(taken, stream.size());
        ASSERT_TRUE(fileExists(path));
        files[wide] = readFile(path);
    }
    EXPECT_EQ(files[0].size(), 8u + 2 * 96);
    EXPECT_EQ(toHex(files[0]), toHex(files[1]));
}

TEST(NppBegin, TheFileIsMadeAnew)
{
    const TempDir folder;
    const std::u16string path = folder / u"scan";
    writeFile(path, Bytes(500, 0xEE));
    const std::basic_string<OrvWChar> name = wideName(path);
    const NppScanDescW desc = describe(name);
    NppScan* scan = nullptr;
    ASSERT_EQ(nppBeginStreamScanW(&desc, refuseAll, 0, &scan), 0u);
    EXPECT_EQ(nppEndStreamScan(scan), 0u);
    EXPECT_EQ(toHex(readFile(path)), "01 00 00 00 00 00 00 00");
}

TEST(NppBegin, AnEmptyStreamLeavesAnEmptyList)
{
    ScanHost host;
    EXPECT_EQ(host.end(), 0u);
    EXPECT_TRUE(host.units.empty());
    EXPECT_EQ(toHex(host.file()), "01 00 00 00 00 00 00 00");
}

TEST(NppBegin, NoBytesAreNoFault)
{
    ScanHost host;
    const uint8_t byte = 0;
    EXPECT_EQ(nppScanBuffer(host.handle, &byte, 0), 0u);
    EXPECT_EQ(nppScanBuffer(host.handle, nullptr, 0), 0u);
    EXPECT_EQ(host.end(), 0u);
    EXPECT_EQ(toHex(host.file()), "01 00 00 00 00 00 00 00");
}

TEST(NppBegin, AFileThatCannotBeMade)
{
    const TempDir folder;
    const std::basic_string<OrvWChar> missing = wideName(folder / u"missing" + u"/scan");
    NppScanDescW desc = describe(missing);
    NppScan* scan = SOME;
#ifdef _WIN32
    const uint64_t noPath = 3;   // ERROR_PATH_NOT_FOUND
#else
    const uint64_t noPath = ENOENT;
#endif
    EXPECT_EQ(nppBeginStreamScanW(&desc, refuseAll, 0, &scan), noPath);
    EXPECT_EQ(scan, nullptr);

    const std::basic_string<OrvWChar> taken = wideName(folder.prefix());   // a folder
    desc.path = taken.c_str();
    const uint64_t list[] = { 1, 2 };   // a list that has to be released again
    desc.cellMode = ORV_NPP_CELLS_BY_LIST;
    desc.cellList = list;
    desc.cellListCount = 2;
    scan = SOME;
    const uint64_t result = nppBeginStreamScanW(&desc, refuseAll, 0, &scan);
    EXPECT_NE(result, 0u);
    EXPECT_NE(result >> 24, 0x84u);   // a number of the platform
    EXPECT_EQ(scan, nullptr);
}

#ifndef _WIN32
TEST(NppBegin, AFullDiskAtTheBeginning)
{
    const TempDir folder;
    const std::basic_string<OrvWChar> name = wideName(folder / u"scan");
    const NppScanDescW desc = describe(name);
    for (const uint64_t room : std::vector<uint64_t>{ 0, 7 }) {
        NppScan* scan = SOME;
        const WriteLimit limit(room);
        EXPECT_EQ(nppBeginStreamScanW(&desc, refuseAll, 0, &scan), uint64_t(EFBIG));
        EXPECT_EQ(scan, nullptr);
    }
}

// The pack whose record could not be written does not count and comes out nowhere; what was there before does.
TEST(NppBegin, AFullDiskAtARecord)
{
    const Bytes first = unitBytes({ .start = 0, .packs = 3 }, 0);
    const Bytes second = unitBytes({ .start = 50000, .packs = 2 }, 3);
    ScanHost host;
    {
        const WriteLimit limit(8 + 96);
        EXPECT_EQ(host.feed(first), 0u);
        EXPECT_EQ(host.feed(slice(second, 0, PACK_BYTES - 1)), 0u);
        EXPECT_EQ(host.feed(slice(second, PACK_BYTES - 1, 1)), uint64_t(EFBIG));
    }
    EXPECT_TRUE(host.units.empty());
    EXPECT_EQ(host.end(), 0u);
    ASSERT_EQ(host.units.size(), 1u);
    EXPECT_EQ(host.units[0].size(), 3 * PACK_BYTES);
    EXPECT_EQ(toHex(slice(host.file(), 0, 8)), "01 00 00 00 03 00 00 00");
    EXPECT_EQ(host.file().size(), 8u + 96);
}

TEST(NppBegin, AFullDiskAtTheEnd)
{
    ScanHost host;
    EXPECT_EQ(host.feed(streamOf({ { .packs = 2 } })), 0u);
    const WriteLimit limit(4);
    EXPECT_EQ(host.end(), uint64_t(EFBIG));
    EXPECT_EQ(host.units.size(), 1u);   // handed out all the same
    host.handle = nullptr;
}

// Until it ends, the file holds the records so far and a count of 0.
TEST(NppBegin, TheCountIsWrittenAtTheEnd)
{
    ScanHost host;
    EXPECT_EQ(toHex(host.file()), "01 00 00 00 00 00 00 00");
    EXPECT_EQ(host.feed(streamOf({ { .start = 0, .packs = 2 }, { .start = 1, .packs = 5 } })), 0u);
    EXPECT_EQ(host.file().size(), 8u + 2 * 96);
    EXPECT_EQ(toHex(slice(host.file(), 0, 8)), "01 00 00 00 00 00 00 00");
    EXPECT_EQ(host.end(), 0u);
    EXPECT_EQ(toHex(slice(host.file(), 0, 8)), "01 00 00 00 07 00 00 00");
}
#endif

}   // namespace
