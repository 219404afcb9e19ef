#include "lib/csv_reader.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace orlo::tools {

namespace {
constexpr size_t kChunkBytes = 1u << 16;
}  // namespace

CsvReader::CsvReader(std::string_view text)
    : pos_(text.data()), end_(text.data() + text.size()) {}

CsvReader::CsvReader(std::FILE *file) : file_(file), chunk_(kChunkBytes) {}

bool CsvReader::refill() {
  if (file_ == nullptr) return false;
  size_t n = std::fread(chunk_.data(), 1, chunk_.size(), file_);
  if (n == 0) {
    // A read error ends the input like the end of file, but must not pass
    // for a clean end: remember it so next() can report it.
    if (std::ferror(file_) && error_.empty())
      error_ = std::string("read error: ") + std::strerror(errno);
    return false;
  }
  pos_ = chunk_.data();
  end_ = pos_ + n;
  return true;
}

CsvReader::Status CsvReader::fail(std::string message) {
  failed_ = true;
  error_ = std::move(message);
  return Status::kError;
}

bool CsvReader::append(std::string *field, char c) {
  if (++row_bytes_ > max_row_bytes_) return false;
  field->push_back(c);
  return true;
}

// Reads a quoted field after its opening quote, up to its closing quote.
bool CsvReader::read_quoted(std::string *field) {
  for (;;) {
    int c = get();
    if (c == kEof) return false;
    if (c == '"') {
      if (peek() != '"') return true;
      get();
    }
    if (!append(field, static_cast<char>(c))) return false;
  }
}

// After a closing quote only a comma or the end of the row may follow.
CsvReader::FieldEnd CsvReader::after_quoted() {
  int c = get();
  if (c == ',') return FieldEnd::kComma;
  if (c == '\n' || c == kEof) return FieldEnd::kRowEnd;
  if (c == '\r' && peek() == '\n') {
    get();
    return FieldEnd::kRowEnd;
  }
  return FieldEnd::kError;
}

CsvReader::FieldEnd CsvReader::read_unquoted(std::string *field) {
  for (;;) {
    int c = get();
    if (c == ',') return FieldEnd::kComma;
    if (c == '\n' || c == kEof) return FieldEnd::kRowEnd;
    if (c == '\r' && peek() == '\n') {
      get();
      return FieldEnd::kRowEnd;
    }
    if (c == '"') return FieldEnd::kError;
    if (!append(field, static_cast<char>(c))) return FieldEnd::kError;
  }
}

CsvReader::Status CsvReader::next(std::vector<std::string> *fields) {
  if (failed_) return Status::kError;
  fields->clear();
  row_line_ = line_;
  row_bytes_ = 0;
  if (peek() == kEof)
    return error_.empty() ? Status::kEnd : fail(std::move(error_));
  for (;;) {
    std::string field;
    FieldEnd end;
    if (peek() == '"') {
      get();
      if (!read_quoted(&field)) {
        if (row_bytes_ > max_row_bytes_) break;
        return fail("quoted field is not closed before the end of the file");
      }
      end = after_quoted();
      if (end == FieldEnd::kError)
        return fail("unexpected character after a closing quote");
    } else {
      end = read_unquoted(&field);
      if (end == FieldEnd::kError && row_bytes_ <= max_row_bytes_)
        return fail("quote inside an unquoted field");
    }
    if (end == FieldEnd::kError) break;
    fields->push_back(std::move(field));
    if (end == FieldEnd::kRowEnd)
      return error_.empty() ? Status::kRow : fail(std::move(error_));
  }
  return fail("row longer than " + std::to_string(max_row_bytes_) + " bytes");
}

}  // namespace orlo::tools
