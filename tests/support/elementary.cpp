// Elementary streams from records, by the published formats, for tests of the multiplexer.
#include "tests/support/elementary.h"

#include <algorithm>
#include <stdexcept>

namespace {

void append(Bytes& to, const Bytes& from)
{
    to.insert(to.end(), from.begin(), from.end());
}

uint64_t codingType(char type)
{
    switch (type) {
    case 'I': return 1;
    case 'P': return 2;
    case 'B': return 3;
    case 'D': return 4;
    case '0': return 0;
    default: throw std::invalid_argument("type of picture");
    }
}

void putLittle(Bytes& to, uint64_t value, uint64_t bytes)
{
    for (uint64_t i = 0; i < bytes; ++i) to.push_back(uint8_t(value >> (8 * i)));
}

void putText(Bytes& to, std::string_view text)
{
    for (const char letter : text) to.push_back(uint8_t(letter));
}

void putFormat(Bytes& to, const WaveSpec& wave)
{
    const uint64_t block = wave.channels * wave.bits / 8;
    putLittle(to, wave.tag, 2);
    putLittle(to, wave.channels, 2);
    putLittle(to, wave.rate, 4);
    putLittle(to, wave.rate * block, 4);
    putLittle(to, block, 2);
    putLittle(to, wave.bits, 2);
}

}   // namespace

Bytes filler(uint64_t count, uint32_t seed)
{
    Bytes bytes(count);
    uint32_t state = seed * 2654435761u + 12345;
    for (uint8_t& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = uint8_t(0x80 + (state >> 16) % 0x60);
    }
    return bytes;
}

// ---- video ------------------------------------------------------------------------------------------------------

Bytes sequenceHeader(uint64_t rateCode, uint64_t width, uint64_t height)
{
    return { 0x00,
             0x00,
             0x01,
             0xB3,
             uint8_t(width >> 4),
             uint8_t((width & 15) << 4 | height >> 8),
             uint8_t(height),
             uint8_t(0x20 | rateCode),   // 4:3
             0x13,                       // 7.8 Mbit/s, 112 KiB
             0x12,
             0xA3,
             0x80 };
}

Bytes gopHeader()
{
    return { 0x00, 0x00, 0x01, 0xB8, 0x80, 0x08, 0x00, 0x40 };
}

Bytes sequenceEnd()
{
    return { 0x00, 0x00, 0x01, 0xB7 };
}

Bytes videoPicture(uint64_t bytes, uint64_t temporalRef, char type, uint32_t seed)
{
    if (bytes < 8) throw std::invalid_argument("bytes of a picture");
    Bytes picture = {
        0x00, 0x00, 0x01, 0x00, uint8_t(temporalRef >> 2), uint8_t((temporalRef & 3) << 6 | codingType(type) << 3 | 7),
        0xFF, 0xF8
    };
    append(picture, filler(bytes - 8, seed));
    return picture;
}

std::vector<uint64_t> temporalRefsOf(std::string_view types)
{
    // A reference waits until the B pictures behind it are shown.
    std::vector<uint64_t> refs(types.size());
    uint64_t shown = 0;
    size_t waiting = types.size();
    for (size_t i = 0; i < types.size(); ++i) {
        if (types[i] == 'B') {
            refs[i] = shown++;
            continue;
        }
        if (waiting < types.size()) refs[waiting] = shown++;
        waiting = i;
    }
    if (waiting < types.size()) refs[waiting] = shown;
    return refs;
}

std::vector<GopSpec> gops(uint64_t count, const GopSpec& each)
{
    return std::vector<GopSpec>(count, each);
}

VideoStream makeVideo(const std::vector<GopSpec>& groups, uint32_t seed)
{
    VideoStream video;
    const auto put = [&video](const Bytes& unit) {
        video.codes.push_back(video.bytes.size());
        append(video.bytes, unit);
    };
    uint64_t group = 0;
    for (const GopSpec& gop : groups) {
        ++group;
        const uint64_t start = video.bytes.size();
        if (gop.sequence) put(sequenceHeader(gop.rateCode, gop.width, gop.height));
        if (gop.gop) put(gopHeader());
        const std::vector<uint64_t> order = temporalRefsOf(gop.types);
        for (size_t i = 0; i < gop.types.size(); ++i) {
            const uint64_t bytes = gop.bytes.at(std::min(i, gop.bytes.size() - 1));
            const uint64_t ref = i < gop.temporalRefs.size() ? gop.temporalRefs[i] : order[i];
            const uint64_t at = video.bytes.size();
            video.pictures.push_back({ at, i == 0 ? start : at, group, gop.types[i], ref });
            put(videoPicture(bytes, ref, gop.types[i], ++seed));
        }
        if (gop.end) put(sequenceEnd());
    }
    return video;
}

std::vector<Bytes> VideoStream::units() const
{
    std::vector<Bytes> list;
    for (size_t i = 0; i < codes.size(); ++i) {
        const uint64_t end = i + 1 < codes.size() ? codes[i + 1] : bytes.size();
        list.emplace_back(bytes.begin() + std::ptrdiff_t(codes[i]), bytes.begin() + std::ptrdiff_t(end));
    }
    return list;
}

std::vector<Bytes> cut(const Bytes& bytes, const std::vector<uint64_t>& sizes)
{
    std::vector<Bytes> list;
    for (uint64_t at = 0, i = 0; at < bytes.size(); ++i) {
        const uint64_t wanted = sizes.at(std::min<uint64_t>(i, sizes.size() - 1));
        if (wanted == 0) throw std::invalid_argument("size of a piece");
        const uint64_t taken = std::min<uint64_t>(wanted, bytes.size() - at);
        list.emplace_back(bytes.begin() + std::ptrdiff_t(at), bytes.begin() + std::ptrdiff_t(at + taken));
        at += taken;
    }
    return list;
}

// ---- audio ------------------------------------------------------------------------------------------------------

uint64_t ac3FrameBytes(uint64_t sizeCode)
{
    constexpr uint64_t KBITS[] = { 32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                   192, 224, 256, 320, 384, 448, 512, 576, 640 };
    if (sizeCode >= 2 * std::size(KBITS)) throw std::invalid_argument("size code");
    return KBITS[sizeCode / 2] * 4;
}

Bytes ac3Frame(uint64_t sizeCode, uint32_t seed)
{
    Bytes frame = { 0x0B, 0x77, 0xC1, 0xC2, uint8_t(sizeCode), 0x40 };
    append(frame, filler(ac3FrameBytes(sizeCode) - frame.size(), seed));
    return frame;
}

Bytes ac3Frames(uint64_t sizeCode, uint64_t count, uint32_t seed)
{
    Bytes frames;
    for (uint64_t i = 0; i < count; ++i) append(frames, ac3Frame(sizeCode, seed + uint32_t(i)));
    return frames;
}

Bytes swappedPairs(Bytes bytes)
{
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

uint64_t layer2FrameBytes(uint64_t rateIndex)
{
    constexpr uint64_t KBITS[] = { 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384 };
    if (rateIndex < 1 || rateIndex > std::size(KBITS)) throw std::invalid_argument("bit rate index");
    return KBITS[rateIndex - 1] * 3;
}

Bytes layer2Frame(uint64_t rateIndex, uint32_t seed)
{
    Bytes frame = { 0xFF, 0xFD, uint8_t(rateIndex << 4 | 4), 0x00 };
    append(frame, filler(layer2FrameBytes(rateIndex) - frame.size(), seed));
    return frame;
}

Bytes layer2Frames(uint64_t rateIndex, uint64_t count, uint32_t seed)
{
    Bytes frames;
    for (uint64_t i = 0; i < count; ++i) append(frames, layer2Frame(rateIndex, seed + uint32_t(i)));
    return frames;
}

Bytes waveHeader(const WaveSpec& wave)
{
    Bytes header;
    putText(header, "RIFF");
    putLittle(header, 36 + wave.dataBytes, 4);
    putText(header, "WAVEfmt ");
    putLittle(header, 16, 4);
    putFormat(header, wave);
    putText(header, "data");
    putLittle(header, wave.dataBytes, 4);
    return header;
}

Bytes waveFormat(const WaveSpec& wave)
{
    Bytes format;
    putFormat(format, wave);
    putLittle(format, 0, 2);
    return format;
}

Bytes endMark()
{
    return { 'E', 'N', 'D', ' ' };
}
