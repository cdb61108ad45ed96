// menu_units.h: the table of language units that holds the chains of a domain's menus.
#pragma once

#include <cstdint>

// Builds the chain of one menu. *pgc is a new block, the caller's; entryId gets the menu's id, 0 if it is no entry.
typedef uint64_t (*MenuChainBuilder)(const void* owner, uint64_t menuIndex, uint8_t* entryId, uint8_t** pgc);

/** PGCI_UT with one neutral language unit, as a new block. exists tells which menus the unit has. */
[[nodiscard]] uint64_t orvBuildMenuUnits(uint64_t menuCount, uint8_t exists, MenuChainBuilder build, const void* owner,
                                         uint8_t** result);
