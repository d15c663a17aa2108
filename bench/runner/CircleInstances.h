#pragma once

#include <string>
#include <vector>

#include "platenest/job/Job.h"

namespace platenest::bench {

// Circles of radius 1 on a plate.
struct TEqualInstance {
  std::string Id;
  double Width = 0;
  double Height = 0;
  int Best = 0;      // known
  int Bound = 0;     // proven
  int Patterns = 0;  // what closed forms are known to reach
  bool IsOptimal = false;
};

struct TCircleSizes {
  std::vector<double> Radii;
  std::vector<int> Counts;

  int Copies() const;
  double Area() const;
};

// All circles into a strip, as short as possible.
struct TStripInstance {
  std::string Id;
  double Width = 0;
  TCircleSizes Sizes;
  double Best = 0;         // known length
  double Bound = 0;        // proven length
  double BottomLeft = 0;   // lengths that a simple program reached; 0 for none
  double GreedyUnder = 0;  // greedy under bisection
};

// As much area as possible on one plate, on which all circles are known to fit.
struct TAreaInstance {
  std::string Id;
  double Length = 0;
  double Width = 0;
  TCircleSizes Sizes;
};

// The instances of a folder of data files, those whose ids match the pattern with * and ? where there is one, and of
// these each Every-th. Lengths of strips and their plates are scaled as the files ask for.
std::vector<TEqualInstance> ReadEqualInstances(const std::string& Folder, const std::string& Only, int Every);
std::vector<TStripInstance> ReadStripInstances(const std::string& Folder, const std::string& Only, int Every);
std::vector<TAreaInstance> ReadAreaInstances(const std::string& Folder, const std::string& Only, int Every);

// The circles on one plate as a job.
Job JobOf(const std::string& Name, double Width, double Height, const TCircleSizes& Sizes);

}  // namespace platenest::bench
