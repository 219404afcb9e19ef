// Input preparation: from the 200-byte input record to the prepared input.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "hkmatch/record_builders.h"

namespace {

using orlo::testing::InputRecord;

HKWORKREC prepare(const char *inrec) {
  HKWORKREC work;
  std::memset(&work, 0xAA, sizeof work);  // stale bytes must not survive
  hk_pad(inrec, &work, nullptr);
  return work;
}

// ---- premise number -------------------------------------------------------

TEST(PreparePremiseNumber, LeadingZerosGoAndTheNumberIsParsed) {
  const HKWORKREC w = prepare(InputRecord().premno("00012A  ").data());
  EXPECT_STREQ(w.wk_premno, "12A");
  EXPECT_EQ(w.wk_premrc, 0);
  EXPECT_EQ(w.wk_prem1, 12);
  EXPECT_EQ(w.wk_prem1kind, 'N');
  EXPECT_EQ(w.wk_prem2, 65);
  EXPECT_EQ(w.wk_prem2kind, 'A');
}

TEST(PreparePremiseNumber, ZerosOnlyIsNoNumber) {
  for (const char *zeros : {"0", "000", "00000000", "", "   "}) {
    const HKWORKREC w = prepare(InputRecord().premno(zeros).data());
    EXPECT_STREQ(w.wk_premno, "") << '"' << zeros << '"';
    EXPECT_EQ(w.wk_premrc, 2) << zeros;
    EXPECT_EQ(w.wk_prem1, 0) << zeros;
    EXPECT_EQ(w.wk_prem1kind, ' ') << zeros;
    EXPECT_EQ(w.wk_prem2, 0) << zeros;
    EXPECT_EQ(w.wk_prem2kind, ' ') << zeros;
  }
}

TEST(PreparePremiseNumber, BlanksBeforeTheNumberGoBeforeTheZeros) {
  EXPECT_STREQ(prepare(InputRecord().premno(" 012").data()).wk_premno, "12");
  EXPECT_STREQ(prepare(InputRecord().premno("   0012").data()).wk_premno, "12");
}

TEST(PreparePremiseNumber, OnlyLeadingZerosAreRemoved) {
  EXPECT_STREQ(prepare(InputRecord().premno("0120").data()).wk_premno, "120");
  const HKWORKREC w = prepare(InputRecord().premno("12  014").data());
  EXPECT_STREQ(w.wk_premno, "12 014");
  EXPECT_EQ(w.wk_prem1, 12);
  EXPECT_EQ(w.wk_prem2, 14);
  EXPECT_EQ(w.wk_prem2kind, 'N');
}

TEST(PreparePremiseNumber, AFullFieldKeepsAllEightCharacters) {
  const HKWORKREC w = prepare(InputRecord().premno("12345678").data());
  EXPECT_STREQ(w.wk_premno, "12345678");
  EXPECT_EQ(w.wk_prem1, 12345678);
}

// ---- text fields ----------------------------------------------------------

TEST(PrepareTextFields, BlankRunsCollapseAndBlankFieldsAreEmpty) {
  InputRecord in;
  in.street("  NATHAN   ROAD").bldg("CHUNG  KING    MANSIONS");
  const HKWORKREC w = prepare(in.data());
  EXPECT_STREQ(w.wk_street, "NATHAN ROAD");
  EXPECT_STREQ(w.wk_bldg, "CHUNG KING MANSIONS");
  EXPECT_STREQ(w.wk_extra, "");
  EXPECT_STREQ(w.wk_district, "");
  EXPECT_STREQ(w.wk_region, "");
  EXPECT_STREQ(w.wk_unit, "");
  EXPECT_STREQ(w.wk_refcode, "");
}

TEST(PrepareTextFields, EachFieldGoesToItsOwnPlace) {
  InputRecord in;
  in.refcode(" AB")
      .street("S")
      .bldg("B")
      .set(orlo::in::extra, "X")
      .district("D")
      .region("KLN")
      .mode('3');
  const HKWORKREC w = prepare(in.data());
  EXPECT_STREQ(w.wk_refcode, "AB");
  EXPECT_STREQ(w.wk_street, "S");
  EXPECT_STREQ(w.wk_bldg, "B");
  EXPECT_STREQ(w.wk_extra, "X");
  EXPECT_STREQ(w.wk_district, "D");
  EXPECT_STREQ(w.wk_region, "KLN");
  EXPECT_EQ(w.wk_mode, '3');
}

TEST(PrepareTextFields, FullThirtyCharacterFieldIsKept) {
  const std::string full = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123";
  const HKWORKREC w = prepare(InputRecord().district(full).data());
  EXPECT_EQ(std::string(w.wk_district), full);
}

TEST(PrepareTextFields, UnitLineJoinsItsTwoPieces) {
  InputRecord in;
  in.unit("FLAT A 12/F BLOCK 3 TOWER").unitext("ONE  ");
  EXPECT_STREQ(prepare(in.data()).wk_unit, "FLAT A 12/F BLOCK 3 TOWERONE");
}

TEST(PrepareTextFields, UnitLineTextOnlyInTheSecondPiece) {
  EXPECT_STREQ(prepare(InputRecord().unitext("  G/F").data()).wk_unit, "G/F");
  InputRecord in;
  in.unit("FLAT B").unitext("3/F");
  EXPECT_STREQ(prepare(in.data()).wk_unit, "FLAT B 3/F");
}

// ---- bytes that no field fills ----------------------------------------------

// Marks the bytes of the structure that belong to some field.
std::vector<bool> field_bytes() {
  std::vector<bool> used(sizeof(HKWORKREC), false);
  const auto mark = [&used](size_t off, size_t len) {
    for (size_t i = off; i < off + len; ++i) used[i] = true;
  };
#define ORLO_MARK(f) mark(offsetof(HKWORKREC, f), sizeof(HKWORKREC::f))
  ORLO_MARK(wk_premno);
  ORLO_MARK(wk_street);
  ORLO_MARK(wk_bldg);
  ORLO_MARK(wk_unit);
  ORLO_MARK(wk_extra);
  ORLO_MARK(wk_district);
  ORLO_MARK(wk_region);
  ORLO_MARK(wk_refcode);
  ORLO_MARK(wk_mode);
  ORLO_MARK(wk_premrc);
  ORLO_MARK(wk_prem1);
  ORLO_MARK(wk_prem1kind);
  ORLO_MARK(wk_prem2);
  ORLO_MARK(wk_prem2kind);
#undef ORLO_MARK
  return used;
}

// After the terminator of a text field, every byte is zero.
void expect_zero_after_text(const char *field, size_t size, const char *name) {
  const size_t len = strnlen(field, size);
  ASSERT_LT(len, size) << name << " is not terminated";
  for (size_t i = len; i < size; ++i) {
    EXPECT_EQ(field[i], '\0') << name << " byte " << i;
  }
}

#define ORLO_EXPECT_ZERO_AFTER(w, f) \
  expect_zero_after_text((w).f, sizeof((w).f), #f)

void expect_unused_bytes_zero(const HKWORKREC &w) {
  const auto *bytes = reinterpret_cast<const unsigned char *>(&w);
  const std::vector<bool> used = field_bytes();
  for (size_t i = 0; i < sizeof w; ++i) {
    if (!used[i]) {
      EXPECT_EQ(bytes[i], 0) << "byte " << i;
    }
  }
  ORLO_EXPECT_ZERO_AFTER(w, wk_premno);
  ORLO_EXPECT_ZERO_AFTER(w, wk_street);
  ORLO_EXPECT_ZERO_AFTER(w, wk_bldg);
  ORLO_EXPECT_ZERO_AFTER(w, wk_unit);
  ORLO_EXPECT_ZERO_AFTER(w, wk_extra);
  ORLO_EXPECT_ZERO_AFTER(w, wk_district);
  ORLO_EXPECT_ZERO_AFTER(w, wk_region);
  ORLO_EXPECT_ZERO_AFTER(w, wk_refcode);
}

TEST(PrepareUnusedBytes, AreZero) {
  InputRecord in;
  in.premno("12").street("NATHAN ROAD").unit("FLAT A").region("HK");
  const HKWORKREC w = prepare(in.data());
  EXPECT_EQ(w.wk_unused[0], '\0');
  EXPECT_EQ(w.wk_unused[1], '\0');
  expect_unused_bytes_zero(w);
}

TEST(PrepareUnusedBytes, AreZeroForAnAllBlankRecord) {
  const HKWORKREC w = prepare(InputRecord().data());
  expect_unused_bytes_zero(w);
  EXPECT_EQ(w.wk_premrc, 2);
  EXPECT_EQ(w.wk_mode, ' ');
}

// ---- any 200 bytes
// ------------------------------------------------------------

// The text invariants: terminated, no leading blank, no blank run, no
// trailing blank.
void expect_tidy(const char *field, size_t size, const char *name) {
  const size_t len = strnlen(field, size);
  ASSERT_LT(len, size) << name;
  const std::string text(field, len);
  EXPECT_EQ(text.find("  "), std::string::npos) << name << ": " << text;
  if (len > 0) {
    EXPECT_NE(text.front(), ' ') << name;
    EXPECT_NE(text.back(), ' ') << name;
  }
}

#define ORLO_EXPECT_TIDY(w, f) expect_tidy((w).f, sizeof((w).f), #f)

TEST(PrepareAnyBytes, GiveATidyRecordAndTheSameOneTwice) {
  std::mt19937 rng(20260101);
  // Byte pools: anything, high bytes, control characters and NULs, blanks
  // with a few letters and zeros.
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
    ORLO_EXPECT_TIDY(w, wk_premno);
    ORLO_EXPECT_TIDY(w, wk_street);
    ORLO_EXPECT_TIDY(w, wk_bldg);
    ORLO_EXPECT_TIDY(w, wk_unit);
    ORLO_EXPECT_TIDY(w, wk_extra);
    ORLO_EXPECT_TIDY(w, wk_district);
    ORLO_EXPECT_TIDY(w, wk_region);
    ORLO_EXPECT_TIDY(w, wk_refcode);
    expect_unused_bytes_zero(w);
    EXPECT_TRUE(w.wk_premrc == 0 || w.wk_premrc == 2) << w.wk_premrc;
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

TEST(PrepareControlBlock, IsNeverRead) {
  const InputRecord in = InputRecord().premno("7").street("QUEEN'S ROAD");
  HKWORKREC w;
  hk_pad(in.data(), &w, reinterpret_cast<HKMCB *>(0x1));
  EXPECT_STREQ(w.wk_premno, "7");
  EXPECT_STREQ(w.wk_street, "QUEEN'S ROAD");
}

}  // namespace
