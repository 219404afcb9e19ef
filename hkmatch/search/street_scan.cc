// The street scan of a search pass: the exact pass walks forward from the
// entry found by bisection over equal names; the fuzzy pass lets through
// to the street comparison only the names that pass cheap character tests
// and stops at the first name whose initial sorts after the input's. An
// instance takes those names from the region's prepared names and their
// index; a private copy walks the table and calls m_street on each.
#include "hkmatch/search/street_scan.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "hkmatch/refdata/search_alloc.h"
#include "hkmatch/refdata/street_names.h"
#include "hkmatch/refdata/street_table.h"
#include "hkmatch/search/diagnostics.h"
#include "orlo_codes.h"
#include "orlo_compare.h"

namespace orlo {

namespace detail {
thread_local bool walk_fuzzy_pass = false;
}  // namespace detail

namespace {

constexpr int64_t kCandidateStep = 1000;
constexpr int kCandidateScore = 90;
constexpr int kExactScore = 100;

// Words that open a street name without saying much about it; the blank or
// hyphen belongs to the word.
constexpr std::array<std::string_view, 22> kStreetTypeWords = {
    "SAINT ",     "SAINT-", "SAINTE ",  "SAINTE-", "STREET ", "ST ",
    "ST-",        "STE ",   "STE-",     "ROUTE ",  "ROAD ",   "RD ",
    "RT ",        "HWY ",   "HIGHWAY ", "HW ",     "AVE ",    "AVENUE ",
    "BOULEVARD ", "BLVD ",  "MOUNT ",   "MT "};

constexpr std::string_view kPoBox = "PO BOX ";

// Where the pass's scan starts and how it judges names.
enum class Mode { kExtract, kExact, kFuzzy };

struct Scan {
  HKMCB *mcb;
  const ScanRequest &req;
  Mode mode;
  char input[kPaddedName];
  size_t input_len;
  bool street_type;
  int32_t count = 0;
  bool exact = false;
};

// Makes room for kCandidateStep more candidates, keeping those there.
char grow_candidates(HKMCB *mcb, int32_t count) {
  const int64_t cap = mcb->candcap + kCandidateStep;
  auto *cands = static_cast<STREETENT **>(
      search_alloc(static_cast<size_t>(cap), sizeof(STREETENT *)));
  auto *scores = static_cast<uint8_t *>(
      cands != nullptr ? search_alloc(static_cast<size_t>(cap), 1) : nullptr);
  if (scores == nullptr) {
    std::free(cands);
    return HKRC_STORAGE;
  }
  if (count > 0) {
    std::memcpy(cands, mcb->cands, count * sizeof(STREETENT *));
    std::memcpy(scores, mcb->candscore, static_cast<size_t>(count));
  }
  std::free(mcb->cands);
  std::free(mcb->candscore);
  mcb->cands = cands;
  mcb->candscore = scores;
  mcb->candcap = cap;
  return HKRC_OK;
}

// The street's score is the instance's: the table entries are shared.
char append_candidate(Scan &s, STREETENT *e, int score) {
  HKMCB *mcb = s.mcb;
  if (s.count >= mcb->candcap && grow_candidates(mcb, s.count) != HKRC_OK) {
    return HKRC_STORAGE;
  }
  mcb->candscore[s.count] = static_cast<uint8_t>(score);
  mcb->cands[s.count++] = e;
  if (score == kExactScore) s.exact = true;
  return HKRC_OK;
}

bool eq(const char *a, const char *b, int pos) {
  return a[pos] == b[pos];
}

// The cheap tests that decide whether m_street is worth calling, in order.
bool admitted(const Scan &s, const char *name, size_t name_len) {
  const char *in = s.input;
  if (s.mcb->passopt == 2) return true;
  if (s.street_type && eq(in, name, 0)) return true;
  if (eq(in, name, 0) && eq(in, name, 1) && eq(in, name, 2)) return true;
  if (eq(in, name, 0) && eq(in, name, 1) && eq(in, name, 4)) return true;
  if (eq(in, name, 0) && eq(in, name, 2) && eq(in, name, 4)) return true;
  return eq(in, name, 0) && eq(in, name, 1) && s.input_len > 0 &&
         name_len > 0 && in[s.input_len - 1] == name[name_len - 1];
}

// Outcome of judging one street table entry.
enum class Verdict { kSkip, kScore, kEnd };

Verdict judge_exact(const Scan &s, const char *name, int *score) {
  int c = std::memcmp(s.input, name, kPaddedName);
  if (c == 0) {
    *score = kExactScore;
    return Verdict::kScore;
  }
  return c > 0 ? Verdict::kSkip : Verdict::kEnd;
}

Verdict judge_fuzzy(const Scan &s, const STREETENT &e, char *name, int *score) {
  if (s.input[0] == ' ') return Verdict::kEnd;
  if (e.sname[0] == 'P' &&
      std::strncmp(e.sname, kPoBox.data(), kPoBox.size()) == 0) {
    return Verdict::kSkip;
  }
  if (s.req.in_mode == '3') return Verdict::kSkip;
  auto in0 = static_cast<unsigned char>(s.input[0]);
  auto nm0 = padded_initial(e);
  // Every admission test but the first needs equal initials; deciding on
  // them first spares padding the names that cannot be let through.
  if (s.mcb->passopt != 2 && in0 != nm0) {
    return in0 < nm0 ? Verdict::kEnd : Verdict::kSkip;
  }
  pad_name(e.sname, name);
  if (!admitted(s, name, strnlen(e.sname, sizeof e.sname))) {
    return in0 < nm0 ? Verdict::kEnd : Verdict::kSkip;
  }
  int32_t v = m_street(s.input, name, kPaddedName, nullptr);
  *score = v < 0 ? 0 : v;
  return Verdict::kScore;
}

// Index of the first entry to look at, or -1 for an empty scan.
int32_t start_entry(const Scan &s) {
  if (s.mode == Mode::kExact) {
    if (s.input_len == 0) return 0;  // the scan ends at once
    return find_street(s.mcb, s.input);
  }
  // In a table in order of initials the fuzzy scan would skip every name
  // whose initial sorts before the input's one by one; start after them.
  if (s.mode == Mode::kFuzzy && s.mcb->lvl2initials && s.input[0] != ' ' &&
      s.mcb->passopt != 2 && s.req.in_mode != '3') {
    return first_with_initial(s.mcb, static_cast<unsigned char>(s.input[0]));
  }
  return 0;
}

// The fuzzy pass over the region's prepared names: the same names in the
// same order as the walk below hands to m_street, the same scores, the
// input's form taken once (through the street cache, as m_street takes it).
char run_prepared_scan(Scan &s, const RegionStreetNames &region) {
  const PreparedStreetNames &names = region.names();
  FirstStreet first(s.input, kPaddedName, StreetOptions{});
  char code = HKRC_OK;
  auto consider = [&](int32_t i) {
    // Only names of 90 or more become candidates, so the comparison may
    // skip what cannot reach 90.
    const int32_t score = std::max(names.score(first, i, true), 0);
    if (score < kCandidateScore) return true;
    code = append_candidate(s, &s.mcb->lvl2tab[i], score);
    return code == HKRC_OK;
  };
  if (s.mcb->passopt == 2) {
    for (int32_t i = 0; i < names.size(); ++i) {
      if (!region.po_box(i) && !consider(i)) break;
    }
  } else {
    region.for_each_admitted(FuzzyInput{s.input, s.input_len, s.street_type},
                             consider);
  }
  return code;
}

char run_scan(Scan &s) {
  HKMCB *mcb = s.mcb;
  // A blank input or input mode 3 compares no name; the walk below finds
  // none without preparing the region's names.
  if (s.mode == Mode::kFuzzy && s.input[0] != ' ' && s.req.in_mode != '3' &&
      !detail::walk_fuzzy_pass) {
    if (const RegionStreetNames *region = current_street_names(mcb)) {
      return run_prepared_scan(s, *region);
    }
  }
  int32_t start = start_entry(s);
  if (start < 0) return HKRC_OK;
  char name[kPaddedName];
  for (int32_t i = start; i < mcb->lvl2cnt; ++i) {
    STREETENT &e = mcb->lvl2tab[i];
    int score = 0;
    Verdict v = Verdict::kScore;
    if (s.mode == Mode::kExtract) {
      if (mcb->outfp != nullptr) {
        write_street_extract(mcb->outfp, e.sname, s.req.region);
      }
      score = kExactScore;
    } else if (s.req.pass == 0 && s.input_len == 0) {
      v = Verdict::kEnd;
    } else if (s.mode == Mode::kExact) {
      pad_name(e.sname, name);
      v = judge_exact(s, name, &score);
    } else {
      v = judge_fuzzy(s, e, name, &score);
    }
    if (v == Verdict::kEnd) break;
    if (v == Verdict::kSkip || score < kCandidateScore) continue;
    if (append_candidate(s, &e, score) != HKRC_OK) return HKRC_STORAGE;
  }
  return HKRC_OK;
}

}  // namespace

bool begins_with_street_type(const char *padded) {
  for (std::string_view w : kStreetTypeWords) {
    if (std::memcmp(padded, w.data(), w.size()) == 0) return true;
  }
  return false;
}

char reset_candidates(HKMCB *mcb) {
  if (mcb->cands != nullptr && mcb->candscore != nullptr &&
      mcb->candcap >= kCandidateStep) {
    return HKRC_OK;
  }
  std::free(mcb->cands);
  std::free(mcb->candscore);
  mcb->cands = nullptr;
  mcb->candscore = nullptr;
  mcb->candcap = 0;
  return grow_candidates(mcb, 0);
}

char collect_candidates(HKMCB *mcb, const ScanRequest &req, int32_t *count,
                        bool *exact) {
  Scan s{mcb, req, Mode::kFuzzy, {}, 0, false};
  if (mcb->outmode == 1) {
    s.mode = Mode::kExtract;
  } else if (req.pass == 0 && req.level <= 1) {
    s.mode = Mode::kExact;
  }
  pad_name(req.street, s.input);
  s.input_len = strnlen(req.street, kPaddedName - 1);
  s.street_type = begins_with_street_type(s.input);
  char code = run_scan(s);
  *count = s.count;
  if (s.exact) *exact = true;
  return code;
}

}  // namespace orlo
