#include "jet/verify/check_pages.h"

#include <algorithm>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/storage/index/index_key.h"
#include "jet/verify/findings.h"
#include "jet/verify/index_check.h"
#include "jet/verify/pages.h"
#include "jet/verify/shape.h"
#include "jet/verify/table_data.h"
#include "jet/verify/usage_map.h"

namespace jet::verify {

using storage::PageNumber;

namespace {

constexpr PageNumber CatalogPage = 2;
constexpr const char* CatalogName = "MSysObjects";

/// A table as the catalog names it.
struct CatalogEntry {
    std::string name;
    PageNumber definition = 0;
    bool system = false;
};

class DatabaseCheck {
  public:
    DatabaseCheck(storage::PageStore& store, CheckReport& report)
        : findings_(report), pages_(store, findings_), maps_(pages_, findings_) {}

    void Run() {
        findings_.Counts().pages = pages_.Count();
        pages_.Claim(0, PageUse::Header, "header");
        const std::vector<PageNumber> free = ReadGlobalMap();
        for (const CatalogEntry& table : CheckCatalog())
            CheckTable(table);
        // Whatever is written next may take such a page.
        findings_.Concern("");
        for (const PageNumber page : free)
            if (pages_.UseOf(page) != PageUse::None)
                findings_.Fault("global map",
                                "page " + std::to_string(page) + " is in use and listed as free");
    }

  private:
    std::vector<PageNumber> ReadGlobalMap() {
        pages_.Claim(1, PageUse::GlobalMap, "global map");
        return maps_.Read({1, 0}, "global map", true);
    }

    /// Checks the catalog, which is a table itself; returns all others.
    std::vector<CatalogEntry> CheckCatalog() {
        std::vector<CatalogEntry> tables;
        findings_.Concern(CatalogName);
        const auto shape = ReadShape(pages_, findings_, CatalogPage, CatalogName);
        if (!shape) return tables;
        TableData data(*shape, pages_, maps_, findings_);
        CheckContent(*shape, data, false);

        const Column* id = shape->FindColumn("Id");
        const Column* name = shape->FindColumn("Name");
        const Column* type = shape->FindColumn("Type");
        const Column* flags = shape->FindColumn("Flags");
        if (id == nullptr || name == nullptr || type == nullptr || flags == nullptr) {
            findings_.Fault("catalog", "a column is missing");
            return tables;
        }
        for (const storage::RowId row : data.Rows()) {
            const RowBytes found = data.Find(row);
            const RowView view(found.bytes, *shape);
            if (!view.Fault().empty()) continue;
            const auto number = [&](const Column& column) {
                const auto value = data.ReadValue(view, column);
                const auto* content = value ? std::get_if<std::int64_t>(&*value) : nullptr;
                return content == nullptr ? std::int64_t{0} : *content;
            };
            constexpr std::int64_t LocalTable = 1, SystemFlags = 0x80000002;
            if (number(*type) != LocalTable || number(*id) == CatalogPage) continue;
            CatalogEntry& entry = tables.emplace_back();
            const auto text = data.ReadValue(view, *name);
            if (const auto* content = text ? std::get_if<std::string>(&*text) : nullptr)
                entry.name = *content;
            entry.definition = static_cast<PageNumber>(number(*id));
            entry.system = (number(*flags) & SystemFlags) != 0;
        }
        return tables;
    }

    void CheckTable(const CatalogEntry& table) {
        findings_.Concern(table.name);
        const auto shape = ReadShape(pages_, findings_, table.definition, table.name);
        if (!shape) return;
        TableData data(*shape, pages_, maps_, findings_);
        CheckContent(*shape, data, !table.system);
    }

    void CheckContent(const Shape& shape, TableData& data, bool countIsExact) {
        ++findings_.Counts().tables;
        data.Check(countIsExact);
        for (std::size_t i = 0; i < shape.indexes.size(); ++i)
            IndexCheck(shape, i, data, pages_, maps_, findings_).Run();
    }

    Findings findings_;
    Pages pages_;
    UsageMaps maps_;
};

}  // namespace

CheckReport CheckPages(storage::PageStore& store) {
    CheckReport report;
    DatabaseCheck(store, report).Run();
    return report;
}

}  // namespace jet::verify

namespace jet {

bool NeededTables::Include(std::string_view table) const {
    if (!names) return true;
    return std::ranges::any_of(*names, [table](const std::string& name) {
        return storage::CompareTexts(name, table) == 0;
    });
}

bool NeededTables::AreConcernedBy(const CheckFault& fault) const {
    return fault.table.empty() || fault.table == verify::CatalogName || Include(fault.table);
}

}  // namespace jet
