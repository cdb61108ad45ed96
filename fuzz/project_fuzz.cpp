// project_fuzz.cpp: any bytes as a project file, through every reader of the project.

#include "fuzz/fuzz.h"

#include "base/profile.h"
#include "project/progress.h"
#include "project/reader.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const TempDir dir;
    const std::u16string path = dir / u"project.ini";
    writeFile(path, Bytes(data, data + size));

    DiscContext* context = nullptr;
    OsProfile* file = nullptr;
    if (orvAllocDiscContext((dir / u"log").c_str(), &context) || osOpenProfile(path.c_str(), &file)) abort();
    int64_t standard = 0;
    uint64_t result = orvReadCommon(&context->head, file, &standard);
    if (result) standard = 1;   // whatever is wrong there, the rest is worth reading
    context->head.videoStandard = standard;
    result = orvReadFirstPlay(context, file);
    result = orvReadManager(context, file, standard, &context->vmg);
    if (!result) orvPrepareUnits(context);
    osCloseProfile(&file);
    orvFreeDiscContext(&context);
    return 0;
}

std::vector<Bytes> fuzzSeeds()
{
    const std::string_view text = R"([COMMON]
version=1.0
mode=NTSC
[FIRSTPLAY]
cmd=BTN_ACTION_JUMP_TT(1,0,0)
[VMG]
titlesets=2
menus=1
[VMG_MENU]
videomode=16:9
audio=AC3
colortable1=255,0,0
[VMG_MENU1]
background=a.mpg
subpicture=a.bmp
type=animated
loop=2
buttons=2
button1=1,2,3,4,1,2,1,2,1,BTN_ACTION_JUMP_TT(1,0,0),1
button2=1,2,3,4,,1,2,1,2,BTN_ACTION_SETAUDIO(1,0,0)
colorset1=1,2,3,4,15,15,15,15
playtime=00:00:10.05
blink=5,100
[VTS_1]
restricted=yes
chapters=3
chapter1=0
chapter2=100,1,2
postcmd=loop
astreams=2
audio=AC3
audio2=PCM
language=en
source="C:\a b\1.vob"
source5=2.vob
streamscanfile=s.bin
[VTS_02]
skipvts=1
)";
    return { Bytes(text.begin(), text.end()) };
}
