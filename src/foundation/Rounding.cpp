#include "platenest/foundation/Rounding.h"

#include <string>

namespace platenest {

void detail::RaiseConversionError(double V) {
  throw TRangeError("[Error] number " + std::to_string(V) + " does not fit the integer type");
}

double RoundTo(double V, int Digit) {
  if (Digit < 0) {
    const double scale = std::pow(10.0, -Digit);
    return RoundHalfEven(V * scale) / scale;
  }
  const double scale = std::pow(10.0, Digit);
  return RoundHalfEven(V / scale) * scale;
}

}  // namespace platenest
