#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platenest/job/Run.h"

// The program behind main(): words in, files and streams out, an exit code back.
namespace platenest {

enum ExitCode : int {
  kExitDone = 0,    // a checked result was written, complete or not
  kExitFaults = 1,  // the same with demand left and --require-all, or `check` found faults
  kExitWrongOptions = 2,
  kExitWrongInput = 3,
  kExitOverLimit = 4,
  kExitFileTrouble = 5,
  kExitNoMemory = 6,
  kExitStopped = 7,       // stopped before any result
  kExitInternal = 70,     // no answer passed the check
  kExitInterrupted = 130  // a second interrupt
};

// What answers a job: platenest::run, or a stand-in of a test.
using Runner = std::function<Result(const Job&, const RunHooks&)>;

// Words are those behind the program's name. Never throws. Takes over SIGINT, SIGTERM, SIGPIPE and SIGXFSZ of the
// process.
int RunProgram(const std::vector<std::string>& Words, const Runner& Answer = run);

}  // namespace platenest
