#include "shell/windows/page/page_layout.h"

#include <algorithm>
#include <array>

namespace zolvane {
namespace {

// Two frames, one above the other. In the upper one, what is fitted stands on the left, label beside list,
// and what is enabled on the right, in the same rows.
constexpr int margin = 7;
constexpr int inset = 10;
constexpr int rowPitch = 19;
constexpr int controlHeight = 14;
constexpr int gap = 6;

constexpr int labelLeft = margin + inset;
constexpr int labelWidth = 82;
constexpr int listLeft = labelLeft + labelWidth;
constexpr int listWidth = 138;
constexpr int listTextIndent = 2;
constexpr int checkLeft = listLeft + listWidth + 16;
constexpr int checkWidth = pageWidth - margin - inset - checkLeft;

constexpr int settingsTop = 28;
constexpr int firstRow = settingsTop + 15;
constexpr int settingsHeight = 15 + 6 * rowPitch + 4;

constexpr int calibrationTop = settingsTop + settingsHeight + gap;
constexpr int buttonRow = calibrationTop + 14;
constexpr int calibrationHeight = 14 + controlHeight + 9;
constexpr int buttonWidth = 85;
constexpr int buttonPitch = buttonWidth + gap;

static_assert(calibrationTop + calibrationHeight + margin == pageHeight);
static_assert(labelLeft + 3 * buttonPitch + buttonWidth == pageWidth - margin - inset);

constexpr int RowTop(int row) {
  return firstRow + row * rowPitch;
}

constexpr ControlRow Frame(int id, std::string_view caption, int top, int height) {
  return {ControlKind::GroupBox, id, caption, 0, {margin, top, pageWidth - 2 * margin, height}, true};
}

constexpr ControlRow Label(int id, std::string_view caption, char accessKey, int row) {
  const Area place{labelLeft, RowTop(row), labelWidth, controlHeight};
  return {ControlKind::Label, id, caption, accessKey, place, true};
}

constexpr ControlRow Label(ListControl list, char accessKey, int row) {
  return Label(firstListLabelId + static_cast<int>(list), RowOf(list).Label, accessKey, row);
}

constexpr ControlRow List(ListControl list, int row) {
  return {ControlKind::List, IdOf(list), {}, 0, {listLeft, RowTop(row), listWidth, controlHeight}, false};
}

constexpr ControlRow Value(int id, std::string_view text, int row) {
  constexpr int left = listLeft + listTextIndent;
  constexpr int width = listWidth - listTextIndent;
  return {ControlKind::Value, id, text, 0, {left, RowTop(row), width, controlHeight}, false};
}

constexpr ControlRow Check(CheckControl box, char accessKey, int row) {
  const Area place{checkLeft, RowTop(row), checkWidth, controlHeight};
  return {ControlKind::CheckBox, IdOf(box), RowOf(box).Label, accessKey, place, row == 0};
}

constexpr ControlRow Button(int button, char accessKey, Area place, bool startsGroup) {
  const auto caption = buttonRows[static_cast<std::size_t>(button)].Caption;
  return {ControlKind::Button, IdOfButton(button), caption, accessKey, place, startsGroup};
}

constexpr Area ButtonPlace(int column) {
  return {labelLeft + column * buttonPitch, buttonRow, buttonWidth, controlHeight};
}

constexpr Area queryPlace{pageWidth - margin - inset - buttonWidth, RowTop(5), buttonWidth, controlHeight};

// clang-format off
constexpr std::array layout{
    ControlRow{ControlKind::Title, titleId, titleLabel.Caption, 0, {margin, 6, 300, 18}, true},

    Frame(settingsFrameId, settingsFrame.Caption, settingsTop, settingsHeight),
    Label(ListControl::DeviceType, 'Z', 0),
    List (ListControl::DeviceType,      0),
    Label(ListControl::CageType,   'M', 1),
    List (ListControl::CageType,        1),
    Label(ListControl::HeadType,   'P', 2),
    List (ListControl::HeadType,        2),
    Label(ListControl::NestType,   'N', 3),
    List (ListControl::NestType,        3),
    Label(ListControl::TipType,    'T', 4),
    List (ListControl::TipType,         4),
    Label(pumpLabelId, pumpLabel.Caption, 0, 5),
    Value(pumpTextId, pumpNotConnectedText,  5),
    Check(CheckControl::RFID,       'R', 0),
    Check(CheckControl::HeadSensor, 'd', 1),
    Check(CheckControl::TipSensor,  'i', 2),
    Check(CheckControl::Encoders,   'c', 3),
    Button(queryButton,    'Q', queryPlace,     true),

    Frame(calibrationFrameId, calibrationFrame.Caption, calibrationTop, calibrationHeight),
    Button(uploadButton,   'S', ButtonPlace(0), true),
    Button(downloadButton, 'L', ButtonPlace(1), false),
    Button(importButton,   'o', ButtonPlace(2), false),
    Button(exportButton,   'v', ButtonPlace(3), false),
};
// clang-format on

constexpr bool AccessKeysAreInTheirCaptions() {
  return std::ranges::all_of(layout, [](const ControlRow& row) {
    return row.AccessKey == 0 || row.Caption.find(row.AccessKey) != std::string_view::npos;
  });
}
static_assert(AccessKeysAreInTheirCaptions());

}  // namespace

std::span<const ControlRow> PageLayout() {
  return layout;
}

std::string MarkedCaption(const ControlRow& row) {
  std::string caption{row.Caption};
  if (row.AccessKey != 0) {
    caption.insert(caption.find(row.AccessKey), 1, '&');
  }
  return caption;
}

}  // namespace zolvane
