#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platenest/job/Job.h"

namespace platenest::bench {

// What is published about a whole job.
struct TJobRef {
  bool Turned = false;          // turning is allowed
  std::string Cut;              // any, guillotine, 2-stage, ...
  std::optional<double> Best;   // fewest plates known
  std::optional<double> Bound;  // fewest plates possible
  std::string Source;           // of Best
};

struct TJobInstance {
  std::string Id;
  std::string Group;  // class or family
  Job AJob;
  std::vector<TJobRef> Refs;

  int Copies() const;
  // Turning makes nothing worse: what parts that keep their orientation reach is reached by parts that may turn, and
  // what those cannot do, the others cannot.
  const TJobRef* Best(bool Turned) const;
  // For all layouts, and for those that straight cuts from edge to edge can part; 0 for none.
  double Bound(bool Turned, bool Guillotine) const;
};

// The jobs for fewest plates of a file, those whose ids match the pattern with * and ?. Without a pattern those marked
// as core, where any is, unless All.
std::vector<TJobInstance> ReadJobInstances(const std::string& File, const std::string& Only, bool All);

}  // namespace platenest::bench
