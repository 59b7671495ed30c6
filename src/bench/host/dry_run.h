// Runs an operation without any effect.
#pragma once

#include <cstddef>
#include <string>

namespace zolvane {

// How many commands the query, upload or download button would send to an instrument that answers each of
// them; 0 for any other button. Reads the configuration file of the program folder and changes nothing.
std::size_t CountCommands(const std::string& programFolder, int button);

// The file has at least one of the sections from which the import button would read records; one that cannot
// be read has none. Reads the configuration file of the program folder and changes nothing.
bool HoldsBackup(const std::string& programFolder, const std::string& file);

}  // namespace zolvane
