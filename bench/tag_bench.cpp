// Measures how long it takes to read the tags of a library in a reconciliation that compares them:
// of version 1 alone, of all kinds, and of all kinds when they are known; and to work off
// differences between tags and database, one for each file; beside a bare walk over the same files.

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/figures.h"
#include "bench/host_folder.h"
#include "bench/main.h"

namespace quillon::bench {
namespace {

/// A library that the database knows.
class Stage {
  public:
    explicit Stage(std::size_t tracks)
        : music_(tracks, FileNames::ByArtist), host_(QUILLON_PROGRAM, music_.Root()) {
        for (const std::string_view lists : {"ArtistPlaylist", "GenrePlaylist"})
            host_.Set(lists, "0");
        host_.Run();
        host_.Set("Reconcile", "0");
    }

    std::filesystem::path Music() const { return music_.Root(); }

    void Execute(const std::string& sql) const {
        RunToSuccess({QUILLON_PROGRAM, "db", "exec", host_.Database().string(), sql});
    }

    /// A reconciliation that compares tags of these kinds.
    Usage Compare(std::string_view kinds) const {
        host_.SetTags(kinds, "v1");
        host_.Set("Reconcile", "1");
        host_.Set("ID3Reconcile", "1");
        const Usage used = host_.Run();
        host_.Set("ID3Reconcile", "0");
        host_.Set("Reconcile", "0");
        host_.SetTags("v1", "v1");
        return used;
    }

    void ForgetTags() const { std::filesystem::remove(host_.Database().string() + ".tags"); }

    /// Puts a tag of version 2 before the sound of each file, with texts of its own for all fields
    /// and an image.
    void AddNewTags() const {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Music()))
            if (entry.is_regular_file()) AddNewTag(entry.path());
    }

    Usage RunMode(std::string_view mode) const {
        host_.Set(mode, "1");
        const Usage used = host_.Run();
        host_.Set(mode, "0");
        return used;
    }

  private:
    static std::string Frame(const std::string& name, const std::string& content) {
        std::string size;
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            size += static_cast<char>((content.size() >> shift) & 0xFFU);
        return name + size + std::string(2, '\0') + content;
    }

    static void AddNewTag(const std::filesystem::path& file) {
        constexpr std::size_t OldTag = 128, Art = 30'000, Padding = 1024;
        std::string content;
        {
            std::ifstream in(file, std::ios::binary);
            content.assign(std::istreambuf_iterator<char>(in), {});
        }
        const std::string old = content.substr(content.size() - OldTag);
        const auto text = [&old](std::size_t at) {
            const std::string field = old.substr(at, 30);
            return std::string(1, '\0') + field.substr(0, field.find('\0'));
        };
        const std::string frames =
            Frame("TIT2", text(3)) + Frame("TPE1", text(33)) + Frame("TALB", text(63)) +
            Frame("TYER", std::string(1, '\0') + "1999") +
            Frame("TCON", std::string(1, '\0') + "(17)") +
            Frame("TSSE", std::string(1, '\0') + "an encoder of this century") +
            Frame("APIC", std::string(1, '\0') + "image/png" + std::string(3, '\0') +
                              std::string(Art, 'x'));
        const std::size_t size = frames.size() + Padding;
        std::string head = "ID3" + std::string(1, '\3') + std::string(2, '\0');
        for (const unsigned shift : {21U, 14U, 7U, 0U})
            head += static_cast<char>((size >> shift) & 0x7FU);
        std::ofstream out(file, std::ios::binary);
        out << head << frames << std::string(Padding, '\0') << content;
    }

    MusicTree music_;
    HostFolder host_;
};

double SecondsOfWalk(const Stage& stage) {
    const auto start = std::chrono::steady_clock::now();
    BareWalk(stage.Music());
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return elapsed.count();
}

/// A row for each track.
std::string InsertDifferences(const std::string& field, const std::string& tagValue) {
    return fmt::format(
        "INSERT INTO SpinnerID3Differences (Field, ID3Value, DBValue, Artist, Album, Track) "
        "SELECT '{}', '{}', '', Albums.Artist, Albums.Title, Tracks.Title "
        "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID",
        field, tagValue);
}

void Print(const std::string& what, const Usage& used, double walk) {
    std::cout << fmt::format(
        "{:<34} {:>8.3f} s {:>7.1f}x {:>8.3f} s of the processor {:>7.1f} MB\n", what, used.seconds,
        used.seconds / walk, used.processor, static_cast<double>(used.peakMemory) / Megabyte);
}

/// The median of the rounds in each figure.
Usage Typical(const std::vector<Usage>& rounds) {
    const auto median = [&rounds](auto figure) {
        std::vector<double> values;
        values.reserve(rounds.size());
        for (const Usage& used : rounds)
            values.push_back(static_cast<double>(used.*figure));
        return Median(std::move(values));
    };
    return {.seconds = median(&Usage::seconds),
            .processor = median(&Usage::processor),
            .peakMemory = static_cast<std::size_t>(median(&Usage::peakMemory))};
}

/// Reading of tags, which take turns in each round, so that a machine that gets slower does so for
/// all. Whether all kinds cost little enough more than version 1.
bool MeasureReading(const Stage& stage, double walk) {
    constexpr std::size_t Rounds = 5;
    constexpr double Most = 1.5;
    std::vector<Usage> old, all, known;
    stage.Compare("v1");
    for (std::size_t round = 0; round < Rounds; ++round) {
        old.push_back(stage.Compare("v1"));
        stage.ForgetTags();
        all.push_back(stage.Compare("best"));
        known.push_back(stage.Compare("best"));
    }
    Print("Tags of version 1", Typical(old), walk);
    Print("Tags of all kinds, new", Typical(all), walk);
    Print("Tags of all kinds, known", Typical(known), walk);
    const double times = Typical(all).processor / Typical(old).processor;
    std::cout << fmt::format(
        "Processor time of all kinds, new: {:.2f}x that of version 1; "
        "wanted: at most {:.1f}x{}\n",
        times, Most, times <= Most ? "" : "  MISSED");
    return times <= Most;
}

/// Whether the aim is met.
bool Measure(std::size_t tracks) {
    const Stage stage(tracks);
    const double bareWalk = SecondsOfWalk(stage);
    stage.AddNewTags();
    const bool isMet = MeasureReading(stage, bareWalk);
    stage.Execute("UPDATE Spinner SET Genre = 'Jazz', Length = 0");
    const double walk = SecondsOfWalk(stage);
    std::cout << fmt::format("{} tracks with a difference each; bare walk {:.3f} s\n", tracks,
                             walk);
    stage.Execute(InsertDifferences("Genre", "Rock"));
    Print("ID3Write, every tag changes", stage.RunMode("ID3Write"), walk);
    Print("ID3Write, every tag is right", stage.RunMode("ID3Write"), walk);
    Print("ID3Update, genres change", stage.RunMode("ID3Update"), walk);
    stage.Execute("DELETE * FROM SpinnerID3Differences");
    stage.Execute(InsertDifferences("Comment", "Length=77"));
    Print("ID3Update, lengths change", stage.RunMode("ID3Update"), walk);
    Print("ID3Update, lengths are right", stage.RunMode("ID3Update"), walk);
    return isMet;
}

}  // namespace

int Main(std::span<char*> arguments) {
    bool areMet = true;
    for (const std::size_t tracks : SizesFrom(arguments, "tag_bench [TRACKS...]", {100'000}))
        areMet &= Measure(tracks);
    return areMet ? 0 : 1;
}

}  // namespace quillon::bench
