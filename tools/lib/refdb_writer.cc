#include <algorithm>
#include <array>
#include <ctime>

#include "common/byte_order.h"
#include "lib/refdb_compiler.h"
#include "lib/staged_file.h"

namespace orlo::tools {

namespace {

// Regions by their padded key; streets by their name padded to 31 bytes,
// names that differ only in trailing blanks by their exact bytes so that the
// order is total and a rebuild reproduces it.
void sort_content(RefdbContent *content) {
  std::sort(content->regions.begin(), content->regions.end(),
            [](const RegionData &a, const RegionData &b) {
              return refdb::compare_padded(a.key, b.key, refdb::kKeyBytes) < 0;
            });
  const std::vector<StreetData> &streets = content->streets;
  for (RegionData &r : content->regions)
    std::sort(r.streets.begin(), r.streets.end(),
              [&streets](uint32_t a, uint32_t b) {
                const std::string &na = streets[a].name;
                const std::string &nb = streets[b].name;
                int c = refdb::compare_padded(na, nb, refdb::kStreetOrderBytes);
                return c != 0 ? c < 0 : na < nb;
              });
}

// BASEDATA: the date, every block region by region and street by street,
// then padding. Releases each block once written and records its offset.
void write_basedata(RefdbContent *content, const std::string &date8,
                    StagedFile *out, std::vector<uint32_t> *offsets) {
  out->write(date8);
  offsets->assign(content->streets.size(), 0);
  for (const RegionData &r : content->regions)
    for (uint32_t s : r.streets) {
      StreetData &street = content->streets[s];
      (*offsets)[s] = static_cast<uint32_t>(out->size());
      out->write(street.block);
      std::string().swap(street.block);
    }
  out->write_zeros(refdb::unit_padding(out->size()));
}

void write_level2(const RefdbContent &content,
                  const std::vector<uint32_t> &block_offsets,
                  const std::vector<uint32_t> &block_lengths, StagedFile *out,
                  std::vector<std::array<uint32_t, 2>> *segments) {
  std::string rec;
  for (const RegionData &r : content.regions) {
    uint32_t start = static_cast<uint32_t>(out->size());
    for (uint32_t s : r.streets) {
      const StreetData &street = content.streets[s];
      rec.clear();
      append_be32(&rec, block_offsets[s]);
      append_be32(&rec, block_lengths[s]);
      append_be16(&rec, street.records);
      rec += street.name;
      rec.push_back('\0');
      out->write(rec);
    }
    segments->push_back({start, static_cast<uint32_t>(out->size() - start)});
  }
  out->write_zeros(refdb::unit_padding(out->size()));
}

void write_level1(const RefdbContent &content,
                  const std::vector<std::array<uint32_t, 2>> &segments,
                  StagedFile *out) {
  std::string rec;
  for (size_t i = 0; i < content.regions.size(); ++i) {
    const RegionData &r = content.regions[i];
    rec.assign(r.key);
    append_be32(&rec, segments[i][0]);
    append_be32(&rec, segments[i][1]);
    append_be16(&rec, static_cast<uint32_t>(r.streets.size()));
    out->write(rec);
  }
  out->write_zeros(refdb::kLevel1RecordBytes);
}

}  // namespace

std::string today_utc_date8() {
  std::time_t now = std::time(nullptr);
  std::tm tm{};
  gmtime_r(&now, &tm);
  char buf[16];
  std::strftime(buf, sizeof buf, "%Y%m%d", &tm);
  return buf;
}

bool write_reference_db(RefdbContent *content, const std::string &outdir,
                        const std::string &date8, BuildStats *stats,
                        std::string *error) {
  sort_content(content);
  std::vector<uint32_t> lengths(content->streets.size());
  for (size_t s = 0; s < content->streets.size(); ++s)
    lengths[s] = static_cast<uint32_t>(content->streets[s].block.size());

  StagedFile base, level2, level1;
  if (!base.open(outdir + "/BASEDATA", error) ||
      !level2.open(outdir + "/LEVEL2", error) ||
      !level1.open(outdir + "/LEVEL1", error))
    return false;
  std::vector<uint32_t> offsets;
  write_basedata(content, date8, &base, &offsets);
  std::vector<std::array<uint32_t, 2>> segments;
  write_level2(*content, offsets, lengths, &level2, &segments);
  write_level1(*content, segments, &level1);
  if (!base.finish(error) || !level2.finish(error) || !level1.finish(error))
    return false;
  if (!base.commit(error) || !level2.commit(error) || !level1.commit(error))
    return false;
  stats->regions = content->regions.size();
  stats->streets = content->streets.size();
  stats->level1_bytes = level1.size();
  stats->level2_bytes = level2.size();
  stats->basedata_bytes = base.size();
  return true;
}

}  // namespace orlo::tools
