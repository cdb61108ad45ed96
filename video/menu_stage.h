// menu_stage.h: makes the menu VOB of a domain: encodes each menu's sub-pictures, lays its assets into the one file,
// scans it and fills its navigation packs.
#pragma once

#include "project/model.h"
#include "video/vobu_record.h"

#include <cstdint>

// What a domain's menu stage says of failures. A text has one %s, the path; a null one is not logged.
struct MenuStageTexts {
    const char16_t* vobNotOpened;
    uint64_t vobNotOpenedCode;
    const char16_t* backgroundNotOpened;   // null: opening a background is not checked, its probe fails instead
    const char16_t* assetNotMpeg;
    const char16_t* unitOfPairNotOpened;   // a sub-picture's temporary file
    const char16_t* unitNotOpened;
    uint64_t unitNotOpenedCode;
};

struct MenuStage {
    const DiscContext* context;
    const MenuStageTexts* texts;
    MenuDesc* menus;   // their rectangles and colours are settled by the stage
    uint64_t menuCount;
    uint64_t audioStreamCount;
    uint32_t progressKind;
    uint64_t titleSetNumber;   // 0: the manager
    const char16_t* vobPath;
    bool skipMenu;              // the VOB is there already: it is scanned and not touched
    uint64_t subPictureCount;   // out: sub-picture streams of the last menu
    uint64_t vobBytes;          // out
};

/** Writes the menu VOB and lists its units.
    @param vobuList  an empty list, grown by one record per unit; stays the caller's
    @return 0; a code of the stage's texts, logged; ORV_ASSET_NOT_MPEG, logged; ORV_CANCELED; the codes of the pipeline,
            of the encoder, of the asset drivers, of the scan and of the navigation packs; a platform's number. No
            temporary file is left on any path. */
[[nodiscard]] uint64_t orvMakeMenuVob(MenuStage* stage, VobuRecord** vobuList);

/** Scans a menu VOB and fills its navigation packs.
    @param menus       menuCount of them; the first decides whether the file has a second cell from its loop point on
    @param skipSetup   not 0: nothing is filled
    @param sources     MAX_SOURCES slots, the menu VOB in the first
    @param progressUser  number of the title set, 0 for a manager
    @param noProgress  the run is none of DVD-Video, or nobody is to hear of it
    @param vobuList    as in orvGetMovieInfo */
[[nodiscard]] uint64_t orvScanAndSetupMenu(const RunHead* run, uint64_t audioStreamCount, uint64_t subPictureCount,
                                           const MenuDesc* menus, uint64_t menuCount, uint64_t skipSetup,
                                           int64_t videoStandard, char16_t* const* sources, uint64_t progressUser,
                                           bool noProgress, VobuRecord** vobuList);

/** Logs that a menu VOB can't be opened. path is what is known of its path. @return the code for it */
[[nodiscard]] uint64_t orvMenuVobNotOpened(const DiscContext* context, const MenuStageTexts* texts,
                                           const char16_t* path);
