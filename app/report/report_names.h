#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

#include "app/report/report_content.h"

namespace quillon {

/// Artists and titles of albums and tracks as a database has them now. A table is read once, when
/// its first row is asked for. What cannot be read has no names.
class ReportNames {
  public:
    explicit ReportNames(std::filesystem::path database) : database_(std::move(database)) {}

    RowName Of(const std::string& table, std::int64_t id);

  private:
    using Names = std::unordered_map<std::int64_t, RowName>;

    Names Read(const std::string& table) const;

    std::filesystem::path database_;
    std::map<std::string, Names> tables_;
};

}  // namespace quillon
