#include "custody/history/canonical_json.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>

#include "text/json_text.h"
#include "text/text_encoding.h"

namespace zolvane {
namespace {

std::u16string Utf16Units(std::string_view text) {
  std::u16string units;
  for (std::size_t at = 0; at < text.size();) {
    const auto [character, length] = Utf8SequenceAt(text, at);
    if (character >= 0x10000) {
      units += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    } else {
      units += length == 0 ? u'\uFFFD' : static_cast<char16_t>(character);
    }
    at += std::max<std::size_t>(1, length);
  }
  return units;
}

// What lies deeper than any value of ours is left out, so that nobody's text exhausts the stack.
void Append(std::string& to, const Json& value, int depth = 0) {
  constexpr int deepest = 100;
  const char* before = "";
  if (depth > deepest) {
    to += "null";
  } else if (value.is_object()) {
    std::map<std::u16string, Json::const_iterator> members;
    for (auto member = value.begin(); member != value.end(); ++member) {
      members.emplace(Utf16Units(member.key()), member);
    }
    to += '{';
    for (const auto& [units, member] : members) {
      to.append(std::exchange(before, ",")).append(BareJsonText(member.key())).append(":");
      Append(to, *member, depth + 1);
    }
    to += '}';
  } else if (value.is_array()) {
    to += '[';
    for (const auto& item : value) {
      Append(to += std::exchange(before, ","), item, depth + 1);
    }
    to += ']';
  } else {
    to += BareJsonText(value);  // of a text and a whole number it is the canonical spelling
  }
}

}  // namespace

std::string CanonicalJson(const Json& value) {
  std::string text;
  Append(text, value);
  return text;
}

}  // namespace zolvane
