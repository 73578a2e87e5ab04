#include "database/cdjid.h"

#include <cstddef>

#include "database/schema.h"
#include "library/library.h"
#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::size_t DigitCount = 4;
constexpr int HighestNumber = 9999;

std::string WithNumber(int number) {
    const std::string digits = "0000" + std::to_string(number);
    return std::string(CdjidPrefix) + std::string(Right(digits, DigitCount));
}

/// The highest one with the prefix, as the database sorts; of any player.
std::optional<std::string> HighestCdjid(Library& library) {
    const TextRules& rules = library.Rules();
    std::optional<std::string> highest;
    for (const AlbumRow& album : library.Albums()) {
        const std::string& cdjid = album.cdjid;
        const std::size_t prefix = cdjid.size() - Right(cdjid, DigitCount).size();
        if (album.isGone || !rules.AreEqual(std::string_view(cdjid).substr(0, prefix), CdjidPrefix))
            continue;
        if (!highest || rules.ComesBefore(*highest, cdjid)) highest = cdjid;
    }
    return highest;
}

}  // namespace

std::string CdjidSequence::GetNextCDJID(std::string_view album) {
    std::string next;
    Steps steps(run_, "GetNextCDJID Error:");
    steps.Concerning(std::string(album));
    steps.Try([&] {
        if (!asked_) highest_ = HighestCdjid(run_.TheLibrary());
        asked_ = true;
        next = Next();
    });
    return next;
}

std::string CdjidSequence::Next() {
    if (!highest_) return WithNumber(1);
    const std::string next = After(*highest_);
    // One above all others is free.
    const bool isAbove = LowerCase(*highest_) < LowerCase(next);
    return isAbove || !IsInUse(next) ? next : LowestFree();
}

bool CdjidSequence::IsInUse(const std::string& cdjid) {
    return taken_.contains(LowerCase(cdjid)) || !run_.TheLibrary().AlbumsWith(cdjid).empty();
}

std::string CdjidSequence::LowestFree() {
    for (; lowest_ <= HighestNumber; ++lowest_) {
        std::string cdjid = WithNumber(lowest_);
        if (!IsInUse(cdjid)) return cdjid;
    }
    throw Failure::Described(FailureNumber::Database, "All identifiers from " + WithNumber(0) +
                                                          " to " + WithNumber(HighestNumber) +
                                                          " are in use, so the album is left out");
}

std::string CdjidSequence::After(const std::string& highest) {
    const std::string_view ending = Right(highest, DigitCount);
    if (!IsNumeric(ending)) {
        LogError(
            run_, LogSource,
            "Spinner Refresh detected album sequence number without a numeric ending " + highest);
        return WithNumber(9001);
    }
    return WithNumber(ToInteger(ending) + 1);
}

void CdjidSequence::Taken(const std::string& cdjid) {
    taken_.insert(LowerCase(cdjid));
    // The maximum is one of texts: after 9999 has wrapped to 0000 it stays 9999.
    if (!highest_ || LowerCase(*highest_) < LowerCase(cdjid)) highest_ = cdjid;
}

std::string GetNextCDJID(Run& run) {
    return CdjidSequence(run).GetNextCDJID();
}

}  // namespace quillon
