// Complex arithmetic on separate real and imaginary parts, free of overflow and underflow in intermediate
// results wherever the exact result is representable. The order of operations is fixed (and the build
// forbids contraction into fused multiply-adds), so every result is reproducible bit for bit.
#pragma once

namespace vek::util {

struct Complex {
  double re;
  double im;
};

// |x + i y| as a sqrt(1 + (b/a)^2), a = max(|x|, |y|) (|x| on a tie), b = min; exactly a when b = 0.
double complex_abs(double x, double y);

// The principal square root (real part >= 0; on the cut, a zero imaginary part of either sign gives the
// root in the upper half-plane and carries the zero's sign into the real part).
Complex complex_sqrt(double x, double y);

// (xr + i xi) / (yr + i yi) by Smith's method on operands scaled by powers of two into a safe range. A zero
// denominator divides by zero (infinite or NaN parts); no check is made.
Complex complex_divide(double xr, double xi, double yr, double yi);

}  // namespace vek::util
