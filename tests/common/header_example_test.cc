// The example program of include/orlo_matcher.h, as the build extracts and
// compiles it, run on the sample database: it matches its address, the
// quiet close prints nothing, and the other close writes the statement.
#include <gtest/gtest.h>

#include <string>

#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::testing {
namespace {

TEST(HeaderExample, RunsOnTheSampleDatabase) {
  std::string dir = make_temp_dir();
  std::string report = dir + "/statement.txt";
  ToolRun r = run_tool(ORLO_BINARY_DIR "/examples/matcher_example " +
                           sample_db_dir() + " " + report,
                       dir);
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out,
            "22 CASTLE PEAK ROAD / 22 CASTLE PEAK RD SHAM SHUI PO (reference "
            "SSP 12831)\nstatement written to " +
                report + "\n");
  EXPECT_EQ(r.err, "");
  std::string statement = read_file(report);
  EXPECT_EQ(statement.size(), 2708u);
  EXPECT_TRUE(has(statement, "Example run")) << statement;
  EXPECT_TRUE(
      has(statement, "Records Processed: " + std::string(17, ' ') + "1 "))
      << statement;

  ToolRun missing = run_tool(
      ORLO_BINARY_DIR "/examples/matcher_example " + dir + "/none x", dir);
  EXPECT_EQ(missing.status, 1);
  EXPECT_TRUE(has(missing.err, "QMV-BAD OPEN ON BASEDATA")) << missing.err;
}

}  // namespace
}  // namespace orlo::testing
