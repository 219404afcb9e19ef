// Arbitrary 200-byte input records processed against the sample database,
// alternately by an instance in file mode and one in memory mode.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "orlo_matcher.h"

namespace {

struct Instance {
  HKHANDLE handle{};
  std::string db = std::string(ORLO_BINARY_DIR) + "/data/sample";
  std::string l1 = db + "/LEVEL1", l2 = db + "/LEVEL2", bd = db + "/BASEDATA";
  char namelist[30000];
  char reclist[7500];

  void call(const char *type, const char *in, char *out, const char *options) {
    hk_mtci(type, &handle, in, out, options, "", "", "", "", "", "", "",
            "/dev/null", l1.c_str(), l2.c_str(), bd.c_str(), namelist, reclist);
  }
  explicit Instance(const char *options) {
    char in[HKINREC_SIZE], out[HKOUTREC_SIZE];
    std::memset(in, ' ', sizeof in);
    call("O", in, out, options);
    if (out[0] != '0') __builtin_trap();  // the sample must open
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static Instance file_mode("L");
  static Instance memory_mode("LM");
  char in[HKINREC_SIZE];
  std::memset(in, ' ', sizeof in);
  std::memcpy(in, data, size < sizeof in ? size : sizeof in);
  char out[HKOUTREC_SIZE];
  Instance &inst = size % 2 ? memory_mode : file_mode;
  inst.call(size % 3 ? "P" : "R", in, out, "L");
  if (out[0] != '0' && out[0] != '1') __builtin_trap();
  if (out[HKOUT_FILLER_OFF] != ' ') __builtin_trap();
  return 0;
}
