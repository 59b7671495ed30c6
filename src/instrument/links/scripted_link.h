// Replies out of a JSON file:
//   { "default": "OK",
//     "replies": { "STATUS_STAGE": "ABC\r\n", "STATUS_MECH": ["SD", null] },
//     "stop_after": ["STATUS_STAGE"] }
// A command that matches a member of `replies` to the letter gets that text; of a list each use takes the
// next, and the last one stays. null makes the send fail. Any other command gets `default`; without one its
// send fails. After a command named in `stop_after` was answered, the stop flag is true.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "instrument/links/bench_link.h"

namespace zolvane {

using ScriptedReply = std::optional<std::string>;  // empty: the send fails

struct LinkScript {
  ScriptedReply Default;
  std::map<std::string, std::vector<ScriptedReply>> Replies;  // no list is empty
  std::set<std::string> StopAfter;
};

// Throws UsageError, naming the file and what is wrong in it.
LinkScript ReadLinkScript(const std::string& file);

class ScriptedLink final : public BenchLink {
 public:
  ScriptedLink(LinkScript script, const InterruptFlag& interrupt);

 private:
  std::optional<std::string> Exchange(const std::string& command, Delivery& /*delivery*/) override;
  ScriptedReply NextReply(const std::string& command);

  LinkScript script_;
  std::map<std::string, std::size_t> used_;
};

}  // namespace zolvane
