// The host's objects as the COM objects that the add-in gets, over the interfaces of host/. Each keeps
// the object behind it alive.
#pragma once

#include <cstdint>
#include <memory>

#include "bench/windows/com/offered_object.h"
#include "host/host_object.h"
#include "host/host_window.h"

namespace zolvane {

ComPtr<IDispatch> OfferHostObject(std::shared_ptr<HostObject> object);

// How a status bar finds a panel by its key: through a property that takes the key, or through an object
// whose default member does. There are hosts of both kinds.
enum class PanelsShape : std::uint8_t { IndexedProperty, DefaultMember };

ComPtr<IDispatch> OfferHostWindow(std::shared_ptr<HostWindow> window,
                                  PanelsShape shape = PanelsShape::DefaultMember);

}  // namespace zolvane
