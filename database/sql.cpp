#include "database/sql.h"

#include "platform/basic_text.h"
#include "platform/failure.h"

namespace quillon {

void RefuseQuote(std::string_view value) {
    if (value.find('"') != std::string_view::npos) {
        throw Failure::Described(
            FailureNumber::Database,
            "Syntax error (missing operator) in query expression: " + std::string(value));
    }
}

std::string Quoted(std::string_view value) {
    RefuseQuote(value);
    return '"' + std::string(value) + '"';
}

std::string FilterQuoted(std::string_view value) {
    return '\'' + Replace(value, "'", "''") + '\'';
}

}  // namespace quillon
