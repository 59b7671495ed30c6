#include "windows/host/noted_session.h"

#include <nlohmann/json.hpp>

namespace zolvane {

Texts NotedSession::Boxes() const {
  Texts texts;
  std::istringstream lines{trace_.str()};
  for (std::string line; std::getline(lines, line);) {
    const auto event = nlohmann::json::parse(line);
    if (event.at("event") == "message_box") {
      texts.push_back(event.at("text").get<std::string>());
    }
  }
  return texts;
}

}  // namespace zolvane
