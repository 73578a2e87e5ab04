#include "database/cdjid.h"

#include <cstdint>
#include <memory>

#include "database/schema.h"
#include "platform/basic_text.h"
#include "platform/database.h"
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

std::optional<std::string> HighestCdjid(Run& run) {
    const std::unique_ptr<RecordSet> result = run.connection->Query(
        "SELECT Max(Albums.CDJID) AS MaxOfCDJID, Left([cdjid],Len([cdjid])-4) AS Expr1 "
        "FROM Albums GROUP BY Left([cdjid],Len([cdjid])-4) "
        "HAVING (((Left([cdjid],Len([cdjid])-4))='" +
        std::string(CdjidPrefix) + "'));");
    if (result->IsEmpty()) return std::nullopt;
    return result->Text("MaxOfCDJID");
}

}  // namespace

std::string CdjidSequence::GetNextCDJID(std::string_view album) {
    std::string next;
    Steps steps(run_, "GetNextCDJID Error:");
    steps.Concerning(std::string(album));
    steps.Try(0, [&] {
        if (!asked_) highest_ = HighestCdjid(run_);
        asked_ = true;
        next = Next();
    });
    return next;
}

std::string CdjidSequence::Next() {
    if (!highest_) return WithNumber(1);
    const std::string next = After(*highest_);
    // One above all others is nobody's.
    const bool isAbove = LowerCase(*highest_) < LowerCase(next);
    return isAbove || !IsInUse(next) ? next : LowestFree();
}

bool CdjidSequence::IsInUse(const std::string& cdjid) {
    if (!inUseKnown_) {
        const std::unique_ptr<RecordSet> albums =
            run_.connection->Query("SELECT CDJID FROM Albums");
        for (; !albums->IsEof(); albums->MoveNext())
            inUse_.insert(LowerCase(albums->Text("CDJID")));
        inUseKnown_ = true;
    }
    return inUse_.contains(LowerCase(cdjid));
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
    inUse_.insert(LowerCase(cdjid));
    // The maximum is one of texts: after 9999 has wrapped to 0000 it stays 9999.
    if (!highest_ || LowerCase(*highest_) < LowerCase(cdjid)) highest_ = cdjid;
}

std::string GetNextCDJID(Run& run) {
    return CdjidSequence(run).GetNextCDJID();
}

}  // namespace quillon
