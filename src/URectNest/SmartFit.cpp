#include "SmartFit.h"

#include <algorithm>
#include <cmath>

namespace platenest::detail {

void TSmartFit::SetForm(int Form) {
  FHigh = Form / 6;
  FLow = Form % 6;
}

bool TSmartFit::CalFit(double W, double H, double A, double B, double& AFit) const {
  if (A > W || B > H) return false;
  const double restW = W - A;
  const double restH = H - B;
  double small = std::min(restW, restH);
  const double large = std::max(restW, restH);
  const double side = std::min(W, H);
  if (small < FLeast) {
    const double share = small / FLeast;
    const double weight = kThinStripWeight[FLow];
    small = FLow % 3 == 0 ? small + (side - small) * share * weight : small + (side - small) * (share * share) * weight;
  }
  double ends = 0;
  if (large < FLeast) {
    ends = side * large / FLeast;
  } else {
    const double excess = large / FLeast - 1;
    ends = std::max(0.0, side * (1 - excess * excess * kWideStripWeight[FHigh]));
  }
  double fit = 1 - 2 * (ends + large / (W + H) + small) / (W + H);
  if (FHigh == kBlendedDigit) {
    const double covered = std::pow(A * B / W / H, kBlendPower);
    fit = covered * (1 - kBlendStep * FLow) + FLow * fit * kBlendStep;
  }
  if (!(fit > AFit)) return false;
  AFit = fit;
  return true;
}

TSmartChoice TSmartFit::Choose(double W, double H, std::span<const TSmartTrial> Trials) const {
  TSmartChoice best;
  for (const TSmartTrial& trial : Trials) {
    if (!CalFit(W, H, trial.A, trial.B, best.Fit)) continue;
    best.Part = trial.Part;
    best.IsRotate = trial.IsRotate;
  }
  return best;
}

}  // namespace platenest::detail
