#include "tests/readers/search_model.h"

constexpr uint32_t NOWHERE = 0x3FFFFFFF, NO_VIDEO = 0xBFFFFFFF;

/** Seconds of the nineteen distances in ticks. */
static uint64_t distance(size_t i)
{
    const double seconds[19] = { 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 4.5, 5, 5.5, 6, 6.5, 7, 7.5, 10, 30, 60, 120 };
    return uint64_t(seconds[i] * 90000);
}

static uint64_t cellAt(uint64_t start, const CellRule& rule)
{
    if (rule.list.empty()) return start / rule.interval + 1;
    for (uint64_t cell = 1; cell < rule.list.size(); cell++) {
        if (start <= rule.list[cell]) return cell;
    }
    return rule.list.size();
}

/** From one unit to another, either way. */
static uint32_t leap(const ScanUnit& from, const ScanUnit& to)
{
    const uint64_t sectors = from.sector < to.sector ? to.sector - from.sector : from.sector - to.sector;
    return uint32_t(0x80000000 | sectors);
}

/** For each distance the first later unit of the cell that is farther away. */
static Pointers forwardFrom(size_t from, const std::vector<ScanUnit>& units, const std::vector<ExpectedNav>& navs)
{
    Pointers pointers;
    pointers.fill(NOWHERE);
    for (size_t i = 0; i < 19; i++) {
        for (size_t to = from + 1; to < units.size(); to++) {
            if (navs[to].cell != navs[from].cell || units[to].start - units[from].start <= distance(i)) continue;
            pointers[18 - i] = leap(units[from], units[to]);
            break;
        }
    }
    return pointers;
}

/** Back from one unit, nearest first, over the units of its cell that are still there: each is put into the slot at
   hand, and the slot is done with once the unit in it is farther away than its distance. So a unit never fills two
   slots, and where the units end the slot at hand keeps the last of them. */
static Pointers backwardFrom(size_t from, size_t oldest, const std::vector<ScanUnit>& units,
                             const std::vector<ExpectedNav>& navs)
{
    Pointers pointers;
    pointers.fill(NOWHERE);
    size_t slot = 0;
    for (size_t to = from; to-- > oldest && navs[to].cell == navs[from].cell && slot < 19;) {
        pointers[slot] = leap(units[from], units[to]);
        if (units[from].start - units[to].start > distance(slot)) slot++;
    }
    return pointers;
}

/** Whether a unit may leave once another one has been linked: no pointer of it can change any more. */
static bool mayLeave(size_t unit, size_t linked, const std::vector<ScanUnit>& units,
                     const std::vector<ExpectedNav>& navs)
{
    return navs[unit].cell != navs[linked].cell || units[linked].start - units[unit].start > distance(18);
}

std::vector<ExpectedNav> expectedNavs(const std::vector<ScanUnit>& units, const CellRule& rule)
{
    std::vector<ExpectedNav> navs(units.size());
    for (size_t i = 0; i < units.size(); i++) navs[i].cell = cellAt(units[i].start, rule);
    uint64_t cellStart = 0, left = 0;
    for (size_t i = 0; i < units.size(); i++) {
        ExpectedNav& nav = navs[i];
        const bool first = i == 0 || navs[i - 1].cell != nav.cell;
        const bool last = i + 1 == units.size() || navs[i + 1].cell != nav.cell;
        if (first) cellStart = units[i].elapsed;
        nav.elapsed = units[i].elapsed - cellStart;
        nav.nextUnit = last ? NOWHERE : leap(units[i], units[i + 1]);
        nav.nextVideo = last ? NO_VIDEO : nav.nextUnit;
        nav.previousUnit = first ? NOWHERE : leap(units[i], units[i - 1]);
        nav.previousVideo = first ? NO_VIDEO : nav.previousUnit;
        nav.forward = forwardFrom(i, units, navs);
        nav.backward = backwardFrom(i, left, units, navs);
        nav.cut = nav.backward != backwardFrom(i, 0, units, navs);
        nav.left = left;
        if (mayLeave(left, i, units, navs)) left++;   // one at most for each that comes
    }
    return navs;
}
