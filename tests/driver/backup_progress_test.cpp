#include <cstddef>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <utility>

#include "tests/driver/form_fixture.h"

namespace quillon {
namespace {

class BackupProgress : public FormFixture {
  protected:
    BackupProgress() {
        world.files.AddFile(R"(D:\Data\cdj.mdb)", std::string(600, 'r'));
        world.files.AddFile(R"(C:\Lists\a.pla)", std::string(300, 'p'));
        world.files.AddFile(R"(C:\Lists\Old\b.pla)", std::string(50, 'p'));
        world.files.AddFile(R"(C:\M3u\a.m3u)", std::string(50, 'm'));
        world.window.onEvents = [this](const FormState& state) {
            if (state.aItem.starts_with("Making Backup"))
                seen.emplace(state.progress.done, state.progress.total);
            parts.insert(state.progress.Part());
        };
    }

    using Seen = std::pair<std::size_t, std::size_t>;
    std::set<Seen> seen;
    std::set<double> parts;
};

TEST_F(BackupProgress, CountsTheBytesOfAllThatIsCopied) {
    host.Set("Reconcile", "1");
    EXPECT_EQ(Load(), RunOutcome::Completed);
    // The first is shown before the sizes are known.
    EXPECT_EQ(seen, (std::set<Seen>{
                        {0, 0}, {0, 1000}, {600, 1000}, {900, 1000}, {950, 1000}, {1000, 1000}}));
}

TEST_F(BackupProgress, CountsWhatIsComparedWithTheLastCopyFirst) {
    host.Set("Reconcile", "1");
    host.Set("Keep", "30");
    EXPECT_EQ(Load(), RunOutcome::Completed);
    world.files.AddFile(R"(D:\Data\cdj.mdb)", std::string(600, 's'));
    world.clock.now.days += 1;
    parts.clear();
    EXPECT_EQ(Load(), RunOutcome::Completed);
    // All is read in the first half; in the second one the database alone is copied.
    EXPECT_TRUE(parts.contains(0.3) && parts.contains(0.5) && parts.contains(1)) << parts.size();
}

TEST_F(BackupProgress, IsTheFirstShareOfAModesBar) {
    host.Set("MakeRemote", "1");
    EXPECT_EQ(Load(), RunOutcome::Completed);
    EXPECT_TRUE(parts.contains(0.27)) << "900 of 1000 bytes, in the first three tenths";
    EXPECT_FALSE(parts.contains(0.9));
}

}  // namespace
}  // namespace quillon
