#pragma once

#include <functional>
#include <vector>

#include "CornerField.h"

namespace platenest::detail {

// Candidates in the order of their list, in groups of neighbours: what a new circle cannot reach is passed over group
// by group, and the best of a group is kept until the group changes. Candidates of used up sizes go when they would be
// chosen next.
class TCandidateList {
 public:
  // Appends as one group what stands in Batch from First on.
  void Append(const std::vector<TCandidate>& Batch);
  // Takes over what is left of Other, without its dead places.
  void CopyLive(const TCandidateList& Other);
  // A circle of radius R now stands at Center.
  void Shade(const TPoint2D& Center, double R);
  // The candidate of the largest value, of equal ones the nearest to the origin, of those the first; nullptr if there
  // is none. Stays valid until the next change.
  const TCandidate* Best(const std::vector<int>& Remaining);
  void Clear();

  template <class Function>
  void ForEach(const std::vector<int>& Remaining, Function F) const {
    for (const TGroup& group : FGroups)
      for (int i = group.Begin; i < group.Begin + group.Count; ++i)
        if (Remaining[FItems[i].Idx] != 0 && !F(FItems[i])) return;
  }

 private:
  struct TGroup {
    TPoint2D Center;
    double Reach = 0;  // from Center; what stays outside changes nothing
    double BestValue = 0;
    int Best = 0;
    int Begin = 0;
    int Count = 0;
  };

  void Measure(TGroup& Group) const;
  void ShadeGroup(TGroup& Group, const TPoint2D& Center, double R);
  void DropUsedUp(TGroup& Group, const std::vector<int>& Remaining);
  static bool IsBefore(const TCandidate& A, const TCandidate& B);
  void Squeeze();

  std::vector<TCandidate> FItems;
  std::vector<TGroup> FGroups;
  int FLive = 0;
};

// Greedy corner placement on one field, with all the storage that it reuses.
class TCornerSearch {
 public:
  TCornerSearch(const TVRect2D& Rect, const std::vector<double>& Radii, const std::vector<double>& Areas,
                const std::vector<int>& Idx, const std::vector<int>& Remaining, const TCircleNestRst& Rst);

  void Load(const TPosibleCPList& CPs);
  // Candidates are placed until none is left; returns the occupancy.
  double Greedy(double Occu);
  // See TCirclePacking::GreedyPackingEx. Amount is the count of all circles.
  double GreedyEx(double Occu, double Threshold, int Amount, const std::function<bool()>& Stopped);

  const TCornerField& Field() const { return FField; }
  const std::vector<int>& Remaining() const { return FMain.Remaining; }

 private:
  struct TState {
    TCandidateList Candidates;
    std::vector<int> Remaining;
    std::vector<int> Idx;  // sizes in play with circles left
  };

  double Place(TState& State, int Idx, const TPoint2D& Center, double Occu);
  void Extend(TState& State);
  double GreedyOn(TState& State, double Occu);
  // The candidate whose greedy pass fills most. True if a pass placed all circles: then the field holds it, Occu is its
  // occupancy.
  bool LookAhead(TCandidate& Choice, double& Occu, int Amount, const std::function<bool()>& Stopped);

  const std::vector<double>& FRadii;
  const std::vector<double>& FAreas;
  double FPlateArea;
  TCornerField FField;
  TState FMain;
  TState FTrial;
  std::vector<TCandidate> FBatch;
};

}  // namespace platenest::detail
