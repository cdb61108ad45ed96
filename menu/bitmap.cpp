// bitmap.cpp: reads the bitmaps of menus and stills.

#include "menu/bitmap.h"

#include "base/bytes.h"
#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"

#include <algorithm>

constexpr uint64_t PICTURE_HEIGHT_PAL = 576, PICTURE_HEIGHT_NTSC = 480;

// A bitmap file, all numbers little-endian: file header, information header, pixels.
constexpr uint64_t FILE_HEADER_BYTES = 14, INFO_HEADER_BYTES = 40;
constexpr uint32_t FILE_MARK = 0x4D42;      // "BM"
constexpr uint32_t CORE_HEADER_SIZE = 12;   // of the old information header
// Offsets within the file header, and within either information header.
constexpr uint64_t AT_FILE_SIZE = 2, AT_DATA_OFFSET = 10;
constexpr uint64_t AT_WIDTH = 4, AT_HEIGHT = 8, AT_BITS = 14;
constexpr uint64_t AT_CORE_HEIGHT = 6, AT_CORE_BITS = 10;

struct BitmapHead {
    uint64_t fileSize, dataOffset;
    uint64_t width, height, bitsPerPixel;
};

uint64_t orvPictureHeight(int64_t videoStandard)
{
    return videoStandard == STANDARD_PAL ? PICTURE_HEIGHT_PAL : PICTURE_HEIGHT_NTSC;
}

static uint64_t readHead(OSFILE file, BitmapHead* head)
{
    uint8_t start[FILE_HEADER_BYTES], info[INFO_HEADER_BYTES];
    if (uint64_t error = osReadFile(file, start, sizeof start)) return error;
    if (orvGetLittle16(start) != FILE_MARK) return ORV_INVALID_ARGUMENT;
    // As many bytes are read of an old header, which has fewer.
    if (uint64_t error = osReadFile(file, info, sizeof info)) return error;
    const bool core = orvGetLittle32(info) == CORE_HEADER_SIZE;
    head->fileSize = orvGetLittle32(start + AT_FILE_SIZE);
    head->dataOffset = orvGetLittle32(start + AT_DATA_OFFSET);
    head->width = core ? orvGetLittle16(info + AT_WIDTH) : orvGetLittle32(info + AT_WIDTH);
    head->height = core ? orvGetLittle16(info + AT_CORE_HEIGHT) : orvGetLittle32(info + AT_HEIGHT);
    head->bitsPerPixel = orvGetLittle16(info + (core ? AT_CORE_BITS : AT_BITS));
    return 0;
}

/** Reads the pixel array, or as much of it as a picture of 32 bits has. */
static uint64_t readPixels(OSFILE file, const BitmapHead* head, uint8_t** pixels)
{
    const uint64_t rowBytes = (PICTURE_WIDTH * head->bitsPerPixel + 31) / 32 * 4;
    const uint64_t claimed = head->fileSize > head->dataOffset ? head->fileSize - head->dataOffset : 0;
    if (claimed < rowBytes * head->height) return ORV_INVALID_ARGUMENT;
    // No memory is taken for pixels that the file can't have, nor for more than the deepest picture has.
    const uint64_t needed = std::min(claimed, PICTURE_WIDTH * ALPHA_PIXEL_BYTES * head->height);
    uint64_t fileBytes = 0;
    if (uint64_t error = osFileSize(file, &fileBytes)) return error;
    if (fileBytes < head->fileSize) return OS_SHORT_READ;
    if (uint64_t error = osSeekFile(file, int64_t(head->dataOffset), OS_FROM_START)) return error;
    if (uint64_t error = osAllocMem(needed, pixels)) return error;
    const uint64_t result = osReadFile(file, *pixels, needed);
    if (result) (void)osFreeMem(pixels);
    return result;
}

static uint64_t readBitmap(OSFILE file, int64_t videoStandard, uint64_t* bitsPerPixel, uint8_t** pixels)
{
    BitmapHead head = {};
    if (uint64_t error = readHead(file, &head)) return error;
    // Meant: a bitmap that counts its lines from the top has a negative height and is refused. Test: Bitmap.TopDown
    if (head.width != PICTURE_WIDTH || head.height != orvPictureHeight(videoStandard)) return ORV_INVALID_ARGUMENT;
    if (bitsPerPixel) *bitsPerPixel = head.bitsPerPixel;
    return readPixels(file, &head, pixels);
}

uint64_t orvReadBitmap(const char16_t* path, int64_t videoStandard, uint64_t* bitsPerPixel, uint8_t** pixels)
{
    if (!pixels) return 0;
    *pixels = nullptr;
    OSFILE file = 0;
    if (uint64_t error = osOpenFile(path, OS_READ, &file)) return error;
    const uint64_t result = readBitmap(file, videoStandard, bitsPerPixel, pixels);
    (void)osCloseFile(&file);
    return result;
}

static uint64_t readOfDepth(const char16_t* path, int64_t videoStandard, uint64_t depth, uint64_t wrongDepth,
                            uint8_t** pixels)
{
    uint64_t bits = 0;
    if (uint64_t error = orvReadBitmap(path, videoStandard, &bits, pixels)) return error;
    if (bits == depth) return 0;
    (void)osFreeMem(pixels);
    return wrongDepth;
}

uint64_t orvReadCollisionMap(const char16_t* path, int64_t videoStandard, uint8_t** pixels)
{
    return readOfDepth(path, videoStandard, COLLISION_BITS, ORV_COLLISION_BITMAP_NOT_8BIT, pixels);
}

uint64_t orvReadAlphaBitmap(const char16_t* path, int64_t videoStandard, uint8_t** pixels)
{
    return readOfDepth(path, videoStandard, ALPHA_BITS, ORV_ALPHA_BITMAP_NOT_32BIT, pixels);
}
