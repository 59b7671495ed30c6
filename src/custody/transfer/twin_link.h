// A twin of an instrument, for rehearsals: holds what the instrument answered, and stores what it is sent.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "custody/values/values.h"
#include "instrument/links/bench_link.h"

namespace zolvane {

class TwinLink final : public BenchLink {
 public:
  // `known` is what the instrument answered to questions for its keys. Other questions go to the original once; it is
  // never sent a command that changes anything. Without an original (null) the twin guesses.
  TwinLink(const Values& known, std::shared_ptr<BenchLink> original, const InterruptFlag& interrupt);

  // The keys whose values it was asked for, in that order.
  const std::vector<std::string>& AskedFor() const { return asked_; }

  // Where it had to guess, a sentence for each.
  const std::vector<std::string>& Guesses() const { return guesses_; }

 private:
  std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) override;
  std::optional<std::string> Ask(const std::string& command, Delivery& delivery);
  void Store(const std::string& key, const std::string& text);

  std::map<std::string, std::string, std::less<>> replies_;  // to questions, by the command
  std::shared_ptr<BenchLink> original_;
  std::vector<std::string> asked_;
  std::vector<std::string> guesses_;
};

}  // namespace zolvane
