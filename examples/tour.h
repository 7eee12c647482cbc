/* The tour's sections, one per chapter (examples/tour_<topic>.c). */
#ifndef VEK_TOUR_H
#define VEK_TOUR_H

#include <stdio.h>

static inline void tour_section(const char* title) { printf("\n== %s\n", title); }

void tour_units(void);
void tour_machine(void);
void tour_sorting(void);
void tour_specfun(void);
void tour_linalg(void);
void tour_random(void);
void tour_zeros(void);

#endif
