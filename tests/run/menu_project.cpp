#include "tests/run/menu_project.h"

#include "tests/video/table_bytes.h"

#include <algorithm>
#include <stdexcept>

namespace fs = std::filesystem;

// ---- assets -------------------------------------------------------------------------------------------------------

Bytes stillAsset(uint64_t bytes)
{
    Bytes asset = fromHex("00 00 01 B3 2D 02 40 33 00 00 00 00") + pictureHeader(0, 1);
    if (bytes < 100) throw std::length_error("a still of less than 100 bytes");
    asset.resize(bytes, FILLER);
    return asset;
}

static void put32(uint8_t* at, uint64_t value)
{
    for (int i = 0; i < 4; i++) at[i] = uint8_t(value >> (24 - 8 * i));
}

Movie animatedAsset(const MovieSpec& recipe)
{
    Movie movie = makeMovie(recipe);
    for (const VobuRecord& unit : movie.vobus) put32(movie.pack(unit.sector) + 1039, unit.lastSector - unit.sector);
    return movie;
}

Movie shortUnits(uint64_t count, int64_t standard)
{
    return animatedAsset({ .standard = standard, .vobus = vobus(count, { .pictureBytes = { 100 } }) });
}

ByteImage combImage(uint64_t height, const std::vector<Comb>& combs)
{
    ByteImage image(height);
    for (const Comb& comb : combs) {
        for (uint64_t x = 0; x < 2 * comb.pairs; x++) image.at(x, comb.line) = x % 2 ? 2 : 1;
    }
    return image;
}

static Bytes combField(uint64_t height, const std::vector<Comb>& combs, uint64_t field)
{
    Bytes bytes;
    for (uint64_t line = field; line < height; line += 2) {
        for (const Comb& comb : combs) {
            if (comb.line == line) bytes += Bytes(comb.pairs, 0x56);
        }
        bytes += fromHex("00 00");
    }
    return bytes;
}

static Bytes big16(uint64_t value)
{
    return { uint8_t(value >> 8), uint8_t(value) };
}

Bytes combUnit(uint64_t height, const std::vector<Comb>& combs)
{
    const Bytes top = combField(height, combs, 0), bottom = combField(height, combs, 1);
    const uint64_t control = 4 + top.size() + bottom.size();
    Bytes unit = big16((control + 24 + 1) / 2 * 2) + big16(control) + top + bottom;
    unit += fromHex("00 00") + big16(control) + fromHex("00 03 32 10 04 00 00");
    // Columns 0 to 719, lines 2 to 573 or 477; both fields begin two bytes behind their start.
    unit += fromHex(height == 576 ? "05 00 02 CF 00 22 3D" : "05 00 02 CF 00 21 DD");
    unit += fromHex("06 00 06") + big16(4 + top.size() + 2) + fromHex("FF");
    if (unit.size() % 2) unit.push_back(0xFF);
    return unit;
}

std::vector<Comb> combsFor(uint64_t moreBytes)
{
    std::vector<Comb> combs;
    for (uint64_t line = 10; moreBytes > 0; line += 3) {
        combs.push_back({ line, std::min<uint64_t>(moreBytes, 350) });
        moreBytes -= combs.back().pairs;
    }
    return combs;
}

// ---- projects -----------------------------------------------------------------------------------------------------

std::u16string assetPath(const DiscRun& run, const std::string& section, const std::string& ending)
{
    return run.folder / toWide(section + ending);
}

std::string menuSection(const DiscRun& run, const std::string& section, const MenuSpec& menu)
{
    std::string text = "[" + section + "]\n";
    const auto add = [&](const char* key, const std::string& ending, const Bytes& bytes) {
        const std::u16string path = assetPath(run, section, ending);
        writeFile(path, bytes);
        text += key + ("=" + toUtf8(path)) + "\n";
    };
    add("background", ".mpg", menu.background);
    add("subpicture", ".bmp", menu.subPicture);
    if (menu.letterbox) add("spuletterbox", "_l.bmp", *menu.letterbox);
    if (menu.subPicture32) add("subpicture32", "_32.bmp", *menu.subPicture32);
    if (menu.letterbox32) add("spuletterbox32", "_l32.bmp", *menu.letterbox32);
    return text + menu.keys;
}

static std::string menuSections(const DiscRun& run, const std::string& stem, const std::vector<MenuSpec>& menus)
{
    std::string text;
    for (uint64_t i = 0; i < menus.size(); i++) text += menuSection(run, stem + std::to_string(i + 1), menus[i]);
    return text;
}

std::string menuProject(const DiscRun& run, const MenuDisc& disc)
{
    run.put("VTS_01_1.VOB", smallMovie({ 5, 5, 5, 5 }, disc.mode == "PAL" ? 1 : 2).bytes);
    return "[COMMON]\nversion=1.0\nmode=" + disc.mode +
           "\n[VMG]\ntitlesets=1\nmenus=" + std::to_string(disc.manager.size()) + "\n[VMG_MENU]\n" + disc.managerKeys +
           menuSections(run, "VMG_MENU", disc.manager) + "[VTS_1]\nsource=" + run.text("VTS_01_1.VOB") +
           "\nmenus=" + std::to_string(disc.titleSet.size()) + "\n[VTS_1_MENU]\n" + disc.titleSetKeys +
           menuSections(run, "VTS_1_MENU", disc.titleSet);
}

std::string buttonKeys(uint64_t count)
{
    std::string text = "buttons=" + std::to_string(count) + "\n";
    for (uint64_t i = 0; i < count; i++) {
        const uint64_t x = 16 + i % 12 * 56, y = 40 + i / 12 * 100;
        const uint64_t before = (i + count - 1) % count + 1, behind = (i + 1) % count + 1;
        text += "button" + std::to_string(i + 1) + "=";
        for (const uint64_t number : { x, x + 48, y, y + 60, before, behind, before, behind, i % 3 + 1 }) {
            text += std::to_string(number) + ",";
        }
        text += "BTN_ACTION_JUMP_TT(1,0,0)\n";
    }
    return text;
}

MenuDisc discOf(const MenuDomain& domain, const std::vector<MenuSpec>& menus, const std::string& mode)
{
    MenuDisc disc = { .mode = mode };
    (domain.manager ? disc.manager : disc.titleSet) = menus;
    return disc;
}

// ---- packs --------------------------------------------------------------------------------------------------------

PackClock menuClock(uint64_t sector)
{
    const double seconds = double(sector) / (25200.0 * 50.0 / 2048.0);
    return { uint64_t(seconds * 90000.0), uint64_t(seconds * 27000000.0) % 300 };
}

Bytes menuPack(uint64_t sector, const std::string& pesHeader, uint8_t subStreamId, const Bytes& payload)
{
    Bytes pack = packHeader(menuClock(sector)) + fromHex(pesHeader);
    const uint64_t subHeader = subStreamId ? 1 : 0;
    const uint64_t left = PACK_BYTES - pack.size() - subHeader - payload.size();
    if (left < 8) {
        pack[22] = uint8_t(pack[22] + left);   // stuffing of the header
        pack += Bytes(left, 0xFF);
    } else {
        pack[18] = uint8_t((2028 - left) >> 8);
        pack[19] = uint8_t(2028 - left);
    }
    if (subStreamId) pack.push_back(subStreamId);
    pack += payload;
    if (left >= 8) pack += fromHex("00 00 01 BE") + big16(left - 6) + Bytes(left - 6, 0xFF);
    return pack;
}

Bytes spuPacks(const Bytes& unit, uint8_t subStreamId, uint64_t& sector, const std::string& firstHeader)
{
    // Without a time stamp a first pack holds as much as a later one.
    const uint64_t first = firstHeader == LATER_SPU ? LATER_SPU_BYTES : FIRST_SPU_BYTES;
    Bytes packs = menuPack(2, firstHeader, subStreamId, slice(unit, 0, first));
    for (uint64_t at = first; at < unit.size(); at += LATER_SPU_BYTES) {
        packs += menuPack(sector++, LATER_SPU, subStreamId, slice(unit, at, LATER_SPU_BYTES));
    }
    return packs;
}

Bytes laterVideoPacks(const Bytes& video, uint64_t sector)
{
    Bytes packs;
    for (uint64_t at = FIRST_VIDEO_BYTES; at < video.size(); at += LATER_VIDEO_BYTES) {
        packs += menuPack(sector++, LATER_VIDEO, 0, slice(video, at, LATER_VIDEO_BYTES));
    }
    return packs;
}

static uint64_t clockOfPack(const Bytes& pack)
{
    const uint64_t bits = numberAt(pack, 4, 6);
    return (bits >> 43 & 7) << 30 | (bits >> 27 & 0x7FFF) << 15 | (bits >> 11 & 0x7FFF);
}

Bytes shiftedPack(const Bytes& pack, uint64_t ticks)
{
    const uint64_t extension = numberAt(pack, 4, 6) >> 1 & 0x1FF;
    return packHeader({ clockOfPack(pack) + ticks, extension }) + slice(pack, 14, PACK_BYTES - 14);
}
