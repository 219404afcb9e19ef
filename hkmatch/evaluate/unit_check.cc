// The floor and unit check of the candidate comparison: for records that
// number floors or units, the number comes from the input's floor and unit
// line ("12/F FLAT A", "SHOP 5", "ROOM 2503") instead of the premise number.
#include <array>
#include <cstring>
#include <string_view>

#include "common/fixed_field.h"
#include "hkmatch/evaluate/candidate_checks.h"

namespace orlo {
namespace {

constexpr size_t kLineLen = 50;     // the line: wk_unit followed by blanks
constexpr size_t kWordLen = 100;    // the unit word followed by blanks
constexpr size_t kRewriteEnd = 40;  // floor rewriting looks at 0 to 39
constexpr size_t kScanEnd = 30;     // the keyword scan looks at 0 to 29
constexpr size_t kMaxCopy = 6;      // longest number taken from the line

using Line = std::array<char, kLineLen>;
using NumberText = std::array<char, kMaxCopy + 1>;

// The unit word that switches the keyword search on.
constexpr std::string_view kFloorShop = "FLOOR/SHOP ";

// How the characters after a keyword are taken.
enum class Take {
  kText,    // up to a blank or the end of the line
  kDigits,  // up to a blank, the end or any other non-digit
};

struct Keyword {
  std::string_view text;  // compared together with the character after it
  Take take;
  bool room;  // a room number, cut down to its floor
};

// Tried in this order at each position of the line.
constexpr Keyword kKeywords[] = {
    {"SHOP ", Take::kText, false},  {"FLOOR ", Take::kText, false},
    {"ROOM ", Take::kDigits, true}, {"RM ", Take::kDigits, true},
    {"SUITE ", Take::kText, true},  {"ZZ", Take::kText, false},
};

bool is_digit(char c) {
  const auto u = static_cast<unsigned char>(c);
  return u >= '0' && u <= '9';
}

// True when the line holds `text` at `pos`.
bool holds_at(const Line &line, size_t pos, std::string_view text) {
  return pos <= line.size() && line.size() - pos >= text.size() &&
         std::memcmp(line.data() + pos, text.data(), text.size()) == 0;
}

// A floor written d/F or dd/F (as a word of its own, followed by a blank)
// becomes ZZd or ZZdd, so that the keyword ZZ finds its number. Only the
// first one is rewritten; two blanks in a row end the text.
void rewrite_floor(Line &line) {
  for (size_t i = 0; i < kRewriteEnd; ++i) {
    if (line[i] == ' ' && line[i + 1] == ' ') return;
    if (i > 0 && line[i - 1] != ' ') continue;
    for (size_t digits = 1; digits <= 2; ++digits) {
      const bool number =
          is_digit(line[i]) && (digits == 1 || is_digit(line[i + 1]));
      if (number && holds_at(line, i + digits, "/F ")) {
        std::memmove(line.data() + i + 2, line.data() + i, digits);
        line[i] = 'Z';
        line[i + 1] = 'Z';
        return;
      }
    }
  }
}

// Copies up to kMaxCopy characters from pos into number; returns the
// position after the copied ones.
size_t take_number(const Line &line, size_t pos, Take take,
                   NumberText &number) {
  size_t n = 0;
  while (n < kMaxCopy && pos < line.size() && line[pos] != ' ' &&
         (take == Take::kText || is_digit(line[pos]))) {
    number[n++] = line[pos++];
  }
  // n is at most kMaxCopy and the text has room for kMaxCopy + 1 bytes.
  // cppcheck-suppress containerOutOfBounds
  number[n] = '\0';
  return pos;
}

// A room number names its floor by its leading digits: 2503 is on floor 25,
// 805 on floor 8.
void cut_to_floor(NumberText &number) {
  const size_t len = std::strlen(number.data());
  const size_t keep = len >= 4 ? 2 : len >= 2 ? 1 : 0;
  number[keep] = '\0';
}

struct UnitScan {
  const HKBASEREC &rec;
  HKWORKREC *work;
  const PremiseNumber &low;
  const PremiseNumber &high;
  int32_t *score;
  Line line;
  std::array<char, kWordLen> word;  // the unit word followed by blanks
  size_t word_len;
  bool keywords_on;

  // At position i: the unit word or a keyword followed by a number. On a
  // match, copies the number, moves i past it and tells whether it is a
  // room number.
  bool take_at(size_t &i, NumberText &number, bool &room) const {
    // The unit word and every keyword begin with a non-blank.
    if (line[i] == ' ') return false;
    if (holds_at(line, i, std::string_view(word.data(), word_len + 1))) {
      i = take_number(line, i + word_len + 1, Take::kText, number);
      return true;
    }
    if (!keywords_on) return false;
    for (const Keyword &k : kKeywords) {
      if (holds_at(line, i, k.text)) {
        i = take_number(line, i + k.text.size(), k.take, number);
        room = k.room;
        return true;
      }
    }
    return false;
  }

  bool test(const NumberText &number) const {
    PremiseNumber in{0, ' ', 0, ' '};
    work->wk_premrc = hk_cvtr(number.data(), &in.v1, &in.k1, &in.v2, &in.k2);
    return in_range(in, 'B', low, high, score, rec.bside);
  }

  // A number decides at once, except a room number: its floor is tested,
  // then the scan moves on, and the same number (unless a new one replaces
  // it) is tested again at the next position, where that test decides.
  UnitVerdict run() {
    NumberText number{};
    for (size_t i = 0; i < kScanEnd; ++i) {
      bool room = false;
      if (take_at(i, number, room) && room) cut_to_floor(number);
      if (number[0] == '\0') continue;
      const bool inside = test(number);
      if (!room)
        return inside ? UnitVerdict::kInRange : UnitVerdict::kOutOfRange;
    }
    return UnitVerdict::kUndecided;
  }
};

}  // namespace

UnitVerdict check_unit(const HKBASEREC &rec, HKWORKREC *work,
                       const PremiseNumber &low, const PremiseNumber &high,
                       int32_t *score) {
  UnitScan scan{rec, work, low, high, score, {}, {}, 0, false};
  fill_blanks(scan.line.data(), scan.line.size());
  std::memcpy(scan.line.data(), work->wk_unit,
              strnlen(work->wk_unit, sizeof work->wk_unit - 1));
  fill_blanks(scan.word.data(), scan.word.size());
  scan.word_len = strnlen(rec.bqual1, sizeof rec.bqual1 - 1);
  std::memcpy(scan.word.data(), rec.bqual1, scan.word_len);
  scan.keywords_on =
      std::string_view(scan.word.data(), kFloorShop.size()) == kFloorShop;
  rewrite_floor(scan.line);
  return scan.run();
}

}  // namespace orlo
