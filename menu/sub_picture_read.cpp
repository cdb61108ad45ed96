// sub_picture_read.cpp: reads a sub-picture unit back, as a player does.

#include "menu/sub_picture_read.h"

#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "menu/sub_picture.h"

constexpr uint64_t UNIT_CONTROL = 2;        // offset of the word that says where the control area begins
constexpr uint64_t SEQUENCE_COMMANDS = 4;   // of a sequence, behind delay and link

struct DisplayArea {
    uint64_t firstColumn, lastColumn, firstLine, lastLine;
};

// What a unit's control sequence says of its pixels.
struct UnitHead {
    bool hasArea, hasPixels;
    DisplayArea area;
    uint64_t fields[2];   // offsets of the data of the area's lines 0, 2, 4 ... and 1, 3, 5 ...
};

static uint64_t high12(const uint8_t* from)
{
    return uint64_t(from[0]) << 4 | from[1] >> 4;
}

static uint64_t low12(const uint8_t* from)
{
    return uint64_t(from[0] & 0x0F) << 8 | from[1];
}

/** Bytes of a command behind its number; the change of colours has its own count. */
static uint64_t commandBytes(uint8_t number, const uint8_t* data, uint64_t room)
{
    switch (number) {
    case SPU_SET_COLOR:
    case SPU_SET_CONTRAST: return 2;
    case SPU_SET_DISPLAY_AREA: return 6;
    case SPU_SET_PIXEL_ADDRESSES: return 4;
    case SPU_CHANGE_COLORS: return room < 2 ? 2 : orvGet16(data);
    default: return 0;
    }
}

static UnitHead readHead(const uint8_t* unit, uint64_t unitBytes)
{
    UnitHead head = {};
    if (unitBytes < UNIT_CONTROL + 2) return head;
    uint64_t at = orvGet16(unit + UNIT_CONTROL) + SEQUENCE_COMMANDS;
    while (at < unitBytes && unit[at] <= SPU_CHANGE_COLORS) {
        const uint8_t number = unit[at++];
        const uint8_t* data = unit + at;
        const uint64_t size = commandBytes(number, data, unitBytes - at);
        if (size > unitBytes - at) break;
        if (number == SPU_SET_DISPLAY_AREA) {
            head.hasArea = true;
            head.area = { high12(data), low12(data + 1), high12(data + 3), low12(data + 4) };
        }
        if (number == SPU_SET_PIXEL_ADDRESSES) {
            head.hasPixels = true;
            head.fields[0] = orvGet16(data);
            head.fields[1] = orvGet16(data + 2);
        }
        at += size;
    }
    return head;
}

// Pixel data of a field, in units of four bits.
struct NibbleReader {
    const uint8_t* unit;
    uint64_t next, end;   // nibbles from the unit's start
};

static bool readNibble(NibbleReader* reader, uint64_t* value)
{
    if (reader->next >= reader->end) return false;
    const uint8_t byte = reader->unit[reader->next / 2];
    *value = *value << 4 | (reader->next % 2 == 0 ? byte >> 4 : byte & 0x0F);
    reader->next++;
    return true;
}

/** A code of one to four nibbles: the more leading zero bits, the longer. */
static bool readCode(NibbleReader* reader, uint64_t* value)
{
    constexpr uint64_t LEAST_OF_NIBBLES[] = { 0x4, 0x10, 0x40 };   // from which a code is complete
    *value = 0;
    for (uint64_t least : LEAST_OF_NIBBLES) {
        if (!readNibble(reader, value)) return false;
        if (*value >= least) return true;
    }
    return readNibble(reader, value);
}

static bool decodeLine(NibbleReader* reader, uint8_t* line, uint64_t first, uint64_t last, uint64_t width)
{
    uint64_t x = first;
    while (x <= last) {
        uint64_t code = 0;
        if (!readCode(reader, &code)) return false;
        const uint64_t run = code >> 2, rest = last - x + 1;
        const uint64_t end = x + (run == 0 || run > rest ? rest : run);
        for (; x < end; x++) {
            if (x < width) line[x] = uint8_t(code & 0x03);
        }
    }
    reader->next += reader->next % 2;   // each line begins on a byte's border
    return true;
}

uint64_t orvDecodeSubPicture(const uint8_t* unit, uint64_t unitBytes, uint64_t width, uint64_t height, uint8_t* plane)
{
    const UnitHead head = readHead(unit, unitBytes);
    if (!head.hasArea || !head.hasPixels) return ORV_INVALID_ARGUMENT;
    for (uint64_t field = 0; field < 2; field++) {
        NibbleReader reader = { unit, head.fields[field] * 2, unitBytes * 2 };
        for (uint64_t y = head.area.firstLine + field; y <= head.area.lastLine && y < height; y += 2) {
            if (!decodeLine(&reader, plane + y * width, head.area.firstColumn, head.area.lastColumn, width)) break;
        }
    }
    return 0;
}
