// messages_test.cpp: texts of result codes.
#include <orven/results.h>

#include "base/result.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

static std::string narrowText(uint64_t code)
{
    char text[512];
    std::memset(text, '#', sizeof(text));
    EXPECT_EQ(ErrorToString(code, text, sizeof(text)), 0u);
    return text;
}

static std::string wideText(uint64_t code)
{
    OrvWChar text[512];
    std::fill(std::begin(text), std::end(text), OrvWChar('#'));
    EXPECT_EQ(ErrorToStringW(code, text, 512), 0u);
    std::string narrow;
    for (const OrvWChar* at = text; *at; at++) narrow += char(*at);
    return narrow;
}

static const std::map<uint64_t, const char*> SOME_TEXTS = {
    { 1000, "Error 1000: unknown char in ini file" },
    { 1009, "Error 1009: no version number found" },
    { 1031, "Error 1031: wrong menu existance type" },
    { 1034, "Error 1034: canceled by user" },
    { 2000, "Error 2000: vob structure wrong - scan failed" },
    { 2002, "Error 2002: can't open mpeg data file" },
    { 2010, "Error 2010: encoded sub picture is larger than 52KByte" },
    { 2015, "Error 2015: MPEG pack header ist not initialized" },
    { 2016, "Error 2016: maximum chapter count (255) exhausted" },
    { 2037, "Error 2037: btn rect in collision bmp is empty" },
    { 3000, "Warning 3000: no mpeg audio sync 0xFFF" },
    { 3010, "Warning 3010: video stream must be PAL or NTSC" },
    { 3017, "Error 3017: overflow of audio or video input during muxing - data rate too large" },
    { 3019, "Error 3019: cant open file for multiplexing" },
    { 3021, "Error 3021: underrun - std player wants to decode a frame that is not read from disc" },
    { 4003, "Error 4003: given path is invalid or to small" },
    { 4016, "Error 4016: cannot find PGC start in VOB" },
    { 4018, "Error 4018: osAllocMem or osInsertMem failed" },
    { 4022, "Error 4022: drawer doesn't contain Video-DVD files" },
    { 5000, "error: there is no VIDEO_TS.IFO file" },
    { 5001, "error: there is VIDEO_TS.BUP file" },
    { 5012, "error: structure of VTS-IFO damaged" },
    { 6006, "error 6006: wront count of ATS (<99)" },
    { 6012, "error 6012: no playtime oder endsample setting" },
    { 6027, "error 6027: cannot create ASVS-IFO file" },
    { 7001, "error + 7001: cannot create context" },
    { 7011, "error + 7011: channel assignment not supported" },
    { 9001, "Error 9001: current block is not a NavPack" },
};

TEST(Messages, Texts)
{
    for (const auto& [id, text] : SOME_TEXTS) {
        EXPECT_EQ(narrowText(0x84000000 + id), text);
        EXPECT_EQ(wideText(0x84000000 + id), text);
    }
}

// First and last number of each run of messages, counted by hand: 35 + 38 + 22 + 17 + 5 + 13 + 27 + 11 + 1.
static const uint64_t RUNS[][2] = { { 1000, 1034 }, { 2000, 2037 }, { 3000, 3021 }, { 4000, 4016 }, { 4018, 4022 },
                                    { 5000, 5012 }, { 6001, 6027 }, { 7001, 7011 }, { 9001, 9001 } };

TEST(Messages, EveryNumberHasItsTextAndNoOtherHas)
{
    uint64_t rows = 0;
    for (uint64_t id = 0; id < 0x10000; id++) {
        const bool isMessage = std::any_of(std::begin(RUNS), std::end(RUNS),
                                           [id](const auto& run) { return id >= run[0] && id <= run[1]; });
        const bool isBanner = id >= 100 && id <= 105;
        const std::string text = wideText(0x84000000 + id);
        EXPECT_EQ(!text.empty(), isMessage || isBanner) << id;
        if (isBanner) {
            EXPECT_TRUE(text.starts_with("Orven ") && text.ends_with(" " ORVEN_VERSION)) << text;
        }
        if (!isMessage) continue;
        rows++;
        // All but the texts of the disc structure tell their own number.
        if (id < 5000 || id > 5999) {
            EXPECT_NE(text.find(" " + std::to_string(id) + ": "), text.npos) << text;
        }
    }
    EXPECT_EQ(rows, 169u);
}

TEST(Messages, NamesStandForTheirNumbers)
{
    EXPECT_EQ(ORV_UNKNOWN_CHAR, 0x840003E8u);
    EXPECT_EQ(ORV_CANCELED, 0x8400040Au);
    EXPECT_EQ(ORV_WRONG_VIDEO_FORMAT, 0x840007D4u);
    EXPECT_EQ(ORV_NO_AUDIO_CONTEXT, 0x84001771u);
    EXPECT_EQ(ORV_NOT_A_NAV_PACK, 0x84002329u);
    EXPECT_EQ(ORV_INVALID_ARGUMENT, 0x84000057u);
    EXPECT_EQ(ORV_TOO_MANY_AUDIO_STREAMS, 0x8400040Bu);
    EXPECT_EQ(ORV_TITLE_SET_SKIPPED, 0x8400044Bu);
}

TEST(Messages, CodesWithoutAText)
{
    for (const uint64_t code : { 0x84000057u, 0x8400040Bu, 0x8400044Bu, 0x84000FB1u, 0x84000C1Cu, 0x84000000u,
                                 0x8400FFFFu, 0x88010001u, 0x88010002u, 0x88010102u, 0x88010000u, 0x841003E8u,
                                 0x840103E8u, 0x850003E8u, 0x800003E8u, 0xFFFFFFFFu, 0x7FFFFFFFu, 999999u }) {
        EXPECT_EQ(narrowText(code), "") << code;
        EXPECT_EQ(wideText(code), "") << code;
    }
    EXPECT_EQ(wideText(0xFFFFFFFFFFFFFFFD), "");
}

TEST(Messages, OnlySomeBitsTellALibraryCode)
{
    EXPECT_EQ(wideText(0x040003E8), "Error 1000: unknown char in ini file");
    EXPECT_EQ(wideText(0xF40003E8), "Error 1000: unknown char in ini file");
    EXPECT_EQ(wideText(0xFFFFFFFF840003E8), "Error 1000: unknown char in ini file");   // the low 32 bits count
}

TEST(Messages, TheSystemsTexts)
{
    EXPECT_NE(narrowText(2), "");   // 2 is a file that is not there, everywhere
    EXPECT_EQ(wideText(2), narrowText(2));
    EXPECT_EQ(wideText(0x100000002), wideText(2));
#ifdef __linux__
    EXPECT_EQ(narrowText(2), "No such file or directory");
    EXPECT_EQ(narrowText(28), "No space left on device");
    EXPECT_EQ(narrowText(0), "Success");
    EXPECT_EQ(narrowText(41), "");   // a gap in the system's own numbers
#endif
}

TEST(Messages, ShortBuffers)
{
    const std::string text = "Error 1034: canceled by user";
    const std::string system = narrowText(2);
    for (uint64_t room = 1; room < 40; room++) {
        char narrow[64];
        std::memset(narrow, '#', sizeof(narrow));
        EXPECT_EQ(ErrorToString(ORV_CANCELED, narrow, room), 0u);
        EXPECT_EQ(narrow, text.substr(0, room - 1));
        for (uint64_t i = room; i < sizeof(narrow); i++) ASSERT_EQ(narrow[i], '#');

        OrvWChar wide[64];
        std::fill(std::begin(wide), std::end(wide), OrvWChar('#'));
        EXPECT_EQ(ErrorToStringW(ORV_CANCELED, wide, room), 0u);
        const std::string cut = text.substr(0, room - 1);
        EXPECT_TRUE(std::equal(cut.begin(), cut.end(), wide));
        EXPECT_EQ(uint64_t(wide[cut.size()]), 0u);
        for (uint64_t i = room; i < 64; i++) ASSERT_EQ(wide[i], OrvWChar('#'));

        // A text of the system fits whole or not at all.
        std::memset(narrow, '#', sizeof(narrow));
        EXPECT_EQ(ErrorToString(2, narrow, room), 0u);
        EXPECT_EQ(narrow, room > system.size() ? system : "") << room;
        for (uint64_t i = room; i < sizeof(narrow); i++) ASSERT_EQ(narrow[i], '#');
        std::fill(std::begin(wide), std::end(wide), OrvWChar('#'));
        EXPECT_EQ(ErrorToStringW(2, wide, room), 0u);
        EXPECT_EQ(uint64_t(wide[room > system.size() ? system.size() : 0]), 0u) << room;
        for (uint64_t i = room; i < 64; i++) ASSERT_EQ(wide[i], OrvWChar('#'));
    }
}

TEST(Messages, OddBuffers)
{
    EXPECT_EQ(ErrorToString(ORV_CANCELED, nullptr, 100), 0u);
    EXPECT_EQ(ErrorToStringW(ORV_CANCELED, nullptr, 100), 0u);
    EXPECT_EQ(ErrorToString(ORV_CANCELED, nullptr, 0), 0u);
    char narrow[40] = "#";
    OrvWChar wide[40] = { OrvWChar('#') };
    EXPECT_EQ(ErrorToString(ORV_CANCELED, narrow, 0), 0u);
    EXPECT_EQ(ErrorToStringW(ORV_CANCELED, wide, 0), 0u);
    EXPECT_EQ(narrow[0], '#');
    EXPECT_EQ(wide[0], OrvWChar('#'));
    // A silly length costs nothing, and no more is written than the text.
    EXPECT_EQ(ErrorToString(ORV_CANCELED, narrow, ~uint64_t(0)), 0u);
    EXPECT_STREQ(narrow, "Error 1034: canceled by user");
    EXPECT_EQ(ErrorToStringW(ORV_CANCELED, wide, ~uint64_t(0)), 0u);
    EXPECT_EQ(uint64_t(wide[28]), 0u);
    EXPECT_EQ(ErrorToString(999999, narrow, ~uint64_t(0)), 0u);
    EXPECT_STREQ(narrow, "");
}

TEST(Messages, ServiceInfo)
{
    EXPECT_EQ(GetServiceInfo(), 0u);
}
