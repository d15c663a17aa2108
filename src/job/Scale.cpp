#include "Scale.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

namespace platenest::detail {

namespace {

constexpr int kDigits = 12;

// V times 10^Exponent by moving the decimal point of its text, which has Digits digits, or as few as read back the
// same.
double ShiftDecimalPoint(double V, int Exponent, std::optional<int> Digits) {
  if (V == 0 || !std::isfinite(V)) return V;
  char text[64];
  const auto written = Digits ? std::to_chars(text, text + sizeof text, V, std::chars_format::scientific, *Digits - 1)
                              : std::to_chars(text, text + sizeof text, V, std::chars_format::scientific);
  const std::string_view all(text, static_cast<std::size_t>(written.ptr - text));
  const std::size_t mark = all.find('e');
  int exponent = 0;
  const std::size_t first = mark + (all[mark + 1] == '+' ? 2 : 1);
  std::from_chars(all.data() + first, all.data() + all.size(), exponent);
  const auto shifted = std::to_chars(text + mark + 1, text + sizeof text, exponent + Exponent);
  double result = 0;
  std::from_chars(text, shifted.ptr, result);
  return result;
}

// Digits behind the decimal point of the shortest text that reads back as V.
int Decimals(double V) {
  if (V == 0) return 0;
  char text[64];
  const auto written = std::to_chars(text, text + sizeof text, V, std::chars_format::scientific);
  const std::string_view all(text, static_cast<std::size_t>(written.ptr - text));
  const std::size_t mark = all.find('e');
  const std::size_t point = all.find('.');
  const int digits = point == std::string_view::npos ? 0 : static_cast<int>(mark - point) - 1;
  int exponent = 0;
  const std::size_t first = mark + (all[mark + 1] == '+' ? 2 : 1);
  std::from_chars(all.data() + first, all.data() + all.size(), exponent);
  return std::max(0, digits - exponent);
}

}  // namespace

TScale::TScale(double LongestSide) : FExponent(0) {
  while (ShiftDecimalPoint(LongestSide, FExponent, kDigits) >= 5000) --FExponent;
  while (ShiftDecimalPoint(LongestSide, FExponent, kDigits) < 500) ++FExponent;
}

double TScale::Up(double Length) const {
  return ShiftDecimalPoint(Length, FExponent, kDigits);
}
double TScale::Down(double Length) const {
  return ShiftDecimalPoint(Length, -FExponent, std::nullopt);
}

double TScale::DownRounded(double Length) const {
  return ShiftDecimalPoint(Length, -FExponent, kDigits);
}

double RoundToTwelveDigits(double V) {
  return ShiftDecimalPoint(V, 0, kDigits);
}

std::optional<int> CommonDecimals(std::span<const double> Lengths) {
  int most = 0;
  for (const double length : Lengths) most = std::max(most, Decimals(length));
  if (most > kMostDecimals) return std::nullopt;
  return most;
}

}  // namespace platenest::detail
