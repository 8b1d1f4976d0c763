// SPDX-License-Identifier: Apache-2.0
#include "utils/CUtils.h"

double CUtils::Convert(long fromUnit, double value, long toUnit) {
  enum Unit : long { Inch, Centimetre, Millimetre, Point };
  // Precomputed factors would round differently.
  switch (fromUnit) {
    case Inch:
      if (toUnit == Centimetre) return value * 2.54;
      if (toUnit == Millimetre) return value * 2.54 * 10.0;
      if (toUnit == Point) return value * 72.0;
      break;
    case Centimetre:
      if (toUnit == Inch) return value / 2.54;
      if (toUnit == Millimetre) return value * 10.0;
      if (toUnit == Point) return value * 72.0 / 2.54;
      break;
    case Millimetre:
      if (toUnit == Inch) return value / 25.4;
      if (toUnit == Centimetre) return value / 10.0;
      if (toUnit == Point) return value * 72.0 / 25.4;
      break;
    case Point:
      if (toUnit == Inch) return value / 72.0;
      if (toUnit == Centimetre) return value * 2.54 / 72.0;
      if (toUnit == Millimetre) return value * 2.54 * 10.0 / 72.0;
      break;
    default:
      break;
  }
  return value;
}
