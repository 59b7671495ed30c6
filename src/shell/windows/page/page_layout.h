// Where the page's controls stand: one row each, in the order in which Tab visits them. Lengths are in
// dialogue units (a quarter of the font's average width across, an eighth of its height down), so captions
// fit in every font and at every scale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "page/page_controls.h"

namespace zolvane {

enum class ControlKind : std::uint8_t { Title, GroupBox, Label, Value, List, CheckBox, Button };

constexpr bool TakesFocus(ControlKind kind) {
  return kind == ControlKind::List || kind == ControlKind::CheckBox || kind == ControlKind::Button;
}

struct Area {
  int Left;
  int Top;
  int Width;
  int Height;
};

struct ControlRow {
  ControlKind Kind;
  int Id;  // its number among the children of the frame container
  std::string_view Caption;
  char AccessKey;  // the letter of the caption that reaches it together with Alt; 0: none
  Area Place;
  bool StartsGroup;  // of controls that the arrow keys walk through
};

// The numbers of the controls: the first of each kind. The others follow in the order of
// the rows in page_controls.h.
inline constexpr int titleId = 100;
inline constexpr int settingsFrameId = 101;
inline constexpr int calibrationFrameId = 102;
inline constexpr int pumpLabelId = 103;
inline constexpr int pumpTextId = 104;
inline constexpr int firstListLabelId = 200;
inline constexpr int firstListId = 210;
inline constexpr int firstCheckId = 220;
inline constexpr int firstButtonId = 230;

constexpr int IdOf(ListControl list) {
  return firstListId + static_cast<int>(list);
}
constexpr int IdOf(CheckControl box) {
  return firstCheckId + static_cast<int>(box);
}
constexpr int IdOfButton(int button) {
  return firstButtonId + button;
}

constexpr std::size_t IndexOf(ListControl list) {
  return static_cast<std::size_t>(list);
}

// What has that number; nullopt if it is something else.
constexpr std::optional<ListControl> ListWith(int id) {
  const auto list = static_cast<std::size_t>(id - firstListId);
  return list < listRows.size() ? std::optional{static_cast<ListControl>(list)} : std::nullopt;
}
constexpr std::optional<CheckControl> BoxWith(int id) {
  const auto box = static_cast<std::size_t>(id - firstCheckId);
  return box < checkRows.size() ? std::optional{static_cast<CheckControl>(box)} : std::nullopt;
}
constexpr std::optional<int> ButtonWith(int id) {
  const auto button = static_cast<std::size_t>(id - firstButtonId);
  return button < buttonRows.size() ? std::optional{static_cast<int>(button)} : std::nullopt;
}

// The size of the frame container.
inline constexpr int pageWidth = 392;
inline constexpr int pageHeight = 211;

std::span<const ControlRow> PageLayout();

// The caption with its access key marked for the system: "&" before the first such letter.
std::string MarkedCaption(const ControlRow& row);

}  // namespace zolvane
