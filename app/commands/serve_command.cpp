#include "app/commands/serve_command.h"

#include <fmt/format.h>
#include <ostream>

#include "app/local_host.h"
#include "app/serve/http_server.h"
#include "app/serve/preview.h"
#include "app/serve/stop_signals.h"
#include "app/text/display_text.h"
#include "driver/settings_reader.h"
#include "picker/locations.h"
#include "platform/basic_text.h"
#include "platform/failure.h"

namespace quillon {
namespace {

constexpr std::string_view SiteName = "\\HTML";

/// Where below the site's folder a run makes the picker's pages.
std::vector<std::string> PickerFolder(const std::string& appPath, const std::string& coverPath) {
    const std::string pages = LocatePicker(appPath, coverPath).pageFolder;
    return Split(std::string_view(pages).substr(appPath.size() + SiteName.size() + 1), "\\");
}

/// The site of a host folder. Settings that a run would stumble over do not matter here.
Preview::Site FindSite(LocalHost& local) {
    const Settings settings = InspectSettings(local.host).settings;
    Preview::Site site{
        .folder = local.resolver.Local(local.host.GetAppPath() + std::string(SiteName)),
        .pickerFolder = PickerFolder(local.host.GetAppPath(), settings.coverPath),
        .howToBuild = fmt::format("quillon run --host {}", local.host.Folder().string()),
        .database = {},
        .databaseProblem = {}};
    try {
        site.database = local.resolver.Local(settings.Nirvis_CDJ_DB);
    } catch (const Failure& failure) {
        site.databaseProblem =
            fmt::format("The database {}: {}", settings.Nirvis_CDJ_DB, failure.what());
    }
    return site;
}

}  // namespace

int Serve(const ServeRequest& request, Console console) {
    LocalHost local(request.host, [](LogKind, const std::string&) {});
    const Preview::Site site = FindSite(local);
    Preview preview(site, local.clock);
    StopSignals signals;
    const HttpServer server([&preview](const WebRequest& asked) { return preview.Answer(asked); },
                            request.port);
    console.out << fmt::format("Serving {} at http://127.0.0.1:{}/\nCtrl-C ends it.\n",
                               OneLine(site.folder.string()), server.Port())
                << std::flush;
    signals.WaitWhile([&server] { return server.IsRunning(); });
    if (!server.IsRunning()) throw CommandError("the server has lost its port");
    return DoneStatus;
}

}  // namespace quillon
