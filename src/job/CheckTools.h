#pragma once

#include <cmath>
#include <string>
#include <string_view>

#include "Slots.h"
#include "Texts.h"

// What the checks of jobs share.
namespace platenest::detail {

// The range of a length or worth: below Least (or at it, if only more will do) wrong input, outside Low to High over a
// limit.
struct NumberRule {
  double Least;
  bool OnlyMore;
  double Low;
  double High;
};

inline constexpr NumberRule kDistanceRule{0, false, 0, limits::kLargestSize};
inline constexpr NumberRule kSizeRule{0, true, limits::kSmallestSize, limits::kLargestSize};

inline void CheckNumber(double V, const NumberRule& Rule, const PlaceOf& Place, FaultList& Faults) {
  const bool enough = Rule.OnlyMore ? V > Rule.Least : V >= Rule.Least;
  if (!std::isfinite(V)) {
    Faults.AddInput("range", Place(), "must be a finite number");
  } else if (!enough) {
    const std::string wanted = Rule.OnlyMore ? "must be above " : "must be at least ";
    Faults.AddInput("range", Place(), Joined(wanted, Rule.Least, ", found ", V));
  } else if (V < Rule.Low) {
    Faults.AddLimit(Place(), Joined("must be at least ", Rule.Low, ", found ", V));
  } else if (V > Rule.High) {
    Faults.AddLimit(Place(), Joined("must be at most ", Rule.High, ", found ", V));
  }
}

// Places of members of one entry of a list.
inline auto EntryPlaces(std::string_view List, int Index) {
  return [List, Index](std::string_view Member) -> PlaceOf {
    return [List, Index, Member] { return Joined("/", List, "/", Index, "/", Member); };
  };
}

inline PlaceOf Fixed(std::string_view Pointer) {
  return [Pointer] { return std::string(Pointer); };
}

}  // namespace platenest::detail
