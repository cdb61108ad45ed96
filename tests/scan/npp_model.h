// npp_model.h: the scan told a second time, slowly: units are records with their pointers beside them, and bytes are
// patched only when a unit is handed out. It shares nothing with the engine.
#pragma once

#include "tests/support/files.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

struct ModelUnit {
    Bytes bytes;
    // As the first pack has them.
    uint64_t start = 0, vob = 0, cell = 0;
    std::optional<uint64_t> next, previous;                 // packs to the neighbours of the same cell
    std::array<std::optional<uint64_t>, 19> forward = {};   // by distance, the nearest first
    std::array<std::optional<uint64_t>, 19> backward = {};

    uint64_t packs() const;
    bool complete() const;   // all forward pointers are known
};

struct NppModel {
    uint64_t cellMode = 0, cellInterval = 0;
    std::vector<uint64_t> cellList;
    std::function<uint64_t(const Bytes&)> output;

    Bytes part;   // of a pack
    uint64_t packCount = 0;
    std::vector<std::array<uint64_t, 12>> records;
    uint64_t recordedPacks = 0;           // what the file's head says
    std::map<uint64_t, ModelUnit> held;   // by number
    uint64_t oldest = 0, number = 0;      // first held; of the unit being collected
    ModelUnit open;                       // the unit being collected
    uint64_t lastCell = 0, cellStart = 0;
};

uint64_t modelFeed(NppModel& model, const Bytes& bytes);
uint64_t modelEnd(NppModel& model);
uint64_t modelHeld(const NppModel& model);
/** The scan file. */
Bytes modelFile(const NppModel& model);
