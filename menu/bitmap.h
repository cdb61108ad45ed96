// bitmap.h: reads the bitmaps of menus and stills, uncompressed Windows BMP files of the picture's exact size.
#pragma once

#include <cstdint>

inline constexpr uint64_t PICTURE_WIDTH = 720;                   // pixels of every picture
inline constexpr uint64_t COLLISION_BITS = 8, ALPHA_BITS = 32;   // depths of the two bitmaps of a menu
inline constexpr uint64_t ALPHA_PIXEL_BYTES = 4;                 // in the file's order: blue, green, red, alpha
inline constexpr uint8_t VISIBLE_ALPHA = 32;                     // alpha from which a pixel counts

/** Lines of a picture: 576 for PAL, 480 for any other standard. */
[[nodiscard]] uint64_t orvPictureHeight(int64_t videoStandard);

/** Reads a bitmap's pixels as they stand in the file, bottom line first, into a block that the caller owns. The block
    holds the rows of the bitmap's own depth, each padded to four bytes, and perhaps what lies behind; of a bitmap of
    more than 32 bits it holds as much as one of 32 has. Palette and compression are not
    looked at.
    @param bitsPerPixel  may be null
    @param pixels        null: nothing is done, a success
    @return 0; ORV_INVALID_ARGUMENT for a file that is no bitmap, has not the picture's size, or whose pixel array is
            too small by its own header; OS_SHORT_READ for a cut file; a platform's number */
[[nodiscard]] uint64_t orvReadBitmap(const char16_t* path, int64_t videoStandard, uint64_t* bitsPerPixel,
                                     uint8_t** pixels);

/** Reads the collision map of a menu: 8 bits, else ORV_COLLISION_BITMAP_NOT_8BIT. Nothing is left allocated on
    failure. */
[[nodiscard]] uint64_t orvReadCollisionMap(const char16_t* path, int64_t videoStandard, uint8_t** pixels);
/** Reads the alpha bitmap of a menu: 32 bits, else ORV_ALPHA_BITMAP_NOT_32BIT. */
[[nodiscard]] uint64_t orvReadAlphaBitmap(const char16_t* path, int64_t videoStandard, uint8_t** pixels);

/** Colour value of a pixel of 32 bits: red << 16 | green << 8 | blue. */
[[nodiscard]] inline uint32_t orvPixelColor(const uint8_t* pixel)
{
    return uint32_t(pixel[2]) << 16 | uint32_t(pixel[1]) << 8 | pixel[0];
}
/** Whether a pixel of 32 bits shows in a button.
    Meant: pure black never does. Test: SubPicture.BlackIsNoPartOfAButton */
[[nodiscard]] inline bool orvPixelVisible(const uint8_t* pixel)
{
    return pixel[3] >= VISIBLE_ALPHA && orvPixelColor(pixel) != 0;
}
