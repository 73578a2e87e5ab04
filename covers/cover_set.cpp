#include "covers/cover_set.h"

#include <algorithm>
#include <utility>

#include "platform/basic_text.h"
#include "run/paths.h"
#include "run/steps.h"

namespace quillon {
namespace {

std::string WithoutApostrophes(std::string_view name) {
    return Replace(LowerCase(name), "'", "");
}

}  // namespace

void CoverSet::Add(std::string name, std::string path) {
    const std::size_t position = covers_.size();
    byName_.try_emplace(LowerCase(name), position);
    byNameWithoutApostrophes_.try_emplace(WithoutApostrophes(name), position);
    covers_.push_back({std::move(name), std::move(path)});
}

void CoverSet::NoteEmptyFolder(std::string_view folder) {
    emptyFolders_.push_back(AddBackslash(folder));
}

bool CoverSet::IsInEmptyFolder(std::string_view path) const {
    const std::string lower = LowerCase(Replace(path, "/", "\\"));
    return std::any_of(
        emptyFolders_.begin(), emptyFolders_.end(),
        [&lower](const std::string& folder) { return lower.starts_with(LowerCase(folder)); });
}

Cover* CoverSet::Find(const Index& index, const std::string& key) {
    const auto found = index.find(key);
    return found == index.end() ? nullptr : &covers_[found->second];
}

Cover* CoverSet::FindName(std::string_view name) {
    return Find(byName_, LowerCase(name));
}

Cover* CoverSet::FindWithoutApostrophes(std::string_view name) {
    return Find(byNameWithoutApostrophes_, WithoutApostrophes(name));
}

Cover* findExactRecord(Run& run, CoverSet& covers, std::string_view name) {
    Cover* found = nullptr;
    Steps steps(run, "Find Exact Record Error:");
    steps.Try([&] {
        // A criterion for record sets could not hold the apostrophe, and databases were filled by
        // that rule: with "Dont.jpg" first in the set, it is the cover of "Don't.jpg", too.
        if (name.find('\'') == std::string_view::npos) found = covers.FindName(name);
        if (found == nullptr) found = covers.FindWithoutApostrophes(name);
    });
    return found;
}

}  // namespace quillon
