// Helpers of the address search tests: an open instance on which addresses
// are searched the way the dispatcher searches them (hk_pad, then hk_mpro),
// and readers and patchers of the reference files.
#ifndef ORLO_TESTS_SUPPORT_SEARCH_HARNESS_H
#define ORLO_TESTS_SUPPORT_SEARCH_HARNESS_H

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

#include "orlo_matcher.h"
#include "orlo_records.h"
#include "support/record_builders.h"
#include "support/test_db.h"

namespace orlo::testing {

// The fields of an input record that the search tests set.
struct Address {
  std::string region = {};
  std::string street = {};
  std::string premno = {};
  std::string bldg = {};
  std::string unit = {};
  std::string refcode = {};
  char mode = ' ';

  std::string record() const {
    return InputRecord()
        .region(region)
        .street(street)
        .premno(premno)
        .bldg(bldg)
        .unit(unit)
        .refcode(refcode)
        .mode(mode)
        .str();
  }
};

// Field `f` of a record without its trailing blanks.
inline std::string trimmed(const std::string &rec, FieldRef f) {
  std::string s =
      rec.substr(static_cast<size_t>(f.off), static_cast<size_t>(f.len));
  s.erase(s.find_last_not_of(' ') + 1);
  return s;
}

// Text padded with blanks (or cut) to width.
inline std::string pad(const std::string &text, size_t width) {
  std::string s = text.substr(0, width);
  s.resize(width, ' ');
  return s;
}

// The outcome of one search: hk_mpro's value and the 300-byte output record.
struct Outcome {
  int32_t ret = -1;
  std::string out;

  char retcode() const { return out[HKOUT_RETCODE_OFF]; }
  char matchstat() const { return out[HKOUT_MATCHSTAT_OFF]; }
  char grade() const { return out[HKOUT_GRADE_OFF]; }
  std::string street() const { return trimmed(out, orlo::out::street); }
  std::string refid() const { return trimmed(out, orlo::out::refid); }
};

// An instance opened on a reference database and closed at the end.
class Geocoder {
 public:
  explicit Geocoder(const std::string &dir, const std::string &options = "") {
    const std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
                      bd = dir + "/BASEDATA";
    char code = '0';
    open_ret_ = hk_mopn(&mcb_, &code, options.c_str(), l1.c_str(), l2.c_str(),
                        bd.c_str());
  }
  explicit Geocoder(const TestDb &db, const std::string &options = "")
      : Geocoder(db.dir(), options) {}
  ~Geocoder() {
    char out[HKOUTREC_SIZE];
    hk_mclo(&mcb_, out);
  }
  Geocoder(const Geocoder &) = delete;
  Geocoder &operator=(const Geocoder &) = delete;

  bool opened() const { return open_ret_ == 0 && mcb_ != nullptr; }
  HKMCB *mcb() { return mcb_; }

  // Prepares and searches one address at the given search level.
  Outcome search(const Address &a, int32_t level = 0) {
    const std::string inrec = a.record();
    HKWORKREC work;
    hk_pad(inrec.c_str(), &work, mcb_);
    Outcome o{-1, std::string(HKOUTREC_SIZE, ' ')};
    o.out[HKOUT_RETCODE_OFF] = '0';
    char area[3000];
    char area30[30];
    o.ret = hk_mpro(&mcb_, &work, o.out.data(), inrec.c_str(), namelist.data(),
                    reclist.data(), level, area, 0, area30);
    return o;
  }

  std::string namelist = std::string(30000, '?');
  std::string reclist = std::string(7500, '?');

 private:
  HKMCB *mcb_ = nullptr;
  int32_t open_ret_ = -1;
};

inline std::string read_file(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

inline void write_file(const std::string &path, const std::string &bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// ---- Reading and patching the reference files -----------------------------

inline uint32_t get_be(const std::string &b, size_t off, int bytes) {
  uint32_t v = 0;
  for (int i = 0; i < bytes; ++i)
    v = v << 8 | static_cast<unsigned char>(b[off + i]);
  return v;
}

inline void set_be(std::string &b, size_t off, int bytes, uint32_t v) {
  for (int i = bytes - 1; i >= 0; --i, v >>= 8)
    b[off + i] = static_cast<char>(v & 0xFF);
}

// Offset of the region's 40-byte record in LEVEL1, or npos.
inline size_t level1_record(const std::string &l1, const std::string &region) {
  const std::string key = pad(region, 30);
  for (size_t off = 0; off + 40 <= l1.size(); off += 40) {
    if (l1.compare(off, 30, key) == 0) return off;
  }
  return std::string::npos;
}

// Offset in LEVEL2 of the street's record in the region's segment, or npos.
inline size_t level2_record(const std::string &l1, const std::string &l2,
                            const std::string &region,
                            const std::string &street) {
  const size_t r = level1_record(l1, region);
  if (r == std::string::npos) return r;
  size_t off = get_be(l1, r + 30, 4);
  const uint32_t count = get_be(l1, r + 38, 2);
  for (uint32_t i = 0; i < count; ++i) {
    const std::string name(l2.c_str() + off + 10);
    if (name == street) return off;
    off += 11 + name.size();
  }
  return std::string::npos;
}

// Where a street's block lies in BASEDATA.
struct Block {
  uint32_t off = 0, len = 0;
};

inline Block street_block(const TestDb &db, const std::string &region,
                          const std::string &street) {
  const std::string l1 = read_file(db.level1()), l2 = read_file(db.level2());
  const size_t r = level2_record(l1, l2, region, street);
  EXPECT_NE(r, std::string::npos) << region << "/" << street;
  if (r == std::string::npos) return {};
  return {get_be(l2, r, 4), get_be(l2, r + 4, 4)};
}

}  // namespace orlo::testing

#endif  // ORLO_TESTS_SUPPORT_SEARCH_HARNESS_H
