#include "custody/record/record_data.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

#include "text/text_encoding.h"

namespace zolvane {
namespace {

using nlohmann::json;

constexpr std::string_view format = "zolvane-record/1";
constexpr std::string_view base64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t base64Line = 100;

// ---- Texts: each character of the JSON is a byte, so that every text comes back as it was ----

std::string CharactersOf(std::string_view bytes) {
  std::string characters;
  for (const char byte : bytes) {
    const auto number = static_cast<unsigned char>(byte);
    if (number < 0x80) {
      characters += byte;
    } else {
      characters += static_cast<char>(0xC0U | number >> 6U);
      characters += static_cast<char>(0x80U | (number & 0x3FU));
    }
  }
  return characters;
}

std::optional<std::string> BytesIn(const json& value) {
  if (!value.is_string()) {
    return std::nullopt;
  }
  const auto& characters = value.get_ref<const std::string&>();
  std::string bytes;
  for (std::size_t at = 0; at < characters.size();) {
    const auto sequence = Utf8SequenceAt(characters, at);
    if (sequence.Length == 0 || sequence.Character > 0xFF) {
      return std::nullopt;
    }
    bytes += static_cast<char>(sequence.Character);
    at += sequence.Length;
  }
  return bytes;
}

// ---- Members, described once for both ways ----

json JsonOf(const std::string& text) {
  return CharactersOf(text);
}
bool Take(const json& from, std::string& text) {
  auto bytes = BytesIn(from);
  text = std::move(bytes).value_or("");
  return bytes.has_value();
}

json JsonOf(bool flag) {
  return flag;
}
bool Take(const json& from, bool& flag) {
  flag = from.is_boolean() && from.get<bool>();
  return from.is_boolean();
}

template <std::integral Whole>
json JsonOf(Whole number) {
  return static_cast<std::int64_t>(number);
}
template <std::integral Whole>
bool Take(const json& from, Whole& number) {
  if (!from.is_number_integer() || !std::in_range<Whole>(from.get<std::int64_t>())) {
    return false;
  }
  number = static_cast<Whole>(from.get<std::int64_t>());
  return true;
}

json JsonOf(Grade grade) {
  return std::string{NameOf(grade)};
}
bool Take(const json& from, Grade& grade) {
  for (const auto each : {Grade::Error, Grade::Warning, Grade::Note}) {
    if (from == JsonOf(each)) {
      grade = each;
      return true;
    }
  }
  return false;
}

json JsonOf(const Values& values);
bool Take(const json& from, Values& values);

template <class Part>
json JsonOf(const std::optional<Part>& part);
template <class Part>
bool Take(const json& from, std::optional<Part>& part);

template <class Part>
json JsonOf(const std::vector<Part>& parts);
template <class Part>
bool Take(const json& from, std::vector<Part>& parts);

// Calls `visit` with the name and the member of each part of a struct.
template <class Visit>
void ForEachMember(Value& value, Visit visit) {
  visit("name", value.Name);
  visit("text", value.Text);
  visit("answered", value.WasAnswered);
}

template <class Visit>
void ForEachMember(Finding& finding, Visit visit) {
  visit("code", finding.Code);
  visit("grade", finding.Grade);
  visit("file", finding.File);
  visit("line", finding.Line);
  visit("text", finding.Text);
  visit("advice", finding.Advice);
}

template <class Visit>
void ForEachMember(RecordedState& state, Visit visit) {
  visit("configuration", state.Configuration);
  visit("instrument", state.Instrument);
}

template <class Visit>
void ForEachMember(RecordedOperation& operation, Visit visit) {
  visit("number", operation.Number);
  visit("action", operation.Action);
  visit("outcome", operation.Outcome);
  visit("person", operation.Person);
  visit("reason", operation.Reason);
  visit("time", operation.Time);
  visit("found", operation.Found);
}

template <class Visit>
void ForEachMember(RecordContent& content, Visit visit) {
  visit("person", content.Person);
  visit("reason", content.Reason);
  visit("machine", content.Machine);
  visit("program", content.Program);
  visit("version", content.Version);
  visit("time", content.Time);
  visit("offset", content.Offset);
  visit("file", content.File);
  visit("link", content.Link);
  visit("stage", content.Instrument);
  visit("left", content.Left);
  visit("last", content.Last);
  visit("findings", content.Findings);
  visit("checkpoint", content.Checkpoint);
}

template <class Struct>
concept HasMembers = requires(Struct& part) { ForEachMember(part, [](const char*, auto&) {}); };

template <HasMembers Struct>
json JsonOf(const Struct& part) {
  auto object = json::object();
  auto copy = part;
  ForEachMember(copy,
                [&object](const char* name, auto& member) { object[name] = JsonOf(std::as_const(member)); });
  return object;
}

template <HasMembers Struct>
bool Take(const json& from, Struct& part) {
  bool isWhole = from.is_object();
  ForEachMember(part, [&](const char* name, auto& member) {
    isWhole = isWhole && from.contains(name) && Take(from[name], member);
  });
  return isWhole;
}

template <class Part>
json JsonOf(const std::optional<Part>& part) {
  return part ? JsonOf(*part) : json{};
}
template <class Part>
bool Take(const json& from, std::optional<Part>& part) {
  if (from.is_null()) {
    part.reset();
    return true;
  }
  return Take(from, part.emplace());
}

template <class Part>
json JsonOf(const std::vector<Part>& parts) {
  auto list = json::array();
  for (const auto& part : parts) {
    list.push_back(JsonOf(part));
  }
  return list;
}
template <class Part>
bool Take(const json& from, std::vector<Part>& parts) {
  bool isWhole = from.is_array();
  for (std::size_t at = 0; isWhole && at < from.size(); ++at) {
    isWhole = Take(from[at], parts.emplace_back());
  }
  return isWhole;
}

json JsonOf(const Values& values) {
  return JsonOf(values.InOrder());
}
bool Take(const json& from, Values& values) {
  std::vector<Value> list;
  const bool isWhole = Take(from, list);
  for (auto& value : list) {
    values.Add(std::move(value));
  }
  return isWhole;
}

}  // namespace

std::string DataOf(const RecordContent& content) {
  auto object = JsonOf(content);
  object["format"] = format;
  return object.dump();
}

std::optional<RecordContent> ContentIn(std::string_view data) {
  const auto object = json::parse(data, nullptr, false);
  RecordContent content;
  if (!object.is_object() || object.value("format", json{}) != format || !Take(object, content)) {
    return std::nullopt;
  }
  return content;
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
