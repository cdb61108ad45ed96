// wave.cpp: the layout of a RIFF/WAVE file, written down once for tests.
#include "tests/support/wave.h"

#include "tests/support/packs.h"

#include <random>
#include <stdexcept>

static Bytes little(uint64_t value, uint64_t bytes)
{
    Bytes out;
    for (uint64_t i = 0; i < bytes; i++) out.push_back(uint8_t(value >> (8 * i)));
    return out;
}

static Bytes chunk(const WaveChunk& recipe)
{
    if (recipe.id.size() != 4) throw std::invalid_argument("a chunk's name has four characters");
    const Bytes name(recipe.id.begin(), recipe.id.end());
    return name + little(recipe.size.value_or(uint32_t(recipe.data.size())), 4) + recipe.data;
}

Channels makeChannels(uint64_t channels, uint64_t bits, uint64_t samples, uint32_t seed)
{
    std::mt19937 random(seed);
    Channels all(channels);
    for (std::vector<int32_t>& channel : all) {
        for (uint64_t i = 0; i < samples; i++) {
            const uint32_t drawn = uint32_t(random());
            channel.push_back(bits == 16 ? int32_t(int16_t(drawn)) : int32_t(drawn) >> 8);
        }
    }
    return all;
}

Bytes pcmBytes(const std::vector<int32_t>& samples, uint64_t bits)
{
    Bytes out;
    for (const int32_t sample : samples) out += little(uint32_t(sample), bits / 8);
    return out;
}

Bytes pcmBytes(const Channels& channels, uint64_t bits)
{
    Bytes out;
    for (size_t i = 0; !channels.empty() && i < channels[0].size(); i++) {
        for (const std::vector<int32_t>& channel : channels) out += little(uint32_t(channel.at(i)), bits / 8);
    }
    return out;
}

Bytes waveFile(const WaveFileSpec& recipe)
{
    const uint64_t blockBytes = recipe.channels * recipe.bits / 8;
    Bytes format = little(1, 2) + little(recipe.channels, 2);
    format += little(recipe.rate, 4) + little(recipe.rate * blockBytes, 4);
    format += little(blockBytes, 2) + little(recipe.bits, 2) + recipe.formatExtra;

    Bytes body = fromHex("57 41 56 45") + chunk({ .id = "fmt ", .data = format });
    for (const WaveChunk& each : recipe.before) body += chunk(each);
    body += chunk({ .id = "data", .data = recipe.samples });
    for (const WaveChunk& each : recipe.behind) body += chunk(each);
    return chunk({ .id = "RIFF", .data = body });
}

Bytes waveFile(const Channels& channels, uint64_t bits, uint64_t rate)
{
    return waveFile({ .channels = channels.size(), .bits = bits, .rate = rate, .samples = pcmBytes(channels, bits) });
}
