// npp.cpp: the second pass over a multiplexed stream. Gets packs in pieces of any size; numbers cells, fills search
// pointers, hands out whole video object units and writes the scan file, for hosts that prepare a stream themselves.

#include "base/bytes.h"
#include "base/files.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/time_code.h"
#include "base/wide.h"
#include "mux/nav_layout.h"
#include "mux/pack_layout.h"
#include "video/vobu_record.h"

#include <orven/scan.h>

constexpr uint64_t RING_SLOTS = 1024;
constexpr uint64_t VOBU_SECTORS = 768;   // of one unit, at most

struct NppScan {
    OrvUnit output;
    uint64_t user;
    uint64_t cellMode;
    uint64_t cellInterval;   // ticks
    uint64_t* cellList;      // a block of its own; null by interval
    uint64_t cellListCount;

    uint64_t packFill;    // bytes in packBuffer
    uint64_t packCount;   // packs seen
    OSFILE scanFile;
    uint8_t packBuffer[SECTOR_BYTES];   // the pack being put together

    uint8_t* vobus[RING_SLOTS];   // blocks of finished units; unit n is in slot n modulo RING_SLOTS
    uint64_t firstHeld;           // number of the oldest unit that is still held
    uint64_t nextVobu;            // number of the unit being collected
    uint8_t* pending;             // block of VOBU_SECTORS that collects it
    uint64_t pendingSectors;
    uint64_t releaseOne;   // 1 from the close of a unit until one went out

    uint64_t lastCell;
    uint64_t cellStartFrame;
};

// ---- the navigation pack -------------------------------------------------------------------------------------------

static bool isNavPack(const uint8_t* pack)
{
    constexpr uint32_t SYSTEM_HEADER_START = 0x00000100 | STREAM_SYSTEM_HEADER;
    constexpr uint64_t SYSTEM_HEADER_AT = 14;
    return orvGet32(pack + SYSTEM_HEADER_AT) == SYSTEM_HEADER_START &&
           orvGet16(pack + PCI_PACKET.at + 2) == (NAV_PACKET_START & 0xFFFF) &&
           orvGet(pack, PCI_LENGTH) == PCI_PACKET_LENGTH &&
           orvGet16(pack + DSI_PACKET.at + 2) == (NAV_PACKET_START & 0xFFFF) &&
           orvGet(pack, DSI_LENGTH) == DSI_PACKET_LENGTH;
}

static uint64_t cellAt(const NppScan* scan, uint64_t start)
{
    if (scan->cellMode == ORV_NPP_CELLS_BY_INTERVAL) return start / scan->cellInterval + 1;
    // Meant: entry 0 is not compared; entry i is the last tick of cell i. Test: NppCells.EntryZeroIsNotCompared
    uint64_t cell = 1;
    while (cell < scan->cellListCount && scan->cellList[cell] < start) cell++;
    return cell;
}

// The rate by which a pack's times count. Meant: a pack of the multiplexer always says 25 frames a second, so that
// other material is counted by 3600 ticks too. Test: NppTimes.RateFlagDecidesAlone
static int64_t standardOf(DvdTimeCode time)
{
    return orvTimeStandard(time) == STANDARD_PAL ? STANDARD_PAL : STANDARD_NTSC;
}

/** Makes the pack's elapsed time count from the start of its cell. @return the pack's standard */
static int64_t setElapsed(NppScan* scan, uint8_t* pack, uint64_t cell)
{
    DvdTimeCode time = {};
    osCopyMem(time.bytes, pack + PCI_E_ELTM.at, sizeof(time.bytes));
    const int64_t standard = standardOf(time);
    const uint64_t frame = orvTimeToFrames(time);
    if (cell != scan->lastCell) scan->cellStartFrame = frame;
    scan->lastCell = cell;

    time = orvFramesToTime(standard, frame - scan->cellStartFrame);
    orvPutTime(pack + PCI_E_ELTM.at, time);
    orvPutTime(pack + DSI_C_ELTM.at, time);
    return standard;
}

static uint64_t writeRecord(const NppScan* scan, const uint8_t* pack, uint64_t cell, int64_t standard)
{
    const uint64_t start = orvGet(pack, PCI_VOBU_S_PTM);
    const uint64_t end = orvGet(pack, PCI_VOBU_E_PTM);
    VobuRecord record = {};
    record.sector = scan->packCount;
    record.lastSector = scan->packCount + orvGet(pack, DSI_VOBU_EA);
    record.firstPts = start;
    record.pictureCount = (end - start) / orvFrameTicks(standard);
    record.vobId = orvGet(pack, DSI_VOBU_VOB_IDN);
    record.cellId = cell;
    return osWriteFile(scan->scanFile, &record, sizeof(record));   // both platforms are little-endian, as the file is
}

static uint64_t treatNavPack(NppScan* scan, uint8_t* pack)
{
    const uint64_t cell = cellAt(scan, orvGet(pack, PCI_VOBU_S_PTM));
    orvPut(pack, DSI_VOBU_C_IDN, cell);   // its low byte: numbers above 255 live in the scan file alone
    const int64_t standard = setElapsed(scan, pack, cell);
    return writeRecord(scan, pack, cell, standard);
}

// ---- search pointers -----------------------------------------------------------------------------------------------

static uint8_t* heldVobu(const NppScan* scan, uint64_t number)
{
    return scan->vobus[number % RING_SLOTS];
}

static bool sameCell(const uint8_t* a, const uint8_t* b)
{
    return orvGet(a, DSI_VOBU_VOB_IDN) == orvGet(b, DSI_VOBU_VOB_IDN) &&
           orvGet(a, DSI_VOBU_C_IDN) == orvGet(b, DSI_VOBU_C_IDN);
}

static uint64_t sectorsOf(const uint8_t* vobu)
{
    return osMemSize(vobu) >> SECTOR_SHIFT;
}

static uint32_t pointerTo(uint64_t sectors)
{
    return POINTER_VALID | uint32_t(sectors & POINTER_DISTANCE);
}

// The forward pointers run from far to near, the backward ones from near to far.
static uint8_t* forwardPointer(uint8_t* vobu, uint64_t distance)
{
    return vobu + DSI_FWDA.at + (SEARCH_DISTANCES - 1 - distance) * SEARCH_BYTES;
}

static uint8_t* backwardPointer(uint8_t* vobu, uint64_t distance)
{
    return vobu + DSI_BWDA.at + distance * SEARCH_BYTES;
}

/** Points those forward pointers of a unit that still lead nowhere, and are near enough, at the current one. */
static void linkForward(uint8_t* vobu, uint64_t ticks, uint32_t pointer)
{
    for (uint64_t i = 0; i < SEARCH_DISTANCES; i++) {
        uint8_t* at = forwardPointer(vobu, i);
        if (ticks > SEARCH_TICKS[i] && orvGet32(at) == POINTER_NONE) orvPut32(at, pointer);
    }
}

/** Fills the pointers between the unit that closes and those of its cell that are held. */
static void linkVobu(NppScan* scan)
{
    uint8_t* current = scan->pending;
    orvClearSearch(current);
    const uint64_t start = orvGet(current, PCI_VOBU_S_PTM);
    uint64_t sectors = 0;
    uint64_t slot = 0;
    for (uint64_t number = scan->nextVobu; number-- > scan->firstHeld;) {
        uint8_t* vobu = heldVobu(scan, number);
        sectors += sectorsOf(vobu);
        if (!sameCell(vobu, current)) break;

        const uint32_t pointer = pointerTo(sectors);
        if (number + 1 == scan->nextVobu) {
            orvPut(current, DSI_PREV_VOBU, pointer);
            orvPut(current, DSI_PREV_VIDEO, pointer);
            orvPut(vobu, DSI_NEXT_VOBU, pointer);
            orvPut(vobu, DSI_NEXT_VIDEO, pointer);
        }
        // Meant: a pointer back ends at the first unit that lies farther away than its distance; each nearer one is
        // overwritten. Where start times fall, the difference is huge.
        // Test: NppSearch.BackwardPointersEndBeyondTheirDistance
        const uint64_t ticks = start - orvGet(vobu, PCI_VOBU_S_PTM);
        if (slot < SEARCH_DISTANCES) {
            orvPut32(backwardPointer(current, slot), pointer);
            if (ticks > SEARCH_TICKS[slot]) slot++;
        }
        linkForward(vobu, ticks, pointer);
    }
}

// ---- the collector -------------------------------------------------------------------------------------------------

static uint64_t appendPending(NppScan* scan, const uint8_t* pack)
{
    if (scan->pendingSectors == VOBU_SECTORS) return ORV_MUX_OVERFLOW;
    osCopyMem(scan->pending + scan->pendingSectors * SECTOR_BYTES, pack, SECTOR_BYTES);
    scan->pendingSectors++;
    return 0;
}

static uint64_t storeVobu(NppScan* scan)
{
    uint8_t** slot = &scan->vobus[scan->nextVobu % RING_SLOTS];
    if (*slot) return ORV_MUX_OVERFLOW;
    if (scan->pendingSectors == 0) return 0;
    return osAllocMemCopy(scan->pending, 0, scan->pendingSectors * SECTOR_BYTES, slot);
}

/** Whether a unit still waits for units of its cell to which its pointers lead. */
static bool waits(const NppScan* scan, uint8_t* vobu)
{
    if (!sameCell(vobu, scan->pending)) return false;
    for (uint64_t i = 0; i < SEARCH_DISTANCES; i++) {
        if (orvGet32(forwardPointer(vobu, i)) == POINTER_NONE) return true;
    }
    return false;
}

// Meant: one unit goes out for one that closes, also where a new cell makes many ready at once.
// Test: NppRelease.AtACellChangeOneUnitLeavesAStep
static uint64_t releaseVobus(NppScan* scan, bool atEnd)
{
    scan->releaseOne = 1;
    for (uint64_t number = scan->firstHeld; number <= scan->nextVobu; number++) {
        uint8_t** slot = &scan->vobus[number % RING_SLOTS];
        if (!*slot) continue;   // the end of a stream without packs
        // A unit that waits holds up those behind it, of other cells too: the stream leaves in order.
        if (!atEnd && (!scan->releaseOne || waits(scan, *slot))) break;
        if (uint64_t error = scan->output(*slot, osMemSize(*slot), scan->user)) return error;
        scan->releaseOne = 0;
        (void)osFreeMem(slot);
        scan->firstHeld++;
    }
    return 0;
}

/** Appends a pack to the unit being collected, or closes that unit first (close), or closes the last one (atEnd,
    without a pack). A unit whose way out was refused stays in its slot, where it blocks each further close. */
static uint64_t orvScanVobuDone(NppScan* scan, const uint8_t* pack, bool close, bool atEnd)
{
    if (!close && !atEnd) return appendPending(scan, pack);
    linkVobu(scan);
    if (uint64_t error = storeVobu(scan)) return error;
    if (uint64_t error = releaseVobus(scan, atEnd)) return error;
    scan->pendingSectors = 0;
    scan->nextVobu++;
    return atEnd ? 0 : appendPending(scan, pack);
}

static uint64_t takePack(NppScan* scan, const uint8_t* pack)
{
    constexpr uint32_t PACK_START_CODE = 0x00000100 | PACK_START;
    if (orvGet32(pack) != PACK_START_CODE) return ORV_NOT_A_PACK;
    bool close = false;
    if (isNavPack(pack)) {
        if (pack != scan->packBuffer) osCopyMem(scan->packBuffer, pack, SECTOR_BYTES);
        pack = scan->packBuffer;
        if (uint64_t error = treatNavPack(scan, scan->packBuffer)) return error;
        close = scan->packCount != 0;
    }
    scan->packCount++;
    return orvScanVobuDone(scan, pack, close, false);
}

// ---- the exported calls --------------------------------------------------------------------------------------------

static void releaseScan(NppScan** scan)
{
    (void)osCloseFile(&(*scan)->scanFile);
    (void)osFreeMem(&(*scan)->cellList);
    (void)osFreeMem(&(*scan)->pending);
    for (uint8_t*& vobu : (*scan)->vobus) (void)osFreeMem(&vobu);
    (void)osFreeMem(scan);
}

static uint64_t prepareScan(NppScan* scan, const NppScanDescW* desc)
{
    scan->cellMode = desc->cellMode;
    scan->cellInterval = desc->cellInterval;
    scan->cellListCount = desc->cellListCount;
    if (desc->cellMode != ORV_NPP_CELLS_BY_INTERVAL && desc->cellListCount) {
        const uint64_t bytes = desc->cellListCount * sizeof(uint64_t);
        if (uint64_t error = osAllocMemCopy(desc->cellList, 0, bytes, &scan->cellList)) return error;
    }
    if (uint64_t error = osAllocMem(VOBU_SECTORS * SECTOR_BYTES, &scan->pending)) return error;
    if (uint64_t error = osOpenFile(orvText(desc->path), OS_CREATE, &scan->scanFile)) return error;
    uint8_t head[SCAN_FILE_HEADER] = {};
    orvPutLittle32(head, SCAN_FILE_MARK);
    return osWriteFile(scan->scanFile, head, sizeof(head));
}

static bool isSound(const NppScanDescW* desc)
{
    if (!desc->path) return false;
    if (desc->cellMode == ORV_NPP_CELLS_BY_INTERVAL) return desc->cellInterval != 0;
    return desc->cellListCount <= UINT64_MAX / sizeof(uint64_t) && (desc->cellList || desc->cellListCount == 0);
}

extern "C" uint64_t nppBeginStreamScanW(const NppScanDescW* desc, OrvUnit output, uint64_t user, NppScan** out)
{
    if (!out) return ORV_INVALID_ARGUMENT;
    *out = nullptr;
    if (!desc || !output || !isSound(desc)) return ORV_INVALID_ARGUMENT;
    NppScan* scan = nullptr;
    if (uint64_t error = osAllocMem(sizeof(NppScan), &scan)) return error;
    scan->output = output;
    scan->user = user;
    if (uint64_t error = prepareScan(scan, desc)) {
        releaseScan(&scan);
        return error;
    }
    *out = scan;
    return 0;
}

extern "C" uint64_t nppBeginStreamScan(const NppScanDesc* desc, OrvUnit output, uint64_t user, NppScan** out)
{
    if (!out) return ORV_INVALID_ARGUMENT;
    *out = nullptr;
    if (!desc || !desc->path) return ORV_INVALID_ARGUMENT;
    char16_t* path = nullptr;
    if (uint64_t error = osAnsiToWide(&path, desc->path, nullptr)) return error;
    const NppScanDescW wide = { { desc->reserved[0], desc->reserved[1] },
                                orvHostText(path),
                                desc->cellMode,
                                desc->cellInterval,
                                desc->cellList,
                                desc->cellListCount };
    const uint64_t result = nppBeginStreamScanW(&wide, output, user, out);
    (void)osStrFree(&path);
    return result;
}

extern "C" uint64_t nppScanBuffer(NppScan* scan, const uint8_t* data, uint64_t size)
{
    if (!scan || (!data && size)) return ORV_INVALID_ARGUMENT;
    if (scan->packFill) {
        const uint64_t missing = SECTOR_BYTES - scan->packFill;
        const uint64_t count = size < missing ? size : missing;
        osCopyMem(scan->packBuffer + scan->packFill, data, count);
        scan->packFill += count;
        if (scan->packFill < SECTOR_BYTES) return 0;
        scan->packFill = 0;
        data += count;
        size -= count;
        if (uint64_t error = takePack(scan, scan->packBuffer)) return error;
    }
    for (; size >= SECTOR_BYTES; data += SECTOR_BYTES, size -= SECTOR_BYTES) {
        if (uint64_t error = takePack(scan, data)) return error;
    }
    osCopyMem(scan->packBuffer, data, size);
    scan->packFill = size;
    return 0;
}

extern "C" uint64_t nppGetBuffer(NppScan* scan, uint64_t* bytes)
{
    if (!scan) return ORV_INVALID_ARGUMENT;
    if (!bytes) return 0;
    // Meant: the unit being collected has no block yet, and the size of no block is all ones, so that the sum is one
    // too low. Test: NppBuffer.IsOneBelowWhatIsHeld
    uint64_t sum = scan->pendingSectors * SECTOR_BYTES;
    for (uint64_t number = scan->firstHeld; number <= scan->nextVobu; number++) {
        sum += osMemSize(heldVobu(scan, number));
    }
    *bytes = sum;
    return 0;
}

static uint64_t completeFile(NppScan* scan)
{
    uint8_t packs[4];
    orvPutLittle32(packs, uint32_t(scan->packCount));
    if (uint64_t error = osSeekFile(scan->scanFile, SCAN_FILE_PACKS, OS_FROM_START)) return error;
    return osWriteFile(scan->scanFile, packs, sizeof(packs));
}

extern "C" uint64_t nppEndStreamScan(NppScan* scan)
{
    if (!scan) return ORV_INVALID_ARGUMENT;
    if (uint64_t error = orvScanVobuDone(scan, nullptr, false, true)) return error;
    uint64_t result = completeFile(scan);
    const uint64_t closed = osCloseFile(&scan->scanFile);   // what the system could not store shows here
    if (!result) result = closed;
    releaseScan(&scan);
    return result;
}
