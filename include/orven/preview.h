/* preview.h: what a viewer will see of a project's menus, before a disc is made. An addition to the authoring runs: it
 * reads a project as they do, makes each menu's sub-picture and highlight, and hands them out. It writes no file but
 * the log. */
#ifndef ORVEN_PREVIEW_H
#define ORVEN_PREVIEW_H

#include <orven/types.h>

ORV_BEGIN_DECLS

/* A colour of the disc's palette, turned back from its luminance and chrominance to RGB. */
typedef struct OrvPreviewColor {
    uint8_t red, green, blue;
    uint8_t contrast; /* 0: what lies beneath is seen alone, to 15: the colour alone */
} OrvPreviewColor;

/* A button as it stands in the navigation pack. Coordinates are pixels of the picture from its upper left corner; both
   corners belong to the button. Links are button numbers, from 1; 0: none. */
typedef struct OrvPreviewButton {
    uint32_t xStart, xEnd, yStart, yEnd;
    uint32_t upLink, downLink, leftLink, rightLink;
    uint32_t colorSet;   /* 1..3; 0: no highlight */
    uint32_t autoAction; /* 1: activated on selection */
} OrvPreviewButton;

/* One display form of one menu. A menu with a letterbox form is handed out twice. */
typedef struct OrvMenuPreview {
    uint32_t titleSet;      /* 1..99; 0: the manager */
    uint32_t menu;          /* from 1 */
    uint32_t letterbox;     /* 1: the letterbox form: its sub-picture, and the buttons where such a display has them */
    uint32_t width, height; /* of the picture: 720 x 576 or 720 x 480 */
    const uint8_t* codes;   /* width x height pixel codes 0..3, top line first, as a player decodes them; lines that the
                               sub-picture does not show are 0 */
    OrvPreviewColor palette[4];      /* the colours of the four codes; contrast 0, as a sub-picture shows nothing by
                                        itself */
    OrvPreviewColor colors[3][2][4]; /* highlight: colour set - 1; 0 selected, 1 activated; code */
    uint32_t buttonCount;            /* 0..36; 0..18 of a menu with a letterbox form */
    const OrvPreviewButton* buttons;
} OrvMenuPreview;

/** Receives a menu; the record and what it points to live until it returns.
 *  @return 0 to go on; any other value ends the call with 0x8400040A */
typedef uint32_t (*OrvMenuPreviewCall)(const OrvMenuPreview* menu, uint64_t user);

/** Hands out each menu of a DVD-Video project: those of the title sets in their order, then those of the manager.
 *  Menus of skipped title sets (`skipvts`, `skipmenu`) are left out. Backgrounds and movies are not opened.
 *
 *  @param projectPath  the project file
 *  @param preview      is called once for each display form of each menu
 *  @param user         handed to preview unchanged
 *  @param logPath      null, or a file to which syntax errors of the project are appended
 *  @return 0; the codes that an authoring run has for the project or for the menu's bitmaps; 0x840007DA for a
 *          sub-picture above 65535 bytes, which a run writes and no player can read; 0x84000057 if projectPath
 *          or preview is null; a number of the platform */
ORV_API uint64_t PreviewMenusW(const OrvWChar* projectPath, OrvMenuPreviewCall preview, uint64_t user,
                               const OrvWChar* logPath);

/** The narrow form of PreviewMenusW. */
ORV_API uint64_t PreviewMenus(const char* projectPath, OrvMenuPreviewCall preview, uint64_t user, const char* logPath);

ORV_END_DECLS

#endif
