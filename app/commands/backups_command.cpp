#include "app/commands/backups_command.h"

#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <ostream>
#include <string_view>
#include <vector>

#include "app/local_host.h"
#include "app/size_text.h"
#include "app/table_printer.h"
#include "app/text/display_text.h"
#include "app/value_text.h"
#include "backups/kept_backups.h"
#include "backups/restore_backup.h"
#include "driver/settings_reader.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr double SecondsADay = 24 * 60 * 60;

std::int64_t SecondsBetween(DateTime made, DateTime now) {
    const double days = now.days - made.days;
    return days <= 0 ? 0 : std::llround(days * SecondsADay);
}

std::uint64_t SizeOf(Files& files, const BackupMoment& backup) {
    std::uint64_t size = 0;
    for (const BackupCopy& copy : backup.copies)
        size += SizeOfBackup(files, copy);
    return size;
}

/// "database, playlists", those in brackets that an earlier backup has.
std::string PartsText(const BackupMoment& backup) {
    std::string text;
    const auto add = [&text](const std::string& part) {
        text += (text.empty() ? "" : ", ") + part;
    };
    for (const BackupCopy& copy : backup.copies)
        add(NameOfPart(copy.original.part));
    for (const BackupCopy& copy : backup.shared)
        add('(' + NameOfPart(copy.original.part) + ')');
    return backup.isWhole ? text : text + ", something is missing";
}

void PrintJson(const BackupMoment& backup, std::uint64_t size, DateTime now, std::ostream& out) {
    const auto list = [](const std::vector<BackupCopy>& copies) {
        std::string items;
        for (const BackupCopy& copy : copies) {
            items += fmt::format("{}{{\"part\":{},\"path\":{}}}", items.empty() ? "" : ",",
                                 JsonString(NameOfPart(copy.original.part)), JsonString(copy.path));
        }
        return '[' + items + ']';
    };
    out << fmt::format(
        "{{\"stamp\":{},\"time\":{},\"ageSeconds\":{},\"bytes\":{},\"whole\":{},"
        "\"copies\":{},\"sameAsBefore\":{}}}\n",
        JsonString(backup.name), JsonString(Replace(SortableDateTimeText(backup.made), " ", "T")),
        SecondsBetween(backup.made, now), size, backup.isWhole, list(backup.copies),
        list(backup.shared));
}

void PrintTable(Files& files, const std::vector<BackupMoment>& backups, DateTime now,
                std::ostream& out) {
    TablePrinter table(out, {"Stamp", "Made", "Age", "Size", "Holds"}, {.countsRows = false});
    std::uint64_t sum = 0;
    for (const BackupMoment& backup : backups) {
        const std::uint64_t size = SizeOf(files, backup);
        sum += size;
        table.AddRow({{backup.name},
                      {SortableDateTimeText(backup.made)},
                      {AgeText(backup.made, now)},
                      {SizeText(size)},
                      {PartsText(backup)}});
    }
    table.Finish();
    out << fmt::format("{} backup{}, {}\n", backups.size(), backups.size() == 1 ? "" : "s",
                       SizeText(sum));
}

void TellKeeping(LocalHost& local, const Settings& settings, std::ostream& out) {
    const BackupKeeping keeping = ReadBackupKeeping(local.host);
    if (keeping.newest) {
        out << fmt::format(
            "The last {} stay, then the last one of each month for a year. What has not changed is "
            "not copied again:\nparts in brackets are those of an earlier backup.\n",
            *keeping.newest);
    } else {
        out << "All of them stay. Keep=30 in section [Backups] of host.ini keeps the last 30, then "
               "one a month for a year.\n";
    }
    const std::string unfinished = UnfinishedRestore(local.files, settings.Nirvis_CDJ_DB);
    if (!unfinished.empty()) {
        out << fmt::format(
            "A restore was cut short. 'quillon restore {} --host {}' completes it.\n", unfinished,
            OneLine(local.host.Folder().string()));
    }
}

}  // namespace

std::string AgeText(DateTime made, DateTime now) {
    const std::int64_t seconds = SecondsBetween(made, now);
    const auto counted = [](std::int64_t count, std::string_view unit) {
        return fmt::format("{} {}{}", count, unit, count == 1 ? "" : "s");
    };
    if (seconds < 60) return "just now";
    if (seconds < 60 * 60) return counted(seconds / 60, "minute");
    if (seconds < 48 * 60 * 60) return counted(seconds / (60 * 60), "hour");
    const std::int64_t days = seconds / (24 * 60 * 60);
    return days < 100 ? counted(days, "day") : counted(days * 12 / 365, "month");
}

std::string NameOfPart(BackupPart part) {
    switch (part) {
        case BackupPart::Database:
            return "database";
        case BackupPart::Snapshot:
            return "snapshot";
        case BackupPart::Missing:
            return "missing music";
        case BackupPart::PlayListPath:
            return "pla playlists";
        case BackupPart::PlayListPath2:
            break;
    }
    return "m3u playlists";
}

int ListBackups(const BackupsRequest& request, Console console) {
    LocalHost local(request.host, [](LogKind, const std::string&) {});
    const Settings settings = InspectSettings(local.host).settings;
    const DateTime now = local.clock.Now();
    const std::vector<BackupMoment> backups = FindBackups(local.files, settings, now);
    if (request.json) {
        for (const BackupMoment& backup : backups)
            PrintJson(backup, SizeOf(local.files, backup), now, console.out);
        return DoneStatus;
    }
    if (backups.empty()) {
        console.out << "There are no backups yet. A run makes one before it changes anything.\n";
    } else {
        PrintTable(local.files, backups, now, console.out);
    }
    TellKeeping(local, settings, console.out);
    return DoneStatus;
}

}  // namespace quillon
