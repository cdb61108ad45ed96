// bitmaps.cpp: pictures of menus as BMP files.
#include "tests/support/bitmaps.h"

#include <algorithm>

ByteImage::ByteImage(uint64_t lines, uint8_t value) : height(lines), pixels(width * lines, value) {}

uint8_t& ByteImage::at(uint64_t x, uint64_t line)
{
    return pixels.at(line * width + x);
}

uint8_t ByteImage::at(uint64_t x, uint64_t line) const
{
    return pixels.at(line * width + x);
}

void ByteImage::fill(uint64_t x, uint64_t line, uint64_t w, uint64_t h, uint8_t value)
{
    for (uint64_t row = line; row < line + h; row++) {
        for (uint64_t column = x; column < x + w; column++) at(column, row) = value;
    }
}

AlphaImage::AlphaImage(uint64_t lines, Rgba value) : height(lines), pixels(width * lines, value) {}

Rgba& AlphaImage::at(uint64_t x, uint64_t line)
{
    return pixels.at(line * width + x);
}

const Rgba& AlphaImage::at(uint64_t x, uint64_t line) const
{
    return pixels.at(line * width + x);
}

void AlphaImage::fill(uint64_t x, uint64_t line, uint64_t w, uint64_t h, Rgba value)
{
    for (uint64_t row = line; row < line + h; row++) {
        for (uint64_t column = x; column < x + w; column++) at(column, row) = value;
    }
}

static void put(Bytes& to, uint64_t at, uint64_t value, uint64_t bytes)
{
    for (uint64_t i = 0; i < bytes; i++) to.at(at + i) = uint8_t(value >> (8 * i));
}

/** The headers, and rows of this many bytes for the pixels. */
static Bytes emptyBmp(uint64_t width, uint64_t height, uint64_t bits, uint64_t rowBytes, const BmpSpec& form)
{
    Bytes file(form.dataOffset + rowBytes * height);
    file.at(0) = 'B';
    file.at(1) = 'M';
    put(file, 2, file.size(), 4);
    put(file, 10, form.dataOffset, 4);
    const uint64_t signedHeight = form.topDown ? 0 - height : height;
    if (form.coreHeader) {
        put(file, 14, 12, 4);
        put(file, 18, width, 2);
        put(file, 20, signedHeight, 2);
        put(file, 22, 1, 2);
        put(file, 24, bits, 2);
    } else {
        put(file, 14, 40, 4);
        put(file, 18, width, 4);
        put(file, 22, signedHeight, 4);
        put(file, 26, 1, 2);
        put(file, 28, bits, 2);
    }
    return file;
}

static uint64_t storedLine(uint64_t line, uint64_t height, const BmpSpec& form)
{
    return form.topDown ? line : height - 1 - line;
}

Bytes bmpFile(const ByteImage& image, const BmpSpec& form)
{
    const uint64_t rowBytes = (image.width + 3) / 4 * 4;
    Bytes file = emptyBmp(image.width, image.height, 8, rowBytes, form);
    for (uint64_t line = 0; line < image.height; line++) {
        const uint64_t row = form.dataOffset + storedLine(line, image.height, form) * rowBytes;
        for (uint64_t x = 0; x < image.width; x++) file.at(row + x) = image.at(x, line);
    }
    return file;
}

Bytes bmpFile(const AlphaImage& image, const BmpSpec& form)
{
    const uint64_t rowBytes = image.width * 4;
    Bytes file = emptyBmp(image.width, image.height, 32, rowBytes, form);
    for (uint64_t line = 0; line < image.height; line++) {
        const uint64_t row = form.dataOffset + storedLine(line, image.height, form) * rowBytes;
        for (uint64_t x = 0; x < image.width; x++) {
            const Rgba& pixel = image.at(x, line);
            put(file, row + 4 * x,
                pixel.blue | uint64_t(pixel.green) << 8 | uint64_t(pixel.red) << 16 | uint64_t(pixel.alpha) << 24, 4);
        }
    }
    return file;
}
