// registry.cpp: makes and releases the handle of a multiplexer and registers its streams.

#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "base/wide.h"
#include "mux/mux_types.h"
#include "mux/nav_fill.h"
#include "mux/ring.h"
#include "mux/scheduler.h"
#include "mux/stream_kinds.h"
#include "mux/unit_table.h"

// ---- handle -------------------------------------------------------------------------------------------------------

static void freeStream(MuxStream** stream)
{
    if (!*stream) return;
    (void)osCloseFile(&(*stream)->file);
    orvRingFree(&(*stream)->ring);
    (void)osFreeMem(&(*stream)->unitTable);
    (void)osFreeMem(&(*stream)->unitOrder);
    (void)osFreeMem(&(*stream)->readScratch);
    (void)osFreeMem(stream);
}

static void freeHandle(MuxContext** handle)
{
    while (MuxStream* stream = (*handle)->owned) {
        (*handle)->owned = stream->nextOwned;
        freeStream(&stream);
    }
    (void)osFreeMem(&(*handle)->outBuffer);
    (void)osFreeMem(handle);
}

extern "C" uint64_t InitMuxer(MuxContext** out, OrvMuxWrite write, uint64_t user)
{
    if (!out) return ORV_INVALID_ARGUMENT;
    *out = nullptr;
    MuxContext* handle = nullptr;
    if (uint64_t error = osAllocMem(sizeof(MuxContext), &handle)) return error;
    handle->writeCallback = write;
    handle->writeUser = user;
    handle->freeVideoSlots = MUX_VIDEO_SLOTS;
    handle->freeAudioSlots = MUX_AUDIO_SLOTS;
    handle->freeSubPictureSlots = MUX_SUB_PICTURE_SLOTS;
    if (uint64_t error = osAllocMem(MUX_BUFFER_SECTORS * SECTOR_BYTES, &handle->outBuffer)) {
        freeHandle(&handle);
        return error;
    }
    *out = handle;
    return 0;
}

// ---- streams ------------------------------------------------------------------------------------------------------

// The free slots of a kind's family, and what their lack is called.
struct FamilySlots {
    uint64_t* slots;
    uint64_t capacity;
    uint64_t noneLeft;
};

static FamilySlots slotsOf(MuxContext* handle, MuxFamily family)
{
    switch (family) {
    case FAMILY_VIDEO: return { &handle->freeVideoSlots, MUX_VIDEO_SLOTS, ORV_SECOND_VIDEO_STREAM };
    // Meant: the message speaks of four streams. Test: Registry.NinthAudioStream
    case FAMILY_AUDIO: return { &handle->freeAudioSlots, MUX_AUDIO_SLOTS, ORV_TOO_MANY_STREAMS };
    default: return { &handle->freeSubPictureSlots, MUX_SUB_PICTURE_SLOTS, ORV_TOO_MANY_STREAMS };
    }
}

static void setIds(MuxStream* stream, const MuxKind* kind, uint64_t index)
{
    stream->streamId = kind->streamId;
    if (kind->subStreamId != 0) {
        stream->subStreamId = kind->subStreamId + index;
    } else {
        stream->streamId += index;
    }
}

// Meant: a first stream that is not video takes slot 1, and a second one in front of the video stream takes it again.
// Test: Registry.SecondAudioStreamReplacesTheFirst
static uint64_t freeSlot(const MuxContext* handle, MuxFamily family)
{
    if (family == FAMILY_VIDEO) return 0;
    return handle->streamCount == 0 ? 1 : handle->streamCount;
}

static uint64_t registerStream(MuxContext* handle, MuxStream* stream)
{
    const MuxKind* kind = orvMuxKind(stream->kind);
    if (!kind) return ORV_UNKNOWN_STREAM;
    const FamilySlots family = slotsOf(handle, kind->family);
    if (*family.slots == 0) return family.noneLeft;
    setIds(stream, kind, family.capacity - *family.slots);
    if (uint64_t error = kind->setup(stream)) return error;
    (*family.slots)--;
    handle->streams[freeSlot(handle, kind->family)] = stream;
    handle->streamCount++;
    stream->nextOwned = handle->owned;
    handle->owned = stream;
    return 0;
}

static uint64_t makeStream(uint64_t flags, MuxStream** stream)
{
    uint64_t watermark = 0;
    if (uint64_t error = osAllocMem(sizeof(MuxStream), stream)) return error;
    (*stream)->kind = orvKindOfFlags(flags, &watermark);
    uint64_t result = orvRingCreate(&(*stream)->ring, watermark);
    if (!result && orvIsVideo(*stream)) result = osAllocMem(0, &(*stream)->unitTable);
    if (result) freeStream(stream);
    return result;
}

/** The slot in which a stream just registered is looked for, which need not be its own. */
static uint64_t slotOfFlags(const MuxContext* handle, uint64_t flags)
{
    constexpr uint64_t VIDEO_FLAGS = 0x40C, AUDIO_FLAGS = 0x8F0;
    if (flags & VIDEO_FLAGS) return 0;
    return handle->streamCount == 1 && (flags & AUDIO_FLAGS) ? 1 : handle->streamCount - 1;
}

extern "C" uint64_t AddStream(MuxContext* handle, uint64_t /*reserved*/, uint64_t flags, MuxStream** out)
{
    if (out) *out = nullptr;
    if (!handle) return ORV_INVALID_ARGUMENT;
    MuxStream* made = nullptr;
    if (uint64_t error = makeStream(flags, &made)) return error;
    if (uint64_t error = registerStream(handle, made)) {
        freeStream(&made);
        return error;
    }
    MuxStream* found = handle->streams[slotOfFlags(handle, flags)];
    if (!found) return ORV_UNKNOWN_STREAM;   // the stream made stays registered
    found->sourceMode = SOURCE_MEMORY;
    if (out) *out = found;
    return 0;
}

/** Whether a file's bytes are exchanged in pairs: AC-3 that begins 77 0B. */
static uint64_t probeOrder(MuxStream* stream)
{
    uint8_t start[2] = {};
    (void)osReadFile(stream->file, start, sizeof start);   // a file of fewer bytes is what it is
    if (start[0] == 0x77 && start[1] == 0x0B) stream->byteSwapped = 1;
    return osSeekFile(stream->file, 0, OS_FROM_START);
}

extern "C" uint64_t AddFileStream(MuxContext* handle, const OrvWChar* path, uint64_t flags, MuxStream** out)
{
    // Also without an out the stream is registered first.
    if (uint64_t error = AddStream(handle, 0, flags, out)) return error;
    if (!out || !*out) return ORV_INVALID_ARGUMENT;
    OSFILE file = 0;
    if (uint64_t error = osOpenFile(orvText(path), OS_READ, &file)) return error;
    (void)osCloseFile(&(*out)->file);   // of a stream that was found in another's slot
    (*out)->file = file;
    (*out)->filePosition = 0;
    (*out)->sourceMode = SOURCE_FILE;
    return probeOrder(*out);
}

// ---- end ----------------------------------------------------------------------------------------------------------

/** Hands out what is left, with the last navigation pack filled. */
static void flush(MuxContext* handle)
{
    if (handle->outPending == 0) return;
    const MuxStream* video = handle->streams[0];
    // Meant: the last unit's index, one less than the pictures that the unit of packs has.
    // Test: Exit.LastUnitLacksAPicture
    const uint64_t current = video && orvIsVideo(video) ? orvCurrentUnit(video) : 0;
    handle->vobuPictures = current - handle->vobuFirstUnit;
    orvFillNavPack(handle, handle->outBuffer, true);
    (void)orvDeliver(handle);
}

extern "C" uint64_t ExitMuxer(MuxContext* handle)
{
    constexpr uint64_t LEAST_VIDEO_BYTES = 4;   // a stream of no more gives no packs
    if (!handle) return ORV_INVALID_ARGUMENT;
    for (MuxStream* stream = handle->owned; stream; stream = stream->nextOwned) orvRingEnd(stream->ring);
    const MuxStream* video = handle->streams[0];
    if (video && video->bytesIn > LEAST_VIDEO_BYTES) {
        if (uint64_t error = orvMuxRun(handle)) return error;
    }
    flush(handle);
    freeHandle(&handle);
    return 0;
}
