#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

#include "platenest/NfpAlgorithmSet/BoolArray.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Paths.h"

namespace platenest {

// The quality of a no-fit polygon, asked for or delivered. Higher is better; the ordinals are compared and stored.
enum class TNFPType : std::uint8_t {
  ntNone = 0,         // nothing was computed
  ntConvexHull = 1,   // rests on convex hulls: no overlap, but loose
  ntConcaveHull = 2,  // rests on reduced outlines that keep the large concavities
  ntComplete = 3,     // full outlines, reduced in the last resort only
  ntExact = 4,        // full outlines, never reduced
};
using enum TNFPType;

// The ceiling of all requests: a higher type asked for is lowered to it, so ntExact is out of reach until the host
// raises this. Requests for several parts at once start from the type that was asked for, not from the lowered one, and
// may therefore report ntExact although the ceiling is lower.
inline PLATENEST_API std::atomic<TNFPType> HighestNFPType{ntComplete};

// Paths (scale kPathScale) and the quality that they really have. Copies share the paths: what is changed through one
// is seen by all, and copying costs nothing. No paths at all may be told by nullptr or by an empty list.
struct TNFP {
  std::shared_ptr<TPaths> NFP;
  TNFPType NFPType = ntNone;

  TNFP() = default;
  TNFP(std::shared_ptr<TPaths> SharedPaths, TNFPType Type) : NFP(std::move(SharedPaths)), NFPType(Type) {}
  TNFP(TPaths Paths, TNFPType Type) : NFP(std::make_shared<TPaths>(std::move(Paths))), NFPType(Type) {}

  bool IsEmpty() const { return NFP == nullptr || NFP->empty(); }
  // With paths of its own.
  TNFP Clone() const { return {NFP == nullptr ? nullptr : std::make_shared<TPaths>(TPathUtils::Clone(*NFP)), NFPType}; }

  // The very same paths and the same type: equal points in two lists are not equal results. Without any path there is
  // nothing to tell two results apart but the type.
  friend bool operator==(const TNFP& A, const TNFP& B) {
    return A.NFPType == B.NFPType && (A.NFP == B.NFP || (A.IsEmpty() && B.IsEmpty()));
  }
};

class TNFPTypeUtils {
 public:
  TNFPTypeUtils() = delete;

  static constexpr bool DoesNFPTypeSatisfied(TNFPType RequiredType, TNFPType ProvidedType) {
    return ProvidedType >= RequiredType;
  }
  static constexpr TNFPType BetterType(TNFPType Type1, TNFPType Type2) { return Type1 < Type2 ? Type2 : Type1; }
  static constexpr TNFPType WorseType(TNFPType Type1, TNFPType Type2) { return Type1 < Type2 ? Type1 : Type2; }
  // Two letters; "EX" for everything past ntComplete.
  static constexpr const char* GetTypeNameStr(TNFPType NFPType) {
    switch (NFPType) {
      case ntNone:
        return "NO";
      case ntConvexHull:
        return "CV";
      case ntConcaveHull:
        return "CC";
      case ntComplete:
        return "CP";
      default:
        return "EX";
    }
  }
};

}  // namespace platenest
