// What a background video is, by its first four bytes.
#include "mux/asset_drivers.h"
#include "tests/mux/mux_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t STILL = 0, ANIMATED = 1, UNKNOWN = 0xFFFFFFFFFFFFFFFF;

// clang-format off
const struct { const char* what; const char* bytes; uint64_t form; } CASES[] = {
    { "a sequence header",            "00 00 01 B3 2D 02 40 33", STILL },
    { "nothing but its start code",   "00 00 01 B3",             STILL },
    { "a pack header",                "00 00 01 BA 44 00 04 00", ANIMATED },
    { "nothing but its start code",   "00 00 01 BA",             ANIMATED },
    { "a program's end",              "00 00 01 B9 00 00 01 BA", UNKNOWN },
    { "a system header",              "00 00 01 BB 00 12 80 C4", UNKNOWN },
    { "a group of pictures",          "00 00 01 B8 00 08 00 40", UNKNOWN },
    { "a picture",                    "00 00 01 00 00 0F FF F8", UNKNOWN },
    { "one more zero in front",       "00 00 00 01 B3 2D 02 40", UNKNOWN },
    { "another first byte",           "01 00 01 BA 44 00 04 00", UNKNOWN },
    { "another second byte",          "00 01 01 BA 44 00 04 00", UNKNOWN },
    { "another third byte",           "00 00 00 B3 2D 02 40 33", UNKNOWN },
    { "the bytes reversed",           "BA 01 00 00 44 00 04 00", UNKNOWN },
    { "the words reversed",           "01 BA 00 00 44 00 04 00", UNKNOWN },
    { "text",                         "52 49 46 46 00 00 00 00", UNKNOWN },
    { "three bytes",                  "00 00 01",                UNKNOWN },
    { "an empty file",                "",                        UNKNOWN },
};
// clang-format on

}   // namespace

TEST(ProbeAsset, FirstFourBytes)
{
    for (const auto& row : CASES) {
        const TempDir folder;
        const OpenFile video(folder, u"video", fromHex(row.bytes));
        EXPECT_EQ(orvProbeAsset(video.file), row.form) << row.what << ": " << row.bytes;
    }
}

TEST(ProbeAsset, NamesOfTheForms)
{
    EXPECT_EQ(ASSET_STILL, STILL);
    EXPECT_EQ(ASSET_ANIMATED, ANIMATED);
    EXPECT_EQ(ASSET_UNKNOWN, UNKNOWN);
}

TEST(ProbeAsset, ReadsAtTheFilesPosition)
{
    const TempDir folder;
    const OpenFile video(folder, u"video", fromHex("00 00 01 BA 00 00 01 B3 00 00"));
    EXPECT_EQ(orvProbeAsset(video.file), ANIMATED);
    EXPECT_EQ(orvProbeAsset(video.file), STILL);   // the caller goes back, not the probe
    uint64_t position = 0;
    EXPECT_EQ(osTellFile(video.file, &position), 0u);
    EXPECT_EQ(position, 8u);
    EXPECT_EQ(orvProbeAsset(video.file), UNKNOWN);   // two bytes are left
}

TEST(ProbeAsset, FilesThatCannotBeRead)
{
    EXPECT_EQ(orvProbeAsset(0), UNKNOWN);
    const TempDir folder;
    const OpenFile video(folder, u"video", fromHex("00 00 01 BA"), OS_APPEND);
    ASSERT_EQ(osSeekFile(video.file, 0, OS_FROM_START), 0u);
    EXPECT_EQ(orvProbeAsset(video.file), UNKNOWN);
}
