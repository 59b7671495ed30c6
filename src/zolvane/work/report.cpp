#include "zolvane/work/report.h"

#include <algorithm>

namespace zolvane {
namespace {

void Put(Json& json, const char* name, const std::string& text) {
  if (!text.empty()) {
    json[name] = text;
  }
}

void Put(Json& json, const char* name, const std::optional<std::string>& text) {
  if (text) {
    json[name] = *text;
  }
}

template <class List, class ToJson>
void PutList(Json& json, const char* name, const List& list, ToJson toJson) {
  for (const auto& element : list) {
    json[name].push_back(toJson(element));
  }
}

Json ObjectionJson(const Objection& objection) {
  return {{"code", objection.Code}, {"expected", objection.Expected}, {"actual", objection.Actual}};
}

Json FindingJson(const Finding& finding) {
  Json json{{"code", finding.Code},
            {"grade", NameOf(finding.Grade)},
            {"file", finding.File},
            {"line", finding.Line},
            {"text", finding.Text}};
  Put(json, "advice", finding.Advice);
  return json;
}

}  // namespace

void Report::Worsen(int status) {
  ExitStatus = std::max(ExitStatus, status);
}

Json ValueJson(const ReportedValue& value) {
  Json json{{"key", value.Key}};
  Put(json, "found", value.Found);
  Put(json, "sent", value.Sent);
  Put(json, "left", value.Left);
  Put(json, "verdict", value.Verdict);
  Put(json, "cause", value.Cause);
  return json;
}

Json ReportJson(const Report& report) {
  Json json{{"schema", "zolvane/1"}, {"command", report.Command}, {"exit_status", report.ExitStatus}};
  Put(json, "outcome", report.Outcome);
  for (const auto& [name, count] : report.Counts) {
    json["counts"][name] = count;
  }
  PutList(json, "values", report.Values, ValueJson);
  PutList(json, "objections", report.Objections, ObjectionJson);
  PutList(json, "findings", report.Findings, FindingJson);
  if (report.Checkpoint) {
    json["checkpoint"] = LinesOf(*report.Checkpoint);
  }
  json.update(report.More);
  return json;
}

}  // namespace zolvane
