#pragma once

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "app/serve/library_names.h"
#include "app/serve/web_address.h"

namespace quillon {

/// One thing that the player was asked to do, as it was sent.
struct PlayerRequest {
    std::size_t number = 0;  ///< counted from 1 on
    std::string time;        ///< when it came
    std::string action;      ///< ClientAction
    std::string cdjid;       ///< CDJID
    std::string ref;         ///< a track's number, or 0 for the whole album
    std::string fileName;    ///< name for the playlist to save
};

/// What the player was asked for lately. May be used from several threads at a time.
class RequestLog {
  public:
    /// The most that are kept.
    static constexpr std::size_t Capacity = 200;

    /// Notes what a query asks for at this time. False for one that asks for nothing: it has no
    /// ClientAction.
    bool Add(const QueryValues& query, const std::string& time);

    /// Newest first.
    std::vector<PlayerRequest> Requests() const;

  private:
    mutable std::mutex mutex_;
    std::deque<PlayerRequest> requests_;
    std::size_t count_ = 0;
};

/// What a request means to a person: "Play track 3, Dawn, of First Light by Alder".
std::string RequestSentence(const PlayerRequest& request, const NameTable& names);

/// The page that stands in for the player's: the requests with their identifiers and names.
std::string RequestsPage(const std::vector<PlayerRequest>& requests,
                         const LibraryNames::Answer& library, const std::string& indexPage);

}  // namespace quillon
