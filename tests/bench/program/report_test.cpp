#include "bench/program/report.h"

#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>

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

TEST(Report, OfACommandAloneHasTheSameShapeAsThatOfARun) {
  RunReport report;
  report.Results.push_back({.Request = Named("query"), .Happened = {}});
  EXPECT_EQ(ReportJson(report)["actions"][0]["command"], "query");
}

TEST(Report, OfThePageAloneIsThePage) {
  RunReport report;
  ActionResult page{.Request = Named("page"), .Happened = {}};
  page.Page = ShownPage{.Caption = "Zolvane Setup", .Page = {}, .Status = "", .Changed = {}};
  report.Results.push_back(page);
  EXPECT_EQ(ReportJson(report)["caption"], "Zolvane Setup");
  report.IsRun = true;
  EXPECT_EQ(ReportJson(report)["actions"][0]["caption"], "Zolvane Setup");
}

TEST(Report, ShortensAReplyThatGoesOnAndOn) {
  Happenings happened;
  happened.Commands.Count("SET_CALIBRATION A 1", true, std::string(1000, 'x'));
  EXPECT_EQ(ReasonsOf(happened), std::vector<std::string>{"1 of 1 command refused, first A with \"" +
                                                          std::string(60, 'x') + "\"..."});
}

TEST(Report, TellsWhyTheLinkDidNotDeliver) {
  ActionResult result{.Request = Named("query"), .Happened = {}};
  auto& commands = result.Happened.Commands;
  commands.Count("STATUS_STAGE", false, "");
  commands.Undelivered = 3;
  commands.FirstProblem = "tcp:127.0.0.1:1 cannot be opened: Connection refused";
  commands.FirstSkippedLine = "WELCOME";
  EXPECT_EQ(
      ResultText(result),
      "query: failed (1 of 4 commands sent; 0 accepted; 1 not answered, first STATUS_STAGE; tcp:127.0.0.1:1 "
      "cannot be opened: Connection refused; skipped the line \"WELCOME\"; 3 not sent)\n");
  EXPECT_EQ(ReasonsOf(result.Happened),
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

TEST(Outcome, OfNothingIsDone) {
  EXPECT_EQ(OutcomeOf({}), Outcome::Done);
  EXPECT_EQ(ExitStatusOf({}), 0);
}

TEST(Outcome, IsTheWeightiestThatHappened) {
  Happenings happened;
  const auto expect = [&happened](Outcome outcome, std::string_view name, int status) {
    EXPECT_EQ(OutcomeOf(happened), outcome) << name;
    EXPECT_EQ(RowOf(OutcomeOf(happened)).Name, name);
    EXPECT_EQ(ExitStatusOf(happened), status) << name;
  };
  happened.WasStopped = true;
  expect(Outcome::Stopped, "stopped", 1);
  happened.WasCancelled = true;
  expect(Outcome::Cancelled, "cancelled", 1);
  happened.WasRefused = true;
  expect(Outcome::Refused, "refused", 1);
  happened.WritesFailed = 1;
  expect(Outcome::Failed, "failed", 1);
  happened.WasDisabled = true;
  expect(Outcome::Disabled, "disabled", 1);
  happened.WasMisused = true;
  expect(Outcome::Unusable, "unusable", 2);
}

TEST(Outcome, IsAFailureWhenACommandWasNotAnswered) {
  Happenings happened;
  happened.Commands.Count("STATUS_STAGE", false, "");
  EXPECT_EQ(OutcomeOf(happened), Outcome::Failed);
}

TEST(Outcome, IsAFailureWhenTheLinkCouldNotSendACommand) {
  Happenings happened;
  happened.Commands.Undelivered = 1;
  EXPECT_EQ(OutcomeOf(happened), Outcome::Failed);
}

}  // namespace
}  // namespace zolvane
