// Uuencoded files one character at a time, as the file coders are
// described: the engine's group loops and vector kernels must give the
// same bytes.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace fe::reference {

inline char UuCharacter(uint32_t value) {
  const uint32_t v = value & 63;
  return v == 0 ? '`' : static_cast<char>(32 + v);
}

// The whole file UuencodeFile writes for `data` under `name`. The line
// buffer keeps what earlier lines left in it: a short last group takes its
// missing bytes from there.
inline std::string UuencodedFile(const std::vector<uint8_t>& data, const std::string& name) {
  std::string text = "begin 644 " + name + "\r\n";
  std::array<uint8_t, 48> chunk{};
  for (size_t at = 0; at < data.size(); at += 45) {
    const size_t n = std::min<size_t>(45, data.size() - at);
    std::copy(data.begin() + static_cast<std::ptrdiff_t>(at),
              data.begin() + static_cast<std::ptrdiff_t>(at + n), chunk.begin());
    text += UuCharacter(static_cast<uint32_t>(n));
    for (size_t group = 0; group < (n - 1) / 3 + 1; ++group) {
      const uint8_t* b = chunk.data() + 3 * group;
      text += UuCharacter(b[0] >> 2);
      text += UuCharacter(((b[0] & 3) << 4) | (b[1] >> 4));
      text += UuCharacter(((b[1] & 15) << 2) | (b[2] >> 6));
      text += UuCharacter(b[2] & 63);
    }
    text += "\r\n";
  }
  return text + "`\r\nend\r\n";
}

// The bytes the body lines (without their line ends) decode to, and how
// many of them reach the file when the block ends without its zero-length
// line: decoded bytes are handed on in blocks, whenever 1008 or more are
// waiting before the next group.
struct UudecodedBody {
  std::vector<uint8_t> bytes;
  size_t handedOn = 0;
};

inline UudecodedBody UudecodeBody(const std::vector<std::string>& lines) {
  UudecodedBody body;
  size_t waiting = 0;
  for (const std::string& line : lines) {
    int n = line.empty() ? 0 : (static_cast<uint8_t>(line[0]) - 32) & 63;
    const std::string characters = line.empty() ? "" : line.substr(1);
    for (size_t at = 0; n > 0; at += 4, n -= 3) {
      if (waiting >= 1008) {
        body.handedOn += waiting;
        waiting = 0;
      }
      uint32_t v[4];
      for (size_t k = 0; k < 4; ++k) {
        v[k] =
            at + k < characters.size() ? (static_cast<uint8_t>(characters[at + k]) - 32u) & 63 : 0;
      }
      const uint8_t group[3] = {static_cast<uint8_t>((v[0] << 2) | (v[1] >> 4)),
                                static_cast<uint8_t>((v[1] << 4) | (v[2] >> 2)),
                                static_cast<uint8_t>((v[2] << 6) | v[3])};
      const int take = n < 3 ? n : 3;
      body.bytes.insert(body.bytes.end(), group, group + take);
      waiting += static_cast<size_t>(take);
    }
  }
  return body;
}

}  // namespace fe::reference
