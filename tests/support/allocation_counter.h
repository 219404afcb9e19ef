// Counts the heap allocations of the calling thread, for tests that prove
// a routine allocates nothing. In a plain build malloc and its kin are
// replaced by counting ones that forward to the C library's own; under a
// sanitizer (which owns the allocator) its allocation hook counts instead.
//
// Include it in one file of a test program only: it defines malloc.
#ifndef ORLO_TESTS_SUPPORT_ALLOCATION_COUNTER_H
#define ORLO_TESTS_SUPPORT_ALLOCATION_COUNTER_H

#include <cstddef>
#include <cstdlib>

namespace {

// Volatile: the compiler takes malloc for a function that touches no user
// memory and would otherwise drop the stores around it.
thread_local volatile bool counting = false;
thread_local volatile long allocations = 0;

void count_allocation() {
  if (counting) allocations = allocations + 1;
}

}  // namespace

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// Part of the sanitizer runtimes' public interface (declared here because
// not every compiler ships its header).
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*malloc_hook)(const volatile void *, size_t),
    void (*free_hook)(const volatile void *));

namespace {
void on_malloc(const volatile void *, size_t) {
  count_allocation();
}
void on_free(const volatile void *) {}
const bool hooks_installed =
    __sanitizer_install_malloc_and_free_hooks(on_malloc, on_free) != 0;
}  // namespace

#else

// operator new allocates through malloc, so it is counted too.
extern "C" {
void *__libc_malloc(size_t);
void *__libc_calloc(size_t, size_t);
void *__libc_realloc(void *, size_t);
void __libc_free(void *);

void *malloc(size_t n) {
  count_allocation();
  return __libc_malloc(n);
}
void *calloc(size_t count, size_t size) {
  count_allocation();
  return __libc_calloc(count, size);
}
void *realloc(void *p, size_t n) {
  count_allocation();
  return __libc_realloc(p, n);
}
void free(void *p) {
  __libc_free(p);
}
}

namespace {
const bool hooks_installed = true;
}  // namespace

#endif

namespace {

// Counts the allocations of fn on this thread.
template <typename Fn>
long allocations_during(Fn fn) {
  allocations = 0;
  counting = true;
  fn();
  counting = false;
  return allocations;
}

}  // namespace

#endif  // ORLO_TESTS_SUPPORT_ALLOCATION_COUNTER_H
