// button_entry.cpp: writes entries of a highlight's button table.

#include "mux/button_entry.h"

#include "mux/nav_layout.h"
#include "project/commands.h"

/** A pair of coordinates, ten bits each, across byte borders; high goes to the two bits above. */
static void putPair(uint8_t* to, uint64_t high, uint64_t start, uint64_t end)
{
    to[0] = uint8_t((high & 0x03) << 6 | (start >> 4 & 0x3F));
    to[1] = uint8_t((start & 0x0F) << 4 | (end >> 8 & 0x03));
    to[2] = uint8_t(end);
}

uint64_t orvPutButton(uint8_t* to, const ButtonDesc* button, uint64_t autoAction, uint64_t yStart, uint64_t yEnd)
{
    putPair(to + BUTTON_X.at, button->color, button->xStart, button->xEnd);
    putPair(to + BUTTON_Y.at, autoAction, yStart, yEnd);
    orvPut(to, BUTTON_UP, button->upLink);
    orvPut(to, BUTTON_DOWN, button->downLink);
    orvPut(to, BUTTON_LEFT, button->leftLink);
    orvPut(to, BUTTON_RIGHT, button->rightLink);
    return orvEncodeCommand(to + BUTTON_COMMAND.at, button->command, uint8_t(button->param1), button->param2,
                            button->param3, 0);
}
