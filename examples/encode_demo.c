/* Encodes a sample text in all ten data encodings with the engine's C
 * interface, decodes each result again and prints both. */
#include <stdio.h>
#include <string.h>

#include "file_encoder.h"

static const char* const kNames[] = {"Default", "Base64", "Quoted-printable", "URL",    "UTF-7",
                                     "UTF-8",   "Base58", "Base32",           "Base85", "Z85"};

int main(void) {
  const char* sample = "Hello, World! 1+1=2 ~ caf\xc3\xa9";
  /* UTF-7 and UTF-8 encode UTF-16 text: convert the sample once. */
  uint16_t wide[64];
  int32_t wideLength = DecodeBuffer(sample, wide, 64, dataDecodeUTF8) - 1;
  int failures = 0;

  printf("Sample: %s\n\n", sample);
  for (uint32_t encoding = dataEncodeDefault; encoding <= dataEncodeZ85; ++encoding) {
    char text[256];
    const int unicode = encoding == dataEncodeUTF7 || encoding == dataEncodeUTF8;
    /* Z85 takes whole 4-byte groups: pad the sample with spaces. */
    char padded[64];
    int32_t length = (int32_t)strlen(sample);
    memcpy(padded, sample, (size_t)length);
    while (encoding == dataEncodeZ85 && length % 4 != 0)
      padded[length++] = ' ';

    const int32_t n = unicode ? EncodeBuffer(wide, wideLength, text, sizeof text, encoding)
                              : EncodeBuffer(padded, length, text, sizeof text, encoding);
    if (n < 0) {
      char message[128];
      FormatErrorMessage(EngineGetLastError(), message, sizeof message);
      printf("%-17s failed: %s\n", kNames[encoding], message);
      ++failures;
      continue;
    }
    uint8_t back[256];
    int32_t m = DecodeBuffer(text, back, unicode ? 128 : (int32_t)sizeof back, encoding);
    if (unicode && m > 0) { /* back to UTF-8 for printing, without the counted NUL */
      m = EncodeBuffer(back, m - 1, (char*)back + 128, 128, dataEncodeUTF8);
      memmove(back, back + 128, (size_t)(m > 0 ? m : 0));
    }
    const int same = m == (unicode ? (int32_t)strlen(sample) : length) &&
                     memcmp(back, unicode ? sample : padded, (size_t)m) == 0;
    printf("%-17s %s\n%-17s %s\n", kNames[encoding], text, same ? "  decodes back" : "  MISMATCH",
           same ? "ok" : "");
    failures += !same;
  }
  return failures == 0 ? 0 : 1;
}
