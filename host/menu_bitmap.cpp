// menu_bitmap.cpp: what a run finds wrong with a menu's bitmap. A run stops at the first fault, in this order.
#include "menu_bitmap.h"

#include "codes.h"
#include "named_file.h"

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

// File header and information header, little-endian. An information header of 12 bytes is the old form.
static constexpr size_t FILE_HEADER_BYTES = 14, HEADERS_BYTES = 54;
static constexpr size_t AT_FILE_BYTES = 2, AT_PIXELS = 10, AT_HEADER_BYTES = 14, AT_WIDTH = 18, AT_HEIGHT = 22,
                        AT_BITS = 28, AT_OLD_HEIGHT = 20, AT_OLD_BITS = 24;
static constexpr uint64_t OLD_HEADER_BYTES = 12;

struct BitmapHeader {
    uint64_t fileBytes, pixelsAt, width, height, bits;
};

static uint64_t numberAt(const std::string& bytes, size_t at, size_t width)
{
    uint64_t number = 0;
    for (size_t i = width; i > 0; i--) number = number << 8 | uint8_t(bytes[at + i - 1]);
    return number;
}

static std::string headersOf(const fs::path& path)
{
    std::string bytes(HEADERS_BYTES, '\0');
    std::ifstream in(path, std::ios::binary);
    in.read(bytes.data(), std::streamsize(bytes.size()));
    bytes.resize(size_t(in.gcount()));
    return bytes;
}

static BitmapHeader headerOf(const std::string& bytes)
{
    const bool old = numberAt(bytes, AT_HEADER_BYTES, 4) == OLD_HEADER_BYTES;
    return { numberAt(bytes, AT_FILE_BYTES, 4), numberAt(bytes, AT_PIXELS, 4), numberAt(bytes, AT_WIDTH, old ? 2 : 4),
             old ? numberAt(bytes, AT_OLD_HEIGHT, 2) : numberAt(bytes, AT_HEIGHT, 4),
             numberAt(bytes, old ? AT_OLD_BITS : AT_BITS, 2) };
}

static std::string sizeText(uint64_t width, uint64_t height)
{
    return std::to_string(width) + " x " + std::to_string(height);
}

static BitmapFault checkSize(const BitmapHeader& header, uint64_t lines)
{
    if (header.width == BITMAP_COLUMNS && header.height == lines) return {};
    const uint64_t fromTop = uint32_t(0 - header.height);   // as a negative number
    if (header.width == BITMAP_COLUMNS && fromTop == lines) {
        return { CODE_INVALID_ARGUMENT, "the bitmap's first line is the top one (its height is -" +
                                            std::to_string(lines) + "); save it with the bottom line first" };
    }
    return { CODE_INVALID_ARGUMENT, "the bitmap has " + sizeText(header.width, header.height) + " pixels, a menu has " +
                                        sizeText(BITMAP_COLUMNS, lines) + (lines == PAL_LINES ? " (PAL)" : " (NTSC)") };
}

// A bitmap of any depth is read as one byte a pixel, so it must have as many.
static BitmapFault checkPixels(const BitmapHeader& header, uint64_t lines, uint64_t bits, uint64_t bytes)
{
    const uint64_t row = (BITMAP_COLUMNS * header.bits + 31) / 32 * 4;
    const uint64_t needed = (bits == ANY_DEPTH ? std::max(row, BITMAP_COLUMNS) : row) * lines;
    const uint64_t given = header.fileBytes > header.pixelsAt ? header.fileBytes - header.pixelsAt : 0;
    if (given < row * lines || (given < needed && bytes >= header.fileBytes)) {
        return { CODE_INVALID_ARGUMENT,
                 "the bitmap's header says " + bytesText(given) + " of pixels, fewer than " + std::to_string(needed) };
    }
    if (bytes < header.fileBytes) {
        return { CODE_SHORT_READ,
                 "the file holds " + bytesText(bytes) + ", its own header says " + std::to_string(header.fileBytes) };
    }
    return {};
}

BitmapFault checkBitmap(const fs::path& path, uint64_t lines, uint64_t bits)
{
    if (std::string why = notReadableWhy(path); !why.empty()) return { CODE_FILE_NOT_FOUND, why };
    const std::string bytes = headersOf(path);
    const bool marked = bytes.starts_with("BM");
    if (bytes.size() >= FILE_HEADER_BYTES && !marked) {
        return { CODE_INVALID_ARGUMENT, "the file is no BMP bitmap" };
    }
    if (bytes.size() < HEADERS_BYTES) {
        return { CODE_SHORT_READ, "the file holds " + bytesText(bytes.size()) + ", less than a bitmap's headers" };
    }
    const BitmapHeader header = headerOf(bytes);
    if (BitmapFault fault = checkSize(header, lines); fault.code) return fault;
    if (BitmapFault fault = checkPixels(header, lines, bits, fileBytes(path)); fault.code) return fault;
    if (bits == ANY_DEPTH || header.bits == bits) return {};
    return { bits == COLLISION_DEPTH ? CODE_NOT_8BIT : CODE_NOT_32BIT,
             "the bitmap has " + std::to_string(header.bits) + " bits a pixel, not " + std::to_string(bits) };
}

std::vector<uint8_t> readCollisionMap(const fs::path& path, uint64_t lines)
{
    if (checkBitmap(path, lines, COLLISION_DEPTH).code) return {};
    std::vector<uint8_t> pixels(BITMAP_COLUMNS * lines);
    std::ifstream in(path, std::ios::binary);
    in.seekg(std::streamoff(headerOf(headersOf(path)).pixelsAt));
    in.read(reinterpret_cast<char*>(pixels.data()), std::streamsize(pixels.size()));
    return in ? pixels : std::vector<uint8_t>();
}
