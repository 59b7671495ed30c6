// "Load from File" and "Save To File": copying the tables between the configuration file and a backup file.
#pragma once

#include <string>
#include <string_view>

#include "host/dialogues.h"
#include "operations/operation_context.h"

namespace zolvane {

// The page's file dialogue as it is before its first use.
FileDialogue DesignedFileDialogue();

// Asks for confirmation and for a file, copies its tables over the configuration file and reloads the page.
// `cdgFile` is the page's file dialogue; it remembers the file that was chosen.
void ImportCalibrationFile(const OperationContext& context, FileDialogue& cdgFile);

// Asks for a file and copies the tables of the configuration file into it.
void ExportCalibrationFile(const OperationContext& context, FileDialogue& cdgFile);

// Copies every record of the copied tables, from item 1 up to the first without a name, and the heights,
// which are written even when the source has none. Tip types, axes, volume corrections and the keys that no
// save writes are not copied. Records are converted with the records in force of the configuration file,
// whichever file is the source. With `separate` an empty line is appended to the destination after each
// table; after the heights it always is. `prefix` starts the status texts ("Importing", "Exporting"). The
// destination is never cleared.
void CopyAllTables(const OperationContext& context, const std::string& source, const std::string& destination,
                   bool separate, std::string_view prefix);

// Appends one empty line to the file if the flag is set.
void AppendBlankLine(const OperationContext& context, const std::string& file, bool flag);

}  // namespace zolvane
