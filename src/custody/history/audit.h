// Whether a history is what it was when it was written.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "custody/disk/disk.h"
#include "custody/history/checkpoint.h"

namespace zolvane {

struct AuditResult {
  bool Exists = false;
  bool IsIntact = false;           // all lines follow from each other, all objects are what their names say
  bool IsComplete = false;         // nothing is missing between the first entry and the last
  bool IsAnchored = false;         // agrees with all checkpoints, of which there is at least one
  std::uint64_t AnchoredUpTo = 0;  // the number of the last entry that a checkpoint proves; 0: none
  std::uint64_t LastEntry = 0;
  std::vector<std::string>
      Problems;                    // sentences without their full stop, each for what was not as it should be
  std::vector<std::string> Notes;  // what is no defect: a torn last line, an operation without an end
};

// Audits the history of the configuration in that folder. Changes nothing. `against` are checkpoints that were kept
// elsewhere.
AuditResult Audit(Disk& disk, const std::string& folder, const std::vector<Checkpoint>& against = {});

}  // namespace zolvane
