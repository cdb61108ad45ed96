// sub_picture.cpp: makes the index plane of a sub-picture and puts its unit together.

#include "menu/sub_picture.h"

#include "base/bytes.h"
#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/time_code.h"
#include "menu/bitmap.h"

static uint64_t planeBytes(int64_t videoStandard)
{
    return PICTURE_WIDTH * orvPictureHeight(videoStandard);
}

// ---- index planes -------------------------------------------------------------------------------------------------

/** The bitmap's own bytes are the pixel codes, whatever its depth. */
static uint64_t takePlane(const char16_t* bitmapPath, int64_t videoStandard, uint8_t** plane)
{
    if (uint64_t error = orvReadBitmap(bitmapPath, videoStandard, nullptr, plane)) return error;
    if (osMemSize(*plane) >= planeBytes(videoStandard)) return 0;
    (void)osFreeMem(plane);   // a bitmap of fewer than 8 bits a pixel
    return ORV_INVALID_ARGUMENT;
}

/** Each visible pixel gets the colour set of the button that owns it. */
static void codeByButton(const MenuDesc* menu, const uint8_t* collision, const uint8_t* alpha, uint64_t pixels,
                         uint8_t* plane)
{
    for (uint64_t i = 0; i < pixels; i++) {
        const uint64_t button = collision[i];
        if (button == 0 || button > menu->buttonCount || button > MAX_BUTTONS) continue;
        if (orvPixelVisible(alpha + i * ALPHA_PIXEL_BYTES)) plane[i] = uint8_t(menu->buttons[button - 1].color);
    }
}

static uint64_t mapButtonsToIndex(int64_t videoStandard, const MenuDesc* menu, const char16_t* collisionPath,
                                  const char16_t* alphaPath, uint8_t* plane)
{
    uint8_t* collision = nullptr;
    uint8_t* alpha = nullptr;
    uint64_t result = orvReadCollisionMap(collisionPath, videoStandard, &collision);
    if (!result) result = orvReadAlphaBitmap(alphaPath, videoStandard, &alpha);
    if (!result) codeByButton(menu, collision, alpha, planeBytes(videoStandard), plane);
    (void)osFreeMem(&collision);
    (void)osFreeMem(&alpha);
    return result;
}

// Alpha of the levels that the codes 1 to 3 stand for.
constexpr uint64_t ALPHA_LEVELS = 3, ALPHA_RANGE = 256 - VISIBLE_ALPHA;

static uint8_t codeByAlpha(uint8_t alpha)
{
    return uint8_t(1 + (alpha - VISIBLE_ALPHA) * ALPHA_LEVELS / ALPHA_RANGE);
}

/** Squared distance of two colour components. */
static uint64_t squared(uint32_t a, uint32_t b)
{
    const int64_t difference = int64_t(a & 0xFF) - int64_t(b & 0xFF);
    return uint64_t(difference * difference);
}

static uint8_t codeByColor(const MenuDesc* menu, const uint8_t* pixel)
{
    uint64_t best = ~uint64_t(0);
    uint8_t code = 0;
    for (uint8_t i = 1; i <= 3; i++) {
        const uint32_t entry = menu->palette[i];   // bytes alpha, red, green, blue
        const uint64_t distance =
            squared(pixel[2], entry >> 8) + squared(pixel[1], entry >> 16) + squared(pixel[0], entry >> 24);
        if (distance >= best) continue;
        best = distance;
        code = i;
    }
    return code;
}

uint64_t orvMapAlphaToIndex(int64_t videoStandard, const MenuDesc* menu, const char16_t* alphaBitmapPath,
                            uint8_t* indexPlane)
{
    uint8_t* alpha = nullptr;
    if (uint64_t error = orvReadAlphaBitmap(alphaBitmapPath, videoStandard, &alpha)) return error;
    const uint64_t pixels = planeBytes(videoStandard);
    for (uint64_t i = 0; i < pixels; i++) {
        const uint8_t* pixel = alpha + i * ALPHA_PIXEL_BYTES;
        // Meant: opaque black gets a code here, though it is no part of a button.
        // Test: SubPicture.BlackCountsWithoutOverlap
        if (pixel[3] < VISIBLE_ALPHA) {
            indexPlane[i] = 0;
        } else {
            indexPlane[i] = menu->manyColors ? codeByColor(menu, pixel) : codeByAlpha(pixel[3]);
        }
    }
    return osFreeMem(&alpha);
}

static uint64_t makePlane(const MenuDesc* menu, const char16_t* bitmapPath, const char16_t* alphaBitmapPath,
                          int64_t videoStandard, uint8_t** plane)
{
    if (!menu || !menu->hasSubPicture32) return takePlane(bitmapPath, videoStandard, plane);
    if (uint64_t error = osAllocMem(planeBytes(videoStandard), plane)) return error;
    const uint64_t result = menu->buttonsOverlap
                                ? mapButtonsToIndex(videoStandard, menu, bitmapPath, alphaBitmapPath, *plane)
                                : orvMapAlphaToIndex(videoStandard, menu, alphaBitmapPath, *plane);
    if (result) (void)osFreeMem(plane);
    return result;
}

// ---- units --------------------------------------------------------------------------------------------------------

constexpr uint64_t UNIT_SIZE = 0, UNIT_CONTROL = 2;   // offsets of the two words in front
constexpr uint64_t UNIT_HEAD_BYTES = 4;
constexpr uint8_t UNIT_PAD = 0xFF;

constexpr uint16_t FIRST_LINE = 2, LAST_LINE_PAL = 573, LAST_LINE_NTSC = 477;
constexpr uint16_t LAST_COLUMN = PICTURE_WIDTH - 1;

static uint64_t writeControl(uint8_t** unit, int64_t videoStandard, uint64_t bottomField)
{
    const uint16_t lastLine = videoStandard == STANDARD_PAL ? LAST_LINE_PAL : LAST_LINE_NTSC;
    // Meant: contrast 0, so that a unit shows nothing until a button's colours take the place of its own.
    // Test: SubPicture.ShowsNothingByItself
    const SpuCommand commands[] = {
        { SPU_FORCED_START, {} },
        { SPU_SET_COLOR, { 3, 2, 1, 0 } },
        { SPU_SET_CONTRAST, { 0, 0, 0, 0 } },
        { SPU_SET_DISPLAY_AREA, { 0, LAST_COLUMN, FIRST_LINE, lastLine } },
        { SPU_SET_PIXEL_ADDRESSES, {} },
    };
    const SpuSequence only = { 0, 0, commands, sizeof commands / sizeof commands[0] };
    return orvWriteSpuControl(unit, videoStandard, &only, 1, osMemSize(*unit), UNIT_HEAD_BYTES, bottomField);
}

static uint64_t writeUnit(const uint8_t* plane, int64_t videoStandard, uint8_t** unit)
{
    const uint64_t height = orvPictureHeight(videoStandard);
    if (uint64_t error = orvRleEncodeField(unit, plane, PICTURE_WIDTH, height, 0)) return error;
    const uint64_t bottomField = osMemSize(*unit);
    if (uint64_t error = orvRleEncodeField(unit, plane, PICTURE_WIDTH, height, 1)) return error;
    const uint64_t control = osMemSize(*unit);
    if (uint64_t error = writeControl(unit, videoStandard, bottomField)) return error;
    if (osMemSize(*unit) % 2 != 0) {
        if (uint64_t error = osInsertMem(unit, OS_BLOCK_END, &UNIT_PAD, 1)) return error;
    }
    // Meant: a unit larger than its words can say is not refused here. Test: SubPicture.SizeAboveTheFormatIsNotChecked
    orvPut16(*unit + UNIT_SIZE, osMemSize(*unit));
    orvPut16(*unit + UNIT_CONTROL, control);
    return 0;
}

uint64_t orvEncodeSubPicture(const MenuDesc* menu, const char16_t* bitmapPath, const char16_t* alphaBitmapPath,
                             int64_t videoStandard, uint8_t** unit)
{
    *unit = nullptr;
    uint8_t* plane = nullptr;
    if (uint64_t error = makePlane(menu, bitmapPath, alphaBitmapPath, videoStandard, &plane)) return error;
    uint64_t result = osAllocMem(UNIT_HEAD_BYTES, unit);
    if (!result) result = writeUnit(plane, videoStandard, unit);
    (void)osFreeMem(&plane);
    if (result) (void)osFreeMem(unit);
    return result;
}

// ---- temporary files ----------------------------------------------------------------------------------------------

static uint64_t writeFile(const char16_t* path, const uint8_t* unit)
{
    OSFILE file = 0;
    if (osOpenFile(path, OS_CREATE, &file)) return ORV_NO_TEMP_FILE_FOR_SPU;
    uint64_t result = osWriteFile(file, unit, osMemSize(unit));
    if (osCloseFile(&file)) result = ORV_TEMP_SPU_NOT_WRITTEN;
    return result ? ORV_TEMP_SPU_NOT_WRITTEN : 0;
}

uint64_t orvEncodeSubPictureFile(int64_t videoStandard, const MenuDesc* menu, uint64_t /*blinkCount*/,
                                 uint64_t /*blinkDelay*/, const char16_t* bitmapPath, const char16_t* alphaBitmapPath,
                                 char16_t** tempPath)
{
    *tempPath = nullptr;
    char16_t* path = nullptr;
    if (osGetTempFile(u"spu", &path)) return ORV_NO_TEMP_FILE_FOR_SPU;
    uint8_t* unit = nullptr;
    uint64_t result = orvEncodeSubPicture(menu, bitmapPath, alphaBitmapPath, videoStandard, &unit);
    if (!result) result = writeFile(path, unit);
    (void)osFreeMem(&unit);
    if (result) {
        (void)osDeleteFile(path);
        (void)osStrFree(&path);
        return result;
    }
    *tempPath = path;
    return 0;
}
