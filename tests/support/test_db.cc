#include "support/test_db.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <vector>

#include "lib/refdb_builder.h"
#include "lib/refdb_format.h"

namespace orlo::testing {

std::string make_temp_dir() {
  std::string tmpl = ::testing::TempDir() + "orlo-db-XXXXXX";
  std::vector<char> name(tmpl.begin(), tmpl.end());
  name.push_back('\0');
  if (::mkdtemp(name.data()) == nullptr) {
    ADD_FAILURE() << "mkdtemp failed for " << tmpl;
    return {};
  }
  return name.data();
}

TestDb::TestDb(std::string_view csv, std::string date8)
    : dir_(make_temp_dir()) {
  std::string text;
  if (!csv.starts_with(tools::refdb::kHeaderLine)) {
    text = std::string(tools::refdb::kHeaderLine) + "\n";
  }
  text += csv;
  tools::BuildError err;
  if (!tools::build_reference_db(text, dir_, date8, &err))
    ADD_FAILURE() << "test database does not build: line " << err.line
                  << (err.field.empty() ? "" : ", field ") << err.field << ": "
                  << err.message;
}

TestDb::~TestDb() {
  std::error_code ec;
  if (!dir_.empty()) std::filesystem::remove_all(dir_, ec);
}

std::string sample_db_dir() {
  return ORLO_SAMPLE_DB_DIR;
}

}  // namespace orlo::testing
