// Stands in for libFuzzer's main: feeds a target every file of its corpus, then a bounded, seeded
// number of variants of each, so that every build, with any compiler, repeats the same inputs.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <span>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;
namespace fs = std::filesystem;

constexpr std::size_t MostPrefixes = 300;
constexpr std::size_t MostDamaged = 300;
// Large inputs, as whole database files, cost much each: what is fed in all stays about the same.
constexpr std::size_t MostVariantBytes = std::size_t{32} << 20U;

std::vector<fs::path> FilesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

Bytes ReadAll(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Copies the input to memory of exactly its size, so that a sanitizer sees a read beyond it.
void Feed(std::span<const std::uint8_t> input) {
    const Bytes exact(input.begin(), input.end());
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

std::size_t Bounded(std::size_t wanted, std::size_t inputSize) {
    return std::min(wanted, MostVariantBytes / std::max<std::size_t>(inputSize, 1));
}

std::size_t FeedPrefixes(const Bytes& input) {
    const std::size_t count = Bounded(std::min(MostPrefixes, input.size()), input.size());
    for (std::size_t i = 0; i < count; ++i)
        Feed(std::span(input).first(i * input.size() / count));
    return count;
}

/// Flips bits, overwrites bytes and doubles or removes stretches, a few at a time.
std::size_t FeedDamaged(const Bytes& input, std::mt19937& random) {
    if (input.empty()) return 0;
    const std::size_t count = Bounded(MostDamaged, input.size());
    for (std::size_t i = 0; i < count; ++i) {
        Bytes damaged = input;
        for (unsigned change = 0; change <= random() % 4 && !damaged.empty(); ++change) {
            const std::size_t at = random() % damaged.size();
            const auto where = std::next(damaged.begin(), static_cast<std::ptrdiff_t>(at));
            const std::size_t length = std::min<std::size_t>(1 + random() % 8, damaged.size() - at);
            const auto behind = std::next(where, static_cast<std::ptrdiff_t>(length));
            switch (random() % 4) {
                case 0:
                    *where = static_cast<std::uint8_t>(*where ^ (1U << (random() % 8)));
                    break;
                case 1:
                    *where = static_cast<std::uint8_t>(random());
                    break;
                case 2: {
                    const Bytes stretch(where, behind);
                    damaged.insert(where, stretch.begin(), stretch.end());
                    break;
                }
                default:
                    damaged.erase(where, behind);
            }
        }
        Feed(damaged);
    }
    return count;
}

}  // namespace

int main(int count, char** arguments) {
    const std::span<char*> folders =
        std::span(arguments, static_cast<std::size_t>(count)).subspan(1);
    std::size_t files = 0;
    std::size_t variants = 0;
    for (const fs::path folder : folders) {
        for (const fs::path& file : FilesBelow(folder)) {
            const Bytes input = ReadAll(file);
            // Seeded by the file itself: one more file does not change what becomes of the others.
            std::mt19937 random(static_cast<std::mt19937::result_type>(input.size()));
            Feed(input);
            variants += FeedPrefixes(input) + FeedDamaged(input, random);
            ++files;
        }
    }
    std::cout << files << " files and " << variants << " variants of them\n";
    if (files == 0) std::cerr << "no corpus: every target needs at least one file\n";
    return files == 0 ? 1 : 0;
}
