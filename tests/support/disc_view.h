// disc_view.h: what the parts of the disc reader share: a structure under check, and a VOB as its navigation packs
// divide it.
#pragma once

#include "tests/support/disc_reader.h"

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

typedef std::vector<uint8_t> Octets;

inline constexpr uint64_t SECTOR = 2048;

// A structure under check: its bytes, the name that faults begin with, and where they go.
struct View {
    const Octets* bytes;
    std::string name;
    DiscReport* report;

    template <class... Text> void fault(const Text&... text) const
    {
        std::ostringstream line;
        line << name << ": ";
        (line << ... << text);
        report->faults.push_back(line.str());
    }
    uint64_t get(uint64_t at, uint64_t width) const
    {
        if (at > bytes->size() || bytes->size() - at < width) {
            fault("reaches behind its end at ", at);
            return 0;
        }
        uint64_t value = 0;
        for (uint64_t i = 0; i < width; i++) value = value << 8 | (*bytes)[at + i];
        return value;
    }
    void expect(uint64_t at, uint64_t width, uint64_t value, const char* what) const
    {
        const uint64_t found = get(at, width);
        if (found != value) fault(what, " at ", at, " is ", found, ", should be ", value);
    }
    bool allZero(uint64_t from, uint64_t to) const
    {
        for (uint64_t at = from; at < to; at++) {
            if (get(at, 1)) return false;
        }
        return true;
    }
};

struct Nav {
    uint64_t sector, vob, cell, start, end;   // display times, ticks
};

// A domain's VOB: all its files end to end.
struct Vob {
    Octets bytes;
    std::vector<Nav> navs;
    uint64_t sectors = 0;
    bool isMenu = false;

    uint64_t behind(uint64_t i) const   // the sector behind the unit of a navigation pack
    {
        return i + 1 < navs.size() ? navs[i + 1].sector : sectors;
    }
};

struct Cell {
    uint64_t vob, cell, first, last;
    bool operator==(const Cell&) const = default;
};

/** Runs of one VOB and cell number among the navigation packs. */
std::vector<Cell> cellsOf(const Vob& vob);
/** SCR base of the pack header at an offset, low 32 bits. */
uint64_t packClock(const View& view, uint64_t at);
