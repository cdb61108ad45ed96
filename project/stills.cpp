// stills.cpp: reads the sections of the stills of a DVD-Audio disc: ASVS, its attribute sets and its pictures.
#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "project/audio_reader.h"
#include "project/reader.h"
#include "project/values.h"

namespace {

constexpr uint64_t DISPLAY_MODE = 3, VIDEO_FLAGS = 3;

constexpr Word MPEG_TYPES[] = { { u"mpeg1", 0 }, { u"mpeg2", 1 } };
constexpr Word ASPECTS[] = { { u"4:3", 0 }, { u"16:9", 3 } };
// Meant: sizes of both standards pass in either, and any other text is the full size.
// Test: Stills.ResolutionTakesAnything
constexpr Word RESOLUTIONS[] = { { u"704x576", 1 }, { u"704x480", 1 }, { u"352x576", 2 },
                                 { u"352x480", 2 }, { u"352x288", 3 }, { u"352x240", 3 } };

/** A bounded value that is one of some words in any case. A missing key leaves *number. */
uint64_t readBoundedWord(const Section& section, const char16_t* key, const WordSet& words, uint64_t* number)
{
    char16_t value[32];
    if (!orvReadBounded(section, key, value)) return 0;
    int64_t found = int64_t(*number);
    const uint64_t result = orvFindWord(words, value, &found);
    *number = uint64_t(found);
    return result;
}

StillAttributes presetAttributes(int64_t standard)
{
    return { 1, standard == STANDARD_PAL, 0, DISPLAY_MODE, 0, VIDEO_FLAGS };
}

uint64_t readAttributeSet(const Section& section, int64_t standard, StillAttributes* attributes)
{
    *attributes = presetAttributes(standard);
    const WordSet mpegTypes = { MPEG_TYPES, true, ORV_WRONG_MPEG_TYPE };
    const WordSet aspects = { ASPECTS, true, ORV_WRONG_ASPECT };
    const WordSet resolutions = { RESOLUTIONS, true, 0 };
    if (const uint64_t error = readBoundedWord(section, u"mpegtype", mpegTypes, &attributes->mpegVersion)) return error;
    if (const uint64_t error = readBoundedWord(section, u"videomode", aspects, &attributes->aspectRatio)) return error;
    return readBoundedWord(section, u"resolution", resolutions, &attributes->resolution);
}

uint64_t readAttributeSets(const Section& section, uint64_t count, int64_t standard, AsvsDesc* asvs)
{
    if (count == 0) {
        asvs->attributeCount = 1;
        asvs->attributes[0] = presetAttributes(standard);
        return 0;
    }
    asvs->attributeCount = count;
    for (uint64_t k = 1; k <= count; k++) {
        const NumberedName name = orvNumberedName(u"ASVU_ATTRIBUTE%01ld", k);
        const Section set = { section.run, section.file, name.text };
        if (const uint64_t error = readAttributeSet(set, standard, &asvs->attributes[k - 1])) return error;
    }
    return 0;
}

uint64_t readStill(const Section& section, StillDesc* still)
{
    const auto [run, file, name] = section;
    if (const uint64_t error = orvReadPath(section, u"background", &still->background)) return error;
    if (!still->background) return ORV_NO_BACKGROUND;
    if (const uint64_t error = orvReadPath(section, u"subpicture", &still->subPicture)) return error;
    still->hasSubPicture = still->subPicture != nullptr;
    if (const uint64_t error = orvReadColorSets(run, file, name, still->colorSets)) return error;
    return orvReadButtons(run, file, name, still->buttons, &still->buttonCount);
}

uint64_t appendStill(const Section& section, StillDesc** slot)
{
    StillDesc* still = nullptr;
    if (const uint64_t error = osAllocMem(sizeof(StillDesc), &still)) return error;
    const uint64_t error = readStill(section, still);
    if (error) {
        orvFreeStill(&still);
        return error;
    }
    *slot = still;
    return 0;
}

}   // namespace

uint64_t orvReadStills(const RunHead* run, const OsProfile* file, int64_t standard, AsvsDesc* asvs)
{
    const Section section = { run, file, u"ASVS" };
    const uint64_t stills = orvReadInt(section, u"stills");
    if (stills > MAX_STILLS) return ORV_TOO_MANY_STILLS;
    const uint64_t attributes = orvReadInt(section, u"attributes");
    if (attributes > MAX_STILL_ATTRIBUTES) return ORV_TOO_MANY_STILL_ATTRIBUTES;
    if (const uint64_t error = orvReadColorTable(run, file, section.name, asvs->colorTable)) return error;
    if (const uint64_t error = readAttributeSets(section, attributes, standard, asvs)) return error;
    asvs->stillCount = stills;
    for (uint64_t i = 1; i <= stills; i++) {
        const NumberedName name = orvNumberedName(u"ASV%02ld", i);
        if (const uint64_t error = appendStill({ run, file, name.text }, &asvs->stills[i - 1])) return error;
    }
    return 0;
}
