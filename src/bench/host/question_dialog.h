// A host's own dialogue that keeps what it is to ask until it is shown.
#pragma once

#include "bench/job/box_answers.h"
#include "host/dialogues.h"

namespace zolvane {

class QuestionDialog : public HostDialog {
 public:
  Status SetStyle(std::int16_t style) final {
    question_.Style = style;
    return Status::Success();
  }

  Status SetTitle(const std::string& title) final {
    question_.Title = title;
    return Status::Success();
  }

  Status SetMessage(const std::string& message) final {
    question_.Text = message;
    return Status::Success();
  }

 protected:
  const Question& Asked() const { return question_; }

 private:
  Question question_;
};

}  // namespace zolvane
