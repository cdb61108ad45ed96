// sub_picture_code.cpp: the two parts of a sub-picture unit: run-length coded fields and the control area.

#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "menu/bitmap.h"
#include "menu/sub_picture.h"

// Bytes that are written in units of four bits, first in the high half, before they go to a unit.
struct NibbleWriter {
    uint8_t* scratch;   // SPU_SCRATCH_BYTES
    uint64_t bytes;     // whole ones
    bool half;          // scratch[bytes] has its high half
    bool overflow;
};

static void putNibble(NibbleWriter* writer, uint64_t value)
{
    if (writer->bytes == SPU_SCRATCH_BYTES) {
        writer->overflow = true;
        return;
    }
    uint8_t* to = writer->scratch + writer->bytes;
    if (writer->half) {
        *to = uint8_t(*to | (value & 0x0F));
        writer->bytes++;
    } else {
        *to = uint8_t(value << 4);
    }
    writer->half = !writer->half;
}

static void putNibbles(NibbleWriter* writer, uint64_t value, uint64_t count)
{
    while (count-- > 0) putNibble(writer, value >> (4 * count));
}

static void fillByte(NibbleWriter* writer)
{
    if (writer->half) putNibble(writer, 0);
}

/** Appends what was written to a unit. */
static uint64_t finish(NibbleWriter* writer, uint8_t** unit)
{
    fillByte(writer);
    if (writer->overflow) return ORV_SUBPICTURE_TOO_LARGE;
    return osInsertMem(unit, OS_BLOCK_END, writer->scratch, writer->bytes);
}

// ---- fields -------------------------------------------------------------------------------------------------------

constexpr uint64_t LONGEST_RUN = 255;
constexpr uint64_t CODE_MASK = 0x03;   // of a pixel

static uint64_t measureRun(const uint8_t* line, uint64_t width)
{
    const uint64_t code = line[0] & CODE_MASK;
    uint64_t length = 1;
    while (length < width && (line[length] & CODE_MASK) == code) length++;
    return length;
}

/** A run that ends before its line does; length is at most LONGEST_RUN. */
static void putRun(NibbleWriter* writer, uint64_t length, uint64_t code)
{
    const uint64_t nibbles = length < 4 ? 1 : length < 16 ? 2 : length < 64 ? 3 : 4;
    putNibbles(writer, length << 2 | code, nibbles);
}

static void putLine(NibbleWriter* writer, const uint8_t* line, uint64_t width)
{
    uint64_t x = 0;
    while (x < width) {
        const uint64_t code = line[x] & CODE_MASK;
        uint64_t length = measureRun(line + x, width - x);
        if (x + length == width) {
            putNibbles(writer, code, 4);   // up to the line's end, whatever its length
        } else {
            if (length > LONGEST_RUN) length = LONGEST_RUN;
            putRun(writer, length, code);
        }
        x += length;
    }
    fillByte(writer);
}

uint64_t orvRleEncodeField(uint8_t** unit, const uint8_t* indexPlane, uint64_t width, uint64_t height, uint64_t field)
{
    NibbleWriter writer = {};
    if (uint64_t error = osAllocMem(SPU_SCRATCH_BYTES, &writer.scratch)) return error;
    const uint64_t lines = height / 2;
    for (uint64_t i = 0; i < lines && !writer.overflow; i++) {
        const uint64_t storedRow = height - 1 - field - 2 * i;   // bottom line first
        putLine(&writer, indexPlane + storedRow * width, width);
    }
    const uint64_t result = finish(&writer, unit);
    (void)osFreeMem(&writer.scratch);
    return result;
}

// ---- control area -------------------------------------------------------------------------------------------------

constexpr uint8_t END_OF_COMMANDS = 0xFF;
constexpr uint64_t CHANGE_COLORS_SIZE = 2;   // of the command's own data: its size word alone

// Meant: the pixel data begins two bytes behind each field's start, which skips the field's first line: it is taken to
// be of one colour, two bytes. The area begins at line 2 for that. Test: SubPicture.SkipsTheFirstLineOfAField
constexpr uint64_t FIRST_LINE_BYTES = 2;

struct FieldOffsets {
    uint64_t top, bottom;
};

static void putParams(NibbleWriter* writer, const SpuCommand* command, uint64_t nibblesEach)
{
    for (uint16_t param : command->params) putNibbles(writer, param, nibblesEach);
}

static void putCommand(NibbleWriter* writer, const SpuCommand* command, FieldOffsets fields)
{
    putNibbles(writer, command->number, 2);
    switch (command->number) {
    case SPU_SET_COLOR:
    case SPU_SET_CONTRAST: putParams(writer, command, 1); break;
    case SPU_SET_DISPLAY_AREA: putParams(writer, command, 3); break;
    case SPU_SET_PIXEL_ADDRESSES:
        putNibbles(writer, fields.top + FIRST_LINE_BYTES, 4);
        putNibbles(writer, fields.bottom + FIRST_LINE_BYTES, 4);
        break;
    case SPU_CHANGE_COLORS: putNibbles(writer, CHANGE_COLORS_SIZE, 4); break;
    default: break;   // a command without parameters
    }
}

static void putSequence(NibbleWriter* writer, const SpuSequence* sequence, uint64_t offset, FieldOffsets fields)
{
    putNibbles(writer, sequence->delay, 4);
    putNibbles(writer, offset + sequence->distance, 4);
    for (uint64_t i = 0; i < sequence->commandCount; i++) putCommand(writer, sequence->commands + i, fields);
    fillByte(writer);
    putNibbles(writer, END_OF_COMMANDS, 2);
}

uint64_t orvWriteSpuControl(uint8_t** unit, int64_t /*videoStandard*/, const SpuSequence* sequences, uint64_t count,
                            uint64_t controlOffset, uint64_t topFieldOffset, uint64_t bottomFieldOffset)
{
    NibbleWriter writer = {};
    if (uint64_t error = osAllocMem(SPU_SCRATCH_BYTES, &writer.scratch)) return error;
    for (uint64_t i = 0; i < count && !writer.overflow; i++) {
        putSequence(&writer, sequences + i, controlOffset + writer.bytes, { topFieldOffset, bottomFieldOffset });
    }
    const uint64_t result = finish(&writer, unit);
    (void)osFreeMem(&writer.scratch);
    return result;
}
