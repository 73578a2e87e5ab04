#include "picker/controls.h"

#include <algorithm>

#include "picker/locations.h"

namespace quillon {
namespace {

constexpr std::size_t NearBy = 10;

}  // namespace

std::string NumberedPages(std::size_t page, std::size_t pageCount) {
    const std::size_t first = page <= NearBy ? 1 : page - NearBy;
    const std::size_t last = page == 0 ? pageCount : std::min(pageCount, page + NearBy);
    std::string list;
    for (std::size_t number = first; number <= last; ++number) {
        if (number != first) list += " | ";
        list += "<a href=" + PageFileName(number);
        if (number == page) list += " aria-current='page'";
        list += ">Page " + std::to_string(number) + "</a>    ";
    }
    return list;
}

}  // namespace quillon
