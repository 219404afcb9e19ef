// The scoring routines of the comparison library (street, spelling, general
// string and business name comparison) work in fixed local areas: no call
// reaches the heap, whatever the lengths, options and cache state; nor does
// scoring against a prepared set of street names.
//
// In a plain build malloc and its kin are replaced by counting ones that
// forward to the C library's own; under a sanitizer
// (which owns the allocator) its allocation hook counts instead. Only the
// calling thread's allocations are counted.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"
#include "support/allocation_counter.h"

namespace {

using orlo_test::padded;

// Without this the other tests could pass with a counter that sees nothing.
TEST(AllocationCount, SeesAllocations) {
  ASSERT_TRUE(hooks_installed);
  std::vector<char> *v = nullptr;
  EXPECT_GE(allocations_during([&] { v = new std::vector<char>(1000); }), 2);
  delete v;
  static void *volatile p = nullptr;  // volatile: the malloc must stay
  EXPECT_EQ(allocations_during([&] { p = std::malloc(64); }), 1);
  std::free(p);
  char *text = nullptr;
  EXPECT_EQ(allocations_during([&] { text = tg_isostd(0xDF); }), 1);
  std::free(text);
}

// Pairs that take every stage of the routines: identity, hyphens, prefixes,
// alignment, skeletons, word pairing, compass words, courts, recoding,
// splits and acronyms, letter folding, empty fields and long ones.
const char *const kPairs[][2] = {{"SMITH", "SMYTH"},
                                 {"SMITH-JONES", "JONES"},
                                 {"O'NEIL", "ONEIL"},
                                 {"M\xDCLLER & CO", "MUELLER & CO"},
                                 {"0012 MAIN", "12 MAIN"},
                                 {"KARAMAZOV", "KRMSV"},
                                 {"JOHN SMITH", "SMITH JOHN"},
                                 {"J SMITH", "JOHN SMITH"},
                                 {"ACME IBM", "ACME I B M"},
                                 {"INTERNATIONAL BUSINESS MACHINES", "IBM"},
                                 {"ACMX", "ACME WIDGETS"},
                                 {"FIRST ST", "1ST ST"},
                                 {"MAIN", "MAINS"},
                                 {"TSIM SHA TSUI", "TSEM SHE TSOI"},
                                 {"KING GEORGE RD", "KING G RD"},
                                 {"N", "NORTH"},
                                 {"COURT A", "COURT B"},
                                 {"AV FOCH", "BL FOCH"},
                                 {"   ", "ABC"},
                                 {"", ""}};

TEST(NoHeap, EveryRoutineWithEveryOption) {
  std::vector<std::pair<std::string, std::string>> fields;
  for (const auto &[a, b] : kPairs) {
    const size_t len = std::max(std::strlen(a), std::strlen(b));
    for (size_t width : {len, len + 31}) {
      fields.emplace_back(padded(a, width), padded(b, width));
    }
  }
  std::string long_b(150, 'A');
  long_b[50] = 'B';
  long_b[120] = ' ';
  fields.emplace_back(std::string(150, 'A'), long_b);
  std::string street_options[] = {"DI", "type;di", "TYPE"};
  // Named references rather than a structured binding: clang 14 cannot
  // capture a binding in the lambda below.
  for (auto &field : fields) {
    std::string &a = field.first;
    std::string &b = field.second;
    const int32_t len = static_cast<int32_t>(a.size());
    // Preparing a set allocates; scoring against it does not.
    const char *name = b.data();
    MSTREETS *set = m_stprep(&name, 1, len, "TYPE");
    int32_t prepared_score = -1;
    for (int round = 0; round < 2; ++round) {  // fresh, then cached street
      EXPECT_EQ(allocations_during([&] {
                  m_stmany(set, a.data(), &prepared_score);
                  m_street(a.data(), b.data(), len, nullptr);
                  for (std::string &o : street_options) {
                    m_street(a.data(), b.data(), len, o.data());
                  }
                  for (const char *o : {static_cast<const char *>(nullptr), "",
                                        "DI;SQUISH", "SQUISH"}) {
                    m_spllng(a.data(), b.data(), len, o);
                  }
                  m_tgstr(a.data(), b.data(), len);
                  for (const char *o : {static_cast<const char *>(nullptr),
                                        "DI", "COMPACT", "SORT"}) {
                    m_busnam(a.data(), b.data(), len, o);
                  }
                }),
                0)
          << "'" << a << "' / '" << b << "'";
    }
    m_stfree(set);
  }
}

}  // namespace
