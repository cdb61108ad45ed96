// asset_packs.cpp: builds the packs of one asset file.

#include "mux/asset_packs.h"

#include "base/bytes.h"
#include "base/memory.h"
#include "base/result.h"
#include "mux/pack_write.h"

AssetStream orvOpenAsset(OSFILE file, uint8_t streamId, uint8_t subStreamId)
{
    AssetStream stream = { file, 0, streamId, subStreamId };
    if (osFileSize(file, &stream.left)) stream.left = 0;
    return stream;
}

uint64_t orvBuildAssetPack(uint8_t* pack, AssetStream* stream, uint64_t sector, uint64_t pts, uint64_t dts)
{
    uint64_t capacity = 0, subHeaderSize = 0, got = 0;
    uint8_t* payload = nullptr;
    osZeroMem(pack, SECTOR_BYTES);
    orvPackHeaderAt(pack, sector, MUX_RATE);
    orvBuildPes(pack, stream->streamId, stream->subStreamId, pts, dts, &capacity, &subHeaderSize);
    orvPadPack(pack, stream->left, capacity, subHeaderSize, &payload);

    // Asked for is all that the pack has room for, also of an empty file: it is for the file to say what there is.
    const uint64_t room = uint64_t(pack + SECTOR_BYTES - payload);
    const uint64_t wanted = capacity < room ? capacity : room;
    uint64_t result = osReadFileSome(stream->file, payload, wanted, &got);
    if (!result && got == 0 && stream->left > 0) result = OS_SHORT_READ;
    stream->left = result || got > stream->left ? 0 : stream->left - got;
    return result;
}
