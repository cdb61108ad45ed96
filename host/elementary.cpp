// elementary.cpp: files that hold one elementary stream: what it is.
#include "elementary.h"

#include "codes.h"
#include "wave_file.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

// A fault in the words of the library, or in the host's own.
static FileFault fault(uint64_t code, const std::string& why)
{
    return { code, why };
}

static std::string textOf(uint64_t number)
{
    return std::to_string(number);
}

// ---- video --------------------------------------------------------------------------------------------------------

static constexpr uint64_t RATE_25 = 3, RATE_29_97 = 4;

struct PictureSize {
    uint64_t width, height, ticks;
};

static constexpr PictureSize PICTURE_SIZES[] = {
    { 720, 576, PAL_PICTURE_TICKS },  { 704, 576, PAL_PICTURE_TICKS },  { 352, 576, PAL_PICTURE_TICKS },
    { 352, 288, PAL_PICTURE_TICKS },  { 720, 480, NTSC_PICTURE_TICKS }, { 704, 480, NTSC_PICTURE_TICKS },
    { 352, 480, NTSC_PICTURE_TICKS }, { 352, 240, NTSC_PICTURE_TICKS },
};

static std::string rateText(uint64_t rateCode)
{
    static const char* const rates[] = { "23.976", "24", "25", "29.97", "30", "50", "59.94", "60" };
    return rateCode >= 1 && rateCode <= std::size(rates) ? rates[rateCode - 1] : "an unknown number of";
}

static FileFault readVideo(const uint8_t* head, uint64_t bytes, StreamFormat* format)
{
    format->kind = STREAM_VIDEO;
    format->bytes = bytes;
    format->width = uint64_t(head[4]) << 4 | head[5] >> 4;
    format->height = uint64_t(head[5] & 0x0F) << 8 | head[6];
    const uint64_t rate = head[7] & 0x0F;
    if (rate != RATE_25 && rate != RATE_29_97) {
        return fault(CODE_VIDEO_STANDARD,
                     "it has " + rateText(rate) + " pictures a second; PAL has 25, NTSC has 29.97");
    }
    format->unitTicks = rate == RATE_25 ? PAL_PICTURE_TICKS : NTSC_PICTURE_TICKS;
    for (const PictureSize& size : PICTURE_SIZES) {
        if (size.width == format->width && size.height == format->height && size.ticks == format->unitTicks) return {};
    }
    const bool pal = rate == RATE_25;
    return fault(0, "its pictures are " + textOf(format->width) + " x " + textOf(format->height) + " at " +
                        rateText(rate) + " a second; " +
                        (pal ? "PAL has 720 x 576, 704 x 576, 352 x 576 or 352 x 288"
                             : "NTSC has 720 x 480, 704 x 480, 352 x 480 or 352 x 240"));
}

// ---- audio --------------------------------------------------------------------------------------------------------

static constexpr uint64_t AC3_TICKS = 2880, AC3_BYTES_PER_KBIT = 4;         // 1536 samples of 48 kHz are 32 ms
static constexpr uint64_t LAYER2_TICKS = 2160, LAYER2_BYTES_PER_KBIT = 3;   // 1152 samples are 24 ms
static constexpr uint8_t NOT_48_KHZ = 0xC0;                                 // bits of AC-3's fifth byte
static constexpr uint8_t LAST_AC3_VERSION = 10;                             // above: another coding with the same sync

/** By its size code; 0 if that stands for none at 48 kHz. */
static uint64_t ac3FrameBytes(uint8_t sizeCode)
{
    static constexpr uint16_t rates[] = { 32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                          192, 224, 256, 320, 384, 448, 512, 576, 640 };   // kbit/s
    const uint64_t pair = sizeCode / 2;
    return pair < std::size(rates) ? rates[pair] * AC3_BYTES_PER_KBIT : 0;
}

static FileFault readAc3(const uint8_t* head, uint64_t bytes, StreamFormat* format)
{
    format->kind = STREAM_AC3;
    format->bytes = bytes;
    format->exchanged = head[0] == 0x77;
    format->unitTicks = AC3_TICKS;
    const uint8_t sizeCode = format->exchanged ? head[5] : head[4], version = format->exchanged ? head[4] : head[5];
    if (version >> 3 > LAST_AC3_VERSION) return fault(0, "it is Enhanced AC-3, which a DVD has not");
    if (sizeCode & NOT_48_KHZ) return fault(CODE_SOUND_RATE, "it has not 48000 samples a second");
    format->unitBytes = ac3FrameBytes(sizeCode);
    format->kbits = format->unitBytes / AC3_BYTES_PER_KBIT;
    return format->unitBytes ? FileFault{} : fault(0, "its first AC-3 frame is damaged: it tells no size");
}

static FileFault readLayer2(const uint8_t* head, uint64_t bytes, StreamFormat* format)
{
    static constexpr uint16_t rates[16] = { 0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0 };
    static constexpr uint8_t layers[4] = { 0, 3, 2, 1 };
    const uint64_t layer = layers[head[1] >> 1 & 3];
    format->kind = STREAM_LAYER2;
    format->bytes = bytes;
    if (layer != 2) return fault(CODE_SOUND_LAYER, "it is MPEG audio of layer " + textOf(layer));
    if ((head[1] & 0x08) == 0 || (head[2] & 0x0C) != 0x04) {
        return fault(CODE_SOUND_RATE, "it has not 48000 samples a second");
    }
    format->kbits = rates[head[2] >> 4];
    format->unitTicks = LAYER2_TICKS;
    format->unitBytes = format->kbits * LAYER2_BYTES_PER_KBIT;
    return format->kbits ? FileFault{} : fault(0, "its bit rate is none of the fixed ones");
}

bool isFrameOf(const StreamFormat& format, const uint8_t* head)
{
    if (format.kind == STREAM_AC3) {
        const uint8_t sizeCode = format.exchanged ? head[5] : head[4];
        const bool sync = format.exchanged ? head[0] == 0x77 && head[1] == 0x0B : head[0] == 0x0B && head[1] == 0x77;
        return sync && (sizeCode & NOT_48_KHZ) == 0 && ac3FrameBytes(sizeCode) == format.unitBytes;
    }
    StreamFormat other;
    return head[0] == 0xFF && (head[1] & 0xF0) == 0xF0 && !readLayer2(head, 0, &other) &&
           other.unitBytes == format.unitBytes;
}

// ---- all ----------------------------------------------------------------------------------------------------------

struct ForeignStart {
    std::string_view start;
    uint64_t at;
    const char* why;
};

using namespace std::string_view_literals;

// What people may take for an elementary stream of a DVD.
static const ForeignStart FOREIGN[] = {
    { "\0\0\1\xBA"sv, 0, "it is a program stream, which holds several streams; take them out of it first" },
    { "\0\0\0\1"sv, 0, "it is video of another coding; a DVD has MPEG-2" },
    { "\x7F\xFE\x80\x01"sv, 0, "it is DTS, which the multiplexer does not take" },
    { "RF64"sv, 0, "it is a WAVE file of 64 bits; sounds of less than 4 GiB can be written as plain RIFF/WAVE" },
    { "RIFF"sv, 0, "it is a RIFF file, but no WAVE" },
    { "ID3"sv, 0, "it begins with a tag for players of music, as files of MPEG audio of layer 3 do" },
    { "ftyp"sv, 4, "it is an MP4 or QuickTime file, which holds several streams; take them out of it first" },
    { "\x1A\x45\xDF\xA3"sv, 0, "it is a Matroska file, which holds several streams; take them out of it first" },
    { "OggS"sv, 0, "it is an Ogg file; a DVD has none of its codings" },
    { "fLaC"sv, 0, "it is FLAC; a DVD has LPCM, so write it as RIFF/WAVE" },
};

static FileFault nothingKnown(std::string_view head)
{
    for (const ForeignStart& foreign : FOREIGN) {
        if (head.substr(foreign.at).starts_with(foreign.start)) return fault(0, foreign.why);
    }
    return fault(0,
                 "it begins neither as MPEG-2 video (00 00 01 B3) nor as AC-3 (0B 77), MPEG audio of layer 2 (FF Fx) "
                 "or RIFF/WAVE");
}

FileFault recogniseStream(std::istream& in, uint64_t bytes, StreamFormat* format)
{
    constexpr uint64_t HEAD_BYTES = 16;
    std::vector<uint8_t> head(HEAD_BYTES);
    in.read(reinterpret_cast<char*>(head.data()), std::streamsize(HEAD_BYTES));
    if (in.gcount() < std::streamsize(HEAD_BYTES)) return fault(0, "it is too short to hold a stream");
    const std::string_view start(reinterpret_cast<const char*>(head.data()), HEAD_BYTES);
    *format = {};
    if (start.starts_with("RIFF") && start.substr(8).starts_with("WAVE")) return readWave(in, bytes, format);
    if (start.starts_with("\0\0\1\xB3"sv)) return readVideo(head.data(), bytes, format);
    if (start.starts_with("\x0B\x77") || start.starts_with("\x77\x0B")) return readAc3(head.data(), bytes, format);
    if (head[0] == 0xFF && (head[1] & 0xF0) == 0xF0 && (head[1] & 0x06) != 0) {
        return readLayer2(head.data(), bytes, format);
    }
    return nothingKnown(start);
}

std::string streamText(const StreamFormat& format)
{
    switch (format.kind) {
    case STREAM_VIDEO:
        return std::string(format.unitTicks == PAL_PICTURE_TICKS ? "PAL" : "NTSC") + " video, " + textOf(format.width) +
               " x " + textOf(format.height);
    case STREAM_AC3: return "AC-3, " + textOf(format.kbits) + " kbit/s";
    case STREAM_LAYER2: return "MPEG audio of layer 2, " + textOf(format.kbits) + " kbit/s";
    default: break;
    }
    return "LPCM, " + textOf(format.channels) + (format.channels == 1 ? " channel, " : " channels, ") +
           textOf(format.bits) + " bits, " + textOf(format.rate) + " Hz";
}
