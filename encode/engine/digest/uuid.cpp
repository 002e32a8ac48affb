// Version 7 (time-ordered) and version 8 (custom) UUID records, and their
// text form.
#include <cstdio>
#include <cstring>

#include "crypt/wipe.h"
#include "errors/last_error.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace {

// 1970-01-01 in 100-nanosecond units since 1601-01-01.
constexpr int64_t kUnixEpoch = 116444736000000000;

template <size_t N>
bool Draw(EncoderUuid* record, uint8_t (&random)[N]) {
  if (record == nullptr) {
    fe::SetLastError(fe::ControlError(ovErrorInvalidParameter));
    return false;
  }
  std::memset(record, 0, sizeof *record);
  if (!fe::platform::RandomBytes(random, N)) {
    fe::SetLastError(fe::ControlError(ovErrorInternalFailure));
    return false;
  }
  return true;
}

}  // namespace

extern "C" {

int CreateUuid7Record(EncoderUuid* record) {
  uint8_t r[10];
  if (!Draw(record, r)) return 0;
  // The clock is read after the random bytes are drawn.
  const auto milliseconds =
      static_cast<uint64_t>((fe::platform::SystemTimeAsFileTime() - kUnixEpoch) / 10000);
  record->first = static_cast<uint32_t>(milliseconds >> 16);
  record->second = static_cast<uint16_t>(milliseconds & 0xFFFF);
  // Only the high nibble of r0 follows the version: the third group always
  // reads 700x, and r6 and r7 are drawn but unused. Identifiers handed out
  // by earlier versions have this layout, so it stays.
  record->third = static_cast<uint16_t>(0x7000 | (r[0] >> 4));
  record->last[0] = static_cast<uint8_t>(0x80 | (r[0] & 0x3F));
  std::memcpy(record->last + 1, r + 1, 5);
  record->last[6] = r[8];
  record->last[7] = r[9];
  fe::crypt::Wipe(r, sizeof r);
  return 1;
}

int CreateUuid8Record(EncoderUuid* record, int32_t customValue) {
  uint8_t r[16];
  if (!Draw(record, r)) return 0;
  const auto custom = static_cast<uint32_t>(customValue);
  record->first =
      custom != 0
          ? custom
          : (uint32_t{r[0]} << 24 | uint32_t{r[1]} << 16 | uint32_t{r[2]} << 8 | uint32_t{r[3]});
  record->second = static_cast<uint16_t>(r[4] * 256 + r[5]);
  record->third = static_cast<uint16_t>(0x8000 | ((r[6] * 256 + r[7]) & 0x0FFF));
  record->last[0] = static_cast<uint8_t>(0x80 | (r[8] & 0x3F));
  std::memcpy(record->last + 1, r + 9, 7);
  fe::crypt::Wipe(r, sizeof r);
  return 1;
}

int32_t FormatUuid(const EncoderUuid* record, char* output) {
  if (output == nullptr) {
    fe::SetLastError(fe::ControlError(ovErrorInvalidParameter));
    return 0;
  }
  const EncoderUuid zero = {};
  const EncoderUuid& r = record != nullptr ? *record : zero;
  std::snprintf(output, 37, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                static_cast<unsigned>(r.first), static_cast<unsigned>(r.second),
                static_cast<unsigned>(r.third), r.last[0], r.last[1], r.last[2], r.last[3],
                r.last[4], r.last[5], r.last[6], r.last[7]);
  return 36;
}

}  // extern "C"
