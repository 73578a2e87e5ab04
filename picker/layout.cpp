#include "picker/layout.h"

#include <cstdint>
#include <string>

#include "platform/basic_text.h"
#include "platform/failure.h"
#include "run/settings.h"

namespace quillon {
namespace {

std::size_t Size(const char* key, std::int16_t size) {
    if (size < 1) {
        throw Failure(FailureNumber::InvalidProcedureCall, key + ('=' + std::to_string(size)));
    }
    return static_cast<std::size_t>(size);
}

}  // namespace

PickerLayout::PickerLayout(const Settings& settings)
    : wide_(Size("ImagesWide", settings.ImagesWide)), perPage_(0) {
    const std::size_t high = Size("ImagesHigh", settings.ImagesHigh);
    perPage_ = static_cast<std::size_t>(ToInteger(std::to_string(high * wide_)));
}

}  // namespace quillon
