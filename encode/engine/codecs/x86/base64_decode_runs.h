// The loop both Base64 decoding kernels run around their clean-group
// steps: after a run of groups it passes over the characters the decoder
// skips between groups (the line breaks of wrapped text) and goes on, so
// that wrapped text stays inside the kernel. Which characters those are is
// the caller's table, so the rule has one home.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace fe::codecs::x86 {

template <typename CleanGroups>
size_t DecodeRuns(const uint8_t* text, size_t length, size_t maxGroups, const bool* passedOver,
                  uint8_t* out, size_t* groups, CleanGroups cleanGroups) {
  const uint8_t* at = text;
  const uint8_t* const end = text + length;
  size_t done = 0;
  for (;;) {
    const size_t room = std::min(maxGroups - done, static_cast<size_t>(end - at) / 4);
    const size_t run = cleanGroups(at, room, out + 3 * done);
    at += 4 * run;
    done += run;
    if (at == end || !passedOver[*at]) break;
    while (at < end && passedOver[*at])
      ++at;
  }
  *groups = done;
  return static_cast<size_t>(at - text);
}

}  // namespace fe::codecs::x86
