// How well the line splitter does against the fielded path: each address of
// one or more hkgeocode input files is geocoded as fielded (its columns
// tidied by the input normalisation) and as a line written in several
// styles, on one instance of the database, and the references compared.
//
//   line_quality --db DIR [--limit N] [--styles] CSV...
//
// The reference code, the extra line and the record mode of the input are
// left out of both paths, since a line cannot carry them. A district is
// written from the input's district column or, when that is empty, from
// the district that its reference code, else the code of the reference the
// fielded path found, names in the generator's table (generated addresses
// carry no district; the district plays no part in the fielded search). Prints
// one table row per style (Markdown) and the counts over all styles; exit
// status 0, or 2 on wrong usage or unreadable input.
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "lib/csv_reader.h"
#include "lib/hk_name_parts.h"
#include "orlo_codes.h"
#include "orlo_lines.h"
#include "orlo_matcher.h"
#include "orlo_normalise.h"
#include "orlo_records.h"

namespace {

// The columns of an address that a line can carry.
struct Address {
  std::string premno, street, building, unit, district, region;
};

// ---- writing an address as a line ------------------------------------------

struct Word {
  std::string_view full, shortened;
};

constexpr Word kShortWords[] = {
    {"ROAD", "RD"},       {"STREET", "ST"},     {"AVENUE", "AVE"},
    {"LANE", "LN"},       {"TERRACE", "TER"},   {"DRIVE", "DR"},
    {"CRESCENT", "CRES"}, {"CIRCUIT", "CCT"},   {"HIGHWAY", "HWY"},
    {"SQUARE", "SQ"},     {"BUILDING", "BLDG"}, {"CENTRE", "CTR"},
    {"GARDEN", "GDN"},    {"HOUSE", "HSE"},     {"COURT", "CT"},
    {"TOWER", "TWR"},     {"PLAZA", "PLZ"},     {"INDUSTRIAL", "IND"},
    {"FLAT", "FLT"},      {"ROOM", "RM"},
};

// Directions are shortened after a street type only ("RD E", not "E
// POINT CTR").
constexpr Word kShortDirections[] = {
    {"EAST", "E"}, {"WEST", "W"}, {"NORTH", "N"}, {"SOUTH", "S"}};

constexpr Word kShortPlaces[] = {
    {"TSIM SHA TSUI", "TST"}, {"CAUSEWAY BAY", "CWB"},
    {"MONG KOK", "MK"},       {"YAU MA TEI", "YMT"},
    {"TSEUNG KWAN O", "TKO"}, {"HK", "HK"},
    {"KLN", "Kln"},           {"NT", "NT"},
};

constexpr Word kRegionNames[] = {
    {"HK", "Hong Kong"}, {"KLN", "Kowloon"}, {"NT", "New Territories"}};

std::string title_case(std::string_view text) {
  std::string out(text);
  for (size_t i = 1; i < out.size(); ++i)
    if (std::isalpha(static_cast<unsigned char>(out[i - 1])))
      out[i] =
          static_cast<char>(std::tolower(static_cast<unsigned char>(out[i])));
  return out;
}

template <size_t N>
std::string_view swap_whole(std::string_view text, const Word (&table)[N],
                            bool to_short) {
  for (const Word &w : table)
    if ((to_short ? w.full : w.shortened) == text)
      return to_short ? w.shortened : w.full;
  return text;
}

std::string shorten_words(std::string_view text) {
  std::string out;
  bool after_type = false;
  while (!text.empty()) {
    size_t blank = text.find(' ');
    std::string_view word = text.substr(0, blank);
    text = blank == std::string_view::npos ? "" : text.substr(blank + 1);
    if (!out.empty()) out += ' ';
    out += after_type ? swap_whole(word, kShortDirections, true)
                      : swap_whole(word, kShortWords, true);
    after_type = word == "ROAD" || word == "STREET";
  }
  return out;
}

enum Style {
  kCommas,
  kNoCommas,
  kAbbreviated,
  kReordered,
  kRegionOnly,
  kDistrictOnly,
  kNeither,
  kStyles
};

constexpr const char *kStyleNames[kStyles] = {
    "comma-separated",
    "no commas",
    "abbreviated, short place names",
    "reordered: street, building, unit",
    "region, no district",
    "district, no region",
    "neither district nor region",
};

constexpr const char *kStyleExamples[kStyles] = {
    "Flat A 12/F, Sun Hing Tower, 28 Tai Po Road, Sha Tin, New Territories",
    "Flat A 12/F Sun Hing Tower 28 Tai Po Road Sha Tin New Territories",
    "Flt A 12/F, Sun Hing Twr, 28 Tai Po Rd, Sha Tin, NT",
    "28 Tai Po Road, Sun Hing Tower, Flat A 12/F, Sha Tin, New Territories",
    "Flat A 12/F, Sun Hing Tower, 28 Tai Po Road, New Territories",
    "Flat A 12/F, Sun Hing Tower, 28 Tai Po Road, Sha Tin",
    "Flat A 12/F, Sun Hing Tower, 28 Tai Po Road",
};

std::string join(const std::vector<std::string> &parts, const char *sep) {
  std::string out;
  for (const std::string &p : parts) {
    if (p.empty()) continue;
    if (!out.empty()) out += sep;
    out += p;
  }
  return out;
}

std::string line_of(const Address &a, Style style) {
  bool shortened = style == kAbbreviated;
  auto text = [shortened](const std::string &s) {
    return title_case(shortened ? shorten_words(s) : s);
  };
  std::string street =
      a.premno.empty() ? text(a.street) : a.premno + " " + text(a.street);
  std::string district =
      shortened ? std::string(swap_whole(a.district, kShortPlaces, true))
                : title_case(a.district);
  std::string region =
      shortened ? std::string(swap_whole(a.region, kShortPlaces, true))
                : std::string(swap_whole(a.region, kRegionNames, true));
  if (style == kRegionOnly || style == kNeither) district.clear();
  if (style == kDistrictOnly || style == kNeither) region.clear();
  // A district the table does not shorten keeps its case as written.
  if (shortened && district == a.district) district = title_case(a.district);
  std::vector<std::string> parts =
      style == kReordered
          ? std::vector<std::string>{street, text(a.building), text(a.unit),
                                     district, region}
          : std::vector<std::string>{text(a.unit), text(a.building), street,
                                     district, region};
  return join(parts, style == kNoCommas ? " " : ", ");
}

// ---- geocoding -------------------------------------------------------------

class Instance {
 public:
  explicit Instance(const std::string &dir) {
    std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
                bd = dir + "/BASEDATA";
    char out[HKOUTREC_SIZE];
    hk_mtci("O", &handle_, nullptr, out, "", nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, l1.c_str(), l2.c_str(),
            bd.c_str(), nullptr, nullptr);
    ok_ = out[0] == HKRC_OK;
  }
  ~Instance() {
    char out[HKOUTREC_SIZE];
    hk_mtci("C", &handle_, nullptr, out, "L", nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr);
  }
  bool ok() const { return ok_; }
  HKHANDLE *handle() { return &handle_; }

  // The fielded path; false when the normalisation refuses the address.
  bool fielded(const Address &a, char *out) {
    const std::string none;
    const std::string *f[ORLO_NF_COUNT] = {&none,       &a.premno, &a.street,
                                           &a.building, &a.unit,   &none,
                                           &a.district, &a.region, &none};
    const char *text[ORLO_NF_COUNT];
    size_t len[ORLO_NF_COUNT];
    for (int i = 0; i < ORLO_NF_COUNT; ++i) {
      text[i] = f[i]->data();
      len[i] = f[i]->size();
    }
    char in[HKINREC_SIZE];
    if (orlo_norm_address(text, len, in, nullptr) != ORLO_NORM_OK) return false;
    hk_mtci("P", &handle_, in, out, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr);
    return true;
  }

 private:
  HKHANDLE handle_{};
  bool ok_ = false;
};

// A street name with its types written out and its apostrophes dropped, to
// tell whether a reference lies on the street an address names.
std::string street_key(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    size_t blank = text.find(' ');
    std::string_view word = text.substr(0, blank);
    text = blank == std::string_view::npos ? "" : text.substr(blank + 1);
    while (!word.empty() && word.back() == ' ') word.remove_suffix(1);
    if (word.empty()) continue;
    std::string_view full = swap_whole(word, kShortWords, false);
    if (full == word) full = swap_whole(word, kShortDirections, false);
    if (!out.empty()) out += ' ';
    for (char c : full)
      if (c != '\'') out += c;
  }
  return out;
}

bool accepted(const char *out) {
  return out[HKOUT_RETCODE_OFF] == HKRC_REFERENCE &&
         out[HKOUT_MATCHSTAT_OFF] == HKMS_ACCEPTED;
}

bool same_reference(const char *a, const char *b) {
  return std::memcmp(a + HKOUT_REFCODE_OFF, b + HKOUT_REFCODE_OFF,
                     HKOUT_REFCODE_LEN + HKOUT_REFID_LEN) == 0;
}

struct Tally {
  long addresses = 0;
  long fielded_matched = 0;
  long same = 0;          // of those: the same reference
  long wrong = 0;         // of those: another reference accepted
  long wrong_street = 0;  // of the wrong: the fielded path's on a street
                          // other than the one written
  long line_only = 0;     // the line accepted where the fielded path did not
  long more_tries = 0;    // the kept split was not the first
};

double percent(long part, long whole) {
  return whole > 0
             ? 100.0 * static_cast<double>(part) / static_cast<double>(whole)
             : 0.0;
}

// The district a reference code names in the generator's table.
std::string district_of_code(std::string_view code) {
  for (const auto &region : orlo::tools::hknames::regions())
    for (const auto &d : region.districts)
      if (d.code == code) return std::string(d.name);
  return "";
}

bool read_addresses(const std::string &path, long limit,
                    std::vector<Address> *out) {
  std::FILE *f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return false;
  orlo::tools::CsvReader csv(f);
  std::vector<std::string> row;
  csv.next(&row);  // the header
  long n = 0;
  while ((limit <= 0 || n < limit) &&
         csv.next(&row) == orlo::tools::CsvReader::Status::kRow) {
    if (row.size() != ORLO_NF_COUNT) continue;
    Address a{row[1], row[2], row[3], row[4], row[6], row[7]};
    if (a.district.empty()) a.district = district_of_code(row[0]);
    out->push_back(a);
    ++n;
  }
  std::fclose(f);
  return true;
}

void show_line(const std::string &line, const ORLO_LINE_INFO &info,
               const char *fielded, const char *got) {
  std::fprintf(stderr,
               "%s\n  fielded %c%c %.3s %.5s | line %c%c %.3s %.5s | %s\n",
               line.c_str(), fielded[0], fielded[HKOUT_MATCHSTAT_OFF],
               fielded + HKOUT_REFCODE_OFF, fielded + HKOUT_REFID_OFF, got[0],
               got[HKOUT_MATCHSTAT_OFF], got + HKOUT_REFCODE_OFF,
               got + HKOUT_REFID_OFF, info.note);
}

}  // namespace

int main(int argc, char **argv) {
  std::string db;
  long limit = 0;
  bool show = false;
  std::vector<std::string> files;
  for (int i = 1; i < argc; ++i) {
    std::string_view a = argv[i];
    if (a == "--db" && i + 1 < argc) {
      db = argv[++i];
    } else if (a == "--limit" && i + 1 < argc) {
      limit = std::atol(argv[++i]);
    } else if (a == "--show") {
      show = true;  // every line that misses or errs, on standard error
    } else if (a == "--styles") {
      for (int s = 0; s < kStyles; ++s)
        std::printf("| %s | `%s` |\n", kStyleNames[s], kStyleExamples[s]);
      return 0;
    } else {
      files.emplace_back(a);
    }
  }
  if (db.empty() || files.empty()) {
    std::fputs("usage: line_quality --db DIR [--limit N] [--show] CSV...\n",
               stderr);
    return 2;
  }
  std::vector<Address> addresses;
  for (const std::string &f : files) {
    if (!read_addresses(f, limit, &addresses)) {
      std::fprintf(stderr, "line_quality: cannot read %s\n", f.c_str());
      return 2;
    }
  }
  Instance g(db);
  if (!g.ok()) {
    std::fprintf(stderr, "line_quality: cannot open %s\n", db.c_str());
    return 2;
  }
  Tally tally[kStyles], all;
  char fielded[HKOUTREC_SIZE], got[HKOUTREC_SIZE];
  for (Address a : addresses) {
    if (!g.fielded(a, fielded)) continue;
    // People know their district: for a generated address without one, the
    // district of the reference the fielded path found.
    if (a.district.empty())
      a.district = district_of_code({fielded + HKOUT_REFCODE_OFF, 3});
    for (int s = 0; s < kStyles; ++s) {
      std::string line = line_of(a, static_cast<Style>(s));
      ORLO_LINE_INFO info{};
      orlo_line_geocode(g.handle(), line.data(), line.size(), nullptr, got,
                        nullptr, nullptr, &info);
      for (Tally *t : {&tally[s], &all}) {
        ++t->addresses;
        t->more_tries += info.split > 1;
        if (!accepted(fielded)) {
          t->line_only += accepted(got);
          continue;
        }
        ++t->fielded_matched;
        if (accepted(got) && same_reference(got, fielded)) {
          ++t->same;
        } else if (accepted(got)) {
          ++t->wrong;
          t->wrong_street +=
              street_key(a.street) !=
              street_key({fielded + HKOUT_STREET_OFF, HKOUT_STREET_LEN});
        }
      }
      bool missed =
          accepted(fielded) && !(accepted(got) && same_reference(got, fielded));
      if (show && missed) show_line(line, info, fielded, got);
    }
  }
  std::printf("%zu addresses, %ld matched by the fielded path\n\n",
              addresses.size(), tally[0].fielded_matched);
  std::printf(
      "| style | same reference | wrong reference | not matched | "
      "matched, fielded not | kept a later split |\n");
  std::printf("|---|---|---|---|---|---|\n");
  for (int s = 0; s <= kStyles; ++s) {
    const Tally &t = s < kStyles ? tally[s] : all;
    long missed = t.fielded_matched - t.same - t.wrong;
    std::printf(
        "| %s | %.2f %% | %.2f %% (%ld; %ld) | %.2f %% | %ld | %.1f %% |\n",
        s < kStyles ? kStyleNames[s] : "**all styles**",
        percent(t.same, t.fielded_matched), percent(t.wrong, t.fielded_matched),
        t.wrong, t.wrong_street, percent(missed, t.fielded_matched),
        t.line_only, percent(t.more_tries, t.addresses));
  }
  return 0;
}
