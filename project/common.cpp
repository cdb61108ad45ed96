// common.cpp: reads the sections COMMON and FIRSTPLAY, with which every run begins.
#include "base/result.h"
#include "base/time_code.h"
#include "project/reader.h"
#include "project/slots.h"
#include "project/values.h"

namespace {

constexpr uint64_t FORMAT_MAJOR_VERSION = 1;

constexpr Word STANDARDS[] = { { u"PAL", STANDARD_PAL }, { u"NTSC", STANDARD_NTSC } };

// The two kinds of run read the same section and fail with codes of their own. Test: Common.AudioCodes
struct CommonCodes {
    uint64_t noVersion;
    uint64_t wrongVersion;
    uint64_t wrongMode;
};

uint64_t readVersion(const Section& section, const CommonCodes& codes)
{
    char16_t value[32];
    if (!orvReadBounded(section, u"version", value)) return codes.noVersion;
    const Slot majorSlot = { u"major version", u"common" };
    const Slot minorSlot = { u"minor version", u"common" };
    const char16_t* cursor = value;
    uint64_t majorVersion = 0, minorVersion = 0;
    if (const uint64_t error = orvReadNumber(section.run, &cursor, majorSlot, &majorVersion)) return error;
    if (const uint64_t error = orvReadSeparator(section.run, &cursor, TOKEN_DOT, majorSlot)) return error;
    if (const uint64_t error = orvReadNumber(section.run, &cursor, minorSlot, &minorVersion)) return error;
    // Meant: any minor version will do, and so will anything behind it. Test: Common.Version
    return majorVersion == FORMAT_MAJOR_VERSION ? 0 : codes.wrongVersion;
}

// The key `software` is the host's own: nothing is made of it.
uint64_t readCommonKeys(const Section& section, const CommonCodes& codes, int64_t* standard)
{
    if (const uint64_t error = readVersion(section, codes)) return error;
    int64_t mode = STANDARD_PAL;
    const WordSet modes = { STANDARDS, true, codes.wrongMode };
    if (const uint64_t error = orvReadWord(section, u"mode", modes, &mode)) return error;
    *standard = mode;
    return 0;
}

}   // namespace

uint64_t orvReadCommon(const RunHead* run, const OsProfile* file, int64_t* standard)
{
    const CommonCodes codes = { ORV_NO_VERSION, ORV_WRONG_VERSION, ORV_UNKNOWN_VIDEO_MODE };
    return readCommonKeys({ run, file, u"COMMON" }, codes, standard);
}

uint64_t orvReadAudioCommon(const RunHead* run, const OsProfile* file, int64_t* standard)
{
    const CommonCodes codes = { ORV_NO_AUDIO_VERSION, ORV_WRONG_AUDIO_VERSION, ORV_WRONG_AUDIO_VIDEO_MODE };
    return readCommonKeys({ run, file, u"COMMON" }, codes, standard);
}

uint64_t orvSetStandard(RunHead* head, int64_t standard)
{
    if (standard != STANDARD_PAL && standard != STANDARD_NTSC) return ORV_WRONG_VIDEO_FORMAT;
    head->videoStandard = standard;
    head->frameTicks = orvFrameTicks(standard);
    return 0;
}

uint64_t orvReadFirstPlay(DiscContext* context, const OsProfile* file)
{
    context->firstPlayCommand = 0;
    context->firstPlayParam1 = context->firstPlayParam2 = context->firstPlayParam3 = 0;
    const Section section = { &context->head, file, u"FIRSTPLAY" };
    char16_t value[64];
    if (!orvReadBounded(section, u"cmd", value)) return 0;
    const char16_t* cursor = value;
    const CommandSlots slots = { &context->firstPlayCommand, &context->firstPlayParam1, &context->firstPlayParam2,
                                 &context->firstPlayParam3 };
    return orvReadCommand(section.run, &cursor, u"firstplay", slots);
}
