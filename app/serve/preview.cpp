#include "app/serve/preview.h"

#include <algorithm>
#include <array>

#include "app/serve/content_type.h"
#include "app/serve/templates.h"
#include "picker/locations.h"
#include "platform/basic_text.h"
#include "platform/date_time.h"

namespace quillon {
namespace {

constexpr std::string_view HtmlType = "text/html; charset=utf-8";

/// The address of the page folder without the slash at its end.
constexpr std::string_view PickerFolderUrl = PageUrlBase.substr(0, PageUrlBase.size() - 1);

std::string IndexUrl() {
    return std::string(PageUrlBase) + PageFileName(0);
}

std::vector<std::string> NamesOf(std::string_view url) {
    return ParseWebAddress(url)->names;
}

/// Whether a path is this one, whatever the letter case.
bool IsPath(std::span<const std::string> names, std::string_view url) {
    std::string path;
    for (const std::string& name : names)
        path += '/' + name;
    return EqualIgnoringCase(path, url);
}

WebResponse Html(std::string text) {
    return {200, std::string(HtmlType), std::move(text), {}, {}};
}

WebResponse Message(int status, std::string_view title, std::string_view text) {
    WebResponse response = Html(PageText(title, FillTemplate("message.html", {{"text", text}})));
    response.status = status;
    return response;
}

WebResponse Redirect(int status, std::string_view url) {
    WebResponse response = Message(status, "Elsewhere", std::string(url));
    response.headers.emplace_back("Location", url);
    return response;
}

WebResponse NotFound() {
    return Message(404, "Not found", "There is no such page or file.");
}

/// What belongs to the server itself, whatever the site's folder holds.
std::optional<WebResponse> OwnFile(std::span<const std::string> names) {
    constexpr std::array<std::string_view, 2> Files{"style.css", "icon.svg"};
    for (const std::string_view name : Files) {
        if (IsPath(names, "/quillon-preview/" + std::string(name)))
            return WebResponse{
                200, std::string(ContentType(name)), std::string(TemplateText(name)), {}, {}};
    }
    return std::nullopt;
}

AspServices PickerServices() {
    AspServices services;
    services.customHeader = [](std::string_view title) {
        return FillTemplate("custom_header.html", {{"title", title}});
    };
    services.customFooter = [] { return FillTemplate("custom_footer.html"); };
    services.notRun = FillTemplate("not_run.html");
    return services;
}

}  // namespace

std::span<const HeaderLine> CommonHeaders() {
    // The one script that picker pages hold is the link that submits the form of their playlist's
    // name. The hash is that of its address; any other script in a page, such as one in a title
    // that got there as markup, does not run. Files beside the pages may be scripts.
    static constexpr auto Headers = std::to_array<HeaderLine>(
        {{"Content-Security-Policy",
          "default-src 'none'; img-src 'self'; media-src 'self'; style-src 'self' 'unsafe-inline'; "
          "script-src 'self' 'unsafe-hashes' "
          "'sha256-Dp2gG0wJPLW51mrIz2ezTI0/lG1eGTJxHVUvWKnyguM='; "
          "form-action 'self'; frame-src 'self'; frame-ancestors 'self'; base-uri 'none'"},
         {"X-Content-Type-Options", "nosniff"},
         {"X-Frame-Options", "SAMEORIGIN"},
         {"Referrer-Policy", "no-referrer"},
         {"Cross-Origin-Resource-Policy", "same-origin"},
         {"Cache-Control", "no-store"}});
    return Headers;
}

Preview::Preview(const Site& site, const Clock& clock)
    : folder_(site.folder),
      pickerFolder_(site.pickerFolder),
      howToBuild_(site.howToBuild),
      names_(site.database, site.databaseProblem),
      clock_(clock),
      services_(PickerServices()) {
    services_.include = [this](std::string_view path) { return Include(path); };
}

WebResponse Preview::Answer(const WebRequest& request) {
    if (request.hosts.size() != 1 || !IsLoopbackHost(request.hosts.front()))
        return Message(403, "Refused", "This server only answers to localhost and 127.0.0.1.");
    if (request.method != "GET" && request.method != "HEAD") {
        WebResponse response = Message(405, "Refused", "Pages here can only be read.");
        response.headers.emplace_back("Allow", "GET, HEAD");
        return response;
    }
    const auto address = ParseWebAddress(request.target);
    if (!address) return NotFound();
    // A look without taking the content must leave no trace.
    if (request.method == "HEAD" && IsPath(address->names, PlayerPage)) return Html("");
    return AnswerAddress(*address);
}

WebResponse Preview::AnswerAddress(const WebAddress& address) {
    if (address.names.empty()) return Home();
    if (IsPath(address.names, PlayerPage)) return Player(address.query);
    if (auto own = OwnFile(address.names)) return *std::move(own);
    const auto file = Find(address.names);
    return file ? Show(*file) : NotFound();
}

WebResponse Preview::Home() const {
    if (Find(NamesOf(IndexUrl()))) return Redirect(302, IndexUrl());
    return Html(PageText("No album picker yet",
                         FillTemplate("no_picker.html", {{"command", howToBuild_}})));
}

WebResponse Preview::Player(const QueryValues& query) {
    const std::string now = SortableDateTimeText(clock_.Now());
    // On to the page without a request, so that looking at it again repeats nothing.
    if (log_.Add(query, now.substr(now.find(' ') + 1))) return Redirect(303, PlayerPage);
    return Html(RequestsPage(log_.Requests(), names_.Get(), IndexUrl()));
}

std::optional<SiteFile> Preview::Find(const std::vector<std::string>& names) const {
    if (auto file = folder_.Open(names)) return file;
    // The pages go by one address, wherever the setting for the covers has had them made.
    const std::vector<std::string> base = NamesOf(PickerFolderUrl);
    if (names.size() <= base.size() ||
        !std::ranges::equal(std::span(names).first(base.size()), base, EqualIgnoringCase))
        return std::nullopt;
    std::vector<std::string> moved = pickerFolder_;
    moved.insert(moved.end(), names.begin() + static_cast<std::ptrdiff_t>(base.size()),
                 names.end());
    return folder_.Open(moved);
}

WebResponse Preview::Show(const SiteFile& file) const {
    WebResponse response{200, std::string(ContentType(file.name)), "", {}, {}};
    if (!IsServerPage(file.name)) {
        response.file = file;
        return response;
    }
    AspAnswer page = EvaluateAsp(file.Read(), services_);
    if (page.redirect) return Redirect(302, *page.redirect);
    response.text = std::move(page.html);
    return response;
}

std::optional<std::string> Preview::Include(std::string_view path) const {
    for (const std::string_view name : {"style.asp", "header.asp"}) {
        if (path != "/includes/" + std::string(name)) continue;
        const std::vector<std::string> names{"includes", std::string(name)};
        const auto file = folder_.Open(names);
        return file ? file->Read() : std::string(TemplateText(name));
    }
    return std::nullopt;
}

}  // namespace quillon
