// The host of the multiplexer that tests use.
#include "tests/mux/mux_host.h"

#include <gtest/gtest.h>

#include <algorithm>

static uint64_t collect(uint64_t user, const uint8_t* sectors, uint64_t bytes)
{
    MuxHost* host = reinterpret_cast<MuxHost*>(user);
    host->calls.emplace_back(sectors, sectors + bytes);
    return host->onWrite ? host->onWrite(host->calls.back()) : 0;
}

MuxHost::MuxHost()
{
    EXPECT_EQ(InitMuxer(&handle, collect, reinterpret_cast<uint64_t>(this)), 0u);
}

MuxHost::~MuxHost()
{
    if (!handle) return;
    // Empty streams end at once, whatever failed before.
    onWrite = nullptr;
    for (MuxStream* stream = handle->owned; stream; stream = stream->nextOwned) stream->ring->fill = 0;
    EXPECT_EQ(ExitMuxer(handle), 0u);
}

MuxStream* MuxHost::add(uint64_t flags)
{
    MuxStream* stream = nullptr;
    EXPECT_EQ(AddStream(handle, 0, flags, &stream), 0u);
    return stream;
}

// A copy has memory of exactly its size, so that a read behind it shows.
uint64_t MuxHost::feed(MuxStream* stream, const Bytes& given, uint64_t flags)
{
    const Bytes chunk = given;
    used = 0xEEEEEEEE;
    return MuxData(handle, stream, chunk.data(), chunk.size(), &used, flags);
}

uint64_t MuxHost::feedAt(MuxStream* stream, const Bytes& given, uint64_t time, uint64_t flags)
{
    const Bytes chunk = given;
    return MuxDataEx(handle, stream, chunk.data(), chunk.size(), flags, time);
}

uint64_t MuxHost::feedSequence(MuxStream* stream, const Bytes& given)
{
    const Bytes chunk = given;
    used = 0xEEEEEEEE;
    return MuxVideoSeq(handle, stream, chunk.data(), chunk.size(), &used);
}

uint64_t MuxHost::exit()
{
    const uint64_t result = ExitMuxer(handle);
    if (result == 0) handle = nullptr;
    return result;
}

Bytes MuxHost::output() const
{
    Bytes all;
    for (const Bytes& call : calls) all.insert(all.end(), call.begin(), call.end());
    return all;
}

uint64_t MuxHost::sectors() const
{
    return output().size() / 2048;
}

Bytes MuxHost::pack(uint64_t sector) const
{
    const Bytes all = output();
    if ((sector + 1) * 2048 > all.size()) return {};
    return Bytes(all.begin() + std::ptrdiff_t(sector * 2048), all.begin() + std::ptrdiff_t(sector * 2048 + 2048));
}

std::string MuxHost::hexAt(uint64_t sector, uint64_t at, uint64_t count) const
{
    const Bytes one = pack(sector);
    if (at + count > one.size()) return "";
    return toHex(one.data() + at, count);
}

uint64_t numberAt(const Bytes& pack, uint64_t at, uint64_t bytes)
{
    uint64_t value = 0;
    for (uint64_t i = 0; i < bytes; ++i) value = value << 8 | (at + i < pack.size() ? pack[at + i] : 0);
    return value;
}

uint64_t scrOf(const Bytes& pack)
{
    const uint64_t bits = numberAt(pack, 4, 6);
    return (bits >> 43 & 7) << 30 | (bits >> 27 & 0x7FFF) << 15 | (bits >> 11 & 0x7FFF);
}

uint64_t scrExtensionOf(const Bytes& pack)
{
    return numberAt(pack, 4, 6) >> 1 & 0x1FF;
}

static uint64_t stampAt(const Bytes& pack, uint64_t at)
{
    const uint64_t bits = numberAt(pack, at, 5);
    return (bits >> 33 & 7) << 30 | (bits >> 17 & 0x7FFF) << 15 | (bits >> 1 & 0x7FFF);
}

uint64_t ptsOf(const Bytes& pack)
{
    return stampAt(pack, 23);
}

uint64_t dtsOf(const Bytes& pack)
{
    return stampAt(pack, 28);
}

bool isNavPack(const Bytes& pack)
{
    return numberAt(pack, 14, 4) == 0x1BB;
}

Bytes payloadOf(const Bytes& pack)
{
    const uint64_t id = numberAt(pack, 17, 1), end = 20 + numberAt(pack, 18, 2);
    uint64_t from = 23 + numberAt(pack, 22, 1);
    if (id == 0xBD) from += numberAt(pack, from, 1) >= 0xA0 ? 7u : 4u;
    return Bytes(pack.begin() + std::ptrdiff_t(from),
                 pack.begin() + std::ptrdiff_t(std::min<uint64_t>(end, pack.size())));
}

void feedUnits(MuxHost& host, MuxStream* stream, const VideoStream& video)
{
    for (const Bytes& unit : video.units()) ASSERT_EQ(host.feed(stream, unit), 0u);
}

std::string packLetters(const MuxHost& host)
{
    std::string letters;
    for (uint64_t i = 0; i < host.sectors(); ++i) {
        const Bytes pack = host.pack(i);
        const uint64_t id = pack[17];
        const uint64_t audio = id == 0xBD ? pack[23u + pack[22]] : id;
        letters += isNavPack(pack) ? 'N' : id == 0xE0 ? 'v' : char('0' + (audio & 7));
    }
    return letters;
}
