/* The library's own zero-filling allocator.
 *
 * This file is compiled with -fno-builtin: otherwise the optimiser may
 * recognise "malloc, then clear" and emit a call of calloc, which is this
 * very function. A test calls this calloc through the shared library to
 * prove that it neither recurses nor overflows. */
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "orlo_fields.h"

ORLO_API void *calloc(size_t count, size_t size) {
  if (size != 0 && count > SIZE_MAX / size) return NULL;
  size_t total = count * size;
  void *p = malloc(total);
  if (p == NULL) return NULL;
  memset(p, 0, total);
  return p;
}
