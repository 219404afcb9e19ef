#include <string>
#include <utility>

#include "lib/packed_record_codec.h"
#include "lib/refdb_compiler.h"

namespace orlo::tools {

namespace {

bool fail(BuildError *err, long line, std::string_view field,
          std::string message) {
  err->line = line;
  err->field = std::string(field);
  err->message = std::move(message);
  return false;
}

// The faults a single field can have on its own.
bool check_field(const std::string &text, size_t column, long line,
                 BuildError *err) {
  std::string_view name = refdb::kColumnNames[column];
  if (text.find('\0') != std::string::npos)
    return fail(err, line, name, "contains a NUL byte");
  if (text.find('\r') != std::string::npos)
    return fail(err, line, name, "contains a carriage return");
  if (text.find('\n') != std::string::npos)
    return fail(err, line, name, "contains a line feed");
  size_t width = refdb::kColumnWidths[column];
  if (text.size() > width)
    return fail(err, line, name,
                "is " + std::to_string(text.size()) + " bytes long, at most " +
                    std::to_string(width) + " allowed");
  return true;
}

// The region is the LEVEL1 key, which is stored blank-padded: a region of
// blanks only could never be looked up, and trailing blanks do not count.
std::string padded_key(const std::string &region) {
  std::string key = region;
  key.resize(refdb::kKeyBytes, ' ');
  return key;
}

}  // namespace

bool RefdbCollector::check_header(const std::vector<std::string> &row,
                                  BuildError *err) {
  bool ok = row.size() == refdb::kColumns;
  for (size_t i = 0; ok && i < row.size(); ++i)
    ok = row[i] == refdb::kColumnNames[i];
  if (!ok)
    return fail(err, 1, "",
                "header must be exactly " + std::string(refdb::kHeaderLine));
  return true;
}

uint32_t RefdbCollector::region_index(const std::string &key) {
  auto [it, added] = regions_by_key_.try_emplace(
      key, static_cast<uint32_t>(content_.regions.size()));
  if (added) content_.regions.push_back(RegionData{key, {}});
  return it->second;
}

bool RefdbCollector::street_index(uint32_t region, const std::string &name,
                                  long line, uint32_t *index, BuildError *err) {
  std::string key(reinterpret_cast<const char *>(&region), sizeof region);
  key += name;
  auto found = streets_by_key_.find(key);
  if (found != streets_by_key_.end()) {
    *index = found->second;
    return true;
  }
  RegionData &r = content_.regions[region];
  if (r.streets.size() >= limits_.max_streets_per_region)
    return fail(err, line, "street",
                "region has more than " +
                    std::to_string(limits_.max_streets_per_region) +
                    " streets");
  uint64_t record_bytes = refdb::kLevel2FixedBytes + name.size() + 1;
  if (level2_bytes_ + record_bytes > limits_.max_file_offset)
    return fail(err, line, "street", "LEVEL2 would grow past 32-bit offsets");
  level2_bytes_ += record_bytes;
  *index = static_cast<uint32_t>(content_.streets.size());
  content_.streets.push_back(StreetData{name, {}, 0});
  r.streets.push_back(*index);
  streets_by_key_.emplace(std::move(key), *index);
  return true;
}

// A record repeats an earlier one when both lie in the same street and
// their packed bytes are equal (a packed record decodes to its fields).
bool RefdbCollector::repeated(uint32_t street, std::string_view packed,
                              long line) {
  std::string key(reinterpret_cast<const char *>(&street), sizeof street);
  key.append(packed);
  uint64_t hash = std::hash<std::string>{}(key);
  const std::string &block = content_.streets[street].block;
  auto [first, last] = stored_.equal_range(hash);
  for (auto it = first; it != last; ++it) {
    const StoredRecord &r = it->second;
    if (r.street != street ||
        std::string_view(block).substr(r.offset, packed.size()) != packed)
      continue;
    if (stats_->repeats.size() < kRepeatsKept)
      stats_->repeats.push_back(RepeatedRow{line, r.line});
    ++stats_->repeated_rows;
    return true;
  }
  stored_.emplace(
      hash, StoredRecord{street, static_cast<uint32_t>(block.size()), line});
  return false;
}

bool RefdbCollector::add_row(std::vector<std::string> row, long line,
                             BuildError *err) {
  if (row.size() != refdb::kColumns)
    return fail(err, line, "",
                "expected " + std::to_string(refdb::kColumns) +
                    " fields, found " + std::to_string(row.size()));
  for (size_t c = 0; c < row.size(); ++c)
    if (!check_field(row[c], c, line, err)) return false;
  if (row[0].find_first_not_of(' ') == std::string::npos)
    return fail(err, line, "region", "is empty");
  if (rules_.fold_case && fold_row_case(&row)) {
    if (stats_->folded_rows++ == 0) stats_->first_folded_line = line;
  }
  if (!check_row_values(row, line, rules_, err)) return false;

  refdb::PackedFields fields;
  for (size_t f = 0; f < refdb::kPackedFields; ++f)
    fields[f] = row[refdb::kFirstPackedColumn + f];
  std::string packed;
  size_t len = refdb::append_packed_record(&packed, fields);
  // The field widths keep a record at 120 bytes at most; the length byte
  // is still checked so that a change of widths cannot wrap it silently.
  if (len > refdb::kMaxRecordBytes)
    return fail(err, line, "",
                "packed record of " + std::to_string(len) +
                    " bytes is longer than 127");

  uint32_t street;
  if (!street_index(region_index(padded_key(row[0])), row[1], line, &street,
                    err))
    return false;
  if (rules_.drop_duplicates && repeated(street, packed, line)) return true;
  StreetData &s = content_.streets[street];
  if (s.records >= limits_.max_records_per_street)
    return fail(err, line, "street",
                "street has more than " +
                    std::to_string(limits_.max_records_per_street) +
                    " records");
  if (basedata_bytes_ + len > limits_.max_file_offset)
    return fail(err, line, "", "BASEDATA would grow past 32-bit offsets");
  basedata_bytes_ += len;
  s.block += packed;
  ++s.records;
  return true;
}

}  // namespace orlo::tools
