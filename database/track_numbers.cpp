#include "database/track_numbers.h"

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "database/sql.h"

namespace quillon {

bool MoveToId(RecordSet& cursor, std::int64_t id) {
    cursor.Filter("ID=" + std::to_string(id));
    return !cursor.IsEmpty();
}

void NumberApart(Connection& connection, RecordSet& tracks, std::string_view cdjid,
                 const std::unordered_set<std::int64_t>& newcomers) {
    std::set<std::int64_t> taken;
    std::vector<std::pair<std::int64_t, std::int64_t>> unsettled;  // ID and present number
    const std::unique_ptr<RecordSet> rows =
        connection.Query("SELECT ID, Track FROM Tracks WHERE CDJID=" + FilterQuoted(cdjid));
    for (; !rows->IsEof(); rows->MoveNext()) {
        const std::int64_t id = rows->Integer("ID"), number = rows->Integer("Track");
        if (newcomers.contains(id)) {
            unsettled.emplace_back(id, number);
        } else {
            taken.insert(number);
        }
    }
    std::int64_t lowest = 1;
    for (const auto& [id, number] : unsettled) {
        if (number > 0 && taken.insert(number).second) continue;
        while (!taken.insert(lowest).second)
            ++lowest;
        if (!MoveToId(tracks, id)) continue;
        tracks.Set("Track", lowest);
        tracks.Update();
    }
}

}  // namespace quillon
