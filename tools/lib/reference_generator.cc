#include "lib/reference_generator.h"

#include <algorithm>
#include <array>

#include "lib/csv_writer.h"
#include "lib/hk_name_parts.h"
#include "lib/refdb_format.h"

namespace orlo::tools {

namespace {

namespace hk = hknames;

constexpr uint64_t kRecordsPerStreet = 24;  // on average
constexpr uint64_t kNamesPerRegion = 64 * 64 * 12;
constexpr uint64_t kNameStride = 7919;          // coprime with kNamesPerRegion
constexpr uint64_t kRefidSpace = 60466176;      // 36^5
constexpr uint64_t kRefidStride = 2654435761u;  // coprime with 36^5
constexpr uint32_t kMaxPremise = 9000;
constexpr size_t kFlushBytes = 1u << 20;
constexpr uint64_t kProgressEvery = 1u << 16;

// splitmix64: small, fast and the same on every platform.
class Rng {
 public:
  explicit Rng(uint64_t seed) : state_(seed) {}
  uint64_t next() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  uint32_t below(uint64_t n) { return static_cast<uint32_t>(next() % n); }

 private:
  uint64_t state_;
};

struct Street {
  std::string_view region;
  std::string name;
  std::string abbr;  // as written in address lines
  hk::District district;
};

struct Row {
  std::string building, parity, qual1, low, qual2, high, code9, address;
};

uint64_t street_count(uint64_t records) {
  uint64_t max_streets = kNamesPerRegion * hk::regions().size();
  uint64_t n = (records + kRecordsPerStreet - 1) / kRecordsPerStreet;
  return std::clamp<uint64_t>(n, 1, max_streets);
}

// Street j: regions in turn, names from a permutation of syllable pairs and
// street kinds, so that no name repeats within a region.
Street make_street(uint64_t j, Rng *rng) {
  auto regions = hk::regions();
  const hk::Region &region = regions[j % regions.size()];
  uint64_t p = (j / regions.size() * kNameStride + 101) % kNamesPerRegion;
  auto syl = hk::syllables();
  const hk::StreetKind &kind = hk::street_kinds()[p / 4096];
  std::string stem =
      std::string(syl[p % 64]) + " " + std::string(syl[p / 64 % 64]) + " ";
  return Street{region.key, stem + std::string(kind.word),
                stem + std::string(kind.abbr),
                region.districts[rng->below(region.districts.size())]};
}

std::string building_name(Rng *rng, std::string_view kind) {
  auto syl = hk::syllables();
  std::string first(syl[rng->below(syl.size())]);
  std::string name = first + " " + std::string(syl[rng->below(syl.size())]) +
                     " " + std::string(kind);
  if (name.size() > 30) name = first + " " + std::string(kind);
  return name;
}

std::string_view kind_code(std::string_view kind) {
  if (kind.starts_with("INDUSTRIAL")) return "IND";
  if (kind == "MANSION" || kind == "MANSIONS" || kind == "HOUSE" ||
      kind == "COURT" || kind == "GARDEN")
    return "RES";
  return "COM";
}

// "88 NATHAN RD TSIM SHA TSUI", shortened to fit 30 bytes.
std::string address_line(std::string_view number, const Street &street) {
  std::string head = number.empty() ? "" : std::string(number) + " ";
  std::string line =
      head + street.abbr + " " + std::string(street.district.name);
  if (line.size() > 30) line = head + street.abbr;
  if (line.size() > 30) line.resize(30);
  return line;
}

// One record of a street. odd and even are the next free numbers on the
// two sides of the street.
Row make_row(const Street &street, Rng *rng, std::array<uint32_t, 2> *next) {
  Row row;
  auto kinds = hk::building_kinds();
  std::string_view kind = kinds[rng->below(kinds.size())];
  uint32_t side = rng->below(2);  // 0 odd, 1 even
  uint32_t &n = (*next)[side];
  if (n > kMaxPremise) n = 1 + side;
  uint32_t pick = rng->below(100);
  if (pick < 40) {  // one number, sometimes a named building
    row.low = std::to_string(n);
    n += 2;
    if (rng->below(2) == 0) row.building = building_name(rng, kind);
  } else if (pick < 60) {  // a range on one side of the street
    row.parity = side == 0 ? "O" : "E";
    row.low = std::to_string(n);
    n += 2 * (1 + rng->below(4));
    row.high = std::to_string(n);
    n += 2;
  } else if (pick < 70) {  // a suffixed number: 12A
    row.low = std::to_string(n) + static_cast<char>('A' + rng->below(4));
    row.building = building_name(rng, kind);
  } else if (pick < 88) {  // floors or shops of a building
    bool shop = rng->below(3) == 0;
    row.building = building_name(rng, kind);
    row.qual1 = row.qual2 = shop ? "SHOP" : "FLOOR";
    uint32_t lo = 1 + rng->below(shop ? 60 : 12);
    row.low = std::to_string(lo);
    row.high = std::to_string(lo + rng->below(shop ? 10 : 30));
  } else {  // a building without a number
    row.building = building_name(rng, kind);
  }
  row.code9 = row.building.empty() ? "STR" : std::string(kind_code(kind));
  row.address =
      row.qual1.empty() ? address_line(row.low, street) : row.building;
  return row;
}

std::string refid(uint64_t k) {
  static constexpr std::string_view kDigits =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  uint64_t v = (k * kRefidStride + 12345) % kRefidSpace;
  std::string id(5, '0');
  for (int i = 4; i >= 0; --i, v /= 36) id[i] = kDigits[v % 36];
  return id;
}

void append_row(std::string *out, const Street &street, const Row &row,
                uint64_t k) {
  std::array<std::string_view, refdb::kColumns> f = {street.region,
                                                     street.name,
                                                     street.district.code,
                                                     "",
                                                     row.building,
                                                     row.parity,
                                                     row.qual1,
                                                     row.low,
                                                     row.qual2,
                                                     row.high,
                                                     row.code9,
                                                     row.address};
  std::string id = refid(k);
  f[3] = id;
  append_csv_row(out, f);
}

// How many of the remaining records street j gets: about the average, at
// least one for every street still to come, none beyond 65535.
uint64_t records_for_street(uint64_t remaining, uint64_t streets_left,
                            Rng *rng) {
  if (streets_left == 1) return remaining;
  uint64_t avg = remaining / streets_left;
  uint64_t count = avg / 2 + rng->next() % (avg + 1);
  uint64_t most =
      std::min<uint64_t>(refdb::kMaxCount, remaining - (streets_left - 1));
  uint64_t least = remaining > (streets_left - 1) * refdb::kMaxCount
                       ? remaining - (streets_left - 1) * refdb::kMaxCount
                       : 1;
  return std::clamp<uint64_t>(count, least, most);
}

}  // namespace

uint64_t max_generated_records() {
  return kNamesPerRegion * hk::regions().size() * refdb::kMaxCount;
}

bool generate_reference_csv(const GeneratorOptions &options,
                            const std::function<void(std::string_view)> &sink,
                            std::string *error) {
  if (options.records > max_generated_records()) {
    *error = "at most " + std::to_string(max_generated_records()) +
             " records can be generated";
    return false;
  }
  Rng rng(options.seed);
  std::string buf(refdb::kHeaderLine);
  buf.push_back('\n');
  uint64_t streets = street_count(options.records);
  uint64_t remaining = options.records, done = 0;
  for (uint64_t j = 0; j < streets && remaining > 0; ++j) {
    Street street = make_street(j, &rng);
    uint64_t count = records_for_street(remaining, streets - j, &rng);
    remaining -= count;
    std::array<uint32_t, 2> next = {1, 2};
    for (uint64_t i = 0; i < count; ++i, ++done) {
      append_row(&buf, street, make_row(street, &rng, &next), done);
      if (buf.size() >= kFlushBytes) {
        sink(buf);
        buf.clear();
      }
      if (options.progress && (done + 1) % kProgressEvery == 0)
        options.progress(done + 1);
    }
  }
  sink(buf);
  return true;
}

}  // namespace orlo::tools
