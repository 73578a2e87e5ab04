#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/serve/asp_page.h"
#include "app/serve/library_names.h"
#include "app/serve/player_page.h"
#include "app/serve/site_folder.h"
#include "platform/clock.h"

namespace quillon {

/// A request as it came.
struct WebRequest {
    std::string method;              ///< "GET"
    std::string target;              ///< "/Quillon/Quillon.asp?ClientAction=clear"
    std::vector<std::string> hosts;  ///< of all Host headers
};

/// What is sent back.
struct WebResponse {
    int status = 200;
    std::string type;  ///< media type of the content
    std::string text;  ///< the content, unless it is a file
    std::optional<SiteFile> file;
    std::vector<std::pair<std::string, std::string>> headers;
};

/// A header's name and value.
using HeaderLine = std::pair<std::string_view, std::string_view>;

/// Headers that every answer carries: what a page may load and run, and that nothing is kept.
std::span<const HeaderLine> CommonHeaders();

/// The site that stands in for the one of the home-automation host, without a network: its files,
/// its server pages as far as the tool writes them, and a player that only tells what it was asked
/// for. May be used from several threads at a time.
class Preview {
  public:
    struct Site {
        std::filesystem::path folder;                   ///< holds what is shown
        std::vector<std::string> pickerFolder;          ///< the pages' place in it, name by name
        std::string howToBuild;                         ///< the command that makes the pages
        std::optional<std::filesystem::path> database;  ///< has the names
        std::string databaseProblem;                    ///< why there is none
    };

    /// The clock must outlive the object.
    Preview(const Site& site, const Clock& clock);

    WebResponse Answer(const WebRequest& request);

  private:
    WebResponse AnswerAddress(const WebAddress& address);
    WebResponse Home() const;
    WebResponse Player(const QueryValues& query);
    WebResponse Show(const SiteFile& file) const;
    std::optional<SiteFile> Find(const std::vector<std::string>& names) const;
    std::optional<std::string> Include(std::string_view path) const;

    SiteFolder folder_;
    std::vector<std::string> pickerFolder_;
    std::string howToBuild_;
    LibraryNames names_;
    const Clock& clock_;
    RequestLog log_;
    AspServices services_;
};

}  // namespace quillon
