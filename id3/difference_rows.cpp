#include "id3/difference_rows.h"

#include <array>
#include <string>

namespace quillon {
namespace {

constexpr std::string_view Table = "SpinnerID3Differences";

}  // namespace

DifferenceRows::DifferenceRows(Connection& connection, DateTime updateTime)
    : connection_(connection), updateTime_(updateTime) {
    connection.Scan(Table, {}, [](RowKey, std::span<const Value>) {});
}

void DifferenceRows::Add(std::string_view artist, std::string_view album, std::string_view song,
                         const TagDifference& difference) {
    connection_.Insert(Table, std::array<FieldValue, 7>{{
                                  {"UpdateTime", updateTime_},
                                  {"Field", difference.field},
                                  {"ID3Value", difference.tagValue},
                                  {"DBValue", difference.expected},
                                  {"Artist", std::string(artist)},
                                  {"Album", std::string(album)},
                                  // The song's name, in a column that other parts of the system
                                  // read by this name.
                                  {"Track", std::string(song)},
                              }});
}

}  // namespace quillon
