#include "lib/refdb_walk.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "common/byte_order.h"
#include "lib/refdb_format.h"

namespace orlo::tools {

namespace {

const unsigned char *bytes(const std::string &s) {
  return reinterpret_cast<const unsigned char *>(s.data());
}

std::string quoted(std::string_view name) {
  return "\"" + std::string(name) + "\"";
}

std::string trim_key(std::string_view key) {
  size_t end = key.find_last_not_of(' ');
  return std::string(
      key.substr(0, end == std::string_view::npos ? 0 : end + 1));
}

// One street as its LEVEL2 record describes it.
struct StreetRef {
  uint64_t level2_offset;
  uint32_t block_offset;
  uint32_t block_length;
  uint16_t count;
  std::string_view name;
};

class Walker {
 public:
  Walker(const RefdbImages &images, RefdbVisitor *visitor, WalkTotals *totals)
      : img_(images), visitor_(visitor), totals_(totals) {}

  void run() {
    check_sizes();
    walk_level1();
  }

 private:
  void check_sizes();
  void walk_level1();
  void walk_segment(uint64_t l1_offset, uint32_t off, uint32_t len,
                    uint16_t count);
  bool read_street(uint64_t pos, uint64_t end, StreetRef *street);
  void walk_block(const StreetRef &street);

  const RefdbImages &img_;
  RefdbVisitor *visitor_;
  WalkTotals *totals_;
  std::string region_;
};

void Walker::check_sizes() {
  const std::string &base = img_.basedata;
  totals_->date = base.substr(0, refdb::kDateBytes);
  if (base.size() < refdb::kDateBytes)
    visitor_->fault(FaultKind::kFileLength, "BASEDATA", 0,
                    "shorter than its 8-byte date header");
  auto whole_units = [this](std::string_view file, size_t size) {
    if (size % refdb::kUnitBytes != 0)
      visitor_->fault(FaultKind::kFileLength, file,
                      size - size % refdb::kUnitBytes,
                      "length " + std::to_string(size) +
                          " is not a whole number of 23200-byte units");
  };
  whole_units("LEVEL2", img_.level2.size());
  whole_units("BASEDATA", base.size());
}

void Walker::walk_level1() {
  const std::string &l1 = img_.level1;
  std::string_view prev_key;
  for (uint64_t pos = 0; pos < l1.size(); pos += refdb::kLevel1RecordBytes) {
    if (l1.size() - pos < refdb::kLevel1RecordBytes) {
      visitor_->fault(
          FaultKind::kLevel1, "LEVEL1", pos,
          "partial record of " + std::to_string(l1.size() - pos) + " bytes");
      return;
    }
    const unsigned char *rec = bytes(l1) + pos;
    if (load_be32(rec) == 0) return;  // end record
    std::string_view key(l1.data() + pos, refdb::kKeyBytes);
    region_ = trim_key(key);
    if (region_.empty())
      visitor_->fault(FaultKind::kLevel1, "LEVEL1", pos, "key is blank");
    if (!prev_key.empty() && key <= prev_key)
      visitor_->fault(
          FaultKind::kLevel1, "LEVEL1", pos,
          "key " + quoted(region_) + " is not above the key before it");
    prev_key = key;
    ++totals_->regions;
    walk_segment(pos, load_be32(rec + refdb::kLevel1OffsetAt),
                 load_be32(rec + refdb::kLevel1LengthAt),
                 load_be16(rec + refdb::kLevel1CountAt));
  }
}

void Walker::walk_segment(uint64_t l1_offset, uint32_t off, uint32_t len,
                          uint16_t count) {
  uint64_t end = uint64_t{off} + len;
  if (end > img_.level2.size()) {
    visitor_->fault(
        FaultKind::kSegment, "LEVEL1", l1_offset + refdb::kLevel1OffsetAt,
        "segment of region " + quoted(region_) + " at " + std::to_string(off) +
            " length " + std::to_string(len) + " runs past the end of LEVEL2");
    return;
  }
  uint64_t pos = off;
  uint32_t found = 0;
  std::string_view prev;
  while (pos < end) {
    StreetRef street;
    if (!read_street(pos, end, &street)) return;
    if (found > 0) {
      int c =
          refdb::compare_padded(prev, street.name, refdb::kStreetOrderBytes);
      if (c > 0 || (c == 0 && prev >= street.name))
        visitor_->fault(FaultKind::kStreetRecord, "LEVEL2", pos,
                        "street " + quoted(street.name) +
                            " is not above the street before it");
    }
    prev = street.name;
    ++found;
    ++totals_->streets;
    walk_block(street);
    pos += refdb::kLevel2FixedBytes + street.name.size() + 1;
  }
  if (found != count)
    visitor_->fault(
        FaultKind::kCount, "LEVEL1", l1_offset + refdb::kLevel1CountAt,
        "region " + quoted(region_) + " counts " + std::to_string(count) +
            " streets, its segment holds " + std::to_string(found));
}

bool Walker::read_street(uint64_t pos, uint64_t end, StreetRef *street) {
  const std::string &l2 = img_.level2;
  if (end - pos < refdb::kLevel2FixedBytes + 1) {
    visitor_->fault(FaultKind::kStreetRecord, "LEVEL2", pos,
                    "street record needs at least 11 bytes, " +
                        std::to_string(end - pos) + " left in the segment");
    return false;
  }
  uint64_t name_at = pos + refdb::kLevel2FixedBytes;
  uint64_t limit = std::min<uint64_t>(end, name_at + refdb::kMaxNameBytes + 1);
  const void *nul = std::memchr(l2.data() + name_at, '\0', limit - name_at);
  if (nul == nullptr) {
    visitor_->fault(FaultKind::kStreetRecord, "LEVEL2", name_at,
                    limit - name_at > refdb::kMaxNameBytes
                        ? "street name longer than 30 bytes"
                        : "street name not terminated inside its segment");
    return false;
  }
  const unsigned char *rec = bytes(l2) + pos;
  street->level2_offset = pos;
  street->block_offset = load_be32(rec + refdb::kLevel2OffsetAt);
  street->block_length = load_be32(rec + refdb::kLevel2LengthAt);
  street->count = load_be16(rec + refdb::kLevel2CountAt);
  street->name =
      std::string_view(l2.data() + name_at,
                       static_cast<const char *>(nul) - l2.data() - name_at);
  return true;
}

void Walker::walk_block(const StreetRef &street) {
  const std::string &base = img_.basedata;
  uint64_t pos = street.block_offset;
  uint64_t end = pos + street.block_length;
  std::string where =
      "street " + quoted(street.name) + " of region " + quoted(region_);
  if (pos < refdb::kDateBytes || end > base.size()) {
    visitor_->fault(FaultKind::kBlock, "LEVEL2", street.level2_offset,
                    "block of " + where + " at " + std::to_string(pos) +
                        " length " + std::to_string(street.block_length) +
                        " lies outside BASEDATA");
    return;
  }
  refdb::UnpackedFields fields;
  uint32_t found = 0;
  while (pos < end) {
    refdb::UnpackFault why;
    size_t len =
        refdb::unpack_record(bytes(base) + pos, end - pos, &fields, &why);
    if (len == 0) {
      visitor_->fault(FaultKind::kRecord, "BASEDATA", pos + why.offset,
                      why.message + " (record " + std::to_string(found + 1) +
                          " of " + where + ")");
      return;
    }
    visitor_->record(region_, street.name, fields);
    ++found;
    ++totals_->records;
    pos += len;
  }
  if (found != street.count)
    visitor_->fault(FaultKind::kCount, "LEVEL2", street.level2_offset + 8,
                    where + " counts " + std::to_string(street.count) +
                        " records, its block holds " + std::to_string(found));
}

bool read_whole(const std::string &path, std::string *out, std::string *error) {
  std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(
      std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) {
    *error = "cannot open " + path + ": " + std::strerror(errno);
    return false;
  }
  out->clear();
  char buf[1 << 16];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, file.get())) > 0)
    out->append(buf, n);
  if (std::ferror(file.get())) {
    *error = "cannot read " + path + ": " + std::strerror(errno);
    return false;
  }
  return true;
}

}  // namespace

std::string_view fault_kind_title(FaultKind kind) {
  constexpr std::string_view kTitles[kFaultKinds] = {
      "file lengths",
      "LEVEL1 records",
      "segments outside LEVEL2",
      "LEVEL2 street records",
      "blocks outside BASEDATA",
      "BASEDATA records that do not decode",
      "counts that disagree with the contents",
  };
  return kTitles[static_cast<size_t>(kind)];
}

bool load_reference_images(const std::string &dir, RefdbImages *images,
                           std::string *error) {
  return read_whole(dir + "/LEVEL1", &images->level1, error) &&
         read_whole(dir + "/LEVEL2", &images->level2, error) &&
         read_whole(dir + "/BASEDATA", &images->basedata, error);
}

void walk_reference_images(const RefdbImages &images, RefdbVisitor *visitor,
                           WalkTotals *totals) {
  *totals = WalkTotals{};
  Walker(images, visitor, totals).run();
}

}  // namespace orlo::tools
