// The page of a record: what a person sees and prints.
#pragma once

#include <string>
#include <string_view>

#include "custody/record/record.h"

namespace zolvane {

// All of it behind the document type. The hidden element stands at its end.
std::string PageOf(const RecordContent& content, std::string_view hiddenElement);

}  // namespace zolvane
