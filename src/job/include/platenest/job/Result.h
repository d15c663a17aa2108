#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platenest/job/Job.h"

// The answer to a job, in the caller's ids and units.
namespace platenest {

enum class ResultStatus : std::uint8_t {
  Complete,   // all demand placed, or for kind One the plate is full; for kinds of shapes the question is answered
  Partial,    // the search ended by itself with demand left
  TimeLimit,  // the time limit ended it
  Stopped,    // the host or the user ended it
};

using Box = std::array<double, 4>;  // left, bottom, right, top

struct Placement {
  std::string Part;
  bool Rotated = false;
  std::array<double, 2> Trans{0, 0};  // lower left corner of an unturned, lower right corner of a turned part
  Box Bounds{0, 0, 0, 0};

  friend bool operator==(const Placement&, const Placement&) = default;
};

// A circle, in the units of the job. Its part says the same radius.
struct CirclePlacement {
  std::string Part;
  std::array<double, 2> Center{0, 0};
  double Radius = 0;

  friend bool operator==(const CirclePlacement&, const CirclePlacement&) = default;
};

// One arrangement and how many plates are cut by it.
struct Layout {
  std::string Plate;
  double Width = 0;
  double Height = 0;
  int Copies = 1;
  double Usage = 0;                    // part area over plate area
  Box UsedBox{0, 0, 0, 0};             // around all parts
  std::optional<double> MinClearance;  // measured; nothing with fewer than two parts
  bool EdgeToEdge = false;             // straight cuts from edge to edge can part the layout
  Box FreeBox{0, 0, 0, 0};             // the largest free rectangle, the offcut worth keeping; clear of circles' boxes
  std::vector<Placement> Placements;
  std::vector<CirclePlacement> Circles{};  // kind Circles, instead of the placements

  friend bool operator==(const Layout&, const Layout&) = default;
};

// Holds without trust in a heuristic.
struct Bound {
  // "count", or "value" of all placed copies in kind Fill; in kinds Job and Circles "plates" and "cost", which are no
  // less in any answer that places all copies asked for by number of parts that fit a plate, and "area" of all placed
  // copies.
  std::string What;
  std::string Kind;  // "area", "barnes", "fekete", "oler", "plates", "stock", or "demand" where no more is asked for
  double Value = 0;

  friend bool operator==(const Bound&, const Bound&) = default;
};

// What a search takes for a lower bound while a heuristic it rests on may have missed something.
struct HeuristicBound {
  std::string What;  // "plates"
  std::string Kind;  // "cg": the linear program over the layouts that were found
  double Value = 0;

  friend bool operator==(const HeuristicBound&, const HeuristicBound&) = default;
};

struct PlateUse {
  std::string Id;
  int Used = 0;
  std::optional<int> Count;  // nothing: as many as needed

  friend bool operator==(const PlateUse&, const PlateUse&) = default;
};

struct PartUse {
  std::string Id;
  std::optional<int> Amount;  // nothing: without limit
  int Placed = 0;
  int Unplaced = 0;    // 0 without a limit
  std::string Reason;  // beside unplaced copies: too_large, no_stock, time, left_by_method

  friend bool operator==(const PartUse&, const PartUse&) = default;
};

struct Summary {
  int Plates = 0;
  double Usage = 0;
  double PartArea = 0;
  double PlateArea = 0;
  double Cost = 0;
  std::optional<double> Value{};  // what the placed copies are worth, in kind Fill

  friend bool operator==(const Summary&, const Summary&) = default;
};

// One answer of kind Nfp. Paths are translations of the moving part as it is drawn: its origin may stand on the paths
// and outside of what they enclose, or, with Inside, on them and within. Outer contours run counter-clockwise, cavities
// clockwise, contours may touch. Coordinates are whole multiples of 1e-5.
struct NfpPair {
  std::string Fixed;
  std::string Moving;
  NfpQuality Quality = NfpQuality::Complete;  // the one that the paths really have
  std::vector<PolygonRing> Paths;             // with Inside, none says that there is no place

  friend bool operator==(const NfpPair&, const NfpPair&) = default;
};

// The answer of kind Array: copies of the part, moved by i * First + j * Second for all whole i and j, keep the gap.
struct ArrayAnswer {
  std::array<double, 2> First{0, 0};
  std::array<double, 2> Second{0, 0};
  double CellArea = 0;  // of the parallelogram of the two vectors
  double Density = 0;   // part area over cell area

  friend bool operator==(const ArrayAnswer&, const ArrayAnswer&) = default;
};

// The answer of kind Label. The label stands from (0, 0) to (Width, Height); where Rotated it is turned a quarter turn
// about its own centre; then it moves by Move, which makes Bounds. All is 0 where there is no place.
struct LabelAnswer {
  bool Found = false;
  bool Rotated = false;
  std::array<double, 2> Move{0, 0};
  double Margin = 0;  // clear all round the label
  Box Bounds{0, 0, 0, 0};

  friend bool operator==(const LabelAnswer&, const LabelAnswer&) = default;
};

// The answer of kind Sucker.
struct SuckerAnswer {
  bool Found = false;
  std::array<double, 2> Center{0, 0};

  friend bool operator==(const SuckerAnswer&, const SuckerAnswer&) = default;
};

// What was in force.
struct RunInfo {
  std::string Method;
  std::uint64_t Seed = 1;
  int Threads = 1;
  double TimeLimit = 60;
  Int64 MemoryLimit = Int64{1} << 30;
  bool Deterministic = false;
  std::string Version;
  double Seconds = 0;

  friend bool operator==(const RunInfo&, const RunInfo&) = default;
};

struct Result {
  std::string Name;
  JobKind Kind = JobKind::One;
  std::string Units;
  double Gap = 0;
  std::array<double, 4> Margin{0, 0, 0, 0};
  ResultStatus Status = ResultStatus::Complete;
  bool Proved = false;  // a bound is met
  Summary Total;
  std::vector<Bound> Bounds;
  std::optional<HeuristicBound> Estimate{};  // kind Job; never one of the bounds
  std::vector<Layout> Layouts;
  std::vector<PlateUse> Plates;
  std::vector<PartUse> Parts;
  std::vector<std::string> Warnings;
  RunInfo Run;
  std::vector<NfpPair> Pairs{};          // kind Nfp: moving parts in the order of the job under each fixed one
  std::optional<ArrayAnswer> Array{};    // kind Array
  std::optional<LabelAnswer> Label{};    // kind Label
  std::optional<SuckerAnswer> Sucker{};  // kind Sucker

  friend bool operator==(const Result&, const Result&) = default;
};

// Whether a label or sucker was asked for that has no place.
inline bool LacksPlace(const Result& AResult) {
  return (AResult.Label && !AResult.Label->Found) || (AResult.Sucker && !AResult.Sucker->Found);
}

PLATENEST_API std::string_view StatusName(ResultStatus Status);

// Reads a result in the form platenest-result/1; raises InputError, LimitError or MemoryError like ParseJob. Only the
// form is checked: what the numbers say is for CheckResult. In a deterministic run seconds and threads keep their
// defaults.
PLATENEST_API Result ParseResult(std::string_view Json);

// Keys in fixed order, one placement a line; a deterministic run leaves out seconds and threads, so that equal answers
// are equal bytes. Raises InputError, like JobToJson, for what JSON cannot hold.
PLATENEST_API std::string ResultToJson(const Result& AResult);

PLATENEST_API std::string_view ResultSchema();

}  // namespace platenest
