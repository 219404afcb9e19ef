// The routines of orlo_lines.h: a line tidied, read, split and (for
// orlo_line_geocode) tried through the matcher split by split. No exception
// leaves them.
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "common/fixed_field.h"
#include "normalise/text_tidy.h"
#include "orlo_codes.h"
#include "orlo_lines.h"
#include "orlo_matcher.h"
#include "orlo_normalise.h"
#include "orlo_records.h"
#include "splitter/line_parse.h"
#include "splitter/line_record.h"
#include "splitter/name_lexicon.h"

namespace orlo::lines {
namespace {

// Most process calls for one line, and most splits planned (a split that
// places the same record as an earlier one costs no call).
constexpr int kMaxTries = 6;
constexpr int kMaxPlans = 16;

// How the region of a try was chosen.
enum class RegionHow : uint8_t {
  kNone,      // no region: the line named none and the names tell none
  kWritten,   // as the line writes it
  kDistrict,  // from the district the line names
  kStreet,    // a region whose reference data holds the street's name
  kBuilding,  // a region whose reference data holds the building's name
  kTried,     // any region of the index: the line and the names tell none
};

struct Try {
  int reading;
  char region[HKIN_REGION_LEN + 1];
  RegionHow how;
  bool guess;       // a region the line does not name
  bool fallback;    // tried only while no street like it has been found
  bool as_written;  // the words as the line has them (place_reading)
  bool placed;      // inrec holds the split
  int call;         // its process call for the line, counting from 1
  char inrec[HKINREC_SIZE];
};

// What a thread keeps from line to line, so that a line allocates nothing
// once the areas have grown.
struct Workspace {
  norm::TidyScratch scratch;
  std::string tidied;
  std::string reason;
  Words words;
  Reading readings[2];
  Try tries[kMaxPlans];
  int try_count = 0;
  char result[HKOUTREC_SIZE];
  char best[HKOUTREC_SIZE];
  std::vector<char> lists;  // list areas when the caller gives none
};

Workspace &workspace() {
  thread_local Workspace w;
  return w;
}

void set_text(char *dst, size_t cap, std::string_view text) {
  size_t n = std::min(text.size(), cap - 1);
  // Cut at a character boundary so that a UTF-8 reason stays valid.
  while (n > 0 && n < text.size() &&
         (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80)
    --n;
  std::memcpy(dst, text.data(), n);
  dst[n] = '\0';
}

int32_t finish(ORLO_LINE_INFO *info, int32_t status, std::string_view reason) {
  if (info == nullptr) return status;
  info->status = status;
  if (status != ORLO_LINE_OK) {
    info->split = 0;
    info->tries = 0;
    info->note[0] = '\0';
  }
  set_text(info->reason, sizeof info->reason, reason);
  return status;
}

// ---- tidying and reading ---------------------------------------------------

constexpr int32_t line_status(int32_t norm_status) {
  switch (norm_status) {
    case ORLO_NORM_OK:
      return ORLO_LINE_OK;
    case ORLO_NORM_NOT_LATIN1:
      return ORLO_LINE_NOT_LATIN;
    case ORLO_NORM_CONTROL:
      return ORLO_LINE_CONTROL;
    case ORLO_NORM_NO_MEMORY:
      return ORLO_LINE_NO_MEMORY;
    default:
      return ORLO_LINE_BAD_CALL;
  }
}

bool has_word(std::string_view text) {
  for (char c : text) {
    auto u = static_cast<unsigned char>(c);
    if ((u >= '0' && u <= '9') || (u >= 'A' && u <= 'Z') || u >= 0xC0)
      return true;
  }
  return false;
}

// Tidies and reads the line into w; on a refusal the reason is in w.reason.
int32_t read(Workspace &w, const char *line, size_t len) {
  char buf[120];
  if (len > ORLO_LINE_MAX_BYTES) {
    std::snprintf(buf, sizeof buf,
                  "the line has %zu bytes, at most %d: longer than an input "
                  "record can carry",
                  len, ORLO_LINE_MAX_BYTES);
    w.reason.assign(buf);
    return ORLO_LINE_TOO_LONG;
  }
  int32_t st = line_status(norm::tidy_text(std::string_view(line, len),
                                           &w.tidied, &w.reason, &w.scratch));
  if (st != ORLO_LINE_OK) return st;
  if (w.tidied.size() > ORLO_LINE_MAX_CHARS) {
    std::snprintf(buf, sizeof buf,
                  "the line has %zu characters after tidying, at most %d: "
                  "longer than an input record can carry",
                  w.tidied.size(), ORLO_LINE_MAX_CHARS);
    w.reason.assign(buf);
    return ORLO_LINE_TOO_LONG;
  }
  if (!has_word(w.tidied)) {
    w.reason.assign("the line holds no address: no letter or digit");
    return ORLO_LINE_EMPTY;
  }
  read_words(w.tidied, &w.words);
  return ORLO_LINE_OK;
}

// ---- the tries -------------------------------------------------------------

std::string_view trimmed(const char *text, size_t len) {
  return {text, significant_length(std::string_view(text, len))};
}

struct Planner {
  Workspace &w;
  const HKMCB *mcb;  // NULL when split by shape alone
  int readings;

  void add(int reading, std::string_view region, RegionHow how, bool guess,
           bool fallback, bool as_written) {
    if (w.try_count == kMaxPlans) return;
    Try &t = w.tries[w.try_count++];
    t.reading = reading;
    set_text(t.region, sizeof t.region, region);
    t.how = how;
    t.guess = guess;
    t.fallback = fallback;
    t.as_written = as_written;
    t.placed = false;
  }
  // A region with its split as read and as written.
  void add_both(int reading, std::string_view region, RegionHow how, bool guess,
                bool fallback) {
    add(reading, region, how, guess, fallback, false);
    add(reading, region, how, guess, fallback, true);
  }

  int32_t region_count() const {
    return mcb != nullptr && mcb->lvl1tab != nullptr ? mcb->lvl1cnt : 0;
  }
  std::string_view index_key(int32_t r) const {
    return trimmed(mcb->lvl1tab[r].l1key, sizeof mcb->lvl1tab[r].l1key);
  }

  // The regions of the index in mask: with both splits each when the line
  // names a region (these are fallbacks), else (guesses) first the split
  // as read in every region and then as written.
  void add_regions(int reading, RegionMask mask, RegionHow how, bool guess) {
    for (int pass = 0; pass < (guess ? 2 : 1); ++pass) {
      for (int32_t r = 0; r < region_count() && r < 32; ++r) {
        if (!(mask & (RegionMask{1} << r))) continue;
        if (!guess) {
          add_both(reading, index_key(r), how, false, true);
        } else {
          add(reading, index_key(r), how, true, false, pass == 1);
        }
      }
    }
  }

  // The region the line names (or its district); should no street like it
  // be found there, a "HONG KONG" read as the territory and then the
  // regions whose reference data holds the street's name. A line without a
  // region: the regions of the street's name, else of the building's, else
  // every region of the index.
  void regions_of(int i) {
    const Reading &r = w.readings[i];
    if (r.region != nullptr) {
      add_both(i, r.region,
               r.from_district ? RegionHow::kDistrict : RegionHow::kWritten,
               false, false);
      if (r.second_region != nullptr)
        add_both(i, r.second_region, RegionHow::kWritten, false, true);
      add_regions(i, r.street_regions, RegionHow::kStreet, false);
      return;
    }
    if (region_count() == 0) {
      add_both(i, "", RegionHow::kNone, false, false);
    } else if (r.street_regions != 0) {
      add_regions(i, r.street_regions, RegionHow::kStreet, true);
    } else if (r.building_regions != 0) {
      add_regions(i, r.building_regions, RegionHow::kBuilding, true);
    } else {
      add_regions(i, ~RegionMask{0}, RegionHow::kTried, true);
    }
  }

  // Reading by reading, the more likely first.
  void plan() {
    w.try_count = 0;
    for (int i = 0; i < readings; ++i) regions_of(i);
  }
};

// The split of the line as `t` has it.
int32_t place(Workspace &w, Try &t, char (&why)[200]) {
  int32_t st = place_reading(w.words, w.readings[t.reading], t.region,
                             t.as_written, t.inrec, why);
  t.placed = st == ORLO_LINE_OK;
  return st;
}

const char *found_text(Found f, bool street) {
  switch (f) {
    case Found::kNames:
      return "from the reference names";
    case Found::kType:
      return street ? "by its street type" : "by its type";
    case Found::kPlace:
      return street ? "from the words after the number"
                    : "from the words before the street";
    case Found::kNone:
      break;
  }
  return nullptr;
}

void write_note(const Workspace &w, const Try &t, bool ambiguous,
                char (&note)[160]) {
  const Reading &r = w.readings[t.reading];
  char region[64];
  switch (t.how) {
    case RegionHow::kWritten:
      std::snprintf(region, sizeof region, "region %s as written", t.region);
      break;
    case RegionHow::kDistrict:
      std::snprintf(region, sizeof region, "region %s from the district",
                    t.region);
      break;
    case RegionHow::kStreet:
      std::snprintf(region, sizeof region, "region %s, which has the street",
                    t.region);
      break;
    case RegionHow::kBuilding:
      std::snprintf(region, sizeof region, "region %s, which has the building",
                    t.region);
      break;
    case RegionHow::kTried:
      std::snprintf(region, sizeof region, "region %s tried", t.region);
      break;
    case RegionHow::kNone:
      std::snprintf(region, sizeof region, "no region");
      break;
  }
  if (ambiguous) {
    std::snprintf(note, sizeof note,
                  "no region: the street matched in more than one region "
                  "(ambiguous); write the district or region");
    return;
  }
  const char *street = found_text(r.street, true);
  const char *building = found_text(r.building, false);
  int n = std::snprintf(note, sizeof note, "%s; street %s", region,
                        street != nullptr ? street : "none");
  if (building != nullptr && n > 0 && static_cast<size_t>(n) < sizeof note)
    n += std::snprintf(note + n, sizeof note - n, "; building %s", building);
  if (r.district_in_street && n > 0 && static_cast<size_t>(n) < sizeof note)
    n += std::snprintf(note + n, sizeof note - n,
                       "; the last words read as the end of the street");
  if (t.as_written && n > 0 && static_cast<size_t>(n) < sizeof note)
    std::snprintf(note + n, sizeof note - n, "; words placed as written");
}

// How good a result is by the matcher's return code and match status:
// higher is better; -1 for a failure (damaged data, out of memory).
int rank(const char *out) {
  char rc = out[HKOUT_RETCODE_OFF], ms = out[HKOUT_MATCHSTAT_OFF];
  if (rc != HKRC_OK && rc != HKRC_REFERENCE) return -1;
  constexpr char kOrder[] = {HKMS_NONE,     HKMS_NO_KEY,  HKMS_NO_STREET,
                             HKMS_REJECTED, HKMS_PREMISE, HKMS_TIE,
                             HKMS_ACCEPTED};
  for (int i = 0; i < static_cast<int>(sizeof kOrder); ++i)
    if (kOrder[i] == ms) return i;
  return 0;
}

bool accepted(const char *out) {
  return out[HKOUT_RETCODE_OFF] == HKRC_REFERENCE &&
         out[HKOUT_MATCHSTAT_OFF] == HKMS_ACCEPTED;
}

bool same_reference(const char *a, const char *b) {
  return std::memcmp(a + HKOUT_REFCODE_OFF, b + HKOUT_REFCODE_OFF,
                     HKOUT_REFCODE_LEN + HKOUT_REFID_LEN) == 0;
}

constexpr int kNoStreetRank = 2;  // rank() of HKMS_NO_STREET

struct Runner {
  Workspace &w;
  HKHANDLE *handle;
  char *namelist;
  char *reclist;
  int32_t read_delta = 0, matched_delta = 0;  // of the result kept
  int tries = 0;

  // One process call; the counters it moved are noted and taken back.
  void process(const char *inrec, char *out, int32_t *dr, int32_t *dm) {
    HKMCB *m = handle->mcb;
    int32_t r0 = m != nullptr ? m->nread : 0;
    int32_t m0 = m != nullptr ? m->nmatched : 0;
    hk_mtci("P", handle, inrec, out, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, namelist, reclist);
    ++tries;
    m = handle->mcb;
    if (m == nullptr) return;
    *dr = m->nread - r0;
    *dm = m->nmatched - m0;
    m->nread = r0;
    m->nmatched = m0;
  }

  // Whether an earlier try went to the matcher with the same record.
  bool repeated(int i) const {
    for (int j = 0; j < i; ++j)
      if (w.tries[j].placed &&
          std::memcmp(w.tries[j].inrec, w.tries[i].inrec, HKINREC_SIZE) == 0)
        return true;
    return false;
  }

  // Runs the tries in order; returns the index of the one kept (or -1 when
  // none could be placed), and whether the region was ambiguous: more than
  // one region guessed for the line accepted, with different references.
  int run(bool *ambiguous, int32_t *status, char (&why)[200]) {
    int kept = -1, kept_rank = -2;
    const Try *guessed = nullptr;  // the first guess accepted
    *ambiguous = false;
    *status = ORLO_LINE_OK;
    for (int i = 0; i < w.try_count && tries < kMaxTries; ++i) {
      Try &t = w.tries[i];
      if (guessed != nullptr) {
        // Only the other regions' splits as read still count, to tell an
        // ambiguous line.
        if (!t.guess || t.reading != guessed->reading) break;
        if (t.as_written || std::strcmp(t.region, guessed->region) == 0)
          continue;
      }
      if (t.fallback && kept_rank > kNoStreetRank) continue;
      if (int32_t st = place(w, t, why); st != ORLO_LINE_OK) {
        *status = st;
        continue;
      }
      if (repeated(i)) {
        t.placed = false;
        continue;
      }
      int32_t dr = 0, dm = 0;
      process(t.inrec, w.result, &dr, &dm);
      t.call = tries;
      int rk = rank(w.result);
      if (rk > kept_rank) {
        kept = i;
        kept_rank = rk;
        std::memcpy(w.best, w.result, HKOUTREC_SIZE);
        read_delta = dr;
        matched_delta = dm;
      }
      if (!accepted(w.result)) continue;
      if (!t.guess) break;
      if (guessed == nullptr) {
        guessed = &t;
      } else if (!same_reference(w.result, w.best)) {
        *ambiguous = true;
      }
    }
    if (kept >= 0) *status = ORLO_LINE_OK;
    return kept;
  }

  // The line with no region, for an ambiguous guess: the matcher's own
  // answer that it has no region key.
  void without_region(Try &t) {
    put_field(t.inrec, {HKIN_REGION_OFF, HKIN_REGION_LEN}, "");
    t.region[0] = '\0';
    t.how = RegionHow::kNone;
    int32_t dr = 0, dm = 0;
    process(t.inrec, w.best, &dr, &dm);
    t.call = tries;
    read_delta = dr;
    matched_delta = dm;
  }

  void count() {
    if (HKMCB *m = handle->mcb) {
      m->nread += read_delta;
      m->nmatched += matched_delta;
    }
  }
};

HKMCB *instance_of(void *handle) {
  return handle != nullptr ? static_cast<HKHANDLE *>(handle)->mcb : nullptr;
}

int32_t split_line(void *handle, const char *line, size_t len, char *inrec,
                   ORLO_LINE_INFO *info) {
  Workspace &w = workspace();
  fill_blanks(inrec, HKINREC_SIZE);
  if (int32_t st = read(w, line, len); st != ORLO_LINE_OK)
    return finish(info, st, w.reason);
  HKMCB *m = instance_of(handle);
  Planner p{w, m, read_line(w.words, lexicon_of(m), w.readings)};
  p.plan();
  char why[200] = "";
  int32_t st = ORLO_LINE_TOO_LONG;
  for (int i = 0; i < w.try_count && st != ORLO_LINE_OK; ++i) {
    st = place(w, w.tries[i], why);
    if (st != ORLO_LINE_OK) continue;
    std::memcpy(inrec, w.tries[i].inrec, HKINREC_SIZE);
    if (info != nullptr) {
      info->split = 1;
      info->tries = 1;
      write_note(w, w.tries[i], false, info->note);
    }
  }
  return finish(info, st, st == ORLO_LINE_OK ? "" : why);
}

int32_t geocode_line(void *handle, const char *line, size_t len, char *inrec,
                     char *outrec, char *namelist, char *reclist,
                     ORLO_LINE_INFO *info) {
  Workspace &w = workspace();
  fill_blanks(outrec, HKOUTREC_SIZE);
  if (inrec != nullptr) fill_blanks(inrec, HKINREC_SIZE);
  int32_t st = read(w, line, len);
  if (st != ORLO_LINE_OK) {
    outrec[HKOUT_RETCODE_OFF] = HKRC_INPUT_REFUSED;
    return finish(info, st, w.reason);
  }
  HKMCB *m = instance_of(handle);
  Planner p{w, m, read_line(w.words, lexicon_of(m), w.readings)};
  p.plan();
  if (w.try_count == 0) p.add(0, "", RegionHow::kNone, false, false, false);
  // Listing mode 3 writes the list areas; a caller that gives none gets
  // areas of the thread's own.
  if ((namelist == nullptr || reclist == nullptr) && m != nullptr &&
      m->listmode == 3) {
    w.lists.resize(30000 + 7500);
    namelist = w.lists.data();
    reclist = w.lists.data() + 30000;
  }
  Runner run{w, static_cast<HKHANDLE *>(handle), namelist, reclist};
  bool ambiguous = false;
  char why[200] = "";
  int kept = run.run(&ambiguous, &st, why);
  if (kept < 0) {
    outrec[HKOUT_RETCODE_OFF] = HKRC_INPUT_REFUSED;
    return finish(info, st, why);
  }
  if (ambiguous) run.without_region(w.tries[kept]);
  run.count();
  std::memcpy(outrec, w.best, HKOUTREC_SIZE);
  if (inrec != nullptr) std::memcpy(inrec, w.tries[kept].inrec, HKINREC_SIZE);
  if (info != nullptr) {
    info->split = w.tries[kept].call;
    info->tries = run.tries;
    write_note(w, w.tries[kept], ambiguous, info->note);
  }
  return finish(info, ORLO_LINE_OK, "");
}

}  // namespace
}  // namespace orlo::lines

int32_t orlo_line_split(void *handle, const char *line, size_t len, char *inrec,
                        ORLO_LINE_INFO *info) {
  if (inrec == nullptr || (line == nullptr && len > 0))
    return orlo::lines::finish(info, ORLO_LINE_BAD_CALL,
                               "a required pointer is NULL");
  try {
    return orlo::lines::split_line(handle, line, len, inrec, info);
  } catch (const std::bad_alloc &) {
    return orlo::lines::finish(info, ORLO_LINE_NO_MEMORY, "out of memory");
  }
}

int32_t orlo_line_geocode(void *handle, const char *line, size_t len,
                          char *inrec, char *outrec, char *namelist,
                          char *reclist, ORLO_LINE_INFO *info) {
  if (handle == nullptr || outrec == nullptr || (line == nullptr && len > 0))
    return orlo::lines::finish(info, ORLO_LINE_BAD_CALL,
                               "a required pointer is NULL");
  try {
    return orlo::lines::geocode_line(handle, line, len, inrec, outrec, namelist,
                                     reclist, info);
  } catch (const std::bad_alloc &) {
    outrec[HKOUT_RETCODE_OFF] = HKRC_INPUT_REFUSED;
    return orlo::lines::finish(info, ORLO_LINE_NO_MEMORY, "out of memory");
  }
}
