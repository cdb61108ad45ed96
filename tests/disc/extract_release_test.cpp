// extract_release_test.cpp: calls that their own callbacks end.
#include "base/result.h"
#include "base/wide.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <orven/extract.h>

#include <string>

namespace {

constexpr uint64_t PACKS = 5;

/** A pack with two samples, 00 01 and 00 02 on the left and right, behind a private header of four bytes. */
Bytes pack()
{
    Bytes bytes = fromHex("00 00 01 BA 44 00 04 00 04 01 01 89 C3 F8 "   // pack header
                          "00 00 01 BD 00 0B 81 00 00 "                  // 11 bytes behind the length
                          "A0 00 00 00 "                                 // private header
                          "00 01 00 02");
    bytes.resize(2048);
    return bytes;
}

// A disc of one track of 16 bits and two channels at 48 kHz.
struct StereoDisc {
    StereoDisc()
    {
        Bytes table(16384);
        const Bytes head = fromHex("44 56 44 41 55 44 49 4F 53 41 50 50 00 01");   // DVDAUDIOSAPP, one track
        std::copy(head.begin(), head.end(), table.begin());
        table[18 + 17] = 1;           // left, right
        table[18 + 49] = PACKS - 1;   // last sector
        writeFile(folder / u"AUDIO_PP.IFO", table);
        Bytes aob;
        for (uint64_t i = 0; i < PACKS; i++) {
            const Bytes next = pack();
            aob.insert(aob.end(), next.begin(), next.end());
        }
        writeFile(folder / u"ATS_01_1.AOB", aob);
        EXPECT_EQ(
            d2wCreateContextW(orvHostText(folder.prefix().c_str()), orvHostText(folder.prefix().c_str()), &context),
            0u);
        EXPECT_EQ(d2wOpenDisc(context, nullptr, nullptr, 0), 0u);
    }
    StereoDisc(const StereoDisc&) = delete;
    StereoDisc& operator=(const StereoDisc&) = delete;

    TempDir folder;
    ExtractContext* context = nullptr;
    uint64_t calls = 0;
    uint64_t releaseAt = 0;   // the call in which the context is released, from 1
    uint64_t inner = 99;      // result of an extraction within the first call
    bool nested = false;
};

void onProgress(uint64_t, uint64_t, uint64_t, const char*, uint64_t user)
{
    StereoDisc* disc = reinterpret_cast<StereoDisc*>(user);
    disc->calls++;
    if (disc->nested && disc->calls == 1) disc->inner = d2wExtractTrack(disc->context, 0, 0, onProgress, user);
    if (disc->calls != disc->releaseAt) return;
    EXPECT_EQ(d2wReleaseContext(disc->context), 0u);
}

uint64_t extract(StereoDisc* disc)
{
    return d2wExtractTrack(disc->context, 0, 1, onProgress, reinterpret_cast<uint64_t>(disc));
}

// The address sanitizer sees whether the context lives while it is used and goes afterwards.
TEST(ExtractRelease, ProgressEndsTheExtraction)
{
    StereoDisc disc;
    disc.releaseAt = 2;
    EXPECT_EQ(extract(&disc), ORV_CANCELED);
    EXPECT_EQ(disc.calls, 2u);
    const Bytes wave = readFile(disc.folder / u"track001_lrf.wav");
    ASSERT_EQ(wave.size(), 46u + 2 * 4);
    EXPECT_EQ(toHex(wave.data(), 46), toHex(Bytes(46)));   // no header
    EXPECT_EQ(toHex(wave.data() + 46, 8), "01 00 02 00 01 00 02 00");
}

// The last call comes when the files are complete.
TEST(ExtractRelease, LastCallLeavesACompleteTrack)
{
    StereoDisc disc;
    disc.releaseAt = PACKS + 1;
    EXPECT_EQ(extract(&disc), 0u);
    EXPECT_EQ(disc.calls, PACKS + 1);
    EXPECT_EQ(toHex(readFile(disc.folder / u"track001_lrf.wav").data(), 4), "52 49 46 46");
}

TEST(ExtractRelease, EndsAnExtractionWithinAnother)
{
    StereoDisc disc;
    disc.nested = true;
    disc.releaseAt = 3;
    EXPECT_EQ(extract(&disc), ORV_CANCELED);
    EXPECT_EQ(disc.inner, ORV_CANCELED);
    EXPECT_EQ(disc.calls, 3u);
}

TEST(ExtractRelease, AnExtractionWithinAnotherReleasesNothing)
{
    StereoDisc disc;
    disc.nested = true;
    EXPECT_EQ(extract(&disc), 0u);
    EXPECT_EQ(disc.inner, 0u);
    EXPECT_EQ(disc.calls, 2 * (PACKS + 1));
    EXPECT_EQ(extract(&disc), 0u);   // it can be used again
    EXPECT_EQ(d2wReleaseContext(disc.context), 0u);
}

void releaseAtOnce(const ExtractTrack*, uint64_t, uint64_t user)
{
    EXPECT_EQ(d2wReleaseContext(*reinterpret_cast<ExtractContext**>(user)), 0u);
}

TEST(ExtractRelease, TrackInfoEndsTheOpening)
{
    StereoDisc disc;
    EXPECT_EQ(d2wReleaseContext(disc.context), 0u);
    const std::u16string folder = disc.folder.prefix();
    ExtractContext* context = nullptr;
    ASSERT_EQ(d2wCreateContextW(orvHostText(folder.c_str()), orvHostText(folder.c_str()), &context), 0u);
    uint64_t tracks = 99;
    EXPECT_EQ(d2wOpenDisc(context, &tracks, releaseAtOnce, reinterpret_cast<uint64_t>(&context)), ORV_CANCELED);
    EXPECT_EQ(tracks, 1u);
}

}   // namespace
