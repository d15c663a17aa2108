#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

// A job as a person states it: text ids, one unit for all lengths, y up. The same record stands behind the job file, the
// program's options and the C++ door.
namespace platenest {

enum class JobKind : std::uint8_t {
  One,   // how many of one size on one plate
  Fill,  // best use of one plate, many sizes
  Job,   // a whole demand over a stock of plates
};

enum class Rotate : std::uint8_t { Any, None };

struct Plate {
  std::string Id;
  double Width = 0;
  double Height = 0;
  std::optional<int> Count = 1;  // nothing: as many as needed
  std::optional<double> Cost;    // nothing: the plate's area
  bool Remnant = false;          // used first
};

struct Part {
  std::string Id;
  double Width = 0;
  double Height = 0;
  std::optional<int> Amount = 1;  // nothing: without limit
  Rotate Turn = Rotate::Any;
  std::optional<double> Value;    // worth of one copy; nothing: its area
  std::string Label;
};

struct Options {
  std::string Method = "auto";
  double TimeLimit = 60;              // seconds; 0 for none
  std::uint64_t Seed = 1;
  int Threads = 0;                    // 0: up to 4
  Int64 MemoryLimit = Int64{1} << 30; // bytes
  bool Deterministic = false;
};

struct Job {
  std::string Name;
  JobKind Kind = JobKind::One;
  std::string Units = "mm";                // a name for people: mm, cm, m, in, none; nothing is converted
  double Gap = 0;                          // least distance between two parts
  std::array<double, 4> Margin{0, 0, 0, 0};// left, bottom, right, top: kept free at the plate's edges
  std::vector<Plate> Plates;
  std::vector<Part> Parts;
  Options Run;
};

// Limits on input, each a LimitError.
namespace limits {
inline constexpr Int64 kJobBytes = Int64{64} << 20;
inline constexpr int kNestingDepth = 32;
inline constexpr int kPartKinds = 10000;
inline constexpr Int64 kCopies = 1000000;   // demanded in total, and placed in one layout
inline constexpr int kPlateKinds = 1000;
inline constexpr double kSmallestSize = 1e-3;
inline constexpr double kLargestSize = 1e6;
inline constexpr double kSizeRatio = 1e6;   // between the largest and the smallest size of a job
inline constexpr int kIdCharacters = 200;
}  // namespace limits

PLATENEST_API std::string_view KindName(JobKind Kind);

// Reads a job in the form platenest-job/1. Raises InputError or LimitError with every fault found, up to 20.
// In kind One an absent amount means as many as fit. Absent ids become "plate-1", "part-1", ... by position.
PLATENEST_API Job ParseJob(std::string_view Json);

// The same checks on a job that was built in code. run() calls it first.
PLATENEST_API void CheckJob(const Job& AJob);

// The job in the form platenest-job/1, keys in fixed order, doubles in the shortest form that reads back the same.
PLATENEST_API std::string JobToJson(const Job& AJob);

// The JSON Schema (draft 2020-12) of the job form.
PLATENEST_API std::string_view JobSchema();

}  // namespace platenest
