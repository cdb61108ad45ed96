// track_info.cpp: writes and reads the information file of a finished AOB.

#include "audio/track_info.h"

#include "base/profile.h"
#include "base/strings.h"

constexpr uint64_t TEXT_ROOM = 32;
constexpr const char16_t* KEY_BLOCK_SIZE = u"TrackBlockSize";
constexpr const char16_t* KEY_FIRST_CELL_PTS = u"TrackFirstCellPts";

struct SectionName {
    char16_t text[TEXT_ROOM];
};

static SectionName sectionOf(uint64_t number)
{
    SectionName name;
    osFormat(name.text, TEXT_ROOM, u"TRACKINFO_%.2d", number);
    return name;
}

static uint64_t writeNumber(const char16_t* path, const SectionName& section, const char16_t* key, uint64_t number)
{
    char16_t text[TEXT_ROOM];
    osFormat(text, TEXT_ROOM, u"%d", number);
    return osSetIniString(path, section.text, key, text);
}

uint64_t orvWriteTrackInfo(const char16_t* path, uint64_t number, const AudioTrackDesc* track)
{
    const SectionName section = sectionOf(number);
    if (uint64_t error = writeNumber(path, section, KEY_BLOCK_SIZE, track->blockSize)) return error;
    return writeNumber(path, section, KEY_FIRST_CELL_PTS, track->firstCellPts);
}

uint64_t orvReadTrackInfo(const char16_t* path, uint64_t number, AudioTrackDesc* track)
{
    track->firstCellPts = track->blockSize = 0;
    if (!path) return 0;
    const SectionName section = sectionOf(number);
    if (uint64_t error = osGetIniInt(path, section.text, KEY_FIRST_CELL_PTS, 0, &track->firstCellPts)) return error;
    return osGetIniInt(path, section.text, KEY_BLOCK_SIZE, 0, &track->blockSize);
}
