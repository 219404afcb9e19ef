// The search's allocator and its thread-local test hook.
#include "hkmatch/refdata/search_alloc.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace orlo {
namespace {

thread_local int fail_countdown = 0;
thread_local uint64_t alloc_count = 0;

// True when the hook makes this allocation fail.
bool hook_fires() {
  if (fail_countdown <= 0) return false;
  return --fail_countdown == 0;
}

}  // namespace

void *search_alloc(size_t count, size_t size, bool zero) {
  ++alloc_count;
  if (hook_fires()) return nullptr;
  if (size != 0 && count > SIZE_MAX / size) return nullptr;
  size_t bytes = count * size;
  if (bytes == 0) bytes = 1;
  void *p = std::malloc(bytes);
  if (p != nullptr && zero) std::memset(p, 0, bytes);
  return p;
}

void fail_nth_search_alloc(int n) {
  fail_countdown = n > 0 ? n : 0;
}

uint64_t search_alloc_count() {
  return alloc_count;
}

}  // namespace orlo
