// bitmaps.h: pictures of menus, drawn by tests, and the BMP files that hold them. Lines count from the top here.
#pragma once

#include "tests/support/files.h"

#include <cstdint>
#include <vector>

// One byte a pixel: a collision map or a plane of pixel codes.
struct ByteImage {
    explicit ByteImage(uint64_t lines, uint8_t value = 0);

    uint8_t& at(uint64_t x, uint64_t line);
    uint8_t at(uint64_t x, uint64_t line) const;
    /** Columns x to x + w - 1 of the lines from line on, h of them. */
    void fill(uint64_t x, uint64_t line, uint64_t w, uint64_t h, uint8_t value);

    uint64_t width = 720, height;
    std::vector<uint8_t> pixels;   // top line first
};

struct Rgba {
    uint8_t red = 0, green = 0, blue = 0, alpha = 0;
    bool operator==(const Rgba&) const = default;
};

// A picture with alpha.
struct AlphaImage {
    explicit AlphaImage(uint64_t lines, Rgba value = {});

    Rgba& at(uint64_t x, uint64_t line);
    const Rgba& at(uint64_t x, uint64_t line) const;
    void fill(uint64_t x, uint64_t line, uint64_t w, uint64_t h, Rgba value);

    uint64_t width = 720, height;
    std::vector<Rgba> pixels;
};

// What a BMP file says of itself, where it lies.
struct BmpSpec {
    uint32_t dataOffset = 54;   // bytes between the headers and the pixels are 0
    bool coreHeader = false;    // the old information header of 12 bytes
    bool topDown = false;       // negative height, top line first
};

/** A BMP file: file header of 14 bytes, information header of 40 (a core header of 12, then 28 bytes of 0), pixels
    bottom line first, rows padded to four bytes. */
Bytes bmpFile(const ByteImage& image, const BmpSpec& form = {});
Bytes bmpFile(const AlphaImage& image, const BmpSpec& form = {});
