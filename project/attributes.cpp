// attributes.cpp: reads the video and audio attributes and the colour table of one domain of the disc.
#include "base/log.h"
#include "base/result.h"
#include "base/time_code.h"
#include "project/reader.h"
#include "project/slots.h"
#include "project/values.h"

#include <algorithm>

namespace {

constexpr uint64_t MAX_COLOR = 255;
constexpr uint64_t MAX_CHANNELS = 6, DEFAULT_CHANNELS = 2;
constexpr uint64_t DEFAULT_LANGUAGE = u'd' | u'e' << 8;

constexpr Word ASPECTS[] = { { u"4:3", 0 }, { u"16:9", 3 } };   // the values of the IFO's aspect field
constexpr WordSet ASPECT_WORDS = { ASPECTS, false, ORV_WRONG_ASPECT };

constexpr Word PAL_PICTURES[] = { { u"720x576", 0 }, { u"704x576", 1 }, { u"352x576", 2 }, { u"352x288", 3 } };
constexpr Word NTSC_PICTURES[] = { { u"720x480", 0 }, { u"704x480", 1 }, { u"352x480", 2 }, { u"352x240", 3 } };
constexpr WordSet PAL_PICTURE_WORDS = { PAL_PICTURES, false, ORV_WRONG_RESOLUTION };
constexpr WordSet NTSC_PICTURE_WORDS = { NTSC_PICTURES, false, ORV_WRONG_RESOLUTION };

constexpr Word BITRATES[] = { { u"vbr", 0 }, { u"cbr", 1 } };
constexpr WordSet BITRATE_WORDS = { BITRATES, true, ORV_WRONG_BITRATE_MODE };

constexpr int64_t MPEG1 = 0, MPEG2 = 1;
constexpr Word MPEG_TYPES[] = { { u"mpeg1", MPEG1 }, { u"mpeg2", MPEG2 } };
constexpr WordSet MPEG_TYPE_WORDS = { MPEG_TYPES, true, ORV_WRONG_MPEG_TYPE };

constexpr Word AUDIO_FORMATS[] = {
    { u"none", AUDIO_NONE }, { u"AC3", AUDIO_AC3 }, { u"layer2", AUDIO_LAYER2 },
    { u"PCM", AUDIO_PCM },   { u"DTS", AUDIO_DTS }, { u"SDDS", AUDIO_SDDS },
};
constexpr WordSet AUDIO_FORMAT_WORDS = { AUDIO_FORMATS, true, ORV_WRONG_AUDIO_TYPE };

// Ids of a format's first stream. The n-th stream of a domain adds n to the one that counts.
struct AudioIds {
    int64_t format;
    uint64_t streamId;
    uint64_t subStreamId;   // 0: streams are told apart by streamId
};
constexpr AudioIds AUDIO_IDS[] = {
    { AUDIO_AC3, STREAM_PRIVATE_1, 0x80 },  { AUDIO_LAYER2, STREAM_AUDIO, 0 },
    { AUDIO_PCM, STREAM_PRIVATE_1, 0xA0 },  { AUDIO_DTS, STREAM_PRIVATE_1, 0x88 },
    { AUDIO_SDDS, STREAM_PRIVATE_1, 0x90 },
};

// An integer key with its code on the disc. 0, which is also a missing key, stands for the first row.
struct CodedInt {
    uint64_t value;
    uint64_t code;
};
constexpr CodedInt SAMPLE_RATES[] = { { 48, 0 }, { 96, 1 } };              // kHz
constexpr CodedInt SAMPLE_SIZES[] = { { 16, 0 }, { 20, 1 }, { 24, 2 } };   // bits

uint64_t readCodedInt(const Section& section, const char16_t* key, std::span<const CodedInt> rows, uint64_t unknown,
                      uint64_t* code)
{
    const uint64_t value = orvReadInt(section, key);
    for (const CodedInt& row : rows) {
        if (value != row.value && value != 0) continue;
        *code = row.code;
        return 0;
    }
    return unknown;
}

uint64_t readResolution(const Section& section, int64_t standard, AttributeSet* attributes)
{
    StringValue value;
    if (const uint64_t error = orvReadString(section, u"resolution", &value)) return error;
    int64_t resolution = 0;
    const WordSet& pictures = standard == STANDARD_PAL ? PAL_PICTURE_WORDS : NTSC_PICTURE_WORDS;
    if (value.length) {
        if (const uint64_t error = orvFindWord(pictures, value.text, &resolution)) {
            orvLogError(error, section.run->logFilePath, u"Unknown Resolution, found: %s", value.text);
            return error;
        }
    }
    attributes->resolution = uint64_t(resolution);
    return 0;
}

uint64_t readVideoKeys(const Section& section, int64_t standard, AttributeSet* attributes)
{
    attributes->playTime = std::max<uint64_t>(orvReadInt(section, u"playtime"), 1);
    int64_t aspect = 0, bitrate = 0, mpegType = MPEG2;
    if (const uint64_t error = orvReadWord(section, u"videomode", ASPECT_WORDS, &aspect)) return error;
    attributes->aspectRatio = uint64_t(aspect);
    if (const uint64_t error = readResolution(section, standard, attributes)) return error;
    if (const uint64_t error = orvReadWord(section, u"bitrate", BITRATE_WORDS, &bitrate)) return error;
    attributes->bitrateMode = uint64_t(bitrate);
    if (const uint64_t error = orvReadWord(section, u"mpegtype", MPEG_TYPE_WORDS, &mpegType)) return error;
    attributes->mpegVersion = uint64_t(mpegType);
    attributes->isPal = standard == STANDARD_PAL;
    return 0;
}

uint64_t readLanguage(const Section& section, const char16_t* key, AudioStreamDesc* stream)
{
    stream->languageCode = DEFAULT_LANGUAGE;
    StringValue value;
    if (const uint64_t error = orvReadString(section, key, &value)) return error;
    if (!value.length) return 0;
    if (value.length != 2) return ORV_WRONG_LANGUAGE;
    stream->languageCode = uint64_t(value.text[0] & 0xFF) | uint64_t(value.text[1] & 0xFF) << 8;
    return 0;
}

void giveAudioIds(AttributeSet* attributes, AudioStreamDesc* stream)
{
    const uint64_t n = attributes->audioIdCounter++;
    attributes->audioStreamCount++;
    for (const AudioIds& ids : AUDIO_IDS) {
        if (ids.format != stream->audioFormat) continue;
        stream->streamId = ids.subStreamId ? ids.streamId : ids.streamId + n;
        stream->subStreamId = ids.subStreamId ? ids.subStreamId + n : 0;
    }
}

uint64_t readColor(const Section& section, const char16_t* key, uint32_t* color)
{
    uint64_t red = 0, green = 0, blue = 0;
    char16_t value[32];
    if (orvReadBounded(section, key, value)) {
        const NumberSlot slots[] = { { u"red", &red }, { u"green", &green }, { u"blue", &blue } };
        const char16_t* cursor = value;
        if (const uint64_t error = orvReadNumbers(section.run, &cursor, u"colortable", slots)) return error;
    }
    if (std::max({ red, green, blue }) > MAX_COLOR) return ORV_COLOR_OUT_OF_RANGE;
    // Meant: a missing key is black, which is not 0 in the table. Test: Attributes.NoKeys
    *color = orvRgbToYCrCb(red, green, blue);
    return 0;
}

}   // namespace

uint64_t orvReadAudioStream(const RunHead* run, AttributeSet* attributes, AudioStreamDesc* stream,
                            const OsProfile* file, const char16_t* section, const char16_t* suffix)
{
    const Section at = { run, file, section };
    const auto key = [suffix](const char16_t* name) { return orvNumberedName(u"%s%s", name, suffix ? suffix : u""); };
    stream->audioFormat = AUDIO_NONE;
    if (const uint64_t error = orvReadWord(at, key(u"audio").text, AUDIO_FORMAT_WORDS, &stream->audioFormat)) {
        return error;
    }
    if (stream->audioFormat == AUDIO_NONE) return 0;

    const uint64_t channels = orvReadInt(at, key(u"channel").text);
    if (channels > MAX_CHANNELS) return ORV_WRONG_AUDIO_CHANNELS;
    stream->channelCount = channels ? channels : DEFAULT_CHANNELS;
    if (const uint64_t error = readCodedInt(at, key(u"samplerate").text, SAMPLE_RATES, ORV_WRONG_AUDIO_SAMPLE_RATE,
                                            &stream->sampleRateCode)) {
        return error;
    }
    if (const uint64_t error = readCodedInt(at, key(u"samplesize").text, SAMPLE_SIZES, ORV_WRONG_AUDIO_SAMPLE_SIZE,
                                            &stream->quantization)) {
        return error;
    }
    if (const uint64_t error = readLanguage(at, key(u"language").text, stream)) return error;
    giveAudioIds(attributes, stream);
    return 0;
}

uint64_t orvReadColorTable(const RunHead* run, const OsProfile* file, const char16_t* section,
                           uint32_t colorTable[PALETTE_ENTRIES])
{
    for (uint64_t k = 0; k < PALETTE_ENTRIES; k++) {
        const NumberedName key = orvNumberedName(u"colortable%ld", k + 1);
        if (const uint64_t error = readColor({ run, file, section }, key.text, &colorTable[k])) return error;
    }
    return 0;
}

uint64_t orvReadAttributes(const RunHead* run, const OsProfile* file, const char16_t* section, int64_t standard,
                           AttributeSet* attributes)
{
    const Section at = { run, file, section };
    if (const uint64_t error = readVideoKeys(at, standard, attributes)) return error;
    attributes->audioStreamCount = 0;
    if (const uint64_t error = orvReadAudioStream(run, attributes, &attributes->audio[0], file, section, nullptr)) {
        return error;
    }
    const uint64_t streams = orvReadInt(at, u"astreams");
    if (streams > MAX_AUDIO_STREAMS) return ORV_TOO_MANY_AUDIO_STREAMS;
    // Meant: `astreams` is a switch and no count; from 2 on all streams are read. Test: Attributes.StreamSwitch
    for (uint64_t k = 2; streams >= 2 && k <= MAX_AUDIO_STREAMS; k++) {
        const NumberedName suffix = orvNumberedName(u"%d", k);
        if (const uint64_t error =
                orvReadAudioStream(run, attributes, &attributes->audio[k - 1], file, section, suffix.text)) {
            return error;
        }
    }
    return orvReadColorTable(run, file, section, attributes->colorTable);
}
