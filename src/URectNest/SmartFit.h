#pragma once

#include <array>
#include <span>

// How well a rectangle fits a free one. No state beyond the objects; nothing here allocates.
namespace platenest::detail {

// Forms of the fit, 0 to 29: the high digit is Form / 6, the low one Form % 6.
inline constexpr int kSmartForms = 30;

// By the low digit: how much a leftover strip too thin for any rectangle costs.
inline constexpr std::array<double, 6> kThinStripWeight = {1, 1, 16, 4, 4, 64};
// By the high digit: how fast the cost of a wide leftover strip falls off as it outgrows the thinnest rectangle.
inline constexpr std::array<double, 5> kWideStripWeight = {1, 1, 4, 16, 64};
// The form that blends in how much of the area is covered: its high digit, the power of the covered share, and the
// weight of the plain fit for each step of the low digit.
inline constexpr int kBlendedDigit = 1;
inline constexpr double kBlendPower = 0.1;
inline constexpr double kBlendStep = 0.17;

// A rectangle in one of its two turns.
struct TSmartTrial {
  double A = 0;  // width and height as it would lie
  double B = 0;
  int Part = 0;
  bool IsRotate = false;
};

// The best of some trials; a fit of 0 or below is none.
struct TSmartChoice {
  double Fit = 0.0;
  int Part = -1;
  bool IsRotate = false;
};

class TSmartFit {
 public:
  // Least: the smallest side of all rectangles, above 0.
  explicit TSmartFit(double Least) : FLeast(Least) {}

  void SetForm(int Form);
  // Whether A x B fits into a free W x H, without tolerance, and better than AFit, which is then set to its fit. That
  // is at most 1, for an exact fit.
  bool CalFit(double W, double H, double A, double B, double& AFit) const;
  // First of equals wins.
  TSmartChoice Choose(double W, double H, std::span<const TSmartTrial> Trials) const;

 private:
  double FLeast;
  int FHigh = 0;
  int FLow = 0;
};

}  // namespace platenest::detail
