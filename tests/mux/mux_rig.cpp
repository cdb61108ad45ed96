#include "tests/mux/mux_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

// ---- files ------------------------------------------------------------------------------------------------------

OpenFile::OpenFile(const TempDir& folder, std::u16string_view name, const Bytes& content, uint64_t mode)
    : path(folder / name)
{
    writeFile(path, content);
    EXPECT_EQ(osOpenFile(path.c_str(), mode, &file), 0u);
}

OpenFile::~OpenFile()
{
    EXPECT_EQ(osCloseFile(&file), 0u);
}

std::string MuxRun::hexAt(uint64_t sector, uint64_t at, uint64_t count) const
{
    const uint64_t from = sector * PACK_BYTES + at;
    return from + count <= output.size() ? toHex(output.data() + from, count) : "";
}

MuxRun runDriver(const MuxAssets& assets, const std::function<uint64_t(const MuxFiles&)>& driver)
{
    const TempDir folder;
    MuxRun run = {};
    {
        const OpenFile output(folder, u"menu.vob", assets.before, assets.outputMode);
        std::optional<OpenFile> video, subPicture, letterbox;
        if (assets.video) video.emplace(folder, u"video", *assets.video, assets.videoMode);
        if (assets.subPicture) subPicture.emplace(folder, u"sub", *assets.subPicture, assets.subPictureMode);
        if (assets.letterbox) letterbox.emplace(folder, u"letterbox", *assets.letterbox, assets.letterboxMode);
        const auto fileOf = [](const std::optional<OpenFile>& open) { return open ? open->file : 0; };
        run.result = driver({ output.file, fileOf(video), fileOf(subPicture), fileOf(letterbox) });
    }
    run.output = readFile(folder / u"menu.vob");
    EXPECT_TRUE(!assets.video || readFile(folder / u"video") == *assets.video);
    EXPECT_TRUE(!assets.subPicture || readFile(folder / u"sub") == *assets.subPicture);
    EXPECT_TRUE(!assets.letterbox || readFile(folder / u"letterbox") == *assets.letterbox);
    return run;
}

// ---- bytes ------------------------------------------------------------------------------------------------------

Bytes assetBytes(uint64_t count, uint32_t seed)
{
    Bytes bytes;
    bytes.reserve(count);
    uint32_t state = seed * 2654435761u + 1;
    for (uint64_t i = 0; i < count; i++) {
        state = state * 1664525u + 1013904223u;
        bytes.push_back(uint8_t(state >> 24));
    }
    return bytes;
}

Bytes part(const Bytes& bytes, uint64_t from, uint64_t count)
{
    const uint64_t start = std::min<uint64_t>(from, bytes.size());
    const uint64_t end = start + std::min<uint64_t>(count, bytes.size() - start);
    return Bytes(bytes.begin() + std::ptrdiff_t(start), bytes.begin() + std::ptrdiff_t(end));
}

Bytes packOf(std::string_view head, const Bytes& payload, std::string_view tail)
{
    Bytes pack = fromHex(head) + payload + fromHex(tail);
    if (!tail.empty() && pack.size() < PACK_BYTES) pack.resize(PACK_BYTES, 0xFF);
    if (pack.size() != PACK_BYTES) throw std::length_error("a pack of " + std::to_string(pack.size()) + " bytes");
    return pack;
}

std::string differences(const Bytes& got, const Bytes& expected)
{
    constexpr uint64_t SHOWN = 8;
    std::string text;
    if (got.size() != expected.size()) {
        text += std::to_string(got.size()) + " bytes, should be " + std::to_string(expected.size()) + "\n";
    }
    uint64_t shown = 0;
    for (uint64_t i = 0; i < std::min(got.size(), expected.size()) && shown < SHOWN; i++) {
        if (got[i] == expected[i]) continue;
        text += "sector " + std::to_string(i / PACK_BYTES) + " at " + std::to_string(i % PACK_BYTES) + " is " +
                toHex(&got[i], 1) + ", should be " + toHex(&expected[i], 1) + "\n";
        shown++;
    }
    return text;
}

// ---- packs told a second time -----------------------------------------------------------------------------------

namespace {

// 0010 or 0011 or 0001, then 33 bits in groups of 3, 15 and 15 with a marker behind each; bit 32 is 0.
Bytes stamp(uint64_t lead, uint64_t ticks)
{
    const uint64_t low = ticks & 0xFFFFFFFF;
    const uint64_t groups[] = { low >> 30, (low >> 15) & 0x7FFF, low & 0x7FFF };
    const uint64_t bits =
        lead << 36 | groups[0] << 33 | uint64_t(1) << 32 | groups[1] << 17 | uint64_t(1) << 16 | groups[2] << 1 | 1;
    Bytes bytes;
    for (int shift = 32; shift >= 0; shift -= 8) bytes.push_back(uint8_t(bits >> shift));
    return bytes;
}

Bytes word(uint64_t value)
{
    return { uint8_t(value >> 8), uint8_t(value) };
}

Bytes optionalFields(const PacksSpec& recipe)
{
    if (recipe.dts) return stamp(3, recipe.pts) + stamp(1, recipe.dts) + fromHex("1E 60 E8");
    if (recipe.pts) return stamp(2, recipe.pts) + fromHex("1E 60 3A");
    return {};
}

}   // namespace

uint64_t referenceRoom(const PacksSpec& recipe)
{
    return PACK_BYTES - 14 - 9 - optionalFields(recipe).size() - (recipe.subStreamId ? 1 : 0);
}

Bytes referencePack(uint64_t sector, const PacksSpec& recipe, const Bytes& payload)
{
    uint64_t spare = referenceRoom(recipe) - payload.size();
    Bytes fields = optionalFields(recipe);
    const uint8_t flags = recipe.dts ? 0xC1 : recipe.pts ? 0x81 : 0x00;
    if (spare < 8) {
        fields += Bytes(spare, 0xFF);
        spare = 0;
    }
    Bytes packet = Bytes{ 0x81, flags, uint8_t(fields.size()) } + fields;
    if (recipe.subStreamId) packet.push_back(*recipe.subStreamId);
    packet += payload;
    // A sector is 1024/7 ticks of 90 kHz long, or 307200/7 of 27 MHz.
    Bytes pack = packHeader({ sector * 1024 / 7, sector * 307200 / 7 % 300 });
    pack += Bytes{ 0, 0, 1, recipe.streamId } + word(packet.size()) + packet;
    if (spare) pack += fromHex("00 00 01 BE") + word(spare - 6) + Bytes(spare - 6, 0xFF);
    return pack;
}

Bytes referencePacks(const PacksSpec& recipe, const Bytes& stream, const std::function<uint64_t(uint64_t)>& sectorOf)
{
    Bytes packs;
    PacksSpec next = recipe;
    uint64_t done = 0;
    for (uint64_t i = 0; i == 0 || done < stream.size(); i++) {
        const uint64_t room = referenceRoom(next);
        packs += referencePack(sectorOf(i), next, part(stream, done, room));
        done += room;
        next.pts = next.dts = 0;
    }
    return packs;
}

Bytes referenceSubPicture(const Bytes& stream, uint8_t subStreamId, uint64_t pts, uint64_t* sector)
{
    return referencePacks({ .streamId = 0xBD, .subStreamId = subStreamId, .pts = pts }, stream,
                          [&](uint64_t i) { return i == 0 ? 2 : (*sector)++; });
}

Bytes shiftedPacks(const Bytes& packs, uint64_t ticks)
{
    Bytes result;
    for (uint64_t at = 0; at + PACK_BYTES <= packs.size(); at += PACK_BYTES) {
        Bytes pack = part(packs, at, PACK_BYTES);
        uint64_t bits = 0;
        for (uint64_t i = 4; i < 10; i++) bits = bits << 8 | pack[i];
        // 01, SCR 32..30, 1, SCR 29..15, 1, SCR 14..0, 1, extension, 1
        const uint64_t scr = (bits >> 43 & 3) << 30 | (bits >> 27 & 0x7FFF) << 15 | (bits >> 11 & 0x7FFF);
        const Bytes clock = packHeader({ (scr + ticks) & 0xFFFFFFFF, bits >> 1 & 0x1FF });
        std::copy_n(clock.begin() + 4, 6, pack.begin() + 4);
        result += pack;
    }
    return result;
}
