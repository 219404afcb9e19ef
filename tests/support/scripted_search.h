// A scripted stand-in for the input preparation and the search, so that the
// dispatcher's own rules can be tested on exactly the results they decide
// on, and what the dispatcher hands to the search can be inspected.
#ifndef ORLO_TESTS_SUPPORT_SCRIPTED_SEARCH_H
#define ORLO_TESTS_SUPPORT_SCRIPTED_SEARCH_H

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "common/fixed_field.h"
#include "hkmatch/calls/call_dispatch.h"
#include "hkmatch/input/record_fields.h"

namespace orlo::testing {

inline std::string blank_record(size_t size) {
  return std::string(size, ' ');
}

inline void put(std::string &rec, FieldRef f, std::string_view text) {
  put_field(rec.data(), f, text);
}

// What the scripted search answers, one result per search, and what it saw.
struct Script {
  std::vector<std::string> results;  // 300-byte records, in order
  std::vector<std::string> seen_inputs;
  std::vector<std::string> seen_areas;
  std::vector<std::string> seen_small_areas;
  std::vector<std::string> seen_result_starts;
  std::vector<HKMCB> seen_blocks;      // the block searched, as it was then
  std::vector<HKMCB *> seen_block_at;  // and where it was
  void (*on_search)(HKMCB *mcb) = nullptr;
  int pads = 0;
};
inline Script *script = nullptr;

inline void scripted_pad(const char *, HKWORKREC *work, HKMCB *) {
  ++script->pads;
  std::memset(work, 'w', sizeof *work);
}

inline int32_t scripted_search(void *handle, HKWORKREC *, char *outrec,
                               const char *inrec, char *, char *, int32_t level,
                               char *area, int32_t, char *area30) {
  size_t n = script->seen_inputs.size();
  HKMCB *mcb = static_cast<HKHANDLE *>(handle)->mcb;
  script->seen_blocks.push_back(*mcb);
  script->seen_block_at.push_back(mcb);
  script->seen_inputs.emplace_back(inrec, HKINREC_SIZE);
  script->seen_areas.emplace_back(area, kSearchAreaSize);
  script->seen_small_areas.emplace_back(area30, 30);
  script->seen_result_starts.emplace_back(outrec, HKOUTREC_SIZE);
  EXPECT_EQ(level, 0);
  // Leave marks that the dispatcher must blank, or keep, before the next
  // search.
  std::memset(area, 'a', kSearchAreaSize);
  std::memset(area30, 'b', 30);
  if (n < script->results.size()) {
    std::memcpy(outrec, script->results[n].data(), HKOUTREC_SIZE);
  }
  if (script->on_search != nullptr) script->on_search(mcb);
  return 0;
}

// 2003-05-01 00:00:00 UTC.
inline time_t fixed_now() {
  return 1051747200;
}

inline constexpr MatcherSteps kScripted{scripted_pad, scripted_search,
                                        fixed_now};

// A result as the search writes it: the input echoed, a reference when
// accepted.
struct Result {
  char status = '0';
  std::string street = "NATHAN ROAD";
  std::string bldg;
  std::string refline = "NATHAN ROAD";
  std::string refcode = "K01";
  std::string refid = "00001";
  char bldgsrc = ' ';
  std::string premno = "12";
  std::string unit = "12/F FLAT A";
  std::string district = "YAU MA TEI";
  std::string region = "KLN";

  std::string build() const {
    std::string r = blank_record(HKOUTREC_SIZE);
    r[0] = status == '0' ? '1' : '0';
    put(r, out::premno, premno);
    put(r, out::street, street);
    put(r, out::bldg, bldg);
    put(r, out::unit, unit);
    put(r, out::district, district);
    put(r, out::region, region);
    r[out::matchstat.off] = status;
    put(r, out::refline, refline);
    put(r, out::refcode, status == '0' ? refcode : "");
    put(r, out::refid, status == '0' ? refid : "");
    r[out::grade.off] = status == '0' ? '0' : '9';
    r[out::bldgsrc.off] = bldgsrc;
    return r;
  }
};

// The 80 characters of line n (1 to 33) of a written accuracy statement.
inline std::string statement_line(const std::string &page, int n) {
  size_t at = 2 + static_cast<size_t>(n - 1) * 82 + 1;
  return at + 80 <= page.size() ? page.substr(at, 80) : std::string();
}

}  // namespace orlo::testing

#endif  // ORLO_TESTS_SUPPORT_SCRIPTED_SEARCH_H
