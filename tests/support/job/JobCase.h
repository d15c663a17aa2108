#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platenest/job/Job.h"

namespace platenest::test {

// What is known to hold all parts that the stock can hold at all.
struct TJobSample {
  int Plates = 0;
  double Cost = 0;
};

struct TJobCase {
  Job AJob;
  std::optional<TJobSample> Sample;  // of jobs that were made by cutting plates up without waste
};

// A whole job out of whole numbers: Pick(n) gives one from 0 to n - 1. Lengths are whole thousandths (metres), units,
// tenths, or whole millimetres in inches. One to four plate kinds, some equal or equal when turned, with stock that is
// unlimited, ample, too small or one of each; remnants, stated costs and costs of 0; gaps, margins that differ from
// edge to edge. Mostly up to twelve part kinds with 1 to 200 copies, some without limit, some locked, some of one size,
// some as long as the plate with or without its margin, some that fit nowhere. A quarter of the jobs is made by cutting
// plates up. Parts never need more than about 400 plates, mostly up to 40.
TJobCase MakeJobCase(const std::function<int(int)>& Pick);
TJobCase MakeJobCase(unsigned Seed);

// Asks for a method. Those that turn parts freely refuse jobs with locks, so these lose them.
void AskFor(Job& AJob, const std::string& Method);

// The job without all plate kinds, part kinds and copies that it can lose one after the other and still Fails.
Job Shrunk(Job AJob, const std::function<bool(const Job&)>& Fails);

}  // namespace platenest::test
