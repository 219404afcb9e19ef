// Diagnostic listings and extract records of the address search. Every
// layout is fixed byte for byte: the listings are read by people, the
// extracts by the programs that load them.
#include "hkmatch/search/diagnostics.h"

#include <algorithm>
#include <cstring>

namespace orlo {
namespace {

// A text field of an unpacked record, copied without its NUL. Fields are
// copied one after another into a blank area, so a text longer than its
// place runs on and is overwritten by the next field; the copy never
// passes `end`.
template <size_t N>
void put_text(char *dst, const char *end, const char (&src)[N]) {
  size_t n = std::min<size_t>(strnlen(src, N - 1), end - dst);
  std::memcpy(dst, src, n);
}

// Copies at most `width` characters of a NUL-terminated text into a blank
// area of that width.
void put_cut(char *dst, const char *src, size_t width) {
  std::memcpy(dst, src, strnlen(src, width));
}

}  // namespace

void write_street_extract(FILE *out, const char *name, const char *region) {
  char rec[kStreetExtractSize];
  std::memset(rec, ' ', sizeof rec);
  put_cut(rec, name, 30);
  put_cut(rec + 30, region, 5);
  std::fwrite(rec, 1, sizeof rec, out);
}

void write_base_extract(FILE *out, const HKBASEREC &r, const STREETENT &s) {
  char rec[kBaseExtractSize];
  char *end = rec + sizeof rec;
  std::memset(rec, ' ', sizeof rec);
  put_text(rec, end, s.sname);
  put_text(rec + 30, end, r.bbldg);
  rec[60] = r.bside == 'E' || r.bside == 'O' ? r.bside : 'B';
  put_text(rec + 61, end, r.bqual1);
  put_text(rec + 73, end, r.blotext);
  put_text(rec + 78, end, r.bqual2);
  put_text(rec + 90, end, r.bhitext);
  put_text(rec + 95, end, r.bfld9);
  put_text(rec + 98, end, r.brefcode);
  put_text(rec + 101, end, r.brefid);
  put_text(rec + 106, end, r.baddr);
  std::fwrite(rec, 1, sizeof rec, out);
}

void list_street_names(FILE *out, const HKMCB &mcb) {
  for (uint16_t i = 0; i < mcb.lvl2cnt; ++i) {
    std::fprintf(out, "%s\n", mcb.lvl2tab[i].sname);
  }
}

void fill_name_list(const HKMCB &mcb, const char *street, char *namelist) {
  // An empty name counts as beginning with a blank, so an empty input
  // street lists the entries that have no name.
  const char first = street[0] != '\0' ? street[0] : ' ';
  int listed = 0;
  for (uint16_t i = 0; i < mcb.lvl2cnt && listed < kNameSlots; ++i) {
    const char *name = mcb.lvl2tab[i].sname;
    if ((name[0] != '\0' ? name[0] : ' ') != first) continue;
    put_cut(namelist + listed * kNameSlotSize, name, kNameSlotSize);
    ++listed;
  }
}

void write_record_lines(FILE *out, const HKBASEREC &r, const STREETENT &s) {
  static constexpr char kStars[] =
      "*************************************************\n";
  static_assert(sizeof kStars - 1 == 50);
  std::fwrite(kStars, 1, 50, out);
  std::fprintf(out, "%-30.30s\n", s.sname);
  std::fprintf(out, "%-30.30s\n", r.baddr);
  std::fprintf(out, "%-3.3s %5.5s %-30.30s \n", r.brefcode, r.brefid, r.bbldg);
  std::fprintf(out, "%-6.6s %-6.6s %-2.2s %-12.12s %-12.12s %30.30s \n",
               r.blotext, r.bhitext, r.bparity, r.bqual1, r.bqual2, r.bfld9);
  // Three digits at least, with leading zeros (a zero flag next to a
  // precision would be ignored, so the precision alone says it).
  std::fprintf(out, "%.3d %.3d %.3d\n", r.bscore, static_cast<int>(r.bmscore),
               r.bpen);
}

}  // namespace orlo

extern "C" {

ORLO_API void hk_disd(const HKBASEREC *rec, const STREETENT *street,
                      const HKMCB * /*mcb*/) {
  orlo::write_record_lines(stderr, *rec, *street);
}

ORLO_API void hk_dsus(const HKBASEREC *rec, const STREETENT *street,
                      const char * /*inrec*/, const HKMCB * /*mcb*/,
                      char *slot) {
  const HKBASEREC &r = *rec;
  char *end = slot + orlo::kSummarySize;
  std::memset(slot, ' ', orlo::kSummarySize);
  orlo::put_text(slot + 8, end, street->sname);
  orlo::put_text(slot + 38, end, r.bbldg);
  orlo::put_text(slot + 69, end, r.bqual1);
  orlo::put_text(slot + 81, end, r.blotext);
  orlo::put_text(slot + 86, end, r.bqual2);
  orlo::put_text(slot + 98, end, r.bhitext);
  orlo::put_text(slot + 68, end, r.bparity);
  orlo::put_text(slot, end, r.brefcode);
  orlo::put_text(slot + 3, end, r.brefid);
  orlo::put_text(slot + 103, end, r.bfld9);
  orlo::put_text(slot + 106, end, r.baddr);
}

}  // extern "C"
