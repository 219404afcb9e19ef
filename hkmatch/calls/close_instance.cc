// The "C" call: dates the accuracy statement, writes it when the instance's
// options allow, and closes the instance.
#include <cstdio>
#include <cstring>
#include <ctime>

#include "hkmatch/calls/call_dispatch.h"
#include "orlo_codes.h"
#include "orlo_records.h"

namespace orlo {
namespace {

// The identity texts, blank-padded to their fixed widths.
constexpr char kOrganisation[] = "ORLO GEOCODING SERVICES      ";
constexpr char kStreet[] = "1 DATA STREET                ";
constexpr char kCity[] = "HONG KONG                    ";
constexpr char kCountryPhone[] = "HK  TEL +852 0000 0000       ";
constexpr char kProduct[] = "ORLO HK ADDRESS GEOCODER 0.1        ";
static_assert(sizeof kOrganisation == 30 && sizeof kStreet == 30 &&
                  sizeof kCity == 30 && sizeof kCountryPhone == 30,
              "the address texts are 29 characters");
static_assert(sizeof kProduct == 37, "the product line is 36 characters");

constexpr IdentityTexts kIdentity{kOrganisation, kStreet, kCity, kCountryPhone,
                                  kProduct};

// The database date area: the 8-character date and room to spare.
constexpr size_t kDateArea = 30;
constexpr size_t kBaseDateLength = 8;

// Reads the date at the start of BASEDATA (as text, possibly shorter than 8
// characters when the file is). Returns false when the file cannot be
// positioned at its start.
bool read_database_date(const HKMCB &mcb, char *date) {
  std::memset(date, 0, kDateArea);
  if (mcb.basefp == nullptr) return true;
  if (std::fseek(mcb.basefp, 0, SEEK_SET) != 0) return false;
  size_t n = std::fread(date, 1, kBaseDateLength, mcb.basefp);
  date[n] = '\0';
  return true;
}

// The caller's date text stands in for the file's when it gives one.
void take_supplied_date(const char *supplied, char *date) {
  std::memset(date, 0, kDateArea);
  std::memcpy(date, supplied, strnlen(supplied, kDateArea - 1));
}

void write_statement(const CallArgs &a, const HKMCB &mcb, const char *procdate,
                     const char *dbdate) {
  const IdentityTexts &id = kIdentity;
  const char *const *lines = a.report_lines;
  hk_form(id.organisation, id.street, id.city, id.country_phone, id.product,
          lines[0], lines[1], lines[2], lines[3], lines[4], lines[5], procdate,
          dbdate, &mcb.nread, &mcb.nmatched, a.report_path);
}

// Everything the close does before releasing the instance. A BASEDATA file
// that cannot be positioned costs the statement but not the close.
void report_before_close(const CallArgs &a, const HKMCB &mcb, time_t now) {
  char procdate[11];
  format_processing_date(now, procdate);
  char dbdate[kDateArea];
  bool supplied = a.skip_base_date != nullptr && a.skip_base_date[0] != '\0';
  if (supplied) {
    take_supplied_date(a.skip_base_date, dbdate);
  } else if (!read_database_date(mcb, dbdate)) {
    a.out_rec[HKOUT_RETCODE_OFF] = HKRC_BASEDATA_SEEK;
    return;
  }
  if (report_wanted(mcb, a.options)) {
    write_statement(a, mcb, procdate, dbdate);
  }
}

}  // namespace

const IdentityTexts &identity_texts() {
  return kIdentity;
}

void format_processing_date(time_t now, char *out) {
  out[0] = '\0';
  struct tm utc;
  if (gmtime_r(&now, &utc) == nullptr) return;
  char text[40];
  std::snprintf(text, sizeof text, "%4.4d/%2.2d/%2.2d", utc.tm_year + 1900,
                utc.tm_mon + 1, utc.tm_mday);
  std::memcpy(out, text, 10);
  out[10] = '\0';
}

// Pass option 1 and listing mode 3 are diagnostic runs; options starting with
// 'W', 'R' or 'X' (upper case only) are extract runs and 'L' asks for no
// statement. None of them gets a statement.
bool report_wanted(const HKMCB &mcb, const char *options) {
  if (mcb.passopt != 0 && mcb.passopt != 2) return false;
  if (mcb.listmode == 3) return false;
  if (options == nullptr) return true;
  switch (options[0]) {
    case 'W':
    case 'R':
    case 'X':
    case 'L':
      return false;
    default:
      return true;
  }
}

void close_instance(const CallArgs &a, time_t now) {
  if (a.handle == nullptr) return;
  if (a.handle->mcb != nullptr) report_before_close(a, *a.handle->mcb, now);
  hk_mclo(&a.handle->mcb, a.out_rec);
  // The block is gone; a handle that still pointed at it could only be
  // misused.
  a.handle->mcb = nullptr;
}

}  // namespace orlo
