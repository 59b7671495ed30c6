// The reference of Zolvane.ini, made from the tables by which the file is loaded and saved, and from what the
// operations do with each value of the sample.
#pragma once

#include <string>

namespace zolvane {

// The document as Markdown.
std::string ConfigurationReference();

}  // namespace zolvane
