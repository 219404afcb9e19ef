// The scoring routines of the comparison library (spelling, general string
// and business name comparison) work in fixed local areas: no call reaches
// the heap, whatever the lengths and options.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "orlo_compare.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORLO_SANITIZER_ALLOCATOR 1
// Part of the sanitizer runtimes' public interface (declared here because
// not every compiler ships its header).
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*malloc_hook)(const volatile void *, size_t),
    void (*free_hook)(const volatile void *));
#endif

namespace {

std::atomic<bool> counting{false};
std::atomic<long> allocations{0};

void note_allocation() {
  if (counting.load(std::memory_order_relaxed)) ++allocations;
}

#ifdef ORLO_SANITIZER_ALLOCATOR
// The sanitizer owns malloc; it reports each allocation to a hook instead.
void on_malloc(const volatile void *, size_t) {
  note_allocation();
}
void on_free(const volatile void *) {}
const int hooks_installed =
    __sanitizer_install_malloc_and_free_hooks(on_malloc, on_free);
#endif

// Counts the heap allocations made while it lives. operator new reaches
// malloc, so it is counted too.
class AllocationCount {
 public:
  AllocationCount() {
    allocations = 0;
    counting = true;
  }
  ~AllocationCount() { counting = false; }
  long stop() {
    counting = false;
    return allocations;
  }
};

}  // namespace

#ifndef ORLO_SANITIZER_ALLOCATOR
// Counting replacements of the C allocator, forwarding to the C library's
// own entry points.
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *ptr, size_t size);
void __libc_free(void *ptr);

void *malloc(size_t size) noexcept {
  note_allocation();
  return __libc_malloc(size);
}
void *calloc(size_t count, size_t size) noexcept {
  note_allocation();
  return __libc_calloc(count, size);
}
void *realloc(void *ptr, size_t size) noexcept {
  note_allocation();
  return __libc_realloc(ptr, size);
}
void free(void *ptr) noexcept {
  __libc_free(ptr);
}
}
#endif

namespace {

struct Pair {
  std::string a;
  std::string b;
  int32_t len;
};

// Pairs that take every stage of the three routines: identity, hyphens,
// prefixes, alignment, skeletons, word pairing, splits and acronyms, long
// fields and empty ones.
std::vector<Pair> pairs() {
  std::vector<Pair> p = {
      {"SMITH", "SMYTH", 5},
      {"SMITH-JONES", "JONES      ", 11},
      {"O'NEIL", "ONEIL ", 6},
      {"M\xDCLLER & CO", "MUELLER & CO", 12},
      {"0012 MAIN", "12 MAIN  ", 9},
      {"KARAMAZOV", "KRMSV    ", 9},
      {"JOHN SMITH", "SMITH JOHN", 10},
      {"J SMITH   ", "JOHN SMITH", 10},
      {"ACME IBM  ", "ACME I B M", 10},
      {"INTERNATIONAL BUSINESS MACHINES", "IBM                            ",
       31},
      {"ACMX        ", "ACME WIDGETS", 12},
      {"   ", "ABC", 3},
      {"", "", 0},
  };
  std::string long_a(150, 'A'), long_b(150, 'A');
  long_b[50] = 'B';
  long_b[120] = ' ';
  p.push_back({long_a, long_b, 150});
  return p;
}

TEST(AllocationCount, SeesAllocations) {
  AllocationCount count;
  void *volatile p = std::malloc(32);
  std::free(p);
  char *text = tg_isostd(0xDF);
  std::free(text);
  EXPECT_GE(count.stop(), 2);
}

TEST(NoHeap, SpellingComparison) {
  const std::vector<Pair> cases = pairs();
  AllocationCount count;
  for (const Pair &c : cases) {
    for (const char *options :
         {static_cast<const char *>(nullptr), "", "DI;SQUISH", "SQUISH"}) {
      m_spllng(c.a.data(), c.b.data(), c.len, options);
    }
  }
  EXPECT_EQ(count.stop(), 0);
}

TEST(NoHeap, GeneralStringComparison) {
  const std::vector<Pair> cases = pairs();
  AllocationCount count;
  for (const Pair &c : cases) m_tgstr(c.a.data(), c.b.data(), c.len);
  EXPECT_EQ(count.stop(), 0);
}

TEST(NoHeap, BusinessNameComparison) {
  const std::vector<Pair> cases = pairs();
  AllocationCount count;
  for (const Pair &c : cases) {
    for (const char *options :
         {static_cast<const char *>(nullptr), "DI", "COMPACT", "SORT"}) {
      m_busnam(c.a.data(), c.b.data(), c.len, options);
    }
  }
  EXPECT_EQ(count.stop(), 0);
}

}  // namespace
