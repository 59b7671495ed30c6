#include "zolvane/work/printing.h"

#include <algorithm>
#include <set>

#include "text/joined.h"
#include "text/listed.h"
#include "text/printable.h"

namespace zolvane {
namespace {

// Columns of a terminal, as far as characters tell.
std::size_t WidthOf(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(
      text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::vector<std::size_t> WidthsOf(const std::vector<TextRow>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], WidthOf(row[column]));
    }
  }
  return widths;
}

std::string SideText(const Descriptions& descriptions, const Difference& difference,
                     const std::optional<std::string>& text) {
  return difference.Kind == DifferenceKind::NotAnswered && !text
             ? "(not answered)"
             : MeasuredText(descriptions, difference.Name, text);
}

}  // namespace

std::string ColumnsText(const std::vector<TextRow>& rows, std::size_t indent) {
  constexpr std::size_t gap = 2;
  const auto widths = WidthsOf(rows);
  std::string text;
  for (const auto& row : rows) {
    std::string line(indent, ' ');
    for (std::size_t column = 0; column < row.size(); ++column) {
      line.append(row[column]).append(widths[column] - WidthOf(row[column]) + gap, ' ');
    }
    line.resize(line.find_last_not_of(' ') + 1);
    text.append(line).append("\n");
  }
  return text;
}

std::string MeasuredText(const Descriptions& descriptions, std::string_view name,
                         const std::optional<std::string>& text) {
  if (!text || text->empty()) {
    return text ? "(empty)" : "(none)";
  }
  const auto measure = descriptions.Measure(name, *text);
  return measure ? Joined(Printable(*text), " (", *measure, ")") : Printable(*text);
}

std::string DifferencesText(const Comparison& comparison, const SideColumn& a, const SideColumn& b) {
  if (comparison.Differences.empty()) {
    return {};
  }
  std::vector<TextRow> rows{{"", Printable(a.Name), Printable(b.Name)}};
  std::string group;
  for (const auto& difference : comparison.Differences) {
    const auto description = a.Measures.Of(difference.Name);
    if (description.Group != group) {
      group = description.Group;
      rows.push_back({Printable(group)});
    }
    rows.push_back({Joined("  ", Printable(difference.Name)), SideText(a.Measures, difference, difference.A),
                    SideText(b.Measures, difference, difference.B)});
  }
  return ColumnsText(rows);
}

std::vector<std::pair<std::string, std::size_t>> CountsOf(const Comparison& comparison) {
  return {{"same", comparison.Same},
          {"different", comparison.Different},
          {"only_in_a", comparison.OnlyInA},
          {"only_in_b", comparison.OnlyInB},
          {"not_answered", comparison.NotAnswered}};
}

std::string CountsText(const std::vector<std::pair<std::string, std::size_t>>& counts) {
  std::string text;
  for (const auto& [name, count] : counts) {
    std::string words = name;
    std::ranges::replace(words, '_', ' ');
    AddListed(text, ", ", Joined(std::to_string(count), " ", words));
  }
  return text;
}

std::string FindingsText(const std::vector<Finding>& findings) {
  std::string text;
  std::set<std::string> advised;
  for (const auto& finding : findings) {
    const auto place = finding.Line == 0 ? std::string{} : Joined(", line ", std::to_string(finding.Line));
    text += Joined(NameOf(finding.Grade), ": ", Printable(finding.File), place, ": ", Printable(finding.Text),
                   " [", finding.Code, "]\n");
    if (!finding.Advice.empty() && advised.insert(finding.Code).second) {
      text += Joined("  ", Printable(finding.Advice), "\n");
    }
  }
  return text;
}

std::string CheckpointText(const Checkpoint& checkpoint) {
  std::string text = "checkpoint:\n";
  for (const auto& line : LinesOf(checkpoint)) {
    text += Joined("  ", line, "\n");
  }
  return text;
}

}  // namespace zolvane
