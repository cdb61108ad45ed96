// scan_test.cpp: real streams of minutes pass through the second pass; what comes out is held against what went in, and
// against what can be counted out by looking at all units.
#include "tests/readers/scan_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t SECTOR = 2048;
constexpr uint32_t NOWHERE = 0x3FFFFFFF;

class Scan : public JourneyTest {};
INSTANTIATE_TEST_SUITE_P(Journeys, Scan, Scan::all(), Scan::name);

// ---- navigation ---------------------------------------------------------------------------------------------------

/** Time code of so many frames of 25 a second, as text: 01:02:03.24. */
std::string timeText(uint64_t frames)
{
    char text[32];
    const uint64_t seconds = frames / 25;
    snprintf(text, sizeof(text), "%02u:%02u:%02u.%02u", unsigned(seconds / 3600), unsigned(seconds / 60 % 60),
             unsigned(seconds % 60), unsigned(frames % 25));
    return text;
}

/** The same of a time code that is stored; one without the mark of 25 a second says so. */
std::string timeText(const dvd_time_t& time)
{
    char text[48];
    snprintf(text, sizeof(text), "%02x:%02x:%02x.%02x%s", time.hour, time.minute, time.second, time.frame_u & 0x3F,
             time.frame_u >> 6 == 1 ? "" : " of another rate");
    return text;
}

/** A table of pointers as the reader has it, which packs its records. */
Pointers table(const void* fields)
{
    Pointers pointers;
    memcpy(pointers.data(), fields, sizeof(pointers));
    return pointers;
}

std::string pointerText(const Pointers& pointers)
{
    std::string text;
    for (const uint32_t pointer : pointers) {
        text += (pointer == NOWHERE ? "-" : std::to_string(pointer ^ 0x80000000)) + " ";
    }
    return text;
}

void expectNav(const HeadPack& nav, const ExpectedNav& expected)
{
    const vobu_sri_t& search = nav.dsi.vobu_sri;
    EXPECT_EQ(nav.dsi.dsi_gi.vobu_c_idn, expected.cell);
    EXPECT_EQ(timeText(nav.pci.pci_gi.e_eltm), timeText(expected.elapsed));
    EXPECT_EQ(timeText(nav.dsi.dsi_gi.c_eltm), timeText(expected.elapsed));
    EXPECT_EQ(search.next_video, expected.nextVideo);
    EXPECT_EQ(search.next_vobu, expected.nextUnit);
    EXPECT_EQ(search.prev_vobu, expected.previousUnit);
    EXPECT_EQ(search.prev_video, expected.previousVideo);
    EXPECT_EQ(pointerText(table(&search.fwda)), pointerText(expected.forward));
    EXPECT_EQ(pointerText(table(&search.bwda)), pointerText(expected.backward));
}

TEST_P(Scan, NavigationIsAsCountedOut)
{
    const std::vector<HeadPack> navs = navsOf(it().scanned.program);
    const std::vector<ExpectedNav> expected = expectedNavs(it().units, it().rule);
    ASSERT_EQ(navs.size(), expected.size());
    size_t cell = 0;
    for (size_t i = 0; i < navs.size() && !HasFailure(); i++) {
        SCOPED_TRACE("unit " + std::to_string(i));
        EXPECT_EQ(navs[i].sector, it().units[i].sector);
        expectNav(navs[i], expected[i]);
        // The cells are those that the division was made for.
        if (cell < it().firsts.size() && it().firsts[cell] == i) cell++;
        EXPECT_EQ(expected[i].cell, cell);
    }
    EXPECT_EQ(cell, it().firsts.size());
}

// In a long cell pointers reach two minutes, and where short units come while long ones go, some of the units that a
// pointer should lead back to have gone.
TEST(ScanStream, UnitsLeaveWithinALongCell)
{
    const Journey& pal = journey(PAL, BY_LIST);
    uint64_t farForward = 0, farBackward = 0, cut = 0, left = 0;
    for (const ExpectedNav& nav : expectedNavs(pal.units, pal.rule)) {
        farForward += nav.forward[0] != NOWHERE;
        farBackward += nav.backward[18] != NOWHERE;
        cut += nav.cut;
        left = nav.left;
    }
    EXPECT_GT(farForward, 200u);
    EXPECT_GT(farBackward, 200u);
    EXPECT_GT(cut, 20u);
    EXPECT_GT(left, 300u);
}

// Units of 15 pictures, PAL, are 54000 ticks apart, which is more than half a second. Back from a unit, each other one
// takes the next pointer, however far it is; forward, each pointer leads to the first unit that is far enough.
TEST(ScanStream, PointersBackLeadFartherThanPointersForward)
{
    const std::vector<HeadPack> navs = navsOf(journey(PAL, BY_LIST).scanned.program);
    ASSERT_GT(navs.size(), 60u);
    const uint64_t here = navs[30].sector;
    const auto forward = [&](size_t units) { return 0x80000000 | uint32_t(navs[30 + units].sector - here); };
    const auto back = [&](size_t units) { return 0x80000000 | uint32_t(here - navs[30 - units].sector); };
    // Farther than 45000, 90000, ... 675000 and 900000 ticks. Five units are 270000, which is not farther than 270000.
    const size_t FORWARD[16] = { 1, 2, 3, 4, 5, 6, 6, 7, 8, 9, 10, 11, 11, 12, 13, 17 };
    const size_t BACK[16] = { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17 };
    const Pointers ahead = table(&navs[30].dsi.vobu_sri.fwda), behind = table(&navs[30].dsi.vobu_sri.bwda);
    for (size_t i = 0; i < 16; i++) {
        EXPECT_EQ(ahead[18 - i], forward(FORWARD[i])) << i;
        EXPECT_EQ(behind[i], back(BACK[i])) << i;
    }
    // It is 18 seconds in: the pointer of half a minute leads to the first unit of all, the next two lead nowhere.
    EXPECT_EQ(behind[16], back(30));
    EXPECT_EQ(behind[17], NOWHERE);
    EXPECT_EQ(behind[18], NOWHERE);
}

// ---- the rest of the stream ---------------------------------------------------------------------------------------

/** Makes the bytes that the pass may change those of another pack: both elapsed times, the cell, the pointers. */
void takeNavigation(uint8_t* pack, const uint8_t* from)
{
    struct Range {
        uint64_t at, bytes;
    };
    const Range RANGES[] = { { 69, 4 }, { 1058, 1 }, { 1059, 4 }, { 1265, 168 } };
    for (const Range& range : RANGES) memcpy(pack + range.at, from + range.at, range.bytes);
}

TEST_P(Scan, NothingElseChanges)
{
    const Bytes& before = it().stream->program;
    Bytes after = it().scanned.program;
    ASSERT_EQ(after.size(), before.size());
    EXPECT_FALSE(after == before);
    for (const ScanUnit& unit : it().units) {
        takeNavigation(after.data() + unit.sector * SECTOR, before.data() + unit.sector * SECTOR);
    }
    const auto difference = std::mismatch(after.begin(), after.end(), before.begin());
    EXPECT_TRUE(after == before) << "byte " << (difference.first - after.begin()) % 2048 << " of pack "
                                 << (difference.first - after.begin()) / 2048;
}

TEST_P(Scan, UnitsAreHandedOutWhole)
{
    const std::vector<uint64_t>& calls = it().scanned.calls;
    ASSERT_EQ(calls.size(), it().units.size());
    for (size_t i = 0; i < calls.size(); i++) EXPECT_EQ(calls[i], it().units[i].sectors * SECTOR) << i;
}

// A unit is linked when the navigation pack of the next one is complete, and at most one goes for each that is.
TEST_P(Scan, UnitsLeaveWhenTheirPointersAreKnown)
{
    const std::vector<ExpectedNav> expected = expectedNavs(it().units, it().rule);
    ASSERT_GT(it().scanned.steps.size(), 100u);
    size_t begun = 0;   // units whose navigation pack is complete
    for (const Scanned::Step& step : it().scanned.steps) {
        const uint64_t packs = step.fed / SECTOR;
        while (begun < it().units.size() && it().units[begun].sector < packs) begun++;
        ASSERT_EQ(step.calls, begun ? expected[begun - 1].left : 0) << "behind byte " << step.fed;
        // What has come is with the host, with the scan, or a part of a pack. One byte less is told.
        ASSERT_EQ(step.handedOut + step.held + 1, packs * SECTOR) << "behind byte " << step.fed;
    }
    EXPECT_EQ(begun, it().units.size());
}

TEST(ScanStream, PiecesDoNotMatter)
{
    for (const Division division : { BY_LIST, BY_INTERVAL }) {
        const Journey& odd = journey(PAL, division);
        const Scanned whole = scan(odd.stream->program, odd.rule, { odd.stream->program.size() });
        EXPECT_TRUE(whole.program == odd.scanned.program);
        EXPECT_TRUE(whole.calls == odd.scanned.calls);
        EXPECT_TRUE(bytesOf(whole.file) == bytesOf(odd.scanned.file));
    }
}

// ---- scan file ----------------------------------------------------------------------------------------------------

uint64_t little(const Bytes& bytes, uint64_t at, uint64_t width)
{
    uint64_t value = 0;
    for (uint64_t i = width; i-- > 0;) value = value << 8 | bytes.at(at + i);
    return value;
}

TEST_P(Scan, FileTellsThePacks)
{
    const Bytes file = bytesOf(it().scanned.file);
    const std::vector<HeadPack> navs = navsOf(it().scanned.program);
    ASSERT_EQ(file.size(), 8 + 96 * navs.size());
    EXPECT_EQ(little(file, 0, 4), 1u);
    EXPECT_EQ(little(file, 4, 4), it().stream->program.size() / SECTOR);
    for (size_t i = 0; i < navs.size() && !HasFailure(); i++) {
        SCOPED_TRACE("unit " + std::to_string(i));
        const pci_gi_t& pci = navs[i].pci.pci_gi;
        const dsi_gi_t& dsi = navs[i].dsi.dsi_gi;
        const uint64_t end = i + 1 < navs.size() ? navs[i + 1].sector : it().stream->program.size() / SECTOR;
        const uint64_t record[12] = {
            navs[i].sector, end - 1, 0, pci.vobu_s_ptm, (pci.vobu_e_ptm - pci.vobu_s_ptm) / 3600, 1, dsi.vobu_c_idn,
        };
        for (uint64_t field = 0; field < 12; field++) {
            EXPECT_EQ(little(file, 8 + 96 * i + 8 * field, 8), record[field]) << "field " << field;
        }
        EXPECT_EQ(dsi.vobu_ea, end - 1 - navs[i].sector);
        EXPECT_EQ(dsi.vobu_vob_idn, 1);
    }
}

// ---- the encoder --------------------------------------------------------------------------------------------------

std::string textOf(const fs::path& file)
{
    const Bytes bytes = bytesOf(file);
    return std::string(bytes.begin(), bytes.end());
}

/** What ffmpeg has to complain about, and how many pictures it has decoded. */
struct Decoded {
    std::string errors;
    uint64_t pictures;
};

Decoded decode(const fs::path& program)
{
    const fs::path errors = shelve({}), progress = shelve({});
    const std::string command = "timeout 120 " ORVEN_FFMPEG " -nostdin -v error -xerror -i " + program.string() +
                                " -map 0:v -map 0:a -f null -progress " + progress.string() + " - 2> " +
                                errors.string();
    const int result = std::system(command.c_str());
    const std::string told = textOf(progress);
    const size_t last = told.rfind("frame=");
    const uint64_t pictures = last == told.npos ? 0 : strtoull(told.c_str() + last + 6, nullptr, 10);
    return { textOf(errors) + (result ? "it has given up" : ""), pictures };
}

TEST_P(Scan, FfmpegDecodesEveryPicture)
{
    const Decoded decoded = decode(it().movie);
    EXPECT_EQ(decoded.errors, "");
    EXPECT_EQ(decoded.pictures, it().stream->pictures);
    const fs::path video = shelve({}), sound = shelve({});
    runEncoder("-i " + it().movie.string() + " -map 0:v -c copy -f mpeg2video " + video.string() +
               " -map 0:a -c copy -f ac3 " + sound.string());
    EXPECT_TRUE(bytesOf(video) == bytesOf(it().stream->video));
    EXPECT_TRUE(bytesOf(sound) == bytesOf(it().stream->sound));
}

// What the pass starts from: elapsed times count pictures, and the units follow each other without a gap. The
// multiplexer lets the last unit of all end a picture early.
TEST_P(Scan, MultiplexedUnitsCountTheirPictures)
{
    const uint64_t frame = standard() == PAL ? 3600 : 3003;
    uint64_t pictures = 0;
    for (const ScanUnit& unit : it().units) {
        EXPECT_EQ(unit.elapsed, pictures);
        EXPECT_EQ(unit.start, it().units[0].start + pictures * frame);
        EXPECT_EQ((unit.end - unit.start) % frame, 0u);
        pictures += (unit.end - unit.start) / frame;
    }
    EXPECT_EQ(pictures, it().stream->pictures - 1);
}

}   // namespace
