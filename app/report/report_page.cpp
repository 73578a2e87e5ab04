#include "app/report/report_page.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <string_view>

#include "app/journal/change_text.h"
#include "app/report/report_style.h"
#include "app/text/display_text.h"
#include "picker/html.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

struct KindWords {
    std::string_view one, many;
};

/// In the order of `DeedKind`.
constexpr std::array<KindWords, DeedKinds> Words{{
    {"album added", "albums added"},
    {"album changed", "albums changed"},
    {"album removed", "albums removed"},
    {"cover changed", "covers changed"},
    {"track added", "tracks added"},
    {"track changed", "tracks changed"},
    {"track removed", "tracks removed"},
    {"file renamed", "files renamed"},
    {"file copied", "files copied"},
    {"file removed", "files removed"},
    {"tag written", "tags written"},
    {"playlist written", "playlists written"},
    {"playlist rewritten", "playlists rewritten"},
    {"playlist removed", "playlists removed"},
    {"image written", "images written"},
    {"page written", "pages written"},
    {"row of another table", "rows of other tables"},
    {"other file written", "other files written"},
}};
constexpr std::size_t FirstCommonKind = static_cast<std::size_t>(DeedKind::PlaylistWritten);

/// "12,345"
std::string NumberText(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3; place -= 3)
        text.insert(place - 3, ",");
    return text;
}

std::string Counted(std::size_t count, KindWords words) {
    return fmt::format("{} {}", NumberText(count), count == 1 ? words.one : words.many);
}

/// A path as a shell takes it when it is copied from the page.
std::string ForShell(const std::string& path) {
    const bool isPlain = std::ranges::all_of(path, [](char letter) {
        return std::isalnum(static_cast<unsigned char>(letter)) != 0 ||
               std::string_view("/._-+:@%").find(letter) != std::string_view::npos;
    });
    return isPlain && !path.empty() ? path : '\'' + Replace(path, "'", R"('\'')") + '\'';
}

/// "2026-11-21_07-13-05" as people write it.
std::string MomentText(std::string_view stamp) {
    const std::size_t middle = stamp.find('_');
    if (middle == std::string_view::npos) return std::string(stamp);
    return std::string(stamp.substr(0, middle)) + ' ' +
           Replace(stamp.substr(middle + 1, 8), "-", ":");
}

class Page {
  public:
    Page(const ReportContent& content, const ReportFacts& facts)
        : content_(content), facts_(facts) {}

    std::string Text() {
        Head();
        Errors();
        Tiles();
        Artists();
        Others();
        Times();
        LeftOut();
        Foot();
        return std::move(html_);
    }

  private:
    template <typename... Arguments>
    void Put(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
        fmt::format_to(std::back_inserter(html_), format, std::forward<Arguments>(arguments)...);
    }

    struct Verdict {
        std::string words;
        std::string_view look;  ///< a class of the style
        std::string toDo;       ///< HTML
    };
    Verdict Judge() const;
    std::string Command(std::string_view words) const {
        return fmt::format("<code>quillon {} --host {}</code>", HtmlText(words),
                           HtmlText(ForShell(facts_.host)));
    }

    void Head();
    void Errors();
    void Tiles();
    void Artists();
    void Artist(const std::string& name, const DeedLists& lists);
    void List(const DeedList& list, KindWords words);
    void Others();
    void Times();
    void LeftOut();
    void Foot();

    const ReportContent& content_;
    const ReportFacts& facts_;
    std::string html_;
};

Page::Verdict Page::Judge() const {
    const std::string errors =
        content_.errorCount == 0
            ? ""
            : fmt::format(", {}", Counted(content_.errorCount, {"error", "errors"}));
    if (!content_.hasEnded) {
        return {"Cut short", "bad",
                "The run was killed before its end. What is listed below was planned; the last of "
                "it may not have been done. Run it again: it does the rest."};
    }
    const std::string& outcome = content_.end.outcome;
    if (content_.end.braked) {
        return {"The brake held" + errors, "warn",
                "Nothing was removed. See whether all drives are mounted and the folders in the "
                "settings are right, and run again. If the removals are meant, let them through "
                "once: " +
                    Command("run --allow-removals")};
    }
    if (outcome == "aborted") {
        return {"Aborted" + errors, "warn",
                "The run was stopped before its end. Run it again: it does the rest."};
    }
    if (outcome != "completed") {
        return {"Nothing ran" + errors, "bad",
                "Nothing was changed. What stands in the way is told by " + Command("check")};
    }
    if (content_.errorCount == 0) return {"Completed", "", ""};
    return {"Completed" + errors, "warn",
            "All else was done. Put right what these lines say and run again. Look for what else "
            "may be wrong with " +
                Command("check")};
}

void Page::Head() {
    const std::string moment = HtmlText(MomentText(content_.stamp));
    const Verdict verdict = Judge();
    Put("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>{} - {}</title>\n<style>{}</style>\n</head>\n<body>\n<main>\n",
        moment, HtmlText(verdict.words), ReportStyle);
    const std::string mode = content_.undoes.empty()
                                 ? content_.mode
                                 : "Undo of the run of " + MomentText(content_.undoes);
    Put("<header>\n<h1>{}</h1>\n<p class=\"soft\">{}{}{}</p>\n<p class=\"pill {}\">{}</p>\n"
        "</header>\n",
        HtmlText(mode.empty() ? "Run" : mode), moment,
        content_.hasEnded ? ", took " + DurationText(content_.end.duration) : "",
        facts_.host.empty() ? "" : ", in " + HtmlText(facts_.host), verdict.look,
        HtmlText(verdict.words));
}

void Page::Errors() {
    const std::string toDo = Judge().toDo;
    if (toDo.empty() && content_.errorCount == 0) return;
    Put("<section aria-label=\"Errors\">\n<h2>{}</h2>\n<div class=\"card alarm\">\n",
        content_.errorCount == 0 ? "What to do" : "Errors, and what to do");
    if (!toDo.empty()) Put("<p class=\"todo\">{}</p>\n", toDo);
    Put("<ul class=\"errors\">\n");
    std::size_t told = 0;
    for (const ReportContent::Error& error : content_.errors) {
        told += error.times;
        Put("<li>{}{}</li>\n", HtmlText(error.text),
            error.times == 1 ? "" : fmt::format(" <b>{} times</b>", NumberText(error.times)));
    }
    Put("</ul>\n");
    if (told < content_.errorCount)
        Put("<p class=\"soft\">and {} more, which host.log has</p>\n",
            NumberText(content_.errorCount - told));
    Put("</div>\n</section>\n");
}

void Page::Tiles() {
    Put("<section aria-label=\"Numbers\">\n<h2>What changed</h2>\n");
    if (!content_.HasChanges()) {
        Put("<p>Nothing.</p>\n</section>\n");
        return;
    }
    Put("<div class=\"tiles\">\n");
    for (std::size_t kind = 0; kind < DeedKinds; ++kind) {
        const std::size_t count = content_.total.at(kind).count;
        if (count == 0) continue;
        const KindWords words = Words.at(kind);
        Put("<div class=\"card\"><b>{}</b><span>{}</span></div>\n", NumberText(count),
            count == 1 ? words.one : words.many);
    }
    Put("</div>\n</section>\n");
}

void Page::List(const DeedList& list, KindWords words) {
    Put("<h3>{}</h3>\n<ul class=\"list\">\n", Counted(list.count, words));
    for (const DeedList::Deed& deed : list.first) {
        Put("<li>{}", HtmlText(deed.what));
        for (const std::string& detail : deed.details)
            Put("<span class=\"fields\">{}</span>", HtmlText(detail));
        Put("</li>\n");
    }
    Put("</ul>\n");
    if (list.first.size() < list.count)
        Put("<p class=\"soft\">{}{} more</p>\n", list.first.empty() ? "" : "and ",
            NumberText(list.count - list.first.size()));
}

void Page::Artist(const std::string& name, const DeedLists& lists) {
    std::string counts;
    for (std::size_t kind = 0; kind < FirstCommonKind; ++kind) {
        if (lists.at(kind).count == 0) continue;
        counts += (counts.empty() ? "" : ", ") + Counted(lists.at(kind).count, Words.at(kind));
    }
    Put("<details>\n<summary><b>{}</b><span class=\"soft\">{}</span></summary>\n"
        "<div class=\"inside\">\n",
        name.empty() ? "Without an artist" : HtmlText(name), counts);
    for (std::size_t kind = 0; kind < FirstCommonKind; ++kind)
        if (lists.at(kind).count > 0) List(lists.at(kind), Words.at(kind));
    Put("</div>\n</details>\n");
}

void Page::Artists() {
    if (content_.artists.empty()) return;
    std::vector<const std::string*> names;
    names.reserve(content_.artists.size());
    for (const auto& [name, lists] : content_.artists)
        names.push_back(&name);
    // Where not all have room, those of whom something is listed do.
    const std::size_t all = names.size(), shown = std::min(all, ReportContent::MostListed);
    if (shown < all) {
        std::ranges::stable_partition(names, [this](const std::string* name) {
            return std::ranges::any_of(content_.artists.at(*name),
                                       [](const DeedList& list) { return !list.first.empty(); });
        });
        names.resize(shown);
    }
    std::ranges::sort(names, [](const std::string* left, const std::string* right) {
        if (left->empty() != right->empty()) return right->empty();
        return WindowsNameLess(*left, *right);
    });
    Put("<section aria-label=\"Artists\">\n<h2>By artist</h2>\n");
    for (const std::string* name : names)
        Artist(*name, content_.artists.at(*name));
    if (shown < all) Put("<p class=\"soft\">and {} more artists</p>\n", NumberText(all - shown));
    Put("</section>\n");
}

void Page::Others() {
    bool isFirst = true;
    for (std::size_t kind = FirstCommonKind; kind < DeedKinds; ++kind) {
        const DeedList& list = content_.total.at(kind);
        if (list.count == 0) continue;
        if (isFirst)
            Put("<section aria-label=\"Playlists and files\">\n<h2>Playlists and more</h2>\n");
        isFirst = false;
        Put("<details>\n<summary><b>{}</b></summary>\n<div class=\"inside\">\n",
            Counted(list.count, Words.at(kind)));
        const bool areTables = kind == static_cast<std::size_t>(DeedKind::RowOfOtherTable);
        if (areTables) {
            Put("<ul class=\"list\">\n");
            for (const DeedList::Deed& table : list.first)
                Put("<li>{}</li>\n", HtmlText(ThingsOf(table.what)));
            Put("</ul>\n");
        } else {
            List(list, Words.at(kind));
        }
        Put("</div>\n</details>\n");
    }
    if (!isFirst) Put("</section>\n");
}

void Page::Times() {
    std::chrono::milliseconds longest{0};
    for (const ReportContent::Phase& phase : content_.phases)
        longest = std::max(longest, phase.took);
    if (content_.phases.empty()) return;
    Put("<section aria-label=\"Time\">\n<h2>Time by phase</h2>\n<div class=\"card bars\">\n");
    for (const ReportContent::Phase& phase : content_.phases) {
        const auto share = longest.count() == 0 ? 0 : phase.took.count() * 1000 / longest.count();
        Put("<span>{}</span><span class=\"time\">{}</span>"
            "<span class=\"bar\"><i style=\"width:{}.{}%\"></i></span>\n",
            HtmlText(phase.name), DurationText(phase.took), share / 10, share % 10);
    }
    Put("</div>\n</section>\n");
}

void Page::LeftOut() {
    if (facts_.leftOut.empty()) return;
    Put("<section aria-label=\"Left out\">\n<h2>What was left out, and why</h2>\n");
    for (const ReportFacts::LeftOutMusic& group : facts_.leftOut) {
        Put("<details>\n<summary><b>{}</b><span class=\"soft\">{}</span></summary>\n"
            "<div class=\"inside\">\n<ul class=\"list\">\n",
            Counted(group.files, {"file", "files"}), HtmlText(group.why));
        for (const std::string& place : group.places)
            Put("<li>{}</li>\n", HtmlText(place));
        Put("</ul>\n</div>\n</details>\n");
    }
    Put("</section>\n");
}

void Page::Foot() {
    Put("<footer>\n<h2>Go on</h2>\n<ul class=\"card list\">\n");
    if (content_.HasChanges() && !content_.stamp.empty()) {
        Put("<li>Every single change: {}</li>\n", Command("changes " + content_.stamp));
        Put("<li>Take it back: {}</li>\n", Command("undo " + content_.stamp));
    }
    Put("<li>The backups: {}</li>\n", Command("backups"));
    Put("</ul>\n<p class=\"soft\">Quillon Shelfkeeper "
        "{}</p>\n</footer>\n</main>\n</body>\n</html>\n",
        HtmlText(content_.version));
}

}  // namespace

std::string ReportPage(const ReportContent& content, const ReportFacts& facts) {
    return Page(content, facts).Text();
}

}  // namespace quillon
