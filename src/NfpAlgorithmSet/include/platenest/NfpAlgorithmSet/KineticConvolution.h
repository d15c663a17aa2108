#pragma once

#include "platenest/NfpAlgorithmSet/Chip.h"
#include "platenest/NfpAlgorithmSet/KineticCircuits.h"
#include "platenest/NfpAlgorithmSet/KineticLoop.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Paths.h"

namespace platenest {

namespace detail {
class TStandIns;
}

// Turns two kinetic loops into the paths of a no-fit polygon: the segments of their kinetic convolution (Guibas,
// Ramshaw and Stolfi 1983) become a graph, circuits of it are united and judged. The size of the work is bounded: where
// it would explode, one or both loops are replaced by lighter ones, and the result tells how far that went. The dynamic
// loop is the moving shape mirrored through the origin. One object for one thread; it may be used again.
class PLATENEST_API TKineticConvolution {
 public:
  // Chips up to which a convolution is never reduced below ntComplete.
  static constexpr int MIN_CONVOLUTION_EDGES = 9999;

  TKineticConvolution(TNFPType required, bool innerCheck);

  int MAX_CONVOLUTION_EDGES() const { return FMaxConvolutionEdges; }
  int INNER_CONVOLUTION_EDGES() const { return FInnerConvolutionEdges; }

  int Convolution(const TKMPLoop& dynamicLoop, const TKMPLoop& staticLoop, bool putInside, TPaths& nfpPaths);
  TVectorGraph Convolve(const TKMPLoop& staticLoop, const TKMPLoop& dynamicLoop, bool putInside, int& level);
  static void CollectChains(const TKMPLoop& loopA, const TKMPLoop& loopB, TChipList& chips, bool isFirst);
  static int LoopSimilar(const TKMPLoop& loop1, const TKMPLoop& loop2);
  static bool BoundCheck(const TKMPLoop& staticLoop, const TKMPLoop& dynamicLoop);
  // True if the dynamic shape overlaps the static one at some point of testPath, shrunk as for a trial placement.
  static bool WholePathInvalid(const TKMPLoop& stLoop, const TKMPLoop& dyLoop, const TPath& testPath, int offset);

 protected:
  // The circuits, or the outline, united; false if the work would be too large. forced suppresses the size stops.
  bool UnionCircuits(const TKineticCircuits& circuits, TPaths& paths, bool forced);
  // Judges and cleans the paths; false if they cannot be right.
  bool NormorlizePaths(TPaths& paths, bool putInside) const;
  // Whether the trial placement of the dynamic shape at the first point of the path fails.
  static bool PathInvalid(const TKMPLoop& stLoop, const TKMPLoop& dyLoop, const TPath& testPath, int offset);
  // The box of the path is narrower or lower than those of the two loops laid side by side, less tol in drawing units.
  bool PathBoxTooSmall(const TPath& path, double tol) const;
  // A path for a cavity whose first (or middle) point would put the box of the shape partly outside of the cavity's.
  // Looked at only where the loops are so rich in parallel edges, or the fit so tight, that such paths turn up.
  bool InnerPathSuspect(const TPath& path) const;

  TNFPType _required;
  bool _innerCheck;
  int FMaxConvolutionEdges;
  int FInnerConvolutionEdges;
  int _selfNfp = 0;                   // likeness of the two loops, 0 to 4
  Int64 _edgeCount = 0;               // points of the outer circuits, or running sum while they are united
  const TKMPLoop* _dyLoop = nullptr;  // arguments of the last Convolve; the caller's
  const TKMPLoop* _stLoop = nullptr;

 private:
  class TRun;
  struct TCircuitChoice;
  struct TOuterJudge;
  struct TTryLevels {
    int First;
    int HardlyShrunk;
    int LittleShrunk;
  };

  // Fill FChips and return the reduction level, -1 outside where nothing was reduced.
  int LayInnerChips(const TKMPLoop& S, const TKMPLoop& D);
  int LayOuterChips(const TKMPLoop& S, const TKMPLoop& D);
  void LayBothReduced(const TKMPLoop& S, const TKMPLoop& D, detail::TStandIns& StandIns);
  void LayLargerReduced(const TKMPLoop& S, const TKMPLoop& D, detail::TStandIns& StandIns);
  const TKMPLoop& ReducedInner(const TKMPLoop& D, detail::TStandIns& StandIns) const;
  const TKMPLoop& ReducedLarger(const TKMPLoop& Larger, const TKMPLoop& Smaller, const TTryLevels& Levels,
                                detail::TStandIns& StandIns) const;
  bool IsPairOfBoxLikes(const TKMPLoop& S, const TKMPLoop& D) const;

  bool NormorlizeInner(TPaths& paths) const;
  bool NormorlizeSolePath(TPaths& paths) const;
  bool NormorlizeRegions(TPaths& paths) const;

  TChipList FChips;  // of the last Convolve; its memory is used again
};

}  // namespace platenest
