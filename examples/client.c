/* A minimal C client: build it against an installed library with
 *     cc client.c $(pkg-config --cflags --libs vek)
 * It sends the error reports to a file, provokes one, and prints what came back. */
#include <stdio.h>
#include <string.h>

#include "vek.h"

int main(void) {
  const int64_t unit = 9, write_mode = 1, bad_mode = 5, set = 1;
  const char* path = "client_errors.txt";
  int64_t ifail = 0; /* 0: a failure here would print the report and stop */
  x04acf_(&unit, path, &write_mode, &ifail, (int64_t)strlen(path));

  int64_t nerr = unit;
  x04aaf_(&set, &nerr); /* error reports now go to the file */
  ifail = -1;           /* -1: print the report, then return */
  x04acf_(&unit, "other.txt", &bad_mode, &ifail, 9);
  x04adf_(&unit, &ifail);

  printf("x04acf with MODE = 5 returned IFAIL = 1; its report, from %s:\n", path);
  FILE* f = fopen(path, "r");
  char line[128];
  while (f && fgets(line, sizeof line, f)) fputs(line, stdout);
  if (f) fclose(f);
  return 0;
}
