// model.h: what a project file says, as records. The readers of this folder fill them, the stages of a run read them.
//
// Every record hangs from the run's root, one zero-filled block: a field that no key set is 0. Paths are string objects
// of the record that holds them.
#pragma once

#include "base/strings.h"

#include <orven/authoring.h>

#include <cstdint>

inline constexpr uint64_t MAX_TITLE_SETS = 99;
inline constexpr uint64_t MAX_MENUS = 99;       // of one domain
inline constexpr uint64_t MAX_CHAPTERS = 255;   // of a title set
inline constexpr uint64_t MAX_BUTTONS = 36;     // of a menu
inline constexpr uint64_t MAX_SOURCES = 32;     // files of a title
inline constexpr uint64_t MAX_AUDIO_STREAMS = 8;
inline constexpr uint64_t PALETTE_ENTRIES = 16;
inline constexpr uint64_t COLOR_SETS = 3;
inline constexpr uint64_t COLOR_SET_BYTES = 8;

// Head of a run's root record, the same for DVD-Video and DVD-Audio.
struct RunHead {
    int64_t videoStandard;          // STANDARD_PAL or STANDARD_NTSC, from `mode`
    uint64_t frameTicks;            // length of a frame, 90 kHz ticks
    char16_t* logFilePath;          // null if the host gave none
    OrvProgress progressCallback;   // may be null
    uint64_t progressUser;
    uint64_t titleSetCount;   // 1..99
};

// MPEG stream ids that the model and the packs of a stream have in common.
inline constexpr uint8_t STREAM_PRIVATE_1 = 0xBD;   // AC-3, LPCM, DTS, SDDS, sub-pictures
inline constexpr uint8_t STREAM_AUDIO = 0xC0;       // first MPEG audio stream

struct AudioStreamDesc {
    int64_t audioFormat;       // the IFO's coding values: AUDIO_...; -1 none
    uint64_t quantization;     // 0: 16 bits, 1: 20, 2: 24
    uint64_t sampleRateCode;   // 0: 48 kHz, 1: 96 kHz
    uint64_t channelCount;     // 1..6
    uint64_t languageCode;     // first letter in the low byte, second in the next
    uint64_t streamId;         // MPEG stream id
    uint64_t subStreamId;      // within private stream 1; 0 for MPEG audio
};

inline constexpr int64_t AUDIO_NONE = -1, AUDIO_AC3 = 0, AUDIO_LAYER2 = 2, AUDIO_PCM = 4, AUDIO_DTS = 6, AUDIO_SDDS = 7;

// Video and audio attributes and the colour table of one domain.
struct AttributeSet {
    uint64_t attributeHead;      // sub-picture streams; set by whoever builds a program chain, not by the reader
    uint64_t audioStreamCount;   // streams that have a format
    uint64_t mpegVersion;        // 0: MPEG-1, 1: MPEG-2
    uint64_t isPal;              // 1 or 0
    uint64_t resolution;         // 0: 720 wide, 1: 704, 2: 352 at full height, 3: 352 at half height
    uint64_t aspectRatio;        // 0: 4:3, 3: 16:9
    uint64_t bitrateMode;        // 0: variable, 1: constant
    uint64_t playTime;           // as written; 1 if missing
    AudioStreamDesc audio[MAX_AUDIO_STREAMS];   // entry k - 1 has the keys with suffix k; entries are not packed
    uint64_t audioIdCounter;                    // streams that got an id so far
    uint32_t colorTable[PALETTE_ENTRIES];       // orvRgbToYCrCb values
};

struct ButtonDesc {
    uint64_t xStart, xEnd, yStart, yEnd;              // rectangle, picture coordinates
    uint64_t autoAction;                              // 1: activated on selection
    uint64_t color;                                   // colour set, 1..3
    uint64_t upLink, downLink, leftLink, rightLink;   // button numbers
    uint64_t command;                                 // number of commands.h; 0: none
    uint64_t param1, param2, param3;
    uint64_t overlapButton;   // number of the button that overlaps this one; 0: none
};

inline constexpr uint64_t LOOP_NONE = 0, LOOP_ALWAYS = 1, LOOP_FROM = 2, LOOP_DELAY = 4;   // MenuDesc::loopMode
inline constexpr uint64_t AUDIO_BUTTON_MARK = 3;                                           // MenuDesc::audioButtonMark

struct MenuDesc {
    char16_t* background;     // video asset
    char16_t* subPicture;     // bitmap
    char16_t* spuLetterbox;   // bitmap of the letterbox display
    char16_t* subPicture32;   // 32-bit form of the sub-picture
    char16_t* spuLetterbox32;
    uint64_t hasLetterbox;
    uint64_t hasSubPicture32;              // 1: the sub-picture is made from subPicture32
    uint64_t buttonsOverlap, manyColors;   // found by the menu pipeline
    uint64_t audioButtonMark;              // AUDIO_BUTTON_MARK if a button sets the audio stream
    uint64_t playFrames;
    uint64_t menuExtra;
    uint64_t loopMode;    // LOOP_...
    uint64_t loopValue;   // SCR ticks from which a LOOP_FROM menu loops; delay of LOOP_DELAY
    uint64_t menuType;    // existence flag in the domain: 0x80, 0x40, 0x20, 0x10, 0x08
    uint64_t blinkCount;
    uint64_t blinkDelay;
    uint8_t colorSets[COLOR_SETS][COLOR_SET_BYTES];   // as they stand in the navigation pack
    uint32_t palette[PALETTE_ENTRIES];                // bytes alpha, red, green, blue; filled by the menu pipeline
    uint64_t buttonCount;
    ButtonDesc buttons[MAX_BUTTONS];
};

// One still picture of a DVD-Audio disc.
struct StillDesc {
    char16_t* background;         // video asset
    char16_t* subPicture;         // bitmap; null: none
    uint64_t hasSubPicture;       // 1: the still has a sub-picture, and with it a highlight
    uint64_t subPictureSectors;   // packs of the encoded sub-picture; set by the multiplexer
    uint64_t startSector;         // of the still in AUDIO_SV.VOB; set by the stage that makes it
    uint8_t colorSets[COLOR_SETS][COLOR_SET_BYTES];
    uint64_t buttonCount;
    ButtonDesc buttons[MAX_BUTTONS];
};

struct ChapterDesc {
    int64_t startFrame;        // position of the chapter, in SCR ticks, in spite of its name
    int64_t menuPage;          // program chain of the menu that the menu key shows
    int64_t highlightButton;   // button that it selects there
};

// TitleSetDesc::postCommand
inline constexpr uint64_t POST_NONE = 0, POST_TITLE = 1, POST_ROOT = 2, POST_LOOP = 3, POST_NEXT = 4, POST_PREVIOUS = 5,
                          POST_FIRST = 6, POST_LAST = 7;

struct TitleSetDesc {
    char16_t* sources[MAX_SOURCES];   // program streams of the title, in order; null where the key is absent
    char16_t* streamScanFile;         // taken in place of a scan of the sources; null: none
    AttributeSet menuAttributes;
    AttributeSet titleAttributes;
    uint64_t chapterCount;
    ChapterDesc chapters[MAX_CHAPTERS + 1];   // entry i - 1 is `chapter`i
    uint64_t restricted;                      // 1: user operations are restricted in the title
    uint64_t postCommand;                     // POST_...
    uint64_t menuCount;
    uint64_t skipMenu;
    uint64_t menuUnits, titleUnits, startUnits;   // progress units
    MenuDesc menus[MAX_MENUS];
};

// Root of a DVD-Video run.
struct DiscContext {
    RunHead head;
    uint64_t firstPlayCommand;   // number of commands.h; 0: none
    uint64_t firstPlayParam1, firstPlayParam2, firstPlayParam3;
    uint64_t progressTotal;    // units of the run
    uint64_t titleSetsUnits;   // units of all title sets
    TitleSetDesc vmg;          // the manager's menus: menuAttributes, menuCount, menuUnits, menus alone are used
    TitleSetDesc* titleSets[MAX_TITLE_SETS];   // entry n - 1 is title set n; null if it is skipped
};

/** Allocates the root of a run, zero filled, with a copy of the log's path (which may be null). */
[[nodiscard]] uint64_t orvAllocDiscContext(const char16_t* logFilePath, DiscContext** out);
/** Frees a root and all that hangs from it; harmless on a null root. */
void orvFreeDiscContext(DiscContext** context);
/** Frees one title set and all that hangs from it. */
void orvFreeTitleSet(TitleSetDesc** titleSet);
