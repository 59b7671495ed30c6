// An operation with everything it works on, all on one journal.
#pragma once

#include <string>
#include <string_view>

#include "config/configuration.h"
#include "config/tables/current_records.h"
#include "operations/operation_context.h"
#include "support/fake_host.h"
#include "support/fake_page.h"
#include "support/texts.h"

namespace zolvane {

struct OperationFixture : FakeHost {
  // The configuration file's content. No record is in force yet.
  explicit OperationFixture(std::string_view text = "") { Settings().Load(text); }

  HostAttachment Attachment = Attached();
  Configuration Config{Process};
  FakePage Page{Calls};
  OperationContext Context{Process, Process, Attachment, Config, Page};

  // Brings the records of the file into force, without leaving events.
  void Refresh() {
    RefreshCurrentRecords(Config);
    Calls.Clear();
  }

  std::string Value(std::string_view section, std::string_view key) {
    return Settings().Value(section, key).value_or("(missing)");
  }

  Texts Writes() const { return Calls.Of({"write "}); }
  Texts Sent() const { return Calls.Of({"send "}); }
  Texts StatusTexts() const { return Calls.Of({"status="}); }

  // Everything but the readings of files and the calls around each command.
  Texts Steps() const {
    return Calls.Of({"write ", "send ", "status=", "changed=", "enable ", "select ", "pump ", "message ",
                     "box ", "append ", "open ", "save ", "yield", "load "});
  }
};

}  // namespace zolvane
