// extract.cpp: the exported calls of an extraction: finding the disc, and one track after the other.

#include "base/memory.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/wide.h"
#include "disc/extract_types.h"

#include <algorithm>
#include <iterator>

// ---- context -------------------------------------------------------------------------------------------------------

static uint64_t setPaths(ExtractContext* context, const char16_t* sourcePath, const char16_t* destPath)
{
    if (uint64_t error = osStrDup(sourcePath, &context->sourcePath)) return error;
    if (uint64_t error = osAddBackslash(&context->sourcePath)) return error;
    if (uint64_t error =
            destPath ? osStrDup(destPath, &context->destPath) : osGetCurrentDirectory(&context->destPath)) {
        return error;
    }
    return osAddBackslash(&context->destPath);
}

/** Memory that is short has one code here, whatever it was for. */
static uint64_t creationFault(uint64_t error)
{
    return error == OS_OUT_OF_MEMORY ? ORV_NO_CONTEXT : error;
}

extern "C" uint64_t d2wCreateContextW(const OrvWChar* sourcePath, const OrvWChar* destPath, ExtractContext** out)
{
    if (!out) return ORV_INVALID_ARGUMENT;
    *out = nullptr;
    if (!sourcePath) return ORV_INVALID_SOURCE_PATH;
    ExtractContext* context = nullptr;
    if (osAllocMem(sizeof(ExtractContext), &context)) return ORV_NO_CONTEXT;
    if (uint64_t error = setPaths(context, orvText(sourcePath), orvText(destPath))) {
        (void)d2wReleaseContext(context);
        return creationFault(error);
    }
    *out = context;
    return 0;
}

extern "C" uint64_t d2wCreateContext(const char* sourcePath, const char* destPath, ExtractContext** out)
{
    if (!out) return ORV_INVALID_ARGUMENT;
    *out = nullptr;
    if (!sourcePath) return ORV_INVALID_SOURCE_PATH;
    char16_t* source = nullptr;
    char16_t* dest = nullptr;
    uint64_t result = osAnsiToWide(&source, sourcePath, nullptr);
    if (!result && destPath) result = osAnsiToWide(&dest, destPath, nullptr);
    if (!result) result = d2wCreateContextW(orvHostText(source), orvHostText(dest), out);
    (void)osStrFree(&source);
    (void)osStrFree(&dest);
    return creationFault(result);
}

static void closeSound(ExtractContext* context)
{
    for (OSFILE& file : context->files) (void)osCloseFile(&file);
}

extern "C" uint64_t d2wReleaseContext(ExtractContext* context)
{
    if (!context) return ORV_INVALID_ARGUMENT;
    if (context->busy) {
        context->released = true;   // a call is under way on this very thread; it takes notice and finishes this
        return 0;
    }
    closeSound(context);
    for (OSFILE& file : context->tableFiles) (void)osCloseFile(&file);
    (void)osStrFree(&context->sourcePath);
    (void)osStrFree(&context->destPath);
    (void)osFreeMem(&context);
    return 0;
}

// ---- finding the disc ----------------------------------------------------------------------------------------------

// The files by which a disc is known.
struct TableFiles {
    OSFILE samg, vmg, vts;
};

/** *file stays 0 where there is none that can be opened. */
static uint64_t openTable(const ExtractContext* context, const char16_t* format, OSFILE* file)
{
    char16_t* path = nullptr;
    const uint64_t result = osFormPath(&path, format, context->sourcePath);
    if (!result) (void)osOpenFile(path, OS_READ, file);
    (void)osStrFree(&path);
    return result == OS_OUT_OF_MEMORY ? result : 0;
}

static uint64_t openTables(const ExtractContext* context, TableFiles* tables)
{
    if (uint64_t error = openTable(context, u"%sAUDIO_PP.IFO", &tables->samg)) return error;
    if (uint64_t error = openTable(context, u"%sVIDEO_TS.IFO", &tables->vmg)) return error;
    return openTable(context, u"%sVTS_01_0.IFO", &tables->vts);
}

static void closeTables(TableFiles* tables)
{
    (void)osCloseFile(&tables->samg);
    (void)osCloseFile(&tables->vmg);
    (void)osCloseFile(&tables->vts);
}

/** Leaves a file open until the context goes. */
static void keepOpen(ExtractContext* context, TableFiles* tables)
{
    const OSFILE files[] = { tables->samg, tables->vmg, tables->vts };
    std::copy(std::begin(files), std::end(files), context->tableFiles);
    *tables = {};
}

// Meant: the branches are crossed: without AUDIO_PP.IFO its reader is called, with it alone that of DVD-Video.
// Test: ExtractInit.BranchesAreCrossed
extern "C" uint64_t d2wInitContext(ExtractContext* context, uint64_t* outTrackCount, OrvTrackInfo info, uint64_t user)
{
    if (!context || context->opened) return ORV_INVALID_ARGUMENT;
    for (OSFILE& file : context->tableFiles) (void)osCloseFile(&file);   // of a call before
    TableFiles tables = {};
    uint64_t result = openTables(context, &tables);
    if (result) {
        closeTables(&tables);
        return result;
    }
    if (tables.samg && (tables.vmg || tables.vts)) {
        keepOpen(context, &tables);
        return 0;
    }
    if (tables.samg) {
        result = orvReadVideoTables(context, tables.vmg, tables.vts, info, user);
        tables.vmg = tables.vts = 0;
        keepOpen(context, &tables);
    } else if (tables.vmg && tables.vts) {
        result = orvReadAudioTables(context, tables.samg, info, user);
        keepOpen(context, &tables);
    } else {
        closeTables(&tables);
        return ORV_NO_SAMG;
    }
    if (outTrackCount) *outTrackCount = context->trackCount;
    return result;
}

static uint64_t readDisc(ExtractContext* context, const TableFiles* tables, OrvTrackInfo info, uint64_t user)
{
    OSFILE aob = 0;
    if (uint64_t error = openTable(context, u"%sATS_01_1.AOB", &aob)) return error;
    const bool hasAob = aob != 0;
    (void)osCloseFile(&aob);
    if (tables->samg && hasAob) return orvReadAudioTables(context, tables->samg, info, user);
    if (tables->vmg && tables->vts) return orvReadVideoTables(context, tables->vmg, tables->vts, info, user);
    return tables->samg ? ORV_AOB_NOT_READ : ORV_NO_SAMG;
}

/** After a failure: as if nothing had been opened. */
static void forgetDisc(ExtractContext* context)
{
    closeSound(context);
    context->opened = false;
    context->sourceKind = SOURCE_NONE;
    context->trackCount = context->fileCount = 0;
    std::fill(std::begin(context->tracks), std::end(context->tracks), ExtractTrack());
}

extern "C" uint64_t d2wOpenDisc(ExtractContext* context, uint64_t* outTrackCount, OrvTrackInfo info, uint64_t user)
{
    if (!context || context->sourceKind != SOURCE_NONE) return ORV_INVALID_ARGUMENT;
    const bool within = context->busy;   // a callback may open, too
    context->busy = true;
    context->opened = true;
    TableFiles tables = {};
    uint64_t result = openTables(context, &tables);
    if (!result) result = readDisc(context, &tables, info, user);
    closeTables(&tables);
    if (!result && context->fileCount == 0) result = ORV_AOB_NOT_READ;
    if (outTrackCount) *outTrackCount = context->trackCount;
    if (result) forgetDisc(context);
    context->busy = within;
    if (context->released && !within) (void)d2wReleaseContext(context);
    return result;
}

// ---- a track -------------------------------------------------------------------------------------------------------

// The files of a track being written.
struct TrackOutputs {
    const ExtractLayout* layout;
    const ExtractOutput* outputs;
    uint64_t count;
    bool pairs;
    OSFILE files[6];
};

static uint64_t createOutput(const ExtractContext* context, uint64_t track, const char16_t* suffix, OSFILE* file)
{
    char16_t* path = nullptr;
    if (osFormPath(&path, u"%strack%.3d_%s.wav", context->destPath, track + 1, suffix)) return ORV_OUTPUT_NOT_CREATED;
    const uint64_t result = osOpenFile(path, OS_CREATE_READ, file);
    (void)osStrFree(&path);
    const uint8_t header[WAVE_HEADER_BYTES] = {};   // until the track is whole
    if (result || osWriteFile(*file, header, sizeof(header))) return ORV_OUTPUT_NOT_CREATED;
    return 0;
}

static uint64_t createOutputs(const ExtractContext* context, uint64_t track, TrackOutputs* to)
{
    bool known = false;
    to->layout = orvExtractLayout(context->tracks[track].assign, &known);
    to->outputs = to->pairs ? to->layout->pairs : to->layout->singles;
    to->count = to->pairs ? to->layout->pairCount : to->layout->singleCount;
    for (uint64_t i = 0; i < to->count; i++) {
        if (uint64_t error = createOutput(context, track, to->outputs[i].suffix, &to->files[i])) return error;
    }
    // Meant: the files of two channels are made, and left, before an assignment is found that can't be extracted.
    // Test: ExtractTrack.UnknownAssignmentLeavesFrontFiles
    return known ? 0 : ORV_ASSIGNMENT_UNSUPPORTED;
}

// Who is told of an extraction.
struct ExtractListener {
    OrvExtractProgressW progress;   // may be null
    uint64_t user;
    uint64_t track, total;
};

static void tell(const ExtractListener* listener, uint64_t done, const char16_t* text)
{
    if (listener->progress) {
        listener->progress(listener->track, listener->total, done, orvHostText(text), listener->user);
    }
}

static uint64_t copySectors(const ExtractContext* context, const ExtractTrack* track, const TrackOutputs* to,
                            const ExtractListener* listener)
{
    for (uint64_t sector = track->firstSector; sector <= track->lastSector; sector++) {
        uint8_t buffer[SECTOR_BYTES];
        const uint8_t* data = nullptr;
        uint64_t length = 0;
        if (uint64_t error = orvReadExtractPack(context, sector, buffer, &data, &length)) return error;
        if (length == 0) continue;
        if (uint64_t error =
                orvDeinterleave(context, track, to->outputs, to->files, to->count, to->pairs, data, length)) {
            return error;
        }
        tell(listener, sector - track->firstSector, to->layout->text);
        if (context->released) return ORV_CANCELED;
    }
    return 0;
}

static uint64_t finishOutputs(const ExtractTrack* track, TrackOutputs* to)
{
    for (uint64_t i = 0; i < to->count; i++) {
        if (uint64_t error = orvWriteWaveHeader(track, to->files[i], to->pairs)) return error;
        if (uint64_t error = osCloseFile(&to->files[i])) return error;
    }
    return 0;
}

static uint64_t extractTrack(const ExtractContext* context, uint64_t index, bool pairs, ExtractListener* listener)
{
    const ExtractTrack* track = &context->tracks[index];
    TrackOutputs to = {};
    to.pairs = pairs;
    uint64_t result = createOutputs(context, index, &to);
    if (!result) result = copySectors(context, track, &to, listener);
    if (!result) result = finishOutputs(track, &to);
    for (OSFILE& file : to.files) (void)osCloseFile(&file);   // of a track that failed: not finished, and left behind
    if (!result) tell(listener, listener->total, u"setup wave header");
    return result;
}

extern "C" uint64_t d2wExtractTrackW(ExtractContext* context, uint64_t track, uint64_t stereoPairs,
                                     OrvExtractProgressW progress, uint64_t user)
{
    if (!context) return ORV_INVALID_ARGUMENT;
    if (context->sourceKind == SOURCE_NONE) return ORV_EXTRACT_NO_SOURCE;
    // Meant: the index behind the last track passes here. Test: ExtractTrack.IndexBehindTheLastPasses
    if (track > context->trackCount) return ORV_NO_TRACKS;
    const ExtractTrack* found = &context->tracks[track];
    const uint64_t total =
        found->lastSector >= found->firstSector ? uint64_t(found->lastSector) - found->firstSector + 1 : 0;
    ExtractListener listener = { progress, user, track, total };
    const bool within = context->busy;   // a callback may extract too
    context->busy = true;
    const uint64_t result = extractTrack(context, track, stereoPairs != 0, &listener);
    context->busy = within;
    if (context->released && !within) (void)d2wReleaseContext(context);
    return result;
}

// The narrow callback behind a wide one.
struct NarrowListener {
    OrvExtractProgress progress;
    uint64_t user;
};

static void tellNarrow(uint64_t track, uint64_t total, uint64_t done, const OrvWChar* text, uint64_t user)
{
    const NarrowListener* listener = reinterpret_cast<const NarrowListener*>(user);
    char narrow[1024];
    (void)osWideToAnsi(narrow, orvText(text), nullptr, sizeof(narrow));   // our own texts always fit
    listener->progress(track, total, done, narrow, listener->user);
}

extern "C" uint64_t d2wExtractTrack(ExtractContext* context, uint64_t track, uint64_t stereoPairs,
                                    OrvExtractProgress progress, uint64_t user)
{
    NarrowListener listener = { progress, user };
    return d2wExtractTrackW(context, track, stereoPairs, progress ? tellNarrow : nullptr,
                            reinterpret_cast<uint64_t>(&listener));
}
