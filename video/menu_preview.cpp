// menu_preview.cpp: hands a host what a viewer will see of a project's menus, and the exported entries of that.

#include "base/memory.h"
#include "base/profile.h"
#include "base/result.h"
#include "base/strings.h"
#include "base/time_code.h"
#include "base/wide.h"
#include "menu/bitmap.h"
#include "menu/menu_colors.h"
#include "menu/sub_picture.h"
#include "menu/sub_picture_read.h"
#include "mux/nav_layout.h"
#include "project/model.h"
#include "project/reader.h"
#include "video/nav_highlight.h"
#include "video/pgc.h"

#include <orven/preview.h>

struct PreviewRun {
    const DiscContext* context;
    OrvMenuPreviewCall call;
    uint64_t user;
};

// ---- colours ------------------------------------------------------------------------------------------------------

static uint8_t toByte(double value)
{
    return uint8_t(value < 0 ? 0 : value > 255 ? 255 : value + 0.5);
}

/** A palette entry, luminance in the low byte, then Cr and Cb, as a player shows it. */
static OrvPreviewColor toRgb(uint32_t color, uint64_t contrast)
{
    const double y = (double(color & 0xFF) - 16) * 255.0 / 219.0;
    const double cr = (double(color >> 8 & 0xFF) - 128) * 255.0 / 224.0;
    const double cb = (double(color >> 16 & 0xFF) - 128) * 255.0 / 224.0;
    return { toByte(y + 1.402 * cr), toByte(y - 0.714 * cr - 0.344 * cb), toByte(y + 1.772 * cb), uint8_t(contrast) };
}

/** The nibble of a colour word that belongs to a pixel code: colours and contrasts alike have code 3 first. */
static uint64_t nibbleOf(const uint8_t* two, uint64_t code)
{
    const uint8_t byte = two[code < 2 ? 1 : 0];
    return code % 2 == 0 ? byte & 0x0F : byte >> 4;
}

static void fillColors(const AttributeSet* attributes, const MenuDesc* menu, OrvMenuPreview* preview)
{
    for (uint64_t code = 0; code < 4; code++) {
        preview->palette[code] = toRgb(orvPaletteColor(attributes, menu, code), 0);
        for (uint64_t set = 0; set < COLOR_SETS; set++) {
            for (uint64_t state = 0; state < 2; state++) {
                const uint8_t* word = menu->colorSets[set] + state * COLOR_SET_BYTES / 2;
                const uint64_t entry = nibbleOf(word, code), contrast = nibbleOf(word + 2, code);
                preview->colors[set][state][code] = toRgb(orvPaletteColor(attributes, menu, entry), contrast);
            }
        }
    }
}

// ---- buttons ------------------------------------------------------------------------------------------------------

constexpr uint64_t COORDINATE_MASK = 0x3FF, LINK_MASK = 0xFF, FLAG_MASK = 0x03;   // widths of a button's disc fields

static uint32_t part(uint64_t value, uint64_t mask)
{
    return uint32_t(value & mask);
}

static OrvPreviewButton toPreview(const ButtonDesc* button, uint64_t yStart, uint64_t yEnd)
{
    return { part(button->xStart, COORDINATE_MASK), part(button->xEnd, COORDINATE_MASK),
             part(yStart, COORDINATE_MASK),         part(yEnd, COORDINATE_MASK),
             part(button->upLink, LINK_MASK),       part(button->downLink, LINK_MASK),
             part(button->leftLink, LINK_MASK),     part(button->rightLink, LINK_MASK),
             part(button->color, FLAG_MASK),        part(button->autoAction, FLAG_MASK) };
}

static uint32_t fillButtons(const MenuDesc* menu, int64_t videoStandard, bool letterbox, OrvPreviewButton* buttons)
{
    const uint64_t most = menu->hasLetterbox ? BUTTON_GROUP : MAX_BUTTONS;
    const uint64_t count = menu->buttonCount < most ? menu->buttonCount : most;
    for (uint64_t i = 0; i < count; i++) {
        const ButtonDesc* button = menu->buttons + i;
        const uint64_t yStart = letterbox ? orvLetterboxLine(button->yStart, videoStandard) : button->yStart;
        const uint64_t yEnd = letterbox ? orvLetterboxLine(button->yEnd, videoStandard) : button->yEnd;
        buttons[i] = toPreview(button, yStart, yEnd);
    }
    return uint32_t(count);
}

// ---- menus --------------------------------------------------------------------------------------------------------

constexpr uint64_t LARGEST_UNIT = 0xFFFF;   // bytes that a unit's size word can say

static uint64_t makeCodes(int64_t videoStandard, const MenuDesc* menu, bool letterbox, uint8_t** codes)
{
    uint8_t* unit = nullptr;
    const char16_t* bitmap = letterbox ? menu->spuLetterbox : menu->subPicture;
    const char16_t* alpha = letterbox ? menu->spuLetterbox32 : menu->subPicture32;
    if (uint64_t error = orvEncodeSubPicture(menu, bitmap, alpha, videoStandard, &unit)) return error;
    const uint64_t height = orvPictureHeight(videoStandard);
    // A run writes such a unit, but no player can read it: its size and offsets don't fit their words.
    uint64_t result = osMemSize(unit) > LARGEST_UNIT ? ORV_SUBPICTURE_TOO_LARGE : 0;
    if (!result) result = osAllocMem(PICTURE_WIDTH * height, codes);
    if (!result) result = orvDecodeSubPicture(unit, osMemSize(unit), PICTURE_WIDTH, height, *codes);
    (void)osFreeMem(&unit);
    return result;
}

/** One display form of a menu; what preview holds already says which. */
static uint64_t handOut(const PreviewRun* run, const AttributeSet* attributes, const MenuDesc* menu,
                        OrvMenuPreview* preview)
{
    const int64_t videoStandard = run->context->head.videoStandard;
    OrvPreviewButton buttons[MAX_BUTTONS] = {};
    uint8_t* codes = nullptr;
    uint64_t result = makeCodes(videoStandard, menu, preview->letterbox != 0, &codes);
    if (!result) {
        preview->width = uint32_t(PICTURE_WIDTH);
        preview->height = uint32_t(orvPictureHeight(videoStandard));
        preview->codes = codes;
        preview->buttonCount = fillButtons(menu, videoStandard, preview->letterbox != 0, buttons);
        preview->buttons = buttons;
        fillColors(attributes, menu, preview);
        if (run->call(preview, run->user)) result = ORV_CANCELED;
    }
    (void)osFreeMem(&codes);
    return result;
}

static uint64_t previewMenu(const PreviewRun* run, uint64_t titleSetNumber, const AttributeSet* attributes,
                            MenuDesc* menu, uint64_t number)
{
    if (menu->hasSubPicture32) {
        if (uint64_t error = orvPrepareMenuColors(run->context->head.videoStandard, menu)) return error;
    }
    for (uint32_t letterbox = 0; letterbox <= (menu->hasLetterbox ? 1U : 0U); letterbox++) {
        OrvMenuPreview preview = {};
        preview.titleSet = uint32_t(titleSetNumber);
        preview.menu = uint32_t(number);
        preview.letterbox = letterbox;
        if (uint64_t error = handOut(run, attributes, menu, &preview)) return error;
    }
    return 0;
}

static uint64_t previewDomain(const PreviewRun* run, uint64_t titleSetNumber, TitleSetDesc* domain)
{
    for (uint64_t i = 0; domain && i < domain->menuCount; i++) {
        const AttributeSet* attributes = &domain->menuAttributes;
        if (uint64_t error = previewMenu(run, titleSetNumber, attributes, domain->menus + i, i + 1)) return error;
    }
    return 0;
}

static uint64_t readProject(DiscContext* context, const OsProfile* file)
{
    int64_t standard = 0;
    if (uint64_t error = orvReadCommon(&context->head, file, &standard)) return error;
    if (uint64_t error = orvSetStandard(&context->head, standard)) return error;
    if (uint64_t error = orvReadFirstPlay(context, file)) return error;
    return orvReadManager(context, file, standard, &context->vmg);
}

static uint64_t previewProject(DiscContext* context, const char16_t* projectPath, OrvMenuPreviewCall call,
                               uint64_t user)
{
    OsProfile* file = nullptr;
    uint64_t result = osOpenProfile(projectPath, &file);
    if (!result) result = readProject(context, file);
    osCloseProfile(&file);
    const PreviewRun run = { context, call, user };
    for (uint64_t number = 1; number <= context->head.titleSetCount && !result; number++) {
        result = previewDomain(&run, number, context->titleSets[number - 1]);
    }
    return result ? result : previewDomain(&run, 0, &context->vmg);
}

static uint64_t runPreview(const char16_t* projectPath, OrvMenuPreviewCall call, uint64_t user, const char16_t* logPath)
{
    if (!projectPath || !call) return ORV_INVALID_ARGUMENT;
    DiscContext* context = nullptr;
    if (uint64_t error = orvAllocDiscContext(logPath, &context)) return error;
    const uint64_t result = previewProject(context, projectPath, call, user);
    orvFreeDiscContext(&context);
    return result;
}

extern "C" uint64_t PreviewMenusW(const OrvWChar* projectPath, OrvMenuPreviewCall preview, uint64_t user,
                                  const OrvWChar* logPath)
{
    return runPreview(orvText(projectPath), preview, user, orvText(logPath));
}

extern "C" uint64_t PreviewMenus(const char* projectPath, OrvMenuPreviewCall preview, uint64_t user,
                                 const char* logPath)
{
    char16_t* project = nullptr;
    char16_t* log = nullptr;
    uint64_t result = 0;
    if (projectPath) result = osAnsiToWide(&project, projectPath, nullptr);
    if (!result && logPath) result = osAnsiToWide(&log, logPath, nullptr);
    if (!result) result = runPreview(project, preview, user, log);
    (void)osStrFree(&project);
    (void)osStrFree(&log);
    return result;
}
