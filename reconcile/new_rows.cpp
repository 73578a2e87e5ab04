#include "reconcile/new_rows.h"

#include <initializer_list>
#include <string_view>

#include "database/schema.h"

namespace quillon {
namespace {

constexpr std::int64_t Zero = 0, Unknown = -1;

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
    std::vector<FieldValue> fields{{"CDJID", album.cdjid},
                                   {"Title", album.title},
                                   {"Artist", album.artist},
                                   {"Player", OwnedPlayer},
                                   {"LocationValid", true},
                                   {"FrameOffset", Unknown},
                                   {"Frames", Zero},
                                   {"Group", Unknown},
                                   {"Tracks", std::int64_t{album.trackCount}},
                                   {"Minutes", Unknown},
                                   {"Seconds", Unknown},
                                   {"NeverPlay", false}};
    AddDates(fields, now);
    AddZeros(fields,
             {"Rating1", "Rating2", "Rating3", "Rating4", "TimesPlayed", "TimePlayed", "Position"});
    return fields;
}

std::vector<FieldValue> FieldsOf(DateTime now, const NewTrack& track) {
    std::vector<FieldValue> fields{{"CDJID", track.cdjid},
                                   {"Minutes", track.minutes},
                                   {"Seconds", track.seconds},
                                   {"Track", track.number},
                                   {"Title", track.title},
                                   {"SoundFile", track.soundFile},
                                   {"Notes", "Album: " + track.album},
                                   {"NeverPlay", false}};
    if (track.artist) fields.push_back({"Artist", *track.artist});
    AddDates(fields, now);
    AddZeros(fields, {"Frames", "Rating1", "Rating2", "Rating3", "Rating4", "TimesPlayed",
                      "TimePlayed", "Group"});
    return fields;
}

void AddRow(RecordSet& table, const std::vector<FieldValue>& fields) {
    table.AddNew();
    for (const FieldValue& field : fields)
        table.Set(field.name, field.value);
    table.Update();
}

}  // namespace quillon
