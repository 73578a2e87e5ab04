#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/failure.h"

namespace quillon::fakes {

/// What the fakes of one test were asked to do, in one list and in the order of the calls, and
/// what they are told to refuse. A call reads like a line of a protocol: "DeleteFile D:\a.mp3".
class Calls {
  public:
    /// Notes a call; throws what was prepared for it.
    void Note(const std::string& call) {
        made_.push_back(call);
        const auto refused = refusals_.find(call);
        if (refused != refusals_.end()) throw Failure(refused->second);
    }

    /// Every further call of this text fails.
    void Refuse(const std::string& call, FailureNumber number, const std::string& concerning) {
        refusals_.insert_or_assign(call, Failure(number, concerning));
    }

    /// Takes a refusal back.
    void Allow(const std::string& call) { refusals_.erase(call); }

    /// All calls so far.
    const std::vector<std::string>& Made() const { return made_; }

    /// The calls that begin with one of the words, in their order.
    std::vector<std::string> Of(const std::vector<std::string_view>& beginnings) const {
        std::vector<std::string> chosen;
        for (const std::string& call : made_) {
            const auto begins = [&](std::string_view word) { return call.starts_with(word); };
            if (std::any_of(beginnings.begin(), beginnings.end(), begins)) chosen.push_back(call);
        }
        return chosen;
    }

    void Forget() { made_.clear(); }

  private:
    std::vector<std::string> made_;
    std::map<std::string, Failure> refusals_;
};

}  // namespace quillon::fakes
