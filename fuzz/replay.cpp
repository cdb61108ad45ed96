// replay.cpp: runs a fuzz target without a fuzzer, in every test run: the seeds, mutations of them, and the files of
// the corpus. What finds a fault is the target's own checks and the sanitizers.

#include "fuzz/fuzz.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>

namespace fs = std::filesystem;

constexpr uint64_t MUTATIONS = 400;   // of each seed

static void run(const Bytes& input)
{
    // A copy of exactly the input's size, so that a read past its end is seen.
    const Bytes exact(input.begin(), input.end());
    (void)LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

static Bytes mutated(const Bytes& seed, std::mt19937_64& random)
{
    static const uint8_t SPECIAL[] = {
        0x00, 0x01, 0x7F, 0x80, 0xFF, 0xBA, 0xBB, 0xBD, 0xBF, 0xC0, 0xE0, '\t', '[', '='
    };
    Bytes bytes = seed;
    for (uint64_t edits = 1 + random() % 8; edits > 0 && !bytes.empty(); edits--) {
        const uint64_t at = random() % bytes.size();
        switch (random() % 5) {
        case 0: bytes[at] = uint8_t(random()); break;
        case 1: bytes[at] = SPECIAL[random() % sizeof(SPECIAL)]; break;
        case 2: bytes.resize(at); break;
        case 3:
            bytes.erase(bytes.begin() + int64_t(at), bytes.begin() + int64_t(at + random() % (bytes.size() - at) % 64));
            break;
        default:
            bytes.insert(bytes.begin() + int64_t(at), 1 + random() % 16, SPECIAL[random() % sizeof(SPECIAL)]);
            break;
        }
    }
    return bytes;
}

int main(int argc, char** argv)
{
    uint64_t inputs = 0;
    for (int i = 1; i < argc; i++) {
        if (!fs::is_directory(argv[i])) continue;   // a target without a corpus yet
        for (const auto& entry : fs::directory_iterator(argv[i])) {
            std::ifstream in(entry.path(), std::ios::binary);
            run(Bytes(std::istreambuf_iterator<char>(in), {}));
            inputs++;
        }
    }
    std::mt19937_64 random(20260101);   // the same inputs in every run
    run({});
    for (const Bytes& seed : fuzzSeeds()) {
        run(seed);
        for (uint64_t i = 0; i < MUTATIONS; i++, inputs++) run(mutated(seed, random));
    }
    printf("%llu inputs\n", static_cast<unsigned long long>(inputs));
    return inputs > 0 ? 0 : 1;
}
