// Thousands of open, process and close cycles leave no open file
// descriptor behind (and, under the sanitizer build, no leaked byte).
#include <dirent.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <string>

#include "hkmatch/refdata/reference_store.h"
#include "native/geocoder_service.h"
#include "support/test_db.h"

namespace {

int open_descriptors() {
  int n = 0;
  DIR *d = opendir("/proc/self/fd");
  if (d == nullptr) return -1;
  while (readdir(d) != nullptr) ++n;
  closedir(d);
  return n;
}

void cycle(int i, const std::string &db) {
  std::string in(HKINREC_SIZE, ' '), out(HKOUTREC_SIZE, ' ');
  std::string street = i % 3 ? "NATHAN ROAD" : "NO SUCH ROAD";
  in.replace(HKIN_PREMNO_OFF, 2, "88");
  in.replace(HKIN_STREET_OFF, street.size(), street);
  in.replace(HKIN_REGION_OFF, 3, "KLN");
  std::string l1 = db + "/LEVEL1", l2 = db + "/LEVEL2", bd = db + "/BASEDATA";
  orlo::native::CallArgs a;
  a.in_rec = in.data();
  a.out_rec = out.data();
  a.options = i % 2 ? "LM" : "L";
  a.skip_base_date = "20261101";
  bool fail = i % 10 == 9;  // every tenth open fails on a missing LEVEL2
  a.level1_path = l1.c_str();
  a.level2_path = fail ? "/nonexistent/LEVEL2" : l2.c_str();
  a.basedata_path = bd.c_str();
  int h = orlo::native::open_geocoder(a);
  ASSERT_GE(h, 0);
  orlo::native::process_geocoder(h, a, "P");
  orlo::native::process_geocoder(h, a, "R");
  orlo::native::close_geocoder(h, a);
}

TEST(ResourceCycles, TenThousandCyclesLeaveNoDescriptorOpen) {
  const std::string db = orlo::testing::sample_db_dir();
  cycle(0, db);  // warm up whatever the first call opens once
  const int before = open_descriptors();
  ASSERT_GT(before, 0);
  const size_t heap_before = mallinfo2().uordblks;
  for (int i = 0; i < 10000; ++i) cycle(i, db);
  EXPECT_EQ(open_descriptors(), before);
  EXPECT_FALSE(orlo::native::handle_in_use(0));
  EXPECT_EQ(orlo::store_counts().stores, 0);
  // The heap is where it was: every store went with its last instance.
  EXPECT_LT(mallinfo2().uordblks, heap_before + 64 * 1024);
}

}  // namespace
