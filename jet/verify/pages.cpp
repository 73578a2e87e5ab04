#include "jet/verify/pages.h"

namespace jet::verify {

using storage::PageNumber;

Pages::Pages(storage::PageStore& store, Findings& findings)
    : store_(store), findings_(findings), uses_(store.PageCount()) {}

std::shared_ptr<const storage::Page> Pages::Read(PageNumber page) {
    return store_.Read(page);
}

bool Pages::Claim(PageNumber page, PageUse use, const std::string& where) {
    if (page >= Count()) {
        findings_.Fault(where, "page " + std::to_string(page) + " lies outside the file");
        return false;
    }
    Use& known = uses_[page];
    const bool shared = use == PageUse::MapRows &&
                        (known.kind == PageUse::MapRows || known.kind == PageUse::GlobalMap);
    if (shared) return true;
    if (known.kind != PageUse::None) {
        const std::string what = "page " + std::to_string(page) + " is used twice";
        findings_.Fault(where, what);
        if (const std::string& other = TableOf(page); other != findings_.Table())
            findings_.FaultOf(other, where, what);
        return false;
    }
    if (tables_.back() != findings_.Table()) tables_.push_back(findings_.Table());
    known = {use, static_cast<std::uint32_t>(tables_.size() - 1)};
    return true;
}

}  // namespace jet::verify
