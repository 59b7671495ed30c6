#include "instrument/links/scripted_link.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "files/json_file.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

using nlohmann::json;

class ScriptReader {
 public:
  explicit ScriptReader(std::string file) : file_{std::move(file)} {}

  LinkScript Read(const json& document) {
    if (!document.is_object()) {
      Refuse("a link script is a JSON object");
    }
    for (const auto& [name, value] : document.items()) {
      ReadMember(name, value);
    }
    return std::move(script_);
  }

 private:
  [[noreturn]] void Refuse(std::string_view reason) const {
    throw UsageError{Joined(Printable(file_), ": ", reason)};
  }

  void ReadMember(const std::string& name, const json& value) {
    if (name == "default") {
      script_.Default = Reply(value, "\"default\"");
    } else if (name == "replies") {
      ReadReplies(value);
    } else if (name == "stop_after") {
      ReadStopAfter(value);
    } else {
      Refuse(Joined("unknown member ", Quoted(name),
                    R"(; a link script has "default", "replies" and "stop_after")"));
    }
  }

  ScriptedReply Reply(const json& value, std::string_view where) const {
    if (value.is_null()) {
      return std::nullopt;
    }
    if (!value.is_string()) {
      Refuse(Joined(where, " is neither a text nor null"));
    }
    return value.get<std::string>();
  }

  void ReadReplies(const json& replies) {
    if (!replies.is_object()) {
      Refuse("\"replies\" is not an object of commands and their replies");
    }
    for (const auto& [command, value] : replies.items()) {
      const auto where = Joined("the reply to ", Quoted(command));
      auto& list = script_.Replies[command];
      if (!value.is_array()) {
        list.push_back(Reply(value, where));
        continue;
      }
      if (value.empty()) {
        Refuse(Joined(where, " is an empty list"));
      }
      for (const auto& element : value) {
        list.push_back(Reply(element, where));
      }
    }
  }

  void ReadStopAfter(const json& commands) {
    if (!commands.is_array()) {
      Refuse("\"stop_after\" is not a list of commands");
    }
    for (const auto& command : commands) {
      if (!command.is_string()) {
        Refuse("\"stop_after\" holds something that is not a text");
      }
      script_.StopAfter.insert(command.get<std::string>());
    }
  }

  std::string file_;
  LinkScript script_;
};

}  // namespace

LinkScript ReadLinkScript(const std::string& file) {
  return ScriptReader{file}.Read(ReadJsonFile(file));
}

ScriptedLink::ScriptedLink(LinkScript script, const InterruptFlag& interrupt)
    : BenchLink{interrupt}, script_{std::move(script)} {}

std::optional<std::string> ScriptedLink::Exchange(const std::string& command, Delivery& /*delivery*/) {
  auto reply = NextReply(command);
  if (reply && script_.StopAfter.contains(command)) {
    RaiseStop();
  }
  return reply;
}

ScriptedReply ScriptedLink::NextReply(const std::string& command) {
  const auto entry = script_.Replies.find(command);
  if (entry == script_.Replies.end()) {
    return script_.Default;
  }
  const auto& list = entry->second;
  return list[std::min(used_[command]++, list.size() - 1)];
}

}  // namespace zolvane
