// orlo_process_batch against the "P" calls it stands for: the sample
// addresses on the sample database and on a copy whose BASEDATA is cut in
// half (so that some records fail in the middle of the batch), and the
// calls that have nothing to process.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "lib/csv_reader.h"
#include "orlo_batch.h"
#include "orlo_codes.h"
#include "orlo_matcher.h"
#include "orlo_normalise.h"
#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::testing {
namespace {

// One instance opened on a database folder, closed without a statement.
struct Instance {
  explicit Instance(const std::string &dir) {
    std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
                bd = dir + "/BASEDATA";
    char out[HKOUTREC_SIZE];
    hk_mtci("O", &h, nullptr, out, "", nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, l1.c_str(), l2.c_str(),
            bd.c_str(), nullptr, nullptr);
    EXPECT_EQ(out[0], HKRC_OK) << dir;
  }
  ~Instance() {
    char out[HKOUTREC_SIZE];
    hk_mtci("C", &h, nullptr, out, "L", nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr);
  }
  HKHANDLE h{};
};

// The sample addresses as input records, tidied as hkgeocode tidies them.
std::string sample_records(size_t *count) {
  std::string csv = read_file(ORLO_SOURCE_DIR "/data/sample/addresses.csv");
  tools::CsvReader reader(csv);
  std::vector<std::string> fields;
  reader.next(&fields);  // the header
  std::string recs;
  *count = 0;
  while (reader.next(&fields) == tools::CsvReader::Status::kRow) {
    const char *text[ORLO_NF_COUNT];
    size_t lengths[ORLO_NF_COUNT];
    for (size_t i = 0; i < ORLO_NF_COUNT; ++i) {
      text[i] = fields[i].data();
      lengths[i] = fields[i].size();
    }
    char rec[HKINREC_SIZE];
    if (orlo_norm_address(text, lengths, rec, nullptr) != ORLO_NORM_OK)
      continue;
    recs.append(rec, HKINREC_SIZE);
    ++*count;
  }
  return recs;
}

// A copy of the sample database with BASEDATA cut to half its length.
std::string cut_sample_db() {
  namespace fs = std::filesystem;
  std::string dir = make_temp_dir();
  for (const char *f : {"LEVEL1", "LEVEL2", "BASEDATA"})
    fs::copy_file(sample_db_dir() + "/" + f, dir + "/" + f);
  std::string base = dir + "/BASEDATA";
  fs::resize_file(base, fs::file_size(base) / 2);
  return dir;
}

TEST(ProcessBatch, GivesWhatRecordByRecordCallsGive) {
  size_t n = 0;
  const std::string in = sample_records(&n);
  ASSERT_GT(n, 200u);
  struct Case {
    const char *name;
    std::string dir;
    bool damaged;
  } cases[] = {{"sample database", sample_db_dir(), false},
               {"BASEDATA cut in half", cut_sample_db(), true}};
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    Instance single(c.dir), batch(c.dir);
    std::string want(n * HKOUTREC_SIZE, '#');
    int32_t want_done = 0;
    for (size_t i = 0; i < n; ++i) {
      char *out = want.data() + i * HKOUTREC_SIZE;
      hk_mtci("P", &single.h, in.data() + i * HKINREC_SIZE, out, nullptr,
              nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
              nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
      want_done += out[0] == HKRC_OK || out[0] == HKRC_REFERENCE;
    }
    std::string got(n * HKOUTREC_SIZE, '#');
    EXPECT_EQ(orlo_process_batch(&batch.h, in.data(), got.data(),
                                 static_cast<int32_t>(n)),
              want_done);
    for (size_t i = 0; i < n; ++i) {
      EXPECT_EQ(got.substr(i * HKOUTREC_SIZE, HKOUTREC_SIZE),
                want.substr(i * HKOUTREC_SIZE, HKOUTREC_SIZE))
          << "record " << i;
    }
    EXPECT_EQ(batch.h.mcb->nread, single.h.mcb->nread);
    EXPECT_EQ(batch.h.mcb->nmatched, single.h.mcb->nmatched);
    // A record that failed does not stop the batch: some record after the
    // first failure was still matched.
    size_t first_failure = n;
    bool matched_after = false;
    for (size_t i = 0; i < n; ++i) {
      char rc = got[i * HKOUTREC_SIZE];
      if (rc == HKRC_BASEDATA_SEEK && first_failure == n) first_failure = i;
      if (rc == HKRC_REFERENCE && i > first_failure) matched_after = true;
    }
    EXPECT_EQ(first_failure < n, c.damaged);
    EXPECT_EQ(matched_after, c.damaged);
    if (c.damaged) std::filesystem::remove_all(c.dir);
  }
}

TEST(ProcessBatch, CallsWithNothingToProcess) {
  const std::string in(3 * HKINREC_SIZE, ' ');
  HKHANDLE closed{};
  struct Case {
    const char *name;
    void *handle;
    const char *in;
    bool out_given;
    int32_t count;
    int32_t want;
    char want_code;  // byte 0 of every output record; '#' untouched
  } cases[] = {
      {"no open instance", &closed, in.data(), true, 3, 0, HKRC_NOT_OPEN},
      {"NULL handle", nullptr, in.data(), true, 3, 0, HKRC_NOT_OPEN},
      {"count 0", &closed, in.data(), true, 0, 0, '#'},
      {"negative count", &closed, in.data(), true, -2, 0, '#'},
      {"NULL input", &closed, nullptr, true, 3, -1, '#'},
      {"NULL output", &closed, in.data(), false, 3, -1, '#'},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    std::string out(3 * HKOUTREC_SIZE, '#');
    EXPECT_EQ(orlo_process_batch(c.handle, c.in,
                                 c.out_given ? out.data() : nullptr, c.count),
              c.want);
    for (size_t i = 0; i < 3; ++i)
      EXPECT_EQ(out[i * HKOUTREC_SIZE], c.want_code) << "record " << i;
  }
}

TEST(CodeMeanings, ServeTheTableOfCodes) {
  // Every row of both tables is served with its own meaning.
  struct Row {
    const char *(*lookup)(char);
    char code;
    const char *meaning;
  };
#define RETURN_ROW(name, code, message, meaning) \
  {orlo_return_meaning, code, meaning},
#define STATUS_ROW(name, code, meaning) {orlo_status_meaning, code, meaning},
  const Row rows[] = {ORLO_RETURN_CODES(RETURN_ROW)
                          ORLO_MATCH_STATUSES(STATUS_ROW)};
#undef RETURN_ROW
#undef STATUS_ROW
  for (const Row &r : rows) {
    SCOPED_TRACE(r.code);
    EXPECT_STREQ(r.lookup(r.code), r.meaning);
  }
  // Characters of neither table (a status is not a return code, and the
  // other way round) have none.
  for (char code : {'B', ' ', '\xFF'})
    EXPECT_EQ(orlo_return_meaning(code), nullptr) << code;
  for (char status : {'A', 'E', '9'})
    EXPECT_EQ(orlo_status_meaning(status), nullptr) << status;
}

}  // namespace
}  // namespace orlo::testing
