// menu_reader.h: the part of the disc reader that knows menus: their VOB, highlights, sub-pictures and chains.
#pragma once

#include "tests/support/disc_view.h"

// A domain's menus as its table tells them.
struct MenuChains {
    const View& ifo;
    uint64_t unit;     // offset of the language unit
    uint64_t count;    // chains in it
    uint64_t height;   // lines of a picture
};

/** The menu VOB alone, and against the chains: a chain for each VOB, of all its cells. */
void checkMenuVob(const View& view, const Vob& vob, const MenuChains& chains);
