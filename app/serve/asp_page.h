#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// What the server code of the picker's pages calls.
struct AspServices {
    std::string authUser;  ///< who is logged in
    /// The content of an include file by its path on the server; nothing for one that is not known.
    std::function<std::optional<std::string>(std::string_view)> include;
    std::function<std::string(std::string_view title)> customHeader;
    std::function<std::string()> customFooter;
    std::string notRun;  ///< stands where code was left out
};

/// What became of a page.
struct AspAnswer {
    std::string html;
    std::optional<std::string> redirect;  ///< where the page sends its reader instead
};

/// Evaluates the calls that the head and foot of a picker page are made of: includes, the test for
/// a guest, CustomHeader with a title and CustomFooter, each written as there. A block with any
/// other statement is not run at all, since what stands around a known one may change its meaning;
/// `notRun` takes its place. Code in include files is left out without a trace.
AspAnswer EvaluateAsp(std::string_view page, const AspServices& services);

}  // namespace quillon
