#pragma once

#include <string>
#include <vector>

namespace platenest::bench {

// How far the answers of the kernel are judged.
enum class TOracle { Off, Sampling, Area };

struct TArguments {
  std::string Suite;
  std::vector<std::string> Files;
  std::string Json;
  std::string Data;  // folder of the instances of circles
  int Every = 1;     // of the instances of circles, each that many-th
  int Threads = 1;   // of packings of circles
  int Repeat = 1;
  int Rows = 0;
  std::string Method;  // of the suite; empty for the first one that it knows, in job-random for all
  double Seconds = 5;  // for each job
  std::string Id;      // regular expression for the jobs to run, in circles the group of times; empty for all
  std::string Only;    // pattern with * and ? for the whole jobs to run; empty for the core ones, where some are marked
  bool All = false;    // not the core ones alone
  bool Turn = true;    // parts of whole jobs may turn
  bool Stops = false;  // each answer is stopped at a random moment
  bool Deterministic = false;
  std::string Faults;  // folder for the jobs that went wrong
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
