// scheduler.cpp: makes packs as long as every stream has enough input. A model of the decoders, driven by the clock of
// the packs, says which stream the next pack carries.

#include "mux/scheduler.h"

#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "mux/lpcm.h"
#include "mux/nav_fill.h"
#include "mux/pack_layout.h"
#include "mux/pack_read.h"
#include "mux/pack_write.h"
#include "mux/pes_write.h"
#include "mux/ring.h"
#include "mux/unit_table.h"

#include <span>

// The clock counts 1 / 270,000,000,000 second.
constexpr uint64_t CLOCK_UNITS = 3000000;           // of a tick of 90 kHz
constexpr uint64_t CLOCK_EXTENSION_UNITS = 10000;   // of a tick of 27 MHz
constexpr uint64_t CLOCK_PACK_UNITS = 438857143;    // of a pack: 2048 bytes at 1,260,000 a second

// Delay of the first picture: the packs of the first pictures' bytes, and some.
constexpr uint64_t DELAY_PACK_BYTES = 2020, DELAY_STREAM_BYTES = 4096, DELAY_MORE_PACKS = 4;
constexpr uint64_t DELAY_PACK_NUMERATOR = 43886, DELAY_PACK_DENOMINATOR = 300;   // ticks of a pack
constexpr uint64_t DELAY_DEFAULT = 14400;
constexpr uint64_t DELAY_UNIT = 2;   // the unit whose start ends the first pictures

constexpr uint64_t FILL_LIMIT = 0xF800;      // of the model's buffer, of 0x10000: 96.875 percent
constexpr uint64_t VIDEO_UNITS_AHEAD = 15;   // of the decoder
constexpr uint64_t TICKS_AHEAD = 80000;      // of the clock
constexpr int64_t CLOSING_TICKS = 45000;     // of a unit of packs behind the end of the video
constexpr uint64_t IDLE_PASSES = 4096;       // in a row without a stream's bytes: the run can't end by itself

// One pass over the streams.
struct Pass {
    MuxContext* handle;
    uint64_t scr, extension;
    uint64_t current;   // the video's current unit
};

/** The slots that can hold a stream; those behind them are empty. */
static std::span<MuxStream* const> usedSlots(const MuxContext* handle)
{
    // The first stream that is not video leaves slot 0 free.
    const uint64_t used = handle->streamCount + 1;
    return { handle->streams, used < MUX_SLOTS ? used : MUX_SLOTS };
}

// ---- rings --------------------------------------------------------------------------------------------------------

/** Whether there is input for a pass, or none will come any more. */
static bool canGoOn(const MuxContext* handle)
{
    bool left = false;
    for (const MuxStream* stream : usedSlots(handle)) {
        if (!stream) continue;
        if (!orvRingReady(stream->ring)) return false;
        // Audio whose unit is not known takes no part, whatever it holds.
        const bool apart = !orvIsVideo(stream) && stream->unitBytes == 0;
        if (!stream->ring->ended || (stream->ring->fill > 0 && !apart)) left = true;
    }
    return left;
}

// ---- clock and decoders -------------------------------------------------------------------------------------------

static void setDelays(MuxContext* handle)
{
    const MuxStream* video = handle->streams[0];
    const uint64_t bytes = orvUnitRecord(video, DELAY_UNIT).position + (handle->streamCount - 1) * DELAY_STREAM_BYTES;
    const uint64_t packs = (bytes + DELAY_PACK_BYTES - 1) / DELAY_PACK_BYTES;
    handle->videoDelay =
        packs == 0 ? DELAY_DEFAULT : (packs + DELAY_MORE_PACKS) * DELAY_PACK_NUMERATOR / DELAY_PACK_DENOMINATOR;
    handle->audioDelay = handle->videoDelay + video->unitTicks;
    handle->sectorsWritten = handle->clock = handle->currentGroup = 0;
}

static void readClock(Pass* pass)
{
    const int64_t clock = int64_t(pass->handle->clock);
    const int64_t scr = clock / int64_t(CLOCK_UNITS);
    pass->scr = uint64_t(scr);
    pass->extension = uint64_t(clock - scr * int64_t(CLOCK_UNITS)) / CLOCK_EXTENSION_UNITS;
}

/** Takes at most one unit of each stream out of the model: that whose time has come. */
static uint64_t decode(const Pass* pass)
{
    for (MuxStream* stream : usedSlots(pass->handle)) {
        if (!stream || stream->kind == KIND_SUB_PICTURE) continue;
        const uint64_t size = stream->unitBytesAt(stream, stream->unitsDecoded);
        if (uint64_t error =
                stream->unitTimes(stream, pass->handle, stream->unitsDecoded, nullptr, &stream->nextDecode)) {
            return error;
        }
        if (stream->nextDecode > pass->scr) continue;
        if (size <= stream->stdFill) {
            stream->stdFill -= size;
            stream->unitsDecoded++;
        } else if (!stream->ring->ended) {
            return ORV_MUX_UNDERRUN;
        }
    }
    return 0;
}

// ---- units of packs -----------------------------------------------------------------------------------------------

static uint64_t groupOfCurrent(const Pass* pass)
{
    return pass->current == NONE ? 0 : orvUnitRecord(pass->handle->streams[0], pass->current).group;
}

/** Audio that outlasts the video arrives in units of half a second. */
static bool closesBehindVideo(const MuxContext* handle)
{
    int64_t most = 0;
    for (const MuxStream* stream : usedSlots(handle)) {
        if (!stream) continue;
        const int64_t since = int64_t(stream->nextDecode - stream->vobuDecode);
        if (since > most) most = since;
    }
    const MuxStream* video = handle->streams[0];
    return most > CLOSING_TICKS && video->ring->ended && video->stdFill == 0;
}

static bool opensVobu(const Pass* pass)
{
    const bool newGroup = pass->current != NONE && pass->handle->currentGroup != groupOfCurrent(pass);
    return newGroup || closesBehindVideo(pass->handle);
}

static void putHeader(const Pass* pass, uint8_t* pack)
{
    // Everything but the clock stays as a pack at the stream's even rate has it.
    osZeroMem(pack, SECTOR_BYTES);
    orvPackHeaderAt(pack, 0, MUX_RATE);
    orvSetScr(pack, pass->scr, pass->extension);
}

/** Puts a pack behind those of the unit at hand. */
static void appendPack(MuxContext* handle, const uint8_t* pack)
{
    osCopyMem(handle->outBuffer + handle->outPending * SECTOR_BYTES, pack, SECTOR_BYTES);
    handle->outPending++;
    handle->packCount++;
    handle->clock += CLOCK_PACK_UNITS;
}

uint64_t orvDeliver(MuxContext* handle)
{
    const uint64_t bytes = handle->outPending * SECTOR_BYTES;
    if (handle->writeCallback) {
        if (uint64_t refused = handle->writeCallback(handle->writeUser, handle->outBuffer, bytes)) return refused;
    }
    handle->sectorsWritten += handle->outPending;
    handle->outPending = 0;
    return 0;
}

static uint64_t openVobu(const Pass* pass)
{
    MuxContext* handle = pass->handle;
    if (handle->packCount != 0) {
        handle->vobuPictures = pass->current - handle->vobuFirstUnit;
        orvFillNavPack(handle, handle->outBuffer, false);
    }
    const uint64_t groupTime = orvUnitRecord(handle->streams[0], pass->current).groupTime;
    handle->vobuSector = handle->packCount;
    handle->vobuScr = pass->scr;
    handle->vobuFirstUnit = pass->current;
    handle->vobuStartPts = groupTime + handle->videoDelay;
    for (MuxStream* stream : usedSlots(handle)) {
        if (stream) stream->vobuDecode = stream->nextDecode;
    }
    handle->currentGroup = groupOfCurrent(pass);

    uint8_t pack[SECTOR_BYTES];
    putHeader(pass, pack);
    orvSystemHeader(pack, MUX_RATE);
    // A refused unit stays, and the run goes on behind it as its fields stand.
    if (handle->packCount != 0) {
        if (uint64_t refused = orvDeliver(handle)) return refused;
    }
    appendPack(handle, pack);
    handle->navJustWritten = 1;
    return 0;
}

// ---- packs --------------------------------------------------------------------------------------------------------

// A stream that may be served.
struct Candidate {
    bool served;
    uint64_t ratio;   // fill of its model buffer, of 0x10000
};

/** Whether a stream may fill the next pack, but for what the others do. */
static Candidate judge(const Pass* pass, const MuxStream* stream, bool inVideoSlot)
{
    Candidate candidate = { false, 0 };
    if (stream->kind == KIND_SUB_PICTURE) return candidate;
    if (stream->stdSize != 0) {
        if (stream->stdFill > stream->stdSize) return candidate;
        candidate.ratio = (stream->stdFill << 16) / stream->stdSize;
        if (candidate.ratio > FILL_LIMIT) return candidate;
    }
    const MuxPlan plan = stream->planPack(stream);
    if (plan.payload == 0 || plan.payload + stream->stdFill > stream->stdSize) return candidate;
    if (inVideoSlot && plan.unit > stream->unitsDecoded + VIDEO_UNITS_AHEAD) return candidate;
    // Meant: the audio delay and the plain product, for video too. Test: Scheduler.TimeAheadByAudioDelay
    if (stream->unitTicks * plan.unit + pass->handle->audioDelay > pass->scr + TICKS_AHEAD) return candidate;
    candidate.served = true;
    return candidate;
}

/** The stream of the next pack: an audio stream that may be served, that with the emptiest buffer; else the video. */
static uint64_t chooseStream(const Pass* pass)
{
    uint64_t best = NONE, bestRatio = FILL_LIMIT + 1;
    const std::span<MuxStream* const> slots = usedSlots(pass->handle);
    for (uint64_t i = 0; i < slots.size(); i++) {
        const MuxStream* stream = slots[i];
        if (!stream) continue;
        const Candidate candidate = judge(pass, stream, i == 0);
        if (!candidate.served) continue;
        const bool beatsVideo = i > 0 && (best == NONE || best == 0);
        if (!beatsVideo && candidate.ratio >= bestRatio) continue;
        if (orvRingLevel(stream->ring) == 0) continue;
        best = i;
        bestRatio = candidate.ratio;
    }
    return best;
}

// Notes where a reference picture has ended. Meant: the first three of a run stand for all its units.
// Test: Scheduler.ReferenceEndsAreThoseOfTheFirstUnits
static void noteReference(const Pass* pass, const MuxStream* stream, uint64_t unit)
{
    constexpr uint32_t LAST_REFERENCE_TYPE = 2;   // 1 I, 2 P
    MuxContext* handle = pass->handle;
    if (!orvIsVideo(stream) || handle->refEndCount >= MUX_REFERENCES || unit == pass->current) return;
    const uint32_t type = orvUnitRecord(handle->streams[0], pass->current).codingType;
    if (type == 0 || type > LAST_REFERENCE_TYPE) return;
    handle->refEnd[handle->refEndCount++] = handle->packCount - handle->vobuSector;
}

static uint64_t writePack(const Pass* pass, MuxStream* stream)
{
    MuxContext* handle = pass->handle;
    if (handle->outPending >= MUX_BUFFER_SECTORS) return ORV_MUX_OVERFLOW;
    const MuxPlan plan = stream->planPack(stream);
    uint64_t pts = 0, dts = 0, read = 0;
    if (uint64_t error = stream->unitTimes(stream, handle, plan.unit, &pts, &dts)) return error;
    noteReference(pass, stream, plan.unit);

    uint8_t pack[SECTOR_BYTES];
    putHeader(pass, pack);
    const uint64_t payload = orvWritePesHeader(pack, stream, plan.flags, pts, dts, plan.padding);
    const uint64_t room = SECTOR_BYTES - payload;
    const uint64_t wanted = plan.payload < room ? plan.payload : room;
    if (uint64_t error = orvRingRead(stream->ring, pack + payload, wanted, &read)) return error;
    if (stream->kind == KIND_LPCM) {
        if (uint64_t error = orvSwizzleLpcm(stream, pack, payload, read)) return error;
    }
    stream->bytesPacked += read;
    stream->stdFill += read;
    if (plan.padding >= LEAST_PADDING_PACKET && payload + read + plan.padding <= SECTOR_BYTES) {
        orvPaddingPacket(pack + payload + read, plan.padding - PACKET_HEAD_BYTES);
    }
    appendPack(handle, pack);
    handle->navJustWritten = 0;
    return 0;
}

/** Nothing can be packed: the clock goes on to the next time at which a unit is decoded. @return false if there is none
 */
static bool waitForDecoder(MuxContext* handle)
{
    constexpr uint64_t FOREVER = 0x7FFFFFFFFFFFFFFF;
    uint64_t wait = FOREVER;
    for (const MuxStream* stream : usedSlots(handle)) {
        if (!stream || stream->kind == KIND_SUB_PICTURE) continue;
        const uint64_t delay = orvIsVideo(stream) ? handle->videoDelay : handle->audioDelay;
        const uint64_t until = (stream->unitsDecoded * stream->unitTicks + delay) * CLOCK_UNITS - handle->clock;
        if (until < wait) wait = until;
    }
    if (wait == FOREVER) return false;
    handle->clock += wait + CLOCK_PACK_UNITS;
    return true;
}

// ---- the loop -----------------------------------------------------------------------------------------------------

/** One pass. *packed tells whether bytes of a stream went into a pack. */
static uint64_t runPass(MuxContext* handle, bool* packed)
{
    Pass pass = { handle, 0, 0, 0 };
    *packed = false;
    if (!handle->started) {
        handle->started = 1;
        setDelays(handle);
    }
    readClock(&pass);
    if (uint64_t error = decode(&pass)) return error;
    pass.current = orvCurrentUnit(handle->streams[0]);
    if (opensVobu(&pass)) return openVobu(&pass);
    const uint64_t slot = chooseStream(&pass);
    if (slot == NONE) return waitForDecoder(handle) ? 0 : ORV_MUX_UNDERRUN;
    *packed = true;
    return writePack(&pass, handle->streams[slot]);
}

uint64_t orvMuxRun(MuxContext* handle)
{
    if (!handle->streams[0]) return ORV_NO_VIDEO_STREAM;
    uint64_t idle = 0;
    while (canGoOn(handle)) {
        bool packed = false;
        if (uint64_t error = runPass(handle, &packed)) return error;
        idle = packed ? 0 : idle + 1;
        if (idle >= IDLE_PASSES) return ORV_MUX_UNDERRUN;
    }
    return 0;
}
