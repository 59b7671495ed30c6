#include "zolvane/looking.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <ranges>
#include <tuple>

#include "config/text.h"
#include "custody/values/file_fields.h"
#include "custody/values/values_json.h"
#include "instrument/links/interrupt_flag.h"
#include "text/counted.h"
#include "text/joined.h"
#include "text/listed.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "zolvane/operations/custody.h"
#include "zolvane/operations/kept_operation.h"
#include "zolvane/work/actions.h"
#include "zolvane/work/objections.h"
#include "zolvane/work/printing.h"
#include "zolvane/work/sides.h"

namespace zolvane {
namespace {

// The keys that an upload of the side would send; of the instrument, those of the file in the folder.
std::vector<std::string> KeysOf(Workplace& work, const Side& side) {
  if (side.Answers) {
    return NamesOf(*side.Answers);
  }
  const auto named = side.IsInstrument ? SideNamed(work, "file") : side;
  return NamesOf(WireFaceOf(work, named, {}));
}

// What is known of values that a configuration explains: the side's own, else the one in the folder.
Descriptions DescriptionsFor(Workplace& work, const Side& side) {
  auto bytes =
      side.Configuration && !side.IsBackup ? *side.Configuration : work.Files.Read(work.ConfigFile()).Bytes;
  return Descriptions{WireFaceOfFile(bytes)};
}

// A name, or the beginning of one up to a blank.
bool Begins(std::string_view name, const std::string& key) {
  return EqualIgnoringCase(name, key) || (name.size() > key.size() && name[key.size()] == ' ' &&
                                          EqualIgnoringCase(name.substr(0, key.size()), key));
}

// With its section or without.
bool IsMeant(const std::string& name, const std::string& key) {
  const auto place = PlaceNamed(name);
  return Begins(name, key) ||
         (place && Begins(std::string_view{name}.substr(place->Section.size() + 3), key));
}

void DemandKnown(const Values& values, const std::vector<std::string>& keys) {
  for (const auto& key : keys) {
    if (std::ranges::none_of(values.InOrder(),
                             [&](const Value& value) { return IsMeant(value.Name, key); })) {
      throw UsageError{Joined("the side has no value ", Quoted(key))};
    }
  }
}

std::string TextOfValue(const Descriptions& descriptions, const Value& value) {
  return value.WasAnswered ? MeasuredText(descriptions, value.Name, value.Text) : "(not answered)";
}

ReportedValue ShownValue(const Descriptions& descriptions, const Value& value, bool isOverridden) {
  return {.Key = value.Name,
          .Found = value.Text,
          .Verdict = !value.WasAnswered ? "not_answered"
                     : isOverridden     ? "overridden"
                                        : "",
          .Measure = value.Text ? descriptions.Measure(value.Name, *value.Text) : std::nullopt};
}

// In groups; what is overridden comes last.
void PrintValues(Workplace& work, const Values& values, const Descriptions& descriptions,
                 const std::vector<std::string>& keys) {
  const auto isShown = [&](const Value& value) {
    return keys.empty() ||
           std::ranges::any_of(keys, [&](const auto& key) { return IsMeant(value.Name, key); });
  };
  std::vector<TextRow> rows;
  std::string group;
  std::size_t shown = 0;
  const auto add = [&](const Value& value, bool isOverridden) {
    const auto description = descriptions.Of(value.Name);
    if (rows.empty() || description.Group != group) {
      group = description.Group;
      rows.push_back({Printable(group)});
    }
    rows.push_back({Joined("  ", Printable(value.Name)), TextOfValue(descriptions, value),
                    isOverridden ? "overridden" : Printable(description.Title)});
    work.Result.Values.push_back(ShownValue(descriptions, value, isOverridden));
    ++shown;
  };
  for (const auto& value : values.InOrder() | std::views::filter(isShown)) {
    add(value, false);
  }
  work.Result.Counts.emplace_back("values", shown);
  for (const auto& value : values.Overridden() | std::views::filter(isShown)) {
    add(value, true);
  }
  work.Result.Counts.emplace_back("overridden", shown - work.Result.Counts.back().second);
  work.Out.Print(ColumnsText(rows, 0));
}

// In millimetres or microlitres, where the value has such a unit.
void AddMeasure(Json& json, const char* member, const Descriptions& descriptions, const std::string& name,
                const std::optional<std::string>& text) {
  if (const auto measure = text ? descriptions.Measure(name, *text) : std::nullopt) {
    json[member] = *measure;
  }
}

void TellUnanswered(Workplace& work) {
  work.Out.Error(ProgramInterrupt().IsRaised() ? "stopped by the user"
                                               : Joined("the instrument does not answer",
                                                        work.Link ? LinkProblem(*work.Link) : std::string{}));
}

// A record has two faces, and only one of them is looked at; one that was made without an instrument has one.
void NoteFaceOf(Workplace& work, bool isWire, std::initializer_list<const Side*> sides) {
  for (const auto* const side : sides) {
    if (!isWire && side->Answers) {
      work.Out.Note("this is the file's part; --wire takes what the instrument answered");
      return;
    }
    if (isWire && side->IsKept && !side->Answers) {
      work.Out.Note(
          Joined(Quoted(side->Name),
                 " holds no answers of an instrument: these are the values that its file would send"));
    }
  }
}

}  // namespace

void Show(Workplace& work, const Words& words) {
  const auto side = SideNamed(work, words[1]);
  const std::vector<std::string> keys{words.begin() + 2, words.end()};
  const bool isWire = work.Options.ComparesWire || side.IsInstrument;
  NoteFaceOf(work, isWire, {&side});
  const auto values = !isWire                              ? FileFaceOf(side)
                      : side.IsInstrument && !keys.empty() ? WireFaceOf(work, side, keys)
                                                           : WireFaceOf(work, side, KeysOf(work, side));
  DemandKnown(values, keys);
  PrintValues(work, values, DescriptionsFor(work, side), keys);
  if (std::ranges::any_of(values.InOrder(), [](const Value& value) { return !value.WasAnswered; })) {
    TellUnanswered(work);
    work.Result.Worsen(ProgramInterrupt().IsRaised() ? exit_status::notDone : exit_status::unusable);
  }
}

namespace {

void Explain(Workplace& work, const std::string& code) {
  const auto* const rule = RuleOf(code);
  if (rule == nullptr) {
    throw UsageError{Joined("there is no finding ", Quoted(code))};
  }
  work.Out.Print(ExplanationOf(*rule));
  work.Result.More["explanation"] = {{"code", rule->Code},
                                     {"grade", NameOf(rule->Grade)},
                                     {"meaning", rule->Meaning},
                                     {"advice", rule->Advice}};
}

// Of the configuration as an import of the backup would leave it, which objects to them.
std::vector<Finding> ErrorsAfterImport(Workplace& work, const std::string& path, const std::string& bytes) {
  auto findings =
      CheckConfiguration(AfterImport(work, path, bytes, ReadConfiguration(work)), NameAfterImport(work));
  std::erase_if(findings, [](const Finding& one) { return one.Grade != Grade::Error; });
  return findings;
}

// What an import of the backup would object to.
bool TellDoubts(Workplace& work, const std::string& path, const std::string& bytes) {
  Objections doubts;
  ObjectToImport(work, ReadHistory(work), path, bytes, ReadConfiguration(work), doubts);
  for (const auto& doubt : doubts) {
    work.Out.Error(ObjectionText(doubt));
    work.Result.Objections.push_back(doubt);
  }
  return !doubts.empty();
}

}  // namespace

void Check(Workplace& work, const Words& words) {
  if (work.Options.Explains) {
    Explain(work, *work.Options.Explains);
    return;
  }
  const auto side = SideNamed(work, words.size() > 1 ? words[1] : "file");
  if (!side.Configuration) {
    throw UsageError{Joined(Quoted(side.Name), " has no configuration to check")};
  }
  const auto file = side.Name == "file" ? work.ConfigFile() : side.Name;
  auto& findings = work.Result.Findings;
  if (side.IsBackup) {
    findings = CheckBackup(*side.Configuration, file, ReadConfiguration(work));
    std::ranges::move(ErrorsAfterImport(work, file, *side.Configuration), std::back_inserter(findings));
  } else {
    findings = CheckConfiguration(*side.Configuration, file);
  }
  std::string counts;
  for (const auto grade : allGrades) {
    const auto count = static_cast<std::size_t>(std::ranges::count(findings, grade, &Finding::Grade));
    work.Result.Counts.emplace_back(NameOf(grade), count);
    AddListed(counts, ", ", CountOf(count, NameOf(grade)));
  }
  work.Out.Print(FindingsText(findings) + counts + "\n");
  const bool isDoubted = side.IsBackup && TellDoubts(work, file, *side.Configuration);
  work.Result.Worsen(HasError(findings) || isDoubted ? exit_status::notDone : exit_status::done);
}

void Diff(Workplace& work, const Words& words) {
  const auto a = SideNamed(work, words[1]);
  const auto b = SideNamed(work, words[2]);
  const bool isWire = work.Options.ComparesWire || a.IsInstrument || b.IsInstrument;
  const auto keys = isWire ? KeysOf(work, a.IsInstrument ? b : a) : std::vector<std::string>{};
  const auto face = [&](const Side& side) {
    return isWire ? WireFaceOf(work, side, keys) : FileFaceOf(side);
  };
  const auto changes = Compare(face(a), face(b));
  work.Result.Counts = CountsOf(changes);
  NoteFaceOf(work, isWire, {&a, &b});
  const auto descriptionsOf = [&](const Side& own, const Side& other) {
    return DescriptionsFor(work, own.IsInstrument || own.IsBackup ? other : own);
  };
  const auto ofA = descriptionsOf(a, b);
  const auto ofB = descriptionsOf(b, a);
  auto& differences = work.Result.More["differences"] = Json::array();
  for (const auto& difference : changes.Differences) {
    auto& json = differences.emplace_back(JsonOf(difference));
    AddMeasure(json, "a_measure", ofA, difference.Name, difference.A);
    AddMeasure(json, "b_measure", ofB, difference.Name, difference.B);
    if (difference.Kind == DifferenceKind::NotAnswered) {
      json["answered"] = false;
    }
  }
  work.Out.Print(DifferencesText(changes, {ofA, a.Name}, {ofB, b.Name}) + CountsText(work.Result.Counts) +
                 "\n");
  work.Result.Worsen(changes.Differences.empty() ? exit_status::done : exit_status::notDone);
  if (changes.NotAnswered > 0) {
    const bool isUnusable = changes.NotAnswered == changes.Differences.size() && changes.Same == 0;
    if (isUnusable && !ProgramInterrupt().IsRaised()) {
      work.Result.Worsen(exit_status::unusable);
    }
    TellUnanswered(work);
  }
}

// ---- drift ----

namespace {

// What the instrument was left with. Throws UsageError if nobody knows.
Values LastLeft(Workplace& work) {
  auto history = ReadHistory(work);
  const auto operations = history.Operations();
  for (const auto& operation : operations) {
    const bool sends = action::SendsValues(operation.Begun->Action);
    if (sends && operation.Ended == nullptr) {
      work.Out.Error(Joined("operation ", std::to_string(operation.Number()), ", ", operation.Begun->Action,
                            ", has not ended: what it left is not known"));
    } else if (sends) {
      KeptValues(history, operation.Ended->Left);
    }
  }
  auto left = LeftLast(history, operations);
  if (!left) {
    throw UsageError{"no operation of the history has left values on an instrument"};
  }
  return *std::move(left);
}

// A value on all three.
struct Drifted {
  std::string Key;
  std::optional<std::string> Left;
  std::optional<std::string> Instrument;
  std::optional<std::string> File;
};

constexpr auto MembersOf(const Drifted*) {
  return std::tuple{Member{"key", &Drifted::Key, Presence::Always}, Member{"left", &Drifted::Left},
                    Member{"instrument", &Drifted::Instrument}, Member{"file", &Drifted::File}};
}

}  // namespace

void Drift(Workplace& work, const Words& /*words*/) {
  auto& link = DemandLink(work);
  const auto file = SideNamed(work, "file");
  const auto left = LastLeft(work);
  const auto says = WireFaceOf(work, file, {});
  auto names = NamesOf(says);
  std::ranges::copy_if(NamesOf(left), std::back_inserter(names),
                       [&says](const auto& name) { return says.Find(name) == nullptr; });
  const auto holds = WireFaceOfInstrument(link, names);
  DemandAnswers(holds, link);
  const auto descriptions = DescriptionsFor(work, file);
  std::vector<TextRow> rows{{"", "left last", "instrument", "file"}};
  for (const auto& name : names) {
    const Drifted value{
        .Key = name, .Left = left.TextOf(name), .Instrument = holds.TextOf(name), .File = says.TextOf(name)};
    if (SameValue(value.Left, value.Instrument) && SameValue(value.Instrument, value.File)) {
      continue;
    }
    const auto cell = [&](const auto& text) { return MeasuredText(descriptions, name, text); };
    rows.push_back({Printable(name), cell(value.Left), cell(value.Instrument), cell(value.File)});
    auto& json = work.Result.More["drift"].emplace_back(JsonOf(value));
    AddMeasure(json, "left_measure", descriptions, name, value.Left);
    AddMeasure(json, "instrument_measure", descriptions, name, value.Instrument);
    AddMeasure(json, "file_measure", descriptions, name, value.File);
  }
  const auto drifted = rows.size() - 1;
  work.Result.Counts = {{"same", names.size() - drifted}, {"different", drifted}};
  work.Out.Print((drifted > 0 ? ColumnsText(rows) : std::string{}) + CountsText(work.Result.Counts) + "\n");
  work.Result.Worsen(drifted == 0 ? exit_status::done : exit_status::notDone);
}

}  // namespace zolvane
