#pragma once

#include <string>
#include <vector>

namespace platenest::bench {

// How far the answers of the kernel are judged.
enum class TOracle { Off, Sampling, Area };

// The nester of the suite for one size on one plate.
enum class TOneMethod { Strip, Fiveblock };

struct TArguments {
  std::string Suite;
  std::vector<std::string> Files;
  std::string Json;
  int Repeat = 1;
  int Rows = 0;
  TOneMethod Method = TOneMethod::Strip;
  std::string Fill = "auto";  // method of the suite for many sizes on one plate
  double Seconds = 5;         // for each of its jobs
  std::string Id;             // regular expression for the jobs to run; empty for all
  bool Quiet = false;
  int Most = 400;  // pairs or parts of an instance
  int Pair = -1;   // the one pair to run, by its number
  bool Turned = false;
  bool Inside = false;
  TOracle Oracle = TOracle::Area;
  int Pairs = 1000;  // cases of a campaign
  int Seed = 1;      // of its first case
  int Edges = 60;    // of its shapes, at most
};

// False for words that make no sense; std::invalid_argument for numbers that are none.
bool ReadArguments(int argc, char** argv, TArguments& Arguments);

extern const char* const kUsage;

}  // namespace platenest::bench
