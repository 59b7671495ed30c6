// What a record holds, as the JSON that is hidden in its page. docs/schema/record.json describes it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "custody/record/record.h"

namespace zolvane {

std::string DataOf(const RecordContent& content);

// Nothing unless the text is what DataOf returns for some content.
std::optional<RecordContent> ContentIn(std::string_view data);

// In lines, without a line end behind the last.
std::string Base64Of(std::string_view bytes);

// Line ends are passed over. Nothing behind the first sign that is no digit.
std::string BytesOfBase64(std::string_view text);

}  // namespace zolvane
