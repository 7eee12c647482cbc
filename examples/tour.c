/* A tour of the library: calls representative routines through their exported entries, as any C program
 * would, and prints what they return. Each chapter adds its section in tour_<topic>.c. */
#include "tour.h"

int main(void) {
  tour_units();
  tour_machine();
  tour_sorting();
  tour_specfun();
  tour_linalg();
  tour_random();
  tour_zeros();
  return 0;
}
