// nav_pack.cpp: packs of a program stream, as far as the host reads them by itself.
#include "nav_pack.h"

// Offsets within a navigation pack, whose numbers have their high byte first.
static constexpr uint64_t SYSTEM_HEADER_AT = 14, PCI_AT = 38, START_AT = 57, END_AT = 61, ELAPSED_AT = 69,
                          DSI_AT = 1024, LAST_SECTOR_AT = 1039, CELL_AT = 1058;

static constexpr uint32_t PACK_START = 0x000001BA, SYSTEM_HEADER_START = 0x000001BB;
static constexpr uint32_t PCI_HEAD = 0x01BF03D4, DSI_HEAD = 0x01BF03FA;   // ends of the start code, and the length

static uint32_t numberAt(const uint8_t* sector, uint64_t at)
{
    uint32_t number = 0;
    for (uint64_t i = 0; i < 4; i++) number = number << 8 | sector[at + i];
    return number;
}

bool isPack(const uint8_t* sector)
{
    return numberAt(sector, 0) == PACK_START;
}

bool isNavPack(const uint8_t* sector)
{
    return isPack(sector) && numberAt(sector, SYSTEM_HEADER_AT) == SYSTEM_HEADER_START &&
           numberAt(sector, PCI_AT + 2) == PCI_HEAD && numberAt(sector, DSI_AT + 2) == DSI_HEAD;
}

NavFields navFields(const uint8_t* sector)
{
    return { numberAt(sector, START_AT), numberAt(sector, END_AT), numberAt(sector, ELAPSED_AT),
             numberAt(sector, LAST_SECTOR_AT), sector[CELL_AT] };
}

bool isBlank(const NavFields& nav)
{
    return nav.start == 0 && nav.end == 0;
}

bool countsTwentyFive(const NavFields& nav)
{
    return (nav.elapsed >> 6 & 3) == 1;
}

uint32_t elapsedDigits(const NavFields& nav)
{
    return nav.elapsed & 0xFFFFFF3F;
}

std::string sectorsText(uint64_t sectors)
{
    return std::to_string(sectors) + (sectors == 1 ? " sector" : " sectors");
}
