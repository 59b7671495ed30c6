// Somebody else changes the configuration while a command is at work: what he wrote stays, and nothing is
// called done that is not.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "custody/support/laboratory.h"

namespace zolvane {
namespace {

class Meanwhile : public testing::Test {
 protected:
  void SetUp() override {
    Disk.Put(labFile, Exchanged(LabConfiguration(), "STAGE,1612,", "STAGE,11612,"));
    Instrument = std::make_shared<LabInstrument>(LabMemory::Saved(ScriptOf(LabConfiguration())));
    LabProgram upload;
    ASSERT_EQ(upload.Run(Disk, Instrument, {"--yes", "upload"}), 0) << upload.All();
  }

  // As soon as the instrument takes such a line, once.
  void EditAt(std::string_view lineStart) {
    Instrument->Took = [this, lineStart](const std::string& line) {
      if (line.starts_with(lineStart) && Edited.empty()) {
        Edited = Exchanged(Disk.Read(labFile).Bytes, "MountHeight=164.35", "MountHeight=160.25");
        Disk.Put(labFile, Edited);
      }
    };
  }

  void ExpectEditorsValue() {
    EXPECT_FALSE(Edited.empty());
    EXPECT_NE(Disk.Read(labFile).Bytes.find("MountHeight=160.25"), std::string::npos);
  }

  MemoryDisk Disk;
  std::shared_ptr<LabInstrument> Instrument;
  LabProgram Program;
  std::string Edited;
};

TEST_F(Meanwhile, AnUploadThatFindsAnotherFileInTheEndIsNotCalledDone) {
  EditAt("SET_CALIBRATION SAVE");
  EXPECT_EQ(Program.Run(Disk, Instrument, {"--yes", "upload"}), 1) << Program.All();
  EXPECT_EQ(Program.All().find("done"), std::string::npos) << Program.All();
  ExpectEditorsValue();
}

TEST_F(Meanwhile, WhatAnEditorSavesDuringAnUploadIsNoPartOfIt) {
  for (const auto* way : {"undo", "resume"}) {
    SCOPED_TRACE(way);
    Edited.clear();
    Disk.Put(labFile, Exchanged(LabConfiguration(), "STAGE,1612,", "STAGE,11613,"));
    EditAt("SET_CALIBRATION SAVE");
    LabProgram upload;
    ASSERT_EQ(upload.Run(Disk, Instrument, {"--yes", "upload"}), 1) << upload.All();
    LabProgram next;
    EXPECT_EQ(next.Run(Disk, Instrument, {way}), 0) << next.All();
    ExpectEditorsValue();
    EXPECT_NE(next.All().find("\"outside\""), std::string::npos) << next.All();
  }
}

TEST_F(Meanwhile, ARestoreDoesNotOverwriteWhatAnEditorHasJustSaved) {
  Disk.Put(labFile, LabConfiguration());
  EditAt("STATUS_STAGE");
  EXPECT_EQ(Program.Run(Disk, Instrument, {"--instrument", "restore", "@2"}), 1) << Program.All();
  EXPECT_NE(Program.Errors.str().find("was changed by another program meanwhile"), std::string::npos)
      << Program.All();
  ExpectEditorsValue();
}

TEST_F(Meanwhile, ADownloadKeepsWhatAnEditorHasJustSaved) {
  Instrument->Store("STAGE1_Y", "2222");
  Instrument->Store("NEST8_STAGE_X", "33333");
  EditAt("GET_CALIBRATION STAGE1_Y");
  EXPECT_EQ(Program.Run(Disk, Instrument, {"--yes", "download"}), 1) << Program.All();
  ExpectEditorsValue();
  const auto file = Disk.Read(labFile).Bytes;
  EXPECT_NE(file.find("STAGE,11612,2222,"), std::string::npos) << file;
}

}  // namespace
}  // namespace zolvane
