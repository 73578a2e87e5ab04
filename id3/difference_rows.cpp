#include "id3/difference_rows.h"

#include <string>

namespace quillon {

DifferenceRows::DifferenceRows(Connection& connection, DateTime updateTime)
    : table_(connection.OpenTable("SpinnerID3Differences")), updateTime_(updateTime) {}

void DifferenceRows::Add(std::string_view artist, std::string_view album, std::string_view song,
                         const TagDifference& difference) {
    // Gives up what a row before this one may have left unfinished.
    table_->AddNew();
    table_->Set("UpdateTime", updateTime_);
    table_->Set("Field", difference.field);
    table_->Set("ID3Value", difference.tagValue);
    table_->Set("DBValue", difference.expected);
    table_->Set("Artist", std::string(artist));
    table_->Set("Album", std::string(album));
    // The song's name, in a column that other parts of the system read by this name.
    table_->Set("Track", std::string(song));
    table_->Update();
}

}  // namespace quillon
