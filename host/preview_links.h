// preview_links.h: the links between a menu's buttons, as arrows.
#pragma once

#include "picture.h"

#include <orven/preview.h>

// What an arrow is drawn in at the button from which the key leads.
inline constexpr Rgb LINK_UP = { 255, 230, 60 }, LINK_DOWN = { 255, 130, 70 }, LINK_LEFT = { 120, 255, 120 },
                     LINK_RIGHT = { 90, 200, 255 };

/** Draws an arrow for each link to another button of the menu. Two links that lead there and back by opposite keys
 * share one, with two heads; each half has the tint of the key that leaves there. An arrow bends around other buttons
 * where it can. */
void drawLinks(Picture* picture, const OrvMenuPreview& menu);

/** Rectangle of a button. */
Box buttonBox(const OrvPreviewButton& button);
