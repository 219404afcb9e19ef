// Mapping of a caller's large source record (already split into many
// fixed-width pieces) into the 200-byte input record.
#include <array>
#include <cstring>
#include <span>
#include <string_view>

#include "common/fixed_field.h"
#include "hkmatch/input/record_fields.h"
#include "orlo_fields.h"
#include "orlo_matcher.h"

namespace orlo {
namespace {

// A piece of the source record placed at a position of a work area.
struct Piece {
  int32_t src;    // offset in the source record
  int32_t width;  // bytes taken
  int32_t at;     // position in the work area
};

constexpr int32_t kGroupStart = 2818;
constexpr int32_t kGroupSize = 571;
constexpr int32_t kGroups = 10;

// The floor/unit line: three texts of 20 and three of 10 characters.
constexpr std::array kUnitPieces{Piece{1343, 20, 0},  Piece{1383, 10, 21},
                                 Piece{1404, 20, 32}, Piece{1444, 10, 53},
                                 Piece{1465, 20, 64}, Piece{1505, 10, 85}};

// Street and building pieces of each branch.
constexpr std::array kStreet827{Piece{937, 12, 0}, Piece{827, 25, 13},
                                Piece{877, 15, 39}, Piece{961, 12, 55}};
constexpr std::array kBldg827{Piece{1103, 25, 0}, Piece{1153, 15, 26}};
constexpr std::array kStreet985{Piece{985, 20, 0}, Piece{1025, 8, 21}};
constexpr std::array kStreet1042{Piece{1103, 25, 0}, Piece{1153, 15, 26}};
constexpr std::array kBldg1042{Piece{1042, 20, 0}};
constexpr std::array kStreet1103{Piece{1128, 25, 0}, Piece{1168, 15, 26}};

// Pieces of the further line in a group of type '1' (offsets in the group).
constexpr std::array kGroupLinePieces{Piece{16, 15, 0},    Piece{46, 15, 16},
                                      Piece{76, 15, 32},   Piece{106, 15, 48},
                                      Piece{136, 15, 64},  Piece{181, 30, 80},
                                      Piece{251, 10, 111}, Piece{226, 15, 122}};

// Region names: the text compared at the head of a field and the region
// written for it. `district_only` rows match the district, never the region.
struct RegionName {
  std::string_view text;
  std::string_view region;
  bool district_only;
};
constexpr std::array kRegionNames{RegionName{"HONG KONG  ", "HK", false},
                                  RegionName{"HK         ", "HK", true},
                                  RegionName{"KOWLOON  ", "KLN", false},
                                  RegionName{"KLN      ", "KLN", true},
                                  RegionName{"NEW TERRITORIES  ", "NT", false},
                                  RegionName{"NT               ", "NT", true}};

// Region numbers at source offset 2469.
struct RegionNumber {
  std::string_view number;
  std::string_view region;
};
constexpr std::array kRegionNumbers{RegionNumber{"00001 ", "HK"},
                                    RegionNumber{"00002 ", "KLN"},
                                    RegionNumber{"00003 ", "NT"}};

// A blank-filled work area in which pieces are placed and then squeezed.
template <size_t N>
class Composer {
 public:
  explicit Composer(const char *src) : src_(src) { area_.fill(' '); }

  Composer &place(std::span<const Piece> pieces, int32_t base = 0) {
    for (const Piece &p : pieces)
      std::memcpy(area_.data() + p.at, src_ + base + p.src,
                  static_cast<size_t>(p.width));
    return *this;
  }
  // Squeezes the area and copies `width` bytes from position `from` into the
  // record field `f` (width is the field's width unless given).
  void squeeze_into(char *rec, FieldRef f, int32_t from = 0) {
    cm_lftadj(area_.data(), static_cast<int32_t>(N));
    std::memcpy(rec + f.off, area_.data() + from, static_cast<size_t>(f.len));
  }
  void squeeze() { cm_lftadj(area_.data(), static_cast<int32_t>(N)); }
  const char *data() const { return area_.data(); }

 private:
  const char *src_;
  std::array<char, N> area_{};
};

bool starts_with(const char *p, std::string_view text) {
  return std::memcmp(p, text.data(), text.size()) == 0;
}

void copy(const char *src, int32_t off, char *rec, FieldRef f) {
  std::memcpy(rec + f.off, src + off, static_cast<size_t>(f.len));
}

void map_unit_line(const char *src, char *rec) {
  Composer<250> unit(src);
  unit.place(kUnitPieces).squeeze();
  std::memcpy(rec + in::unit.off, unit.data(), in::unit.len);
  std::memcpy(rec + in::unitext.off, unit.data() + in::unit.len,
              in::unitext.len);
}

// Chooses the branch by the first byte of its selector field and fills the
// street, building, premise number and mode; returns false when there is none.
bool map_branch(const char *src, char *rec) {
  if (src[827] != ' ') {
    Composer<250>(src).place(kStreet827).squeeze_into(rec, in::street);
    Composer<100>(src).place(kBldg827).squeeze_into(rec, in::bldg);
    copy(src, 781, rec, in::premno);
    rec[in::mode.off] = '1';
  } else if (src[985] != ' ') {
    Composer<100>(src).place(kStreet985).squeeze_into(rec, in::street);
    Composer<100>(src).place(kBldg827).squeeze_into(rec, in::bldg);
    copy(src, 781, rec, in::premno);
    rec[in::mode.off] = '1';
  } else if (src[1042] != ' ') {
    Composer<100>(src).place(kStreet1042).squeeze_into(rec, in::street);
    Composer<100>(src).place(kBldg1042).squeeze_into(rec, in::bldg);
    copy(src, 1082, rec, in::premno);
    rec[in::mode.off] = '3';
  } else if (src[1103] != ' ') {
    Composer<100>(src).place(kStreet1103).squeeze_into(rec, in::street);
    rec[in::mode.off] = '1';
  } else {
    return false;
  }
  return true;
}

// The group that holds the further line: the first of type '2' or blank;
// a blank group, or none at all, means group 0.
int32_t choose_group(const char *src) {
  for (int32_t k = 0; k < kGroups; ++k) {
    char type = src[kGroupStart + kGroupSize * k];
    if (type == '2') return k;
    if (type == ' ') return 0;
  }
  return 0;
}

void map_further_line(const char *src, char *rec) {
  if (starts_with(src + 725, "00")) {
    copy(src, 1526, rec, in::extra);
    return;
  }
  int32_t group = kGroupStart + kGroupSize * choose_group(src);
  if (src[group] == '1') {
    Composer<250>(src)
        .place(kGroupLinePieces, group)
        .squeeze_into(rec, in::extra);
  } else {
    copy(src, group + 362, rec, in::extra);
  }
}

// Rewrites the head of a given region to its short form.
void shorten_region(char *region) {
  for (const RegionName &r : kRegionNames) {
    if (r.district_only || !starts_with(region, r.text)) continue;
    fill_blanks(region, r.text.size());
    std::memcpy(region, r.region.data(), r.region.size());
    return;
  }
}

// Derives the region from the head of the district, or from the region
// number when the district names none.
void derive_region(const char *src, char *rec) {
  const char *district = rec + in::district.off;
  char *region = rec + in::region.off;
  for (const RegionName &r : kRegionNames) {
    if (!starts_with(district, r.text)) continue;
    std::memcpy(region, r.region.data(), r.region.size());
    return;
  }
  if (district[0] == ' ') return;
  for (const RegionNumber &n : kRegionNumbers) {
    if (!starts_with(src + 2469, n.number)) continue;
    std::memcpy(region, n.region.data(), n.region.size());
    return;
  }
}

void map_area(const char *src, char *rec) {
  if (src[2338] != ' ') {
    copy(src, 2338, rec, in::region);
    shorten_region(rec + in::region.off);
    copy(src, src[2241] == ' ' ? 2271 : 2241, rec, in::district);
  } else {
    copy(src, 2241, rec, in::district);
    derive_region(src, rec);
  }
}

void override_mode(const char *src, char *rec) {
  if (starts_with(src + 778, "004") || src[728] == 'F') {
    rec[in::mode.off] = 'F';
  } else if (starts_with(src + 778, "011")) {
    rec[in::mode.off] = 'E';
  }
}

}  // namespace
}  // namespace orlo

extern "C" int32_t hk_amat(const char *src, char *inrec) {
  using namespace orlo;
  fill_blanks(inrec, HKINREC_SIZE);
  if (map_branch(src, inrec)) {
    map_unit_line(src, inrec);
  } else {
    inrec[in::mode.off] = '4';
  }
  map_further_line(src, inrec);
  // A reference code counts when any of its bytes is given, like the
  // further line at 1526; only the branch selectors look at a first byte.
  if (!all_blank(std::string_view(src + 2429, 3))) {
    copy(src, 2429, inrec, in::refcode);
  }
  map_area(src, inrec);
  override_mode(src, inrec);
  return 0;
}
