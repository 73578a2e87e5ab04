#include "run/run.h"

#include <algorithm>

namespace quillon {
namespace {

/// What is counted of rows. Files are what they are at once.
constexpr std::array RowCounts{
    &RunCounts::albumsAdded,     &RunCounts::albumsChanged,   &RunCounts::albumsRemoved,
    &RunCounts::albumsUnchanged, &RunCounts::tracksAdded,     &RunCounts::tracksChanged,
    &RunCounts::tracksRemoved,   &RunCounts::tracksUnchanged, &RunCounts::tagValuesStored,
    &RunCounts::rowsRepointed,   &RunCounts::imagesAdded,     &RunCounts::imagesChanged,
    &RunCounts::imagesRemoved,   &RunCounts::songsAdded,      &RunCounts::artistsAdded};

}  // namespace

Run::Run(Host& hostObject, Files& fileSystem, Clock& runClock, Window& runWindow)
    : host(hostObject), files(fileSystem), clock(runClock), window(runWindow) {}

template <typename Table>
Table& Run::Loaded(std::unique_ptr<Table>& table) {
    if (!table) table = std::make_unique<Table>(*connection);
    return *table;
}

Library& Run::TheLibrary() {
    return Loaded(library_);
}

DownloadTable& Run::TheDownloadTable() {
    return Loaded(downloadTable_);
}

PlaylistTable& Run::ThePlaylistTable() {
    return Loaded(playlistTable_);
}

void Run::ForgetTables() {
    GenreDictionary.Clear();
    library_.reset();
    downloadTable_.reset();
    playlistTable_.reset();
}

void Run::ShowItem(std::string_view item) {
    form.aItem = item;
    ProcessEvents();
}

void Run::ProcessEvents() {
    window.ProcessEvents(form);
    if (window.AbortPressed()) AbortRequested = true;
    form.aborting = AbortRequested;
}

void Run::StartCounting(std::size_t total) {
    form.progress.done = 0;
    form.progress.total = total;
}

void Run::StartCountingRows(std::string_view from) {
    const std::unique_ptr<RecordSet> rows =
        connection->Query("SELECT Count(*) AS Total FROM " + std::string(from));
    StartCounting(static_cast<std::size_t>(rows->Integer("Total")));
}

void Run::CountDone(std::size_t steps) {
    // What grew while it was worked on must not look like more than all of it.
    PhaseProgress& progress = form.progress;
    progress.done += std::min(steps, progress.total - std::min(progress.done, progress.total));
}

void Run::Flush() {
    connection->Flush();
    savedCounts_ = counts;
    if (savedTracks_.count != removals.Of(Removable::Tracks).count)
        savedTracks_ = removals.Of(Removable::Tracks);
}

RunReport Run::Report() const {
    RunReport report{.counts = counts, .gone = removals.All(), .braked = removals.Braked()};
    for (std::size_t RunCounts::* const count : RowCounts)
        report.counts.*count = savedCounts_.*count;
    report.gone.at(static_cast<std::size_t>(Removable::Tracks)) = savedTracks_;
    report.saved = std::ranges::all_of(
        RowCounts, [this](auto count) { return counts.*count == savedCounts_.*count; });
    return report;
}

}  // namespace quillon
