// audio_project_fuzz.cpp: any bytes as the project file of a DVD-Audio disc, through every reader of its sections.

#include "fuzz/fuzz.h"

#include "base/memory.h"
#include "base/profile.h"
#include "base/strings.h"
#include "project/audio_reader.h"
#include "project/reader.h"
#include "project/values.h"

#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds) abort();
}

// What the stages rely on once a reader has succeeded.
void checkStills(const AsvsDesc& asvs)
{
    require(asvs.attributeCount >= 1 && asvs.attributeCount <= MAX_STILL_ATTRIBUTES && asvs.stillCount <= MAX_STILLS);
    for (const StillAttributes& attributes : asvs.attributes) require(attributes.resolution <= 3);
    for (uint64_t i = 0; i < asvs.stillCount; i++) {
        const StillDesc* still = asvs.stills[i];
        require(still && osStrLength(still->background) > 0 && still->buttonCount <= MAX_BUTTONS);
        require((still->hasSubPicture == 1) == (still->subPicture != nullptr));
    }
}

void checkTrack(const AudioTrackDesc& track)
{
    require(track.assign <= 20 && track.channelCount >= 1 && track.channelCount <= MAX_CHANNELS);
    require(track.channelCount == track.channels1 + track.channels2);
    require(track.sampleSize1 >= 16 && track.sampleSize1 <= 24 && track.sampleRate1 >= 44100);
    require(osStrLength(track.title) < AUDIO_TEXT);
    for (uint64_t c = track.channelCount; c < MAX_CHANNELS; c++) require(!track.channelPaths[c]);
}

void checkTitleSet(const AudioTitleSetDesc& titleSet)
{
    require(titleSet.trackCount <= MAX_AUDIO_TRACKS);
    require(osStrLength(titleSet.album) < AUDIO_TEXT && osStrLength(titleSet.artist) < AUDIO_TEXT);
    for (uint64_t i = 0; i < titleSet.trackCount; i++) checkTrack(titleSet.tracks[i]);
}

/** Every section, whatever is wrong in the one before. */
void readSections(AudioDiscContext* context, const OsProfile* file)
{
    const RunHead* run = &context->head;
    const Section manager = { run, file, u"AMG" };
    int64_t standard = 0;
    if (orvReadAudioCommon(run, file, &standard)) standard = 2;
    context->hasAsvs = osProfileHasLines(file, u"ASVS");
    if (!orvReadStills(run, file, standard, &context->asvs)) checkStills(context->asvs);
    uint64_t result = orvReadAttributes(run, file, u"AMG_MENU", standard, &context->amgAttributes);
    for (uint64_t i = 1; i <= orvReadInt(manager, u"menus") && i <= MAX_MENUS; i++) {
        MenuDesc* menu = &context->amgMenus[i - 1];
        result = orvReadAmgMenu(run, file, orvNumberedName(u"AMG_MENU%ld", i).text, menu);
        require(result || (menu->background && menu->subPicture && menu->buttonCount <= MAX_BUTTONS));
    }
    for (uint64_t n = 1; n <= orvReadInt(manager, u"titlesets") && n <= MAX_TITLE_SETS; n++) {
        AudioTitleSetDesc** slot = &context->audioTitleSets[n - 1];
        if (osAllocMem(sizeof(AudioTitleSetDesc), slot)) abort();
        if (!orvReadAudioTitleSet(run, file, n, *slot)) checkTitleSet(**slot);
    }
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const TempDir dir;
    const std::u16string path = dir / u"project.ini";
    writeFile(path, Bytes(data, data + size));

    AudioDiscContext* context = nullptr;
    OsProfile* file = nullptr;
    if (orvCreateAudioContext((dir / u"log").c_str(), nullptr, 0, &context)) abort();
    if (osOpenProfile(path.c_str(), &file)) abort();
    readSections(context, file);
    osCloseProfile(&file);
    orvFreeAudioContext(&context);
    return 0;
}

std::vector<Bytes> fuzzSeeds()
{
    const std::string_view text = R"([COMMON]
version=1.0
mode=NTSC
[AMG]
titlesets=2
menus=1
[AMG_MENU]
videomode=16:9
colortable2=255,255,0
[AMG_MENU1]
background=a.m2v
subpicture=a.bmp
colorset1=1,2,3,4,15,15,15,15
buttons=2
button1=1,2,3,4,1,2,1,2,1,BTN_ACTION_JUMP_TK(1,1,0),1
button2=1,2,3,4,,1,2,1,2,BTN_ACTION_LINK_NDLIST(1,0,0)
[ASVS]
stills=2
attributes=2
colortable1=255,0,0
[ASVU_ATTRIBUTE1]
mpegtype=mpeg1
videomode=16:9
resolution=352x288
[ASV01]
background=b.m2v
subpicture=b.bmp
colorset2=1,2,3,4,5,6,7,8
buttons=1
button1=1,2,3,4,1,1,1,1,1,BTN_ACTION_LINK_TKN(1,2,0)
[ASV02]
background=c.m2v
[ATS_01]
album=One
artist="Two "
tracks=2
[TRACK_01_01]
title=First
format=LPCM
assign=20
samplesize=24
samplerate=96000
playtime=90000
channel1=C:\a b\ATS_01_1.AOB
[TRACK_01_02]
format=WAVE
channels=2
samplesize=16
samplerate=44100
startsample=5
endsample=44105
channel1=l.wav
channel2=r.wav
[ATS_02]
tracks=1
[TRACK_02_01]
format=LPCM
channels=6
samplesize=24
samplerate=48000
playtime=1
channel1=AOB
channel6=f.wav
)";
    return { Bytes(text.begin(), text.end()) };
}
