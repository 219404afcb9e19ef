// The library's street comparison against its plain form (support/
// plain_street.cc), pair by pair: m_street in runs that share a first street
// (so that both per-thread caches are in play, also across options and
// lengths), the prepared sets of m_stprep/m_stmany, and many threads at once.
// ORLO_STREET_PAIRS sets the number of pairs (the performance suite runs
// millions); the default keeps the test command short.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "compare/prepared_streets.h"
#include "orlo_compare.h"
#include "support/plain_street.h"

namespace {

// A few seconds in the optimised build; the sanitizer builds run a tenth.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int64_t kDefaultPairs = 30000;
#else
constexpr int64_t kDefaultPairs = 300000;
#endif

int64_t pairs_to_run() {
  const char *env = std::getenv("ORLO_STREET_PAIRS");
  return env != nullptr ? std::atoll(env) : kDefaultPairs;
}

// Street-like material: syllables, type words and their short forms, words
// the recoding tables know, ordinals, compass words, Latin-1 letters, and
// the punctuation the normalisation rewrites.
const std::vector<std::string> kTokens = {
    "KWUN",       "TONG",    "SHA",         "TIN",     "TSIM",      "TSUI",
    "MONG",       "KOK",     "WAN",         "CHAI",    "KING",      "GEORGE",
    "G",          "MAIN",    "MAINSTREET",  "NATHAN",  "QUEENS",    "HOLLYWOOD",
    "STREET",     "ST",      "ST.",         "ROAD",    "RD",        "AVENUE",
    "AVE",        "AV",      "BL",          "BOUL",    "BOULEVARD", "BLVD",
    "HIGHWAY",    "HWY",     "HW",          "ROUTE",   "RT",        "SAINT",
    "CALLE",      "CLL",     "CAMINO",      "VILLA",   "COURT",     "COURTA",
    "A",          "B",       "AND",         "&",       "+",         "CROSSING",
    "CROSSROADS", "STATE",   "COUNTY",      "US",      "FIRST",     "1ST",
    "21ST",       "2ND",     "3RD",         "4TH",     "THIRD",     "TENTH",
    "TWO",        "ONE",     "007",         "0",       "10",        "9",
    "3IEME",      "IEME",    "N",           "NORTH",   "S",         "SOUTH",
    "E",          "EAST",    "W",           "WEST",    "NORTHEAST", "RUE",
    "DES",        "RANG",    "RG",          "PLAZA",   "PLZ",       "HILL",
    "MALL",       "LIMITED", "CORPORATION", "KAM-TIN", "A/B",       "M\xDCLLER",
    "MUELLER",    "\xC4LV",  "\xC5SEN",     "\xDF",    "\xD8ST",    "\xC6",
    "\xD6L",      "mixed",   "PO",          "BOX",
};

const std::vector<std::string> kOptions = {
    "",    "DI", "di",  "TYPE",  "type;di", "TYPE;DI", "X;DI",
    "DIX", "D",  "TYP", "XTYPE", ";DI",     "TYPEDI",  "ty",
};

// One typing error, doubled letter, dropped vowel or swapped neighbours.
void misspell(std::string &s, std::mt19937 &rng) {
  if (s.empty()) return;
  std::uniform_int_distribution<size_t> at(0, s.size() - 1);
  const size_t i = at(rng);
  switch (rng() % 5) {
    case 0:
      s[i] = static_cast<char>('A' + rng() % 26);
      break;
    case 1:
      s.erase(i, 1);
      break;
    case 2:
      s.insert(i, 1, s[i]);
      break;
    case 3:
      if (i + 1 < s.size()) std::swap(s[i], s[i + 1]);
      break;
    default:
      s.insert(i, 1, static_cast<char>('A' + rng() % 26));
      break;
  }
}

std::string random_name(std::mt19937 &rng) {
  std::string s;
  if (rng() % 20 == 0) s = " ";
  for (int w = static_cast<int>(rng() % 6); w > 0; --w) {
    s += kTokens[rng() % kTokens.size()];
    s += rng() % 8 == 0 ? "  " : " ";
  }
  if (rng() % 50 == 0) s += static_cast<char>(rng() % 256);
  return s;
}

// A field of exactly len bytes (heap, so the sanitizer sees reads past it):
// the text blank-padded, or cut, or now and then run to the full width.
std::vector<char> field(std::string text, size_t len, std::mt19937 &rng) {
  if (rng() % 10 == 0) {
    while (text.size() < len) text += kTokens[rng() % kTokens.size()];
  }
  text.resize(len, ' ');
  return std::vector<char>(text.begin(), text.end());
}

size_t random_len(std::mt19937 &rng) {
  static const size_t kLens[] = {31, 31, 31, 31, 62, 12, 1, 0, 99, 100, 150};
  const size_t pick = rng() % (std::size(kLens) + 2);
  return pick < std::size(kLens) ? kLens[pick] : rng() % 120;
}

struct Mismatch {
  std::string s1, s2, options;
  size_t len;
  int32_t library, plain;
};

// Runs of comparisons sharing a first street, as the matcher makes them; now
// and then a call in a run changes the length or the options, which the
// cache does not key on. Returns the first mismatch, if any.
bool run_pairs(uint32_t seed, int64_t pairs, Mismatch *bad) {
  std::mt19937 rng(seed);
  for (int64_t done = 0; done < pairs;) {
    const std::string first = random_name(rng);
    size_t len = random_len(rng);
    std::string options = kOptions[rng() % kOptions.size()];
    for (int r = 1 + static_cast<int>(rng() % 8); r > 0; --r, ++done) {
      if (rng() % 16 == 0) len = random_len(rng);
      if (rng() % 16 == 0) options = kOptions[rng() % kOptions.size()];
      std::string second = rng() % 3 == 0 ? random_name(rng) : first;
      for (int e = static_cast<int>(rng() % 3); e > 0; --e) {
        misspell(second, rng);
      }
      const std::vector<char> a = field(first, len, rng);
      const std::vector<char> b = field(second, len, rng);
      const bool none = rng() % 4 == 0;
      std::string o1 = options, o2 = options;
      const int32_t lib =
          m_street(a.data(), b.data(), static_cast<int32_t>(len),
                   none ? nullptr : o1.data());
      const int32_t ref =
          orlo_test::plain_street(a.data(), b.data(), static_cast<int32_t>(len),
                                  none ? nullptr : o2.data());
      if (lib != ref || o1 != o2) {
        *bad = {std::string(a.begin(), a.end()),
                std::string(b.begin(), b.end()),
                options,
                len,
                lib,
                ref};
        return false;
      }
    }
  }
  return true;
}

TEST(StreetDifferential, LibraryEqualsPlainPath) {
  Mismatch bad;
  EXPECT_TRUE(run_pairs(16, pairs_to_run(), &bad))
      << "'" << bad.s1 << "' / '" << bad.s2 << "' len " << bad.len
      << " options '" << bad.options << "': " << bad.library << " vs "
      << bad.plain;
}

// m_stmany against a set of names equals m_street on each pair in turn,
// including what a stale cache entry of the input (made with other options
// or another length) does to the scores.
TEST(StreetDifferential, PreparedSetEqualsPlainPath) {
  std::mt19937 rng(61);
  const int64_t rounds = std::max<int64_t>(pairs_to_run() / 2000, 20);
  for (int64_t round = 0; round < rounds; ++round) {
    const size_t len = random_len(rng);
    const std::string options = kOptions[rng() % kOptions.size()];
    const std::string input = random_name(rng);
    std::vector<std::vector<char>> names;
    std::vector<const char *> pointers;
    for (int i = 0; i < 100; ++i) {
      std::string name = rng() % 2 ? input : random_name(rng);
      for (int e = static_cast<int>(rng() % 3); e > 0; --e) {
        misspell(name, rng);
      }
      names.push_back(field(name, len, rng));
    }
    for (const auto &n : names) pointers.push_back(n.data());
    const std::vector<char> in = field(input, len, rng);
    MSTREETS *set = m_stprep(pointers.data(), 100, static_cast<int32_t>(len),
                             options.c_str());
    ASSERT_NE(set, nullptr);
    // Leave a cache entry of the input behind, now and then one made with
    // other options or a longer field, which the next run takes as it is.
    const size_t stale_len = len + (rng() % 2 ? 0 : 5);
    std::string stale = rng() % 2 ? "TYPE" : options, stale2 = stale;
    std::vector<char> longer = in, other(stale_len, '\x01');
    longer.resize(stale_len, ' ');
    const auto n = static_cast<int32_t>(stale_len);
    m_street(longer.data(), other.data(), n, stale.data());
    orlo_test::plain_street(longer.data(), other.data(), n, stale2.data());
    const orlo::PreparedStreetNames direct(
        pointers.data(), 100, static_cast<int32_t>(len), options.c_str());
    std::vector<int32_t> scores(100, -1);
    ASSERT_EQ(m_stmany(set, in.data(), scores.data()), 100);
    for (size_t i = 0; i < names.size(); ++i) {
      std::string o = options;
      const int32_t want = orlo_test::plain_street(
          in.data(), names[i].data(), static_cast<int32_t>(len), o.data());
      // The search's use: scores of 90 and more exact, the rest below 90.
      orlo::FirstStreet first(in.data(), direct.len(), direct.options());
      const int32_t at_least =
          direct.score(first, static_cast<int32_t>(i), true);
      ASSERT_EQ(at_least >= 90 ? at_least : -1, want >= 90 ? want : -1);
      ASSERT_EQ(scores[i], want)
          << "'" << input << "' / '"
          << std::string(names[i].begin(), names[i].end()) << "' len " << len
          << " options '" << options << "'";
    }
    m_stfree(set);
  }
}

// Many threads compare at once, each through its own cache, some against
// one shared prepared set; every score must equal the plain path's.
TEST(StreetDifferential, ThreadsCompareAtOnce) {
  const std::vector<std::string> texts = {"NATHAN ROAD",    "NATHEN RD",
                                          "KING GEORGE RD", "KING G RD",
                                          "TSIM SHA TSUI",  "TSEM SHE TSOI"};
  std::vector<std::vector<char>> fields;
  std::vector<const char *> pointers;
  std::mt19937 rng(7);
  for (const auto &t : texts) fields.push_back(field(t, 31, rng));
  for (const auto &f : fields) pointers.push_back(f.data());
  MSTREETS *set = m_stprep(pointers.data(), 6, 31, nullptr);
  ASSERT_NE(set, nullptr);
  const int64_t pairs = std::max<int64_t>(pairs_to_run() / 40, 2000);
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (uint32_t t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      Mismatch bad;
      if (!run_pairs(100 + t, pairs, &bad)) ++failures;
      int32_t scores[6];
      for (size_t i = 0; i < fields.size(); ++i) {
        m_stmany(set, fields[i].data(), scores);
        for (size_t j = 0; j < fields.size(); ++j) {
          if (scores[j] != orlo_test::plain_street(fields[i].data(),
                                                   fields[j].data(), 31,
                                                   nullptr)) {
            ++failures;
          }
        }
      }
    });
  }
  for (std::thread &th : threads) th.join();
  m_stfree(set);
  EXPECT_EQ(failures.load(), 0);
}

TEST(StreetDifferential, PreparedSetRefusesBadArguments) {
  int32_t score = -7;
  const char *one[] = {"MAIN ST"};
  EXPECT_EQ(m_stprep(nullptr, 1, 7, nullptr), nullptr);
  EXPECT_EQ(m_stprep(one, -1, 7, nullptr), nullptr);
  EXPECT_EQ(m_stmany(nullptr, "MAIN ST", &score), -1);
  MSTREETS *set = m_stprep(one, 1, 7, nullptr);
  EXPECT_EQ(m_stmany(set, "MAIN ST", nullptr), -1);
  EXPECT_EQ(score, -7);
  EXPECT_EQ(m_stmany(set, "MAIN RD", &score), 1);
  EXPECT_EQ(score, orlo_test::plain_street("MAIN RD", "MAIN ST", 7, nullptr));
  m_stfree(set);
  m_stfree(nullptr);
}

}  // namespace
