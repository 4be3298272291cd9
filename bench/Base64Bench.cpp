#include "base64/Base64.h"
#include "base64/Base64Kernels.h"
#include "base64/Base64With.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

// Speeds count the bytes of the file, not those of its text.

namespace {

using namespace velloway;

constexpr std::size_t chunkSize = 1024 * 1024;

const std::string& randomChunk() {
    static const std::string chunk = [] {
        std::mt19937 random(1);
        std::string bytes(chunkSize, '\0');
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
        return bytes;
    }();
    return chunk;
}

std::string escapedText() {
    std::string text;
    base64::appendEncodedEscaped(text, randomChunk());
    return text;
}

std::string cleanText() {
    std::string text = escapedText();
    std::erase(text, '\\');
    return text;
}

std::string textInLines() {
    const std::string clean = cleanText();
    std::string text;
    for (std::size_t at = 0; at < clean.size(); at += 76) {
        text.append(clean, at, 76).append("\r\n");
    }
    return text;
}

void decode(benchmark::State& state, const base64::Kernel& kernel, const std::string& text) {
    const auto room = std::make_unique<char[]>(base64::decodeRoom(text.size()));
    for (auto _ : state) {
        benchmark::DoNotOptimize(base64::decodeWith(kernel, text, room.get()));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * chunkSize));
}

void encode(benchmark::State& state, const base64::Kernel& kernel) {
    std::string text;
    text.reserve(base64::encodedEscapedBound(chunkSize));
    for (auto _ : state) {
        text.clear();
        base64::appendEncodedEscapedWith(kernel, text, randomChunk());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * chunkSize));
}

void measure(benchmark::State& state, const base64::Kernel& kernel) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(base64::encodedEscapedSizeWith(kernel, randomChunk()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * chunkSize));
}

} // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    const base64::Kernel* const* const kernels = base64::usableKernels(count);
    for (std::size_t i = 0; i < count; ++i) {
        const base64::Kernel& kernel = *kernels[i];
        const std::string name = kernel.name;
        benchmark::RegisterBenchmark((name + "/decode clean text").c_str(), decode, kernel, cleanText());
        benchmark::RegisterBenchmark((name + "/decode text with \\/").c_str(), decode, kernel, escapedText());
        benchmark::RegisterBenchmark((name + "/decode text in lines").c_str(), decode, kernel, textInLines());
        benchmark::RegisterBenchmark((name + "/encode with \\/").c_str(), encode, kernel);
        benchmark::RegisterBenchmark((name + "/size of encoded").c_str(), measure, kernel);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
