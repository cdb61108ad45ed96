// time_code.cpp: BCD time codes and palette colours, for every writer of disc structures.
#include "base/time_code.h"

#include "base/memory.h"

#include <algorithm>

namespace {

constexpr uint8_t RATE_FLAG = 0xC0;   // of the frames byte
constexpr uint8_t RATE_25 = 0x40;
constexpr uint8_t RATE_30 = 0xC0;

uint8_t toBcd(uint64_t number)
{
    // Meant: at 100 hours and more the top of the tens digit falls off. Test: TimeCode.HoursAreNotLimited
    return uint8_t((number / 10) << 4 | number % 10);
}

uint64_t fromBcd(uint8_t byte)
{
    return uint64_t(byte >> 4) * 10 + (byte & 0x0F);
}

// offset - trunc(value), held in its range.
uint32_t component(int64_t offset, double value, int64_t low, int64_t high)
{
    return uint32_t(std::clamp(offset - int64_t(value), low, high));
}

}   // namespace

DvdTimeCode orvFramesToTime(int64_t videoStandard, uint64_t frames)
{
    if (videoStandard != STANDARD_PAL && videoStandard != STANDARD_NTSC) return {};
    const uint64_t rate = videoStandard == STANDARD_PAL ? FRAMES_PAL : FRAMES_NTSC;
    const uint8_t flag = videoStandard == STANDARD_PAL ? RATE_25 : RATE_30;
    const uint64_t seconds = frames / rate;
    return { { toBcd(seconds / 3600), toBcd(seconds / 60 % 60), toBcd(seconds % 60),
               uint8_t(toBcd(frames % rate) | flag) } };
}

uint64_t orvTimeToSeconds(DvdTimeCode time)
{
    return (fromBcd(time.bytes[0]) * 60 + fromBcd(time.bytes[1])) * 60 + fromBcd(time.bytes[2]);
}

int64_t orvTimeStandard(DvdTimeCode time)
{
    const uint8_t flag = time.bytes[3] & RATE_FLAG;
    if (flag == RATE_30) return STANDARD_NTSC;
    return flag == RATE_25 ? STANDARD_PAL : 0;
}

uint64_t orvTimeToFrames(DvdTimeCode time)
{
    const int64_t standard = orvTimeStandard(time);
    if (standard == 0) return 0;
    const uint64_t frames = fromBcd(time.bytes[3] & uint8_t(~RATE_FLAG));
    return orvTimeToSeconds(time) * (standard == STANDARD_PAL ? FRAMES_PAL : FRAMES_NTSC) + frames;
}

void orvPutTime(uint8_t* to, DvdTimeCode time)
{
    osCopyMem(to, time.bytes, sizeof(time.bytes));
}

uint32_t orvRgbToYCrCb(uint64_t red, uint64_t green, uint64_t blue)
{
    const double r = double(std::min<uint64_t>(red, 255));
    const double g = double(std::min<uint64_t>(green, 255));
    const double b = double(std::min<uint64_t>(blue, 255));
    // Meant: doubles, in exactly this order; the truncations decide the last bit. Test: Color.RgbToYCrCb
    const double y = (g * 0.587 + r * 0.299 + b * 0.114) * -219.0 / 255.0;
    const double cr = (r * 0.5 - g * 0.419 - b * 0.081) * -224.0 / 255.0;
    const double cb = (r * -0.169 - g * 0.331 + b * 0.5) * -224.0 / 255.0;
    return component(16, y, 16, 255) | component(128, cr, 16, 240) << 8 | component(128, cb, 16, 240) << 16;
}
