// The movie scan: units, VOBs, cells, the packs of the other streams, progress. Pictures and files have tests of their
// own beside this one.
#include "base/result.h"
#include "base/time_code.h"
#include "tests/video/nav_support.h"

#include <gtest/gtest.h>

typedef std::vector<std::string> Lines;

namespace {

// A navigation pack, and a video pack with one whole I picture behind a PTS.
Bytes unitWithPicture(uint64_t scr, uint64_t pts, uint64_t temporalRef = 0)
{
    return navPack({ scr, 0 }) + videoPack(picture(500, temporalRef, 1), { .clock = {}, .pts = pts });
}

// Cells of units with these clocks under these chapters.
std::vector<uint64_t> cellsOf(const std::vector<uint64_t>& clocks, const std::vector<int64_t>& chapters,
                              uint64_t titleSetNumber)
{
    const auto titleSet = std::make_unique<TitleSetDesc>();
    titleSet->chapterCount = chapters.size();
    for (uint64_t i = 0; i < chapters.size(); i++) titleSet->chapters[i].startFrame = chapters[i];
    Bytes stream;
    for (const uint64_t scr : clocks) stream += navPack({ scr, 0 });
    const Scan scan = scanBytes(stream, { .titleSet = titleSet.get(), .titleSetNumber = titleSetNumber });
    EXPECT_EQ(scan.result, 0u);
    std::vector<uint64_t> cells;
    for (const VobuRecord& record : scan.vobus) cells.push_back(record.cellId);
    return cells;
}

std::vector<uint64_t> vobsOf(const std::vector<PackClock>& clocks)
{
    Bytes stream;
    for (const PackClock& clock : clocks) stream += navPack(clock);
    std::vector<uint64_t> vobIds;
    for (const VobuRecord& record : scanBytes(stream).vobus) vobIds.push_back(record.vobId);
    return vobIds;
}

}   // namespace

TEST(MovieScan, TwoUnits)
{
    Bytes stream = navPack({ 0, 0 });                                                              // 0
    stream += videoPack(picture(900, 2, 1), { .clock = {}, .pts = 36000 });                        // 1
    stream += privatePack(0x81, { .clock = {}, .pts = 28800 });                                    // 2
    stream += videoPack(picture(700, 0, 3) + picture(700, 1, 3), { .clock = {}, .pts = 28800 });   // 3
    stream += navPack({ 43200, 0 });                                                               // 4
    stream += videoPack(picture(800, 1, 1));                                                       // 5
    stream += videoPack(Bytes(300, FILLER) + picture(300, 0, 3), { .clock = {}, .pts = 75600 });   // 6
    stream += privatePack(0x22);                                                                   // 7
    const Scan scan = scanBytes(stream);
    EXPECT_EQ(scan.result, 0u);
    EXPECT_EQ(describeAll(scan.vobus), (Lines{ "0-3 scr 0 pts 36000 n 3 vob 1 cell 1 refs 1 0 0 tref 2",
                                               "4-7 scr 43200 pts 75600 n 2 vob 1 cell 1 refs 2 0 0 tref 1" }));
    EXPECT_EQ(describeAll(scan.packs), (Lines{ "sector 2 pts 28800 kind 10 index 1 vobu 0 vob 1",
                                               "sector 7 pts 0 kind 20 index 2 vobu 4 vob 1" }));
}

TEST(MovieScan, FindsWhatWasMade)
{
    const struct {
        const char* what;
        MovieSpec movie;
    } rows[] = {
        { "PAL", { .vobus = vobus(20), .streams = { ac3Stream() } } },
        { "NTSC", { .standard = STANDARD_NTSC, .vobus = vobus(20, { .pictures = 15 }), .streams = { lpcmStream(3) } } },
        { "several VOBs", { .vobus = vobus(3) + vobus(4, { .newVob = true }) + vobus(2) } },
        { "stills",
          { .vobus = vobus(5, { .pictures = 1, .packsPerPicture = 40, .newVob = true }),
            .streams = { subPictureStream(0), subPictureStream(1) } } },
        { "pictures end to end",
          { .vobus = vobus(9, { .pictures = 18, .pictureBytes = { 9000, 700, 2025, 13, 5000 } }),
            .streams = { mpegAudioStream(7), dtsStream(1), sddsStream(2) } } },
        { "padding everywhere", { .vobus = vobus(4, { .fillerPacks = 2, .padding = 3 }), .leadingPadding = 0 } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const Movie movie = makeMovie(row.movie);
        const Scan scan = scanBytes(movie.bytes, { .standard = row.movie.standard });
        EXPECT_EQ(scan.result, 0u);
        EXPECT_EQ(describeAll(scan.vobus), describeAll(movie.vobus));
        EXPECT_EQ(describeAll(scan.packs), describeAll(movie.packs));
    }
}

TEST(MovieScan, StreamPackListIsOptional)
{
    const Movie movie = makeMovie({ .vobus = vobus(4), .streams = { ac3Stream() } });
    const Scan scan = scanBytes(movie.bytes, { .wantPacks = false });
    EXPECT_EQ(scan.result, 0u);
    EXPECT_EQ(describeAll(scan.vobus), describeAll(movie.vobus));
}

TEST(MovieScan, FirstPtsIsThatOfTheFirstPackThatHasOne)
{
    const auto firstPts = [](const Bytes& packs) { return scanBytes(navPack({ 0, 0 }) + packs).vobus.at(0).firstPts; };
    const auto video = [](std::optional<uint64_t> pts) {
        return videoPack(Bytes(100, FILLER), { .clock = {}, .pts = pts });
    };
    EXPECT_EQ(firstPts(video(5000) + video(6000)), 5000u);
    EXPECT_EQ(firstPts(video({}) + video({}) + video(6000) + video(7000)), 6000u);
    EXPECT_EQ(firstPts(video(0) + video(6000)), 6000u);   // 0 does not count
    EXPECT_EQ(firstPts(video({})), 0u);
    EXPECT_EQ(firstPts(video(0x80000000)), 0xFFFFFFFF80000000u);
    EXPECT_EQ(firstPts(privatePack(0x80, { .clock = {}, .pts = 4000 }) + video(6000)), 6000u);   // of video alone
    // A packet without a payload has its PTS all the same.
    EXPECT_EQ(firstPts(videoPack({}, { .clock = {}, .pts = 4000 }) + video(6000)), 4000u);
}

TEST(MovieScan, ClockIsSignExtended)
{
    const Scan scan =
        scanBytes(navPack({ 0x7FFFFFFF, 7 }) + navPack({ 0x80000000, 299 }) + navPack({ 0x1FFFFFFFF, 0 }));
    EXPECT_EQ(scan.vobus.at(0).scr, 0x7FFFFFFFu);
    EXPECT_EQ(scan.vobus.at(1).scr, 0xFFFFFFFF80000000u);
    EXPECT_EQ(scan.vobus.at(2).scr, 0xFFFFFFFFFFFFFFFFu);
}

TEST(MovieScan, NavigationPackIsToldByThreeBytes)
{
    Bytes nav(PACK_BYTES, 0xFF);
    for (uint64_t at = 4; at < 10; at++) nav[at] = packHeader({ 0, 0 })[at];
    nav[16] = 0x01;
    nav[17] = 0xBB;
    nav[40] = 0x01;
    EXPECT_EQ(scanBytes(nav + nav).vobus.size(), 2u);
    for (const uint64_t at : { 16u, 17u, 40u }) {
        SCOPED_TRACE(at);
        Bytes other = nav;
        other[at] = 0x00;
        EXPECT_EQ(describeAll(scanBytes(nav + other + nav).vobus),
                  (Lines{ "0-1 scr 0 pts 0 n 0 vob 1 cell 1 refs 0 0 0 tref 0",
                          "2-2 scr 0 pts 0 n 0 vob 2 cell 1 refs 0 0 0 tref 0" }));
    }
}

// ---- units without pictures, and packs outside units -------------------------------------------------------------

TEST(MovieScan, UnitWithoutPicturesIsMeasuredByTheClock)
{
    const auto middle = [](int64_t standard, uint64_t distance) {
        const Bytes stream = unitWithPicture(10000, 36000) + navPack({ 10000 + distance, 0 }) +
                             unitWithPicture(10000 + 2 * distance, 90000);
        const std::vector<VobuRecord> found = scanBytes(stream, { .standard = standard }).vobus;
        return describe(found.at(1));
    };
    EXPECT_EQ(middle(STANDARD_PAL, 43200), "2-2 scr 53200 pts 79200 n 12 vob 0 cell 1 refs 0 0 0 tref 0");
    EXPECT_EQ(middle(STANDARD_PAL, 43199), "2-2 scr 53199 pts 79199 n 11 vob 0 cell 1 refs 0 0 0 tref 0");
    EXPECT_EQ(middle(STANDARD_PAL, 3599), "2-2 scr 13599 pts 39599 n 0 vob 0 cell 1 refs 0 0 0 tref 0");
    EXPECT_EQ(middle(STANDARD_NTSC, 36036), "2-2 scr 46036 pts 72036 n 12 vob 0 cell 1 refs 0 0 0 tref 0");
    EXPECT_EQ(middle(STANDARD_NTSC, 36035), "2-2 scr 46035 pts 72035 n 11 vob 0 cell 1 refs 0 0 0 tref 0");
    EXPECT_EQ(middle(0, 36036), "2-2 scr 46036 pts 72036 n 12 vob 0 cell 1 refs 0 0 0 tref 0");   // no standard: 3003
}

TEST(MovieScan, UnitsWithoutPicturesFollowOneAnother)
{
    // The own PTS of such a unit does not count, and the next one measures from the one before it.
    const Bytes stream = unitWithPicture(0, 36000) + navPack({ 43200, 0 }) +
                         videoPack(Bytes(50, FILLER), { .clock = {}, .pts = 12345 }) + navPack({ 100800, 0 }) +
                         navPack({ 108000, 0 }) + unitWithPicture(120000, 151200);
    EXPECT_EQ(describeAll(scanBytes(stream).vobus),
              (Lines{ "0-1 scr 0 pts 36000 n 1 vob 1 cell 1 refs 0 0 0 tref 0",
                      "2-3 scr 43200 pts 79200 n 12 vob 1 cell 1 refs 0 0 0 tref 0",
                      "4-4 scr 100800 pts 136800 n 16 vob 1 cell 1 refs 0 0 0 tref 0",
                      "5-5 scr 108000 pts 144000 n 2 vob 1 cell 1 refs 0 0 0 tref 0",
                      "6-7 scr 120000 pts 151200 n 1 vob 1 cell 1 refs 0 0 0 tref 0" }));
}

TEST(MovieScan, FirstAndLastUnitWithoutPicturesStayAsTheyAre)
{
    const Bytes noPicture = navPack({ 43200, 0 }) + videoPack(Bytes(50, FILLER), { .clock = {}, .pts = 12345 });
    EXPECT_EQ(describeAll(scanBytes(noPicture + unitWithPicture(86400, 90000) + noPicture).vobus),
              (Lines{ "0-1 scr 43200 pts 12345 n 0 vob 0 cell 1 refs 0 0 0 tref 0",
                      "2-3 scr 86400 pts 90000 n 1 vob 0 cell 1 refs 0 0 0 tref 0",
                      "4-5 scr 43200 pts 12345 n 0 vob 0 cell 1 refs 0 0 0 tref 0" }));
}

TEST(MovieScan, UnitWithoutPicturesWhoseClockFellBack)
{
    // The distance is unsigned: (2^64 - 43200) / 3600 pictures, and the time goes back by 43200.
    const Bytes stream = unitWithPicture(43200, 79200) + navPack({ 0, 0 }) + unitWithPicture(43200, 79200);
    EXPECT_EQ(describe(scanBytes(stream).vobus.at(1)),
              "2-2 scr 0 pts 36000 n 5124095576030419 vob 1 cell 1 refs 0 0 0 tref 0");
}

TEST(MovieScan, PacksBeforeTheFirstNavigationPackMakeALeadingRecord)
{
    const Bytes leading =
        paddingPack() + privatePack(0x80, { .clock = {}, .pts = 900 }) + privatePack(0x20) + paddingPack();
    const Scan scan = scanBytes(leading + unitWithPicture(0, 36000));
    EXPECT_EQ(describeAll(scan.vobus), (Lines{ "0-3 scr 0 pts 0 n 0 vob 0 cell 0 refs 0 0 0 tref 0",
                                               "4-5 scr 0 pts 36000 n 1 vob 1 cell 1 refs 0 0 0 tref 0" }));
    EXPECT_EQ(describeAll(scan.packs), (Lines{ "sector 1 pts 900 kind 10 index 0 vobu 0 vob 0",
                                               "sector 2 pts 0 kind 20 index 0 vobu 0 vob 0" }));
}

TEST(MovieScan, NoNavigationPackAtAll)
{
    const Scan scan = scanBytes(paddingPack() + privatePack(0x80) + paddingPack());
    EXPECT_EQ(scan.result, 0u);
    EXPECT_EQ(describeAll(scan.vobus), (Lines{ "0-2 scr 0 pts 0 n 0 vob 0 cell 0 refs 0 0 0 tref 0" }));
    EXPECT_EQ(scan.packs.size(), 1u);
}

// ---- VOBs and cells ----------------------------------------------------------------------------------------------

TEST(MovieScan, ClockZeroBeginsAVob)
{
    typedef std::vector<uint64_t> Vobs;
    EXPECT_EQ(vobsOf({ { 0, 0 }, { 1, 0 }, { 2, 0 } }), (Vobs{ 1, 1, 1 }));
    EXPECT_EQ(vobsOf({ { 0, 0 }, { 100, 0 }, { 0, 0 }, { 100, 0 }, { 0, 0 } }), (Vobs{ 1, 1, 2, 2, 3 }));
    EXPECT_EQ(vobsOf({ { 5, 0 }, { 6, 0 }, { 0, 0 } }), (Vobs{ 0, 0, 1 }));
    EXPECT_EQ(vobsOf({ { 0, 0 }, { 0, 0 } }), (Vobs{ 1, 2 }));
    EXPECT_EQ(vobsOf({ { 0, 150 }, { 0, 299 } }), (Vobs{ 1, 2 }));         // the base alone counts
    EXPECT_EQ(vobsOf({ { 0, 0 }, { 0x100000000, 0 } }), (Vobs{ 1, 2 }));   // bit 32 does not
}

TEST(MovieScan, ChaptersMakeCells)
{
    typedef std::vector<uint64_t> Cells;
    const std::vector<uint64_t> clocks = { 0, 1000, 2000, 3000, 4000, 5000 };
    EXPECT_EQ(cellsOf(clocks, {}, 1), (Cells{ 1, 1, 1, 1, 1, 1 }));
    EXPECT_EQ(cellsOf(clocks, { 2000 }, 1), (Cells{ 1, 1, 1, 1, 1, 1 }));   // the first chapter is not looked at
    EXPECT_EQ(cellsOf(clocks, { 9000, 2000 }, 1), (Cells{ 1, 1, 2, 2, 2, 2 }));
    EXPECT_EQ(cellsOf(clocks, { 0, 2001 }, 1), (Cells{ 1, 1, 1, 2, 2, 2 }));
    EXPECT_EQ(cellsOf(clocks, { 0, 1999 }, 1), (Cells{ 1, 1, 2, 2, 2, 2 }));
    EXPECT_EQ(cellsOf(clocks, { 0, 2000, 4000 }, 1), (Cells{ 1, 1, 2, 2, 3, 3 }));
    EXPECT_EQ(cellsOf(clocks, { 0, 2100, 2200, 2300, 9000 }, 99), (Cells{ 1, 1, 1, 2, 3, 4 }));   // a step a unit
    EXPECT_EQ(cellsOf(clocks, { 0, 0, 0, 5000 }, 1), (Cells{ 2, 3, 3, 3, 3, 4 }));
    EXPECT_EQ(cellsOf(clocks, { 0, 4000, 2000 }, 1), (Cells{ 1, 1, 1, 1, 2, 3 }));   // one mark after the other
    EXPECT_EQ(cellsOf(clocks, { 0, 9000 }, 1), (Cells{ 1, 1, 1, 1, 1, 1 }));
    EXPECT_EQ(cellsOf(clocks, { 0, 2000 }, 0), (Cells{ 1, 1, 1, 1, 1, 1 }));   // title set number 0
}

TEST(MovieScan, ChapterComparisonIsUnsigned)
{
    typedef std::vector<uint64_t> Cells;
    EXPECT_EQ(cellsOf({ 0, 1000, 0x80000000 }, { 0, 0x7FFFFFFFFFFFFFFF }, 1), (Cells{ 1, 1, 2 }));
    EXPECT_EQ(cellsOf({ 0, 1000, 0xFFFFFFFE, 0xFFFFFFFF }, { 0, -1 }, 1), (Cells{ 1, 1, 1, 2 }));
}

TEST(MovieScan, CellsGoOnOverVobs)
{
    typedef std::vector<uint64_t> Cells;
    EXPECT_EQ(cellsOf({ 0, 1000, 0, 1000, 2000 }, { 0, 1000, 1000, 2000 }, 1), (Cells{ 1, 2, 2, 3, 4 }));
}

// ---- packs of other streams --------------------------------------------------------------------------------------

TEST(MovieScan, KindsByEveryEdgeOfTheIds)
{
    const struct {
        uint8_t streamId, subStreamId;
        uint64_t kind, index;
    } rows[] = {
        { 0xC0, 0, PACK_MPEG_AUDIO, 0 },     { 0xC7, 0, PACK_MPEG_AUDIO, 7 }, { 0xC8, 0, PACK_UNKNOWN, 0 },
        { 0xBD, 0x80, PACK_AC3, 0 },         { 0xBD, 0x87, PACK_AC3, 7 },     { 0xBD, 0x88, PACK_DTS, 0 },
        { 0xBD, 0x8F, PACK_DTS, 7 },         { 0xBD, 0x90, PACK_SDDS, 0 },    { 0xBD, 0x97, PACK_SDDS, 7 },
        { 0xBD, 0x98, PACK_UNKNOWN, 0 },     { 0xBD, 0x9F, PACK_UNKNOWN, 0 }, { 0xBD, 0xA0, PACK_LPCM, 0 },
        { 0xBD, 0xA7, PACK_LPCM, 7 },        { 0xBD, 0xA8, PACK_UNKNOWN, 0 }, { 0xBD, 0xFF, PACK_UNKNOWN, 0 },
        { 0xBD, 0x00, PACK_UNKNOWN, 0 },     { 0xBD, 0x1F, PACK_UNKNOWN, 0 }, { 0xBD, 0x20, PACK_SUBPICTURE, 0 },
        { 0xBD, 0x3F, PACK_SUBPICTURE, 31 }, { 0xBD, 0x40, PACK_UNKNOWN, 0 }, { 0xBD, 0x7F, PACK_UNKNOWN, 0 },
        { 0xC3, 0x81, PACK_MPEG_AUDIO, 3 },  { 0xBD, 0xC0, PACK_UNKNOWN, 0 },
    };
    for (const bool withPts : { false, true }) {
        Bytes stream = navPack({ 0, 0 }) + paddingPack() + navPack({ 500, 0 });
        Lines expected;
        uint64_t sector = 3;
        for (const auto& row : rows) {
            PesSpec pes = { .clock = {}, .stuffing = row.index };   // the sub-stream id moves with the header
            if (withPts) pes.pts = 1000 + sector;
            stream += streamPack(row.streamId, row.subStreamId, pes);
            expected.push_back("sector " + std::to_string(sector) + " pts " +
                               std::to_string(withPts ? 1000 + sector : 0) + " kind " + std::to_string(row.kind) +
                               " index " + std::to_string(row.index) + " vobu " +
                               (row.kind == PACK_SUBPICTURE ? "2" : "0") + " vob 1");
            sector++;
        }
        EXPECT_EQ(describeAll(scanBytes(stream).packs), expected);
    }
}

TEST(MovieScan, OtherIdsAreNoStreamPacks)
{
    Bytes stream = navPack({ 0, 0 });
    for (const int id :
         { 0x00, 0xB9, 0xBA, 0xBB, 0xBC, 0xBE, 0xBF, 0xC9, 0xCF, 0xD0, 0xDF, 0xE0, 0xE1, 0xEF, 0xF0, 0xFF }) {
        stream += pesPack(uint8_t(id), Bytes(100, 0));   // at 40 no 01, so that 0xBB makes no unit
    }
    Bytes noStartCode = streamPack(0xC0, 0);
    noStartCode[16] = 0x02;
    const Scan scan = scanBytes(stream + noStartCode);
    EXPECT_EQ(scan.result, 0u);
    EXPECT_EQ(scan.vobus.size(), 1u);
    EXPECT_EQ(describeAll(scan.packs), Lines());
}

TEST(MovieScan, Bytes14And15AreNotLookedAt)
{
    Bytes nav = navPack({ 0, 0 }), audio = privatePack(0x80), video = videoPack(picture(100, 0, 1));
    for (Bytes* pack : { &nav, &audio, &video }) (*pack)[14] = (*pack)[15] = 0xAB;
    const Scan scan = scanBytes(nav + audio + video);
    EXPECT_EQ(describeAll(scan.vobus), (Lines{ "0-2 scr 0 pts 0 n 1 vob 1 cell 1 refs 0 0 0 tref 0" }));
    EXPECT_EQ(scan.packs.size(), 1u);
}

TEST(MovieScan, StreamPackPtsIsSignExtended)
{
    const Scan scan = scanBytes(privatePack(0x80, { .clock = {}, .pts = 0x1FFFFFFFF }) +
                                streamPack(0xC0, 0, { .clock = {}, .pts = 0x80000001 }));
    EXPECT_EQ(scan.packs.at(0).pts, 0xFFFFFFFFFFFFFFFFu);
    EXPECT_EQ(scan.packs.at(1).pts, 0xFFFFFFFF80000001u);
}

TEST(MovieScan, SubStreamIdBehindTheLongestHeader)
{
    // 255 bytes of header data put the sub-stream id at 278; a header length that lies moves it as well.
    Bytes pack = privatePack(0x80, { .clock = {}, .stuffing = 255 });
    ASSERT_EQ(pack[278], 0x80);
    Bytes lying = privatePack(0x80, { .clock = {}, .lyingHeader = uint8_t(255) });
    lying[278] = 0x21;
    const Scan scan = scanBytes(pack + lying);
    EXPECT_EQ(describeAll(scan.packs),
              (Lines{ "sector 0 pts 0 kind 10 index 0 vobu 0 vob 0", "sector 1 pts 0 kind 20 index 1 vobu 0 vob 0" }));
}

// ---- progress ----------------------------------------------------------------------------------------------------

namespace {

struct ProgressScan {
    uint64_t result;
    uint64_t records;
    ProgressLog log;
};

ProgressScan scanWithProgress(const Bytes& stream, uint64_t cancelAt, bool noProgress)
{
    const TempDir folder;
    const RunRoot run(STANDARD_PAL, folder / u"run.log");
    Sources sources;
    writeSources(sources, folder, stream);
    List<VobuRecord> list;
    ProgressLog log = { .cancelAt = cancelAt };
    const uint64_t result = orvGetMovieInfo(&run.context->head, nullptr, sources.slots, 0, &list.block, nullptr,
                                            recordProgress, log.user(), noProgress);
    EXPECT_EQ(log.run, log.calls.empty() ? nullptr : &run.context->head);
    EXPECT_FALSE(fileExists(run.logPath));
    return { result, osListCount(list.block), log };
}

}   // namespace

TEST(MovieScan, ProgressAtEachNavigationPack)
{
    // Three units, at 2, 4 and 6, of eight packs and a bit.
    const Bytes stream = paddingPack() + paddingPack() + unitWithPicture(0, 1) + unitWithPicture(1, 1) +
                         unitWithPicture(2, 1) + Bytes(100, 0);
    typedef std::vector<std::pair<uint64_t, uint64_t>> Calls;
    const ProgressScan all = scanWithProgress(stream, 0, false);
    EXPECT_EQ(all.result, 0u);
    EXPECT_EQ(all.log.calls, (Calls{ { 8, 2 }, { 8, 4 }, { 8, 6 } }));
    EXPECT_EQ(all.records, 4u);

    const ProgressScan none = scanWithProgress(stream, 1, true);
    EXPECT_EQ(none.result, 0u);
    EXPECT_EQ(none.log.calls, Calls());
    EXPECT_EQ(none.records, 4u);
}

TEST(MovieScan, CancelAtTheNthCall)
{
    const Bytes stream = unitWithPicture(0, 1) + unitWithPicture(1, 1) + unitWithPicture(2, 1) + unitWithPicture(3, 1);
    // The call comes before the record of the unit before is closed.
    const uint64_t records[] = { 0, 0, 0, 1, 2 };
    for (uint64_t n = 1; n <= 4; n++) {
        SCOPED_TRACE(n);
        const ProgressScan scan = scanWithProgress(stream, n, false);
        EXPECT_EQ(scan.result, ORV_CANCELED);
        EXPECT_EQ(scan.result, 0x8400040Au);
        EXPECT_EQ(scan.log.calls.size(), n);
        EXPECT_EQ(scan.records, records[n]);
    }
}
