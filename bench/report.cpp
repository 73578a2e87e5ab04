#include "bench/report.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/utsname.h>
#include <thread>

#include "bench/figures.h"

namespace quillon::bench {
namespace {

constexpr std::string_view Begin = "<!-- measured: begin; quillon_bench writes what follows -->\n";
constexpr std::string_view End = "<!-- measured: end -->\n";

using Row = std::vector<std::string>;

/// A table whose columns are as wide as their widest text.
std::string Table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size(), 3);
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        for (std::size_t i = 0; i < rows[k].size(); ++i)
            text += fmt::format("| {:<{}} ", rows[k][i], widths[i]);
        text += "|\n";
        if (k > 0) continue;
        for (const std::size_t width : widths)
            text += fmt::format("|{:-<{}}", "", width + 2);
        text += "|\n";
    }
    return text + '\n';
}

std::string Seconds(double seconds) {
    return fmt::format("{:.3f} s", seconds);
}

/// The median, and between what it lies.
std::string Spread(const Series& series) {
    const auto [least, most] = std::ranges::minmax(series.seconds);
    return fmt::format("{:.3f} s ({:.3f} to {:.3f})", series.Typical(), least, most);
}

std::string Memory(const Series& series) {
    return series.peakMemory == 0
               ? ""
               : fmt::format("{:.0f} MB", static_cast<double>(series.peakMemory) / Megabyte);
}

std::string ProcessorName() {
    std::ifstream in("/proc/cpuinfo");
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
    }
    return "an unknown processor";
}

std::string Circumstances(const Figures& figures) {
    utsname system{};
    uname(&system);
    std::array<double, 1> load{};
    getloadavg(load.data(), 1);
    return fmt::format(
        "Measured on {:%Y-%m-%d} on {} ({} cores seen), Linux {}, in {:.0f} minutes; {} rounds, {} "
        "for growth and added files. Processes that wanted to run at its end, one of them its own: "
        "{:.1f}. An empty new file took the processor {:.0f} µs.\n\n",
        fmt::localtime(std::time(nullptr)), ProcessorName(), std::thread::hardware_concurrency(),
        system.release, figures.minutes, figures.plan.rounds, figures.plan.growthRounds, load[0],
        figures.newFile.Typical() * 1e6);
}

std::string AimTable(const std::vector<Aim>& aims) {
    std::vector<Row> rows{{"", "Measured", "Aim", ""}};
    for (const Aim& aim : aims)
        rows.push_back({aim.what, aim.figure, aim.wanted, aim.met ? "met" : "MISSED"});
    return "### Aims\n\n" + Table(rows);
}

std::string TimeTable(const Figures& f) {
    const double walk = f.walk.Typical();
    std::vector<Row> rows{{fmt::format("{} tracks", f.plan.tracks), "Processor time",
                           "Times the walk", "Peak memory"}};
    const auto add = [&](const char* what, const Series& series) {
        rows.push_back({what, Spread(series), fmt::format("{:.2f}x", series.Typical() / walk),
                        Memory(series)});
    };
    add("Bare walk", f.walk);
    for (const NamedWay& named : Ways)
        add(named.name, (f.*named.way).processor);
    add("Preview, new", f.previewFresh);
    add("Preview, unchanged", f.previewUnchanged);
    if (f.mpdFresh) {
        add("MPD, new", *f.mpdFresh);
        add("MPD, unchanged", *f.mpdUnchanged);
    }
    std::string text = "### Time and memory\n\n" + Table(rows);
    if (!f.mpdFresh) text += "MPD is not installed here, so it is not in the table.\n\n";
    return text;
}

std::string OtherPairs(const Figures& f) {
    std::vector<Row> rows{{"", "Quillon", "The other", "Ratio"}};
    const auto add = [&](const std::string& what, const Pair& pair) {
        rows.push_back(
            {what, Spread(pair.ours), Spread(pair.theirs), fmt::format("{:.2f}x", pair.Ratio())});
    };
    if (f.query) add("One row by its key; mdb-sql (processor time)", *f.query);
    add(fmt::format("AddFiles, {} files; safe copy (time that passes)", f.addedFiles), f.adding);
    std::string text = Table(rows);
    if (!f.query) text += "mdb-sql is not installed here, so it is not in the table.\n\n";
    return text;
}

std::string GrowthTable(const Figures& f) {
    if (f.growth.empty()) return "";
    std::vector<Row> rows{
        {"Tracks", "Bare walk", "New", "Unchanged", "Peak memory, new and unchanged"}};
    for (const SizeFigures& size : f.growth) {
        rows.push_back({fmt::format("{}", size.tracks), Spread(size.walk), Spread(size.fresh),
                        Spread(size.unchanged),
                        Memory(size.fresh) + ", " + Memory(size.unchanged)});
    }
    const auto exponents = [&](const Series SizeFigures::* series) {
        std::string text;
        for (std::size_t i = 1; i < f.growth.size(); ++i) {
            const SizeFigures &small = f.growth[i - 1], &large = f.growth[i];
            text += fmt::format("{}{:.2f}", i > 1 ? ", " : "",
                                GrowthExponent((small.*series).Typical(), (large.*series).Typical(),
                                               small.tracks, large.tracks));
        }
        return text;
    };
    rows.push_back({"Exponents", exponents(&SizeFigures::walk), exponents(&SizeFigures::fresh),
                    exponents(&SizeFigures::unchanged), ""});
    return "### Growth, 54 tracks an album\n\n" + Table(rows);
}

std::string Content(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + file.string());
    return {std::istreambuf_iterator<char>(in), {}};
}

/// A part takes nothing in a way of running that does not have it.
std::string SecondsOf(const std::vector<PhaseTime>& phases, const std::string& name) {
    const auto found = std::ranges::find(phases, name, &PhaseTime::name);
    return found == phases.end() ? "" : Seconds(found->seconds);
}

/// A column for each way of running.
Row HeaderOfWays(std::string first) {
    Row row{std::move(first)};
    for (const NamedWay& named : Ways)
        row.emplace_back(named.name);
    return row;
}

std::string PhaseTable(const Figures& f) {
    std::vector<Row> rows{HeaderOfWays("Processor time")};
    // The comparison of tags is a phase that the others do not have.
    for (const PhaseTime& phase : f.tags.phases) {
        Row row{phase.name};
        for (const NamedWay& named : Ways)
            row.push_back(SecondsOf((f.*named.way).phases, phase.name));
        rows.push_back(row);
    }
    return "### Time by phase\n\n" + Table(rows) + "The end of a run counts to its last phase.\n\n";
}

std::string CountTable(const Figures& f) {
    struct Counted {
        const char* what;
        const char* name;
    };
    constexpr std::array Lines{
        Counted{"Allocations", "allocations"},
        Counted{"Bytes allocated", "allocated-bytes"},
        Counted{"Syncs", "syncs"},
        Counted{"Music files opened", "music.opened"},
        Counted{"Folders opened", "opened-folders"},
        Counted{"Database pages written", "database.written-pages"},
        Counted{"Database bytes written", "database.written-bytes"},
        Counted{"Journal bytes written", "journal.written-bytes"},
        Counted{"Snapshot bytes written", "snapshot.written-bytes"},
        Counted{"Playlists written", "playlist.written-files"},
        Counted{"Playlist bytes written", "playlist.written-bytes"},
        Counted{"Backup files written", "backup.written-files"},
        Counted{"Backup bytes written", "backup.written-bytes"},
        Counted{"Log bytes written", "log.written-bytes"},
        Counted{"Temporary bytes written", "temporary.written-bytes"},
        Counted{"Other bytes written", "other.written-bytes"},
    };
    std::vector<Row> rows{HeaderOfWays("Counted, one run each")};
    for (const Counted& line : Lines) {
        Row row{line.what};
        for (const NamedWay& named : Ways)
            row.push_back(fmt::format("{}", (f.*named.way).counts[line.name]));
        rows.push_back(row);
    }
    return "### Allocations, syncs, pages and files\n\n" + Table(rows);
}

}  // namespace

std::string ReportText(const Figures& figures, const std::vector<Aim>& aims) {
    std::string text = Circumstances(figures) + AimTable(aims) + TimeTable(figures) +
                       OtherPairs(figures) + GrowthTable(figures) + PhaseTable(figures) +
                       CountTable(figures);
    text.pop_back();
    return text;
}

std::string WithMeasured(std::string_view page, std::string_view measured) {
    const std::size_t begin = page.find(Begin), end = page.find(End);
    if (begin == std::string_view::npos || end == std::string_view::npos || end < begin ||
        page.find(Begin, begin + 1) != std::string_view::npos ||
        page.find(End, end + 1) != std::string_view::npos)
        throw std::runtime_error("the page does not have its two marks once each and in order");
    return fmt::format("{}\n{}\n{}", page.substr(0, begin + Begin.size()), measured,
                       page.substr(end));
}

void RequireMarks(const std::filesystem::path& page) {
    WithMeasured(Content(page), "");
}

void StoreMeasured(const std::filesystem::path& page, std::string_view measured) {
    const std::string after = WithMeasured(Content(page), measured);
    std::ofstream out(page, std::ios::binary);
    if (!(out << after).flush()) throw std::runtime_error("cannot write " + page.string());
}

}  // namespace quillon::bench
