// The fuzzy pass over a region's prepared names against the plain walk of
// the street table (the path a private copy takes): the same candidates in
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
    c.emplace_back(mcb->cands[i]->sname, mcb->cands[i]->sscore);
  }
  if (exact) c.emplace_back("(exact)", 100);
  return c;
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
  TestDb db(csv);
  Geocoder g(db);
  ASSERT_TRUE(g.opened());
  g.search({"KLN", names[0], "1"});
  HKMCB *mcb = g.mcb();
  ASSERT_EQ(mcb->lvl2initials, 1);
  int compared = 0;
  for (int order = 0; order < 3; ++order) {
    if (order > 0) {
      // Out of order of initials: the scan runs from the start and stops
      // at the first name whose initial sorts after the input's.
      std::shuffle(mcb->lvl2tab, mcb->lvl2tab + mcb->lvl2cnt, rng);
      mcb->lvl2initials = 0;
      orlo::free_street_names(mcb);
    }
    for (int32_t passopt : {0, 2}) {
      mcb->passopt = passopt;
      for (int k = 0; k < 150; ++k) {
        const std::string input = random_input(names, rng);
        const char in_mode = k % 50 == 0 ? '3' : ' ';
        SCOPED_TRACE(input + " order " + std::to_string(order));
        mcb->state = 'O';
        const Candidates prepared = collect(mcb, input, in_mode);
        // (Input mode 3 compares no name and needs no prepared names.)
        if (in_mode != '3') {
          ASSERT_NE(mcb->streetnames, nullptr);
        }
        mcb->state = 'R';  // a private copy walks the table
        const Candidates walked = collect(mcb, input, in_mode);
        mcb->state = 'O';
        ASSERT_EQ(prepared, walked);
        compared += !walked.empty();
      }
    }
  }
  EXPECT_GT(compared, 300);  // most inputs found candidates
}

}  // namespace
