#pragma once

#include <optional>
#include <string>
#include <vector>

#include "FillCase.h"

namespace platenest::bench {

// A published result and what it holds for.
struct TFillRef {
  bool Turned = false;  // turning is allowed
  bool Limited = true;  // amounts count
  std::string Cut;      // any, guillotine, 3-stage
  double Best = 0;      // best known worth
  bool Proven = false;  // nothing better exists
  std::optional<double> Bound;
};

struct TFillInstance {
  std::string Id;
  std::string Group;
  test::TFillCase Case;  // amounts below 0 are without limit
  std::vector<TFillRef> Refs;
};

// The jobs of a file whose ids match the regular expression as a whole, in either case of letters; all of
// them when it is empty.
std::vector<TFillInstance> ReadFillInstances(const std::string& File, const std::string& Id);

// The instance with turning or not, and with its amounts or with more than the plate can hold.
test::TFillCase CaseOf(const TFillInstance& Instance, bool Turned, bool Limited);

}  // namespace platenest::bench
