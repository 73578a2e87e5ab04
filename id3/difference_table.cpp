#include "id3/difference_table.h"

#include <string>

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

void CreateMissing(Files& files, const std::string& folder) {
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
}

}  // namespace

DifferenceRows::DifferenceRows(Connection& connection, DateTime updateTime)
    : rows_(connection.OpenInserter(Table, Fields)) {
    row_.fill(std::string());
    row_.front() = updateTime;
}

void DifferenceRows::Add(std::string_view artist, std::string_view album, std::string_view song,
                         const TagDifference& difference) {
    const std::array<std::string_view, 6> texts{
        difference.field, difference.tagValue, difference.expected, artist, album, song};
    for (std::size_t i = 0; i < texts.size(); ++i)
        std::get<std::string>(row_[i + 1]) = texts[i];
    rows_->Insert(row_);
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
