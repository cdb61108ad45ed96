// vts_ifo_fuzz.cpp: any bytes as the IFO of an earlier title set, from which the manager is written.

#include "fuzz/disc_fuzz.h"
#include "fuzz/fuzz.h"

#include "tests/support/packs.h"
#include "video/drivers.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const TempDir dir;
    writeFile(dir / u"VTS_01_0.IFO", Bytes(data, data + size));
    DiscContext* context = makeFuzzContext(dir, dir / u"VTS_01_1.VOB");
    (void)CreateVideoManager(context, dir.prefix().c_str(), nullptr);
    orvFreeDiscContext(&context);
    return 0;
}

std::vector<Bytes> fuzzSeeds()
{
    const TempDir dir;
    const std::u16string source = dir / u"VTS_01_1.VOB";
    writeFile(source, makeMovie({ .vobus = vobus(4) }).bytes);
    DiscContext* context = makeFuzzContext(dir, source);
    if (CreateVideoTitleSet(context, 1, dir.prefix().c_str())) abort();
    orvFreeDiscContext(&context);
    return { readFile(dir / u"VTS_01_0.IFO") };
}
