#include "tests/mux/animated_rig.h"

MenuDesc menuWith(uint64_t loopMode, uint64_t loopValue)
{
    MenuDesc menu = {};
    menu.loopMode = loopMode;
    menu.loopValue = loopValue;
    return menu;
}

MuxRun animatedMenu(const MenuDesc& menu, const MuxAssets& assets)
{
    return runDriver(assets, [&](const MuxFiles& files) {
        return orvMuxAnimatedMenu(&menu, files.output, files.video, files.subPicture);
    });
}

MuxRun animatedMenuPair(const MenuDesc& menu, const MuxAssets& assets)
{
    return runDriver(assets, [&](const MuxFiles& files) {
        return orvMuxAnimatedMenuPair(&menu, files.output, files.video, files.subPicture, files.letterbox);
    });
}

static void put32(Bytes& pack, uint64_t at, uint64_t value)
{
    for (uint64_t i = 0; i < 4; i++) pack[at + i] = uint8_t(value >> (24 - 8 * i));
}

Bytes unitPacks(const UnitSpec& unit, uint32_t seed)
{
    const PackClock clock = unit.clock.value_or(PackClock{ unit.scr + 7, 11 });
    Bytes nav = dirtyNavPack(clock, uint8_t(seed));
    put32(nav, 1031, unit.scr);
    put32(nav, 1039, unit.end.value_or(unit.packs));
    for (uint64_t i = 0; i < unit.packs; i++) {
        const PesSpec pes = { .clock = { clock.scr + 100 * (i + 1), (37 * i + seed) % 300 },
                              .pts = i == 0 ? unit.pts : std::nullopt };
        nav += videoPack(assetBytes(pesCapacity(pes), seed + uint32_t(i)), pes);
    }
    return nav;
}

Bytes animation(const std::vector<UnitSpec>& units)
{
    Bytes bytes;
    for (const UnitSpec& unit : units) bytes += unitPacks(unit, uint32_t(100 * bytes.size() / PACK_BYTES + 5));
    return bytes;
}

Bytes packsOf(const Bytes& bytes, uint64_t first, uint64_t count)
{
    return part(bytes, first * PACK_BYTES, count * PACK_BYTES);
}

const std::vector<UnitSpec> FOUR_UNITS = {
    { .scr = 0, .packs = 2, .pts = 30000 },
    { .scr = 9000, .packs = 0 },
    { .scr = 18000, .packs = 4, .pts = 48000 },
    { .scr = 27000, .packs = 1, .pts = 57000 },
};

const Bytes SUB = assetBytes(20000, 2), LETTERBOX = assetBytes(20000, 3);

Bytes fullPack(uint64_t pts)
{
    return packOf(pts == 30000 ? PACK_2 SUB_30000 "20" : PACK_2 SUB_48000 "20", part(SUB, 0, 2016));
}

MuxAssets withVideo(const Bytes& video, uint64_t subPicture)
{
    return { .video = video, .subPicture = part(SUB, 0, subPicture) };
}
