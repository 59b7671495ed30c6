// The host's objects as COM objects: what the add-in is given, over the interfaces of host/. Each keeps
// what it stands for alive.
#pragma once

#include <cstdint>
#include <memory>

#include "bench/windows/com/offered_object.h"
#include "host/host_object.h"
#include "host/host_window.h"

namespace zolvane {

ComPtr<IDispatch> OfferHostObject(std::shared_ptr<HostObject> object);

// How a status bar gives its panel under a key: as a property with an argument, or as an object whose default
// member takes it. Both kinds are in use.
enum class PanelsShape : std::uint8_t { IndexedProperty, DefaultMember };

ComPtr<IDispatch> OfferHostWindow(std::shared_ptr<HostWindow> window,
                                  PanelsShape shape = PanelsShape::DefaultMember);

}  // namespace zolvane
