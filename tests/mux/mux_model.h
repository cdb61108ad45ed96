// mux_model.h: the whole multiplexer told a second time, in plain containers, for tests that compare it with the
// engine.
//
// It shares nothing with the engine but the numbers of its results. Streams keep all that they were ever fed; packs are
// built as lists of bytes. Where the engine has an operation of a kind, this has a branch.
#pragma once

#include "tests/support/files.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

inline constexpr uint64_t MODEL_NONE = ~uint64_t(0);

struct ModelUnit {
    uint64_t position = 0, group = 0, type = 0;
    uint64_t pts = 0, dts = 0, groupTime = 0;
};

struct ModelStream {
    uint64_t kind = 0, watermark = 0;
    uint8_t streamId = 0, subStreamId = 0;

    // What has been fed, and how much of it is in packs.
    Bytes fed;
    uint64_t packed = 0;
    bool ended = false;
    uint64_t bytesIn = 0;   // accepted chunks alone

    // What the parsers have found.
    std::vector<ModelUnit> units;
    bool begun = false;
    uint64_t unitTicks = 0, unitBytes = 0;
    uint64_t lpcmFormat = 0, channels = 0, sampleRate = 0, sampleBits = 0;
    uint64_t groups = 0, groupStart = 0, groupBase = 0, gopBase = 0, intraBase = 0;
    bool groupPending = false, sequencePending = false;
    uint64_t pictures = 0, gap = 0;
    uint64_t frames = 0, frameRest = 0;   // kind 9
    int order = -1;                       // kind 13: 0 sync 0B 77, 1 sync 77 0B
    Bytes tail;                           // last bytes of the chunk before
    uint64_t tailTime = 0;
    bool tailTimeUsed = false;

    // Decoder.
    uint64_t stdSize = 0, stdFill = 0, stdScale = 0, stdBound = 0, decoded = 0;
    uint64_t nextDecode = 0, vobuDecode = 0;

    // A file in the place of chunks.
    bool fromFile = false, swapped = false;
    Bytes file;
    uint64_t filePosition = 0;

    uint64_t held() const
    {
        return fed.size() - packed;
    }
    bool isVideo() const
    {
        return kind == 2 || kind == 4;
    }
};

struct MuxModel {
    std::function<uint64_t(const Bytes&)> write;
    std::vector<std::unique_ptr<ModelStream>> all;
    std::vector<ModelStream*> slots = std::vector<ModelStream*>(41);
    uint64_t videos = 0, audios = 0, subPictures = 0, streamCount = 0;

    bool started = false;
    uint64_t videoDelay = 0, audioDelay = 0, clock = 0;
    std::vector<Bytes> pending;   // packs
    uint64_t packCount = 0, vobuSector = 0, vobuScr = 0, vobuPictures = 0, vobuFirstUnit = 0, vobuStart = 0;
    std::vector<uint64_t> referenceEnds;
    uint64_t currentGroup = 0;
};

uint64_t modelAdd(MuxModel& model, uint64_t flags, ModelStream** out);
uint64_t modelAddFile(MuxModel& model, const Bytes& file, uint64_t flags, ModelStream** out);
uint64_t modelData(MuxModel& model, ModelStream& stream, const Bytes& chunk, uint64_t* used, uint64_t flags);
uint64_t modelDataEx(MuxModel& model, ModelStream& stream, const Bytes& chunk, uint64_t flags, uint64_t time);
uint64_t modelVideoSeq(MuxModel& model, ModelStream& stream, const Bytes& chunk, uint64_t* used);
uint64_t modelExit(MuxModel& model);

// ---- parts that mux_model.cpp and mux_model_packs.cpp share -------------------------------------------------------

/** Puts bytes into the stream; ORV_MUX_OVERFLOW and nothing stored if it would hold more than 2 MiB. */
uint64_t modelStore(ModelStream& stream, const Bytes& bytes);
uint64_t modelRun(MuxModel& model);
/** Fills the navigation pack of the pending packs. */
void modelFillNav(MuxModel& model, bool last);
uint64_t modelCurrentUnit(const ModelStream& stream);
