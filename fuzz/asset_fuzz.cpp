// asset_fuzz.cpp: any bytes as the background of a menu, laid into a VOB by the driver that its first bytes choose,
// then scanned and filled.
//   0       bit 0: a pair of sub-pictures; bits 1 and 2: the loop mode, 0, 1, 2 or 4
//   1 - 4   the loop point
//   5 on    the background

#include "fuzz/disc_fuzz.h"
#include "fuzz/fuzz.h"

#include "base/files.h"
#include "base/memory.h"
#include "mux/asset_drivers.h"
#include "tests/support/packs.h"
#include "video/movie_scan.h"
#include "video/nav_setup.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

constexpr size_t HEAD_BYTES = 5;
constexpr uint64_t UNIT_BYTES[] = { 5000, 2100 };   // of the two sub-pictures: three packs and two

static OSFILE openFile(const std::u16string& path, uint64_t mode)
{
    OSFILE file = 0;
    if (osOpenFile(path.c_str(), mode, &file)) abort();
    return file;
}

// The driver's result is of no matter: what it has written by then is whole packs, and not more than it was given.
static void lay(const MenuDesc* menu, const TempDir& dir, uint64_t assetBytes)
{
    OSFILE output = openFile(dir / u"menu.vob", OS_CREATE_READ), video = openFile(dir / u"asset", OS_READ);
    OSFILE unit = openFile(dir / u"unit0", OS_READ), letterbox = openFile(dir / u"unit1", OS_READ);
    const uint64_t form = orvProbeAsset(video);
    if (osSeekFile(video, 0, OS_FROM_START)) abort();
    const bool pair = menu->hasLetterbox;
    uint64_t result = 0;
    if (form == ASSET_STILL) {
        result = pair ? orvMuxStillMenuPair(output, video, unit, letterbox, 3600)
                      : orvMuxStillMenu(output, video, unit, 3600);
        if (result) abort();
    } else if (form == ASSET_ANIMATED) {
        result = pair ? orvMuxAnimatedMenuPair(menu, output, video, unit, letterbox)
                      : orvMuxAnimatedMenu(menu, output, video, unit);
    }
    uint64_t size = 0;
    if (osFileSize(output, &size)) abort();
    if (size % PACK_BYTES || size > (assetBytes / 2012 + 10) * PACK_BYTES) abort();
    for (OSFILE* const file : { &output, &video, &unit, &letterbox }) (void)osCloseFile(file);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < HEAD_BYTES) return 0;
    const TempDir dir;
    const uint64_t loopModes[] = { LOOP_NONE, LOOP_ALWAYS, LOOP_FROM, LOOP_DELAY };
    MenuDesc menu = {};
    menu.hasLetterbox = data[0] & 1;
    menu.loopMode = loopModes[data[0] >> 1 & 3];
    uint32_t loop = 0;
    memcpy(&loop, data + 1, 4);
    menu.loopValue = loop;
    menu.buttonCount = 20;
    writeFile(dir / u"asset", Bytes(data + HEAD_BYTES, data + size));
    writeFile(dir / u"unit0", Bytes(UNIT_BYTES[0], 0x11));
    writeFile(dir / u"unit1", Bytes(UNIT_BYTES[1], 0x22));
    lay(&menu, dir, size - HEAD_BYTES);

    std::u16string vob = dir / u"menu.vob";
    const Bytes laid = readFile(vob);
    DiscContext* context = makeFuzzContext(dir, vob);
    VobuRecord* units = nullptr;
    StreamPackRecord* packs = nullptr;
    if (osAllocMem(0, &units) || osAllocMem(0, &packs)) abort();
    char16_t* sources[MAX_SOURCES] = { vob.data() };
    if (!orvGetMovieInfo(&context->head, nullptr, sources, 0, &units, &packs, nullptr, 0, true)) {
        (void)orvSetupMenu(&context->head, 1, 1 + menu.hasLetterbox, &menu, 1, 1, vob.c_str(), units, packs);
    }
    if (readFile(vob).size() != laid.size()) abort();
    osFreeMem(&units);
    osFreeMem(&packs);
    orvFreeDiscContext(&context);
    return 0;
}

// Three units of two sectors that tell their ends, behind these first bytes.
static Bytes seedOf(std::string_view head)
{
    Movie movie = makeMovie({ .vobus = vobus(3, { .pictureBytes = { 100 } }) });
    for (const VobuRecord& unit : movie.vobus) movie.pack(unit.sector)[1042] = 1;
    return fromHex(head) + movie.bytes;
}

std::vector<Bytes> fuzzSeeds()
{
    return { seedOf("00 00 00 00 00"), seedOf("05 C0 A8 00 00"), seedOf("06 01 00 00 00"),
             fromHex("01 00 00 00 00 00 00 01 B3") + picture(3000, 0, 1) };
}
