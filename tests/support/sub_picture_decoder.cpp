// sub_picture_decoder.cpp: a sub-picture unit as a player reads it.
#include "tests/support/sub_picture_decoder.h"

#include <algorithm>

typedef std::vector<std::string> Faults;

static constexpr uint64_t UNIT_LIMIT = 53248;   // bytes that a player's buffer holds

static void fault(Faults& faults, uint64_t at, const std::string& text)
{
    faults.push_back(std::to_string(at) + ": " + text);
}

// ---- pixels --------------------------------------------------------------------------------------------------------

// Reads four bits at a time, the high half of a byte first.
struct NibbleReader {
    const Bytes& bytes;
    uint64_t at, limit;   // in bytes
    bool low = false;
    bool ended = false;
    unsigned lastNibbles = 0;   // of the code read last

    unsigned next()
    {
        if (at >= limit) {
            ended = true;
            return 0;
        }
        const unsigned byte = bytes[at];
        if (!low) {
            low = true;
            return byte >> 4;
        }
        low = false;
        at++;
        return byte & 15;
    }
};

/** One code: it takes another nibble for as long as its count, all but the low two bits, cannot be told from less. */
static unsigned readCode(NibbleReader& reader)
{
    unsigned code = reader.next();
    reader.lastNibbles = 1;
    for (const unsigned least : { 0x4u, 0x10u, 0x40u }) {
        if (code >= least) break;
        code = code << 4 | reader.next();
        reader.lastNibbles++;
    }
    return code;
}

/** False if the bytes have ended. */
static bool readLine(NibbleReader& reader, Bytes& line, Faults& faults)
{
    uint64_t x = 0;
    while (x < line.size()) {
        const uint64_t start = reader.at;
        const unsigned code = readCode(reader);
        if (reader.ended) {
            fault(faults, start, "pixels end within a line");
            return false;
        }
        if (code >= 4 && code < 0x100 && reader.lastNibbles == 4)
            fault(faults, start, "a run in a longer code than it needs");
        const uint64_t left = line.size() - x;
        const uint64_t run = code >> 2 ? code >> 2 : left;   // a count of 0 reaches to the line's end
        if (run > left)
            fault(faults, start, "run of " + std::to_string(run) + " where the line has " + std::to_string(left));
        std::fill_n(line.begin() + std::ptrdiff_t(x), std::min(run, left), uint8_t(code & 3));
        x += std::min(run, left);
    }
    if (reader.low && reader.next() != 0)
        fault(faults, reader.at - 1, "the nibble that fills a line's last byte is not 0");
    return true;
}

std::vector<Bytes> decodeSpuLines(const Bytes& bytes, uint64_t at, uint64_t limit, uint64_t width, uint64_t lines,
                                  Faults* faults, uint64_t* end)
{
    NibbleReader reader = { bytes, at, std::min<uint64_t>(limit, bytes.size()) };
    std::vector<Bytes> result(lines, Bytes(width, SPU_NOTHING));
    for (Bytes& line : result) {
        if (!readLine(reader, line, *faults)) break;
    }
    if (end) *end = reader.at;
    return result;
}

// ---- commands ------------------------------------------------------------------------------------------------------

struct Unit {
    const Bytes& bytes;
    DecodedSubPicture& out;

    bool has(uint64_t at, uint64_t count) const
    {
        return at <= bytes.size() && count <= bytes.size() - at;
    }
    uint64_t word(uint64_t at) const
    {
        return uint64_t(bytes[at]) << 8 | bytes[at + 1];
    }
};

/** Bytes behind a command's number; 0 also for a change of colours, which tells its own size. */
static uint64_t paramBytes(uint8_t number)
{
    static constexpr uint64_t BYTES[] = { 0, 0, 0, 2, 2, 6, 4, 0 };
    return BYTES[number];
}

static void takeFour(const Bytes& params, uint8_t values[4])
{
    values[3] = params[0] >> 4;
    values[2] = params[0] & 15;
    values[1] = params[1] >> 4;
    values[0] = params[1] & 15;
}

static void apply(DecodedSubPicture& out, const DecodedSpuCommand& command)
{
    const Bytes& p = command.params;
    switch (command.number) {
    case 0: out.forced = true; break;
    case 1: out.started = true; break;
    case 2: out.stopped = true; break;
    case 3: takeFour(p, out.colors); break;
    case 4: takeFour(p, out.contrasts); break;
    case 5:
        out.left = uint64_t(p[0]) << 4 | p[1] >> 4;
        out.right = uint64_t(p[1] & 15) << 8 | p[2];
        out.top = uint64_t(p[3]) << 4 | p[4] >> 4;
        out.bottom = uint64_t(p[4] & 15) << 8 | p[5];
        break;
    case 6:
        out.fieldOffset[0] = uint64_t(p[0]) << 8 | p[1];
        out.fieldOffset[1] = uint64_t(p[2]) << 8 | p[3];
        break;
    default: break;   // a change of colours within the picture is kept as it is
    }
}

/** Offset behind the sequence's end of commands; 0 if it could not be read to its end. */
static uint64_t readSequence(Unit& unit, uint64_t at, DecodedSpuSequence& sequence)
{
    Faults& faults = unit.out.faults;
    at += 4;
    for (;;) {
        if (!unit.has(at, 1)) {
            fault(faults, at, "a sequence without an end of commands");
            return 0;
        }
        const uint8_t number = unit.bytes[at];
        if (number == 0xFF) return at + 1;
        if (number > 7) {
            fault(faults, at, "unknown command " + std::to_string(number));
            return 0;
        }
        uint64_t count = paramBytes(number);
        if (number == 7) {
            count = unit.has(at + 1, 2) ? unit.word(at + 1) : 2;   // the two bytes of the size belong to it
            if (count < 2) {
                fault(faults, at, "a change of colours smaller than its own size");
                return 0;
            }
        }
        if (!unit.has(at + 1, count)) {
            fault(faults, at, "a command that is cut off");
            return 0;
        }
        const auto first = unit.bytes.begin() + std::ptrdiff_t(at + 1);
        sequence.commands.push_back({ number, Bytes(first, first + std::ptrdiff_t(count)) });
        apply(unit.out, sequence.commands.back());
        at += 1 + count;
    }
}

static void readSequences(Unit& unit)
{
    DecodedSubPicture& out = unit.out;
    uint64_t at = out.controlOffset;
    for (;;) {
        if (!unit.has(at, 4)) return fault(out.faults, at, "a sequence outside the unit");
        DecodedSpuSequence sequence = { at, unit.word(at), unit.word(at + 2), {} };
        const uint64_t end = readSequence(unit, at, sequence);
        out.sequences.push_back(sequence);
        if (end == 0) return;
        if (sequence.next == at) {
            const uint64_t rest = unit.bytes.size() - end;
            if (rest > 1) fault(out.faults, end, std::to_string(rest) + " bytes behind the last sequence");
            if (rest == 1 && unit.bytes[end] != 0xFF) fault(out.faults, end, "filled up with another byte than FF");
            return;
        }
        if (sequence.next != end) fault(out.faults, at + 2, "the next sequence is not where this one ends");
        if (sequence.next < end) return;   // no way back: the walk comes to an end
        at = sequence.next;
    }
}

// ---- the unit ------------------------------------------------------------------------------------------------------

static bool commandGiven(const DecodedSubPicture& out, uint8_t number)
{
    for (const DecodedSpuSequence& sequence : out.sequences) {
        for (const DecodedSpuCommand& command : sequence.commands) {
            if (command.number == number) return true;
        }
    }
    return false;
}

static void readPixels(Unit& unit)
{
    DecodedSubPicture& out = unit.out;
    const uint64_t height = out.plane.height;
    if (!commandGiven(out, 5)) return fault(out.faults, out.controlOffset, "no display area");
    if (!commandGiven(out, 6)) return fault(out.faults, out.controlOffset, "no pixel data addresses");
    if (out.left > out.right || out.top > out.bottom || out.right >= out.plane.width || out.bottom >= height) {
        return fault(out.faults, out.controlOffset, "a display area outside the picture");
    }
    const uint64_t width = out.right - out.left + 1, lines = out.bottom - out.top + 1;
    for (uint64_t field = 0; field < 2; field++) {
        const uint64_t at = out.fieldOffset[field];
        if (at < 4 || at >= out.controlOffset) {
            fault(out.faults, at, "pixels of field " + std::to_string(field) + " outside the unit's pixel data");
            continue;
        }
        const std::vector<Bytes> rows = decodeSpuLines(unit.bytes, at, out.controlOffset, width,
                                                       (lines + 1 - field) / 2, &out.faults, &out.fieldEnd[field]);
        for (uint64_t i = 0; i < rows.size(); i++) {
            const uint64_t line = out.top + 2 * i + field;
            std::copy(rows[i].begin(), rows[i].end(), &out.plane.at(out.left, line));
        }
    }
}

DecodedSubPicture decodeSubPicture(const Bytes& unit, uint64_t height)
{
    DecodedSubPicture out;
    out.plane = ByteImage(height, SPU_NOTHING);
    Unit reading = { unit, out };
    if (!reading.has(0, 4)) {
        fault(out.faults, 0, "a unit shorter than its head");
        return out;
    }
    out.size = reading.word(0);
    out.controlOffset = reading.word(2);
    if (out.size != unit.size()) {
        fault(out.faults, 0, "size " + std::to_string(out.size) + " for " + std::to_string(unit.size()) + " bytes");
    }
    if (unit.size() % 2) fault(out.faults, 0, "an odd size");
    if (unit.size() > UNIT_LIMIT) fault(out.faults, 0, "larger than a player's buffer");
    if (out.controlOffset < 4) {
        fault(out.faults, 2, "a control sequence within the head");
        return out;
    }
    readSequences(reading);
    readPixels(reading);
    return out;
}
