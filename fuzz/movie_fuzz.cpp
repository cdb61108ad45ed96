// movie_fuzz.cpp: any bytes as the program stream of a title, scanned, patched and described in tables, and as a menu
// VOB.

#include "fuzz/disc_fuzz.h"
#include "fuzz/fuzz.h"

#include "base/memory.h"
#include "tests/support/packs.h"
#include "video/drivers.h"
#include "video/movie_scan.h"
#include "video/nav_setup.h"

#include <cstdlib>

static void authorMenu(DiscContext* context, const std::u16string& path)
{
    MenuDesc menus[2] = {};
    menus[0].buttonCount = 3;
    menus[1].buttonCount = 20;
    menus[1].hasLetterbox = 1;
    menus[0].loopMode = LOOP_FROM;
    menus[0].loopValue = 50000;
    VobuRecord* units = nullptr;
    StreamPackRecord* packs = nullptr;
    if (osAllocMem(0, &units) || osAllocMem(0, &packs)) abort();
    std::u16string name = path;
    char16_t* sources[MAX_SOURCES] = { name.data() };
    if (!orvGetMovieInfo(&context->head, nullptr, sources, 0, &units, &packs, nullptr, 0, true)) {
        (void)orvSetupMenu(&context->head, 2, 2, menus, 2, 1, path.c_str(), units, packs);
    }
    osFreeMem(&units);
    osFreeMem(&packs);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const TempDir dir;
    const std::u16string path = dir / u"VTS_01_1.VOB";
    writeFile(path, Bytes(data, data + size));
    DiscContext* context = makeFuzzContext(dir, path);
    (void)CreateVideoTitleSet(context, 1, dir.prefix().c_str());
    (void)CreateVideoManager(context, dir.prefix().c_str(), nullptr);
    if (readFile(path).size() != size) abort();   // the source keeps its size, whatever it is
    authorMenu(context, path);
    orvFreeDiscContext(&context);
    return 0;
}

std::vector<Bytes> fuzzSeeds()
{
    return { makeMovie({ .vobus = vobus(6), .streams = { ac3Stream(), mpegAudioStream(1) } }).bytes,
             makeMovie({ .vobus = vobus(2, { .pictures = 1 }) + vobus(2, { .pictures = 1, .newVob = true }),
                         .streams = { subPictureStream() } })
                 .bytes };
}
