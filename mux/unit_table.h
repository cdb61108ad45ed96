// unit_table.h: the table of a stream's access units, as video and AC-3 with a frame table keep it.
#pragma once

#include "mux/mux_types.h"

/** Entry of the table; behind its end all fields are 0. */
[[nodiscard]] MuxUnit orvUnitRecord(const MuxStream* stream, uint64_t unit);
/** Appends a unit. */
[[nodiscard]] uint64_t orvAddUnit(MuxStream* stream, const MuxUnit& unit);
/** Entries of the table. */
[[nodiscard]] uint64_t orvUnitRecords(const MuxStream* stream);
/** Index of the unit that holds bytesPacked: the last that does not begin behind it. 0 if the table has fewer than two
    units or the second lies ahead; NONE if no unit but the first fits. */
[[nodiscard]] uint64_t orvCurrentUnit(const MuxStream* stream);
