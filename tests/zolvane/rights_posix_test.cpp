// Files and folders that the user may not write to are noticed before anything is changed.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "files/ordinary_user_posix.h"
#include "zolvane/zolvane_fixture.h"

namespace zolvane {
namespace {

class WithoutRights : public Zolvane {
 protected:
  // Everybody may write everywhere, but where a test forbids it.
  void SetUp() override {
    ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
    for (const auto& entry : std::filesystem::recursive_directory_iterator{Folder.Path()}) {
      ::chmod(entry.path().c_str(), entry.is_directory() ? 0777 : 0666);
    }
    ::chmod(Folder.Path().c_str(), 0777);
    journal_ = Journal();
  }

  std::string Journal() const { return Folder.Read("Zolvane.history/journal.jsonl"); }

  // The command ends with 2, says `reason`, and has recorded nothing.
  void ExpectRefused(const Words& words, const std::string& reason) {
    const auto file = Configuration();
    EXPECT_TRUE(HoldsForOrdinaryUser([&] {
      const auto run = Run(words);
      const bool isSaid = run.Errors.find(reason) != std::string::npos;
      EXPECT_EQ(run.Status, 2) << run.All();
      EXPECT_TRUE(isSaid) << run.All();
      return run.Status == 2 && isSaid;
    })) << words.back();
    EXPECT_EQ(Journal(), journal_) << words.back();
    EXPECT_EQ(Configuration(), file) << words.back();
  }

 private:
  std::string journal_;
};

TEST_F(WithoutRights, AReadOnlyConfigurationIsUnusableForWhatWritesIt) {
  Replace("STAGE,1612,", "STAGE,11612,");
  ::chmod(Folder.Path("Zolvane.ini").c_str(), 0444);
  const std::string backup = std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.bak";
  for (const Words& words :
       {Words{"--yes", "--despite", "findings", "import", backup}, Words{"--yes", "query"},
        Words{"--yes", "download"}, Words{"restore", "@last"}}) {
    ExpectRefused(words, "Zolvane.ini\" cannot be written; nothing was changed");
  }
}

TEST_F(WithoutRights, AReadOnlyConfigurationCanBeUploaded) {
  ::chmod(Folder.Path("Zolvane.ini").c_str(), 0444);
  EXPECT_TRUE(HoldsForOrdinaryUser([&] { return Run({"--yes", "upload"}).Status == 0; }));
}

TEST_F(WithoutRights, AHistoryWhoseObjectsCannotBeWrittenIsNoticedBeforeAnythingIsSent) {
  ::chmod(Folder.Path("Zolvane.history/objects").c_str(), 0555);
  ExpectRefused({"--yes", "upload"}, "the history cannot be written");
}

}  // namespace
}  // namespace zolvane
