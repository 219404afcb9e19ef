// Blanking of leading zeros.
#include "orlo_fields.h"

extern "C" int32_t cm_bllz(char *field, int32_t len) {
  if (len <= 0) return -1;
  int32_t count = 0;
  while (count < len && field[count] == '0') field[count++] = ' ';
  return count;
}
