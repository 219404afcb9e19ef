// Geocodes a few addresses of the installed sample database (found through
// the package's orloHKGeocoder_SAMPLE_DB_DIR) and compares street names;
// exits 0 when every result is as expected.
#include <cstdio>
#include <string>

#include "orlo_codes.h"
#include "orlo_compare.h"
#include "orlo_matcher.h"
#include "orlo_records.h"

namespace {

struct Case {
  const char *street, *premno, *region;
  std::string want;  // return code, match status, refcode and refid
};

std::string geocode(HKHANDLE *handle, const Case &c) {
  std::string in(HKINREC_SIZE, ' '), out(HKOUTREC_SIZE, ' ');
  in.replace(HKIN_PREMNO_OFF, std::string(c.premno).size(), c.premno);
  in.replace(HKIN_STREET_OFF, std::string(c.street).size(), c.street);
  in.replace(HKIN_REGION_OFF, std::string(c.region).size(), c.region);
  hk_mtci("P", handle, in.data(), out.data(), nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr);
  return out.substr(HKOUT_RETCODE_OFF, 1) + out.substr(HKOUT_MATCHSTAT_OFF, 1) +
         out.substr(HKOUT_REFCODE_OFF, 8);
}

}  // namespace

int main() {
  const Case cases[] = {
      {"FERRY STREET", "2", "KLN", "10YMT04667"},
      {"LOCKHART ROAD", "42", "HK", "10WCH06312"},
      {"NO SUCH STREET", "1", "KLN", "02        "},
  };
  const std::string db = SAMPLE_DB;
  const std::string l1 = db + "/LEVEL1", l2 = db + "/LEVEL2",
                    bd = db + "/BASEDATA";
  HKHANDLE handle{};
  std::string out(HKOUTREC_SIZE, ' ');
  hk_mtci("O", &handle, nullptr, out.data(), nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr, nullptr, l1.c_str(), l2.c_str(),
          bd.c_str(), nullptr, nullptr);
  int failed = out[0] != HKRC_OK;
  for (const Case &c : cases) {
    std::string got = geocode(&handle, c);
    if (got != c.want) {
      std::printf("%s %s: got '%s', want '%s'\n", c.premno, c.street,
                  got.c_str(), c.want.c_str());
      failed = 1;
    }
  }
  hk_mtci("C", &handle, nullptr, out.data(), "L", nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr);
  // The comparison library comes with the same link.
  if (m_street("NATHAN ROAD ", "NATHAN RD   ", 12, nullptr) < 90) failed = 1;
  return failed;
}
