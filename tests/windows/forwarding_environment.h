// An environment that hands everything on but the creation of the settings-file service.
#pragma once

#include "host/environment.h"

namespace zolvane {

class ForwardingEnvironment : public Environment {
 public:
  // `inner` outlives this.
  explicit ForwardingEnvironment(Environment& inner) : inner_{inner} {}

  std::string ProgramFolder() override { return inner_.ProgramFolder(); }
  Status AppendBlankLine(const std::string& file) override { return inner_.AppendBlankLine(file); }
  void RunMessageLoopOnce() override { inner_.RunMessageLoopOnce(); }
  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    return inner_.ShowMessageBox(request);
  }
  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    return inner_.ShowFileDialogue(kind, dialogue);
  }

 protected:
  Environment& Inner() const { return inner_; }

 private:
  Environment& inner_;
};

}  // namespace zolvane
