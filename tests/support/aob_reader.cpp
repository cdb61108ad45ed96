// aob_reader.cpp: packs of an AOB, field by field.
#include "tests/support/aob_reader.h"

#include "tests/support/packs.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <sstream>

// clang-format off
static const AobLayout LAYOUTS[] = {
    {  1, 16, 2, 1, "0a1 0a0 1a1 1a0" },
    {  1, 24, 2, 2, "0a2 0a1 1a2 1a1 0b2 0b1 1b2 1b1 0a0 1a0 0b0 1b0" },
    {  3, 16, 4, 2, "2a1 2a0 3a1 3a0 2b1 2b0 3b1 3b0 0a1 0a0 1a1 1a0 0b1 0b0 1b1 1b0" },
    {  3, 24, 4, 2, "2a2 2a1 3a2 3a1 2b2 2b1 3b2 3b1 2a0 3a0 2b0 3b0 "
                    "0a2 0a1 1a2 1a1 0b2 0b1 1b2 1b1 0a0 1a0 0b0 1b0" },
    { 19, 16, 5, 2, "4a1 4a0 4b1 4b0 0a1 0a0 1a1 1a0 2a1 2a0 3a1 3a0 0b1 0b0 1b1 1b0 2b1 2b0 3b1 3b0" },
    { 19, 24, 5, 2, "4a2 4a1 4b2 4b1 4a0 4b0 "
                    "0a2 0a1 1a2 1a1 2a2 2a1 3a2 3a1 0b2 0b1 1b2 1b1 2b2 2b1 3b2 3b1 "
                    "0a0 1a0 2a0 3a0 0b0 1b0 2b0 3b0" },
    { 20, 16, 6, 2, "4a1 4a0 5a1 5a0 4b1 4b0 5b1 5b0 "
                    "0a1 0a0 1a1 1a0 2a1 2a0 3a1 3a0 0b1 0b0 1b1 1b0 2b1 2b0 3b1 3b0" },
    { 20, 24, 6, 2, "4a2 4a1 5a2 5a1 4b2 4b1 5b2 5b1 4a0 5a0 4b0 5b0 "
                    "0a2 0a1 1a2 1a1 2a2 2a1 3a2 3a1 0b2 0b1 1b2 1b1 2b2 2b1 3b2 3b1 "
                    "0a0 1a0 2a0 3a0 0b0 1b0 2b0 3b0" },
};

static const AobRow ROWS[] = {
    { 2, 16, 1984, 2000 }, { 2, 24, 1980, 2004 }, { 4, 16, 1984, 2000 }, { 4, 24, 1968, 1992 },
    { 5, 16, 1980, 2000 }, { 5, 24, 1980, 1980 }, { 6, 16, 1968, 1992 }, { 6, 24, 1980, 1980 },
};
// clang-format on

static const uint8_t SYSTEM_HEADER[] = { 0x00, 0x00, 0x01, 0xBB, 0x00, 0x0C, 0x80, 0xC4, 0xE1,
                                         0x04, 0xA0, 0x7F, 0xB8, 0xC0, 0x40, 0xBD, 0xE0, 0x0A };

uint64_t AobLayout::unitBytes() const
{
    return (strlen(bytes) + 1) / 4;
}

const AobLayout* aobLayout(uint64_t assignment, uint64_t bits)
{
    for (const AobLayout& layout : LAYOUTS) {
        if (layout.assignment == assignment && layout.bits == bits) return &layout;
    }
    return nullptr;
}

const AobRow* aobRow(uint64_t channels, uint64_t bits)
{
    for (const AobRow& row : ROWS) {
        if (row.channels == channels && row.bits == bits) return &row;
    }
    return nullptr;
}

uint64_t aobFrameSamples(uint64_t rate)
{
    switch (rate) {
    case 44100:
    case 48000: return 40;
    case 88200:
    case 96000: return 80;
    case 176400:
    case 192000: return 160;
    default: return 0;
    }
}

static uint64_t rateOfCode(uint64_t code)
{
    switch (code) {
    case 0: return 48000;
    case 1: return 96000;
    case 2: return 192000;
    case 8: return 44100;
    case 9: return 88200;
    case 10: return 176400;
    default: return 0;
    }
}

namespace {

// A pack that is being read, from front to back.
struct Cursor {
    const uint8_t* pack;
    uint64_t number;
    AobFile* file;
    uint64_t at = 0;

    uint64_t take(uint64_t bytes)
    {
        uint64_t value = 0;
        for (; bytes > 0; bytes--, at++) value = value << 8 | uint64_t(at < PACK_BYTES ? pack[at] : 0);
        return value;
    }
    void fault(const std::string& what) const
    {
        file->faults.push_back("pack " + std::to_string(number) + ": " + what);
    }
    void expect(const char* field, uint64_t is, uint64_t should) const
    {
        if (is == should) return;
        std::ostringstream text;
        text << field << " is " << std::hex << is << ", should be " << should;
        fault(text.str());
    }
    void expectNext(const char* field, uint64_t bytes, uint64_t should)
    {
        const uint64_t is = take(bytes);
        expect(field, is, should);
    }
};

// What runs on from pack to pack.
struct Progress {
    // Bytes of samples in all tracks so far. A pack of zeros is silence, or has no samples at all: then both sums stand
    // here, until a later time stamp tells which it was.
    std::vector<uint64_t> bytes = { 0 };
    Bytes samples = {};   // of the track
};

}   // namespace

static void readPackHeader(Cursor& in, AobPack& pack)
{
    in.expectNext("pack start code", 4, 0x000001BA);
    const uint64_t clock = in.take(6);
    // 01 bbb 1 b{15} 1 b{15} 1 e{9} 1
    in.expect("mark of MPEG-2", clock >> 46, 1);
    in.expect("marker bits of the SCR", clock & 0x0400'0400'0401, 0x0400'0400'0401);
    pack.scr = (clock >> 43 & 7) << 30 | (clock >> 27 & 0x7FFF) << 15 | (clock >> 11 & 0x7FFF);
    pack.extension = clock >> 1 & 0x1FF;
    if (pack.extension > 299) in.fault("SCR extension is above 299");
    in.expectNext("mux rate", 3, 0x0189C3);
    const uint64_t stuffing = in.take(1);
    in.expect("reserved bits before the stuffing length", stuffing >> 3, 0x1F);
    pack.stuffing = stuffing & 7;
    for (uint64_t i = 0; i < pack.stuffing; i++) in.expectNext("pack stuffing", 1, 0xFF);
    pack.first = in.pack[in.at + 3] == 0xBB;
    for (uint64_t i = 0; pack.first && i < sizeof(SYSTEM_HEADER); i++)
        in.expectNext("byte of the system header", 1, SYSTEM_HEADER[i]);
}

// Gives the place behind the packet.
static uint64_t readPesHeader(Cursor& in, AobPack& pack)
{
    in.expectNext("PES start code", 4, 0x000001BD);
    const uint64_t length = in.take(2), end = in.at + length;
    in.expectNext("PES flags", 2, pack.first ? 0x8181 : 0x8180);
    in.expectNext("PES header data length", 1, pack.first ? 8 : 5);
    const uint64_t stamp = in.take(5);
    // 0010 ttt 1 t{15} 1 t{15} 1
    in.expect("lead of the PTS", stamp >> 36, 2);
    in.expect("marker bits of the PTS", stamp & 0x0100010001, 0x0100010001);
    pack.pts = (stamp >> 33 & 7) << 30 | (stamp >> 17 & 0x7FFF) << 15 | (stamp >> 1 & 0x7FFF);
    if (pack.first) in.expectNext("P-STD buffer", 3, 0x1E600A);
    return end;
}

static void readFormat(Cursor& in, const AobPack& pack, AobTrack& track)
{
    const uint64_t flags = in.take(1), sizes = in.take(1), rates = in.take(1);
    in.expectNext("byte 9 of the private header", 1, 0);
    const uint64_t assignment = in.take(1);
    in.expectNext("dynamic range control", 1, 0x80);
    in.expectNext("bytes 12 and 13 of the private header", 2, 0);
    const uint64_t bits = sizes >> 4 == 0 ? 16 : sizes >> 4 == 2 ? 24 : 0;
    const AobLayout* const layout = aobLayout(assignment, bits);
    if (pack.first) {
        track.assignment = assignment, track.bits = bits, track.rate = rateOfCode(rates >> 4);
        track.channels = layout ? layout->channels : 0;
    }
    in.expect("assignment", assignment, track.assignment);
    if (!bits) in.fault("no sample size of packs");
    in.expect("sample size", bits, track.bits);
    if (!rateOfCode(rates >> 4)) in.fault("no sample rate of packs");
    in.expect("sample rate", rateOfCode(rates >> 4), track.rate);
    in.expect("sample size of group 2", sizes & 15, assignment < 2 ? 15 : sizes >> 4);
    in.expect("sample rate of group 2", rates & 15, assignment < 2 ? 15 : rates >> 4);
    if (layout) in.expect("flags of the private header", flags, layout->channels == 6 ? 0x30 : 0x10);
}

// First access pointer and PTS follow from the bytes that lie before the pack.
static void checkTimes(const Cursor& in, const AobPack& pack, const AobTrack& track, Progress& progress,
                       uint64_t headerLength)
{
    const uint64_t frameSamples = aobFrameSamples(track.rate);
    const uint64_t frameBytes = frameSamples * track.channels * track.bits / 8;
    if (!frameBytes) return;
    const auto next = [&](uint64_t bytes) { return (bytes + frameBytes - 1) / frameBytes; };
    const auto stamp = [&](uint64_t bytes) { return next(bytes) * frameSamples * 90000 / track.rate; };
    const auto pointer = [&](uint64_t bytes) {
        return (pack.first ? 0 : next(bytes) * frameBytes - bytes) + headerLength - 1;
    };
    std::vector<uint64_t> fitting;
    std::copy_if(progress.bytes.begin(), progress.bytes.end(), std::back_inserter(fitting),
                 [&](uint64_t bytes) { return stamp(bytes) == pack.pts && pointer(bytes) == pack.firstAccess; });
    if (!fitting.empty()) progress.bytes = fitting;
    in.expect("PTS", pack.pts, stamp(progress.bytes[0]));
    in.expect("first access pointer", pack.firstAccess, pointer(progress.bytes[0]));
}

static void readPadding(Cursor& in, uint64_t end)
{
    if (end == PACK_BYTES) return;
    in.at = end;
    in.expectNext("padding start code", 4, 0x000001BE);
    const uint64_t length = in.take(2);
    in.expect("end of the padding packet", in.at + length, PACK_BYTES);
    while (in.at < PACK_BYTES) in.expectNext("byte of the padding packet", 1, 0xFF);
}

static void readSamples(Cursor& in, AobPack& pack, const AobTrack& track, Progress& progress, uint64_t end)
{
    pack.samplesAt = in.at;
    pack.blank = std::all_of(in.pack + in.at, in.pack + PACK_BYTES, [](uint8_t byte) { return byte == 0; });
    if (end < in.at) return in.fault("PES packet ends before its headers do");
    // A pack with stuffing keeps the length that it had before the stuffing pushed its end out.
    if (pack.stuffing) {
        in.expect("end of the PES packet behind stuffing", end, PACK_BYTES + pack.stuffing);
        end = PACK_BYTES;
    }
    if (end > PACK_BYTES) return in.fault("PES packet leaves the pack");
    pack.sampleBytes = end - in.at;
    const AobRow* const row = aobRow(track.channels, track.bits);
    if (row && pack.sampleBytes > (pack.first ? row->firstPayload : row->nextPayload)) in.fault("too many samples");
    if (!pack.blank) readPadding(in, end);
    progress.samples.insert(progress.samples.end(), in.pack + pack.samplesAt, in.pack + end);
    std::vector<uint64_t> sums;
    for (const uint64_t bytes : progress.bytes) {
        sums.push_back(bytes + pack.sampleBytes);
        if (pack.blank && sums.size() < 64) sums.push_back(bytes);
    }
    progress.bytes = sums;
}

static void unpack(AobFile& file, AobTrack& track, const Bytes& bytes)
{
    const AobLayout* const layout = aobLayout(track.assignment, track.bits);
    if (!layout) return;
    const uint64_t unit = layout->unitBytes();
    if (bytes.size() % unit) file.faults.push_back("a track is not one of whole units");
    track.samples.assign(layout->channels, std::vector<int32_t>(bytes.size() / unit * layout->times));
    for (uint64_t u = 0; u < bytes.size() / unit; u++) {
        for (uint64_t i = 0; i < unit; i++) {
            const char* const word = layout->bytes + 4 * i;
            int32_t& sample = track.samples[uint64_t(word[0] - '0')][u * layout->times + uint64_t(word[1] - 'a')];
            const uint32_t shifted = uint32_t(bytes[u * unit + i]) << (8 * (word[2] - '0'));
            sample = int32_t(uint32_t(sample) | shifted);
        }
    }
    const int spare = 32 - int(track.bits);
    for (std::vector<int32_t>& channel : track.samples)
        for (int32_t& sample : channel) sample = int32_t(uint32_t(sample) << spare) >> spare;
}

static void readPack(Cursor& in, Progress& progress)
{
    AobPack pack;
    readPackHeader(in, pack);
    if (pack.first || in.file->tracks.empty()) {
        if (!pack.first) in.fault("the file begins without a system header");
        if (!in.file->tracks.empty()) unpack(*in.file, in.file->tracks.back(), progress.samples);
        progress.samples.clear();
        in.file->tracks.emplace_back();
    }
    AobTrack& track = in.file->tracks.back();
    if (!track.packs.empty()) {
        const AobPack& last = track.packs.back();
        const AobRow* const row = aobRow(track.channels, track.bits);
        if (row) in.expect("samples before it", last.sampleBytes, last.first ? row->firstPayload : row->nextPayload);
        if (last.stuffing) in.fault("a pack with stuffing stands before it in the track");
    }
    const uint64_t end = readPesHeader(in, pack);
    in.expectNext("sub-stream", 1, 0xA0);
    pack.counter = in.take(1);
    in.expect("counter", pack.counter, track.packs.size() % 32);
    in.expectNext("byte 2 of the private header", 1, 0);
    const uint64_t headerLength = in.take(1), headerEnd = in.at + headerLength;
    if (headerLength < 10) return in.fault("private header is too short");
    pack.firstAccess = in.take(2);
    readFormat(in, pack, track);
    while (in.at < headerEnd) in.expectNext("end of the private header", 1, 0);
    checkTimes(in, pack, track, progress, headerLength);
    readSamples(in, pack, track, progress, end);
    track.packs.push_back(pack);
}

AobFile readAob(const Bytes& bytes)
{
    AobFile file;
    Progress progress;
    if (bytes.size() % PACK_BYTES) file.faults.push_back("the file does not end with a pack");
    for (uint64_t number = 0; number < bytes.size() / PACK_BYTES; number++) {
        Cursor in = { bytes.data() + number * PACK_BYTES, number, &file };
        readPack(in, progress);
    }
    if (!file.tracks.empty()) unpack(file, file.tracks.back(), progress.samples);
    return file;
}

std::string describeFaults(const AobFile& file)
{
    std::string text;
    for (size_t i = 0; i < std::min<size_t>(file.faults.size(), 20); i++) text += file.faults[i] + '\n';
    if (file.faults.size() > 20) text += "and " + std::to_string(file.faults.size() - 20) + " more\n";
    return text;
}
