// nav_fill.cpp: the navigation pack of a unit that the scheduler has closed.

#include "mux/nav_fill.h"

#include "base/bytes.h"
#include "base/time_code.h"
#include "mux/nav_layout.h"

constexpr uint8_t SUB_STREAM_PCI = 0, SUB_STREAM_DSI = 1;
constexpr uint32_t NEVER = 0xFFFFFFFF;

// Time code of the unit's first picture. Meant: a count of 25 a second also for other material; the pass over the
// stream turns it into the real one. Test: NavFill.ElapsedTimeCountsTwentyFive
static void putElapsed(uint8_t* pack, const DiscField& field, uint64_t unit)
{
    orvPutTime(pack + field.at, orvFramesToTime(STANDARD_PAL, unit));
}

static void fillPci(const MuxContext* handle, uint8_t* pack, bool last)
{
    const uint64_t ticks = handle->streams[0] ? handle->streams[0]->unitTicks : 0;
    const uint64_t end = handle->vobuPictures * ticks + handle->vobuStartPts;
    orvPut(pack, PCI_PACKET, NAV_PACKET_START);
    orvPut(pack, PCI_LENGTH, PCI_PACKET_LENGTH);
    orvPut(pack, PCI_SUB_STREAM, SUB_STREAM_PCI);
    orvPut(pack, PCI_NV_PCK_LBN, handle->vobuSector);
    orvPut(pack, PCI_VOBU_S_PTM, handle->vobuStartPts);
    orvPut(pack, PCI_VOBU_E_PTM, end);
    orvPut(pack, PCI_VOBU_SE_E_PTM, last ? end : 0);
    putElapsed(pack, PCI_E_ELTM, handle->vobuFirstUnit);
    pack[PCI_HLI_SS.at + 1] = 1;   // its low byte alone: where the first pack is none of navigation, the other stays
    orvPut(pack, PCI_HLI_S_PTM, 0);
    orvPut(pack, PCI_HLI_E_PTM, NEVER);
    orvPut(pack, PCI_BTN_SE_E_PTM, NEVER);
    pack[PCI_BTN_MD.at] = 0x10;   // one group of buttons
    orvPut(pack, PCI_FOSL_BTNN, 1);
}

static void fillDsi(const MuxContext* handle, uint8_t* pack)
{
    orvPut(pack, DSI_PACKET, NAV_PACKET_START);
    orvPut(pack, DSI_LENGTH, DSI_PACKET_LENGTH);
    orvPut(pack, DSI_SUB_STREAM, SUB_STREAM_DSI);
    orvPut(pack, DSI_NV_PCK_SCR, handle->vobuScr);
    orvPut(pack, DSI_NV_PCK_LBN, handle->vobuSector);
    orvPut(pack, DSI_VOBU_EA, handle->packCount - handle->vobuSector - 1);
    orvPut(pack, DSI_VOBU_1STREF_EA, handle->refEnd[0]);
    orvPut(pack, DSI_VOBU_2NDREF_EA, handle->refEnd[1]);
    orvPut(pack, DSI_VOBU_3RDREF_EA, handle->refEnd[2]);
    orvPut(pack, DSI_VOBU_VOB_IDN, 1);
    orvPut(pack, DSI_VOBU_C_IDN, 1);
    putElapsed(pack, DSI_C_ELTM, handle->vobuFirstUnit);
    orvPut(pack, DSI_VOB_V_S_S_PTM, 0);
    orvPut(pack, DSI_VOB_V_E_E_PTM, 0);
    orvClearSearch(pack);
}

void orvFillNavPack(const MuxContext* handle, uint8_t* pack, bool last)
{
    fillPci(handle, pack, last);
    fillDsi(handle, pack);
}
