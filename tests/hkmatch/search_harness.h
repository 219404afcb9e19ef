// Helpers of the address search tests: input records built field by field,
// and an open instance on which prepared records are searched the way the
// dispatcher searches them (hk_pad, then hk_mpro).
#ifndef ORLO_TESTS_HKMATCH_SEARCH_HARNESS_H
#define ORLO_TESTS_HKMATCH_SEARCH_HARNESS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "orlo_matcher.h"
#include "orlo_records.h"
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
};

inline void put(std::string &rec, int off, int len, const std::string &text) {
  size_t n = std::min(text.size(), static_cast<size_t>(len));
  rec.replace(off, n, text, 0, n);
}

inline std::string make_inrec(const Address &a) {
  std::string rec(HKINREC_SIZE, ' ');
  put(rec, HKIN_REGION_OFF, HKIN_REGION_LEN, a.region);
  put(rec, HKIN_STREET_OFF, HKIN_STREET_LEN, a.street);
  put(rec, HKIN_PREMNO_OFF, HKIN_PREMNO_LEN, a.premno);
  put(rec, HKIN_BLDG_OFF, HKIN_BLDG_LEN, a.bldg);
  put(rec, HKIN_UNIT_OFF, HKIN_UNIT_LEN, a.unit);
  put(rec, HKIN_REFCODE_OFF, HKIN_REFCODE_LEN, a.refcode);
  rec[HKIN_MODE_OFF] = a.mode;
  return rec;
}

// Field `off`/`len` of an output record without its trailing blanks.
inline std::string field(const std::string &out, int off, int len) {
  std::string f = out.substr(off, len);
  f.erase(f.find_last_not_of(' ') + 1);
  return f;
}

// The outcome of one search.
struct Outcome {
  int32_t ret = -1;
  std::string out;  // the 300-byte output record

  char retcode() const { return out[HKOUT_RETCODE_OFF]; }
  char matchstat() const { return out[HKOUT_MATCHSTAT_OFF]; }
  std::string street() const {
    return field(out, HKOUT_STREET_OFF, HKOUT_STREET_LEN);
  }
  std::string refcode() const {
    return field(out, HKOUT_REFCODE_OFF, HKOUT_REFCODE_LEN);
  }
  std::string refid() const {
    return field(out, HKOUT_REFID_OFF, HKOUT_REFID_LEN);
  }
};

// An instance opened on a reference database and closed at the end.
class Geocoder {
 public:
  Geocoder(const std::string &dir, const std::string &options = "") {
    std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
                bd = dir + "/BASEDATA";
    open_ret_ = hk_mopn(&mcb_, &open_code_, options.c_str(), l1.c_str(),
                        l2.c_str(), bd.c_str());
  }
  Geocoder(const TestDb &db, const std::string &options = "")
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
    std::string inrec = make_inrec(a);
    return search_record(inrec, level);
  }

  Outcome search_record(const std::string &inrec, int32_t level = 0) {
    HKWORKREC work;
    hk_pad(inrec.c_str(), &work, mcb_);
    Outcome o;
    o.out.assign(HKOUTREC_SIZE, ' ');
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
  char open_code_ = '0';
  int32_t open_ret_ = -1;
};

inline std::string read_file(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

inline void write_file(const std::string &path, const std::string &bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

// Sets a NUL-terminated text field of a structure, cut to fit.
template <size_t N>
void set_text(char (&dst)[N], const char *text) {
  std::memset(dst, 0, N);
  std::memcpy(dst, text, std::min(std::strlen(text), N - 1));
}

// Text padded with blanks (or cut) to width.
inline std::string pad(const std::string &text, size_t width) {
  std::string s = text.substr(0, width);
  s.resize(width, ' ');
  return s;
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
  std::string key = pad(region, 30);
  for (size_t off = 0; off + 40 <= l1.size(); off += 40) {
    if (l1.compare(off, 30, key) == 0) return off;
  }
  return std::string::npos;
}

// Offset in LEVEL2 of the street's record in the region's segment, or npos.
inline size_t level2_record(const std::string &l1, const std::string &l2,
                            const std::string &region,
                            const std::string &street) {
  size_t r = level1_record(l1, region);
  if (r == std::string::npos) return r;
  size_t off = get_be(l1, r + 30, 4);
  uint32_t count = get_be(l1, r + 38, 2);
  for (uint32_t i = 0; i < count; ++i) {
    std::string name(l2.c_str() + off + 10);
    if (name == street) return off;
    off += 11 + name.size();
  }
  return std::string::npos;
}

// Where a street's block lies in BASEDATA.
struct Block {
  uint32_t off = 0;
  uint32_t len = 0;
  uint16_t count = 0;
};

inline Block street_block(const TestDb &db, const std::string &region,
                          const std::string &street) {
  std::string l1 = read_file(db.level1()), l2 = read_file(db.level2());
  size_t r = level2_record(l1, l2, region, street);
  EXPECT_NE(r, std::string::npos) << region << "/" << street;
  if (r == std::string::npos) return {};
  return {get_be(l2, r, 4), get_be(l2, r + 4, 4),
          static_cast<uint16_t>(get_be(l2, r + 8, 2))};
}

}  // namespace orlo::testing

#endif  // ORLO_TESTS_HKMATCH_SEARCH_HARNESS_H
