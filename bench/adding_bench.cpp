// Measures how long adding files to a library takes beside bare copies of the same files.

#include <cstddef>
#include <fmt/format.h>
#include <iostream>
#include <span>
#include <stdexcept>
#include <vector>

#include "bench/adding.h"
#include "bench/figures.h"
#include "bench/main.h"

namespace quillon::bench {
namespace {

struct Figures {
    std::size_t songs = 0;
    double copy = 0, safeCopy = 0;  ///< seconds
    Usage added{}, again{};
};

Figures Measure(std::size_t songs) {
    NewFiles files(songs);
    Figures figures{.songs = songs};
    figures.copy = files.SecondsOfCopy(NewFiles::Way::Plain);
    figures.safeCopy = files.SecondsOfCopy(NewFiles::Way::Safe);
    const AddingStage stage(QUILLON_PROGRAM, files);
    figures.added = stage.Add();
    figures.again = stage.Add();
    return figures;
}

void Print(const Figures& f) {
    std::cout << fmt::format(
                     "{:>8} {:>8.3f} s {:>8.3f} s {:>8.3f} s {:>6.2f}x {:>8.3f} s "
                     "{:>8.3f} s {:>8.3f} s {:>8.1f}\n",
                     f.songs, f.copy, f.safeCopy, f.added.seconds, f.added.seconds / f.safeCopy,
                     f.added.processor, f.again.seconds, f.again.processor,
                     static_cast<double>(f.added.peakMemory) / Megabyte)
              << std::flush;
}

}  // namespace

int Main(std::span<char*> arguments) {
    const std::vector<std::size_t> sizes =
        SizesFrom(arguments, "adding_bench [FILES...]", {1'000, 10'000});
    std::cout << fmt::format("{:>8} {:>10} {:>10} {:>10} {:>7} {:>10} {:>10} {:>10} {:>8}\n",
                             "files", "copy", "safe copy", "added", "", "processor", "again",
                             "processor", "peak MB");
    std::vector<Figures> all;
    for (const std::size_t size : sizes) {
        all.push_back(Measure(size));
        Print(all.back());
    }
    const Figures &first = all.front(), &last = all.back();
    if (all.size() > 1) {
        std::cout << fmt::format(
            "growth exponents of processor time: added {:.2f}, again {:.2f}\n",
            GrowthExponent(first.added.processor, last.added.processor, first.songs, last.songs),
            GrowthExponent(first.again.processor, last.again.processor, first.songs, last.songs));
    }
    return 0;
}

}  // namespace quillon::bench
