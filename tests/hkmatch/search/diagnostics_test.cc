// Listings and extract records of the search, byte for byte.
#include "hkmatch/search/diagnostics.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "orlo_matcher.h"
#include "support/search_harness.h"

namespace {

using orlo::testing::Geocoder;
using orlo::testing::Outcome;
using orlo::testing::pad;
using orlo::testing::read_file;
using orlo::testing::set_text;
using orlo::testing::TestDb;

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

STREETENT street(const std::string &name) {
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
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), f));
  std::fclose(f);
  return bytes;
}

std::string summary(const HKBASEREC &r) {
  std::string slot(150, '#');
  const STREETENT e = street("NATHAN ROAD");
  hk_dsus(&r, &e, nullptr, nullptr, slot.data());
  return slot;
}

std::string base_extract(const HKBASEREC &r) {
  const STREETENT e = street("NATHAN ROAD");
  return written([&](FILE *f) { orlo::write_base_extract(f, r, e); });
}

// Empty fields leave blanks. Field 9 keeps four characters but has three
// places: the fourth is covered by the field written after it (the address
// text in a summary, the code in an extract) and shows only without it.
TEST(RecordFormat, EmptyFieldsAndTheFourthCharacterOfField9) {
  HKBASEREC r = sample_record();
  set_text(r.bbldg, "");
  set_text(r.bparity, "");
  set_text(r.bfld9, "ABCD");
  std::string slot = summary(r);
  EXPECT_EQ(slot.substr(38, 30), std::string(30, ' '));
  EXPECT_EQ(slot[68], ' ');
  EXPECT_EQ(slot.substr(103, 4), "ABC1");
  const std::string extract = base_extract(r);
  EXPECT_EQ(extract.substr(30, 30), std::string(30, ' '));
  EXPECT_EQ(extract.substr(95, 6), "ABCK01");
  set_text(r.baddr, "");
  slot = summary(r);
  EXPECT_EQ(slot.substr(103, 4), "ABCD");
  EXPECT_EQ(slot.substr(107), std::string(43, ' '));
}

// The listing right-aligns a short identifier and keeps the scores' signs.
TEST(RecordFormat, RecordLinesAlignTheIdentifierAndSignTheScores) {
  HKBASEREC r = sample_record();
  set_text(r.brefid, "7");
  r.bscore = 100;
  r.bmscore = -4;
  r.bpen = 12;
  const STREETENT e = street("NATHAN ROAD");
  ::testing::internal::CaptureStderr();
  hk_disd(&r, &e, nullptr);
  const std::string lines = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(lines.find("\nK01     7 GOLDEN TOWER"), std::string::npos);
  EXPECT_EQ(lines.substr(lines.size() - 13), "100 -004 012\n");
}

// The name list holds, in table order, the names with the input's initial
// (an empty input: names beginning with a blank, and empty names as blank
// slots), up to 999 of them.
TEST(NameList, NamesWithTheInputsInitialInTableOrder) {
  const struct {
    std::vector<std::string> names;
    const char *input;
    std::vector<std::string> listed;
  } rows[] = {
      {{"ARGYLE STREET", "NATHAN ROAD", "NGAU TAU KOK ROAD",
        "A NAME OF EXACTLY THIRTY CHARS", "NULLAH ROAD"},
       "NATHAN RD",
       {"NATHAN ROAD", "NGAU TAU KOK ROAD", "NULLAH ROAD"}},
      {{"ARGYLE STREET", "NATHAN ROAD", "A NAME OF EXACTLY THIRTY CHARS"},
       "ANY",
       {"ARGYLE STREET", "A NAME OF EXACTLY THIRTY CHARS"}},
      {{"", " LEADING BLANK", "NATHAN ROAD", "", " SECOND"},
       "",
       {"", " LEADING BLANK", "", " SECOND"}},
      {std::vector<std::string>(1200, "NATHAN ROAD"), "N",
       std::vector<std::string>(999, "NATHAN ROAD")},
  };
  for (const auto &r : rows) {
    SCOPED_TRACE(r.input);
    std::vector<STREETENT> entries;
    for (const std::string &n : r.names) entries.push_back(street(n));
    HKMCB mcb;
    std::memset(&mcb, 0, sizeof mcb);
    mcb.lvl2tab = entries.data();
    mcb.lvl2cnt = static_cast<uint16_t>(entries.size());
    std::string list(30000, ' ');
    orlo::fill_name_list(mcb, r.input, list.data());
    std::string slots;
    for (const std::string &n : r.listed) slots += pad(n, 30);
    EXPECT_EQ(list, pad(slots, 30000));
  }
}

// ---- What a search writes in each mode -----------------------------------

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

// Listing mode 1 describes every compared record on standard error.
TEST(SearchListing, ModeOneDescribesEveryComparedRecord) {
  TestDb db(kCsv);
  Geocoder g(db, "Y");
  ::testing::internal::CaptureStderr();
  const Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  const std::string lines = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(o.refid(), "00001");
  const std::string head =
      std::string(49, '*') + "\n" + pad("NATHAN ROAD", 30) + "\n";
  const std::string blank12 = pad("", 12) + " " + pad("", 12) + " ";
  const std::string expected =
      head + pad("10-20 NATHAN ROAD", 30) + "\n" + "K01 00001 " + pad("", 30) +
      " \n" + "10     20     E  " + blank12 + std::string(28, ' ') + "XY \n" +
      "100 102 000\n" +  //
      head + pad("", 30) + "\n" + "K01 00002 " + pad("", 30) + " \n" +
      "21     40        " + blank12 + std::string(30, ' ') + " \n" +
      "100 000 000\n" +  //
      head + pad("", 30) + "\n" + "K01 00003 " + pad("OCEAN CENTRE", 30) +
      " \n" + "1      99        " + pad("UNIT", 12) + " " + pad("", 12) + " " +
      std::string(30, ' ') + " \n" + "100 000 000\n";
  EXPECT_EQ(lines, expected);
}

// Listing mode 2 lists the street table, every time, and searches nothing.
TEST(SearchListing, ModeTwoListsTheStreetTableAndSearchesNothing) {
  TestDb db(kCsv);
  Geocoder g(db, "2");
  for (int i = 0; i < 2; ++i) {
    ::testing::internal::CaptureStderr();
    const Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "ARGYLE STREET\nNATHAN ROAD\nSHANGHAI STREET\n");
    EXPECT_EQ(o.ret, 0);
    EXPECT_EQ(o.out, untouched());
  }
}

// Mode 3 lists names and summarises records not rejected on their number.
TEST(SearchListing, ModeThreeListsNamesWithTheInitialAndAcceptedRecords) {
  TestDb db(kCsv);
  Geocoder g(db, "3");
  EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "12"}).refid(), "00001");
  EXPECT_EQ(g.namelist, pad("NATHAN ROAD", 30000));
  const std::string first = "K0100001" + pad("NATHAN ROAD", 30) + pad("", 30) +
                            "E" + pad("", 12) + pad("10", 5) + pad("", 12) +
                            pad("20", 5) + "XY " +
                            pad("10-20 NATHAN ROAD", 30) + std::string(14, ' ');
  const std::string third = "K0100003" + pad("NATHAN ROAD", 30) +
                            pad("OCEAN CENTRE", 30) + " " + pad("UNIT", 12) +
                            pad("1", 5) + pad("", 12) + pad("99", 5) + "   " +
                            pad("", 30) + std::string(14, ' ');
  EXPECT_EQ(g.reclist, pad(first + third, 7500));

  g.search({"KLN", "SHANGHAI STREET", "12"});
  EXPECT_EQ(g.namelist, pad(pad("SHANGHAI STREET", 30), 30000));
  EXPECT_EQ(g.reclist.substr(0, 8), "K0300030");
  EXPECT_EQ(g.reclist.substr(150), std::string(7350, ' '));
}

// The record list has room for 49 summaries; later ones are dropped.
TEST(SearchListing, ModeThreeKeepsTheFirst49Summaries) {
  std::string csv;
  for (int i = 0; i < 60; ++i) {
    csv += "KLN,NATHAN ROAD,K01," + std::to_string(10000 + i) + ",,,,1,,99,,\n";
  }
  TestDb db(csv);
  Geocoder g(db, "3");
  EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "12"}).matchstat(), '5');
  for (int s = 0; s < 49; ++s) {
    EXPECT_EQ(g.reclist.substr(s * 150, 8), "K01" + std::to_string(10000 + s));
  }
  EXPECT_EQ(g.reclist.substr(49 * 150), std::string(150, ' '));
}

// The street extract holds every street of each region, flushed at once.
TEST(SearchExtract, StreetExtractHoldsEveryStreetOfTheRegion) {
  TestDb db(kCsv);
  const std::string path = db.dir() + "/streets";
  Geocoder g(db, "W" + path);
  ASSERT_TRUE(g.opened());
  const Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.out, untouched());
  EXPECT_EQ(g.mcb()->lastcnt, 0);
  EXPECT_EQ(read_file(path), pad("ARGYLE STREET", 30) + "KLN  " +
                                 pad("NATHAN ROAD", 30) + "KLN  " +
                                 pad("SHANGHAI STREET", 30) + "KLN  ");
  g.search({"HK", "", ""});
  EXPECT_EQ(read_file(path).substr(3 * 35),
            pad("DES VOEUX ROAD", 30) + "HK   ");
}

// The base record extract holds every candidate record; nothing is chosen.
TEST(SearchExtract, BaseRecordExtractHoldsEveryRecordOfTheCandidates) {
  TestDb db(kCsv);
  const std::string path = db.dir() + "/records";
  Geocoder g(db, "X" + path);
  ASSERT_TRUE(g.opened());
  const Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.refid(), "");
  const std::string name = pad("NATHAN ROAD", 30);
  const std::string blank = pad("", 30);
  const std::string expected =
      name + blank + "E" + pad("", 12) + pad("10", 5) + pad("", 12) +
      pad("20", 5) + "XY K0100001" + pad("10-20 NATHAN ROAD", 30) +  //
      name + blank + "B" + pad("", 12) + pad("21", 5) + pad("", 12) +
      pad("40", 5) + "   K0100002" + blank +  //
      name + pad("OCEAN CENTRE", 30) + "B" + pad("UNIT", 12) + pad("1", 5) +
      pad("", 12) + pad("99", 5) + "   K0100003" + blank;
  EXPECT_EQ(read_file(path), expected);
}

}  // namespace
