// Run files: lists of commands, one on a line. # starts a comment, double quotes group words.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "bench/job/job.h"

namespace zolvane {

// Reads the file, or `input` if it is called "-", and those that it runs in turn. Throws
// UsageError, which names the line.
Job ReadRunFile(const std::string& file, std::istream& input);

// The words of a line: separated by spaces and tabs; double quotes group, and within them "" is a quote.
// Throws UsageError for a quote that does not end.
std::vector<std::string> SplitWords(std::string_view line);

}  // namespace zolvane
