#include "app/serve/asp_page.h"

#include <algorithm>
#include <array>
#include <vector>

namespace quillon {
namespace {

constexpr std::string_view Blanks = " \t\r\n";
constexpr std::string_view GuestTest =
    R"(If Request.ServerVariables("AUTH_USER") = "guest" Then Response.Redirect("/unauthorized.asp"))";
constexpr std::string_view FooterCall = "Response.Write CustomFooter()";
constexpr std::string_view HeaderCall = "Response.Write CustomHeader(", HeaderCallEnd = ")";
constexpr std::string_view CodeStart = "<%", CodeEnd = "%>";
constexpr std::string_view IncludeStart = "<!--#include", IncludeEnd = "-->";
constexpr std::string_view PathStart = "virtual=\"", PathEnd = "\"";

std::string_view Trimmed(std::string_view text) {
    const std::size_t start = text.find_first_not_of(Blanks);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(Blanks) - start + 1);
}

/// What stands between a start and an end; nothing when the text does not have both.
std::optional<std::string_view> Between(std::string_view text, std::string_view start,
                                        std::string_view end) {
    if (text.size() < start.size() + end.size() || !text.starts_with(start) || !text.ends_with(end))
        return std::nullopt;
    return text.substr(start.size(), text.size() - start.size() - end.size());
}

/// The text that a literal of the page's language stands for: quotes in it are doubled.
std::optional<std::string> LiteralText(std::string_view literal) {
    const auto inner = Between(literal, "\"", "\"");
    if (!inner) return std::nullopt;
    std::string text;
    for (std::size_t i = 0; i < inner->size(); ++i) {
        if ((*inner)[i] == '"' && inner->substr(++i, 1) != "\"") return std::nullopt;
        text += (*inner)[i];
    }
    return text;
}

std::vector<std::string_view> Statements(std::string_view code) {
    std::vector<std::string_view> statements;
    while (!code.empty()) {
        const std::string_view line = code.substr(0, code.find('\n'));
        code.remove_prefix(std::min(code.size(), line.size() + 1));
        if (const std::string_view statement = Trimmed(line); !statement.empty())
            statements.push_back(statement);
    }
    return statements;
}

class Page {
  public:
    explicit Page(const AspServices& services) : services_(services) {}

    AspAnswer Evaluate(std::string_view rest) {
        while (!answer_.redirect && !rest.empty()) {
            const std::size_t code = rest.find(CodeStart), include = rest.find(IncludeStart);
            const std::size_t start = std::min({code, include, rest.size()});
            answer_.html += rest.substr(0, start);
            rest.remove_prefix(start);
            if (start == code) {
                Run(Cut(rest, CodeStart, CodeEnd));
            } else if (start == include) {
                Include(Trimmed(Cut(rest, IncludeStart, IncludeEnd)));
            }
        }
        return std::move(answer_);
    }

  private:
    /// Takes the marked piece off the rest; what is not closed reaches to the end.
    static std::string_view Cut(std::string_view& rest, std::string_view start,
                                std::string_view end) {
        rest.remove_prefix(start.size());
        const std::string_view piece = rest.substr(0, rest.find(end));
        rest.remove_prefix(std::min(rest.size(), piece.size() + end.size()));
        return piece;
    }

    void Run(std::string_view code) {
        const std::size_t before = answer_.html.size();
        for (const std::string_view statement : Statements(code)) {
            if (RunStatement(statement)) continue;
            answer_.redirect.reset();
            answer_.html.resize(before);
            answer_.html += services_.notRun;
            return;
        }
    }

    /// False for a statement that is not one of the known.
    bool RunStatement(std::string_view statement) {
        if (statement == GuestTest) {
            if (services_.authUser == "guest") answer_.redirect = "/unauthorized.asp";
            return true;
        }
        if (statement == FooterCall) {
            answer_.html += services_.customFooter();
            return true;
        }
        const auto argument = Between(statement, HeaderCall, HeaderCallEnd);
        const auto title = argument ? LiteralText(*argument) : std::nullopt;
        if (title) answer_.html += services_.customHeader(*title);
        return title.has_value();
    }

    void Include(std::string_view directive) {
        const auto path = Between(directive, PathStart, PathEnd);
        const auto content = path ? services_.include(*path) : std::nullopt;
        if (!content) {
            answer_.html += services_.notRun;
            return;
        }
        std::string_view rest = *content;
        while (!rest.empty()) {
            const std::size_t start = std::min(rest.find(CodeStart), rest.size());
            answer_.html += rest.substr(0, start);
            rest.remove_prefix(start);
            if (!rest.empty()) Cut(rest, CodeStart, CodeEnd);
        }
    }

    const AspServices& services_;
    AspAnswer answer_;
};

}  // namespace

AspAnswer EvaluateAsp(std::string_view page, const AspServices& services) {
    return Page(services).Evaluate(page);
}

}  // namespace quillon
