#pragma once

#include <memory>
#include <optional>

#include "app/requests.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the library's own
class App;
}

namespace quillon {

/// The commands of `quillon db` and the places their values go to.
class DbGrammar {
  public:
    /// Adds them to `db`, which must outlive this object.
    explicit DbGrammar(CLI::App& db);
    DbGrammar(const DbGrammar&) = delete;
    DbGrammar& operator=(const DbGrammar&) = delete;
    ~DbGrammar();

    /// What was asked for; none where it was another command.
    std::optional<Request> Chosen() const;

  private:
    struct Commands;
    std::unique_ptr<Commands> commands_;
};

}  // namespace quillon
