#include "database/cdjid.h"

#include <cstdint>
#include <memory>

#include "database/schema.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

constexpr std::size_t DigitCount = 4;

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
        next = highest_ ? After(*highest_) : std::string(CdjidPrefix) + "0001";
    });
    return next;
}

std::string CdjidSequence::After(const std::string& highest) {
    const std::string_view ending = Right(highest, DigitCount);
    if (!IsNumeric(ending)) {
        LogError(
            run_, LogSource,
            "Spinner Refresh detected album sequence number without a numeric ending " + highest);
        return std::string(CdjidPrefix) + "9001";
    }
    const int number = ToInteger(ending);
    const std::string digits = "0000" + std::to_string(number + 1);
    return std::string(CdjidPrefix) + std::string(Right(digits, DigitCount));
}

void CdjidSequence::Taken(const std::string& cdjid) {
    // The maximum is one of texts: after 9999 has wrapped to 0000 it stays 9999.
    if (!highest_ || LowerCase(*highest_) < LowerCase(cdjid)) highest_ = cdjid;
}

std::string GetNextCDJID(Run& run) {
    return CdjidSequence(run).GetNextCDJID();
}

}  // namespace quillon
