// vobu_queries.h: questions that the tables ask of a VOBU list. A null or empty list answers 0.
#pragma once

#include "video/vobu_record.h"

#include <cstdint>

/** How often the cell number changes among the records of a VOB. */
[[nodiscard]] uint64_t orvCountCells(const VobuRecord* list, uint64_t vobId);
/** Pictures of a VOB. */
[[nodiscard]] uint64_t orvCountPictures(const VobuRecord* list, uint64_t vobId);
/** Pictures of one cell. */
[[nodiscard]] uint64_t orvCountCellPictures(const VobuRecord* list, uint64_t vobId, uint64_t cellId);
/** First and last record of a cell; null if it has none. */
[[nodiscard]] const VobuRecord* orvFirstVobuOfCell(const VobuRecord* list, uint64_t vobId, uint64_t cellId);
[[nodiscard]] const VobuRecord* orvLastVobuOfCell(const VobuRecord* list, uint64_t vobId, uint64_t cellId);
