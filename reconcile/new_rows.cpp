#include "reconcile/new_rows.h"

#include <initializer_list>
#include <string_view>

#include "database/schema.h"

namespace quillon {
namespace {

constexpr std::int64_t Zero = 0, Unknown = -1;

/// No row has more. A list of them in one expression would be copied, text by text.
constexpr std::size_t MostFields = 24;

void AddZeros(std::vector<FieldValue>& fields, std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names)
        fields.push_back({name, Zero});
}

void AddDates(std::vector<FieldValue>& fields, DateTime added) {
    fields.push_back({"DateAdded", added});
    fields.push_back({"DateReleased", DateTime{}});
    fields.push_back({"DateLastPlayed", DateTime{}});
}

}  // namespace

std::vector<FieldValue> FieldsOf(DateTime now, const NewAlbum& album) {
    std::vector<FieldValue> fields;
    fields.reserve(MostFields);
    fields.push_back({"CDJID", album.cdjid});
    fields.push_back({"Title", album.title});
    fields.push_back({"Artist", album.artist});
    fields.push_back({"Player", OwnedPlayer});
    fields.push_back({"LocationValid", true});
    fields.push_back({"FrameOffset", Unknown});
    fields.push_back({"Frames", Zero});
    fields.push_back({"Group", Unknown});
    fields.push_back({"Tracks", std::int64_t{album.trackCount}});
    fields.push_back({"Minutes", Unknown});
    fields.push_back({"Seconds", Unknown});
    fields.push_back({"NeverPlay", false});
    AddDates(fields, now);
    AddZeros(fields,
             {"Rating1", "Rating2", "Rating3", "Rating4", "TimesPlayed", "TimePlayed", "Position"});
    return fields;
}

std::vector<FieldValue> FieldsOf(DateTime now, const NewTrack& track) {
    std::vector<FieldValue> fields;
    fields.reserve(MostFields);
    fields.push_back({"CDJID", track.cdjid});
    fields.push_back({"Minutes", track.minutes});
    fields.push_back({"Seconds", track.seconds});
    fields.push_back({"Track", track.number});
    fields.push_back({"Title", track.title});
    fields.push_back({"SoundFile", track.soundFile});
    fields.push_back({"Notes", "Album: " + track.album});
    fields.push_back({"NeverPlay", false});
    if (track.artist) fields.push_back({"Artist", *track.artist});
    AddDates(fields, now);
    AddZeros(fields, {"Frames", "Rating1", "Rating2", "Rating3", "Rating4", "TimesPlayed",
                      "TimePlayed", "Group"});
    return fields;
}

}  // namespace quillon
