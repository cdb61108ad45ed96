// scan_rig.h: real streams that pass through the second pass, and the navigation packs on either side of it.
#pragma once

#include "tests/readers/mux_rig.h"
#include "tests/readers/search_model.h"

#include <dvdread/nav_types.h>
#include <gtest/gtest.h>

#include <tuple>

// A small stream of several minutes, its groups of pictures long and short by turns, multiplexed with its sound.
struct LongStream {
    std::filesystem::path video, sound;
    std::filesystem::path movie;   // both, multiplexed
    Bytes program;                 // its bytes
    uint64_t pictures;
};

/** PAL of five minutes or NTSC of 75 seconds, made once for all tests of the program. */
const LongStream& longStream(Standard standard);

struct HeadPack {
    uint64_t sector;
    pci_t pci;
    dsi_t dsi;
};

/** All navigation packs, as a reader of discs takes them apart. */
std::vector<HeadPack> navsOf(const Bytes& program);

/** The same, as the units that they head. */
std::vector<ScanUnit> unitsOf(const Bytes& program);

// A stream that has passed.
struct Scanned {
    Bytes program;
    std::filesystem::path file;    // the scan file
    std::vector<uint64_t> calls;   // bytes that were handed out at a time

    // Where things stood behind each piece.
    struct Step {
        uint64_t fed, handedOut, calls;
        uint64_t held;   // as the scan tells it
    };
    std::vector<Step> steps;
};

/** Hands a stream through in pieces of these sizes, again and again. Fails the running test on any result but 0. */
Scanned scan(const Bytes& program, const CellRule& rule, const std::vector<uint64_t>& pieces);

// A stream, how it is divided, and what came out.
struct Journey {
    const LongStream* stream;
    CellRule rule;
    std::vector<ScanUnit> units;   // before the pass
    std::vector<size_t> firsts;    // of the cells, among the units
    Scanned scanned;               // in odd pieces
    std::filesystem::path movie;   // what came out

    /** Unit behind the last one of a cell. */
    size_t behind(size_t cell) const
    {
        return cell + 1 < firsts.size() ? firsts[cell + 1] : units.size();
    }
};

enum Division { BY_LIST, BY_INTERVAL };

/** Made once for all tests of the program. By list there are four cells, the third of one unit; by interval three or
    four. */
const Journey& journey(Standard standard, Division division);

// A test that goes over all journeys.
struct JourneyTest : testing::TestWithParam<std::tuple<Standard, Division>> {
    static Standard standard()
    {
        return std::get<0>(GetParam());
    }
    static Division division()
    {
        return std::get<1>(GetParam());
    }
    static const Journey& it()
    {
        return journey(standard(), division());
    }
    static std::string name(const testing::TestParamInfo<ParamType>& info)
    {
        const std::string standardName = std::get<0>(info.param) == PAL ? "Pal" : "Ntsc";
        return standardName + (std::get<1>(info.param) == BY_LIST ? "ByList" : "ByInterval");
    }
    static auto all()
    {
        return testing::Combine(testing::Values(PAL, NTSC), testing::Values(BY_LIST, BY_INTERVAL));
    }
};
