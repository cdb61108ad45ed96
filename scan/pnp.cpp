// pnp.cpp: a sink for packs. Collects them up to each navigation pack, puts the skeleton of a navigation pack over the
// first of the batch, and hands the batch out.

#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/time_code.h"
#include "mux/nav_layout.h"
#include "mux/pack_read.h"
#include "video/vobu_record.h"

#include <orven/scan.h>

constexpr uint64_t BATCH_BYTES = 1'260'000;   // one second at the multiplexer's rate

struct PnpPrepare {
    OrvUnit output;
    uint64_t user;
    uint64_t rate;         // of time codes: 1 or 2
    uint8_t* buffer;       // block of BATCH_BYTES
    uint64_t fill;         // bytes in it
    VobuRecord* records;   // a list of the batches; nothing reads it
    uint64_t packCount;    // packs received
    uint64_t navCount;     // navigation packs received
    uint64_t lastNav;      // packs before the last navigation pack
};

/** Puts the skeleton of a navigation pack over a pack: all of it but its first 38 bytes. */
static void orvPrepareNav(const PnpPrepare* prepare, uint8_t* pack)
{
    constexpr uint8_t SUB_STREAM_PCI = 0, SUB_STREAM_DSI = 1;
    osZeroMem(pack + PCI_SUB_STREAM.at, PCI_PACKET_LENGTH);
    orvPut(pack, PCI_PACKET, NAV_PACKET_START);
    orvPut(pack, PCI_LENGTH, PCI_PACKET_LENGTH);
    orvPut(pack, PCI_SUB_STREAM, SUB_STREAM_PCI);
    osZeroMem(pack + DSI_SUB_STREAM.at, DSI_PACKET_LENGTH);
    orvPut(pack, DSI_PACKET, NAV_PACKET_START);
    orvPut(pack, DSI_LENGTH, DSI_PACKET_LENGTH);
    orvPut(pack, DSI_SUB_STREAM, SUB_STREAM_DSI);
    orvPut(pack, DSI_VOBU_VOB_IDN, 1);
    orvPut(pack, DSI_VOBU_C_IDN, 1);
    orvPutTime(pack + DSI_C_ELTM.at, orvFramesToTime(int64_t(prepare->rate), 1));
    orvClearSearch(pack);
}

static uint64_t appendRecord(PnpPrepare* prepare)
{
    VobuRecord record = {};
    record.sector = prepare->lastNav;
    record.lastSector = prepare->fill >> SECTOR_SHIFT;   // here: the batch's packs
    record.scr = orvReadScr(prepare->buffer, nullptr);
    record.vobId = 1;
    record.cellId = 1;
    return osListAppend(&prepare->records, record);
}

extern "C" uint64_t pnpCreatePrepare(OrvUnit output, uint64_t user, uint64_t rate, PnpPrepare** out)
{
    if (!out) return ORV_INVALID_ARGUMENT;
    *out = nullptr;
    if (!output) return ORV_INVALID_ARGUMENT;
    PnpPrepare* prepare = nullptr;
    if (uint64_t error = osAllocMem(sizeof(PnpPrepare), &prepare)) return error;
    uint64_t result = osAllocMem(BATCH_BYTES, &prepare->buffer);
    if (!result) result = osAllocMem(0, &prepare->records);
    if (result) {
        (void)pnpFreePrepare(prepare);
        return result;
    }
    prepare->output = output;
    prepare->user = user;
    prepare->rate = rate;
    *out = prepare;
    return 0;
}

extern "C" uint64_t pnpProvideData(PnpPrepare* prepare, const uint8_t* pack, uint64_t size)
{
    if (!prepare || (!pack && size)) return ORV_INVALID_ARGUMENT;
    if (size > BATCH_BYTES - prepare->fill) return ORV_MUX_OVERFLOW;
    osCopyMem(prepare->buffer + prepare->fill, pack, size);
    prepare->fill += size;
    const uint64_t before = prepare->packCount++;

    uint8_t head[PCI_PACKET.at + PCI_PACKET.size] = {};   // what a shorter pack lacks reads as 0
    osCopyMem(head, pack, size < sizeof(head) ? size : sizeof(head));
    if (!orvIsNavPack(head)) return 0;
    prepare->lastNav = before;
    if (prepare->navCount == 0) {
        prepare->navCount = 1;
        return 0;
    }
    if (uint64_t error = appendRecord(prepare)) return error;
    // Meant: only the first batch begins with a navigation pack; in the later ones the skeleton falls on the pack
    // behind it. Test: Pnp.LaterBatchesGetTheSkeletonOnTheirFirstPack
    orvPrepareNav(prepare, prepare->buffer);
    (void)prepare->output(prepare->buffer, prepare->fill, prepare->user);
    prepare->fill = 0;
    prepare->navCount++;
    return 0;
}

extern "C" uint64_t pnpFreePrepare(PnpPrepare* prepare)
{
    if (!prepare) return ORV_INVALID_ARGUMENT;
    (void)osFreeMem(&prepare->buffer);
    (void)osFreeMem(&prepare->records);
    (void)osFreeMem(&prepare);
    return 0;
}
