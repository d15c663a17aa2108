#pragma once

#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "TextOf.h"
#include "platenest/foundation/Rounding.h"

// What the writers of pictures share.
namespace platenest::detail {

// The largest power of ten not above V.
inline double PowerOfTen(double V) {
  return std::pow(10.0, std::floor(std::log10(V)));
}

// Text under construction, numbers rounded to a step.
class TWriter {
 public:
  // Steps are what Digits decimal digits of LongSide can tell apart.
  TWriter(double LongSide, int Digits) : FPerUnit(std::pow(10.0, Digits - 1) / PowerOfTen(LongSide)) {}

  TWriter& operator<<(std::string_view Text) {
    FText += Text;
    return *this;
  }
  TWriter& operator<<(double Value) {
    AppendPart(FText, Rounded(Value));
    return *this;
  }
  void Reserve(std::size_t Bytes) { FText.reserve(Bytes); }
  std::string Take() { return std::move(FText); }

 private:
  // A division by a power of ten gives the double nearest to the decimal number, which prints short.
  double Rounded(double Value) const {
    return FPerUnit >= 1 ? RoundHalfEven(Value * FPerUnit) / FPerUnit
                         : RoundHalfEven(Value / (1 / FPerUnit)) * (1 / FPerUnit);
  }

  double FPerUnit;
  std::string FText;
};

// The opening tag of a picture of real size, Width by Height in Units, whose user unit is one of them.
inline void OpenSvg(TWriter& Out, double Width, double Height, std::string_view Units) {
  const bool isMetre = Units == "m";
  const bool isKnown = Units == "mm" || Units == "cm" || Units == "in";
  const double scale = isMetre ? 1000 : 1;  // SVG has no metre
  const std::string_view unit = isMetre ? "mm" : isKnown ? Units : "";
  Out << "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" width=\"" << Width * scale << unit << "\" height=\""
      << Height * scale << unit << "\" viewBox=\"0 0 " << Width << " " << Height << "\">\n";
}

}  // namespace platenest::detail
