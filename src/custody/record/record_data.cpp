#include "custody/record/record_data.h"

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>

#include "custody/values/values_json.h"
#include "text/json_text.h"

namespace zolvane {
namespace {

constexpr std::string_view format = "zolvane-record/1";
constexpr std::string_view base64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t base64Line = 100;

}  // namespace

// NOLINTBEGIN(misc-use-anonymous-namespace): found by argument-dependent lookup
static constexpr auto MembersOf(const RecordedState*) {
  return std::tuple{Member{"configuration", &RecordedState::Configuration, Presence::Always},
                    Member{"instrument", &RecordedState::Instrument}};
}

static constexpr auto MembersOf(const FoundState*) {
  return std::tuple{Member{"configuration", &FoundState::Configuration},
                    Member{"instrument", &FoundState::Instrument}};
}

static constexpr auto MembersOf(const RecordedOperation*) {
  return std::tuple{Member{"number", &RecordedOperation::Number, Presence::Always},
                    Member{"action", &RecordedOperation::Action, Presence::Always},
                    Member{"outcome", &RecordedOperation::Outcome, Presence::Always},
                    Member{"person", &RecordedOperation::Person, Presence::Always},
                    Member{"reason", &RecordedOperation::Reason},
                    Member{"time", &RecordedOperation::Time, Presence::Always},
                    Member{"found", &RecordedOperation::Found, Presence::Always}};
}

static constexpr auto MembersOf(const RecordContent*) {
  return std::tuple{Member{"person", &RecordContent::Person, Presence::Always},
                    Member{"reason", &RecordContent::Reason},
                    Member{"machine", &RecordContent::Machine, Presence::Always},
                    Member{"program", &RecordContent::Program, Presence::Always},
                    Member{"version", &RecordContent::Version, Presence::Always},
                    Member{"time", &RecordContent::Time, Presence::Always},
                    Member{"offset", &RecordContent::Offset, Presence::Always},
                    Member{"file", &RecordContent::File, Presence::Always},
                    Member{"link", &RecordContent::Link},
                    Member{"stage", &RecordContent::Instrument},
                    Member{"left", &RecordContent::Left, Presence::Always},
                    Member{"last", &RecordContent::Last},
                    Member{"findings", &RecordContent::Findings},
                    Member{"checkpoint", &RecordContent::Checkpoint}};
}
// NOLINTEND(misc-use-anonymous-namespace)

std::string DataOf(const RecordContent& content) {
  auto object = JsonOf(content);
  object["format"] = format;
  return BareJsonText(object);
}

std::optional<RecordContent> ContentIn(std::string_view data) {
  const auto object = ParsedJson(data);
  const bool isOurs = object.is_object() && object.value("format", Json()) == format;
  RecordContent content;
  return isOurs && Take(object, content) ? std::optional{std::move(content)} : std::nullopt;
}

std::string Base64Of(std::string_view bytes) {
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const auto group = bytes.substr(at, 3);
    std::uint32_t bits = 0;
    for (std::size_t byte = 0; byte < 3; ++byte) {
      bits = bits << 8U | (byte < group.size() ? static_cast<unsigned char>(group[byte]) : 0U);
    }
    for (std::size_t digit = 0; digit < 4; ++digit) {
      text += digit <= group.size() ? base64Digits[bits >> (18 - 6 * digit) & 63U] : '=';
    }
    if (text.size() % (base64Line + 1) == base64Line) {
      text += '\n';
    }
  }
  return text;
}

std::string BytesOfBase64(std::string_view text) {
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char sign : text) {
    const auto digit = base64Digits.find(sign);
    if (sign == '\n') {
      continue;
    }
    if (digit == std::string_view::npos) {
      break;
    }
    bits = bits << 6U | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes += static_cast<char>(bits >> static_cast<unsigned>(count) & 255U);
    }
  }
  return bytes;
}

}  // namespace zolvane
