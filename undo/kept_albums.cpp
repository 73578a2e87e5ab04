#include "undo/kept_albums.h"

#include <array>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/basic_text.h"

namespace quillon {
namespace {

using Step = RowUndo::Step;

/// By this field tracks know their album.
constexpr std::string_view Identifier = "CDJID";

/// In small letters; "" where there is none.
std::string IdentifierIn(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : LowerCase(*text);
}

std::string IdentifierIn(const RowState& state) {
    const auto found = state.fields.find(Identifier);
    return !state.exists || found == state.fields.end() ? "" : IdentifierIn(found->second);
}

/// The identifier that a step would take from a row; "" where it takes none.
std::string TakenIdentifier(const Step& step) {
    if (!step.IsToDo()) return "";
    const std::string now = IdentifierIn(step.row->now);
    return now == IdentifierIn(step.row->before) ? "" : now;
}

/// The identifiers in the rows of tracks that go on to have them.
std::unordered_set<std::string> IdentifiersOfTracks(Connection& connection,
                                                    std::span<const Step> steps) {
    std::set<RowKey> leaving;
    for (const Step& step : steps)
        if (step.row->table == "Tracks" && !TakenIdentifier(step).empty()) leaving.insert(step.key);
    std::unordered_set<std::string> identifiers;
    const std::array fields{Identifier};
    connection.Scan("Tracks", fields, [&](RowKey row, std::span<const Value> values) {
        if (!leaving.contains(row)) identifiers.insert(IdentifierIn(values.front()));
    });
    return identifiers;
}

}  // namespace

std::vector<Step*> AlbumsOfTracksThatStay(Connection& connection, std::span<Step> steps) {
    std::vector<Step*> albums;
    for (Step& step : steps)
        if (step.row->table == "Albums" && !TakenIdentifier(step).empty()) albums.push_back(&step);
    if (albums.empty()) return albums;
    const std::unordered_set<std::string> inUse = IdentifiersOfTracks(connection, steps);
    std::erase_if(albums,
                  [&](const Step* album) { return !inUse.contains(TakenIdentifier(*album)); });
    return albums;
}

}  // namespace quillon
