// button_entry.h: one entry of a highlight's button table, as menus and stills have it.
#pragma once

#include "project/model.h"

#include <cstdint>

/** Writes the BUTTON_BYTES of a button, at these lines and with this auto action flag.
    @return what orvEncodeCommand gives for the button's command, which leaves its eight bytes if it is unknown */
[[nodiscard]] uint64_t orvPutButton(uint8_t* to, const ButtonDesc* button, uint64_t autoAction, uint64_t yStart,
                                    uint64_t yEnd);
