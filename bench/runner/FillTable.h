#pragma once

#include <string>
#include <vector>

#include "FillInstances.h"

namespace platenest::bench {

// One answer against one published result.
struct TFillLine {
  std::string Id;  // of the instance
  std::string Group;
  TFillRef Ref;
  double Worth = 0;
  double Ms = 0;
  std::string Fault;

  double Share() const { return Ref.Best > 0 ? Worth / Ref.Best : 1; }
};

// Prints a table with a line for each group and kind of reference, ready for the documents, and under it what all
// lines together say: answers below those of the same job without turning, the thirteen gcut jobs without limit
// against their proven worth, answers above the best known one, and faults.
void PrintFillTable(const std::vector<TFillLine>& Lines);

}  // namespace platenest::bench
