// The movie scan's search for picture start codes: each is found exactly once, wherever the packs are cut.
#include "tests/video/nav_support.h"

#include <gtest/gtest.h>

#include <random>

typedef std::vector<std::string> Lines;

namespace {

Bytes slice(const Bytes& bytes, uint64_t from, uint64_t to)
{
    return Bytes(bytes.begin() + std::ptrdiff_t(from), bytes.begin() + std::ptrdiff_t(to));
}

// One unit of video packs with these payloads, at the clock 1.
Bytes unitOf(const std::vector<Bytes>& payloads)
{
    Bytes stream = navPack({ 1, 0 });
    for (const Bytes& payload : payloads) stream += videoPack(payload);
    return stream;
}

// Pictures, reference ends and temporal reference of the only unit.
std::string picturesOf(const Bytes& stream)
{
    const Scan scan = scanBytes(stream);
    EXPECT_EQ(scan.result, 0u);
    EXPECT_EQ(scan.vobus.size(), 1u);
    const VobuRecord& r = scan.vobus.at(0);
    return std::to_string(r.pictureCount) + " refs " + std::to_string(r.firstRefEnd) + " " +
           std::to_string(r.secondRefEnd) + " " + std::to_string(r.thirdRefEnd) + " tref " +
           std::to_string(r.temporalRef);
}

const Bytes REST(100, FILLER);

}   // namespace

// ---- headers -----------------------------------------------------------------------------------------------------

TEST(MovieScanPictures, TemporalReferenceOfTheFirstPicture)
{
    const struct {
        const char* header;
        uint64_t temporalRef;
    } rows[] = {
        { "00 00 01 00 00 0F", 0 },    { "00 00 01 00 00 4F", 1 },   { "00 00 01 00 00 8F", 2 },
        { "00 00 01 00 01 0F", 4 },    { "00 00 01 00 80 0F", 512 }, { "00 00 01 00 FF CF", 1023 },
        { "00 00 01 00 FF 3F", 1020 }, { "00 00 01 00 00 3F", 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.header);
        const Bytes first = fromHex(row.header) + REST, second = picture(100, 77, 3);
        EXPECT_EQ(scanBytes(unitOf({ first + second })).vobus.at(0).temporalRef, row.temporalRef);
    }
}

TEST(MovieScanPictures, OnlyPictureStartCodesCount)
{
    EXPECT_EQ(picturesOf(unitOf({ fromHex("00 00 01 B3 00 00 01 B8 00 00 01 01 00 00 01 AF 00 00 02 00 01 00 "
                                          "01 00 00 00 00 01") +
                                  REST })),
              "0 refs 0 0 0 tref 0");
    EXPECT_EQ(picturesOf(unitOf({ fromHex("00 00 00 00 01 00 00 4F") + REST })), "1 refs 0 0 0 tref 1");
}

TEST(MovieScanPictures, StartCodesMayOverlap)
{
    // Each position is compared: the last zero of a start code may begin the next one.
    EXPECT_EQ(picturesOf(unitOf({ fromHex("00 00 01 00 00 01 00 00 01 00 40 0F") + REST })), "3 refs 0 0 0 tref 0");
}

TEST(MovieScanPictures, TypesOneAndTwoAreReferences)
{
    for (uint64_t type = 0; type < 8; type++) {
        SCOPED_TRACE(type);
        const std::string expected = type == 1 || type == 2 ? "2 refs 1 0 0 tref 0" : "2 refs 0 0 0 tref 0";
        EXPECT_EQ(picturesOf(unitOf({ picture(100, 0, type), picture(100, 1, 3) })), expected);
    }
}

TEST(MovieScanPictures, ThreeReferencesAreStored)
{
    const auto packs = [](const std::string& types) {
        std::vector<Bytes> payloads;
        for (const char type : types) payloads.push_back(picture(100, 9, type == 'I' ? 1 : type == 'P' ? 2 : 3));
        return picturesOf(unitOf(payloads));
    };
    // The picture in pack k ends there when the next begins at the head of pack k + 1.
    EXPECT_EQ(packs("I"), "1 refs 0 0 0 tref 9");
    EXPECT_EQ(packs("IB"), "2 refs 1 0 0 tref 9");
    EXPECT_EQ(packs("IBBPBBPBBPBB"), "12 refs 1 4 7 tref 9");
    EXPECT_EQ(packs("IPPPPP"), "6 refs 1 2 3 tref 9");
    EXPECT_EQ(packs("BBIBP"), "5 refs 3 0 0 tref 9");   // the last one has no successor in the unit
    EXPECT_EQ(packs("BIPI"), "4 refs 2 3 0 tref 9");
}

TEST(MovieScanPictures, EndOfAReference)
{
    const Bytes first = picture(500, 0, 1), next = picture(500, 1, 3);
    // In the middle of a pack: this pack. At its head: the video pack before, however many others lie between.
    EXPECT_EQ(picturesOf(unitOf({ first + next })), "2 refs 1 0 0 tref 0");
    EXPECT_EQ(picturesOf(unitOf({ first, REST + next })), "2 refs 2 0 0 tref 0");
    EXPECT_EQ(picturesOf(unitOf({ first, REST, next })), "2 refs 2 0 0 tref 0");
    EXPECT_EQ(picturesOf(navPack({ 1, 0 }) + videoPack(first) + privatePack(0x80) + paddingPack() + videoPack(next)),
              "2 refs 1 0 0 tref 0");
    EXPECT_EQ(picturesOf(navPack({ 1, 0 }) + privatePack(0x80) + videoPack(first) + privatePack(0x80) +
                         videoPack(Bytes(1, FILLER) + next)),
              "2 refs 4 0 0 tref 0");
}

TEST(MovieScanPictures, ReferencesDoNotReachOverUnits)
{
    const Bytes first = unitOf({ picture(500, 3, 1) });
    EXPECT_EQ(describeAll(scanBytes(first + unitOf({ picture(500, 4, 2), picture(500, 5, 3) }) + first).vobus),
              (Lines{ "0-1 scr 1 pts 0 n 1 vob 0 cell 1 refs 0 0 0 tref 3",
                      "2-4 scr 1 pts 0 n 2 vob 0 cell 1 refs 1 0 0 tref 4",
                      "5-6 scr 1 pts 0 n 1 vob 0 cell 1 refs 0 0 0 tref 3" }));
}

TEST(MovieScanPictures, PreviousVideoSectorZero)
{
    // No navigation pack, so that video lies at sector 0. At the head of a pack the sector before then does not count,
    // through the carry buffer it does.
    EXPECT_EQ(scanBytes(videoPack(picture(500, 0, 1)) + videoPack(picture(500, 1, 3))).vobus.at(0).firstRefEnd, 1u);
    const Bytes all = picture(500, 0, 1) + picture(500, 1, 3);
    const Scan scan = scanBytes(videoPack(slice(all, 0, 501)) + paddingPack() + videoPack(slice(all, 501, 1000)));
    EXPECT_EQ(scan.vobus.at(0).pictureCount, 2u);
    EXPECT_EQ(scan.vobus.at(0).firstRefEnd, 0u);
}

// ---- the cut between packs ---------------------------------------------------------------------------------------

TEST(MovieScanPictures, EverySplitIntoTwoPacks)
{
    // Pictures at 3, 13, 22 and 36; eight bytes behind the last header.
    const Bytes video =
        Bytes(3, FILLER) + picture(10, 341, 1) + picture(9, 1, 2) + picture(14, 2, 3) + picture(14, 3, 2);
    ASSERT_EQ(video.size(), 50u);
    Bytes stream;
    for (uint64_t cut = 1; cut < video.size(); cut++) stream += unitOf({ slice(video, 0, cut), slice(video, cut, 50) });
    const Scan scan = scanBytes(stream);
    ASSERT_EQ(scan.vobus.size(), 49u);
    for (uint64_t cut = 1; cut < video.size(); cut++) {
        SCOPED_TRACE(cut);
        const VobuRecord& record = scan.vobus[cut - 1];
        // The last code of a unit may be found in the next one only if it ends in the carry buffer: here none does.
        EXPECT_EQ(record.pictureCount, 4u);
        EXPECT_EQ(record.temporalRef, 341u);
        EXPECT_EQ(record.firstRefEnd, cut < 13 ? 2u : 1u);
        EXPECT_EQ(record.secondRefEnd, cut < 22 ? 2u : 1u);
        EXPECT_EQ(record.thirdRefEnd, 0u);
    }
}

TEST(MovieScanPictures, CarryGoesOverUnitsAndOtherPacks)
{
    // Cut behind the k-th byte of the header: the picture belongs to the unit in which its header is complete.
    const Bytes header = pictureHeader(700, 1);
    for (uint64_t cut = 1; cut < 6; cut++) {
        SCOPED_TRACE(cut);
        const Bytes stream = unitOf({ REST + slice(header, 0, cut) }) + privatePack(0x80) +
                             unitOf({ slice(header, cut, 6) + REST, picture(100, 1, 3) });
        EXPECT_EQ(describeAll(scanBytes(stream).vobus),
                  (Lines{ "0-2 scr 1 pts 0 n 0 vob 0 cell 1 refs 0 0 0 tref 0",
                          "3-5 scr 1 pts 0 n 2 vob 0 cell 1 refs 1 0 0 tref 700" }));
    }
}

TEST(MovieScanPictures, TheLastSixBytesWaitForTheNextPack)
{
    // A header that ends with its pack is seen with the next one; one byte behind it, and it is seen at once.
    const Bytes header = pictureHeader(5, 1);
    EXPECT_EQ(picturesOf(unitOf({ REST + header })), "0 refs 0 0 0 tref 0");
    EXPECT_EQ(picturesOf(unitOf({ REST + header + Bytes(1, FILLER) })), "1 refs 0 0 0 tref 5");
    EXPECT_EQ(picturesOf(unitOf({ REST + header, REST })), "1 refs 0 0 0 tref 5");
    EXPECT_EQ(picturesOf(unitOf({ REST, header })), "0 refs 0 0 0 tref 0");
    EXPECT_EQ(picturesOf(unitOf({ REST, header, Bytes(1, FILLER) })), "1 refs 0 0 0 tref 5");
}

TEST(MovieScanPictures, CarryBeginsAsOnes)
{
    for (uint64_t cut = 1; cut < 4; cut++) {
        EXPECT_EQ(picturesOf(unitOf({ slice(pictureHeader(1, 1), cut, 6) + REST })), "0 refs 0 0 0 tref 0");
    }
}

TEST(MovieScanPictures, PayloadsOfFewBytes)
{
    // The same video in packs of n bytes each: every picture once, with its own header.
    const Bytes video =
        Bytes(2, FILLER) + picture(11, 600, 1) + picture(6, 1, 3) + picture(7, 2, 3) + picture(40, 3, 2);
    for (uint64_t n = 1; n <= 14; n++) {
        SCOPED_TRACE(n);
        std::vector<Bytes> payloads;
        for (uint64_t at = 0; at < video.size(); at += n)
            payloads.push_back(slice(video, at, std::min(at + n, video.size())));
        const VobuRecord record = scanBytes(unitOf(payloads)).vobus.at(0);
        EXPECT_EQ(record.pictureCount, 4u);
        EXPECT_EQ(record.temporalRef, 600u);
    }
}

TEST(MovieScanPictures, PacksWithoutPayloadChangeNothing)
{
    const Bytes video = picture(100, 0, 1) + picture(100, 1, 3);
    for (uint64_t cut = 95; cut < 107; cut++) {
        SCOPED_TRACE(cut);
        const Bytes empty = videoPack({}), stamped = videoPack({}, { .clock = {}, .pts = 7 });
        const Bytes stream = navPack({ 1, 0 }) + videoPack(slice(video, 0, cut)) + empty + stamped +
                             videoPack(slice(video, cut, 200)) + empty;
        // Sectors: 1 the first part, 2 and 3 empty, 4 the second part.
        EXPECT_EQ(picturesOf(stream), cut < 100 ? "2 refs 4 0 0 tref 0" : "2 refs 1 0 0 tref 0");
    }
}

// ---- lengths that lie --------------------------------------------------------------------------------------------

TEST(MovieScanPictures, LengthPastThePackIsCutAtItsEnd)
{
    const Bytes header = pictureHeader(8, 1);
    for (const bool withPts : { false, true }) {
        PesSpec lying = { .clock = {}, .lyingLength = 0xFFFF };
        if (withPts) lying.pts = 5;
        const uint64_t room = pesCapacity(lying);
        // Inside the pack, and straddling its end.
        EXPECT_EQ(picturesOf(navPack({ 1, 0 }) +
                             videoPack(Bytes(room - 25, FILLER) + header + Bytes(19, FILLER), lying) + videoPack(REST)),
                  "1 refs 0 0 0 tref 8");
        for (uint64_t cut = 1; cut < 6; cut++) {
            SCOPED_TRACE(cut);
            EXPECT_EQ(picturesOf(navPack({ 1, 0 }) +
                                 videoPack(Bytes(room - cut, FILLER) + slice(header, 0, cut), lying) +
                                 videoPack(slice(header, cut, 6) + REST)),
                      "1 refs 0 0 0 tref 8");
        }
    }
}

TEST(MovieScanPictures, NothingBehindTheLengthIsSeen)
{
    // 100 bytes of payload: the picture at 200 lies behind them, the two zeros at 98 are the last two.
    for (const bool withPts : { false, true }) {
        SCOPED_TRACE(withPts);
        PesSpec lying = { .clock = {}, .lyingLength = 103 };
        if (withPts) lying = { .clock = {}, .pts = 5, .lyingLength = 108 };
        Bytes payload(pesCapacity(lying), FILLER);
        const Bytes hidden = picture(50, 3, 1);
        std::copy(hidden.begin(), hidden.end(), payload.begin() + 200);
        EXPECT_EQ(picturesOf(navPack({ 1, 0 }) + videoPack(payload, lying) + videoPack(REST)), "0 refs 0 0 0 tref 0");
        payload[98] = payload[99] = 0;
        EXPECT_EQ(picturesOf(navPack({ 1, 0 }) + videoPack(payload, lying) + videoPack(fromHex("01 00 01 4F") + REST)),
                  "1 refs 0 0 0 tref 5");
    }
}

TEST(MovieScanPictures, LengthsThatLeaveNoPayload)
{
    for (const uint64_t length : { 0u, 1u, 2u, 3u }) {
        SCOPED_TRACE(length);
        const PesSpec lying = { .clock = {}, .lyingLength = length };
        EXPECT_EQ(picturesOf(navPack({ 1, 0 }) + videoPack(picture(100, 3, 1), lying) + videoPack(REST)),
                  "0 refs 0 0 0 tref 0");
        // It does not disturb a start code that is cut by it.
        EXPECT_EQ(picturesOf(navPack({ 1, 0 }) + videoPack(REST + fromHex("00 00 01")) +
                             videoPack(picture(100, 3, 1), lying) + videoPack(fromHex("00 02 0F") + REST)),
                  "1 refs 0 0 0 tref 8");
    }
}

TEST(MovieScanPictures, HeaderLengthThatLies)
{
    // Payload from 278 on, where a picture stands; the true one at 23 is taken for header.
    Bytes payload = picture(2025, 3, 1);
    const Bytes second = pictureHeader(9, 1);
    std::copy(second.begin(), second.end(), payload.begin() + 255);
    EXPECT_EQ(picturesOf(navPack({ 1, 0 }) + videoPack(payload, { .clock = {}, .lyingHeader = uint8_t(255) }) +
                         videoPack(REST)),
              "1 refs 0 0 0 tref 9");
    // A header longer than the packet leaves no payload.
    EXPECT_EQ(picturesOf(navPack({ 1, 0 }) +
                         videoPack(payload, { .clock = {}, .lyingLength = 200, .lyingHeader = uint8_t(255) }) +
                         videoPack(REST)),
              "0 refs 0 0 0 tref 0");
}

TEST(MovieScanPictures, OtherVideoIdsAreIgnored)
{
    for (int id = 0xE1; id <= 0xEF; id++) {
        SCOPED_TRACE(id);
        const Bytes stream = navPack({ 1, 0 }) + pesPack(uint8_t(id), picture(100, 3, 1), { .clock = {}, .pts = 5 }) +
                             videoPack(REST, { .clock = {}, .pts = 6 });
        const VobuRecord record = scanBytes(stream).vobus.at(0);
        EXPECT_EQ(record.pictureCount, 0u);
        EXPECT_EQ(record.firstPts, 6u);
    }
}

// ---- the rule at large -------------------------------------------------------------------------------------------

namespace {

// The rule as one sentence about the whole elementary stream: a start code at byte q is found with the first payload
// that ends behind q + 6, and counts for the unit of that payload's pack.
struct Reference {
    Bytes video;
    uint64_t next = 0;       // first byte not compared yet
    uint64_t previous = 0;   // sector of the video pack before
    VobuRecord record = {};
    uint64_t type = 0, stored = 0;

    void beginUnit(uint64_t sector)
    {
        record = {};
        record.sector = sector;
        type = stored = 0;
    }

    void addPayload(const Bytes& payload, uint64_t sector)
    {
        if (payload.empty()) return;
        const uint64_t begin = video.size();
        video += payload;
        for (; next + 6 < video.size(); next++) {
            const uint8_t* at = video.data() + next;
            if (at[0] != 0 || at[1] != 0 || at[2] != 1 || at[3] != 0) continue;
            record.pictureCount++;
            if ((type == 1 || type == 2) && stored < 3) {
                const bool before = next < begin || (next == begin && previous != 0);
                uint64_t* const ends[] = { &record.firstRefEnd, &record.secondRefEnd, &record.thirdRefEnd };
                *ends[stored++] = (before ? previous : sector) - record.sector;
            }
            type = (at[5] >> 3) & 7;
            if (record.pictureCount == 1) record.temporalRef = at[4] * 4u + (at[5] >> 6);
        }
        previous = sector;
    }
};

Bytes randomPayload(std::mt19937& random, uint64_t longest)
{
    static const uint8_t letters[] = { 0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x08, 0x0F, 0x57, 0xFF };
    Bytes payload(random() % (longest + 1));
    for (uint8_t& byte : payload) byte = letters[random() % std::size(letters)];
    return payload;
}

}   // namespace

TEST(MovieScanPictures, RandomPayloads)
{
    for (uint32_t seed = 1; seed <= 60; seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        Reference reference;
        Bytes stream;
        std::vector<VobuRecord> expected;
        const uint64_t longest = seed % 3 == 0 ? 2025 : seed % 3 == 1 ? 12 : 60;
        for (uint64_t unit = 0; unit < 12; unit++) {
            reference.beginUnit(stream.size() / PACK_BYTES);
            stream += navPack({ 1, 0 });
            for (uint64_t packs = random() % 30; packs > 0; packs--) {
                if (random() % 8 == 0) stream += privatePack(0x80);
                const Bytes payload = randomPayload(random, random() % 4 ? longest : 7);
                reference.addPayload(payload, stream.size() / PACK_BYTES);
                PesSpec pes = { .clock = {}, .stuffing = random() % 3 };
                if (random() % 4 == 0 && payload.size() < 2000) pes.pts = 1 + random() % 1000;
                if (payload.size() > pesCapacity(pes)) pes = {};
                stream += videoPack(payload, pes);
            }
            expected.push_back(reference.record);
        }
        const Scan scan = scanBytes(stream);
        ASSERT_EQ(scan.vobus.size(), expected.size());
        for (uint64_t i = 0; i < expected.size(); i++) {
            SCOPED_TRACE("unit " + std::to_string(i));
            const VobuRecord& found = scan.vobus[i];
            EXPECT_EQ(found.pictureCount, expected[i].pictureCount);
            EXPECT_EQ(found.temporalRef, expected[i].temporalRef);
            EXPECT_EQ(found.firstRefEnd, expected[i].firstRefEnd);
            EXPECT_EQ(found.secondRefEnd, expected[i].secondRefEnd);
            EXPECT_EQ(found.thirdRefEnd, expected[i].thirdRefEnd);
        }
    }
}
