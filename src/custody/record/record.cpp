#include "custody/record/record.h"

#include "custody/disk/seal.h"
#include "custody/record/page.h"
#include "custody/record/record_data.h"
#include "text/joined.h"

namespace zolvane {
namespace {

constexpr std::string_view opening = "<!DOCTYPE html>\n<!-- Zolvane adjustment record -->\n";
constexpr std::string_view beforeData = "<pre hidden id=\"record-data\">";
constexpr std::string_view behindData = "\n</pre>\n";
constexpr SealForm sealForm{.Before = "<!-- SHA-256 of all bytes before this line: ", .Behind = " -->\n"};

std::string_view DataIn(std::string_view page) {
  const auto begin = page.find(beforeData);
  if (begin == std::string_view::npos) {
    return {};
  }
  const auto data = page.substr(begin + beforeData.size());
  return data.substr(0, data.find(behindData));
}

ReadRecordResult Refused(std::string reason) {
  return {.Content = std::nullopt, .Refusal = std::move(reason)};
}

}  // namespace

std::string WriteRecord(const RecordContent& content) {
  auto record =
      Joined(opening, PageOf(content, Joined(beforeData, "\n", Base64Of(DataOf(content)), behindData)));
  return record.append(SealOf(record, sealForm));
}

ReadRecordResult ReadRecord(std::string_view bytes) {
  if (!LooksLikeRecord(bytes)) {
    return Refused("is no adjustment record");
  }
  switch (StateOfSeal(bytes, sealForm)) {
    case SealState::Missing:
      return Refused("is cut off or was changed: it does not end in the SHA-256 of a record");
    case SealState::Broken:
      return Refused("is damaged or was changed: its SHA-256 is another than its last line says");
    case SealState::Whole:
      break;
  }
  if (!bytes.starts_with(opening)) {
    return Refused("was changed: it does not begin like a record");
  }
  auto content = ContentIn(BytesOfBase64(DataIn(WithoutSeal(bytes, sealForm))));
  if (!content) {
    return Refused("was written by another version: its data are of an unknown form");
  }
  return {.Content = std::move(content), .Refusal = {}};
}

bool LooksLikeRecord(std::string_view bytes) {
  return bytes.starts_with(opening) || StateOfSeal(bytes, sealForm) != SealState::Missing ||
         bytes.find(beforeData) != std::string_view::npos;
}

}  // namespace zolvane
