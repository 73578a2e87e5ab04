#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// The values behind the "?" of a request, as server pages see them: names count without letter
/// case, and a name given several times has its values in one text, with ", " between.
class QueryValues {
  public:
    QueryValues() = default;
    /// Invalid escapes are taken literally. Values of pages in the ANSI code page come as
    /// ANSI bytes; all are UTF-8 here.
    explicit QueryValues(std::string_view query);

    /// "" for a name that was not given.
    std::string Get(std::string_view name) const;
    bool Has(std::string_view name) const;

  private:
    std::map<std::string, std::string> values_;  ///< by lower-case name
};

/// What a request asks for.
struct WebAddress {
    std::vector<std::string> names;  ///< of the path: "/a/b.asp" has two, "/" none
    QueryValues query;
};

/// Takes a request's target apart. Nothing when its path is none that a file below a folder can
/// have: it must begin with "/" and hold names between single slashes that Windows can hold and
/// that do not begin with a dot. So neither "..", nor a drive, a stream or a zero byte, escaped or
/// not, gets past this.
std::optional<WebAddress> ParseWebAddress(std::string_view target);

/// Whether a request's Host header names this computer itself. A page of another site whose name
/// was made to lead here sends that name.
bool IsLoopbackHost(std::string_view host);

}  // namespace quillon
