// The page's controls by their numbers, and in the order in which Tab visits them.
#pragma once

#include <array>

#include "shell/windows/page/page_layout.h"

namespace zolvane::control_ids {

inline constexpr int deviceList = IdOf(ListControl::DeviceType);
inline constexpr int cageList = IdOf(ListControl::CageType);
inline constexpr int headList = IdOf(ListControl::HeadType);
inline constexpr int nestList = IdOf(ListControl::NestType);
inline constexpr int tipList = IdOf(ListControl::TipType);
inline constexpr int rfidBox = IdOf(CheckControl::RFID);
inline constexpr int headBox = IdOf(CheckControl::HeadSensor);
inline constexpr int tipBox = IdOf(CheckControl::TipSensor);
inline constexpr int encoderBox = IdOf(CheckControl::Encoders);
inline constexpr int upload = IdOfButton(0);
inline constexpr int download = IdOfButton(1);
inline constexpr int query = IdOfButton(2);
inline constexpr int import = IdOfButton(3);
inline constexpr int save = IdOfButton(4);

inline constexpr std::array controlsInTabOrder{deviceList, cageList, headList, nestList,   tipList,
                                               rfidBox,    headBox,  tipBox,   encoderBox, query,
                                               upload,     download, import,   save};

}  // namespace zolvane::control_ids
