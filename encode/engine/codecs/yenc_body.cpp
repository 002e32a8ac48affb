#include "codecs/yenc_body.h"

#include <array>

#include "codecs/yenc_kernels.h"

namespace fe::codecs {

namespace {

constexpr auto kCritical = [] {
  std::array<bool, 256> table{};
  for (int c = 0; c < 256; ++c)
    table[c] = IsYencCritical(static_cast<uint8_t>(c));
  return table;
}();

// The characters a data line's decoder takes as they stand: all but the
// terminator, the line ends and the escape.
constexpr auto kPlainInLine = [] {
  std::array<bool, 256> table{};
  table.fill(true);
  table[0] = table['\r'] = table['\n'] = table['='] = false;
  return table;
}();

}  // namespace

size_t EncodeYencBody(const uint8_t* in, size_t length, char* out, size_t* lineUsed) {
  size_t taken = 0, written = 0;
  if (const YencKernels* kernels = ChosenYencKernels())
    taken = kernels->encodeBlocks(in, length, out, lineUsed, &written);
  size_t used = *lineUsed;
  for (size_t i = taken; i < length; ++i) {
    // Both characters of an escape are stored every time; a plain
    // character takes one place and the next one overwrites the second.
    const auto c = static_cast<uint8_t>(in[i] + 42);
    const bool escaped = kCritical[c];
    out[written] = escaped ? '=' : static_cast<char>(c);
    out[written + 1] = static_cast<char>(c + 64);
    const size_t step = escaped ? 2 : 1;
    written += step;
    used += step;
    if (used >= kYencLineLength) {
      out[written++] = '\r';
      out[written++] = '\n';
      used = 0;
    }
  }
  *lineUsed = used;
  return written;
}

bool DecodeYencLine(const char* line, size_t length, uint8_t* out, size_t* written) {
  const auto* text = reinterpret_cast<const uint8_t*>(line);
  size_t at = 0, made = 0;
  if (const YencKernels* kernels = ChosenYencKernels())
    at = kernels->decodeLine(text, length, out, &made);
  for (; at < length && text[at] != 0; ++at) {
    const uint8_t c = text[at];
    if (kPlainInLine[c]) {
      out[made++] = static_cast<uint8_t>(c - 42);
      continue;
    }
    if (c == '\r' || c == '\n') continue;
    // The escape: the next character less 64, which must be on the line.
    const uint8_t next = at + 1 < length ? text[at + 1] : 0;
    if (next == 0 || next == '\r' || next == '\n') return false;
    out[made++] = static_cast<uint8_t>(next - 64 - 42);
    ++at;
  }
  *written = made;
  return true;
}

}  // namespace fe::codecs
