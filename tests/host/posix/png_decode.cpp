// png_decode.cpp: PNG files back into pictures, by libpng.
#include "../png_decode.h"

#include <gtest/gtest.h>
#include <png.h>

Picture decodePng(const std::vector<uint8_t>& png)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, png.data(), png.size())) {
        ADD_FAILURE() << image.message;
        return { 0, 0, {} };
    }
    image.format = PNG_FORMAT_RGB;
    Picture picture = { image.width, image.height, std::vector<uint8_t>(PNG_IMAGE_SIZE(image)) };
    EXPECT_TRUE(png_image_finish_read(&image, nullptr, picture.rgb.data(), 0, nullptr)) << image.message;
    return picture;
}
