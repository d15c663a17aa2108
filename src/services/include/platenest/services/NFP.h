#pragma once

#include <atomic>
#include <cstdio>
#include <span>
#include <string_view>

#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/NfpAlgorithmSet/PartNfp.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Polyline.h"

namespace platenest {

// The guarded door to the no-fit polygon kernel: where a moving shape (sub) may stand around or inside a fixed one
// (obj). PartNfp.h tells what the paths mean and what they rest on.
//
// IsInside false asks for the outer no-fit polygon: on its border the shapes touch, inside they overlap. IsInside true
// asks for the region of places where the sub shape lies within the obj shape; an empty one says that it does not fit.
// Several sub shapes move as one; several obj shapes forbid together, or are plates of which any will do. The result
// says what quality its paths really have; ntNone asks for nothing and gets it. The names serve logs only.
//
// Failures, all TNestError: an empty list; a coordinate that is not finite or beyond kMaxNfpCoordinate
// (TArgumentError); an outer polygon without paths; whatever the kernel raises. Before an error of the last two kinds
// goes on to the caller, the host's log and then the warning channel get a line about it.
//
// The arguments stay unchanged. No lock is taken: requests may run on any number of threads, each with the state of its
// own thread (BoldPointPrec, Random, NfpStatistics); of what they share, NFPAlgo holds nothing and the rest is atomic.
// The overhead over the kernel is a copy of the shapes, which the kernel turns and hulls in place.
class PLATENEST_API TNFPCalculator {
 public:
  TNFPCalculator() = delete;

  // The kernel of all requests of the process.
  static TPartsPackNFP NFPAlgo;
  // Requests since the library was loaded, failed ones included; those that were refused at the door are not counted.
  static std::atomic<Int64> CalcNFPCount;

  static TNFP CalcNFP(const TVHPolygon& SubHPolygon, const TVHPolygon& ObjHPolygon, bool IsInside,
                      TNFPType RequiredType, std::string_view SubName, std::string_view ObjName);
  static TNFP CalcNFP(const TVHPolygonList& SubHPolygons, const TVHPolygonList& ObjHPolygons, bool IsInside,
                      TNFPType RequiredType, std::string_view SubName, std::string_view ObjName);
  // As CalcNFP, but with the union of the obj shapes, which may overlap. Its failures are logged under the name of
  // CalcNFP; only the refusal of an empty list tells the difference.
  static TNFP CalcNFPUI(const TVHPolygonList& SubHPolygons, const TVHPolygonList& ObjHPolygons, bool IsInside,
                        TNFPType RequiredType, std::string_view SubName, std::string_view ObjName);

  // A copy of Nfp, its paths turned counter-clockwise about the origin by Radian and then grown by Offset path units
  // (shrunk if negative). The low byte of JoinType and MiterRadian are those of TPolyOffsetter::OffsetPathsToPaths,
  // whose failures it shares; the type stays.
  static TNFP RotateAndOffsetNFP(const TNFP& Nfp, double Radian, int Offset, int JoinType, double MiterRadian);

 protected:
  // Whether a request of this kind is logged: outer ones are.
  static bool GetDoesLog(bool IsInside) { return !IsInside; }
  // Where a dump of requests and results would go. They write nothing and leave LogFile as it is.
  static void LogShape(std::span<const TVHPolygon> SubHPolygons, std::span<const TVHPolygon> ObjHPolygons,
                       bool IsInside, TNFPType RequiredType, std::string_view SubName, std::string_view ObjName,
                       std::FILE*& LogFile);
  static void LogNFPResult(const TNFP& Nfp, std::FILE*& LogFile);

 private:
  struct TRequest;
  static TNFP Calculate(const TRequest& Request);
};

}  // namespace platenest
