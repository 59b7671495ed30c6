// A host session with the add-in's COM objects, in the order that every host follows.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "win32/com_ptr.h"

struct IAddIn;
struct IAddInForm;

namespace zolvane {

class ComSession {
 public:
  // Reads the caption, gets the page, gives it the window and the host object, and loads it. Throws
  // std::runtime_error if there is no page.
  ComSession(ComPtr<IAddIn> addIn, const ComPtr<IDispatch>& object, const ComPtr<IDispatch>& window);

  // Saves, detaches and releases.
  ~ComSession();
  ComSession(const ComSession&) = delete;
  ComSession& operator=(const ComSession&) = delete;

  const std::string& Caption() const { return caption_; }
  IAddInForm* Form() const { return form_.Get(); }

  HWND Frame() const;
  long HelpTopic() const;
  bool WantsButtons() const;
  bool WantsStatusBar() const;
  void SaveChanges() const;

 private:
  ComPtr<IAddIn> addIn_;
  ComPtr<IAddInForm> form_;
  std::string caption_;
};

}  // namespace zolvane
