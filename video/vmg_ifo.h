// vmg_ifo.h: writes VIDEO_TS.IFO from the finished files of all title sets.
#pragma once

#include "project/model.h"
#include "video/vobu_record.h"

#include <cstdint>

/** @param vobBytes  size of VIDEO_TS.VOB in bytes
    @param vobuList  of VIDEO_TS.VOB; null without manager menus
    @return 0; ORV_WRONG_TITLE_SET_COUNT; ORV_VMG_IFO_NOT_OPENED; the codes of orvReadVTSInfo;
            ORV_VMG_IFO_NOT_CORRECTED if a title set's file vanishes meanwhile; a platform's number */
[[nodiscard]] uint64_t orvWriteVmgIfo(DiscContext* context, const char16_t* ifoPath, const char16_t* targetPath,
                                      const char16_t* previousPath, uint64_t vobBytes, const VobuRecord* vobuList);

/** Looks at the finished files of a title set, in previousPath where they exist there, else in targetPath. Any of the
    three results may be null.
    @param ifoImage    receives the whole IFO as a block, the caller's
    @param ifoSectors  size of the IFO
    @param vobSectors  sum of the sizes of VTS_nn_0.VOB to VTS_nn_9.VOB, each cut to whole sectors
    @return 0; ORV_PREVIOUS_VTS_IFO_NOT_OPENED, logged; ORV_PREVIOUS_VTS_IFO_NOT_READ; a platform's number */
[[nodiscard]] uint64_t orvReadVTSInfo(const DiscContext* context, const char16_t* targetPath, uint64_t titleSetNumber,
                                      uint8_t** ifoImage, uint64_t* ifoSectors, uint64_t* vobSectors,
                                      const char16_t* previousPath);
