#pragma once

#include <string>

#include "command/command_line.h"
#include "command/outcome.h"

namespace kestrel::command {

struct MachineFile {
  std::string text;
  int left_out = 0;  // GPUs that the runtime counts beyond those in the text
};

// The machine file of what the HIP runtime reports here. Where a call of the survey fails, the file
// has the fault, so that the simulated machine fails as this one does. Names are kept as far as a
// machine file can hold them: see PrintableText. So are amounts: those above 2^63 - 1 become that.
MachineFile RecordMachine();

Outcome RunRecord(const RecordRequest& request);

}  // namespace kestrel::command
