#include "app/checks/tag_renames_check.h"

#include <fmt/format.h>
#include <string>

#include "app/removed_music.h"
#include "app/silent_host.h"
#include "app/text/display_text.h"
#include "driver/library_folders.h"
#include "driver/modes.h"
#include "id3/verify_tags.h"
#include "platform/failure.h"
#include "platform/no_window.h"
#include "run/excluded_artists.h"
#include "run/run.h"
#include "taglib/tag_library.h"

namespace quillon {
namespace {

bool ComparesTags(const Settings& settings) {
    return WalksLibrary(settings) && settings.ID3Reconcile && !settings.LibraryRoot.empty();
}

/// What would be done, as "rename 12 files after their tags and move 3 duplicates to Removed".
std::string Deeds(const TagChanges& changes, bool keepsRemoved) {
    std::string text;
    if (changes.renames > 0) {
        text = fmt::format("rename {} after {}", CountText(changes.renames, "file"),
                           changes.renames == 1 ? "its tag" : "their tags");
    }
    if (changes.removals > 0) {
        const std::string duplicates = CountText(changes.removals, "duplicate");
        text += text.empty() ? "" : " and ";
        text += keepsRemoved ? fmt::format("move {} to Removed", duplicates)
                             : fmt::format("delete {} for good", duplicates);
    }
    return text;
}

std::string BrakeText(const TagChanges& changes, Host& host) {
    const SafetyLimits limits = ReadSafetyLimits(host);
    const auto most = static_cast<std::size_t>(limits.MaxRemovedFiles);
    if (!limits.Brake || changes.removals <= most) return "";
    return fmt::format(
        ". More duplicates than MaxRemovedFiles={} are only removed with --allow-removals; "
        "otherwise none is",
        most);
}

}  // namespace

void CheckTagRenames(LocalHost& local, const Settings& settings, Findings& findings) try {
    if (!ComparesTags(settings)) return;
    SilentHost host(local.host);
    NoWindow window;
    Run run(host, local.files, local.clock, window);
    run.settings = settings;
    TagLibrary tags;
    run.tagFormats = &tags;
    run.modern = ReadModernMusic(host);
    run.LibraryFolders = BuildLibraryFolders(local.files, settings);
    ReadExcludeList(run);
    const TagChanges changes = CountTagChanges(run);
    const std::string deeds = Deeds(changes, ReadRemovedMusicSetting(local.host).keep);
    if (deeds.empty()) return;
    findings.Caution(
        fmt::format("ID3Reconcile is on: the next run would {}{}. If that is not "
                    "meant, set ID3Reconcile=0",
                    deeds, BrakeText(changes, local.host)));
} catch (const Failure& failure) {
    findings.Caution(fmt::format(
        "What the comparison of tags would rename cannot be determined: {}", failure.what()));
}

}  // namespace quillon
