#include "compat/move_to_id.h"

#include <string>

namespace quillon {

bool MoveToId(RecordSet& cursor, std::int64_t id) {
    cursor.Filter("ID=" + std::to_string(id));
    return !cursor.IsEmpty();
}

}  // namespace quillon
