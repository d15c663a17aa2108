#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "FaultList.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

// A form is told by tables: for each record the names of its members, and for each member a slot, which says what may
// stand there and where it goes. The readers of JSON and of tables of cells share them.
namespace platenest::detail {

// One value without parts, as it was written.
struct Scalar {
  enum class Type : std::uint8_t { Null, Flag, Number, Text };

  Type Kind = Type::Null;
  bool Flag = false;
  double Number = 0;
  std::optional<std::uint64_t> Whole;  // the size of a whole number below 2^64; its sign stands in Number
  std::string_view Written;            // the text, or the digits of a number

  static Scalar FromFlag(bool V);
  static Scalar FromNumber(double V, std::string_view Written);
  static Scalar FromWhole(std::uint64_t Size, bool IsNegative);
  static Scalar FromText(std::string_view V);
};

// The range of a whole number. Below Least it is wrong input, above Most over a limit.
struct WholeRule {
  std::uint64_t Least;
  std::uint64_t Most;
};

inline constexpr std::uint64_t kMostInt = std::numeric_limits<int>::max();
inline constexpr WholeRule kAmountRule{1, limits::kCopies};
inline constexpr WholeRule kPlateCountRule{1, limits::kPlates};
inline constexpr WholeRule kThreadsRule{1, limits::kThreads};
inline constexpr WholeRule kMemoryRule{1, std::numeric_limits<Int64>::max()};
inline constexpr WholeRule kSeedRule{0, std::numeric_limits<std::uint64_t>::max()};
inline constexpr WholeRule kTallyRule{0, kMostInt};   // a count in a result
inline constexpr WholeRule kCopiesRule{1, kMostInt};  // plates cut by one layout

inline constexpr std::string_view kUnitNames[] = {"mm", "cm", "m", "in", "none"};
inline constexpr std::string_view kKindNames[] = {"one", "fill", "job", "nfp", "array", "label", "sucker", "circles"};
inline constexpr std::string_view kRotateNames[] = {"any", "none"};
inline constexpr std::string_view kQualityNames[] = {"convex", "concave", "complete", "exact"};
inline constexpr std::string_view kAlongNames[] = {"x", "y", "xy", "free"};
inline constexpr std::string_view kStatusNames[] = {"complete", "partial", "time_limit", "stopped"};
inline constexpr std::string_view kReasonNames[] = {"too_large", "no_stock", "time", "left_by_method"};

// Takes anything; for what is reported already.
struct Skip {};

// Any finite number of at least Least. Other ranges are for CheckJob, which jobs built in code pass through as well.
struct NumberAt {
  std::variant<double*, std::optional<double>*> Target;
  bool MayBeNull = false;
  double Least = std::numeric_limits<double>::lowest();
};

// 3, 3.0 and 3e0 are all whole. Null is possible for an optional target.
struct WholeAt {
  const WholeRule* Rule;
  std::variant<int*, std::optional<int>*, Int64*, std::uint64_t*> Target;
};

struct FlagAt {
  bool* Target;
};

struct TextAt {
  std::string* Target;
  bool IsId = false;
};

// One of some names, stored as its text or as the enumerator of its position. Without a target the name is only
// required.
struct ChoiceAt {
  std::span<const std::string_view> Names;
  std::variant<std::monostate, std::string*, JobKind*, Rotate*, NfpQuality*, Along*, ResultStatus*> Target;
};

// A list of exactly as many numbers as the target holds, or, if OneForAll, one number for all of them.
struct NumbersAt {
  std::span<double> Target;
  bool OneForAll = false;
};

// A list of ids, or one id alone.
struct IdsAt {
  std::vector<std::string>* Target;
  Int64 Most;
};

template <class T>
struct ObjectAt {
  T* Target;
};

template <class T>
struct ListAt {
  std::vector<T>* Target;
  Int64 Most;
};

using Slot =
    std::variant<Skip, NumberAt, WholeAt, FlagAt, TextAt, ChoiceAt, NumbersAt, IdsAt,                               //
                 ObjectAt<Job>, ObjectAt<Plate>, ObjectAt<Part>, ObjectAt<Options>,                                 //
                 ObjectAt<Result>, ObjectAt<Summary>, ObjectAt<Bound>, ObjectAt<HeuristicBound>, ObjectAt<Layout>,  //
                 ObjectAt<Placement>, ObjectAt<PlateUse>, ObjectAt<PartUse>, ObjectAt<RunInfo>,                     //
                 ListAt<Plate>, ListAt<Part>, ListAt<Bound>, ListAt<Layout>, ListAt<Placement>,                     //
                 ListAt<PlateUse>, ListAt<PartUse>, ListAt<std::string>, ObjectAt<NfpPair>, ListAt<NfpPair>,
                 ListAt<PolygonPoint>,  //
                 ListAt<PolygonRing>, ObjectAt<LabelSize>, ObjectAt<ArrayAnswer>, ObjectAt<LabelAnswer>,
                 ObjectAt<SuckerAnswer>>;

// A member of the form of a record.
template <class T>
struct Field {
  std::string_view Name;
  bool Required;
  Slot (*At)(T&);
  std::string_view Instead = {};     // the member that makes a required one needless, and may not stand beside it
  bool InTables = true;              // a cell can hold it
  bool (*When)(const T&) = nullptr;  // a required member is needless where this does not hold
};

template <class T>
std::span<const Field<T>> FieldsOf();

// A record that a form is about to fill. What the form may leave out and what then depends on other members holds a
// value that no form can give.
inline constexpr int kAbsentAmount = 0;
inline constexpr double kAbsentNumber = std::numeric_limits<double>::quiet_NaN();

template <class T>
T Blank() {
  return {};
}
template <>
inline Part Blank<Part>() {
  Part part;
  part.Amount = kAbsentAmount;
  part.Width = part.Height = part.Radius = kAbsentNumber;
  return part;
}
// Until all is read, the placement of a circle has its centre and radius in Bounds and no Trans.
template <>
inline Placement Blank<Placement>() {
  Placement place;
  place.Trans.fill(kAbsentNumber);
  place.Bounds.fill(kAbsentNumber);
  return place;
}

template <class T>
std::vector<std::string_view> NamesOf(bool InTables = false) {
  std::vector<std::string_view> names;
  for (const Field<T>& field : FieldsOf<T>())
    if (field.InTables || !InTables) names.push_back(field.Name);
  return names;
}

using PlaceOf = std::function<std::string()>;  // asked only when there is a fault

// Puts Value into the slot, or tells why it cannot be there and leaves the target as it was.
void Accept(const Slot& Into, const Scalar& Value, const PlaceOf& Place, FaultList& Faults);

// "must be a number, found "x"" for a slot that got something of another type.
std::string WrongType(const Slot& Into, std::string_view Found);

// Tell the fault of a whole number outside its range, or of an id that is empty, too long or holds control characters.
// True if there is none.
bool CheckWhole(const Scalar& Value, const WholeRule& Rule, const PlaceOf& Place, FaultList& Faults);
bool CheckId(std::string_view Id, const PlaceOf& Place, FaultList& Faults);

}  // namespace platenest::detail
