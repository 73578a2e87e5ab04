#include "id3/difference_table.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "platform/content_hash.h"
#include "platform/files.h"
#include "platform/host.h"
#include "run/fast_string.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::string_view Table = "SpinnerID3Differences";
/// The song's name is in a column that other parts of the system read by the name Track.
constexpr std::array<std::string_view, 7> Fields{"UpdateTime", "Field", "ID3Value", "DBValue",
                                                 "Artist",     "Album", "Track"};

/// Of the texts of a row; never 0.
template <typename List>
std::uint64_t HashOf(const List& texts, auto textOf) {
    std::uint64_t hash = HashOfNothing;
    // What no text has stands between them.
    for (const auto& text : texts)
        hash = ContentHash("\xFF", ContentHash(textOf(text), hash));
    return std::max<std::uint64_t>(hash, 1);
}

std::uint64_t HashOf(const std::array<std::string_view, 6>& texts) {
    return HashOf(texts, [](std::string_view text) { return text; });
}

/// 0 where one is no text.
std::uint64_t HashOf(std::span<const Value> values) {
    const auto isText = [](const Value& value) {
        return std::holds_alternative<std::string>(value);
    };
    if (!std::ranges::all_of(values, isText)) return 0;
    return HashOf(values, [](const Value& value) -> std::string_view {
        return std::get<std::string>(value);
    });
}

void CreateMissing(Files& files, const std::string& folder) {
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
}

}  // namespace

void DifferenceRows::Open() {
    if (rows_) return;
    isRefused_ = true;
    auto rows = connection_.OpenInserter(Table, Fields);
    bool hasThisTime = false;
    connection_.Scan(Table, Fields, [&](RowKey key, std::span<const Value> values) {
        const auto* const time = std::get_if<DateTime>(&values.front());
        if (time != nullptr && !knownTime_) knownTime_ = *time;
        hasThisTime = hasThisTime || (time != nullptr && *time == updateTime_);
        const bool mayStay = time != nullptr && *time == *knownTime_;
        known_.push_back({.key = key, .hash = mayStay ? HashOf(values.subspan(1)) : 0});
    });
    if (hasThisTime && *knownTime_ != updateTime_) {
        // Nobody could tell rows that get this time from those.
        for (Known& known : known_)
            known.hash = 0;
    }
    row_.fill(std::string());
    row_.front() = updateTime_;
    rows_ = std::move(rows);
    isRefused_ = false;
}

void DifferenceRows::Add(std::string_view artist, std::string_view album, std::string_view song,
                         const TagDifference& difference) {
    const Texts texts{
        difference.field, difference.tagValue, difference.expected, artist, album, song};
    if (!known_.empty()) {
        if (Keep(HashOf(texts))) return;
        WriteAnew();
    }
    Insert(texts);
}

/// Whether a row that stands behind those that stay is the same one; what is between them goes.
bool DifferenceRows::Keep(std::uint64_t hash) {
    const auto ahead = known_.begin() + static_cast<std::ptrdiff_t>(next_);
    const auto found = std::find_if(ahead, known_.end(),
                                    [hash](const Known& known) { return known.hash == hash; });
    if (found == known_.end()) return false;
    found->isAdded = true;
    next_ = static_cast<std::size_t>(found - known_.begin()) + 1;
    return true;
}

void DifferenceRows::Insert(const Texts& texts) {
    for (std::size_t i = 0; i < texts.size(); ++i)
        std::get<std::string>(row_[i + 1]) = texts[i];
    rows_->Insert(row_);
}

/// A row cannot come between others: so those that stay come again, and all that follow behind
/// them.
void DifferenceRows::WriteAnew() {
    std::string content;  // one text behind the other, as there may be some hundred thousand rows
    std::vector<std::size_t> sizes;
    std::size_t place = 0;
    connection_.Scan(Table, Fields, [&](RowKey, std::span<const Value> values) {
        if (!known_.at(place++).isAdded) return;
        for (const Value& value : values.subspan(1)) {
            content += std::get<std::string>(value);
            sizes.push_back(std::get<std::string>(value).size());
        }
    });
    connection_.Execute("DELETE * FROM SpinnerID3Differences");
    known_.clear();
    std::string_view rest = content;
    for (std::size_t i = 0; i < sizes.size();) {
        Texts texts;
        for (std::string_view& text : texts) {
            text = rest.substr(0, sizes[i]);
            rest.remove_prefix(sizes[i++]);
        }
        Insert(texts);
    }
}

void DifferenceRows::Finish() {
    if (isRefused_) return;
    Open();
    const auto staying =
        static_cast<std::size_t>(std::ranges::count(known_, true, &Known::isAdded));
    if (staying <= known_.size() / 2) {
        if (!known_.empty()) WriteAnew();
        return;
    }
    for (const Known& known : known_)
        if (!known.isAdded) connection_.Delete(Table, known.key);
    if (*knownTime_ != updateTime_)
        connection_.ReplaceDate(Table, Fields.front(), *knownTime_, updateTime_);
}

void OutputReconcileTable(Run& run) {
    Steps steps(run, "OutputReconcileTable");
    steps.Try([&run] {
        const std::string base = run.host.GetAppPath();
        CreateMissing(run.files, base + R"(\Data)");
        CreateMissing(run.files, base + R"(\Data\Quillon)");
        const std::unique_ptr<TextWriter> file =
            run.files.CreateOwnText(base + R"(\data\Quillon\QuillonReconcile.csv)");
        const std::unique_ptr<RecordSet> rows =
            run.connection->Query("SELECT * FROM SpinnerID3Differences");
        FastString line;
        for (; !rows->IsEof(); rows->MoveNext()) {
            line.Reset();
            for (std::size_t field = 0; field < rows->FieldCount(); ++field) {
                line.Add(rows->Text(field));
                line.Add(",");
            }
            file->WriteLine(line.value());
        }
        file->Close();
    });
}

}  // namespace quillon
