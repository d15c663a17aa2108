#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "CornerPlacement.h"

namespace platenest::detail {

// A corner position with what its updates need.
struct TCandidate {
  TPoint2D Center;
  double R = 0;
  double Reach = 0;  // radius and distance to the nearest thing not touched; what stays outside changes nothing
  double Value = 0;  // hole degree
  int Idx = 0;       // size
  int From = -1;     // the placed circle that it touches beside the one looked at, -1 for an edge
};

// The placed circles in contiguous storage and the trial of positions about one of them.
//
// A position touches the circle looked at, so that a circle farther from that one than its diameter can neither be
// touched nor overlapped, and one farther than its diameter and the best distance so far changes no hole degree. Look()
// lists the circles about one by their gap to it; a trial goes through the list up to that point. What it finds is what
// a trial against all circles from last to first and then the edges would find: distances that lie within the tolerance
// of each other are judged once more in that order, and where the list may be too short all circles are gone through.
class TCornerField {
 public:
  TCornerField(const TVRect2D& Rect, const std::vector<double>& Radii, const TCircleNestRst& Rst);

  int Count() const { return static_cast<int>(FIdx.size()); }
  TCornerPlacement At(int I) const { return {FIdx[I], FX[I], FY[I]}; }
  void Push(int Idx, const TPoint2D& Center);
  void CutBack(int Count);

  // Looks at placed circle I. Radii tried about it are at most Widest.
  void Look(int I, double Widest);
  // Appends the positions of a circle of size Idx that touches the one looked at and an edge, then those that touch it
  // and a placed circle before Before, in the order of these.
  void TryAbout(int Idx, int Before, std::vector<TCandidate>& Out);
  // Appends the position if it stands.
  void TryAt(int Idx, const TPoint2D& P, std::vector<TCandidate>& Out);

 private:
  // A circle about the one looked at.
  struct TNear {
    TPoint2D Center;
    double R = 0;
    double Key = 0;  // gap to the circle looked at
    int I = 0;
    TCirclePair Pair;
    int InTheWay[2] = {0, 0};  // of the last positions tried between the two: the circle that they overlapped
  };
  struct TKey {
    double Key;
    int I;
  };
  // A distance beyond the tolerance and its place in the order of trial.
  struct TSeen {
    double Distance;
    int Order;
  };

  void ListNear(int I, double Widest);
  void Try(int Idx, double R, const TPoint2D& P, int& InTheWay, int From, std::vector<TCandidate>& Out);
  void ReportTried();
  bool SurelyOverlaps(const TNear& Near, const TPoint2D& P, double R) const;
  // Distance to the nearest thing not touched, nothing if the circle overlaps one.
  std::optional<double> Nearest(const TPoint2D& P, double R, int& InTheWay);
  std::optional<double> NearestOfAll(const TPoint2D& P, double R) const;
  bool SeeEdges(const TPoint2D& P, double R, double& Best);
  double JudgeSeen(double Best);

  const TVRect2D& FRect;
  const std::vector<double>& FRadii;
  std::vector<double> FX, FY, FR;
  std::vector<int> FIdx;

  std::vector<TKey> FKeys;
  std::vector<TNear> FNear;  // the circle looked at, then the others by gap
  std::vector<TSeen> FSeen;
  TPoint2D FCenter;
  double FRadius = 0;
  double FNearKey = 0;       // gaps up to here are in the list
  double FEdgeKeys[4] = {};  // gap to bottom, left, right, top
  double FEdgeKey = 0;       // the least of them
  double FSlack = 0;
  double FRounding = 0;  // more than what rounding makes of a sum of lengths on this plate
  double FTouch = 0;     // bounds on the difference of squares, per radius, that spare the root
  double FOverlap = 0;
  Int64 FTried = 0;  // positions since the last report
  TStepCount* FSteps;
};

}  // namespace platenest::detail
