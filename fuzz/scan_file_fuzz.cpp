// scan_file_fuzz.cpp: any bytes as a stream scan file, from which a title set and the manager are written.

#include "fuzz/disc_fuzz.h"
#include "fuzz/fuzz.h"

#include "tests/support/packs.h"
#include "video/drivers.h"

#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const TempDir dir;
    const std::u16string path = dir / u"scan";
    writeFile(path, Bytes(data, data + size));
    DiscContext* context = makeFuzzContext(dir, dir / u"VTS_01_1.VOB");
    if (osStrDup(path.c_str(), &context->titleSets[0]->streamScanFile)) abort();
    (void)CreateVideoTitleSet(context, 1, dir.prefix().c_str());
    (void)CreateVideoManager(context, dir.prefix().c_str(), nullptr);
    orvFreeDiscContext(&context);
    return 0;
}

std::vector<Bytes> fuzzSeeds()
{
    const Movie movie = makeMovie({ .vobus = vobus(8) });
    Bytes seed = { 1, 0, 0, 0, 100, 0, 0, 0 };
    const uint64_t bytes = movie.vobus.size() * sizeof(VobuRecord);
    seed.resize(8 + bytes);
    memcpy(seed.data() + 8, movie.vobus.data(), bytes);
    return { seed };
}
