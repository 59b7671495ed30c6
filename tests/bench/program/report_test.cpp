#include "bench/program/report.h"

#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>

#include "bench/host/outcome.h"
#include "bench/host/result_text.h"

namespace zolvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::sys_days;
using std::chrono::system_clock;

Action Named(std::string command) {
  Action action;
  action.Command = std::move(command);
  return action;
}

TEST(Report, TellsWhenTheRunBeganInUtcAndHowLongItTook) {
  const auto began = sys_days{std::chrono::year{2026} / 3 / 1} + std::chrono::hours{7} +
                     std::chrono::minutes{5} + milliseconds{9999};
  const auto json = ReportJson(
      {.Version = "1", .Folder = "/f", .Link = "sim", .Started = began, .Duration = milliseconds{1234}});
  EXPECT_EQ(json.dump(),
            R"({"schema":1,"version":"1","folder":"/f","link":"sim","started":"2026-03-01T07:05:09Z",)"
            R"("duration_ms":1234,"exit_status":0,"actions":[],"not_begun":[]})");
}

TEST(Report, ACommandAloneHasTheShapeOfARun) {
  RunReport report;
  report.Results.push_back({.Request = Named("query"), .Tally = {}});
  EXPECT_EQ(ReportJson(report)["actions"][0]["command"], "query");
}

TEST(Report, ThePageAloneIsTheDocument) {
  RunReport report;
  ActionResult page{.Request = Named("page"), .Tally = {}};
  page.Page = ShownPage{.Caption = "Zolvane Setup", .Page = {}, .Status = "", .Changed = {}};
  report.Results.push_back(page);
  EXPECT_EQ(ReportJson(report)["caption"], "Zolvane Setup");
  report.IsRun = true;
  EXPECT_EQ(ReportJson(report)["actions"][0]["caption"], "Zolvane Setup");
}

TEST(Report, ShortensAReplyThatGoesOnAndOn) {
  ActionTally tally;
  tally.Commands.Count("SET_CALIBRATION A 1", true, std::string(1000, 'x'));
  EXPECT_EQ(ReasonsOf(tally), std::vector<std::string>{"1 of 1 command refused, first A with \"" +
                                                       std::string(60, 'x') + "\"..."});
}

TEST(Report, TellsWhyTheLinkDidNotDeliver) {
  ActionResult result{.Request = Named("query"), .Tally = {}};
  auto& commands = result.Tally.Commands;
  commands.Count("STATUS_STAGE", false, "");
  commands.Undelivered = 3;
  commands.FirstProblem = "tcp:127.0.0.1:1 cannot be opened: Connection refused";
  commands.FirstSkippedLine = "WELCOME";
  EXPECT_EQ(
      ResultText(result),
      "query: failed (1 of 4 commands sent; 0 accepted; 1 not answered, first STATUS_STAGE; tcp:127.0.0.1:1 "
      "cannot be opened: Connection refused; skipped the line \"WELCOME\"; 3 not sent)\n");
  EXPECT_EQ(ReasonsOf(result.Tally),
            (std::vector<std::string>{"1 of 4 commands not answered, first STATUS_STAGE",
                                      "skipped the line \"WELCOME\"", "3 of 4 commands not sent"}));
  RunReport report;
  report.Results.push_back(result);
  const auto json = ReportJson(report)["actions"][0];
  EXPECT_EQ(json["link_problem"], "tcp:127.0.0.1:1 cannot be opened: Connection refused");
  EXPECT_EQ(json["skipped_line"], "WELCOME");
}

TEST(Report, NamesTheCommandsThatWereNotBegunAsFarAsAnyoneReadsThem) {
  EXPECT_EQ(NotBegunText("interrupted", std::vector<Action>{Named("page"), Named("query")}, 5),
            "interrupted: 2 of 5 commands not begun: page; query");
  const auto text = NotBegunText("interrupted", std::vector<Action>(60, Named("page")), 61);
  EXPECT_TRUE(text.ends_with("page; page; and 10 more")) << text;
}

// ---- What it comes to ----

TEST(Outcome, NothingHappenedIsDone) {
  EXPECT_EQ(OutcomeOf({}), Outcome::Done);
  EXPECT_EQ(ExitStatusOf({}), 0);
}

TEST(Outcome, IsTheWeightiestThatHappened) {
  ActionTally tally;
  const auto expect = [&tally](Outcome outcome, std::string_view name, int status) {
    EXPECT_EQ(OutcomeOf(tally), outcome) << name;
    EXPECT_EQ(RowOf(OutcomeOf(tally)).Name, name);
    EXPECT_EQ(ExitStatusOf(tally), status) << name;
  };
  tally.WasStopped = true;
  expect(Outcome::Stopped, "stopped", 1);
  tally.WasCancelled = true;
  expect(Outcome::Cancelled, "cancelled", 1);
  tally.WasRefused = true;
  expect(Outcome::Refused, "refused", 1);
  tally.WritesFailed = 1;
  expect(Outcome::Failed, "failed", 1);
  tally.WasDisabled = true;
  expect(Outcome::Disabled, "disabled", 1);
  tally.WasMisused = true;
  expect(Outcome::Unusable, "unusable", 2);
}

TEST(Outcome, IsAFailureWhenACommandWasNotAnswered) {
  ActionTally tally;
  tally.Commands.Count("STATUS_STAGE", false, "");
  EXPECT_EQ(OutcomeOf(tally), Outcome::Failed);
}

TEST(Outcome, IsAFailureWhenASettingCouldNotBeRead) {
  ActionTally tally;
  tally.ReadsFailed = 1;
  EXPECT_EQ(OutcomeOf(tally), Outcome::Failed);
}

TEST(Outcome, IsAFailureWhenTheLinkCouldNotSendACommand) {
  ActionTally tally;
  tally.Commands.Undelivered = 1;
  EXPECT_EQ(OutcomeOf(tally), Outcome::Failed);
}

}  // namespace
}  // namespace zolvane
