/* VEK numerical library: the public C interface of libvek_matlab_a64.so.
 *
 * Calling convention of every routine: all arguments by address; every integer and logical is 64 bits
 * (a logical is true when its lowest bit is 1); reals are IEEE doubles; complex values are (real, imaginary)
 * pairs; matrices are column-major with a leading dimension; each character argument is followed, after all
 * visible arguments, by its length as a 64-bit integer passed by value, in the order of the character
 * arguments. Texts are blank-padded, not NUL-terminated.
 *
 * Routines with a final IFAIL argument report failure through it: on entry 0 stops the program after
 * printing the error report, -1 prints the report and returns, 1 (or any other value) returns silently;
 * on exit IFAIL is 0 on success, else the routine's error number.
 */
#ifndef VEK_H
#define VEK_H

#include <stdint.h>

/* Marks the library's exported symbols (everything else in it is hidden). */
#if defined(__GNUC__)
#define VEK_API __attribute__((visibility("default")))
#else
#define VEK_API
#endif

typedef struct { double re, im; } vek_complex;
typedef struct { float re, im; } vek_scomplex;

#include "vek_routines.h"

#endif
