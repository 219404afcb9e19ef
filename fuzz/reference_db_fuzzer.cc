// A whole reference database mutated at once: the input is cut into LEVEL1,
// LEVEL2 and BASEDATA, written to files, opened in file or memory mode and
// searched with a handful of records. Every outcome must be a return code.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "orlo_matcher.h"

namespace {

constexpr size_t kUnit = 23200;  // memory mode reads whole units

std::string scratch_dir() {
  static std::string dir = [] {
    char tmpl[] = "/tmp/orlo-fuzz-db-XXXXXX";
    const char *d = mkdtemp(tmpl);
    return std::string(d ? d : "/tmp");
  }();
  return dir;
}

void write_file(const std::string &path, const uint8_t *p, size_t n, bool pad) {
  FILE *f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) return;
  if (n) std::fwrite(p, 1, n, f);
  if (pad && n % kUnit) {
    static const char zeros[kUnit] = {};
    std::fwrite(zeros, 1, kUnit - n % kUnit, f);
  }
  std::fclose(f);
}

std::string record(const char *premno, const char *street, const char *region,
                   const char *bldg) {
  std::string in(HKINREC_SIZE, ' ');
  in.replace(HKIN_PREMNO_OFF, strlen(premno), premno);
  in.replace(HKIN_STREET_OFF, strlen(street), street);
  in.replace(HKIN_BLDG_OFF, strlen(bldg), bldg);
  in.replace(HKIN_REGION_OFF, strlen(region), region);
  return in;
}

void call(const char *type, HKHANDLE *h, const std::string &in, char *out,
          const char *options, const std::string &dir) {
  std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
              bd = dir + "/BASEDATA";
  static char namelist[30000], reclist[7500];
  hk_mtci(type, h, in.c_str(), out, options, "20260101", "", "", "", "", "", "",
          "/dev/null", l1.c_str(), l2.c_str(), bd.c_str(), namelist, reclist);
}

}  // namespace

// Input: one flag byte, two 16-bit lengths (LEVEL1, LEVEL2), then the bytes
// of LEVEL1, LEVEL2 and, for the rest, BASEDATA.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 5) return 0;
  uint8_t flags = data[0];
  size_t n1 = data[1] | (data[2] << 8), n2 = data[3] | (data[4] << 8);
  data += 5;
  size -= 5;
  n1 = n1 < size ? n1 : size;
  n2 = n2 < size - n1 ? n2 : size - n1;
  bool memory = flags & 1;
  const std::string dir = scratch_dir();
  write_file(dir + "/LEVEL1", data, n1, false);
  write_file(dir + "/LEVEL2", data + n1, n2, memory);
  write_file(dir + "/BASEDATA", data + n1 + n2, size - n1 - n2, memory);

  const char *options =
      memory ? (flags & 2 ? "3M" : "LM") : (flags & 2 ? "5L" : "L");
  HKHANDLE h{};
  char out[HKOUTREC_SIZE];
  call("O", &h, std::string(HKINREC_SIZE, ' '), out, options, dir);
  const std::string records[] = {
      record("88", "NATHAN ROAD", "KLN", ""),
      record("12A", "NATHAN RD", "KLN", "CHUNGKING MANSIONS"),
      record("", "QUEENS ROAD", "HK", ""),
      record("1", "A", "NT", "SOME BUILDING"),
  };
  for (const std::string &in : records) {
    call("P", &h, in, out, options, dir);
    if (std::strchr("012345678A", out[0]) == nullptr) __builtin_trap();
  }
  call("R", &h, records[0], out, options, dir);
  call("C", &h, records[0], out, "L", dir);
  return 0;
}
