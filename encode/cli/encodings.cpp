#include "encodings.h"

#include <algorithm>
#include <cctype>

#include "failure.h"
#include "file_encoder.h"

namespace fe::cli {

namespace {

const Encoding kEncodings[] = {
    {"base64", dataEncodeBase64, -1, true, false},
    {"quoted-printable", dataEncodeQuoted, fileEncodeQuoted, true, false},
    {"url", dataEncodeURL, -1, false, false},
    {"utf7", dataEncodeUTF7, -1, false, true},
    {"utf8", dataEncodeUTF8, -1, false, true},
    {"base58", dataEncodeBase58, fileEncodeBase58, false, false},
    {"base32", dataEncodeBase32, fileEncodeBase32, true, false},
    {"base85", dataEncodeBase85, fileEncodeBase85, false, false},
    {"z85", dataEncodeZ85, -1, false, false},
    {"uuencode", -1, fileEncodeUucode, false, false},
    {"yenc", -1, fileEncodeYencode, false, false},
};

struct Alias {
  const char* alias;
  const char* name;
};
const Alias kAliases[] = {
    {"qp", "quoted-printable"}, {"uu", "uuencode"}, {"utf-7", "utf7"}, {"utf-8", "utf8"}};

// A line break of `width` characters per line, CR LF each, and one at the end.
int64_t LineBreaks(int64_t characters, int64_t width) {
  return 2 * (characters / width + 2);
}

constexpr int64_t kSlack = 16;

}  // namespace

const Encoding& FindEncoding(const std::string& given) {
  std::string name = given;
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const Alias& alias : kAliases) {
    if (name == alias.alias) name = alias.name;
  }
  for (const Encoding& encoding : kEncodings) {
    if (name == encoding.name) return encoding;
  }
  FailUsage("unknown encoding \"" + given + "\"");
}

std::vector<std::string> EncodingNames() {
  std::vector<std::string> names;
  for (const Encoding& encoding : kEncodings)
    names.emplace_back(encoding.name);
  for (const Alias& alias : kAliases)
    names.emplace_back(alias.alias);
  return names;
}

int64_t EncodedSizeBound(const Encoding& encoding, int64_t n, bool wrap) {
  int64_t characters = 0;
  switch (encoding.data) {
    case dataEncodeBase64:
      characters = 4 * ((n + 2) / 3);
      return characters + (wrap ? LineBreaks(characters, 72) : 0) + kSlack;
    case dataEncodeBase32:
      characters = 8 * ((n + 4) / 5);
      return characters + (wrap ? LineBreaks(characters, 72) : 0) + kSlack;
    case dataEncodeQuoted:
      // Soft breaks "=" CR LF end lines of at most 76 characters.
      return 3 * n + (wrap ? 3 * (3 * n / 64 + 2) : 0) + kSlack;
    case dataEncodeURL:
      return 3 * n + kSlack;
    case dataEncodeUTF7:
      return 5 * n + kSlack;  // "+", three characters and "-" around one unit
    case dataEncodeUTF8:
      return 3 * n + kSlack;
    case dataEncodeBase58:
      return 138 * n / 100 + kSlack;
    default:  // Base85 and Z85: five characters for each four bytes
      return 5 * ((n + 3) / 4) + kSlack;
  }
}

int64_t DecodedSizeBound(const Encoding& encoding, int64_t length) {
  switch (encoding.data) {
    case dataDecodeBase64:
      return 3 * length / 4 + kSlack;
    case dataDecodeBase32:
      return 5 * length / 8 + kSlack;
    case dataDecodeUTF7:
    case dataDecodeUTF8:
      return 2 * (length + 1) + kSlack;  // UTF-16 units, the terminator's included
    case dataDecodeBase85:
      return 4 * length + kSlack;  // "z" stands for four zero bytes
    case dataDecodeZ85:
      return 4 * length / 5 + kSlack;
    default:  // quoted-printable, URL, Base58: never more bytes than characters
      return length + kSlack;
  }
}

}  // namespace fe::cli
