#include "program/program_frame.h"

#include <cerrno>
#include <exception>
#include <ostream>

#include "program/write_failure.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {

void Complain(std::string_view program, std::ostream& errors, std::string_view text) {
  errors << Joined(program, ": ", OneLine(text), "\n") << std::flush;
}

int RunFramed(std::string_view program, std::ostream& errors, const std::function<int()>& body) {
  try {
    return body();
  } catch (const UsageError& error) {
    Complain(program, errors, error.what());
    return exit_status::unusable;
  } catch (const std::exception& error) {
    Complain(program, errors, Joined("the run broke off: ", error.what()));
  } catch (...) {
    Complain(program, errors, "the run broke off");
  }
  return exit_status::notDone;
}

int PrintInformation(std::string_view program, std::string_view text, std::ostream& output,
                     std::ostream& errors) {
  errno = 0;
  if (output << text << std::flush || ReaderHasLeft(LastWriteFailure())) {
    return exit_status::done;
  }
  Complain(program, errors, "standard output could not be written");
  return exit_status::notDone;
}

}  // namespace zolvane
