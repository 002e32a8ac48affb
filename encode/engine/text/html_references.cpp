// The reference tables of the HTML filter. Names compare without regard to
// case and the first match wins, so a capitalised name ("Prime", "Omega")
// yields its lowercase twin listed before it; pages written for earlier
// versions show that result, so the order is kept as it stands.
#include "text/html_references.h"

#include <cstdint>
#include <iterator>

#include "text/ascii.h"
#include "text/code_points.h"

namespace fe::text {

namespace {

struct Reference {
  std::string_view name;
  std::string_view bytes;
};

// Plain ASCII stand-ins; the spaces (nbsp, ensp, emsp, thinsp) and the soft
// hyphen all become one ordinary blank.
constexpr Reference kCommon[] = {
    {"amp", "&"},    {"apos", "'"},   {"ast", "*"},    {"brvbar", "|"}, {"bsol", "\\"},
    {"circ", "^"},   {"colon", ":"},  {"comma", ","},  {"commat", "@"}, {"dollar", "$"},
    {"ensp", " "},   {"emsp", " "},   {"equals", "="}, {"excl", "!"},   {"grave", "`"},
    {"gt", ">"},     {"hyphen", "-"}, {"lcub", "{"},   {"lowbar", "_"}, {"lparen", "("},
    {"lsqb", "["},   {"lt", "<"},     {"nbsp", " "},   {"num", "#"},    {"percnt", "%"},
    {"period", "."}, {"plus", "+"},   {"quest", "?"},  {"quot", "\""},  {"rcub", "}"},
    {"rparen", ")"}, {"rsqb", "]"},   {"semi", ";"},   {"shy", " "},    {"sol", "/"},
    {"thinsp", " "}, {"tilde", "~"},  {"vert", "|"},   {"verbar", "|"},
};
static_assert(std::size(kCommon) == 39);

// Named characters as their UTF-8 bytes. "ohm" is the ohm sign U+2126.
constexpr Reference kUtf8[] = {
    {"bull", "\u2022"},    {"cent", "\u00A2"},    {"copy", "\u00A9"},     {"deg", "\u00B0"},
    {"divide", "\u00F7"},  {"euro", "\u20AC"},    {"hellip", "\u2026"},   {"laquo", "\u00AB"},
    {"ldquo", "\u201C"},   {"lsquo", "\u2018"},   {"mdash", "\u2014"},    {"ndash", "\u2013"},
    {"para", "\u00B6"},    {"plusmn", "\u00B1"},  {"pound", "\u00A3"},    {"prime", "\u2032"},
    {"Prime", "\u2033"},   {"raquo", "\u00BB"},   {"rdquo", "\u201D"},    {"reg", "\u00AE"},
    {"rsquo", "\u2019"},   {"sect", "\u00A7"},    {"sup1", "\u00B9"},     {"sup2", "\u00B2"},
    {"sup3", "\u00B3"},    {"times", "\u00D7"},   {"trade", "\u2122"},    {"yen", "\u00A5"},
    {"alpha", "\u03B1"},   {"beta", "\u03B2"},    {"chi", "\u03C7"},      {"delta", "\u03B4"},
    {"epsilon", "\u03B5"}, {"eta", "\u03B7"},     {"gamma", "\u03B3"},    {"iota", "\u03B9"},
    {"kappa", "\u03BA"},   {"lambda", "\u03BB"},  {"mu", "\u03BC"},       {"nu", "\u03BD"},
    {"omega", "\u03C9"},   {"omicron", "\u03BF"}, {"phi", "\u03C6"},      {"pi", "\u03C0"},
    {"psi", "\u03C8"},     {"rho", "\u03C1"},     {"sigma", "\u03C3"},    {"sigmaf", "\u03C2"},
    {"tau", "\u03C4"},     {"theta", "\u03B8"},   {"upsilon", "\u03C5"},  {"xi", "\u03BE"},
    {"zeta", "\u03B6"},    {"Alpha", "\u0391"},   {"Beta", "\u0392"},     {"Delta", "\u0394"},
    {"Gamma", "\u0393"},   {"Lambda", "\u039B"},  {"Omega", "\u03A9"},    {"Pi", "\u03A0"},
    {"Sigma", "\u03A3"},   {"Theta", "\u0398"},   {"approx", "\u2248"},   {"equiv", "\u2261"},
    {"exist", "\u2203"},   {"forall", "\u2200"},  {"ge", "\u2265"},       {"infin", "\u221E"},
    {"int", "\u222B"},     {"le", "\u2264"},      {"minus", "\u2212"},    {"ne", "\u2260"},
    {"part", "\u2202"},    {"prod", "\u220F"},    {"radic", "\u221A"},    {"sum", "\u2211"},
    {"there4", "\u2234"},  {"larr", "\u2190"},    {"uarr", "\u2191"},     {"rarr", "\u2192"},
    {"darr", "\u2193"},    {"harr", "\u2194"},    {"lArr", "\u21D0"},     {"uArr", "\u21D1"},
    {"rArr", "\u21D2"},    {"dArr", "\u21D3"},    {"hArr", "\u21D4"},     {"bdquo", "\u201E"},
    {"dagger", "\u2020"},  {"Dagger", "\u2021"},  {"lsaquo", "\u2039"},   {"middot", "\u00B7"},
    {"permil", "\u2030"},  {"rsaquo", "\u203A"},  {"sbquo", "\u201A"},    {"frac12", "\u00BD"},
    {"frac14", "\u00BC"},  {"frac34", "\u00BE"},  {"curren", "\u00A4"},   {"micro", "\u00B5"},
    {"ohm", "\u2126"},     {"piv", "\u03D6"},     {"thetasym", "\u03D1"}, {"upsih", "\u03D2"},
};
static_assert(std::size(kUtf8) == 104);

template <size_t N>
std::string_view Lookup(const Reference (&table)[N], std::string_view name) {
  for (const Reference& entry : table) {
    if (EqualIgnoringCase(entry.name, name)) return entry.bytes;
  }
  return {};
}

// "#65", "#x41": the digits as far as they go; saturates so that a long run
// of digits stays refused instead of wrapping into range.
uint32_t NumericValue(std::string_view digits) {
  uint32_t base = 10;
  if (!digits.empty() && (digits[0] == 'x' || digits[0] == 'X')) {
    base = 16;
    digits.remove_prefix(1);
  }
  uint32_t value = 0;
  for (char c : digits) {
    const int digit = DigitValue(c);
    if (digit < 0 || static_cast<uint32_t>(digit) >= base) break;
    value = value * base + static_cast<uint32_t>(digit);
    if (value > 0x10FFFF) return 0x110000;
  }
  return value;
}

}  // namespace

bool DecodeHtmlReference(std::string_view reference, std::string* bytes) {
  bytes->clear();
  if (!reference.empty() && reference[0] == '#') {
    const uint32_t value = NumericValue(reference.substr(1));
    if (value == 0 || (value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF) return false;
    // Tab, line feed, vertical tab, form feed and carriage return read as
    // one blank; the other control characters are refused.
    if (value >= 9 && value <= 13) {
      bytes->assign(1, ' ');
    } else if (value < 32) {
      return false;
    } else {
      AppendCodePoint(*bytes, value);
    }
    return true;
  }
  std::string_view found = Lookup(kCommon, reference);
  if (found.empty()) found = Lookup(kUtf8, reference);
  bytes->assign(found.data(), found.size());
  return !found.empty();
}

}  // namespace fe::text
