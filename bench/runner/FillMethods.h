#pragma once

#include <string>

#include "FillCase.h"

namespace platenest::bench {

struct TFillAnswer {
  TNestedRects Layout;
  double Worth = 0;
  double Ms = 0;
  std::string Fault;  // what was raised or what the checks found
};

// False for a method that turns freely where turning is forbidden.
bool Answers(const std::string& Method, const test::TFillCase& Case);

// The facade with method auto, or a nester alone. A nester is stopped after that many seconds and then gives what it
// has; bigfirst tries each part as the big one and keeps the best. Copies that a nester turns where turning is
// forbidden are taken out of its layout. Ms is the median of Repeat calls.
TFillAnswer AnswerFill(const std::string& Method, const test::TFillCase& Case, double Seconds, int Repeat = 1);

}  // namespace platenest::bench
