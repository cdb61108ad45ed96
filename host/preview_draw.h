// preview_draw.h: the pictures of a menu's preview: a map of its buttons, and what a viewer sees of their highlight.
#pragma once

#include "picture.h"

#include <orven/preview.h>

enum ButtonState { BUTTON_SELECTED, BUTTON_ACTIVATED };

/** The sub-picture in the colours of its palette over grey, with the buttons' rectangles, numbers and links. */
Picture drawMenuMap(const OrvMenuPreview& menu);

/** What shows over the background: within each button's rectangle, both corners included, the pixel codes in the
 *  colours of the button's colour set; elsewhere nothing.
 *  @param onlyButton  the button, from 1, that is highlighted; 0: all of them, in their order */
Picture drawHighlight(const OrvMenuPreview& menu, ButtonState state, uint32_t onlyButton);
