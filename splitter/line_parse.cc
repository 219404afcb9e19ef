// The reading of a line, in the order of its steps: the territory, region
// and district at the end; the floor and unit line and the estate's parts
// wherever they stand; then, among the words left, the premise number, the
// street after it and the building.
#include "splitter/line_parse.h"

#include <cstring>

#include "normalise/region_names.h"

namespace orlo::lines {
namespace {

// The words from..to-1 joined by blanks, for the region and place tables;
// empty when they do not fit (no place name is that long).
std::string_view joined(const Words &ws, int from, int to, char (&buf)[64]) {
  size_t n = 0;
  for (int i = from; i < to; ++i) {
    std::string_view t = ws.at[i].text;
    if (n + t.size() + 1 > sizeof buf) return {};
    if (i > from) buf[n++] = ' ';
    std::memcpy(buf + n, t.data(), t.size());
    n += t.size();
  }
  return {buf, n};
}

bool no_comma_inside(const Words &ws, int from, int to) {
  for (int i = from; i + 1 < to; ++i)
    if (ws.at[i].comma_after) return false;
  return true;
}

// The start of the longest span of at most `most` words ending at `end`
// (and starting at or after `lo`) that `names` maps to a key; `end` when
// none.
template <typename Names>
int tail_span(const Words &ws, int lo, int end, int most, Names names,
              const char **key) {
  for (int k = most; k >= 1; --k) {
    int from = end - k;
    if (from < lo || !no_comma_inside(ws, from, end)) continue;
    if (ws.at[from].is(kPremiseNumber) || ws.at[end - 1].is(kPremiseNumber))
      continue;  // no place is named with a number
    char buf[64];
    std::string_view text = joined(ws, from, end, buf);
    if (text.empty()) continue;
    if (const char *found = names(text)) {
      *key = found;
      return from;
    }
  }
  return end;
}

// A region written "HONG KONG" or "HK", which people also write after a
// district of Kowloon or the New Territories to name the territory.
bool territory_spelling(const Words &ws, int from, int to) {
  char key[16];
  size_t n = 0;
  for (int i = from; i < to; ++i) {
    for (char c : ws.at[i].canonical()) {
      if (n == sizeof key) return false;
      key[n++] = c;
    }
  }
  std::string_view k(key, n);
  return k == "HONGKONG" || k == "HK";
}

void mark(Reading *r, int from, int to, Part part) {
  for (int i = from; i < to; ++i) r->part[i] = part;
}

bool unclaimed(const Reading &r, int i) {
  return r.part[i] == Part::kExtra;
}

// ---- the names of the reference data -------------------------------------

// The longest name of the given kind made of the words from..to-1 starting
// at `from` (no comma inside). Returns its number of words (0 for none) and
// its entry.
int longest_name(const Words &ws, const NameLexicon *names, int from, int to,
                 NameKind kind, const NameEntry **entry) {
  if (names == nullptr) return 0;
  char key[kKeyMax];
  size_t n = 0;
  uint64_t hash = kNameHashStart;
  int best = 0;
  for (int i = from; i < to && i - from < names->max_words(); ++i) {
    std::string_view c = ws.at[i].canonical();
    if (n + c.size() + 1 > sizeof key) break;
    if (n > 0) {
      key[n++] = ' ';
      hash = name_hash_more(hash, " ");
    }
    std::memcpy(key + n, c.data(), c.size());
    n += c.size();
    hash = name_hash_more(hash, c);
    const NameEntry *e = names->find({key, n}, hash);
    const RegionMask regions = e == nullptr                ? 0
                               : kind == NameKind::kStreet ? e->streets
                                                           : e->buildings;
    if (regions != 0) {
      best = i - from + 1;
      *entry = e;
    }
    if (ws.at[i].comma_after) break;
  }
  return best;
}

// Whether some street name of the reference data ends at `end` and begins
// before `before`.
bool street_name_ends_at(const Words &ws, const NameLexicon *names, int before,
                         int end) {
  if (names == nullptr) return false;
  for (int from = end - names->max_words(); from < before; ++from) {
    if (from < 0) continue;
    const NameEntry *e = nullptr;
    if (longest_name(ws, names, from, end, NameKind::kStreet, &e) == end - from)
      return true;
  }
  return false;
}

// ---- the end of the line: territory, region, district ---------------------

struct Tail {
  int end;           // the words before it are left to the other steps
  int district_end;  // the district is the words end..district_end-1
  // The district may be the end of the street's name: a street name of the
  // reference data runs into it, or it is a direction right after a street
  // type.
  bool named_street;
  bool after_type;
};

Tail read_tail(const Words &ws, const NameLexicon *names, Reading *r) {
  int end = ws.count;
  while (end > 0 && ws.at[end - 1].is(kTerritory)) {
    r->part[--end] = Part::kDropped;
  }
  const char *key = nullptr;
  bool maybe_territory = false;
  int from = tail_span(ws, 0, end, 3, norm::region_of_spelling, &key);
  if (from < end) {
    const char *inner = nullptr;
    maybe_territory = territory_spelling(ws, from, end);
    int inner_from =
        maybe_territory
            ? tail_span(ws, 0, from, 3, norm::region_of_spelling, &inner)
            : from;
    if (inner_from < from) {  // "KOWLOON, HONG KONG": the territory goes
      mark(r, from, end, Part::kDropped);
      mark(r, inner_from, from, Part::kRegion);
      key = inner;
      from = inner_from;
      maybe_territory = false;
    } else {
      mark(r, from, end, Part::kRegion);
    }
    r->region = key;
    end = from;
  }
  Tail t{end, end, false, false};
  int d = tail_span(ws, 0, end, 4, norm::region_of_place, &key);
  if (d == end) return t;
  mark(r, d, end, Part::kDistrict);
  if (r->region == nullptr) {
    r->region = key;
    r->from_district = true;
  } else if (maybe_territory && key != r->region) {
    // "TST, HONG KONG": the district's region first, then Hong Kong's.
    r->second_region = r->region;
    r->region = key;
    r->from_district = true;
  }
  // "QUEEN'S ROAD CENTRAL", "SAI YEUNG CHOI STREET NORTH": a direction
  // right after a street type ends the street, and so does a district that
  // a street name of the reference data runs into.
  if (d > 0 && !ws.at[d - 1].comma_after) {
    t.after_type =
        end - d == 1 && ws.at[d].is(kDirection) && ws.at[d - 1].is(kStreetType);
    t.named_street = street_name_ends_at(ws, names, d, end);
  }
  t.end = d;
  return t;
}

// ---- the floor and unit line, the estate's parts --------------------------

struct UnitScan {
  const Words &ws;
  Reading *r;
  int end;

  bool free_word(int j) const { return j < end && unclaimed(*r, j); }
  // Word j is free and no comma stands between it and word j - 1.
  bool joined_to(int j) const {
    return free_word(j) && !ws.at[j - 1].comma_after;
  }
  std::string_view text(int j) const { return ws.at[j].text; }
  bool is(int j, WordClass c) const { return ws.at[j].is(c); }

  // "FLAT B", "RM 1203", "SHOP NO. 5", or a keyword alone before a floor.
  int unit_at(int i) const {
    int j = i + 1;
    if (joined_to(j) && is(j, kNumberSign)) ++j;
    if (joined_to(j) && designator(text(j))) return j + 1;
    if (joined_to(i + 1) && is(i + 1, kFloorWord)) return i + 1;
    return i;
  }

  // "12TH FLOOR", "FLOOR 12", "GROUND FLOOR".
  int floor_at(int i) const {
    if (is(i, kFloorWord)) return i + 1;
    if (!joined_to(i + 1)) return i;
    if ((is(i, kOrdinal) || text(i) == "GROUND") && is(i + 1, kFloorNoun))
      return i + 2;
    if (is(i, kFloorNoun) && text(i) != "F" &&
        (is(i + 1, kOrdinal) || is(i + 1, kPremiseNumber)))
      return i + 2;
    return i;
  }

  // "BLOCK 3", "TOWER 2", "PHASE 1", "EAST WING". A tower's number that is
  // followed by more words is taken for the premise number of a building
  // named "... TOWER" ("SUN HING TOWER 28 NATHAN ROAD").
  int estate_at(int i) const {
    if (is(i, kCompass) && joined_to(i + 1) && text(i + 1) == "WING")
      return i + 2;
    if (!is(i, kEstateKeyword) || !joined_to(i + 1) ||
        !estate_designator(text(i + 1)))
      return i;
    bool tower = text(i) == "TOWER" || text(i) == "TWR";
    if (tower && is(i + 1, kPremiseNumber) && joined_to(i + 2) &&
        !is(i + 2, kUnitKeyword) && !is(i + 2, kFloorWord))
      return i;
    return i + 2;
  }

  void run() {
    for (int i = 0; i < end; ++i) {
      if (!unclaimed(*r, i)) continue;
      if (is(i, kUnitKeyword)) {
        int to = unit_at(i);
        if (to > i) mark(r, i, to, Part::kUnit);
        i = to > i ? to - 1 : i;
        continue;
      }
      if (int to = floor_at(i); to > i) {
        mark(r, i, to, Part::kUnit);
        i = to - 1;
      } else if (int e = estate_at(i); e > i) {
        mark(r, i, e, Part::kEstate);
        i = e - 1;
      }
    }
  }
};

// ---- premise number, street, building -------------------------------------

// The words left unclaimed, in runs that commas and claimed words end.
struct FreeWords {
  const Words &ws;
  const NameLexicon *names;
  Reading *r;
  int end;

  bool free_word(int i) const { return i >= 0 && i < end && unclaimed(*r, i); }
  // The end of the run of free words that starts at i.
  int run_end(int i) const {
    while (free_word(i) && !ws.at[i].comma_after) ++i;
    return free_word(i) ? i + 1 : i;
  }
  // The first free word after word i, across a comma but not across a
  // claimed word; -1 when none.
  int next_free(int i) const { return free_word(i + 1) ? i + 1 : -1; }
  bool is(int i, WordClass c) const { return ws.at[i].is(c); }

  // The words from t on that close a street after its type word t.
  int street_close(int t, int stop) const {
    int e = t + 1;
    while (e < stop && (is(e, kStreetType) || is(e, kDirection))) ++e;
    return e;
  }

  // The first street type at or after `from` + 1 in the run ending at
  // `stop`, or -1.
  int type_word(int from, int stop) const {
    for (int t = from + 1; t < stop; ++t)
      if (is(t, kStreetType)) return t;
    return -1;
  }

  // How well word i serves as the premise number: 3 a street name of the
  // reference data follows it, 2 words closed by a street type, 1 other
  // words, 0 nothing.
  int premise_score(int i) const {
    if (!is(i, kPremiseNumber)) return -1;
    int s = next_free(i);
    if (s < 0 || is(s, kPremiseNumber)) return 0;
    const NameEntry *e = nullptr;
    if (longest_name(ws, names, s, run_end(s), NameKind::kStreet, &e) > 0)
      return 3;
    return type_word(s, run_end(s)) >= 0 ? 2 : 1;
  }

  int choose_premise() const {
    int best = -1, best_score = -1;
    for (int i = 0; i < end; ++i) {
      if (!free_word(i)) continue;
      int score = premise_score(i);
      if (score > best_score) {
        best = i;
        best_score = score;
      }
    }
    return best;
  }

  void set_street(int from, int to, Found how, const NameEntry *e) {
    mark(r, from, to, Part::kStreet);
    r->street = how;
    if (e == nullptr) return;
    r->street_regions = e->streets;
    r->street_name = names->spelling(*e, NameKind::kStreet);
  }

  // A building of the reference data that ends the run, starting after
  // `after`; its first word, or -1.
  int building_at_end(int after, int stop) const {
    for (int b = after + 1; b < stop; ++b) {
      const NameEntry *e = nullptr;
      if (longest_name(ws, names, b, stop, NameKind::kBuilding, &e) == stop - b)
        return b;
    }
    return -1;
  }

  // Whether the words from..stop-1 may be a building: they end in a
  // building type or are a building of the reference data.
  bool building_like(int from, int stop) const {
    return from >= stop || is(stop - 1, kBuildingType) ||
           building_at_end(from - 1, stop) == from;
  }

  // The street that starts at word s, after the premise number. A street
  // name of the reference data followed by words that are no building
  // ("WO FA ROAD EAAST") only begins the street: the words run on to the
  // end of the run.
  void street_after(int s) {
    int stop = run_end(s);
    const NameEntry *e = nullptr;
    if (int n = longest_name(ws, names, s, stop, NameKind::kStreet, &e)) {
      if (building_like(s + n, stop)) {
        set_street(s, s + n, Found::kNames, e);
      } else {
        set_street(s, stop, Found::kPlace, nullptr);
      }
      return;
    }
    if (int t = type_word(s, stop); t >= 0) {
      set_street(s, street_close(t, stop), Found::kType, nullptr);
    } else if (int b = building_at_end(s, stop); b >= 0) {
      set_street(s, b, Found::kPlace, nullptr);
    } else if (!is(stop - 1, kBuildingType)) {
      set_street(s, stop, Found::kPlace, nullptr);
    }
  }

  // Without a premise number: a street name of the reference data (not one
  // that ends in a building type, which an estate listed as a street does),
  // else the words before a street type.
  void street_anywhere() {
    for (int i = 0; i < end; ++i) {
      if (!free_word(i)) continue;
      const NameEntry *e = nullptr;
      int n = longest_name(ws, names, i, run_end(i), NameKind::kStreet, &e);
      if (n > 0 && !is(i + n - 1, kBuildingType)) {
        set_street(i, i + n, Found::kNames, e);
        return;
      }
    }
    for (int i = 0; i < end; ++i) {
      if (!free_word(i) || (free_word(i - 1) && !ws.at[i - 1].comma_after))
        continue;  // not the start of a run
      int stop = run_end(i);
      int t = type_word(i, stop);
      if (t < 0) continue;
      int from = i;
      for (int k = i; k < t; ++k)
        if (is(k, kBuildingType)) from = k + 1;
      if (from < t) {
        set_street(from, street_close(t, stop), Found::kType, nullptr);
        return;
      }
    }
  }

  void set_building(int from, int to, Found how) {
    mark(r, from, to, Part::kBuilding);
    r->building = how;
    const NameEntry *e = nullptr;
    if (longest_name(ws, names, from, to, NameKind::kBuilding, &e) ==
        to - from) {
      r->building_regions = e->buildings;
      r->building_name = names->spelling(*e, NameKind::kBuilding);
    }
  }

  // The building among the runs left: a name of the reference data, else a
  // run ending in a building type, else the last run before `anchor` (the
  // premise number or the street; -1 for none).
  void building(int anchor) {
    for (int i = 0; i < end; ++i) {
      if (!free_word(i)) continue;
      const NameEntry *e = nullptr;
      if (int n =
              longest_name(ws, names, i, run_end(i), NameKind::kBuilding, &e)) {
        set_building(i, i + n, Found::kNames);
        return;
      }
    }
    int before = -1;
    for (int i = 0; i < end;) {
      if (!free_word(i)) {
        ++i;
        continue;
      }
      int stop = run_end(i);
      if (is(stop - 1, kBuildingType)) {
        set_building(i, stop, Found::kType);
        return;
      }
      if (stop <= anchor) before = i;
      i = stop;
    }
    if (before >= 0) set_building(before, run_end(before), Found::kPlace);
  }

  // The words of the street when nothing else tells: the first run left
  // (a street mistyped beyond its type, beside a building: "CHOI HOI
  // MANSIONS, HOM PUN CIRCIT").
  void leftover_street() {
    for (int i = 0; i < end; ++i) {
      if (free_word(i)) {
        set_street(i, run_end(i), Found::kPlace, nullptr);
        return;
      }
    }
  }

  void run() {
    int p = choose_premise();
    int anchor = -1;
    if (p >= 0) {
      mark(r, p, p + 1, Part::kPremno);
      if (free_word(p - 1) && ws.at[p - 1].is(kNumberSign) &&
          !ws.at[p - 1].comma_after)
        mark(r, p - 1, p, Part::kDropped);
      anchor = p;
      if (int s = next_free(p); s >= 0) street_after(s);
    } else {
      street_anywhere();
      for (int i = 0; i < end && anchor < 0; ++i)
        if (r->part[i] == Part::kStreet) anchor = i;
    }
    building(anchor);
    if (p < 0 && r->street == Found::kNone) leftover_street();
  }
};

}  // namespace

void read_words(std::string_view tidied, Words *out) {
  out->count = 0;
  size_t i = 0;
  while (i < tidied.size() && out->count < kMaxWords) {
    char c = tidied[i];
    if (c == ' ' || c == ',' || c == ';') {
      if (c != ' ' && out->count > 0)
        out->at[out->count - 1].comma_after = true;
      ++i;
      continue;
    }
    size_t j = i;
    while (j < tidied.size() && tidied[j] != ' ' && tidied[j] != ',' &&
           tidied[j] != ';')
      ++j;
    std::string_view text = tidied.substr(i, j - i);
    while (!text.empty() && text.back() == '.') text.remove_suffix(1);
    i = j;
    if (text.empty()) continue;
    Word &w = out->at[out->count];
    bool after_type = out->count > 0 && out->at[out->count - 1].is(kStreetType);
    w.text = text;
    w.canon_len =
        static_cast<uint8_t>(canonical_word(text, after_type, w.canon));
    w.comma_after = false;
    w.classes = classify(text, w.canonical());
    ++out->count;
  }
}

int read_line(const Words &words, const NameLexicon *names,
              Reading (&readings)[2]) {
  Reading read{};
  const Tail tail = read_tail(words, names, &read);
  // The other reading leaves the district's words to the street, and the
  // region to what was written.
  Reading absorbed = read;
  UnitScan{words, &read, tail.end}.run();
  FreeWords{words, names, &read, tail.end}.run();
  readings[0] = read;
  if (!tail.named_street && !tail.after_type) return 1;
  mark(&absorbed, tail.end, tail.district_end, Part::kExtra);
  if (absorbed.from_district) {
    absorbed.region = absorbed.second_region;
    absorbed.second_region = nullptr;
    absorbed.from_district = false;
  }
  absorbed.district_in_street = true;
  UnitScan{words, &absorbed, tail.district_end}.run();
  FreeWords{words, names, &absorbed, tail.district_end}.run();
  // Only a street that closes with the district's words makes that reading
  // worth a try. It comes first when the reference data names such a
  // street, or when the district reading finds no street it names.
  if (absorbed.part[tail.district_end - 1] != Part::kStreet) return 1;
  if (tail.named_street || read.street != Found::kNames) {
    readings[0] = absorbed;
    readings[1] = read;
  } else {
    readings[1] = absorbed;
  }
  return 2;
}

}  // namespace orlo::lines
