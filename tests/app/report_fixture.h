#pragma once

#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "app/report/report_gatherer.h"
#include "app/report/report_page.h"

namespace quillon {

constexpr const char* Stamp = "2026-11-21_07-13-05";

inline RowChange AddedTrack(std::int64_t id, const std::string& artist, const std::string& title) {
    return {.kind = RowChange::Kind::Added,
            .table = "Tracks",
            .key = {{"ID", id}},
            .fields = {{"Artist", Null{}, artist}, {"Title", Null{}, title}}};
}

inline RowChange ChangedTrack(std::int64_t id, const std::string& field, const Value& before,
                              const Value& after) {
    return {.kind = RowChange::Kind::Changed,
            .table = "Tracks",
            .key = {{"ID", id}},
            .fields = {{field, before, after}}};
}

inline FileChange Renamed(std::uint64_t number, const std::string& from, const std::string& to) {
    return {.number = number, .kind = FileChange::Kind::Moved, .path = from, .target = to};
}

class Report : public ::testing::Test {
  protected:
    Report() {
        facts.host = "/srv/shelf";
        records.emplace_back(RunStarted{Stamp, "1.1.0", "Reconcile library and database"});
    }

    void Add(const ChangeRecord& record) { records.push_back(record); }
    void AddError(const std::string& text) { Add(LogLine{true, text}); }
    void End(const std::string& outcome = "completed", bool braked = false) {
        Add(RunEnded{outcome, 0, braked, std::chrono::milliseconds(4200)});
    }
    ReportContent Content() const {
        ReportGatherer gatherer(facts);
        for (const ChangeRecord& record : records)
            gatherer.Note(record);
        return gatherer.Finish();
    }
    std::string Page() const { return ReportPage(Content(), facts); }
    std::size_t CountOf(DeedKind kind) const {
        return Content().total.at(static_cast<std::size_t>(kind)).count;
    }
    const DeedList& Of(const ReportContent& content, const std::string& artist,
                       DeedKind kind) const {
        return content.artists.at(artist).at(static_cast<std::size_t>(kind));
    }
    static std::size_t Occurrences(const std::string& text, const std::string& part) {
        std::size_t count = 0;
        for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at)
            ++count;
        return count;
    }

    ReportFacts facts;
    std::vector<ChangeRecord> records;
};

}  // namespace quillon
