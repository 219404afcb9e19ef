// The street comparison uses no heap: this program counts every allocation
// made on the calling thread while m_street runs.
//
// In a plain build malloc and its kin and operator new are replaced by
// counting ones that forward to the C library's own; under a sanitizer
// (which owns the allocator) the sanitizer's allocation hooks count instead.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"

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

bool counter_works() {
  return hooks_installed;
}

}  // namespace

#else

extern "C" {
void *__libc_malloc(size_t);
void *__libc_calloc(size_t, size_t);
void *__libc_realloc(void *, size_t);
void *__libc_memalign(size_t, size_t);
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
void *memalign(size_t alignment, size_t n) {
  count_allocation();
  return __libc_memalign(alignment, n);
}
void *aligned_alloc(size_t alignment, size_t n) {
  count_allocation();
  return __libc_memalign(alignment, n);
}
int posix_memalign(void **out, size_t alignment, size_t n) {
  count_allocation();
  void *p = __libc_memalign(alignment, n);
  if (p == nullptr) return 12;  // ENOMEM
  *out = p;
  return 0;
}
void free(void *p) {
  __libc_free(p);
}
}

// operator new is counted as well; it allocates through the malloc above.
void *operator new(size_t n) {
  count_allocation();
  if (void *p = __libc_malloc(n == 0 ? 1 : n)) return p;
  throw std::bad_alloc();
}
void *operator new[](size_t n) {
  return operator new(n);
}
void operator delete(void *p) noexcept {
  __libc_free(p);
}
void operator delete[](void *p) noexcept {
  __libc_free(p);
}
void operator delete(void *p, size_t) noexcept {
  __libc_free(p);
}
void operator delete[](void *p, size_t) noexcept {
  __libc_free(p);
}

namespace {
bool counter_works() {
  return true;
}
}  // namespace

#endif

namespace {

using orlo_test::padded;

// Counts the allocations of fn on this thread.
template <typename Fn>
long allocations_during(Fn fn) {
  allocations = 0;
  counting = true;
  fn();
  counting = false;
  return allocations;
}

TEST(StreetAllocation, CounterSeesAllocations) {
  ASSERT_TRUE(counter_works());
  std::vector<char> *v = nullptr;
  EXPECT_GE(allocations_during([&] { v = new std::vector<char>(1000); }), 2);
  delete v;
  // Kept in a volatile so that the compiler cannot drop the malloc.
  static void *volatile p = nullptr;
  EXPECT_EQ(allocations_during([&] { p = std::malloc(64); }), 1);
  std::free(p);
}

TEST(StreetAllocation, NoHeapInAnyStage) {
  const std::vector<std::pair<std::string, std::string>> pairs = {
      {"MAIN", "MAIN"},                    // raw identity
      {"FIRST ST", "1ST ST"},              // packed identity
      {"", ""},                            // blank, through every stage
      {"MAIN", "MAINS"},                   // prefix
      {"SMITH ST", "SMYTH ST"},            // alignment
      {"TSIM SHA TSUI", "TSEM SHE TSOI"},  // skeleton
      {"KING GEORGE RD", "KING G RD"},     // word stage
      {"N", "NORTH"},                      // compass
      {"COURT A", "COURT B"},              // lettered court
      {"AV FOCH", "BL FOCH"},              // recoding moves text
      {"M\xDCLLER", "MUELLER"}};
  std::vector<std::pair<std::string, std::string>> fields;
  for (const auto &[a, b] : pairs)
    fields.emplace_back(padded(a, 62), padded(b, 62));
  std::string opts[] = {"DI", "type;di", "TYPE"};
  for (auto &[a, b] : fields) {
    for (int round = 0; round < 2; ++round) {  // fresh, then cached
      EXPECT_EQ(allocations_during([&] {
                  m_street(a.data(), b.data(), 62, nullptr);
                  for (std::string &o : opts) {
                    m_street(a.data(), b.data(), 62, o.data());
                  }
                }),
                0)
          << a;
    }
  }
  std::string long_a(150, 'Q');
  std::string long_b(150, 'R');
  EXPECT_EQ(allocations_during(
                [&] { m_street(long_a.data(), long_b.data(), 150, nullptr); }),
            0);
}

}  // namespace
