// The object model and the window that the host with windows gives to the add-in.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "bench/job/box_answers.h"
#include "bench/windows/window/main_window.h"
#include "host/host_object.h"
#include "host/host_window.h"

namespace zolvane {

struct WindowedHostSetup {
  MainWindow* Window = nullptr;  // outlives the host's objects
  std::shared_ptr<InstrumentLink> Link;
  bool OffersDialog = false;

  // Called for each message of the host's own dialogue, when it is open.
  std::function<void(const Question&)> MessageOpened;
};

std::shared_ptr<HostObject> MakeWindowedObject(WindowedHostSetup setup);

// `told` gets each text of the status panel.
std::shared_ptr<HostWindow> MakeWindowedWindow(MainWindow& window,
                                               std::function<void(const std::string&)> told);

}  // namespace zolvane
