#pragma once

#include <array>
#include <optional>
#include <string>

#include "CommandLine.h"
#include "platenest/job/Job.h"

namespace platenest {

struct RectSize {
  double Width = 0;
  double Height = 0;
};

// What the options say about the job. An option that is absent leaves the job file's word.
struct JobOverrides {
  std::optional<RectSize> PlateSize;
  std::optional<RectSize> PartSize;
  std::optional<int> Amount;
  std::optional<double> Gap;
  std::optional<std::array<double, 4>> Margin;
  std::optional<std::string> Units;
  std::optional<std::string> Method;
  std::optional<double> TimeLimit;
  std::optional<std::uint64_t> Seed;
  std::optional<int> Threads;
  std::optional<Int64> MemoryLimit;
  bool Deterministic = false;
  std::optional<std::string> Fixed;
  std::optional<std::string> Moving;
  bool Inside = false;
  std::optional<NfpQuality> Quality;
  std::optional<std::string> Of;
  std::optional<Along> Direction;
  bool Separate = false;
  std::optional<RectSize> LabelSides;
  std::optional<double> Offset;
  std::optional<double> Radius;
  bool HasPlatesTable = false;
  bool HasPartsTable = false;
  bool AreTheJob = false;  // there is no job file: every place of the job is an option's

  // Sizes replace those of the only plate or part, which is added when there is none: a part as often as it fits, a
  // plate of a whole job as many times as needed, one of circles too where all parts have an amount. Raises OptionError
  // where one option would have to stand for several plates or parts.
  void ApplyTo(Job& AJob) const;

  // A fault at a place of the job that came from an option names the option instead; others stay as they are.
  Fault AtOption(const Fault& AFault) const;
};

// The command line understood. Files are as given, "-" is a standard stream.
struct Arguments {
  Command Id = Command::One;
  std::vector<std::string> Positionals;
  JobOverrides Job;
  std::string PlatesFile;  // empty: none
  std::string PartsFile;   // empty: none
  std::string Output = "-";
  std::string SvgFolder;  // empty: no pictures
  std::string CsvFile;    // empty: no table
  bool RequireAll = false;
  bool Quiet = false;
  bool JsonProgress = false;
  bool NoColor = false;
};

// Raises OptionError with every option whose value cannot be read. Whether a value is sensible is the facade's to say.
Arguments ReadArguments(const CommandLine& Line);

}  // namespace platenest
