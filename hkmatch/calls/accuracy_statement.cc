// The address accuracy statement: a framed page of 35 lines of 80 characters
// that names the organisation and product, shows the database date, the
// caller's six free lines, the number of records processed, the processing
// date and the share of verified addresses. Lines 1 to 33 are written out,
// each as " <80 characters>\n" after a form feed line: 2708 bytes in all.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "orlo_fields.h"
#include "orlo_matcher.h"

namespace {

constexpr int kLines = 35;
constexpr int kWidth = 80;
// Text may run up to this column; column 79 carries the right-hand frame.
constexpr int kLastTextColumn = 78;

constexpr int kTextColumn = 8;
constexpr int kValueColumn = 28;
constexpr int kFigureColumn = 60;
constexpr int kCountWidth = 14;

using Line = std::array<char, kWidth>;
using Page = std::array<Line, kLines>;

void build_frame(Page &page) {
  for (int i = 0; i < kLines; ++i) {
    Line &line = page[static_cast<size_t>(i)];
    if (i == 0 || i == 1 || i == 9 || i == 33 || i == 34) {
      line.fill('-');
    } else {
      line.fill(' ');
      line.front() = '|';
      line.back() = '|';
    }
  }
}

// Overwrites the line from `column` with the text, without its terminator.
// Text that would reach the frame is cut after column 78. A null text leaves
// the line as it is.
void place(Page &page, int line, int column, const char *text) {
  if (text == nullptr) return;
  size_t room = static_cast<size_t>(kLastTextColumn + 1 - column);
  size_t n = strnlen(text, room);
  std::memcpy(page[static_cast<size_t>(line)].data() + column, text, n);
}

// "1234567" becomes "1,234,567" left-justified in 14 characters.
void place_count(Page &page, int32_t count) {
  char digits[24];
  std::snprintf(digits, sizeof digits, "%ld", static_cast<long>(count));
  char grouped[21];
  const char *text = cm_cfrmt(digits, grouped, sizeof grouped);
  char field[kCountWidth + 1];
  std::snprintf(field, sizeof field, "%-14s", text);
  place(page, 27, kFigureColumn, field);
}

// The verified share with two decimals and a '%'; "000.00%" when nothing was
// processed, since the share is then undefined.
void place_percentage(Page &page, int32_t processed, int32_t verified) {
  char text[400];
  if (processed == 0) {
    std::snprintf(text, sizeof text, "000.00%%");
  } else {
    double share = verified * 100.0 / processed;
    std::snprintf(text, sizeof text, "%-3.2f%%", share);
  }
  place(page, 31, kFigureColumn, text);
}

void write_page(const Page &page, FILE *to) {
  std::fputs("\f\n", to);
  for (int i = 1; i <= 33; ++i) {
    std::fputc(' ', to);
    std::fwrite(page[static_cast<size_t>(i)].data(), 1, kWidth, to);
    std::fputc('\n', to);
  }
}

}  // namespace

extern "C" void hk_form(const char *ident1, const char *ident2,
                        const char *ident3, const char *ident4,
                        const char *ident5, const char *line1,
                        const char *line2, const char *line3, const char *line4,
                        const char *line5, const char *line6,
                        const char *procdate, const char *dbdate,
                        const int32_t *nread, const int32_t *nmatched,
                        const char *path) {
  Page page;
  build_frame(page);
  place(page, 2, kTextColumn, "ADDRESS ACCURACY STATEMENT");
  place(page, 4, kTextColumn, ident1);
  place(page, 5, kTextColumn, ident2);
  place(page, 6, kTextColumn, ident3);
  place(page, 7, kTextColumn, ident4);
  place(page, 11, kTextColumn, ident5);
  place(page, 13, kTextColumn, "Database date: ");
  place(page, 13, kValueColumn, dbdate);
  const char *free_lines[] = {line1, line2, line3, line4, line5, line6};
  constexpr int kFreeLineRows[] = {15, 17, 18, 19, 20, 21};
  for (int i = 0; i < 6; ++i) {
    place(page, kFreeLineRows[i], kTextColumn, free_lines[i]);
  }
  int32_t processed = nread != nullptr ? *nread : 0;
  int32_t verified = nmatched != nullptr ? *nmatched : 0;
  place(page, 27, kTextColumn, "Total Number of Records Processed: ");
  place_count(page, processed);
  place(page, 29, kTextColumn, "Processing Date: ");
  place(page, 29, kValueColumn, procdate);
  place(page, 31, kTextColumn, "Percent of verified addresses:");
  place_percentage(page, processed, verified);

  // A report file that cannot be created is no error: the page goes to
  // standard output instead and the close goes on.
  FILE *file = path != nullptr ? std::fopen(path, "w") : nullptr;
  if (file != nullptr) {
    write_page(page, file);
    std::fclose(file);
  } else {
    write_page(page, stdout);
    std::fflush(stdout);
  }
}
