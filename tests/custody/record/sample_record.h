// The record of a day in the field: the second stage and the nest of the 8-channel head were taught again, the heights
// corrected and the pipettes checked. The instrument then got the new values; one of them it did not take.
#pragma once

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "config/text.h"
#include "custody/findings/findings.h"
#include "custody/record/record.h"
#include "custody/values/sides.h"
#include "support/golden.h"

namespace zolvane {

// As an instrument answers that holds what an upload of the file sends.
inline Values AnswersAfterUploadOf(const std::string& configuration) {
  return WireFaceOfFile(configuration).Lines;
}

inline void SetValue(Values& values, std::string_view name, std::optional<std::string> text) {
  values.Add({.Name = std::string{name}, .Text = std::move(text)});
}

inline std::string SampleBefore(std::string configuration) {
  for (const auto& [now, before] : std::initializer_list<std::pair<std::string_view, std::string_view>>{
           {"STAGE2,\"Stage 2\",STAGE,12415,1998,", "STAGE2,\"Stage 2\",STAGE,12391,2008,"},
           {"\"8B\",8_CH,2,7740,2490,", "\"8B\",8_CH,2,7728,2490,"},
           {"MountHeight=164.35", "MountHeight=164.1"},
           {"2Item=50 ul,1.0097,\"VOL_1CHLONG_300_2\"", "2Item=50 ul,1.0131,\"VOL_1CHLONG_300_2\""}}) {
    configuration = Replaced(configuration, now, before);
  }
  return configuration;
}

inline RecordContent MakeSampleRecord() {
  RecordContent content;
  content.Person = "M. Lindqvist";
  content.Reason = "Yearly service; stage 2 and the 8-channel nest taught again after the new gripper";
  content.Machine = "LAB2-ROBOT";
  content.Program = "zolvane";
  content.Version = "1.0.0.135";
  content.Time = "2026-03-14T09:41:07.204Z";
  content.Offset = 60;
  content.File = "C:\\Hestrion\\Zolvane.ini";
  content.Link = "tcp:192.0.2.17:4001";
  content.Instrument = "ZV400";
  content.Left.Configuration = BytesOf(std::filesystem::path{ZOLVANE_SAMPLES_PATH} / "Zolvane.ini");
  content.Left.Instrument = AnswersAfterUploadOf(content.Left.Configuration);
  RecordedOperation last{.Number = 17,
                         .Action = "upload",
                         .Outcome = "not_proven",
                         .Person = "M. Lindqvist",
                         .Reason = "new positions of stage 2",
                         .Time = "2026-03-14T09:38:52.017Z",
                         .Found = {}};
  last.Found.Configuration = SampleBefore(content.Left.Configuration);
  last.Found.Instrument = AnswersAfterUploadOf(*last.Found.Configuration);
  SetValue(*content.Left.Instrument, "WASH_Y", "18810");
  SetValue(*last.Found.Instrument, "WASH_Y", "18810");
  content.Last = last;
  content.Findings = CheckConfiguration(content.Left.Configuration, "Zolvane.ini");
  content.Checkpoint = {"1f0c7be2a9d34c58b6e07d2f9a415c33", "35",
                        "9b71d224bd62f3785d96d46ad3ea3d73319bfbc2890caadae2dff72519673ca7"};
  return content;
}

// Made once, as it takes several sessions on copies.
inline const RecordContent& SampleRecord() {
  static const auto content = MakeSampleRecord();
  return content;
}

}  // namespace zolvane
