// The frame of every operation that is recorded: look, settle what speaks against it, keep what is there,
// begin, act and prove, end. What an operation has of its own it says in the four steps of CustodyOperation.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "custody/history/history.h"
#include "custody/values/descriptions.h"
#include "custody/values/values.h"
#include "zolvane/work/objections.h"
#include "zolvane/work/workplace.h"

namespace zolvane {

// Both sides at one moment.
struct Moment {
  std::optional<std::string> Configuration{};  // its bytes; empty: the file is not there
  std::optional<Values> Answers{};             // of the instrument; empty: it was not asked
};

// Another file that an operation reads or writes, with its bytes.
struct KeptFile {
  std::string Path;
  std::optional<std::string> Before{};
  std::optional<std::string> After{};
};

// Among the counts of an operation that is settled, but not as it was meant.
inline const std::string settledCount = "settled";

// How an operation ended.
struct Conclusion {
  std::string_view Outcome = outcome::done;
  std::string Account{};  // for people: a paragraph
  OperationDetails Details{};
  bool IsSettled =
      false;  // what both sides hold is proven, also where it is not what was meant: nothing to resume
};

// What the steps of an operation share.
class Custody {
 public:
  // Keeps other programs out of the history until this ends. Throws UsageError if it cannot be written.
  Custody(Workplace& work, std::string_view action);

  Workplace& Work;
  History Kept;
  Objections Doubts;  // filled in by Look
  Moment Found;       // filled in by Look
  Moment Intended;    // the same, as far as it is known; the values that are to be sent or written
  Moment Left;        // filled in by Act
  std::optional<KeptFile> OtherFile;
  Entry Draft;                          // what both entries say
  std::optional<OperationRange> About;  // of an undo or a resume; filled in by Look

  // Asks the instrument what it is, and objects to another than expected. Throws UsageError without an
  // answer.
  void LookAtInstrument();

  // Checks what is to be sent or to come into force, and objects to errors.
  void LookFor(std::vector<Finding> findings);

  // Reads what is in the way of a file that is to be written, and objects to it. Throws UsageError if it cannot be
  // written there.
  void LookAtTarget(const std::string& path);

  // The number of the operation that has begun.
  std::uint64_t Number() const { return number_; }

  // ---- For the frame ----

  // Throws UsageError if the configuration is to change and cannot be written.
  void DemandWritable() const;

  // Settles what is wrong with the history. Throws Refusal unless all of it is let pass.
  void SettleDamage();

  // Settles all other objections, and sets a damaged history aside. Throws Refusal unless all are let pass, and
  // UsageError if the history cannot be set aside.
  void SettleDoubts();

  // Records what was found and what is intended. Throws UsageError if that fails; neither side was changed then.
  void Begin();

  // Records the conclusion. Never throws: what cannot be recorded is an error on the console and makes the outcome
  // `not_proven`.
  void End(const Conclusion& conclusion);

 private:
  // The name of an object; the empty one if there is nothing to keep. Empty if it cannot be kept.
  std::optional<std::string> Keep(const std::optional<std::string>& bytes);
  std::optional<std::string> Keep(const std::optional<Values>& values);
  bool KeepOtherFile();
  std::string DamageOfObjects() const;
  void RecordOutside();
  bool Settles(const Entry& unfinished) const;
  Entry EndOf(const Entry& unfinished) const;
  void EndOlderOnes();
  const std::optional<std::string>& OwnConfiguration() const;
  void RecordEnd(const Conclusion& conclusion);

  std::uint64_t number_ = 0;
};

class CustodyOperation {
 public:
  virtual ~CustodyOperation() = default;

  virtual std::string_view Action() const = 0;

  // Finds what is there, what is meant, and what speaks against it. Changes nothing. Throws UsageError.
  virtual void Look(Custody& custody) = 0;

  // Tells the user what would change.
  virtual void Show(Custody& custody) = 0;

  // Changes it, and proves it. Every failure is in the conclusion.
  virtual Conclusion Act(Custody& custody) = 0;
};

// The whole operation. The report says what it came to.
void Operate(Workplace& work, CustodyOperation& operation);

// Prints what would change on one side.
void ShowChanges(Workplace& work, std::string_view where, const Comparison& changes,
                 const Descriptions& descriptions, std::string_view meant);

// Why the link did not answer, for people.
std::string LinkProblem(const BenchLink& link);

// Throws UsageError if another file was meant and the configuration named.
void DemandOtherFile(const Workplace& work, const std::string& path);

// Throws UsageError if something was not answered.
void DemandAnswers(const Values& answers, const BenchLink& link);

}  // namespace zolvane
