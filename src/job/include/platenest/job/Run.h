#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platenest/foundation/StopToken.h"
#include "platenest/job/Job.h"
#include "platenest/job/JobErrors.h"
#include "platenest/job/Result.h"

namespace platenest {

using StopToken = TStopToken;

// In a run of kind Fill, whose phase is the method that the answer is from, BoundValue limits the worth of the placed
// copies. In runs of kinds Job and Circles it is the least number of plates that all copies asked for can need. Kinds
// Array, Label and Sucker report nothing. In a run of kind Nfp, whose phase is "nfp", Usage is the share of the pairs
// that are done and Unplaced the others.
struct Progress {
  double Seconds = 0;
  std::string Phase;  // the method at work
  int Plates = 0;
  double Usage = 0;
  Int64 Unplaced = 0;
  std::optional<double> BoundValue;
  std::optional<double> LpValue{};   // plates that the linear program of a column generation makes do with
  std::optional<double> Estimate{};  // what Result::Estimate would say now
};

struct RunHooks {
  // Called on the thread of run() at each improvement; false stops the run with the best answer so far.
  std::function<bool(const Progress&)> OnProgress;
  const StopToken* Stop = nullptr;  // the caller's, settable from any thread
};

// Answers a job. Every answer has passed the independent checker. Raises JobError kinds only. Runs on the caller's
// thread plus one watchdog thread; several runs may go on in parallel threads. Process-wide state is left as it was.
// Stop and time limit end the methods of a job with plates in their midst; the best checked answer so far is returned.
// They cut a run of kind Nfp between two pairs, one of kind Array, Label or Sucker between two searches.
PLATENEST_API Result run(const Job& AJob, const RunHooks& Hooks = {});

// Verifies a result against its job with code that shares nothing with the nesters: positions, plate, margin, gap,
// amounts, stock, turning locks, and every number that the result states about itself. Empty when all is right.
PLATENEST_API std::vector<Fault> CheckResult(const Job& AJob, const Result& AResult);

// One SVG document for a pair of a result of kind Nfp: the fixed part, the polygon, and the moving part at some places
// of its boundary with its origin marked. The parts are taken from the job, so the result must belong to it. Raises
// TRangeError for an unknown pair or part. Cost: linear in the vertices, and one copy of the moving part for each
// place.
PLATENEST_API std::string PairToSvg(const Job& AJob, const Result& AResult, int PairIndex);

// One SVG document for a result of kind Array, Label or Sucker: the part among its neighbours with the cell, with the
// label and its margin, or with the gripper's disc. The part is taken from the job, so the result must belong to it.
// Raises TRangeError for a result without such an answer or an unknown part.
PLATENEST_API std::string PartToSvg(const Job& AJob, const Result& AResult);

// One SVG document for a layout of a result; real units, y up.
PLATENEST_API std::string LayoutToSvg(const Result& AResult, int LayoutIndex);

}  // namespace platenest
