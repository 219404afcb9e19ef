#include "normalise/region_names.h"

#include <array>
#include <cstring>

#include "normalise/text_tidy.h"

namespace orlo::norm {
namespace {

constexpr const char *kHK = kRegionKeys[0];
constexpr const char *kKLN = kRegionKeys[1];
constexpr const char *kNT = kRegionKeys[2];

struct Place {
  std::string_view name;
  const char *key;
};

// How people write the regions themselves.
constexpr Place kRegionSpellings[] = {
    {"HK", kHK},
    {"HONG KONG", kHK},
    {"HONG KONG ISLAND", kHK},
    {"HK ISLAND", kHK},
    {"KLN", kKLN},
    {"KOWLOON", kKLN},
    {"NT", kNT},
    {"NEW TERRITORIES", kNT},
};

// Districts and areas by region. The first names of each region are Hong
// Kong's eighteen administrative districts; the rest are the
// neighbourhoods that people write in the district line of an address in
// common usage, among them every district the sample addresses
// (data/sample/addresses.csv) use. A name that belongs to more than one
// region (such as "ISLAND") is left out.
constexpr Place kPlaces[] = {
    // Hong Kong Island: the districts of Central and Western, Wan Chai,
    // Eastern and Southern.
    {"CENTRAL AND WESTERN", kHK},
    {"CENTRAL & WESTERN", kHK},
    {"WAN CHAI", kHK},
    {"EASTERN", kHK},
    {"SOUTHERN", kHK},
    {"CENTRAL", kHK},
    {"WESTERN", kHK},
    {"ADMIRALTY", kHK},
    {"SHEUNG WAN", kHK},
    {"SAI WAN", kHK},
    {"SAI YING PUN", kHK},
    {"KENNEDY TOWN", kHK},
    {"MID-LEVELS", kHK},
    {"THE PEAK", kHK},
    {"VICTORIA PEAK", kHK},
    {"CAUSEWAY BAY", kHK},
    {"CWB", kHK},
    {"HAPPY VALLEY", kHK},
    {"TAI HANG", kHK},
    {"TIN HAU", kHK},
    {"FORTRESS HILL", kHK},
    {"NORTH POINT", kHK},
    {"QUARRY BAY", kHK},
    {"TAI KOO", kHK},
    {"TAIKOO SHING", kHK},
    {"SAI WAN HO", kHK},
    {"SHAU KEI WAN", kHK},
    {"CHAI WAN", kHK},
    {"HENG FA CHUEN", kHK},
    {"ABERDEEN", kHK},
    {"AP LEI CHAU", kHK},
    {"POK FU LAM", kHK},
    {"WONG CHUK HANG", kHK},
    {"REPULSE BAY", kHK},
    {"DEEP WATER BAY", kHK},
    {"STANLEY", kHK},
    {"SHEK O", kHK},
    // Kowloon: the districts of Yau Tsim Mong, Sham Shui Po, Kowloon City,
    // Wong Tai Sin and Kwun Tong.
    {"YAU TSIM MONG", kKLN},
    {"SHAM SHUI PO", kKLN},
    {"KOWLOON CITY", kKLN},
    {"WONG TAI SIN", kKLN},
    {"KWUN TONG", kKLN},
    {"TSIM SHA TSUI", kKLN},
    {"TST", kKLN},
    {"TSIM SHA TSUI EAST", kKLN},
    {"TST EAST", kKLN},
    {"JORDAN", kKLN},
    {"YAU MA TEI", kKLN},
    {"YMT", kKLN},
    {"MONG KOK", kKLN},
    {"MK", kKLN},
    {"PRINCE EDWARD", kKLN},
    {"TAI KOK TSUI", kKLN},
    {"WEST KOWLOON", kKLN},
    {"CHEUNG SHA WAN", kKLN},
    {"LAI CHI KOK", kKLN},
    {"MEI FOO", kKLN},
    {"SHEK KIP MEI", kKLN},
    {"KOWLOON TONG", kKLN},
    {"HO MAN TIN", kKLN},
    {"TO KWA WAN", kKLN},
    {"HUNG HOM", kKLN},
    {"KAI TAK", kKLN},
    {"SAN PO KONG", kKLN},
    {"DIAMOND HILL", kKLN},
    {"TSZ WAN SHAN", kKLN},
    {"LOK FU", kKLN},
    {"CHOI HUNG", kKLN},
    {"NGAU TAU KOK", kKLN},
    {"KOWLOON BAY", kKLN},
    {"SAU MAU PING", kKLN},
    {"LAM TIN", kKLN},
    {"YAU TONG", kKLN},
    // The New Territories: the districts of Kwai Tsing, Tsuen Wan, Tuen
    // Mun, Yuen Long, North, Tai Po, Sha Tin, Sai Kung and Islands.
    {"KWAI TSING", kNT},
    {"TSUEN WAN", kNT},
    {"TUEN MUN", kNT},
    {"YUEN LONG", kNT},
    {"NORTH", kNT},
    {"TAI PO", kNT},
    {"SHA TIN", kNT},
    {"SAI KUNG", kNT},
    {"ISLANDS", kNT},
    {"KWAI CHUNG", kNT},
    {"KWAI FONG", kNT},
    {"TSING YI", kNT},
    {"TIN SHUI WAI", kNT},
    {"FANLING", kNT},
    {"SHEUNG SHUI", kNT},
    {"TAI WAI", kNT},
    {"FO TAN", kNT},
    {"MA ON SHAN", kNT},
    {"TSEUNG KWAN O", kNT},
    {"TKO", kNT},
    {"LANTAU", kNT},
    {"LANTAU ISLAND", kNT},
    {"TUNG CHUNG", kNT},
    {"DISCOVERY BAY", kNT},
    {"TAI O", kNT},
    {"CHEUNG CHAU", kNT},
    {"LAMMA", kNT},
    {"LAMMA ISLAND", kNT},
    {"PENG CHAU", kNT},
    {"MA WAN", kNT},
};

constexpr bool name_char(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         (c >= 0xC0 && c <= 0xDE && c != 0xD7);
}

// The letters and digits of a name in upper case: the form in which names
// are compared, so that "N.T.", "n t" and "NT" are one name, as are
// "Mid-Levels" and "MID LEVELS", or "Shatin" and "SHA TIN". Held in place,
// never on the heap: a text with more letters and digits than the longest
// name of the tables cannot name a place and gets an empty key.
class NameKey {
 public:
  explicit NameKey(std::string_view text) {
    for (char ch : text) {
      unsigned char c = upper_latin1(static_cast<unsigned char>(ch));
      if (!name_char(c)) continue;
      if (len_ == sizeof key_) {
        len_ = 0;
        return;
      }
      key_[len_++] = static_cast<char>(c);
    }
  }
  std::string_view view() const { return {key_, len_}; }

 private:
  char key_[32];
  size_t len_ = 0;
};

// The tables' names as their keys (their letters and digits) in open hash
// tables built when the library is compiled, so that a lookup hashes the
// key once and compares it with one or two names.
struct TableKey {
  char text[32] = {};
  size_t len = 0;
  const char *region = nullptr;
};

constexpr size_t kKeySlots = 256;

constexpr size_t key_hash(const char *text, size_t len) {
  size_t h = len;
  for (size_t i = 0; i < len; ++i)
    h = h * 131 + static_cast<unsigned char>(text[i]);
  return h % kKeySlots;
}

template <size_t N>
constexpr std::array<TableKey, kKeySlots> keys_of(const Place (&table)[N]) {
  static_assert(N * 2 <= kKeySlots);
  std::array<TableKey, kKeySlots> slots{};
  for (const Place &p : table) {
    TableKey k;
    for (char c : p.name)
      if (name_char(static_cast<unsigned char>(c))) k.text[k.len++] = c;
    k.region = p.key;
    size_t h = key_hash(k.text, k.len);
    while (slots[h].len != 0) h = (h + 1) % kKeySlots;
    slots[h] = k;
  }
  return slots;
}

constexpr auto kSpellingKeys = keys_of(kRegionSpellings);
constexpr auto kPlaceKeys = keys_of(kPlaces);

const char *find(const std::array<TableKey, kKeySlots> &keys,
                 std::string_view key) {
  if (key.empty()) return nullptr;
  for (size_t h = key_hash(key.data(), key.size()); keys[h].len != 0;
       h = (h + 1) % kKeySlots) {
    const TableKey &k = keys[h];
    if (k.len == key.size() && std::memcmp(k.text, key.data(), k.len) == 0)
      return k.region;
  }
  return nullptr;
}

}  // namespace

const char *region_of_spelling(std::string_view text) {
  return find(kSpellingKeys, NameKey(text).view());
}

const char *region_of_place(std::string_view text) {
  const NameKey key(text);
  if (const char *r = find(kSpellingKeys, key.view())) return r;
  return find(kPlaceKeys, key.view());
}

}  // namespace orlo::norm
