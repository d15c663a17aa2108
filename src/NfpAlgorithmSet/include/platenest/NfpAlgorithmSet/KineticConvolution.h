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
// loop is the moving shape mirrored through the origin. Loops in drawing units, paths at kPathScale. One object for one
// thread; it may be used again, and is cheaper then since it keeps the memory of its chips. Counts what it does in
// NfpStatistics.
class PLATENEST_API TKineticConvolution {
 public:
  // Chips up to which a convolution is never reduced below ntComplete.
  static constexpr int MIN_CONVOLUTION_EDGES = 9999;

  // innerCheck: parts inside are first held against the sizes of the cavity, and refused without any work.
  TKineticConvolution(TNFPType required, bool innerCheck);
  ~TKineticConvolution();
  TKineticConvolution(const TKineticConvolution&) = delete;
  TKineticConvolution& operator=(const TKineticConvolution&) = delete;

  // Chips that an outer (inner) convolution may lay before its loops are reduced; ntExact never reduces for this.
  int MAX_CONVOLUTION_EDGES() const { return FMaxConvolutionEdges; }
  int INNER_CONVOLUTION_EDGES() const { return FInnerConvolutionEdges; }

  // The border of the translations at which the shapes overlap, or with putInside, the region in which the one fits
  // into the other; outer paths counter-clockwise, holes of them clockwise. Outside both loops are counter-clockwise.
  // Inside one of them is a cavity, runs clockwise and has a negative area: the static one for a part in a plate, the
  // dynamic one for the places where the static part stands in a hole of the moving one. No paths inside mean that
  // nothing fits. Returns the reduction level: 0 both loops in full, 1 a reduced outline, 2 a hull or a box in place of
  // one, -1 failed, without paths; the caller decides then. Never raises: an error on the way gives one warning and -1.
  // Cost: bounded by the chips allowed. Convex outlines take O(n log n); n concave edges against m may lay n * m chips.
  int Convolution(const TKMPLoop& dynamicLoop, const TKMPLoop& staticLoop, bool putInside, TPaths& nfpPaths);
  // The graph of one convolution, cleaned. level as above, but outside -1 where nothing was reduced. The loops must
  // outlive the next call that judges paths. Raises what the making of lighter loops and of graphs raises.
  TVectorGraph Convolve(const TKMPLoop& staticLoop, const TKMPLoop& dynamicLoop, bool putInside, int& level);
  // Appends the chips that the edges of loopB make at the vertices of loopA; the other half of a convolution comes with
  // the loops swapped and isFirst false, so that each pair of parallel edges counts once. At a left turn a chip runs
  // against its edge. The angle of a direction below 5e-8 radian counts as a full turn where its scan begins. Allocates
  // nothing but room for chips. Cost: O(n log m + chips).
  static void CollectChains(const TKMPLoop& loopA, const TKMPLoop& loopB, TChipList& chips, bool isFirst);
  // How alike two loops are by counts, areas and first directions, from 0 to 4, the same shape twice. Not symmetric.
  static int LoopSimilar(const TKMPLoop& loop1, const TKMPLoop& loop2);
  // False if the solid one of the two cannot lie in the cavity: by area, by box and, in a cavity that is nearly a box,
  // by how full the boxes are. True tells nothing.
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
