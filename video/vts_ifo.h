// vts_ifo.h: writes VTS_nn_0.IFO from the finished and scanned VOBs of a title set.
#pragma once

#include "project/model.h"
#include "video/vobu_record.h"

#include <cstdint>

/** @param menuSectors  size of the menu VOB; with 0 the menu list is not used
    @return 0; ORV_VTS_IFO_NOT_OPENED; a platform's number */
[[nodiscard]] uint64_t orvWriteVtsIfo(const DiscContext* context, uint64_t titleSetNumber, const char16_t* ifoPath,
                                      uint64_t menuSectors, uint64_t titleSectors, const VobuRecord* menuVobuList,
                                      const VobuRecord* titleVobuList);
