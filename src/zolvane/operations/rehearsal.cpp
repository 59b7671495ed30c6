#include "zolvane/operations/rehearsal.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "custody/transfer/twin_link.h"
#include "text/joined.h"

namespace zolvane {

void Rehearse(Workplace& work, const std::function<void(Workplace& copy)>& command) {
  MemoryDisk files{work.Files};
  const auto twin =
      work.Link != nullptr ? std::make_shared<TwinLink>(Values{}, work.Link, ProgramInterrupt()) : nullptr;
  Workplace copy{.Options = work.Options,
                 .Files = files,
                 .Who = work.Who,
                 .Link = twin,
                 .Terminal = work.Terminal,
                 .Out = work.Out,
                 .Trace = work.Trace,
                 .Result = work.Result,
                 .IsRehearsal = true};
  command(copy);
  const auto guesses = twin != nullptr ? twin->Guesses() : std::vector<std::string>{};
  for (const auto& guess : guesses) {
    work.Out.Note(Joined("a guess: ", guess));
  }
  work.Result.More["rehearsal"] = {{"would_be_proven", work.Result.Outcome == outcome::done},
                                   {"guesses", guesses}};
  work.Result.Outcome.clear();
  work.Result.Checkpoint.reset();
}

}  // namespace zolvane
