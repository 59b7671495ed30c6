#include "custody/record/page.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <utility>

#include "custody/disk/sha256.h"
#include "custody/record/drawings.h"
#include "custody/record/markup.h"
#include "custody/record/page_style.h"
#include "custody/record/position_map.h"
#include "custody/record/value_rows.h"
#include "text/joined.h"

namespace zolvane {
namespace {

// ---- Who, when, why, what ----

// "2026-03-14 10:26:53 +01:00" of the history's text of the same moment, as a clock on the wall showed it. A text
// of another form stays as it is.
std::string LocalTimeText(const std::string& utc, std::int64_t offset) {
  using namespace std::chrono;
  constexpr std::int64_t minutesOfADay = std::int64_t{24} * 60;
  constexpr std::string_view form = "dddd-dd-ddTdd:dd:dd.dddZ";
  const auto fits = [](char character, char expected) {
    return expected == 'd' ? character >= '0' && character <= '9' : character == expected;
  };
  if (!std::ranges::equal(utc, form, fits) || std::abs(offset) > minutesOfADay) {
    return utc;
  }
  const auto number = [&utc](std::size_t at, std::size_t length) {
    return std::stoi(utc.substr(at, length));
  };
  const auto digits = [](int value) { return Joined(value < 10 ? "0" : "", std::to_string(value)); };
  const year_month_day date{year{number(0, 4)}, month{static_cast<unsigned>(number(5, 2))},
                            day{static_cast<unsigned>(number(8, 2))}};
  const auto moment = sys_days{date} + hours{number(11, 2)} + minutes{number(14, 2) + offset};
  const auto midnight = floor<days>(moment);
  const year_month_day local{midnight};
  const hh_mm_ss time{moment - midnight};
  const hh_mm_ss zone{minutes{std::abs(offset)}};
  const auto clock = [&digits](const auto& of) {
    return Joined(digits(static_cast<int>(of.hours().count())), ":",
                  digits(static_cast<int>(of.minutes().count())));
  };
  return Joined(std::to_string(static_cast<int>(local.year())), "-",
                digits(static_cast<int>(static_cast<unsigned>(local.month()))), "-",
                digits(static_cast<int>(static_cast<unsigned>(local.day()))), " ", clock(time), ":",
                utc.substr(17, 2), offset < 0 ? " −" : " +", clock(zone));
}

std::string Fact(std::string_view title, std::string_view text) {
  return Element("dt", title) + Element("dd", text.empty() ? Element("i", "not given") : Escaped(text));
}

std::string OperationText(const RecordedOperation& last) {
  return Joined(std::to_string(last.Number), ": ", last.Action, ", ", last.Outcome, ", by ", last.Person,
                last.Reason.empty() ? "" : ", because: ", last.Reason);
}

std::string Facts(const RecordContent& content, const Faces& faces) {
  auto facts = Fact("Time", Joined(LocalTimeText(content.Time, content.Offset), " (", content.Time, ")"));
  facts += Fact("Person", content.Person) + Fact("Reason", content.Reason);
  facts += Fact("Model in the file", faces.Left.InForce.Device.Name);
  facts += Fact("Module in the file", faces.Left.InForce.Cage.Name);
  facts += content.Left.Instrument
               ? Fact("Instrument says", content.Instrument) + Fact("Reached by", content.Link)
               : Element("dt", "Instrument") + Element("dd", "was not asked");
  facts += Fact("File", content.File);
  facts += Fact("SHA-256 of the file", Sha256Hex(content.Left.Configuration));
  facts += Fact("Computer", content.Machine) + Fact("Program", Joined(content.Program, " ", content.Version));
  if (content.Last) {
    facts += Fact("Last operation", OperationText(*content.Last));
    facts += Fact("Its time", LocalTimeText(content.Last->Time, content.Offset));
  }
  std::string checkpoint;
  for (const auto& line : content.Checkpoint) {
    checkpoint += Escaped(line) + "<br>";
  }
  return Element("dl", facts + Element("dt", "Checkpoint of the history") + Element("dd", checkpoint));
}

// ---- Findings ----

std::string FindingList(const std::vector<Finding>& findings) {
  if (findings.empty()) {
    return Element("p", "The check of the file found nothing.");
  }
  std::string rows;
  for (const auto& finding : findings) {
    const auto place = finding.Line == 0 ? "" : std::to_string(finding.Line);
    const auto advice = Element("small", Escaped(finding.Advice));
    rows += TableRow(
        {NameOf(finding.Grade), Escaped(finding.Code), place, Joined(Escaped(finding.Text), "<br>", advice)});
  }
  return Table("findings", {"Grade", "Code", "Line", "Finding"}, rows);
}

// ---- Differences ----

std::string WithMeasure(const Faces& faces, std::string_view name, const std::optional<std::string>& text) {
  if (!text) {
    return Element("i", "none");
  }
  const auto measure = faces.Meanings.Measure(name, *text);
  return Joined(Escaped(*text),
                measure && *measure != *text + " mm" ? Element("small", Escaped(*measure)) : "",
                measure && *measure == *text + " mm" ? " mm" : "");
}

std::string DifferenceRow(const Difference& difference, const Faces& faces) {
  const auto textOf = [&](const std::optional<std::string>& text) {
    return WithMeasure(faces, difference.Name, text);
  };
  const bool isKnown = difference.Kind != DifferenceKind::NotAnswered;
  return TableRow({Escaped(difference.Name), textOf(difference.A),
                   isKnown ? textOf(difference.B) : Element("i", "not answered")});
}

// The heading of a group, where another one begins.
std::string GroupRow(std::string& group, const std::string& next, std::string_view columns) {
  return std::exchange(group, next) == next
             ? std::string{}
             : Element("tr", Element(Joined("th colspan=\"", columns, R"(" class="group")"), Escaped(next)));
}

std::string DifferenceTable(const Comparison& comparison, const Faces& faces, std::string_view a,
                            std::string_view b) {
  std::string rows;
  std::string group;
  for (const auto& difference : comparison.Differences) {
    rows += GroupRow(group, faces.Meanings.Of(difference.Name).Group, "3") + DifferenceRow(difference, faces);
  }
  return rows.empty() ? rows : Table("numbers", {"Value", a, b}, rows);
}

std::string CountsText(const Comparison& comparison) {
  const auto total = comparison.Same + comparison.Differences.size();
  return Joined(std::to_string(total), " values: ", std::to_string(comparison.Same), " the same, ",
                std::to_string(comparison.Different), " different, ",
                std::to_string(comparison.OnlyInA + comparison.OnlyInB), " on one side only, ",
                std::to_string(comparison.NotAnswered), " not answered.");
}

std::string ComparisonPart(std::string_view title, const Comparison& comparison, const Faces& faces,
                           std::string_view a, std::string_view b) {
  return Joined(Element("h3", Escaped(title)), Element("p", CountsText(comparison)),
                DifferenceTable(comparison, faces, a, b));
}

std::string ChangePart(const RecordContent& content, const Faces& faces) {
  if (!content.Last) {
    return Element("p", "The history holds no operation that changed something, or has lost what it found.");
  }
  const auto& found = content.Last->Found;
  const auto change = [&faces](std::string_view title, const Values& before, const Values& now) {
    return ComparisonPart(title, Compare(before, now), faces, "As found", "As left");
  };
  std::string markup;
  if (found.Instrument && content.Left.Instrument) {
    markup += change("On the instrument", *found.Instrument, *content.Left.Instrument);
  }
  markup += found.Configuration
                ? change("In the file", FileFace(*found.Configuration), FileFace(content.Left.Configuration))
                : Element("h3", "In the file") + Element("p", "There was no configuration before.");
  return markup;
}

std::string AgreementPart(const RecordContent& content, const Faces& faces) {
  if (!content.Left.Instrument) {
    return Element("p", "No instrument was asked.");
  }
  return ComparisonPart("What an upload of the file would send, and what the instrument holds",
                        Compare(faces.Left.Lines, *content.Left.Instrument), faces, "File", "Instrument");
}

// ---- All values ----

std::string StateText(const std::optional<Value>& value) {
  if (!value) {
    return {};
  }
  return !value->WasAnswered ? Element("i", "not answered")
         : value->Text       ? Escaped(*value->Text)
                             : Element("i", "unknown");
}

std::string AllValues(const std::vector<ValueRow>& rows, const Faces& faces) {
  std::string markup;
  std::string group;
  for (const auto& row : rows) {
    const auto measure = row.Now ? faces.Meanings.Measure(row.Name, *row.Now) : std::nullopt;
    markup += GroupRow(group, row.Meaning.Group, "5") +
              TableRow({Escaped(row.Name), Escaped(row.Before.value_or("")), StateText(row.InFile),
                        StateText(row.OnInstrument), Escaped(measure.value_or(""))},
                       row.Before.has_value());
  }
  return Table("numbers", {"Value", "As found, if changed", "File", "Instrument", "Measure"}, markup);
}

// ---- The page ----

std::string Section(std::string_view title, std::string_view content) {
  return Element("section", Element("h2", Escaped(title)) + std::string{content});
}

std::string Signatures() {
  const auto line = TableRow({"", "", "", ""});
  return Table("signatures", {"Name", "Meaning (performed, checked, approved)", "Date and time", "Signature"},
               line + line);
}

std::string Head(const std::string& title) {
  return Element("head", Joined("<meta charset=\"utf-8\">\n<meta http-equiv=\"Content-Security-Policy\" "
                                "content=\"default-src 'none'; style-src 'unsafe-inline'\">\n",
                                Element("title", Escaped(title)), Element("style", pageStyle)));
}

std::string Positions(const std::vector<ValueRow>& rows) {
  return PositionMap(rows, "Stage XY", "Stage: places, chute, nests and racks") +
         PositionMap(rows, "SD XY", "1/8/12 module: its positions and the places of its nests");
}

}  // namespace

std::string PageOf(const RecordContent& content, std::string_view hiddenElement) {
  const Faces faces{content};
  const auto rows = RowsOf(content, faces);
  const auto title =
      Joined("Adjustment record ", faces.Left.InForce.Device.Name, " ", content.Time.substr(0, 10));
  const auto problem =
      faces.Left.Problem.empty() ? "" : Element("p class=\"moved\"", Escaped(faces.Left.Problem));
  const auto head = Joined(Element("h1", "Adjustment record"),
                           Element("p",
                                   "What was set, and what was found. It states no result of a measurement: "
                                   "only a test against a standard shows whether the instrument is right."));
  const auto body = Joined(
      Element("header", Joined(head, Facts(content, faces), problem)),
      Section("As found and as left", ChangePart(content, faces)),
      Section("File and instrument", AgreementPart(content, faces)), Section("Positions", Positions(rows)),
      Section("Heights, values of the Z axis", HeightDrawing(rows)),
      Section("Volume corrections", VolumeCurves(content)),
      Section("Findings in the file", FindingList(content.Findings)),
      Section("All values", AllValues(rows, faces)), Section("Signatures", Signatures()),
      Element("footer",
              "The last line of this file holds the SHA-256 of all bytes before it: compare it with "
              "<code>head -n -1 FILE | sha256sum</code>. The program restores the settings from this file."),
      hiddenElement);
  return Joined("<html lang=\"en\">\n", Head(title), Element("body", body), "</html>\n");
}

}  // namespace zolvane
