#include "hkgeocode/options.h"

#include <unistd.h>

#include <climits>
#include <string_view>

#include "hkgeocode/output_format.h"

namespace orlo::tools::hkgeocode {
namespace {

constexpr const char *kUsage =
    "Usage: hkgeocode [OPTIONS] [INPUT]\n"
    "\n"
    "Matches Hong Kong addresses against a reference database, one record\n"
    "at a time, and writes each input row with the matcher's result.\n"
    "\n"
    "INPUT is a CSV file with the header\n"
    "  refcode,premno,street,building,unit,extra,district,region,mode\n"
    "(widths 3, 8, 30, 30, 30, 30, 30, 30, 1; unit is the floor and unit\n"
    "line; mode is the record mode byte, empty for none). Without INPUT, or\n"
    "with '-', the rows are read from standard input.\n"
    "\n"
    "The fields are tidied as people write them (--raw turns this off):\n"
    "UTF-8 (with or without a byte-order mark) or Latin-1 text; full-width\n"
    "letters and digits made plain; letters in upper case; blanks\n"
    "collapsed; the region as its key HK, KLN or NT whether written as the\n"
    "key or spelt out (\"Kowloon\", \"N.T.\", \"Hong Kong Island\"), and\n"
    "taken from the district (\"Tsim Sha Tsui\", \"Causeway Bay\", \"Sha\n"
    "Tin\") when it is empty. A field with characters outside Latin-1\n"
    "(Chinese, for one) makes the row bad. Widths count after tidying.\n"
    "\n"
    "With --lines, INPUT holds addresses as people write them, one to a\n"
    "line of text (\"Flat B, 12/F, 28 Nathan Rd, TST, Kowloon\"), or with\n"
    "--column NAME in the named column of a CSV file with a header. Each\n"
    "line is split into the fields of the record by the library's line\n"
    "splitter (the floor and unit line, block and tower, premise number,\n"
    "street and building by the database's own names, district and\n"
    "region), the likely splits are tried through the matcher, and the\n"
    "best result is kept; the output shows the split. An empty line, a\n"
    "line longer than a record can carry or one in characters such as\n"
    "Chinese is a bad row.\n"
    "\n"
    "Options:\n"
    "  --db DIR            reference database (LEVEL1, LEVEL2, BASEDATA);\n"
    "                      default: the sample database of the build, or\n"
    "                      the installed one\n"
    "  --options TEXT      option string of the open (listing, pass, extract\n"
    "                      and memory mode, e.g. \" M\" for memory mode)\n"
    "  --threads N         N workers (1 to 64), each with its own instance;\n"
    "                      the output is in input order and the same as with\n"
    "                      one worker\n"
    "  --raw               place the CSV fields as given: printable ASCII in\n"
    "                      the matcher's form (upper case, region keys)\n"
    "  --table             a readable table (address, return code RC, match\n"
    "                      status MS, result lines, reference) and a legend\n"
    "                      of the codes in it, instead of CSV\n"
    "  --fixed             raw 200-byte input records, raw 300-byte output\n"
    "                      records (never tidied)\n"
    "  --lines             one address a line of text (see above)\n"
    "  --column NAME       with --lines: the addresses are the column NAME of\n"
    "                      a CSV file with a header\n"
    "  --out PATH          output file (default: standard output)\n"
    "  --report PATH       write the address accuracy statement at the end\n"
    "  --report-line TEXT  a free line of the statement (up to six times)\n"
    "  --quiet             no progress display\n"
    "  --help              this text\n"
    "\n"
    "The CSV output repeats the input columns exactly as read (with\n"
    "--lines: the column \"line\", or every column of the CSV), with\n"
    "--lines adds the split:\n";

constexpr const char *kResultColumns =
    "and then these, in UTF-8 (\"as read\" is the record the matcher\n"
    "received):\n";

constexpr const char *kCodes =
    "\n"
    "Codes (RC return code, MS match status) with their meanings, and the\n"
    "matcher's own message in brackets where it has one:\n";

constexpr const char *kNotes =
    "\n"
    "Bad rows (a wrong number of fields, a field wider than its record\n"
    "field after tidying, a character outside Latin-1, a control\n"
    "character, with --raw any byte that is not printable ASCII, with\n"
    "--lines a line refused by the splitter, or malformed CSV) are\n"
    "reported on standard error with their line, counted\n"
    "in the summary and written to the output with return code E and the\n"
    "reason; with --fixed, as a record of blanks with E in byte 0.\n"
    "Malformed CSV ends the input.\n"
    "\n"
    "The accuracy statement counts the records of all workers together (one\n"
    "a line, however many splits of it were tried): each\n"
    "worker's instance is closed without a statement and the first one, its\n"
    "counters holding the totals of all, is closed last with one. The open\n"
    "options then decide, as for any close, whether a statement is written.\n"
    "\n"
    "A progress line is shown on standard error when it is a terminal; a\n"
    "summary follows at the end.\n"
    "\n"
    "Exit status:\n"
    "  0  every row was processed (return code 0 or 1)\n"
    "  1  some input rows were bad (E); every other row was processed\n"
    "  2  wrong usage, or an input, output or report file that cannot be used\n"
    "  3  the reference database cannot be opened\n"
    "  4  some rows failed in the matcher (any other return code: damaged or\n"
    "     cut-short reference data, out of memory), or the accuracy\n"
    "     statement could not be written; a one-line reason goes to\n"
    "     standard error\n";

bool parse_threads(std::string_view text, int *threads) {
  if (text.empty() || text.size() > 3) return false;
  int n = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    n = n * 10 + (c - '0');
  }
  if (n < 1 || n > kMaxThreads) return false;
  *threads = n;
  return true;
}

bool takes_value(std::string_view name) {
  for (std::string_view v : {"--db", "--options", "--threads", "--out",
                             "--report", "--report-line", "--column"}) {
    if (v == name) return true;
  }
  return false;
}

bool apply(std::string_view name, const std::string &value, Options *o,
           std::string *error) {
  if (name == "--db") {
    o->db_dir = value;
  } else if (name == "--options") {
    o->open_options = value;
  } else if (name == "--threads") {
    if (!parse_threads(value, &o->threads)) {
      *error = "--threads takes a number from 1 to 64, not '" + value + "'";
      return false;
    }
  } else if (name == "--out") {
    o->out_path = value;
  } else if (name == "--column") {
    o->column = value;
  } else if (name == "--report") {
    o->report_path = value;
  } else if (name == "--report-line") {
    if (o->report_lines.size() == kMaxReportLines) {
      *error = "at most six --report-line texts";
      return false;
    }
    o->report_lines.push_back(value);
  }
  return true;
}

// An extract file is written by each instance to the same path, so extract
// options and several workers exclude each other.
bool writes_extract(const std::string &open_options) {
  if (open_options.empty()) return false;
  std::string_view extract = "WwRrXx";
  return extract.find(open_options[0]) != std::string_view::npos;
}

}  // namespace

std::string usage_text() {
  return kUsage + split_columns_help() + kResultColumns + columns_help() +
         kCodes + code_legend("", "") + kNotes;
}

bool parse_options(int argc, char **argv, Options *o, std::string *error) {
  bool have_input = false;
  for (int i = 0; i < argc; ++i) {
    std::string_view a = argv[i];
    if (a == "--help" || a == "-h") {
      o->help = true;
    } else if (a == "--fixed") {
      o->fixed = true;
    } else if (a == "--raw") {
      o->raw = true;
    } else if (a == "--lines") {
      o->lines = true;
    } else if (a == "--table") {
      o->table = true;
    } else if (a == "--quiet") {
      o->quiet = true;
    } else if (a.starts_with("--")) {
      std::string_view name = a.substr(0, a.find('='));
      if (!takes_value(name)) {
        *error = "unknown option " + std::string(name);
        return false;
      }
      std::string value;
      if (name.size() < a.size()) {
        value = std::string(a.substr(name.size() + 1));
      } else if (i + 1 < argc) {
        value = argv[++i];
      } else {
        *error = "option " + std::string(name) + " needs a value";
        return false;
      }
      if (!apply(name, value, o, error)) return false;
    } else if (have_input) {
      *error = "more than one INPUT: '" + std::string(a) + "'";
      return false;
    } else {
      o->input = std::string(a);
      have_input = true;
    }
  }
  if (o->table && o->fixed) {
    *error = "--table and --fixed cannot be combined";
    return false;
  }
  if (o->lines && (o->fixed || o->raw)) {
    *error = "--lines cannot be combined with --fixed or --raw";
    return false;
  }
  if (!o->column.empty() && !o->lines) {
    *error = "--column names the column of address lines: give --lines too";
    return false;
  }
  if (o->threads > 1 && writes_extract(o->open_options)) {
    *error = "an extract option cannot be combined with --threads above 1";
    return false;
  }
  return true;
}

std::string default_db_dir() {
  char exe[PATH_MAX];
  ssize_t n = ::readlink("/proc/self/exe", exe, sizeof exe - 1);
  if (n <= 0) return "data/sample";
  std::string path(exe, static_cast<size_t>(n));
  std::string folder = path.substr(0, path.rfind('/'));
  // In the build tree the sample database lies beside bin/; installed, it
  // lies where the install put it, relative to the tools' folder.
  std::string built = folder + "/../data/sample";
  std::string installed = folder + "/" ORLO_INSTALLED_SAMPLE_DB;
  if (::access((built + "/LEVEL1").c_str(), F_OK) != 0 &&
      ::access((installed + "/LEVEL1").c_str(), F_OK) == 0)
    return installed;
  return built;
}

}  // namespace orlo::tools::hkgeocode
