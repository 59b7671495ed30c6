// What upload and download have in common around their steps.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/tables/current_records.h"
#include "operations/operation_context.h"

namespace zolvane {

// Sets the status text, disables the controls, loads the records in force and asks the question in a box with
// OK and Cancel. Returns the number of the button, or nullopt if the box could not be shown.
inline std::optional<std::int32_t> StartAndConfirm(const OperationContext& context, std::string_view status,
                                                   std::string_view title, std::string_view question) {
  PassOver(context.Host.SetStatusText(status));
  PassOver(context.Page.EnableControls(false));
  RefreshCurrentRecords(context.Config);
  return context.Dialogues.ShowMessageBox({.Text = std::string{question},
                                           .Style = message_style::okCancel + message_style::exclamationIcon,
                                           .Title = std::string{title}});
}

// The end step: nothing is pending in the host, the status text is cleared, the controls are enabled.
inline void EndOperation(const OperationContext& context) {
  PassOver(context.Host.SetChanged(false));
  PassOver(context.Host.SetStatusText(""));
  PassOver(context.Page.EnableControls(true));
}

}  // namespace zolvane
