// No instrument: every send fails.
#pragma once

#include "instrument/links/bench_link.h"

namespace zolvane {

class NoLink final : public BenchLink {
 public:
  using BenchLink::BenchLink;

 private:
  std::optional<std::string> Exchange(const std::string& /*command*/, Delivery& delivery) override {
    delivery.HasLeft = false;
    return std::nullopt;
  }
};

}  // namespace zolvane
