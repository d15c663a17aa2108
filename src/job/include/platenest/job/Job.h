#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

// A job as a person states it: text ids, one unit for all lengths, y up. The same record stands behind the job file,
// the program's options and the C++ door.
namespace platenest {

enum class JobKind : std::uint8_t {
  One,      // how many of one size on one plate
  Fill,     // best use of one plate, many sizes
  Job,      // a whole demand over a stock of plates
  Nfp,      // no-fit polygons, or the regions where parts fit into others
  Array,    // two vectors that repeat a part
  Label,    // where a label fits in a part, with its margin
  Sucker,   // where a round gripper holds a part
  Circles,  // circles of one or several sizes on one or many plates
};

enum class Rotate : std::uint8_t { Any, None };

// How well a no-fit polygon follows the shapes, asked for or delivered.
enum class NfpQuality : std::uint8_t {
  Convex,    // rests on convex hulls: no overlap, but loose
  Concave,   // rests on reduced outlines that keep the large concavities
  Complete,  // full outlines
  Exact,     // full outlines, never reduced, however long that takes
};

// Which way the vectors of an array go.
enum class Along : std::uint8_t {
  X,     // the first one along the X axis
  Y,     // the first one along the Y axis
  XY,    // the first one along the X axis, the second one along the Y axis
  Free,  // wherever copies lie densest
};

using PolygonPoint = std::array<double, 2>;
// Closed by itself, in either turning sense; the first point may stand again last.
using PolygonRing = std::vector<PolygonPoint>;

struct Plate {
  std::string Id;
  double Width = 0;
  double Height = 0;
  std::optional<int> Count = 1;  // nothing: as many as needed
  std::optional<double> Cost{};  // nothing: the plate's area
  bool Remnant = false;          // used first

  friend bool operator==(const Plate&, const Plate&) = default;
};

// A rectangle from (0, 0) to (Width, Height), a polygon where Outline holds points, or a circle where Radius is not 0.
struct Part {
  std::string Id;
  double Width = 0;  // 0 beside an outline, as Height
  double Height = 0;
  std::optional<int> Amount = 1;  // nothing: without limit
  Rotate Turn = Rotate::Any;
  std::optional<double> Value{};  // worth of one copy; nothing: its area
  std::string Label{};
  PolygonRing Outline{};
  std::vector<PolygonRing> Holes{};  // inside the outline, apart from each other; touching is allowed
  double Radius = 0;                 // of a circle, which has no width and height; 0 for other shapes

  friend bool operator==(const Part&, const Part&) = default;
};

struct LabelSize {
  double Width = 0;
  double Height = 0;

  friend bool operator==(const LabelSize&, const LabelSize&) = default;
};

struct Options {
  std::string Method = "auto";
  double TimeLimit = 60;  // seconds; 0 for none
  std::uint64_t Seed = 1;
  int Threads = 0;                     // 0: up to 4
  Int64 MemoryLimit = Int64{1} << 30;  // bytes
  bool Deterministic = false;

  friend bool operator==(const Options&, const Options&) = default;
};

struct Job {
  std::string Name;
  JobKind Kind = JobKind::One;
  std::string Units = "mm";                  // a name for people: mm, cm, m, in, none; nothing is converted
  double Gap = 0;                            // least distance between two parts
  std::array<double, 4> Margin{0, 0, 0, 0};  // left, bottom, right, top: kept free at the plate's edges
  std::vector<Plate> Plates;
  std::vector<Part> Parts;
  Options Run;
  // Kind Nfp only. Each of the fixed parts with each of the moving ones; no id stands for all parts.
  std::vector<std::string> Fixed{};
  std::vector<std::string> Moving{};
  bool Inside = false;  // where the moving part lies within the fixed one, its holes left out
  NfpQuality Quality = NfpQuality::Complete;
  // Kinds Array, Label and Sucker: the part that is meant; empty for the only one.
  std::string PartId{};
  // Kind Array only; Gap is kept between the copies.
  Along Direction = Along::Free;
  bool Separate = false;  // beyond the whole extent of the part along the axis: copies do not reach into its hollows
  // Kind Label only. Inner lines are open or closed lines of the part that the label keeps clear of, by the margin; an
  // open one also blocks the way between its two ends.
  std::vector<PolygonRing> InnerLines{};
  std::optional<LabelSize> Label{};
  double Offset = 0;  // least margin all round the label
  // Kind Sucker only.
  std::optional<double> Radius{};  // of the gripper

  friend bool operator==(const Job&, const Job&) = default;
};

// Limits on input, each a LimitError.
namespace limits {
inline constexpr Int64 kJobBytes = Int64{64} << 20;      // a job file, in any of its forms
inline constexpr Int64 kResultBytes = Int64{256} << 20;  // a result file
inline constexpr int kNestingDepth = 32;
inline constexpr int kPartKinds = 10000;
inline constexpr Int64 kCopies = 1000000;  // demanded in total, and placed in one layout
inline constexpr int kPlateKinds = 1000;
inline constexpr double kSmallestSize = 1e-3;  // of a circle it is the diameter that counts
inline constexpr double kLargestSize = 1e6;
inline constexpr double kSizeRatio = 1e6;  // between the largest and the smallest size of a job
inline constexpr int kIdCharacters = 200;
inline constexpr Int64 kPlates = 1000000;  // in stock of one kind
inline constexpr double kWorth = 1e15;     // of one copy, and the cost of one plate
inline constexpr double kTimeLimit = 1e8;  // seconds
inline constexpr int kThreads = 1024;
inline constexpr int kVertices = 20000;            // of one contour
inline constexpr Int64 kVertexProduct = 4000000;   // of the vertices of two parts, holes included
inline constexpr int kHoles = 10000;               // of one part
inline constexpr Int64 kPairs = 100000;            // of parts in a job of kind Nfp
inline constexpr double kLargestCoordinate = 1e6;  // of an outline, either side of 0
inline constexpr int kInnerLines = 10000;          // of one job
}  // namespace limits

PLATENEST_API std::string_view KindName(JobKind Kind);
PLATENEST_API std::string_view AlongName(Along Direction);
PLATENEST_API std::string_view QualityName(NfpQuality Quality);

// Reads a job in the form platenest-job/1. Every fault found is reported, up to 20, each with a JSON Pointer:
// LimitError when all of them are limits, else InputError with the limits last. A text that is too large, too deeply
// nested, not UTF-8 or not JSON is refused as a whole, at line and column. MemoryError when memory ran out. In kind One
// an absent amount means as many as fit, elsewhere 1. Absent ids are given as by GiveIds; where that makes two equal
// ids it is a fault like any other doubled id. Memory in use grows with the records read, not with what else a file may
// hold. Safe on any thread.
PLATENEST_API Job ParseJob(std::string_view Json);

// The same checks on a job that was built in code. run() calls it first. An empty id is a fault here: see GiveIds.
PLATENEST_API void CheckJob(const Job& AJob);

// Plates and parts with an empty id become "plate-1", "part-1", ... by their position, counted from 1.
PLATENEST_API void GiveIds(Job& AJob);

// The job in the form platenest-job/1, keys in fixed order, doubles in the shortest form that reads back the same;
// members that hold their default may be left out. Reading the text back gives an equal job. Nothing is checked but
// what JSON cannot hold: a number that is not finite and a text that is not UTF-8 raise InputError with their place.
PLATENEST_API std::string JobToJson(const Job& AJob);

// The JSON Schema (draft 2020-12) of the job form.
PLATENEST_API std::string_view JobSchema();

}  // namespace platenest
