#include "operations/upload.h"

#include <string>
#include <string_view>

#include "config/text.h"
#include "operations/confirmation.h"
#include "operations/instrument_command.h"
#include "operations/upload_script.h"

namespace zolvane {
namespace {

constexpr std::string_view uploadStatus = "Uploading Data to Zolvane";

std::string BuildScript(const OperationContext& context) {
  return BuildUploadScript(context.Config, [&context](std::string_view group) {
    PassOver(context.Host.SetStatusText(std::string{uploadStatus}.append("...").append(group)));
  });
}

void SendScript(const OperationContext& context, std::string_view script) {
  PassOver(context.Host.SetStatusText(uploadStatus));
  std::string reply;
  for (const auto& line : context.Config.Settings.SplitText(lineBreak, script)) {
    // Reads the flag for every line, even once it has been true: each line decides for itself.
    if (!context.Host.MayGoOn()) {
      continue;
    }
    bool ok = false;
    SendInstrumentCommand(context, line, reply, ok);
    if (!ok) {
      return;
    }
  }
}

}  // namespace

void UploadCalibration(const OperationContext& context) {
  const auto answer = StartAndConfirm(context, uploadStatus, "Upload Calibration Data to Zolvane",
                                      "The calibration data stored on this computer will be transferred\r\n"
                                      "to the Zolvane overwriting any existing data.\r\n\r\n"
                                      "Click [OK] to upload this information.");
  if (answer == message_answer::cancel) {
    return;
  }
  if (answer == message_answer::ok) {
    SendScript(context, BuildScript(context));
  }
  EndOperation(context);
}

}  // namespace zolvane
