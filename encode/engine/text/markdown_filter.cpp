// FilterMarkdownText / FilterMarkdownWide: Markdown to plain text in one
// pass, with LF line ends. The quirks commented below are what texts
// filtered by earlier versions show, and are kept for them.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "text/ascii.h"
#include "text/wide_front_end.h"

namespace fe::text {

namespace {

constexpr bool IsBlankOrTab(char c) {
  return c == ' ' || c == '\t';
}
constexpr bool IsLineEnd(char c) {
  return c == '\r' || c == '\n';
}

class MarkdownFilter {
 public:
  MarkdownFilter(const char* input, size_t length, char* output, int32_t capacity)
      : at_(input), begin_(input), end_(input + length), out_(output), capacity_(capacity) {}

  int64_t Run();

 private:
  // Output primitives. The length counts every byte produced, also those
  // that did not fit, so that a size query needs no buffer.
  void Put(char c) {
    if (length_ < static_cast<int64_t>(capacity_) - 1) out_[length_] = c;
    ++length_;
  }
  void Visible(char c) {
    Put(c);
    pendingBlanks_ = 0;
    hasText_ = true;
    atLineStart_ = false;
  }
  void Blank() {
    if (hasText_ && pendingBlanks_ < 2) {
      Put(' ');
      ++pendingBlanks_;
    }
  }
  void Copy(char c) {
    if (IsSpace(static_cast<uint8_t>(c))) {
      Blank();
    } else {
      Visible(c);
    }
  }
  void Newline() {
    length_ -= pendingBlanks_;
    pendingBlanks_ = 0;
    Put('\n');
    atLineStart_ = true;
  }

  const char* LineEndFrom(const char* p) const {
    while (p < end_ && !IsLineEnd(*p))
      ++p;
    return p;
  }
  const char* NextLine(const char* p) const {
    p = LineEndFrom(p);
    if (p < end_ && *p == '\r') ++p;
    if (p < end_ && *p == '\n') ++p;
    return p;
  }

  void Step();
  void LineEnds();
  void Backticks();
  bool Fence();
  bool LineStart();
  bool Heading();
  bool Quote();
  bool ThematicBreak();
  bool ListItem();
  bool Table();
  void TableRow(const char* from, const char* to);
  bool Link();
  bool Angle();
  void Emphasis();

  const char* at_;
  const char* begin_;
  const char* end_;
  char* out_;
  int32_t capacity_;
  int64_t length_ = 0;

  bool hasText_ = false;
  int pendingBlanks_ = 0;
  bool atLineStart_ = true;
  bool fenced_ = false;
  char fence_ = 0;
  bool inlineCode_ = false;
  // Set once a search for a closing "]" or ">" found none: none can follow.
  bool noCloseBracket_ = false;
  bool noCloseAngle_ = false;
};

int64_t MarkdownFilter::Run() {
  while (at_ < end_)
    Step();
  length_ -= pendingBlanks_;
  if (out_ != nullptr && capacity_ > 0) {
    out_[std::min<int64_t>(length_, capacity_ - 1)] = 0;
  }
  return length_;
}

// Applies the first rule that fits the input at the cursor.
void MarkdownFilter::Step() {
  const char c = *at_;
  if (IsLineEnd(c)) return LineEnds();
  if (Fence()) return;
  if (c == '`') return Backticks();
  if (inlineCode_) {
    Copy(c);
    ++at_;
    return;
  }
  if (atLineStart_ && LineStart()) return;
  if ((c == '[' || (c == '!' && at_ + 1 < end_ && at_[1] == '[')) && Link()) return;
  if (c == '<' && Angle()) return;
  if (c == '\\' && at_ + 1 < end_) {
    Copy(at_[1]);
    at_ += 2;
    return;
  }
  if (c == '*' || c == '_' || c == '~') return Emphasis();
  Copy(c);
  atLineStart_ = false;
  ++at_;
}

// A single backtick toggles inline code; a longer run is dropped alone.
void MarkdownFilter::Backticks() {
  const char* run = at_;
  while (at_ < end_ && *at_ == '`')
    ++at_;
  if (at_ - run == 1) inlineCode_ = !inlineCode_;
}

// A run of line ends keeps at most one empty line.
void MarkdownFilter::LineEnds() {
  int count = 0;
  while (at_ < end_ && IsLineEnd(*at_)) {
    if (*at_ == '\r' && at_ + 1 < end_ && at_[1] == '\n') ++at_;
    ++at_;
    ++count;
  }
  for (int i = 0; i < std::min(count, 2); ++i)
    Newline();
}

// Fenced code: opened by three backticks or tildes at a line start, closed
// by the same three anywhere; the info string and the rest of the closing
// line are dropped, everything between is copied.
bool MarkdownFilter::Fence() {
  const auto threeOf = [&](char f) {
    return end_ - at_ >= 3 && at_[0] == f && at_[1] == f && at_[2] == f;
  };
  if (!fenced_) {
    if (!atLineStart_ || !(threeOf('`') || threeOf('~'))) return false;
    fenced_ = true;
    fence_ = *at_;
    at_ = LineEndFrom(at_);
    return true;
  }
  if (threeOf(fence_)) {
    fenced_ = false;
    at_ = LineEndFrom(at_);
  } else {
    Copy(*at_++);
  }
  return true;
}

bool MarkdownFilter::LineStart() {
  return Heading() || Quote() || ThematicBreak() || ListItem() || Table();
}

bool MarkdownFilter::Heading() {
  const char* p = at_;
  while (p < end_ && *p == '#')
    ++p;
  if (p == at_ || p == end_ || !IsBlankOrTab(*p)) return false;
  while (p < end_ && IsBlankOrTab(*p))
    ++p;
  at_ = p;
  atLineStart_ = false;
  return true;
}

// Quote markers go; the line start stays, so a quoted heading or list item
// is still recognised.
bool MarkdownFilter::Quote() {
  const char* p = at_;
  bool marker = false;
  while (p < end_) {
    if (*p == ' ') {
      ++p;
    } else if (*p == '>') {
      marker = true;
      ++p;
      if (p < end_ && *p == ' ') ++p;
    } else {
      break;
    }
  }
  if (!marker) return false;
  at_ = p;
  return true;
}

bool MarkdownFilter::ThematicBreak() {
  const char* lineEnd = LineEndFrom(at_);
  char mark = 0;
  int count = 0;
  for (const char* p = at_; p < lineEnd; ++p) {
    if (IsBlankOrTab(*p)) continue;
    if (mark == 0 && (*p == '*' || *p == '-' || *p == '_')) mark = *p;
    if (*p != mark) return false;
    ++count;
  }
  if (count < 3) return false;
  at_ = lineEnd;
  return true;
}

// A bullet needs no blank after it, so a line that begins with an emphasis
// star or a minus sign becomes a list item too.
bool MarkdownFilter::ListItem() {
  const char* p = at_;
  for (int i = 0; i < 3 && p < end_ && *p == ' '; ++i)
    ++p;
  if (p == end_) return false;
  if (*p == '*' || *p == '+' || *p == '-') {
    ++p;
    Visible('-');
  } else if (IsDigit(static_cast<uint8_t>(*p))) {
    const char* digits = p;
    while (p < end_ && IsDigit(static_cast<uint8_t>(*p)))
      ++p;
    if (p == end_ || (*p != '.' && *p != ')')) return false;
    for (const char* d = digits; d < p; ++d)
      Visible(*d);
    Visible('.');
    ++p;
  } else {
    return false;
  }
  Blank();
  if (p < end_ && IsBlankOrTab(*p)) ++p;
  while (p < end_ && *p == ' ')
    ++p;
  at_ = p;
  return true;
}

bool HasUnescapedPipe(std::string_view line) {
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '\\') {
      ++i;
    } else if (line[i] == '|') {
      return true;
    }
  }
  return false;
}

// "| :--- | ---: |": cells of an optional colon, hyphens and an optional
// colon, with a pipe somewhere.
bool IsDelimiterLine(std::string_view line) {
  line = TrimSpace(line);
  if (line.find('|') == std::string_view::npos) return false;
  if (!line.empty() && line.front() == '|') line.remove_prefix(1);
  if (!line.empty() && line.back() == '|') line.remove_suffix(1);
  while (true) {
    const size_t pipe = line.find('|');
    std::string_view cell = TrimSpace(line.substr(0, pipe));
    if (!cell.empty() && cell.front() == ':') cell.remove_prefix(1);
    if (!cell.empty() && cell.back() == ':') cell.remove_suffix(1);
    if (cell.empty() || cell.find_first_not_of('-') != std::string_view::npos) return false;
    if (pipe == std::string_view::npos) return true;
    line.remove_prefix(pipe + 1);
  }
}

bool MarkdownFilter::Table() {
  const char* lineEnd = LineEndFrom(at_);
  if (!HasUnescapedPipe(std::string_view(at_, lineEnd - at_))) return false;
  const char* delimiter = NextLine(at_);
  if (delimiter == at_ || delimiter == end_) return false;
  const char* delimiterEnd = LineEndFrom(delimiter);
  if (!IsDelimiterLine(std::string_view(delimiter, delimiterEnd - delimiter))) return false;
  TableRow(at_, lineEnd);
  at_ = NextLine(delimiter);
  while (at_ < end_) {
    lineEnd = LineEndFrom(at_);
    if (lineEnd == at_ || !HasUnescapedPipe(std::string_view(at_, lineEnd - at_))) break;
    TableRow(at_, lineEnd);
    at_ = NextLine(at_);
  }
  return true;
}

// One table line as its non-empty cells, trimmed and blank-separated.
void MarkdownFilter::TableRow(const char* from, const char* to) {
  std::string cell;
  bool first = true;
  const auto flush = [&] {
    const std::string_view text = TrimSpace(cell);
    if (!text.empty()) {
      if (!first) Blank();
      for (char c : text)
        c == ' ' ? Blank() : Visible(c);
      first = false;
    }
    cell.clear();
  };
  for (const char* p = from; p < to; ++p) {
    char c = *p;
    if (c == '\\' && p + 1 < to) {
      c = *++p;
    } else if (c == '|') {
      flush();
      continue;
    }
    if (IsSpace(static_cast<uint8_t>(c))) {
      if (!cell.empty() && cell.back() != ' ') cell += ' ';
    } else {
      cell += c;
    }
  }
  flush();
  Newline();
}

// Whether a link address has a scheme ("https:", "mailto:") or starts
// with "//"; a fragment ("#top") never does.
bool HasScheme(std::string_view address) {
  address = TrimSpace(address);
  if (address.substr(0, 2) == "//") return true;
  if (address.empty() || !IsAlpha(static_cast<uint8_t>(address[0]))) return false;
  for (size_t i = 1; i < address.size(); ++i) {
    const char c = address[i];
    if (c == ':') return true;
    if (!IsAlnum(static_cast<uint8_t>(c)) && c != '+' && c != '-' && c != '.') return false;
  }
  return false;
}

// "[text](address)" and "![alt](address)": the text, and the address in
// parentheses when it has a scheme; a relative address is dropped.
bool MarkdownFilter::Link() {
  if (noCloseBracket_) return false;
  const char* open = *at_ == '!' ? at_ + 1 : at_;
  const char* close = static_cast<const char*>(std::memchr(open + 1, ']', end_ - open - 1));
  if (close == nullptr) {
    noCloseBracket_ = true;
    return false;
  }
  for (const char* p = open + 1; p < close; ++p)
    Copy(*p);
  at_ = close + 1;
  if (at_ == end_ || *at_ != '(') return true;
  // The address never spans lines, so an unbalanced "(" costs one line.
  const char* lineEnd = LineEndFrom(at_);
  int depth = 0;
  const char* addressEnd = nullptr;
  const char* p = at_;
  for (; p < lineEnd; ++p) {
    if (*p == '\\') {
      if (p + 1 < lineEnd) ++p;
      continue;
    }
    if (*p == '(') ++depth;
    if (*p == ')' && --depth == 0) break;
    // A blank at the outer level ends the address, before any title.
    if (addressEnd == nullptr && depth == 1 && *p == ' ' && p > at_ + 1) addressEnd = p;
  }
  if (p == lineEnd) return true;
  const std::string_view address(at_ + 1, (addressEnd ? addressEnd : p) - (at_ + 1));
  at_ = p + 1;
  if (!HasScheme(address)) return true;
  Blank();
  Visible('(');
  for (char c : TrimSpace(address))
    Visible(c);
  Visible(')');
  return true;
}

// Tags, comments and autolinks vanish whole; other angle brackets are
// dropped and what they enclose is kept.
bool MarkdownFilter::Angle() {
  if (noCloseAngle_) return false;
  const char* close = static_cast<const char*>(std::memchr(at_ + 1, '>', end_ - at_ - 1));
  if (close == nullptr) {
    noCloseAngle_ = true;
    return false;
  }
  const char next = at_ + 1 < close ? at_[1] : 0;
  if (!(IsAlpha(static_cast<uint8_t>(next)) || next == '!' || next == '/' || next == '?')) {
    for (const char* p = at_ + 1; p < close; ++p)
      Copy(*p);
  }
  at_ = close + 1;
  return true;
}

// Emphasis marks go, except between letters or digits, as in snake_case.
void MarkdownFilter::Emphasis() {
  const char mark = *at_;
  const char* run = at_;
  while (at_ < end_ && *at_ == mark && at_ - run < 3)
    ++at_;
  const bool inWord = run > begin_ && IsAlnum(static_cast<uint8_t>(run[-1])) && at_ < end_ &&
                      IsAlnum(static_cast<uint8_t>(*at_));
  if (inWord) {
    for (const char* p = run; p < at_; ++p)
      Visible(*p);
  }
}

}  // namespace

}  // namespace fe::text

extern "C" int32_t FilterMarkdownText(const char* input, int32_t inputLength, char* output,
                                      int32_t outputCapacity) {
  using namespace fe;
  if (input == nullptr || inputLength == INT32_MAX || outputCapacity < 0) {
    SetLastError(kErrorInvalidParameter);
    return 0;
  }
  const size_t length = text::TextLength(input, inputLength);
  const int64_t produced = text::MarkdownFilter(input, length, output, outputCapacity).Run();
  SetLastError(0);
  return static_cast<int32_t>(std::min<int64_t>(produced, INT32_MAX));
}

extern "C" int32_t FilterMarkdownWide(const char16_t* input, char16_t* output,
                                      int32_t outputCapacity) {
  using namespace fe;
  if (input == nullptr || outputCapacity < 0) {
    SetLastError(kErrorInvalidParameter);
    return 0;
  }
  std::string utf8;
  if (!text::WideToUtf8(input, text::WideLength(input), &utf8)) return 0;
  const auto utf8Length = static_cast<int32_t>(utf8.size());
  const int32_t size = FilterMarkdownText(utf8.data(), utf8Length, nullptr, 0);
  std::unique_ptr<char[]> filtered(new (std::nothrow) char[static_cast<size_t>(size) + 1]);
  if (!filtered) {
    SetLastError(kErrorOutOfMemory);
    return 0;
  }
  const int32_t written = FilterMarkdownText(utf8.data(), utf8Length, filtered.get(), size + 1);
  return text::Utf8ToWideOutput(std::string_view(filtered.get(), written), output, outputCapacity);
}
