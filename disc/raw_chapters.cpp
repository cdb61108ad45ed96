// raw_chapters.cpp: renumbers the cell of one navigation pack by the chapters of a project, for a host that walks a
// finished VOB.

#include "base/bytes.h"
#include "base/memory.h"
#include "base/profile.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/wide.h"
#include "mux/nav_layout.h"
#include "mux/pack_layout.h"

#include <orven/disc.h>

constexpr uint64_t CHAPTER_ROOM = 254;   // one less than a title set may have
constexpr uint64_t NAME_ROOM = 32;       // characters of a section's or a key's name

// Positions of the chapters, in ticks, in the order of the keys.
struct ChapterList {
    uint64_t count;
    uint64_t at[CHAPTER_ROOM];
};

static uint64_t readChapters(const OsProfile* project, uint64_t titleSetNumber, ChapterList* chapters)
{
    char16_t section[NAME_ROOM];
    // Meant: the one form without a leading zero; a section VTS_01 is not found. Test: RawChapters.SectionWithoutZero
    osFormat(section, NAME_ROOM, u"VTS_%ld", titleSetNumber);
    chapters->count = osProfileInt(project, section, u"chapters", 0);
    if (chapters->count > CHAPTER_ROOM) return ORV_TOO_MANY_CHAPTERS;
    uint64_t before = 0;
    for (uint64_t i = 0; i < chapters->count; i++) {
        char16_t key[NAME_ROOM];
        osFormat(key, NAME_ROOM, u"chapter%ld", i + 1);
        const uint64_t position = osProfileInt(project, section, key, 0);
        if (position) before = position;
        chapters->at[i] = before;
    }
    return 0;
}

static uint64_t checkSector(const uint8_t* sector)
{
    constexpr uint32_t PACK_START_CODE = 0x00000100 | PACK_START;
    constexpr uint32_t SYSTEM_HEADER = START_CODE_PREFIX << 8 | STREAM_SYSTEM_HEADER;
    if (orvGet32(sector) != PACK_START_CODE) return ORV_BAD_SECTOR;
    if (orvGet16(sector + PACK_PACKET_PREFIX.at) != SYSTEM_HEADER) return ORV_NOT_A_NAV_PACK;
    if (orvGet16(sector + PCI_PACKET.at + 2) != (NAV_PACKET_START & 0xFFFF)) return ORV_NOT_A_NAV_PACK;
    return 0;
}

/** Cell of a position. The list need not rise: each entry counts. */
static uint64_t cellAt(const ChapterList* chapters, uint64_t position)
{
    uint64_t cell = 1;
    for (uint64_t i = 0; i < chapters->count; i++) {
        if (chapters->at[i] <= position) cell++;
    }
    return cell;
}

static uint64_t setChapter(uint8_t* sector, const OsProfile* project, uint64_t titleSetNumber, uint64_t* nextVobu,
                           uint64_t* changed)
{
    ChapterList chapters;
    if (uint64_t error = readChapters(project, titleSetNumber, &chapters)) return error;
    if (chapters.count == 0) return 0;
    if (uint64_t error = checkSector(sector)) return error;

    const uint64_t cell = cellAt(&chapters, orvGet(sector, DSI_NV_PCK_SCR));
    const bool differs = cell != orvGet(sector, DSI_VOBU_C_IDN);
    if (differs) orvPut(sector, DSI_VOBU_C_IDN, cell);
    const bool last = orvGet(sector, PCI_VOBU_E_PTM) == orvGet(sector, PCI_VOBU_SE_E_PTM);
    if (nextVobu) *nextVobu = last ? ORV_LAST_VOBU : orvGet(sector, DSI_VOBU_EA);
    if (changed) *changed = differs ? 1 : 0;
    return 0;
}

static uint64_t setRawChapter(uint8_t* sector, const char16_t* projectPath, uint64_t titleSetNumber, uint64_t* nextVobu,
                              uint64_t* changed)
{
    if (!sector || !projectPath) return ORV_INVALID_ARGUMENT;
    OsProfile* project = nullptr;
    if (uint64_t error = osOpenProfile(projectPath, &project)) return error;
    const uint64_t result = setChapter(sector, project, titleSetNumber, nextVobu, changed);
    osCloseProfile(&project);
    return result;
}

extern "C" uint64_t SetRawChapterW(uint8_t* sector, const OrvWChar* projectPath, uint64_t titleSetNumber,
                                   uint64_t* nextVobu, uint64_t* changed)
{
    return setRawChapter(sector, orvText(projectPath), titleSetNumber, nextVobu, changed);
}

extern "C" uint64_t SetRawChapter(uint8_t* sector, const char* projectPath, uint64_t titleSetNumber, uint64_t* nextVobu,
                                  uint64_t* changed)
{
    if (!projectPath) return ORV_INVALID_ARGUMENT;
    char16_t* path = nullptr;
    if (uint64_t error = osAnsiToWide(&path, projectPath, nullptr)) return error;
    const uint64_t result = setRawChapter(sector, path, titleSetNumber, nextVobu, changed);
    (void)osStrFree(&path);
    return result;
}
