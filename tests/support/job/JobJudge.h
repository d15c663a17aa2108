#pragma once

#include <optional>
#include <string>

#include "JobCase.h"
#include "platenest/job/Result.h"

// Judges answers to whole jobs and to fills of one plate by arithmetic of its own: nothing is taken from the facade's
// checker.
namespace platenest::test {

// What is wrong with an answer as one sentence, empty if nothing: every copy within its plate less margin, clear of the
// others, at the place that its turn and shift say; each copy asked for placed or unplaced, none twice; no more
// plates than in stock; a summary that follows from the placements; no bound beaten; reasons, status and proof that the
// numbers bear out. A copy that is left although an unused plate holds it is a fault of a search that ended by itself.
std::string JobFault(const Job& AJob, const Result& AResult);

// The same, and no bound may rule the sample out.
std::string JobFault(const TJobCase& Case, const Result& AResult);

// What answers are compared by, in this order.
struct TJobWorth {
  std::optional<double> Value;  // of a fill, where nothing else counts; more is better
  double UnplacedArea = 0;
  double UnlimitedArea = 0;  // placed of parts without limit; more is better
  double Cost = 0;
  int Plates = 0;
  double LastUsage = 0;  // of the emptiest plate; less is better
};

TJobWorth JobWorthOf(const Job& AJob, const Result& AResult);
bool IsWorse(const TJobWorth& A, const TJobWorth& B);

}  // namespace platenest::test
