#include "normalise/text_tidy.h"

#include <utf8proc.h>

#include <cstdio>
#include <vector>

#include "orlo_normalise.h"

namespace orlo::norm {
namespace {

using CodePoints = std::vector<utf8proc_int32_t>;

// Compatibility decomposition (full-width and other presentation forms to
// their plain letters and digits), typographic quotes, dashes and spaces
// lumped into ASCII, invisible format characters (a byte-order mark among
// them) dropped, then composed
// again so that a letter and its accent become one Latin-1 letter.
constexpr auto kUnicodeForm = static_cast<utf8proc_option_t>(
    UTF8PROC_COMPOSE | UTF8PROC_COMPAT | UTF8PROC_LUMP | UTF8PROC_IGNORE |
    UTF8PROC_STABLE);

// Decodes valid UTF-8 into *cps; anything else is Latin-1, one byte a
// character.
void decode(std::string_view text, CodePoints *cps) {
  const auto *p = reinterpret_cast<const utf8proc_uint8_t *>(text.data());
  auto left = static_cast<utf8proc_ssize_t>(text.size());
  cps->clear();
  while (left > 0) {
    utf8proc_int32_t cp;
    utf8proc_ssize_t n = utf8proc_iterate(p, left, &cp);
    if (n <= 0) {
      cps->clear();
      for (char c : text) cps->push_back(static_cast<unsigned char>(c));
      return;
    }
    cps->push_back(cp);
    p += n;
    left -= n;
  }
}

bool line_space(utf8proc_int32_t cp) {
  return cp == '\t' || cp == '\n' || cp == '\v' || cp == '\f' || cp == '\r' ||
         cp == 0x85 || cp == 0x2028 || cp == 0x2029;
}

bool control(utf8proc_int32_t cp) {
  return cp < 0x20 || (cp >= 0x7F && cp <= 0x9F);
}

// The UTF-8 bytes of one code point, NUL-terminated, in buf.
void utf8_of(utf8proc_int32_t cp, char (&buf)[5]) {
  utf8proc_ssize_t n =
      utf8proc_encode_char(cp, reinterpret_cast<utf8proc_uint8_t *>(buf));
  buf[n < 0 ? 0 : n] = '\0';
}

// Blanks for line breaks and tabs; other control characters are refused,
// with their place in the text as given.
int32_t check_controls(CodePoints *cps, std::string *reason) {
  for (size_t i = 0; i < cps->size(); ++i) {
    utf8proc_int32_t &cp = (*cps)[i];
    if (line_space(cp)) {
      cp = ' ';
    } else if (control(cp)) {
      char buf[64];
      std::snprintf(buf, sizeof buf,
                    "control character U+%04X at character %zu",
                    static_cast<unsigned>(cp), i + 1);
      reason->assign(buf);
      return ORLO_NORM_CONTROL;
    }
  }
  return ORLO_NORM_OK;
}

// Applies kUnicodeForm through the library's own tables, into the
// scratch's formed code points (or leaves cps as they are when they cannot
// be formed, which valid code points never are).
const CodePoints &unicode_form(const CodePoints &cps, TidyScratch *s) {
  s->utf8.clear();
  for (utf8proc_int32_t cp : cps) {
    char buf[5];
    utf8_of(cp, buf);
    s->utf8.append(buf);
  }
  const auto *p = reinterpret_cast<const utf8proc_uint8_t *>(s->utf8.data());
  auto len = static_cast<utf8proc_ssize_t>(s->utf8.size());
  CodePoints &out = s->formed;
  out.resize(s->utf8.size() + 1);
  utf8proc_ssize_t n;
  // A decomposition can be longer than its text; the call says how long.
  while ((n = utf8proc_decompose(
              p, len, out.data(), static_cast<utf8proc_ssize_t>(out.size()),
              kUnicodeForm)) > static_cast<utf8proc_ssize_t>(out.size()))
    out.resize(static_cast<size_t>(n));
  if (n < 0) return cps;
  n = utf8proc_normalize_utf32(out.data(), n, kUnicodeForm);
  out.resize(n < 0 ? 0 : static_cast<size_t>(n));
  return out;
}

// A character outside Latin-1 written as the Latin-1 letter it is without
// its accents ("Ā" as "A"); -1 when it has no such form, 0 for an
// accent standing alone (dropped).
utf8proc_int32_t latin1_form(utf8proc_int32_t cp) {
  utf8proc_int32_t parts[8];
  int boundclass = UTF8PROC_BOUNDCLASS_START;
  utf8proc_ssize_t n = utf8proc_decompose_char(
      cp, parts, 8,
      static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_STRIPMARK),
      &boundclass);
  if (n == 0) return 0;
  if (n == 1 && parts[0] <= 0xFF && !control(parts[0])) return parts[0];
  return -1;
}

int32_t not_latin1(utf8proc_int32_t cp, std::string *reason) {
  char ch[5];
  utf8_of(cp, ch);
  char buf[96];
  std::snprintf(buf, sizeof buf,
                "'%s' (U+%04X) has no Latin-1 form; write the address in "
                "English",
                ch, static_cast<unsigned>(cp));
  reason->assign(buf);
  return ORLO_NORM_NOT_LATIN1;
}

// Printable ASCII, tabs and line ends: text on which the Unicode steps
// change nothing (no ASCII character has a compatibility form, a lumped
// form or an accent), so that tidying is folding and blank collapsing.
bool plain_ascii(std::string_view text) {
  for (char ch : text) {
    auto c = static_cast<unsigned char>(ch);
    if (c >= 0x7F || (c < 0x20 && !line_space(c))) return false;
  }
  return true;
}

void tidy_ascii(std::string_view text, std::string *out) {
  out->resize(text.size());  // the tidied text is never longer
  size_t n = 0;
  bool blank_due = false;
  for (char ch : text) {
    auto c = static_cast<unsigned char>(ch);
    if (c == ' ' || line_space(c)) {
      blank_due = n > 0;
      continue;
    }
    if (blank_due) (*out)[n++] = ' ';
    blank_due = false;
    (*out)[n++] = static_cast<char>(upper_latin1(c));
  }
  out->resize(n);
}

}  // namespace

int32_t tidy_text(std::string_view text, std::string *out, std::string *reason,
                  TidyScratch *scratch) {
  out->clear();
  if (plain_ascii(text)) {
    tidy_ascii(text, out);
    return ORLO_NORM_OK;
  }
  CodePoints &cps = scratch->code_points;
  decode(text, &cps);
  if (int32_t st = check_controls(&cps, reason); st != ORLO_NORM_OK) return st;
  bool blank_due = false;
  for (utf8proc_int32_t cp : unicode_form(cps, scratch)) {
    if (cp > 0xFF) {
      utf8proc_int32_t plain = latin1_form(cp);
      if (plain < 0) return not_latin1(cp, reason);
      if (plain == 0) continue;
      cp = plain;
    }
    if (cp == ' ') {
      blank_due = !out->empty();
      continue;
    }
    if (blank_due) out->push_back(' ');
    blank_due = false;
    out->push_back(static_cast<char>(upper_latin1(static_cast<uint8_t>(cp))));
  }
  return ORLO_NORM_OK;
}

}  // namespace orlo::norm
