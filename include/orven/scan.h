/* scan.h: the second pass over a multiplexed stream, and a small sink for packs.
 *
 * The scan (npp) numbers cells, counts elapsed time from the start of the cell, fills the search pointers of the
 * navigation packs, and writes a scan file with a record for each video object unit, which a project names by
 * `streamscanfile`. The sink (pnp) collects packs up to each navigation pack.
 *
 * Order of calls: nppBeginStreamScan; nppScanBuffer as data come; nppEndStreamScan. pnpCreatePrepare; pnpProvideData;
 * pnpFreePrepare. Everything happens within these calls, on the caller's thread; a handle belongs to one thread at a
 * time. Times are ticks of the 90 kHz clock. */
#ifndef ORVEN_SCAN_H
#define ORVEN_SCAN_H

#include <orven/types.h>

ORV_BEGIN_DECLS

typedef struct NppScan NppScan;
typedef struct PnpPrepare PnpPrepare;

#define ORV_NPP_CELLS_BY_INTERVAL 0 /* cellMode; any other value: by list */
#define ORV_NPP_CELLS_BY_LIST 1

/* What a scan is to do. It is copied, with the list; nothing of it has to outlive nppBeginStreamScan.
 *
 * By interval: a unit that starts at time t is in cell t / cellInterval + 1.
 * By list: it is in cell i, the smallest from 1 up with cellList[i] >= t, and in cell cellListCount if there is none;
 * without a list in cell 1. So cellList[i] is the last tick of cell i, for i of 1 .. cellListCount - 1, and entry 0 is
 * not looked at. */
typedef struct NppScanDesc {
    uint32_t reserved[2];     /* not looked at */
    const char* path;         /* of the scan file, which is made anew */
    uint64_t cellMode;        /* ORV_NPP_... */
    uint64_t cellInterval;    /* ticks, above 0; by interval only */
    const uint64_t* cellList; /* ticks; by list only */
    uint64_t cellListCount;   /* entries */
} NppScanDesc;

typedef struct NppScanDescW {
    uint32_t reserved[2];
    const OrvWChar* path;
    uint64_t cellMode;
    uint64_t cellInterval;
    const uint64_t* cellList;
    uint64_t cellListCount;
} NppScanDescW;

/** Begins a scan and makes its file.
 *  @param output  gets the stream, one whole video object unit a call, in order; whole packs. A value other than 0
 *                 stops the call that drives it, which returns it; the stream can't be continued then, nor
 *                 ended (nppEndStreamScan)
 *  @param out     gets the handle; null after a failure
 *  @return 0; 0x84000057 for a null argument or path, an interval of 0, or a list of 2^61 entries and more; 0x88010002
 *          without memory for the path; the platform's number without other memory, or if the scan file can't be made
 *          or written */
ORV_API uint64_t nppBeginStreamScan(const NppScanDesc* desc, OrvUnit output, uint64_t user, NppScan** out);
ORV_API uint64_t nppBeginStreamScanW(const NppScanDescW* desc, OrvUnit output, uint64_t user, NppScan** out);

/** Takes the next bytes of the stream, in pieces of any size. A unit goes out once its pointers forward are known: two
 *  minutes of stream are held, at most 1024 units.
 *  @return 0; 0x8400232A (9002) if a pack does not begin with the pack start code: the scan can only be ended then;
 *          0x84000BC9 (3017) if a unit has more than 768 packs or more than 1024 units are held; what output returned;
 *          0x84000057 for a null argument; a number of the platform */
ORV_API uint64_t nppScanBuffer(NppScan* scan, const uint8_t* data, uint64_t size);

/** Bytes of the stream that the scan holds, less 1: so all ones while it holds nothing, which stays so. A pack of which
 *  only a part is there does not count. After a failure the unit that could not leave is in the sum once more. A null
 *  bytes is no fault. @return 0; 0x84000057 if scan is null */
ORV_API uint64_t nppGetBuffer(NppScan* scan, uint64_t* bytes);

/** Hands out what is held, completes the scan file and releases the scan. A pack of which only a part is there is
 *  dropped. If handing out fails, the scan stays, with its file open; after a refused unit, or with more than 1024
 * units held, each further call gives 3017 and nothing can release it any more.
 *  @return 0; 0x84000057 if scan is null; the failures of nppScanBuffer; a number of the platform */
ORV_API uint64_t nppEndStreamScan(NppScan* scan);

/* The scan file: little-endian, 4 bytes of 1, 4 bytes with the stream's packs (0 until the scan has ended), then 12
 * numbers of 8 bytes for each video object unit: its first and its last pack, counted from 0; 0; the start time of its
 * display; its pictures; VOB number; cell number; five of 0. */

/** Makes a sink.
 *  @param output  gets a batch: everything up to a navigation pack, that pack included; its result is not looked at
 *  @param rate    of the time codes: 1 for 25 frames a second, 2 for 30
 *  @return 0; 0x84000057 for a null argument; a number of the platform */
ORV_API uint64_t pnpCreatePrepare(OrvUnit output, uint64_t user, uint64_t rate, PnpPrepare** out);

/** Takes one pack. The first navigation pack opens the first batch; each further one closes a batch, whose first pack
 *  then gets the skeleton of a navigation pack and which goes out. From the second batch on that first pack is the one
 *  behind a navigation pack, and its content is lost: a host has to allow for it.
 *  @param size  2048
 *  @return 0; 0x84000BC9 (3017) if the batch would hold more than 1,260,000 bytes; what is there stays;
 *          0x84000057 for a null argument; a number of the platform */
ORV_API uint64_t pnpProvideData(PnpPrepare* prepare, const uint8_t* pack, uint64_t size);

/** Releases the sink. Packs behind the last navigation pack are dropped. @return 0; 0x84000057 if prepare is null */
ORV_API uint64_t pnpFreePrepare(PnpPrepare* prepare);

ORV_END_DECLS

#endif
