// stream_watch.cpp: looks at the packs of a stream on their way into the library's scan.
#include "stream_watch.h"

#include "codes.h"

// What the library's scan holds: a unit of at most so many packs; units until its pointers, of two minutes, are known.
// One unit less than it can, so that a scan that is stopped can still be ended.
static constexpr uint64_t UNIT_SECTORS = 768, HELD_UNITS = 1023, HELD_TICKS = 120 * TICKS_A_SECOND;

static std::string atSector(uint64_t sector)
{
    return "at sector " + std::to_string(sector) + " ";
}

static FileFault unitLengthFault(const StreamWatch& watch)
{
    const uint64_t sectors = watch.sectors - watch.unitSector, told = uint64_t(watch.nav.lastSector) + 1;
    if (sectors == told) return {};
    return { 0, "the unit at sector " + std::to_string(watch.unitSector) + " should have " + sectorsText(told) +
                    " by its navigation pack, and has " + std::to_string(sectors) +
                    (sectors < told ? ": the stream is cut" : "") };
}

/** What the scan holds once the last unit has closed. */
static FileFault closeUnit(StreamWatch* watch)
{
    if (FileFault fault = unitLengthFault(*watch)) return fault;
    if (watch->held.size() == HELD_UNITS) {
        return { CODE_MUX_OVERFLOW, atSector(watch->sectors) + "the scan would have to hold more than " +
                                        std::to_string(HELD_UNITS) +
                                        " units, whose pointers lead up to two minutes ahead" };
    }
    watch->held.push_back({ watch->nav.start, watch->cell });
    const HeldUnit& oldest = watch->held.front();
    if (oldest.cell != watch->cell || watch->nav.start - oldest.start > HELD_TICKS)
        watch->held.erase(watch->held.begin());
    return {};
}

static FileFault cellFault(const StreamWatch& watch, uint64_t cell)
{
    if (cell > watch.cell + 1) {
        return { 0, "no unit begins in cell " + std::to_string(watch.cell + 1) + ", which is to begin at " +
                        timeText(startOf(watch.cells, watch.cell + 1)) + "; the unit at sector " +
                        std::to_string(watch.sectors) + " is in cell " + std::to_string(cell) +
                        " already. Cells consist of whole units, of about half a second" };
    }
    if (cell > MOST_CELLS) return { 0, atSector(watch.sectors) + "cell 256 would begin; a title has at most 255" };
    return {};
}

/** What a unit must not be behind the one in front of it. */
static FileFault orderFault(const StreamWatch& watch, const NavFields& nav, uint64_t cell)
{
    if (nav.start < watch.nav.start) {
        return { 0, atSector(watch.sectors) + "the stream's time falls from " + timeText(watch.nav.start) + " to " +
                        timeText(nav.start) + ": here begins another one. Scan each by itself" };
    }
    if (cell == watch.cell && elapsedDigits(nav) < elapsedDigits(watch.nav)) {
        return { 0, atSector(watch.sectors) + "the elapsed time begins anew, within a cell: the stream was divided in "
                                              "other places before. Multiplex it again" };
    }
    return {};
}

static FileFault takeNavPack(StreamWatch* watch, const uint8_t* pack)
{
    const NavFields nav = navFields(pack);
    if (isBlank(nav)) {
        return { 0,
                 atSector(watch->sectors) +
                     "a navigation pack is empty: the stream carries no navigation data, as those that ffmpeg makes. "
                     "`orven mux` makes one that does, of the video and the sounds" };
    }
    if (watch->units) {
        if (FileFault fault = closeUnit(watch)) return fault;
    }
    const uint64_t cell = cellOf(watch->cells, nav.start);
    if (FileFault fault = orderFault(*watch, nav, cell)) return fault;
    if (FileFault fault = cellFault(*watch, cell)) return fault;
    const uint64_t ticks = nav.end - nav.start;
    if (countsTwentyFive(nav) && ticks && ticks % NTSC_PICTURE_TICKS == 0 && ticks % PAL_PICTURE_TICKS != 0)
        watch->otherRate++;
    watch->units++;
    watch->unitSector = watch->sectors;
    watch->cell = cell;
    watch->nav = nav;
    return {};
}

FileFault watchPack(StreamWatch* watch, const uint8_t* pack)
{
    if (!isPack(pack)) return { CODE_NO_PACK, atSector(watch->sectors) + "no pack begins (00 00 01 BA)" };
    if (isNavPack(pack)) {
        if (FileFault fault = takeNavPack(watch, pack)) return fault;
    } else if (watch->units == 0) {
        return { 0, "its first pack is no navigation pack: the stream is not made for a DVD, or begins within a unit. "
                    "`orven mux` makes one of the video and the sounds" };
    } else if (watch->sectors - watch->unitSector == UNIT_SECTORS) {
        return { CODE_MUX_OVERFLOW,
                 "the unit at sector " + std::to_string(watch->unitSector) + " has more than 768 packs" };
    }
    watch->sectors++;
    return {};
}

FileFault watchEnd(const StreamWatch& watch)
{
    return unitLengthFault(watch);
}

FileFault lossFault(uint64_t sectorsIn, uint64_t sectorsOut)
{
    if (sectorsIn == sectorsOut) return {};
    return { 0, sectorsText(sectorsIn) + " went into the scan, and " + std::to_string(sectorsOut) + " came out of it" };
}

std::string missingCells(const StreamWatch& watch)
{
    if (watch.cells.interval || watch.cells.starts.size() <= watch.cell) return "";
    return "cell " + std::to_string(watch.cell + 1) + " is to begin at " +
           timeText(startOf(watch.cells, watch.cell + 1)) + ", but the last unit begins at " +
           timeText(watch.nav.start);
}

bool countsWrongRate(const StreamWatch& watch)
{
    return 2 * watch.otherRate > watch.units;
}
