#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "JobCase.h"
#include "platenest/job/Result.h"

// What answers about parts on plates have in common for a judge, by arithmetic of its own.
namespace platenest::test {

inline constexpr double kJudgeTol = 1e-6;  // of lengths, as promised

double AreaOf(const Part& APart);
// Up to what sums of doubles may be off.
bool AreClose(double A, double B);

// Goes through an answer in one pass; the first fault found is kept. Derived judges know the shape of the parts.
class TAnswerJudge {
 public:
  TAnswerJudge(const Job& AJob, const Result& AResult);
  virtual ~TAnswerJudge() = default;
  TAnswerJudge(const TAnswerJudge&) = delete;
  TAnswerJudge& operator=(const TAnswerJudge&) = delete;

  std::string Fault();

 protected:
  // The area of the parts of a layout, which is on a known plate and not empty.
  virtual double JudgeItems(const Layout& ALayout) = 0;
  // How far the part is from fitting the plate's room, 0 or less when it fits.
  virtual double Excess(const Part& APart, const Plate& APlate) const = 0;
  // What there is to say once all else holds.
  virtual void JudgeMore() {}

  // Notes what does not hold; what follows a fault is not looked at.
  template <class... TText>
  bool Holds(bool Condition, const TText&... Text) {
    if (!Condition && !HasFault()) (FFault << ... << Text);
    return Condition;
  }
  bool HasFault() const { return !FFault.str().empty(); }
  // Counts a copy of the part in the layout; nullptr for an unknown one.
  const Part* Count(const Layout& ALayout, const std::string& PartId);
  // Whether [left, bottom, right, top] is within plate less margin.
  bool IsInside(const Layout& ALayout, const Box& ABox) const;
  void JudgeClearance(const Layout& ALayout, double Least);
  void JudgeUsedBox(const Layout& ALayout, const Box& Used);
  bool WasCut() const;

  const Job& FJob;
  const Result& FResult;
  std::vector<Int64> FUsed, FPlaced;

 private:
  void JudgeHead();
  void JudgeLayout(const Layout& ALayout);
  void JudgeStock();
  void JudgeSummary();
  void JudgeDemand();
  void JudgeReasons();
  void JudgeReason(const PartUse& Use, double Least, bool HoldsSpare);
  void JudgeVerdict();
  bool JudgeBound(const Bound& ABound);
  bool IsSpare(std::size_t Plate) const;
  bool IsFill() const { return FJob.Kind == JobKind::Fill; }

  double FPartArea = 0, FPlateArea = 0, FCost = 0, FWorth = 0;
  bool FIsLeft = false;
  bool FIsShort = false;  // something is left that a plate may hold
  std::ostringstream FFault;
};

// A bound that rules the sample of a job out, as one sentence; empty if there is none.
std::string SampleFault(const TJobCase& Case, const Result& AResult);

}  // namespace platenest::test
