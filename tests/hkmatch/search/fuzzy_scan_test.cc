// The fuzzy pass over a region's prepared names against the plain walk of
// the street table (the path taken without prepared names): the same
// candidates in
// the same order with the same scores, for tables in and out of order of
// initials, "PO BOX " names, street-type inputs, every pass option and the
// input mode that skips every name.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "hkmatch/refdata/street_names.h"
#include "hkmatch/search/street_scan.h"
#include "support/search_harness.h"

namespace {

using orlo::testing::Geocoder;
using orlo::testing::TestDb;

const char *const kSyllables[] = {"KWUN", "TONG", "SHA", "TIN", "TSIM",
                                  "TSUI", "MONG", "KOK", "SAI", "SHEK",
                                  "KAM",  "KING", "ST",  "TAI", "SAN"};
const char *const kTypes[] = {"ROAD", "RD", "STREET", "ST", "AVENUE", "LANE"};

std::string random_street(std::mt19937 &rng) {
  std::string s;
  if (rng() % 10 == 0) s = "PO BOX ";
  for (int w = 1 + static_cast<int>(rng() % 3); w > 0; --w) {
    s += kSyllables[rng() % std::size(kSyllables)];
    s += ' ';
  }
  s += kTypes[rng() % std::size(kTypes)];
  return s.substr(0, 30);
}

// The input: a name of the table with a typing error, or a fresh one.
std::string random_input(const std::vector<std::string> &names,
                         std::mt19937 &rng) {
  std::string s = rng() % 4 ? names[rng() % names.size()] : random_street(rng);
  const size_t i = rng() % s.size();
  if (rng() % 2) {
    s[i] = static_cast<char>('A' + rng() % 26);
  } else {
    s.erase(i, 1);
  }
  return s;
}

using Candidates = std::vector<std::pair<std::string, int>>;

Candidates collect(HKMCB *mcb, const std::string &street, char in_mode) {
  orlo::ScanRequest req{street.c_str(), "KLN", 1, 0, in_mode};
  int32_t count = 0;
  bool exact = false;
  EXPECT_EQ(orlo::collect_candidates(mcb, req, &count, &exact), '0');
  Candidates c;
  for (int32_t i = 0; i < count; ++i) {
    c.emplace_back(mcb->cands[i]->sname, mcb->candscore[i]);
  }
  if (exact) c.emplace_back("(exact)", 100);
  return c;
}

// Shuffles the street records of KLN's LEVEL2 segment (the database stays
// valid, its table is no longer in order).
void shuffle_segment(const TestDb &db, std::mt19937 &rng) {
  using orlo::testing::get_be;
  const std::string l1 = orlo::testing::read_file(db.level1());
  std::string l2 = orlo::testing::read_file(db.level2());
  const size_t r = orlo::testing::level1_record(l1, "KLN");
  const size_t off = get_be(l1, r + 30, 4), len = get_be(l1, r + 34, 4);
  std::vector<std::string> recs;
  for (size_t pos = off; pos < off + len;) {
    const size_t end = l2.find('\0', pos + 10) + 1;
    recs.push_back(l2.substr(pos, end - pos));
    pos = end;
  }
  std::shuffle(recs.begin(), recs.end(), rng);
  std::string segment;
  for (const std::string &rec : recs) segment += rec;
  l2.replace(off, len, segment);
  orlo::testing::write_file(db.level2(), l2);
}

TEST(FuzzyScan, PreparedNamesGiveTheWalksCandidates) {
  std::mt19937 rng(16);
  std::vector<std::string> names;
  std::string csv;
  for (int i = 0; i < 400; ++i) {
    const std::string s = random_street(rng);
    if (std::find(names.begin(), names.end(), s) != names.end()) continue;
    names.push_back(s);
    csv += "KLN," + s + ",K01," + std::to_string(10000 + i) + ",,,,1,,9,,\n";
  }
  int compared = 0;
  for (int order = 0; order < 3; ++order) {
    TestDb db(csv);
    // Out of order of initials: the scan runs from the start and stops at
    // the first name whose initial sorts after the input's.
    if (order > 0) shuffle_segment(db, rng);
    Geocoder g(db);
    ASSERT_TRUE(g.opened());
    g.search({"KLN", names[0], "1"});
    HKMCB *mcb = g.mcb();
    ASSERT_EQ(mcb->lvl2initials, order == 0 ? 1 : 0);
    for (int32_t passopt : {0, 2}) {
      mcb->passopt = passopt;
      for (int k = 0; k < 150; ++k) {
        const std::string input = random_input(names, rng);
        const char in_mode = k % 50 == 0 ? '3' : ' ';
        SCOPED_TRACE(input + " order " + std::to_string(order));
        const Candidates prepared = collect(mcb, input, in_mode);
        orlo::detail::walk_fuzzy_pass = true;
        const Candidates walked = collect(mcb, input, in_mode);
        orlo::detail::walk_fuzzy_pass = false;
        ASSERT_EQ(prepared, walked);
        compared += !walked.empty();
      }
    }
  }
  EXPECT_GT(compared, 300);  // most inputs found candidates
}

}  // namespace
