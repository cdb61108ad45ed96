// nav_fill.h: the navigation pack of a unit that the scheduler has closed.
#pragma once

#include "mux/mux_types.h"

/** Fills what is known at multiplex time into the pack, whose headers stand; later passes over the stream do the rest.
    last: the run ends with this unit. */
void orvFillNavPack(const MuxContext* handle, uint8_t* pack, bool last);
