// Big-endian numbers, the byte order of every number in the reference files.
#ifndef ORLO_COMMON_BYTE_ORDER_H
#define ORLO_COMMON_BYTE_ORDER_H

#include <cstdint>
#include <string>

namespace orlo {

// The 16- and 32-bit unsigned numbers stored big-endian at p.
inline uint16_t load_be16(const unsigned char *p) {
  return static_cast<uint16_t>(p[0] << 8 | p[1]);
}
inline uint32_t load_be32(const unsigned char *p) {
  return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 |
         uint32_t{p[3]};
}

// Appends the low 16 bits, or all 32 bits, of v big-endian.
inline void append_be16(std::string *out, uint32_t v) {
  out->push_back(static_cast<char>(v >> 8 & 0xFF));
  out->push_back(static_cast<char>(v & 0xFF));
}
inline void append_be32(std::string *out, uint32_t v) {
  append_be16(out, v >> 16);
  append_be16(out, v & 0xFFFF);
}

}  // namespace orlo

#endif  // ORLO_COMMON_BYTE_ORDER_H
