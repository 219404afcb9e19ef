#include "hkgeocode/geocoder.h"

#include "hkmatch/calls/statement_rules.h"
#include "orlo_codes.h"
#include "orlo_records.h"

namespace orlo::tools::hkgeocode {
namespace {

constexpr size_t kNamelistSize = 30000;
constexpr size_t kReclistSize = 7500;

// The close option that asks for no statement.
constexpr const char *kNoStatement = "L";

}  // namespace

Geocoder::Geocoder()
    : namelist_(kNamelistSize, ' '),
      reclist_(kReclistSize, ' '),
      open_record_(HKOUTREC_SIZE, ' ') {}

Geocoder::~Geocoder() {
  if (handle_.mcb != nullptr) close_quietly();
}

char Geocoder::open(const std::string &dir, const std::string &options) {
  std::string level1 = dir + "/LEVEL1";
  std::string level2 = dir + "/LEVEL2";
  std::string basedata = dir + "/BASEDATA";
  hk_mtci("O", &handle_, nullptr, open_record_.data(), options.c_str(), nullptr,
          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
          level1.c_str(), level2.c_str(), basedata.c_str(), nullptr, nullptr);
  return open_record_[0];
}

void Geocoder::process(const char *inrec, char *outrec) {
  hk_mtci("P", &handle_, inrec, outrec, nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
          nullptr, namelist_.data(), reclist_.data());
}

int32_t Geocoder::process_line(const std::string &line, char *inrec,
                               char *outrec, ORLO_LINE_INFO *info) {
  return orlo_line_geocode(&handle_, line.data(), line.size(), inrec, outrec,
                           namelist_.data(), reclist_.data(), info);
}

int32_t Geocoder::records_read() const {
  return handle_.mcb != nullptr ? handle_.mcb->nread : 0;
}

int32_t Geocoder::records_matched() const {
  return handle_.mcb != nullptr ? handle_.mcb->nmatched : 0;
}

void Geocoder::add_counts(int32_t read, int32_t matched) {
  if (handle_.mcb == nullptr) return;
  handle_.mcb->nread += read;
  handle_.mcb->nmatched += matched;
}

bool Geocoder::statement_allowed(const std::string &options) const {
  return handle_.mcb != nullptr &&
         orlo::report_wanted(*handle_.mcb, options.c_str());
}

char Geocoder::close_quietly() {
  return close_call(kNoStatement, nullptr);
}

char Geocoder::close_with_statement(const std::string &options,
                                    const StatementRequest &statement) {
  return close_call(options.c_str(), &statement);
}

char Geocoder::close_call(const char *options,
                          const StatementRequest *statement) {
  const char *lines[6] = {};
  const char *path = nullptr;
  if (statement != nullptr) {
    for (size_t i = 0; i < statement->lines.size() && i < 6; ++i) {
      lines[i] = statement->lines[i].c_str();
    }
    path = statement->path.c_str();
  }
  std::string out(HKOUTREC_SIZE, ' ');
  out[0] = HKRC_OK;
  hk_mtci("C", &handle_, nullptr, out.data(), options, nullptr, lines[0],
          lines[1], lines[2], lines[3], lines[4], lines[5], path, nullptr,
          nullptr, nullptr, nullptr, nullptr);
  handle_.mcb = nullptr;
  return out[0];
}

}  // namespace orlo::tools::hkgeocode
