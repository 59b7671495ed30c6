// Where the page's controls stand: one row each, in the order in which Tab visits them. Lengths are dialogue
// units, a quarter of the font's average width across and an eighth of its height down, so that captions fit
// in every font and at every scale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "page/page_controls.h"

namespace zolvane {

enum class ControlKind : std::uint8_t { Title, GroupBox, Label, Value, List, CheckBox, Button };

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

// The numbers of the controls, each for the first of its kind. They follow the order of the rows in
// page_controls.h.
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

// The size of the frame container.
inline constexpr int pageWidth = 392;
inline constexpr int pageHeight = 211;

std::span<const ControlRow> PageLayout();

// The caption with its access key marked as the system wants it: "&" before the first such letter.
std::string MarkedCaption(const ControlRow& row);

}  // namespace zolvane
