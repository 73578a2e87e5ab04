#include "platform/portable/temporary_entry.h"

#include <algorithm>
#include <unistd.h>

namespace quillon {
namespace {

constexpr std::string_view NameBeginning = ".quillon-", NameEnd = ".tmp";

}  // namespace

std::string TemporaryName(unsigned number) {
    return std::string(NameBeginning) + std::to_string(getpid()) + '-' + std::to_string(number) +
           std::string(NameEnd);
}

bool IsTemporaryName(std::string_view name) {
    if (!name.starts_with(NameBeginning) || !name.ends_with(NameEnd)) return false;
    name.remove_prefix(NameBeginning.size());
    if (name.size() <= NameEnd.size()) return false;
    name.remove_suffix(NameEnd.size());
    return std::ranges::all_of(name, [](char c) { return (c >= '0' && c <= '9') || c == '-'; });
}

}  // namespace quillon
