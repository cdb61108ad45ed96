// animated_rig.h: animations made of units, and the animated menu drivers run over them.
#pragma once

#include "mux/asset_drivers.h"
#include "tests/mux/mux_rig.h"

#include <cstdint>
#include <optional>
#include <vector>

MenuDesc menuWith(uint64_t loopMode, uint64_t loopValue);
MuxRun animatedMenu(const MenuDesc& menu, const MuxAssets& assets);
MuxRun animatedMenuPair(const MenuDesc& menu, const MuxAssets& assets);

// A unit of a finished program stream: a navigation pack full of junk, then packs of video.
struct UnitSpec {
    uint64_t scr = 0;                      // NV_PCK_SCR, by which the loop point is found
    uint64_t packs = 2;                    // behind the navigation pack
    std::optional<uint64_t> end = {};      // VOBU_EA; by default the number of packs
    std::optional<uint64_t> pts = 30000;   // of the first of them
    std::optional<PackClock> clock = {};   // of the navigation pack's header; by default some other than scr
};

Bytes unitPacks(const UnitSpec& unit, uint32_t seed);
Bytes animation(const std::vector<UnitSpec>& units);
// Units of 3, 1, 5 and 2 packs at 0, 9000, 18000 and 27000: sectors 0, 3, 4 and 9 of 11. Those with video show it from
// 30000, 48000 and 57000 on.
extern const std::vector<UnitSpec> FOUR_UNITS;

/** Packs from a sector on, fewer at the end. */
Bytes packsOf(const Bytes& bytes, uint64_t first, uint64_t count = uint64_t(1) << 40);

// What sub-pictures are cut from.
extern const Bytes SUB, LETTERBOX;
/** This animation, and so many bytes of SUB: by default one full pack. */
MuxAssets withVideo(const Bytes& video, uint64_t subPicture = 2016);
/** That pack, at sector 2, shown from 30000 or 48000 on. */
Bytes fullPack(uint64_t pts);

#define PACK_2 "00 00 01 BA 44 00 04 09 25 57 01 89 C3 F8 "
#define PACK_3 "00 00 01 BA 44 00 04 0D B6 03 01 89 C3 F8 "
#define PACK_4 "00 00 01 BA 44 00 04 12 4C 55 01 89 C3 F8 "
#define PACK_5 "00 00 01 BA 44 00 04 16 DD 01 01 89 C3 F8 "
#define SUB_30000 "00 00 01 BD 07 EC 81 81 08 21 00 01 EA 61 1E 60 3A "   // the id follows
#define SUB_48000 "00 00 01 BD 07 EC 81 81 08 21 00 03 77 01 1E 60 3A "
#define SUB_NEXT "00 00 01 BD 07 EC 81 00 00 "
