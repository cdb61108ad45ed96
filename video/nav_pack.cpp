// nav_pack.cpp: the fields of a navigation pack that titles and menus have in common.

#include "video/nav_pack.h"

#include "base/memory.h"
#include "mux/nav_layout.h"

constexpr uint64_t SHORT_UNIT_PICTURES = 10;
constexpr uint64_t SHORT_UNIT_FRAMES = 12;
constexpr uint8_t SUB_STREAM_PCI = 0, SUB_STREAM_DSI = 1;

void orvSetUnitTimes(NavPackValues* values, const VobuRecord* record, uint64_t ticksPerFrame)
{
    // Meant: a unit of fewer than ten pictures, a still or an empty one too, is declared twelve frames long.
    // Test: NavMovie.LengthOfAUnit
    const uint64_t frames = record->pictureCount < SHORT_UNIT_PICTURES ? SHORT_UNIT_FRAMES : record->pictureCount;
    values->startPts = orvVobuStartPts(record, ticksPerFrame);
    values->endPts = values->startPts + frames * ticksPerFrame;
}

uint64_t orvVobuVideoEnd(const VobuRecord* record, uint64_t ticksPerFrame)
{
    return record->firstPts + record->pictureCount * ticksPerFrame;
}

void orvPutNavPack(uint8_t* pack, const NavPackValues* values)
{
    const VobuRecord* record = values->record;
    const uint32_t otherBits = orvGet(pack, NAV_AUDIO_BOUND) & 0x03;
    orvPut(pack, NAV_AUDIO_BOUND, values->audioStreamCount << 2 | otherBits);
    osZeroMem(pack + NAV_HEADER_BYTES, SECTOR_BYTES - NAV_HEADER_BYTES);

    orvPut(pack, PCI_PACKET, NAV_PACKET_START);
    orvPut(pack, PCI_LENGTH, PCI_PACKET_LENGTH);
    orvPut(pack, PCI_SUB_STREAM, SUB_STREAM_PCI);
    orvPut(pack, PCI_NV_PCK_LBN, record->sector);
    orvPut(pack, PCI_VOBU_S_PTM, values->startPts);
    orvPut(pack, PCI_VOBU_E_PTM, values->endPts);
    orvPut(pack, PCI_VOBU_SE_E_PTM, values->sequenceEndPts);
    orvPutTime(pack + PCI_E_ELTM.at, values->cellElapsed);

    orvPut(pack, DSI_PACKET, NAV_PACKET_START);
    orvPut(pack, DSI_LENGTH, DSI_PACKET_LENGTH);
    orvPut(pack, DSI_SUB_STREAM, SUB_STREAM_DSI);
    orvPut(pack, DSI_NV_PCK_SCR, record->scr);
    orvPut(pack, DSI_NV_PCK_LBN, record->sector);
    orvPut(pack, DSI_VOBU_EA, values->vobuEnd);
    orvPut(pack, DSI_VOBU_1STREF_EA, values->firstRefEnd);
    orvPut(pack, DSI_VOBU_2NDREF_EA, record->secondRefEnd);
    orvPut(pack, DSI_VOBU_3RDREF_EA, record->thirdRefEnd);
    orvPut(pack, DSI_VOBU_VOB_IDN, record->vobId);
    orvPut(pack, DSI_VOBU_C_IDN, record->cellId);
    orvPutTime(pack + DSI_C_ELTM.at, values->cellElapsed);
    orvPut(pack, DSI_VOB_V_S_S_PTM, values->vobStartPts);
    orvPut(pack, DSI_VOB_V_E_E_PTM, values->vobEndPts);
}
