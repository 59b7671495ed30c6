// One host session with the add-in's COM objects, in the order that every host keeps.
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
  // Asks for caption and page, hands over window and host object, and loads the page. Throws
  // std::runtime_error when there is no page.
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
