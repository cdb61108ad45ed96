// Stream scan files: a little-endian 1, the sectors of the stream, one record per unit.
#include "base/result.h"
#include "tests/video/table_bytes.h"
#include "video/movie_scan.h"

namespace {

// Twelve 64-bit fields, little-endian: 1 to 12 in the lowest byte, 0x80 more in the highest byte of the first.
const std::string RECORD = "01 00 00 00 00 00 00 80  02 00 00 00 00 00 00 00  03 00 00 00 00 00 00 00"
                           "04 00 00 00 00 00 00 00  05 00 00 00 00 00 00 00  06 00 00 00 00 00 00 00"
                           "07 00 00 00 00 00 00 00  08 00 00 00 00 00 00 00  09 00 00 00 00 00 00 00"
                           "0A 00 00 00 00 00 00 00  0B 00 00 00 00 00 00 00  0C 00 00 00 00 00 00 00";
const std::string OTHER = "11 22 33 44 55 66 77 00  12 00 00 00 00 00 00 00  13 00 00 00 00 00 00 00"
                          "14 00 00 00 00 00 00 00  15 00 00 00 00 00 00 00  16 00 00 00 00 00 00 00"
                          "17 00 00 00 00 00 00 00  18 00 00 00 00 00 00 00  19 00 00 00 00 00 00 00"
                          "1A 00 00 00 00 00 00 00  1B 00 00 00 00 00 00 00  1C 00 00 00 00 00 00 00";

struct ScanFile {
    uint64_t result = 0;
    std::vector<VobuRecord> records;
    uint64_t bytes = 0;   // of the list's block
    uint64_t sectors = 0;
};

ScanFile load(const std::u16string& path)
{
    ScanFile file;
    VobuRecord* list = nullptr;
    file.result = orvReadStreamScanFile(path.c_str(), &list, &file.sectors);
    if (list) {
        file.bytes = osMemSize(list);
        file.records.assign(list, list + file.bytes / sizeof(VobuRecord));
    }
    (void)osFreeMem(&list);
    return file;
}

ScanFile loadBytes(const Bytes& bytes)
{
    const TempDir folder;
    const std::u16string path = folder / u"movie.scan";
    writeFile(path, bytes);
    return load(path);
}

}   // namespace

TEST(ScanFile, Records)
{
    const ScanFile file = loadBytes(fromHex("01 00 00 00 78 56 34 12" + RECORD + OTHER));
    ASSERT_EQ(0u, file.result);
    EXPECT_EQ(0x12345678u, file.sectors);
    ASSERT_EQ(192u, file.bytes);
    const VobuRecord& first = file.records[0];
    EXPECT_EQ(0x8000000000000001u, first.sector);
    EXPECT_EQ(2u, first.lastSector);
    EXPECT_EQ(3u, first.scr);
    EXPECT_EQ(4u, first.firstPts);
    EXPECT_EQ(5u, first.pictureCount);
    EXPECT_EQ(6u, first.vobId);
    EXPECT_EQ(7u, first.cellId);
    EXPECT_EQ(8u, first.firstRefEnd);
    EXPECT_EQ(9u, first.secondRefEnd);
    EXPECT_EQ(10u, first.thirdRefEnd);
    EXPECT_EQ(11u, first.temporalRef);
    EXPECT_EQ(12u, first.spare);
    EXPECT_EQ(0x0077665544332211u, file.records[1].sector);
    EXPECT_EQ(0x1Cu, file.records[1].spare);
}

TEST(ScanFile, SectorsAreUnsigned)
{
    EXPECT_EQ(0xFFFFFFFFu, loadBytes(fromHex("01 00 00 00 FF FF FF FF" + RECORD)).sectors);
}

TEST(ScanFile, NoRecords)
{
    const ScanFile file = loadBytes(fromHex("01 00 00 00 0A 00 00 00"));
    EXPECT_EQ(0u, file.result);
    EXPECT_EQ(10u, file.sectors);
    EXPECT_EQ(0u, file.bytes);
}

TEST(ScanFile, IncompleteLastRecordIsDropped)
{
    const Bytes whole = fromHex("01 00 00 00 0A 00 00 00" + RECORD + OTHER);
    for (const uint64_t size :
         { uint64_t(9), uint64_t(8 + 95), uint64_t(8 + 96), uint64_t(8 + 97), uint64_t(8 + 191) }) {
        const ScanFile file = loadBytes(slice(whole, 0, size));
        EXPECT_EQ(0u, file.result) << size;
        EXPECT_EQ(10u, file.sectors) << size;
        EXPECT_EQ((size - 8) / 96 * 96, file.bytes) << size;
        if (!file.records.empty()) {
            EXPECT_EQ(12u, file.records[0].spare) << size;
        }
    }
}

TEST(ScanFile, WhatIsNoScanFile)
{
    const struct {
        const char* what;
        std::string hex;
    } cases[] = {
        { "empty", "" },
        { "one byte", "01" },
        { "only the first word", "01 00 00 00" },
        { "seven bytes", "01 00 00 00 0A 00 00" },
        { "0", "00 00 00 00 0A 00 00 00" + RECORD },
        { "2", "02 00 00 00 0A 00 00 00" + RECORD },
        { "1 as a big-endian word", "00 00 00 01 0A 00 00 00" + RECORD },
        { "1 in the low byte alone", "01 00 00 80 0A 00 00 00" + RECORD },
        { "a program stream", "00 00 01 BA 44 00 04 00" + RECORD },
    };
    for (const auto& c : cases) EXPECT_EQ(ORV_INVALID_ARGUMENT, loadBytes(fromHex(c.hex)).result) << c.what;
    EXPECT_EQ(0x84000057u, ORV_INVALID_ARGUMENT);
}

TEST(ScanFile, MissingFile)
{
    const TempDir folder;
    EXPECT_EQ(2u, load(folder / u"missing.scan").result);   // no such file, on both platforms
}

TEST(ScanFile, Folder)
{
    const TempDir folder;
    const uint64_t result = load(folder.root.u16string()).result;
    EXPECT_NE(0u, result);
    EXPECT_NE(ORV_INVALID_ARGUMENT, result);   // it is the platform that refuses it
}
