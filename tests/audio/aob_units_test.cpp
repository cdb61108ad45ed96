// The order of bytes in units of samples, for each assignment and size, and what is dropped.
#include "audio/aob_packs.h"
#include "audio/sample_codes.h"
#include "audio/sample_units.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// A byte of the samples below tells where it is from: its first digit is the channel, its second digit of the first
// time 0 (low), 1 and, with 24 bits, 2; of the second time 4, 5, 6; of the third 8, 9, A; of the fourth C, D, E.
std::vector<Bytes> toldSamples(uint64_t bits, uint64_t times)
{
    std::vector<Bytes> channels(6);
    for (uint64_t channel = 0; channel < channels.size(); channel++) {
        for (uint64_t time = 0; time < times; time++) {
            for (uint64_t byte = 0; byte < bits / 8; byte++)
                channels[channel].push_back(uint8_t(channel << 4 | time << 2 | byte));
        }
    }
    return channels;
}

constexpr uint8_t UNTOUCHED = 0xEE;

// What is written into `room` bytes; the bytes behind have to stay.
Bytes packed(uint64_t assign, uint64_t bits, uint64_t samples, uint64_t room, uint64_t channelCount = 6)
{
    const std::vector<Bytes> channels = toldSamples(bits, samples);
    std::vector<const uint8_t*> places;
    for (uint64_t channel = 0; channel < channelCount; channel++) places.push_back(channels[channel].data());
    Bytes to(room + 64, UNTOUCHED);
    const uint64_t written = orvPackSamples(assign, bits, places.data(), samples, to.data(), room);
    EXPECT_LE(written, room);
    EXPECT_EQ(Bytes(to.begin() + int64_t(written), to.end()), Bytes(to.size() - written, UNTOUCHED));
    to.resize(written);
    return to;
}

struct UnitCase {
    uint64_t assign, channels, bits, times;
    const char* unit;
    const char* next;   // the unit behind it
};

// clang-format off
const UnitCase UNITS[] = {
    {  1, 2, 16, 1, "01 00 11 10", "05 04 15 14" },
    {  1, 2, 24, 2, "02 01 12 11 06 05 16 15 00 10 04 14", "0A 09 1A 19 0E 0D 1E 1D 08 18 0C 1C" },
    {  3, 4, 16, 2, "21 20 31 30 25 24 35 34 01 00 11 10 05 04 15 14",
                    "29 28 39 38 2D 2C 3D 3C 09 08 19 18 0D 0C 1D 1C" },
    {  3, 4, 24, 2, "22 21 32 31 26 25 36 35 20 30 24 34 02 01 12 11 06 05 16 15 00 10 04 14",
                    "2A 29 3A 39 2E 2D 3E 3D 28 38 2C 3C 0A 09 1A 19 0E 0D 1E 1D 08 18 0C 1C" },
    { 19, 5, 16, 2, "41 40 45 44 01 00 11 10 21 20 31 30 05 04 15 14 25 24 35 34",
                    "49 48 4D 4C 09 08 19 18 29 28 39 38 0D 0C 1D 1C 2D 2C 3D 3C" },
    { 19, 5, 24, 2, "42 41 46 45 40 44 02 01 12 11 22 21 32 31 06 05 16 15 26 25 36 35 00 10 20 30 04 14 24 34",
                    "4A 49 4E 4D 48 4C 0A 09 1A 19 2A 29 3A 39 0E 0D 1E 1D 2E 2D 3E 3D 08 18 28 38 0C 1C 2C 3C" },
    { 20, 6, 16, 2, "41 40 51 50 45 44 55 54 01 00 11 10 21 20 31 30 05 04 15 14 25 24 35 34",
                    "49 48 59 58 4D 4C 5D 5C 09 08 19 18 29 28 39 38 0D 0C 1D 1C 2D 2C 3D 3C" },
    { 20, 6, 24, 2, "42 41 52 51 46 45 56 55 40 50 44 54 "
                    "02 01 12 11 22 21 32 31 06 05 16 15 26 25 36 35 00 10 20 30 04 14 24 34",
                    "4A 49 5A 59 4E 4D 5E 5D 48 58 4C 5C "
                    "0A 09 1A 19 2A 29 3A 39 0E 0D 1E 1D 2E 2D 3E 3D 08 18 28 38 0C 1C 2C 3C" },
};
// clang-format on

}   // namespace

TEST(AobUnits, BytesOfEachLayout)
{
    for (const UnitCase& each : UNITS) {
        SCOPED_TRACE(testing::Message() << each.assign << ", " << each.bits << " bits");
        EXPECT_EQ(toHex(packed(each.assign, each.bits, each.times, 2000, each.channels)), each.unit);
        EXPECT_EQ(toHex(packed(each.assign, each.bits, 2 * each.times, 2000, each.channels)),
                  std::string(each.unit) + ' ' + each.next);
    }
}

TEST(AobUnits, OddLastSampleIsDropped)
{
    for (const UnitCase& each : UNITS) {
        if (each.times == 1) continue;   // one time makes a unit
        SCOPED_TRACE(testing::Message() << each.assign << ", " << each.bits << " bits");
        EXPECT_EQ(toHex(packed(each.assign, each.bits, 1, 2000, each.channels)), "");
        EXPECT_EQ(toHex(packed(each.assign, each.bits, 3, 2000, each.channels)), each.unit);
    }
    EXPECT_EQ(toHex(packed(1, 16, 3, 2000)), "01 00 11 10 05 04 15 14 09 08 19 18");
}

TEST(AobUnits, NoUnitLeavesTheRoom)
{
    for (const UnitCase& each : UNITS) {
        SCOPED_TRACE(testing::Message() << each.assign << ", " << each.bits << " bits");
        const Bytes unit = fromHex(each.unit);
        EXPECT_EQ(packed(each.assign, each.bits, 2 * each.times, 2 * unit.size() - 1), unit);
        EXPECT_EQ(packed(each.assign, each.bits, 2 * each.times, unit.size()), unit);
        EXPECT_EQ(packed(each.assign, each.bits, 2 * each.times, unit.size() - 1), Bytes());
        EXPECT_EQ(packed(each.assign, each.bits, 2 * each.times, 0), Bytes());
        EXPECT_EQ(packed(each.assign, each.bits, 0, 2000), Bytes());
    }
}

TEST(AobUnits, OthersAreNotKnown)
{
    for (uint64_t assign = 0; assign <= 40; assign++) {
        for (const uint64_t bits : { 16u, 20u, 24u }) {
            const bool known = bits != 20 && (assign == 1 || assign == 3 || assign == 19 || assign == 20);
            EXPECT_EQ(packed(assign, bits, 4, 2000).empty(), !known) << assign << ", " << bits << " bits";
            EXPECT_EQ(orvUnitLayout(assign, bits) != nullptr, known) << assign << ", " << bits << " bits";
        }
    }
}

TEST(AobUnits, CodesOfSizes)
{
    EXPECT_EQ(orvSampleSizeCode(16), 0);
    EXPECT_EQ(orvSampleSizeCode(20), 1);
    EXPECT_EQ(orvSampleSizeCode(24), 2);
    for (const uint64_t bits : { 0u, 1u, 8u, 15u, 17u, 19u, 21u, 32u }) EXPECT_EQ(orvSampleSizeCode(bits), 15) << bits;
}

TEST(AobUnits, CodesOfRates)
{
    static const struct {
        uint64_t rate;
        uint8_t code;
        uint64_t frame;
    } RATES[] = {
        { 48000, 0, 40 }, { 96000, 1, 80 },    { 192000, 2, 160 }, { 44100, 8, 40 },
        { 88200, 9, 80 }, { 176400, 10, 160 }, { 0, 15, 0 },       { 22050, 15, 0 },
        { 32000, 15, 0 }, { 47999, 15, 0 },    { 384000, 15, 0 },
    };
    for (const auto& each : RATES) {
        EXPECT_EQ(orvSampleRateCode(each.rate), each.code) << each.rate;
        EXPECT_EQ(orvFrameSamples(each.rate), each.frame) << each.rate;
    }
    EXPECT_EQ(orvGroupCodes(2, 15), 0x2F);
    EXPECT_EQ(orvGroupCodes(10, 10), 0xAA);
}
