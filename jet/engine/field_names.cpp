#include "jet/engine/field_names.h"

#include "jet/dialect/names.h"
#include "jet/error.h"

namespace jet::engine {

std::size_t FindField(const std::vector<dialect::ResultColumn>& fields, std::string_view name) {
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (dialect::SameName(fields[i].name, name)) return i;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string_view full = fields[i].name;
        const std::size_t point = full.rfind('.');
        if (point != std::string_view::npos && dialect::SameName(full.substr(point + 1), name))
            return i;
    }
    throw Error(ErrorKind::NotFound,
                "Item cannot be found in the collection: the record set has "
                "no field '" +
                    std::string(name) + "'");
}

}  // namespace jet::engine
