// The one allocator of the address search, so that tests can make any
// given allocation fail and check that the search answers '3'.
#ifndef ORLO_HKMATCH_REFDATA_SEARCH_ALLOC_H
#define ORLO_HKMATCH_REFDATA_SEARCH_ALLOC_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace orlo {

// Allocates count * size bytes with malloc (zero-filled when `zero`).
// Returns nullptr when the product overflows, malloc fails or the test hook
// says so. At least one byte is allocated, so that an empty table still has
// an address. Release with free().
void *search_alloc(size_t count, size_t size, bool zero = false);

// Makes *buf hold at least `need` elements of `size` bytes, keeping a
// buffer that is already large enough (its contents are not kept when it
// is replaced). *cap is the capacity of *buf in elements. Returns false,
// with *buf NULL, when storage fails.
template <typename T>
bool reserve(T **buf, int64_t *cap, int64_t need) {
  if (*buf != nullptr && *cap >= need) return true;
  std::free(*buf);
  *buf = static_cast<T *>(search_alloc(static_cast<size_t>(need), sizeof(T)));
  *cap = *buf != nullptr ? need : 0;
  return *buf != nullptr;
}

// Test hook: the n-th search allocation from now on, on this thread, fails
// (1 is the next one); 0 turns the hook off. The hook fires once.
void fail_nth_search_alloc(int n);

// Number of search allocations made on this thread, failed ones included.
uint64_t search_alloc_count();

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_SEARCH_ALLOC_H
