// png.cpp: a picture as the bytes of a PNG file, by libpng.
#include "../png.h"

#include <png.h>

std::vector<uint8_t> encodePng(const Picture& picture)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(picture.width);
    image.height = png_uint_32(picture.height);
    image.format = PNG_FORMAT_RGB;
    std::vector<uint8_t> png(PNG_IMAGE_PNG_SIZE_MAX(image));
    png_alloc_size_t bytes = png.size();
    const bool done = png_image_write_to_memory(&image, png.data(), &bytes, 0, picture.rgb.data(), 0, nullptr);
    png_image_free(&image);
    png.resize(done ? bytes : 0);
    return png;
}
