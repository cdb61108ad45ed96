// asvs_ifo.cpp: the table of the stills, AUDIO_SV.IFO.

#include "audio/audio_ifo.h"
#include "audio/audio_ifo_layout.h"
#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"

/** All four sets are written, however many the project has. */
static void putAttributes(uint8_t* to, const AsvsDesc* asvs)
{
    for (const StillAttributes& set : asvs->attributes) {
        *to++ = uint8_t(set.mpegVersion << 6 | set.isPal << 4 | set.aspectRatio << 2 | set.displayMode);
        *to++ = uint8_t(set.resolution << 3 | set.videoFlags);
    }
}

static void putStills(uint8_t* to, const AsvsDesc* asvs)
{
    // Meant: twelve bits are all that there is; the start of a still farther on loses its high bits.
    // Test: AsvsIfo.StartSectorHasTwelveBits
    constexpr uint64_t START_BITS = 0x0FFF;
    for (uint64_t i = 0; i < asvs->stillCount; i++) orvPut16(to + 2 * i, asvs->stills[i]->startSector & START_BITS);
}

static void fillTable(uint8_t* ifo, const AsvsDesc* asvs, uint64_t vobBytes)
{
    osCopyMem(ifo + ASVS_IDENTIFIER.at, "DVDAUDIOASVS", IFO_TEXT_BYTES);
    orvPut(ifo, ASVS_UNITS, 1);
    orvPut(ifo, ASVS_VERSION, AUDIO_VERSION);
    orvPut(ifo, ASVS_VOB, ASVS_BYTES >> SECTOR_SHIFT);
    orvPut(ifo, ASVS_VOB_LAST, (vobBytes >> SECTOR_SHIFT) - 1);
    putAttributes(ifo + ASVS_ATTRIBUTES.at, asvs);
    orvPutPalette(ifo + ASVS_PALETTE.at, asvs->colorTable);
    orvPut(ifo, ASVS_STILLS, asvs->stillCount);
    orvPut(ifo, ASVS_FIRST_STILL, 1);
    putStills(ifo + ASVS_STILL_STARTS.at, asvs);
}

uint64_t orvWriteAsvsIfo(const AudioDiscContext* context, const char16_t* path, uint64_t vobBytes)
{
    OSFILE file = 0;
    if (osOpenFile(path, OS_CREATE, &file)) return ORV_ASVS_IFO_NOT_CREATED;
    uint8_t ifo[ASVS_BYTES] = {};
    fillTable(ifo, &context->asvs, vobBytes);
    uint64_t result = osWriteFile(file, ifo, sizeof(ifo));
    const uint64_t closed = osCloseFile(&file);
    return result ? result : closed;
}
