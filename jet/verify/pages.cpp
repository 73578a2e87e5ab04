#include "jet/verify/pages.h"

namespace jet::verify {

using storage::PageNumber;

Pages::Pages(storage::PageStore& store, Findings& findings)
    : store_(store), findings_(findings), uses_(store.PageCount(), PageUse::None) {}

std::shared_ptr<const storage::Page> Pages::Read(PageNumber page) {
    return store_.Read(page);
}

bool Pages::Claim(PageNumber page, PageUse use, const std::string& where) {
    if (page >= Count()) {
        findings_.Fault(where, "page " + std::to_string(page) + " lies outside the file");
        return false;
    }
    const bool shared = use == PageUse::MapRows &&
                        (uses_[page] == PageUse::MapRows || uses_[page] == PageUse::GlobalMap);
    if (shared) return true;
    if (uses_[page] != PageUse::None) {
        findings_.Fault(where, "page " + std::to_string(page) + " is used twice");
        return false;
    }
    uses_[page] = use;
    return true;
}

}  // namespace jet::verify
