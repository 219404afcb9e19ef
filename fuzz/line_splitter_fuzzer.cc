// Arbitrary bytes as an address line, split and geocoded against the sample
// database. The first byte chooses: bit 0 geocode (else split only), bit 1
// split with the database's names (else by shape alone), bit 2 the instance
// in memory mode. A line is either refused, with a reason, a blank record
// and (geocoding) 'E' and no record counted, or split into a record of
// upper-case printable Latin-1 and (geocoding) processed with return code
// '0' or '1' and exactly one record counted, matched as its result says.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "orlo_codes.h"
#include "orlo_lines.h"
#include "orlo_matcher.h"

namespace {

struct Instance {
  HKHANDLE handle{};

  explicit Instance(const char *options) {
    std::string db = std::string(ORLO_BINARY_DIR) + "/data/sample";
    std::string l1 = db + "/LEVEL1", l2 = db + "/LEVEL2", bd = db + "/BASEDATA";
    char out[HKOUTREC_SIZE];
    hk_mtci("O", &handle, nullptr, out, options, "", "", "", "", "", "", "",
            "/dev/null", l1.c_str(), l2.c_str(), bd.c_str(), nullptr, nullptr);
    if (out[0] != HKRC_OK) __builtin_trap();  // the sample must open
  }
};

void check_record(const char *rec) {
  for (int i = 0; i < HKINREC_SIZE; ++i) {
    auto c = static_cast<unsigned char>(rec[i]);
    if (c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 'a' && c <= 'z'))
      __builtin_trap();
  }
}

bool blank(const char *p, size_t n) {
  for (size_t i = 0; i < n; ++i)
    if (p[i] != ' ') return false;
  return true;
}

void check_refused(int32_t st, const ORLO_LINE_INFO &info, const char *rec) {
  if (st == ORLO_LINE_OK || info.status != st) __builtin_trap();
  if (info.reason[0] == '\0' || info.split != 0) __builtin_trap();
  if (!blank(rec, HKINREC_SIZE)) __builtin_trap();
}

void geocode(Instance &inst, const char *line, size_t len) {
  char rec[HKINREC_SIZE], out[HKOUTREC_SIZE];
  ORLO_LINE_INFO info;
  const int32_t read = inst.handle.mcb->nread;
  const int32_t matched = inst.handle.mcb->nmatched;
  int32_t st = orlo_line_geocode(&inst.handle, line, len, rec, out, nullptr,
                                 nullptr, &info);
  const int32_t counted = inst.handle.mcb->nread - read;
  const int32_t verified = inst.handle.mcb->nmatched - matched;
  if (st != ORLO_LINE_OK) {
    check_refused(st, info, rec);
    if (out[0] != HKRC_INPUT_REFUSED || counted != 0 || verified != 0)
      __builtin_trap();
    return;
  }
  check_record(rec);
  const bool accepted =
      out[0] == HKRC_REFERENCE && out[HKOUT_MATCHSTAT_OFF] == HKMS_ACCEPTED;
  if (out[0] != HKRC_OK && out[0] != HKRC_REFERENCE) __builtin_trap();
  if (counted != 1 || verified != (accepted ? 1 : 0)) __builtin_trap();
  if (info.split < 1 || info.split > info.tries || info.tries > 7)
    __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static Instance file_mode("L");
  static Instance memory_mode("LM");
  if (size == 0) return 0;
  const uint8_t how = data[0];
  const char *line = reinterpret_cast<const char *>(data) + 1;
  const size_t len = size - 1;
  Instance &inst = how & 4 ? memory_mode : file_mode;
  if (how & 1) {
    geocode(inst, line, len);
    return 0;
  }
  char rec[HKINREC_SIZE];
  ORLO_LINE_INFO info;
  int32_t st =
      orlo_line_split(how & 2 ? &inst.handle : nullptr, line, len, rec, &info);
  if (st != ORLO_LINE_OK) {
    check_refused(st, info, rec);
  } else {
    check_record(rec);
    if (info.split != 1 || info.tries != 1) __builtin_trap();
  }
  return 0;
}
