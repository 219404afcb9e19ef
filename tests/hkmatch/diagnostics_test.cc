// Listings and extract records of the address search, byte for byte: the
// routines that format one record, and the outputs that a search writes in
// each listing and extract mode.
#include "hkmatch/diagnostics.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "orlo_matcher.h"
#include "search_harness.h"

namespace {

using orlo::testing::pad;

using orlo::testing::set_text;

HKBASEREC sample_record() {
  HKBASEREC r;
  std::memset(&r, 0, sizeof r);
  set_text(r.brefcode, "K01");
  set_text(r.brefid, "12345");
  set_text(r.bbldg, "GOLDEN TOWER");
  set_text(r.bparity, "E");
  set_text(r.bqual1, "FLOOR/SHOP");
  set_text(r.blotext, "10");
  set_text(r.bqual2, "UPPER");
  set_text(r.bhitext, "20A");
  set_text(r.bfld9, "XY");
  set_text(r.baddr, "10-20A NATHAN ROAD");
  r.bside = 'E';
  r.bscore = 95;
  r.bmscore = 102;
  r.bpen = 1;
  return r;
}

STREETENT street(const char *name) {
  STREETENT e;
  std::memset(&e, 0, sizeof e);
  set_text(e.sname, name);
  return e;
}

// Everything that a callback wrote to a temporary file.
template <typename Fn>
std::string written(Fn fn) {
  FILE *f = std::tmpfile();
  fn(f);
  std::fflush(f);
  std::string bytes(static_cast<size_t>(std::ftell(f)), '\0');
  std::rewind(f);
  size_t n = std::fread(bytes.data(), 1, bytes.size(), f);
  std::fclose(f);
  bytes.resize(n);
  return bytes;
}

std::string summary(const HKBASEREC &r, const STREETENT &e) {
  std::string slot(150, '#');
  hk_dsus(&r, &e, nullptr, nullptr, slot.data());
  return slot;
}

TEST(RecordSummary, EmptyFieldsLeaveBlanks) {
  HKBASEREC r = sample_record();
  set_text(r.bbldg, "");
  set_text(r.bparity, "");
  std::string slot = summary(r, street("NATHAN ROAD"));
  EXPECT_EQ(slot.substr(38, 30), std::string(30, ' '));
  EXPECT_EQ(slot[68], ' ');
}

// Field 9 keeps four characters but has three places: the fourth runs into
// the address text, which is written after it and covers it.
TEST(RecordSummary, LongerFieldIsCoveredByTheNextOne) {
  HKBASEREC r = sample_record();
  set_text(r.bfld9, "ABCD");
  std::string slot = summary(r, street("NATHAN ROAD"));
  EXPECT_EQ(slot.substr(103, 4), "ABC1");
  set_text(r.baddr, "");
  slot = summary(r, street("NATHAN ROAD"));
  EXPECT_EQ(slot.substr(103, 4), "ABCD");
  EXPECT_EQ(slot.substr(107), std::string(43, ' '));
}

std::string base_extract(const HKBASEREC &r, const STREETENT &e) {
  return written([&](FILE *f) { orlo::write_base_extract(f, r, e); });
}

TEST(BaseRecordExtract, SideIsEvenOddOrBoth) {
  HKBASEREC r = sample_record();
  const STREETENT e = street("NATHAN ROAD");
  for (auto [side, shown] :
       {std::pair{'E', 'E'}, std::pair{'O', 'O'}, std::pair{'B', 'B'},
        std::pair{'X', 'B'}, std::pair{'\0', 'B'}}) {
    r.bside = side;
    EXPECT_EQ(base_extract(r, e)[60], shown) << "bside " << int(side);
  }
}

TEST(BaseRecordExtract, FourthCharacterOfField9IsCoveredByTheCode) {
  HKBASEREC r = sample_record();
  set_text(r.bfld9, "ABCD");
  EXPECT_EQ(base_extract(r, street("NATHAN ROAD")).substr(95, 6), "ABCK01");
  set_text(r.bbldg, "");
  EXPECT_EQ(base_extract(r, street("NATHAN ROAD")).substr(30, 30),
            std::string(30, ' '));
}

TEST(StreetExtract, NameAndFirstFiveCharactersOfTheRegion) {
  std::string rec = written([](FILE *f) {
    orlo::write_street_extract(f, "NATHAN ROAD", "KOWLOON EAST");
    orlo::write_street_extract(f, "", "HK");
  });
  EXPECT_EQ(rec,
            pad("NATHAN ROAD", 30) + "KOWLO" + std::string(30, ' ') + "HK   ");
}

std::string record_lines(const HKBASEREC &r, const STREETENT &e) {
  ::testing::internal::CaptureStderr();
  hk_disd(&r, &e, nullptr);
  return ::testing::internal::GetCapturedStderr();
}

TEST(RecordLines, ShortIdentifierIsRightAlignedAndScoresKeepTheirSign) {
  HKBASEREC r = sample_record();
  set_text(r.brefid, "7");
  r.bscore = 100;
  r.bmscore = -4;
  r.bpen = 12;
  std::string lines = record_lines(r, street("NATHAN ROAD"));
  EXPECT_NE(lines.find("\nK01     7 GOLDEN TOWER"), std::string::npos);
  EXPECT_EQ(lines.substr(lines.size() - 13), "100 -004 012\n");
}

// A table of streets made by hand, for the name list.
struct Table {
  std::vector<STREETENT> entries;
  HKMCB mcb;
  explicit Table(const std::vector<std::string> &names) {
    for (const std::string &n : names) entries.push_back(street(n.c_str()));
    std::memset(&mcb, 0, sizeof mcb);
    mcb.lvl2tab = entries.data();
    mcb.lvl2cnt = static_cast<uint16_t>(entries.size());
  }
};

TEST(NameList, NamesWithTheInputsInitialInTableOrder) {
  Table t({"ARGYLE STREET", "NATHAN ROAD", "NGAU TAU KOK ROAD",
           "A NAME OF EXACTLY THIRTY CHARS", "NULLAH ROAD"});
  std::string list(30000, ' ');
  orlo::fill_name_list(t.mcb, "NATHAN RD", list.data());
  EXPECT_EQ(list, pad(pad("NATHAN ROAD", 30) + pad("NGAU TAU KOK ROAD", 30) +
                          "NULLAH ROAD",
                      30000));
  list.assign(30000, ' ');
  orlo::fill_name_list(t.mcb, "ANY", list.data());
  EXPECT_EQ(list.substr(0, 60),
            pad("ARGYLE STREET", 30) + "A NAME OF EXACTLY THIRTY CHARS");
}

// An empty input street lists the names that begin with a blank, and the
// empty names as blank slots, which push the later names on.
TEST(NameList, EmptyStreetListsEmptyNamesAsBlankSlots) {
  Table t({"", " LEADING BLANK", "NATHAN ROAD", "", " SECOND"});
  std::string list(30000, ' ');
  orlo::fill_name_list(t.mcb, "", list.data());
  EXPECT_EQ(list, pad(pad("", 30) + pad(" LEADING BLANK", 30) + pad("", 30) +
                          " SECOND",
                      30000));
}

TEST(NameList, HoldsAt999Names) {
  Table full(std::vector<std::string>(1200, "NATHAN ROAD"));
  std::string list(30000, ' ');
  orlo::fill_name_list(full.mcb, "N", list.data());
  std::string slots;
  for (int i = 0; i < 999; ++i) slots += pad("NATHAN ROAD", 30);
  EXPECT_EQ(list, pad(slots, 30000));
}

// ---- What a search writes in each mode -----------------------------------

using orlo::testing::Geocoder;
using orlo::testing::Outcome;
using orlo::testing::read_file;
using orlo::testing::TestDb;

constexpr const char *kCsv =
    "HK,DES VOEUX ROAD,H01,00011,,,,1,,99,,\n"
    "KLN,ARGYLE STREET,K02,00020,,,,1,,50,,\n"
    "KLN,NATHAN ROAD,K01,00001,,E,,10,,20,XY,10-20 NATHAN ROAD\n"
    "KLN,NATHAN ROAD,K01,00002,,,,21,,40,,\n"
    "KLN,NATHAN ROAD,K01,00003,OCEAN CENTRE,,UNIT,1,,99,,\n"
    "KLN,SHANGHAI STREET,K03,00030,,,,1,,300,,\n";

std::string untouched() {
  std::string out(HKOUTREC_SIZE, ' ');
  out[0] = '0';
  return out;
}

TEST(SearchListing, ModeOneDescribesEveryComparedRecord) {
  TestDb db(kCsv);
  Geocoder g(db, "Y");
  ::testing::internal::CaptureStderr();
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  std::string lines = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(o.refid(), "00001");
  std::string stars = std::string(49, '*') + "\n";
  std::string street = pad("NATHAN ROAD", 30) + "\n";
  std::string expected =
      stars + street + pad("10-20 NATHAN ROAD", 30) + "\n" + "K01 00001 " +
      pad("", 30) + " \n" + "10     20     E  " + pad("", 12) + " " +
      pad("", 12) + " " + std::string(28, ' ') + "XY \n" + "100 102 000\n" +
      // Rejected on its number: no score.
      stars + street + pad("", 30) + "\n" + "K01 00002 " + pad("", 30) + " \n" +
      "21     40        " + pad("", 12) + " " + pad("", 12) + " " +
      std::string(30, ' ') + " \n" + "100 000 000\n" +
      // Rejected on its building.
      stars + street + pad("", 30) + "\n" + "K01 00003 " +
      pad("OCEAN CENTRE", 30) + " \n" + "1      99        " + pad("UNIT", 12) +
      " " + pad("", 12) + " " + std::string(30, ' ') + " \n" + "100 000 000\n";
  EXPECT_EQ(lines, expected);
}

TEST(SearchListing, ModeTwoListsTheStreetTableAndSearchesNothing) {
  TestDb db(kCsv);
  Geocoder g(db, "2");
  for (int i = 0; i < 2; ++i) {
    ::testing::internal::CaptureStderr();
    Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "ARGYLE STREET\nNATHAN ROAD\nSHANGHAI STREET\n");
    EXPECT_EQ(o.ret, 0);
    EXPECT_EQ(o.out, untouched());
  }
}

TEST(SearchListing, ModeThreeListsNamesWithTheInitialAndAcceptedRecords) {
  TestDb db(kCsv);
  Geocoder g(db, "3");
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.refid(), "00001");
  EXPECT_EQ(g.namelist, pad("NATHAN ROAD", 30000));
  // Record 1 was accepted, record 2 rejected on its number (not listed),
  // record 3 rejected on its building (listed).
  std::string first = "K0100001" + pad("NATHAN ROAD", 30) + pad("", 30) + "E" +
                      pad("", 12) + pad("10", 5) + pad("", 12) + pad("20", 5) +
                      "XY " + pad("10-20 NATHAN ROAD", 30) +
                      std::string(14, ' ');
  std::string third = "K0100003" + pad("NATHAN ROAD", 30) +
                      pad("OCEAN CENTRE", 30) + " " + pad("UNIT", 12) +
                      pad("1", 5) + pad("", 12) + pad("99", 5) + "   " +
                      pad("", 30) + std::string(14, ' ');
  EXPECT_EQ(g.reclist, pad(first + third, 7500));

  // Another street of the same region: both areas are rewritten.
  g.search({"KLN", "SHANGHAI STREET", "12"});
  EXPECT_EQ(g.namelist, pad(pad("SHANGHAI STREET", 30), 30000));
  EXPECT_EQ(g.reclist.substr(0, 8), "K0300030");
  EXPECT_EQ(g.reclist.substr(150), std::string(7350, ' '));
}

TEST(SearchListing, ModeThreeKeepsTheFirst49Summaries) {
  std::string csv;
  for (int i = 0; i < 60; ++i) {
    csv += "KLN,NATHAN ROAD,K01," + std::to_string(10000 + i) + ",,,,1,,99,,\n";
  }
  TestDb db(csv);
  Geocoder g(db, "3");
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.matchstat(), '5');
  for (int s = 0; s < 49; ++s) {
    EXPECT_EQ(g.reclist.substr(s * 150, 8), "K01" + std::to_string(10000 + s));
  }
  EXPECT_EQ(g.reclist.substr(49 * 150), std::string(150, ' '));
}

TEST(SearchExtract, StreetExtractHoldsEveryStreetOfTheRegion) {
  TestDb db(kCsv);
  std::string path = db.dir() + "/streets";
  Geocoder g(db, "W" + path);
  ASSERT_TRUE(g.opened());
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.out, untouched());   // no result record is written
  EXPECT_EQ(g.mcb()->lastcnt, 0);  // and the state of the last search stays
  // Flushed after the search: readable while the instance is open.
  EXPECT_EQ(read_file(path), pad("ARGYLE STREET", 30) + "KLN  " +
                                 pad("NATHAN ROAD", 30) + "KLN  " +
                                 pad("SHANGHAI STREET", 30) + "KLN  ");
  g.search({"HK", "", ""});
  EXPECT_EQ(read_file(path).substr(3 * 35),
            pad("DES VOEUX ROAD", 30) + "HK   ");
}

TEST(SearchExtract, BaseRecordExtractHoldsEveryRecordOfTheCandidates) {
  TestDb db(kCsv);
  std::string path = db.dir() + "/records";
  Geocoder g(db, "X" + path);
  ASSERT_TRUE(g.opened());
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.retcode(), '0');  // nothing is chosen in this mode
  EXPECT_EQ(o.refid(), "");
  std::string name = pad("NATHAN ROAD", 30);
  std::string expected =
      name + pad("", 30) + "E" + pad("", 12) + pad("10", 5) + pad("", 12) +
      pad("20", 5) + "XY " + "K01" + "00001" + pad("10-20 NATHAN ROAD", 30) +
      name + pad("", 30) + "B" + pad("", 12) + pad("21", 5) + pad("", 12) +
      pad("40", 5) + "   " + "K01" + "00002" + pad("", 30) + name +
      pad("OCEAN CENTRE", 30) + "B" + pad("UNIT", 12) + pad("1", 5) +
      pad("", 12) + pad("99", 5) + "   " + "K01" + "00003" + pad("", 30);
  EXPECT_EQ(read_file(path), expected);
}

}  // namespace
