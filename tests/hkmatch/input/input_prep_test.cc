// Input preparation: from the 200-byte input record to the prepared input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/record_builders.h"

namespace {

using orlo::testing::InputRecord;

HKWORKREC prepare(const char *inrec) {
  HKWORKREC work;
  std::memset(&work, 0xAA, sizeof work);  // stale bytes must not survive
  hk_pad(inrec, &work, nullptr);
  return work;
}

// What holds for every prepared input: each text is terminated, zero after
// its terminator, without leading, trailing or doubled blanks; every byte
// outside the fields is zero; the premise result is 0 or 2.
void expect_well_formed(const HKWORKREC &w) {
  std::vector<bool> used(sizeof w, false);
  const auto mark = [&used](size_t off, size_t len) {
    std::fill_n(used.begin() + static_cast<std::ptrdiff_t>(off), len, true);
  };
  const auto text = [&](const char *f, size_t off, size_t size, const char *n) {
    mark(off, size);
    const size_t len = strnlen(f, size);
    ASSERT_LT(len, size) << n << " is not terminated";
    const std::string s(f, len);
    EXPECT_EQ(s.find("  "), std::string::npos) << n << ": " << s;
    EXPECT_TRUE(s.empty() || (s.front() != ' ' && s.back() != ' ')) << n;
    for (size_t i = len; i < size; ++i) EXPECT_EQ(f[i], '\0') << n << " " << i;
  };
#define ORLO_TEXT(f) text(w.f, offsetof(HKWORKREC, f), sizeof w.f, #f)
#define ORLO_FIELD(f) mark(offsetof(HKWORKREC, f), sizeof w.f)
  ORLO_TEXT(wk_premno);
  ORLO_TEXT(wk_street);
  ORLO_TEXT(wk_bldg);
  ORLO_TEXT(wk_unit);
  ORLO_TEXT(wk_extra);
  ORLO_TEXT(wk_district);
  ORLO_TEXT(wk_region);
  ORLO_TEXT(wk_refcode);
  ORLO_FIELD(wk_mode);
  ORLO_FIELD(wk_premrc);
  ORLO_FIELD(wk_prem1);
  ORLO_FIELD(wk_prem1kind);
  ORLO_FIELD(wk_prem2);
  ORLO_FIELD(wk_prem2kind);
#undef ORLO_TEXT
#undef ORLO_FIELD
  const auto *bytes = reinterpret_cast<const unsigned char *>(&w);
  for (size_t i = 0; i < sizeof w; ++i) {
    if (!used[i]) {
      EXPECT_EQ(bytes[i], 0) << "unused byte " << i;
    }
  }
  EXPECT_TRUE(w.wk_premrc == 0 || w.wk_premrc == 2) << w.wk_premrc;
}

// Leading zeros and blanks go (only those), then the number is parsed; a
// number of zeros only is no number at all.
TEST(PreparePremiseNumber, StripsLeadingZerosAndParses) {
  struct Row {
    const char *in, *text;
    int32_t rc, v1;
    char k1;
    int32_t v2;
    char k2;
  };
  const Row rows[] = {
      {"00012A  ", "12A", 0, 12, 'N', 65, 'A'},
      {" 012", "12", 0, 12, 'N', 0, ' '},
      {"0120", "120", 0, 120, 'N', 0, ' '},
      {"12  014", "12 014", 0, 12, 'N', 14, 'N'},
      {"12345678", "12345678", 0, 12345678, 'N', 0, ' '},
      {"0", "", 2, 0, ' ', 0, ' '},
      {"00000000", "", 2, 0, ' ', 0, ' '},
      {"", "", 2, 0, ' ', 0, ' '},
      {"   ", "", 2, 0, ' ', 0, ' '},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string("premno \"") + r.in + "\"");
    const HKWORKREC w = prepare(InputRecord().premno(r.in).data());
    EXPECT_STREQ(w.wk_premno, r.text);
    EXPECT_EQ(w.wk_premrc, r.rc);
    EXPECT_EQ(w.wk_prem1, r.v1);
    EXPECT_EQ(w.wk_prem1kind, r.k1);
    EXPECT_EQ(w.wk_prem2, r.v2);
    EXPECT_EQ(w.wk_prem2kind, r.k2);
    expect_well_formed(w);
  }
}

// Each input field lands in its own place, justified, a full 30-character
// field kept whole; blank fields are empty.
TEST(PrepareTextFields, EachFieldIsJustifiedIntoItsPlace) {
  const std::string full = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123";
  InputRecord in;
  in.refcode(" AB")
      .street("  NATHAN   ROAD")
      .bldg("CHUNG  KING    MANSIONS")
      .set(orlo::in::extra, "X")
      .district(full)
      .region("KLN")
      .mode('3');
  const HKWORKREC w = prepare(in.data());
  EXPECT_STREQ(w.wk_refcode, "AB");
  EXPECT_STREQ(w.wk_street, "NATHAN ROAD");
  EXPECT_STREQ(w.wk_bldg, "CHUNG KING MANSIONS");
  EXPECT_STREQ(w.wk_extra, "X");
  EXPECT_EQ(std::string(w.wk_district), full);
  EXPECT_STREQ(w.wk_region, "KLN");
  EXPECT_STREQ(w.wk_unit, "");
  EXPECT_EQ(w.wk_mode, '3');
  expect_well_formed(w);
}

// The unit line joins its two pieces: a full first piece runs straight into
// the second, otherwise one blank separates them.
TEST(PrepareTextFields, UnitLineJoinsItsTwoPieces) {
  const struct {
    const char *unit, *unitext, *joined;
  } rows[] = {
      {"FLAT A 12/F BLOCK 3 TOWER", "ONE  ", "FLAT A 12/F BLOCK 3 TOWERONE"},
      {"", "  G/F", "G/F"},
      {"FLAT B", "3/F", "FLAT B 3/F"},
  };
  for (const auto &r : rows) {
    InputRecord in;
    in.unit(r.unit).unitext(r.unitext);
    EXPECT_STREQ(prepare(in.data()).wk_unit, r.joined) << r.unit;
  }
}

// Any 200 bytes (random, high, control, NUL, blank-heavy) give a well-formed
// record, and the same one when prepared twice.
TEST(PrepareAnyBytes, GiveAWellFormedRecordAndTheSameOneTwice) {
  std::mt19937 rng(20260101);
  const std::vector<std::string> pools = {
      "", std::string("\x80\xff\xa0 \xc4", 5), std::string("\0\t\n\r \x1b", 6),
      "  0A"};
  for (int round = 0; round < 2000; ++round) {
    const std::string &pool = pools[round % pools.size()];
    char inrec[HKINREC_SIZE];
    for (char &c : inrec) {
      c = pool.empty() ? static_cast<char>(rng() & 0xFF)
                       : pool[rng() % pool.size()];
    }
    const HKWORKREC w = prepare(inrec);
    expect_well_formed(w);
    EXPECT_EQ(w.wk_mode, inrec[HKIN_MODE_OFF]);
    HKWORKREC again;
    std::memset(&again, 0x55, sizeof again);
    hk_pad(inrec, &again, nullptr);
    EXPECT_EQ(std::memcmp(&w, &again, sizeof w), 0);
    if (::testing::Test::HasFailure()) break;
  }
}

TEST(PrepareAnyBytes, ANulInsideAFieldEndsItsText) {
  InputRecord in;
  in.street(std::string("MAIN \0ROAD", 10));
  EXPECT_STREQ(prepare(in.data()).wk_street, "MAIN");
}

// The control block argument is never dereferenced.
TEST(PrepareControlBlock, IsNeverRead) {
  const InputRecord in = InputRecord().premno("7").street("QUEEN'S ROAD");
  HKWORKREC w;
  hk_pad(in.data(), &w, reinterpret_cast<HKMCB *>(0x1));
  EXPECT_STREQ(w.wk_premno, "7");
  EXPECT_STREQ(w.wk_street, "QUEEN'S ROAD");
}

}  // namespace
