// FilterHtmlText / FilterHtmlWide: HTML to readable plain text in one pass,
// with CR LF line ends. Every deliberate oddity below is something texts
// filtered by earlier versions show, so users' stored results stay the same.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "text/ascii.h"
#include "text/html_links.h"
#include "text/html_references.h"
#include "text/wide_front_end.h"

namespace fe::text {

namespace {

constexpr uint32_t kErrorNoData = 232;  // ERROR_NO_DATA
constexpr int32_t kLongestInput = 0x4000000;
constexpr int kTagCapacity = 4096;
constexpr int kCommentGiveUp = 8193;
constexpr int kMaxAttributes = 32;
constexpr int kMaxListLevels = 8;
constexpr int kMaxReference = 15;
constexpr int kStackScratch = 4096;

// Elements whose content is dropped.
constexpr std::string_view kDropped[] = {"applet", "audio",  "canvas", "dialog",   "form",
                                         "head",   "iframe", "map",    "noscript", "object",
                                         "script", "search", "style",  "template", "video"};
// Code-like elements whose white space is kept. "samptt" is one entry, so
// neither samp nor tt counts; kept as it always was.
constexpr std::string_view kPreformatted[] = {"code", "kbd", "output", "pre", "samptt", "var"};
constexpr std::string_view kBlockStart[] = {"blockquote", "div", "p", "table"};
constexpr std::string_view kLineBreak[] = {"br",     "br/",    "/dd",       "/dt", "/label",
                                           "/li",    "/meter", "/progress", "/q",  "/summary",
                                           "/tfoot", "/thead", "/tr",       "wbr", "wbr/"};
constexpr std::string_view kBlockEnd[] = {
    "/address", "/article", "/blockquote", "/fieldset", "/figure", "/footer", "/details",
    "/dl",      "/div",     "/header",     "/h1",       "/h2",     "/h3",     "/h4",
    "/h5",      "/h6",      "hr",          "hr/",       "/legend", "/main",   "/menu",
    "/ol",      "/p",       "/section",    "/table",    "/title",  "/ul"};

template <size_t N>
bool Listed(const std::string_view (&list)[N], std::string_view name) {
  return std::find(std::begin(list), std::end(list), name) != std::end(list);
}

struct Attribute {
  std::string_view name;
  std::string_view value;
};

// Splits "name=value" pairs out of a tag's attribute text. An attribute
// without "=" takes the next word as its value ("disabled href=x" is the one
// pair disabled = "href=x"), as earlier versions read it.
int ParseAttributes(std::string_view text, Attribute (&attributes)[kMaxAttributes]) {
  int count = 0;
  size_t at = 0;
  const auto skipSpace = [&] {
    while (at < text.size() && IsSpace(static_cast<uint8_t>(text[at])))
      ++at;
  };
  const auto word = [&] {
    const size_t start = at;
    while (at < text.size() && !IsSpace(static_cast<uint8_t>(text[at])))
      ++at;
    return text.substr(start, at - start);
  };
  while (count < kMaxAttributes) {
    skipSpace();
    if (at == text.size()) break;
    const size_t start = at;
    while (at < text.size() && text[at] != '=' && !IsSpace(static_cast<uint8_t>(text[at])))
      ++at;
    const std::string_view name = TrimSpace(text.substr(start, at - start));
    if (name.empty()) {
      word();
      continue;
    }
    skipSpace();
    std::string_view value;
    if (at < text.size() && text[at] == '=') {
      ++at;
      skipSpace();
      if (at < text.size() && (text[at] == '\'' || text[at] == '"')) {
        const char quote = text[at++];
        const size_t end = std::min(text.find(quote, at), text.size());
        value = text.substr(at, end - at);
        at = std::min(end + 1, text.size());
      } else {
        value = word();
      }
    } else {
      value = word();
    }
    attributes[count++] = {name, TrimSpace(value)};
  }
  return count;
}

// The first attribute of that name, whatever its case; null when there is
// none.
const Attribute* FindAttribute(const Attribute* attributes, int count, std::string_view name) {
  for (int i = 0; i < count; ++i) {
    if (EqualIgnoringCase(attributes[i].name, name)) return &attributes[i];
  }
  return nullptr;
}

class HtmlFilter {
 public:
  HtmlFilter(const char* input, int32_t length, char* output, int32_t capacity)
      : in_(input), length_(length), out_(output), capacity_(capacity), limit_(capacity - 1) {}

  int32_t Run();

 private:
  struct List {
    bool ordered;
    int next;
  };

  bool EndsWith(std::string_view tail) const {
    return pos_ >= static_cast<int32_t>(tail.size()) &&
           std::string_view(out_ + pos_ - tail.size(), tail.size()) == tail;
  }
  void Put(std::string_view bytes) {
    std::memcpy(out_ + pos_, bytes.data(), bytes.size());
    pos_ += static_cast<int32_t>(bytes.size());
  }
  void LineEnd() { Put("\r\n"); }
  // A line end where there is room and the output does not end in one.
  void LineEndUnlessThere() {
    if (pos_ + 2 < limit_ && !EndsWith("\r\n")) LineEnd();
  }

  void OpenTag();
  void CloseTag();
  void HandleTag(std::string_view name, std::string_view attributeText);
  void StructureTag(std::string_view name, const Attribute* attributes, int count);
  void BlockEnd();
  void Reference();
  void PreformattedLineEnds();
  void Text(uint8_t c);

  const char* in_;
  int32_t length_;
  int32_t at_ = 0;
  char* out_;
  int32_t capacity_;
  int32_t limit_;
  int32_t pos_ = 0;

  bool inTag_ = false;
  bool inComment_ = false;
  char tag_[kTagCapacity];
  int tagLength_ = 0;
  int commentCount_ = 0;
  int skipDepth_ = 0;
  int preformattedDepth_ = 0;
  int blanks_ = 1;  // so that leading white space is dropped
  std::array<List, kMaxListLevels> lists_{};
  int listCount_ = 0;
};

int32_t HtmlFilter::Run() {
  while (pos_ < limit_ && at_ < length_ && in_[at_] != 0) {
    const auto c = static_cast<uint8_t>(in_[at_]);
    // Inside a tag "<" is part of it: the tag runs to the next ">", so a
    // script holding "a<b" never sees its closing tag, as pages filtered by
    // earlier versions show.
    if (c == '<' && !inTag_) {
      OpenTag();
    } else if (c == '>' && (inTag_ || inComment_)) {
      CloseTag();
    } else if (inTag_) {
      // The tag is kept in lowercase, with white space as blanks; so link
      // addresses and alternative texts come out lowercase.
      if (tagLength_ < kTagCapacity - 1 && (IsPrint(c) || IsSpace(c))) {
        tag_[tagLength_++] = IsSpace(c) ? ' ' : ToLower(static_cast<char>(c));
      }
      ++at_;
    } else if (inComment_) {
      // An unclosed comment would swallow the rest of the page.
      if (++commentCount_ >= kCommentGiveUp) inComment_ = false;
      ++at_;
    } else {
      Text(c);
    }
  }
  while (pos_ > 0 && IsSpace(static_cast<uint8_t>(out_[pos_ - 1])))
    --pos_;
  out_[pos_] = 0;
  return pos_;
}

void HtmlFilter::OpenTag() {
  tagLength_ = 0;
  if (length_ - at_ > 3 && in_[at_ + 1] == '!' && in_[at_ + 2] == '-' && in_[at_ + 3] == '-') {
    inComment_ = true;
    commentCount_ = 0;
  } else {
    inTag_ = true;
  }
  ++at_;
}

void HtmlFilter::CloseTag() {
  inTag_ = false;
  const std::string_view tag(tag_, tagLength_);
  if (inComment_) {
    if (at_ >= 2 && in_[at_ - 1] == '-' && in_[at_ - 2] == '-') inComment_ = false;
  } else {
    const size_t blank = tag.find(' ');
    HandleTag(tag.substr(0, blank),
              blank == std::string_view::npos ? std::string_view() : tag.substr(blank + 1));
  }
  ++at_;
}

void HtmlFilter::HandleTag(std::string_view name, std::string_view attributeText) {
  Attribute attributes[kMaxAttributes];
  const int count = ParseAttributes(attributeText, attributes);
  const bool closing = !name.empty() && name[0] == '/';
  const bool dropped = Listed(kDropped, closing ? name.substr(1) : name);
  // Recovers from an unclosed head or script before the body.
  if (name == "body" || name == "/head") {
    skipDepth_ = 0;
    return;
  }
  if (skipDepth_ > 0) {
    if (dropped) skipDepth_ += closing ? -1 : 1;
    return;
  }
  if (dropped) {
    if (!closing) {
      skipDepth_ = 1;
      preformattedDepth_ = 0;
      blanks_ = 1;
    }
    return;
  }
  StructureTag(name, attributes, count);
  if (Listed(kPreformatted, name)) {
    ++preformattedDepth_;
    blanks_ = 0;
  } else if (closing && preformattedDepth_ >= 1 && Listed(kPreformatted, name.substr(1))) {
    --preformattedDepth_;
  }
  // No more than one empty line before a block.
  if (Listed(kBlockStart, name) && EndsWith("\r\n\r\n\r\n")) pos_ -= 2;
  if (Listed(kLineBreak, name)) {
    // Two breaks in a row make one line end, not an empty line.
    LineEndUnlessThere();
    ++blanks_;
  } else if (Listed(kBlockEnd, name)) {
    BlockEnd();
    ++blanks_;
  }
}

// Closes a block with an empty line, unless one (or the start) is already
// there.
void HtmlFilter::BlockEnd() {
  if (pos_ + 4 >= limit_) return;
  if (pos_ >= 4 && out_[pos_ - 4] == '\r' && out_[pos_ - 3] == '\n') return;
  if (pos_ > 4) {
    const bool afterLineEnd = out_[pos_ - 3] == '\n';
    LineEnd();
    if (!afterLineEnd) LineEnd();
  } else if (pos_ >= 3) {
    LineEnd();
  }
}

void HtmlFilter::StructureTag(std::string_view name, const Attribute* attributes, int count) {
  if (name == "a" && count >= 1) {
    const Attribute* href = FindAttribute(attributes, count, "href");
    if (href == nullptr) return;
    const auto address = ShownLinkAddress(href->value);
    if (address && !address->empty() && (address->front() == '#' || address->front() == '/'))
      return;
    if (address && static_cast<int64_t>(address->size()) + pos_ + 3 < limit_) {
      Put("<");
      Put(*address);
      Put("> ");
    }
  } else if (name == "img" && count >= 1) {
    const Attribute* alt = FindAttribute(attributes, count, "alt");
    if (alt != nullptr && static_cast<int64_t>(alt->value.size()) + pos_ + 1 < capacity_ - 6) {
      Put("\r\n[");
      Put(alt->value);
      Put("]\r\n");
    }
  } else if (name == "ul" || name == "ol") {
    if (listCount_ < kMaxListLevels) lists_[listCount_++] = {name == "ol", name == "ol" ? 1 : 0};
    LineEndUnlessThere();
  } else if (name == "/ul" || name == "/ol") {
    if (listCount_ > 0) --listCount_;
  } else if (name == "li" && listCount_ >= 1) {
    while (pos_ > 0 && out_[pos_ - 1] == ' ')
      --pos_;
    if (pos_ + 20 < limit_) {
      for (int i = 0; i < listCount_ * 2 - 2; ++i)
        Put(" ");
      List& list = lists_[listCount_ - 1];
      if (list.ordered) {
        // Numbering stops growing at 999, as it always has.
        const int number = std::min(list.next, 999);
        char text[8];
        Put(std::string_view(text, std::snprintf(text, sizeof text, "%d. ", number)));
        list.next = number + 1;
      } else {
        Put("* ");
      }
    }
    blanks_ = 1;
  } else if (name == "dt") {
    if (pos_ + 2 < limit_ && pos_ > 0 && out_[pos_ - 1] != '\n') LineEnd();
  } else if (name == "dd") {
    if (pos_ + 4 < limit_) Put("  - ");
  }
}

// "&name;" or "&#number;". Without a ";" the reference runs to the end of
// the input and is refused, so text after a bare "&" vanishes; pages
// filtered by earlier versions read so.
void HtmlFilter::Reference() {
  char name[kMaxReference];
  int kept = 0;
  ++at_;
  while (at_ < length_ && in_[at_] != 0 && in_[at_] != ';') {
    const auto c = static_cast<uint8_t>(in_[at_++]);
    if (kept < kMaxReference && IsPrint(c) && c != ' ') name[kept++] = static_cast<char>(c);
  }
  if (at_ < length_ && in_[at_] == ';') ++at_;
  std::string bytes;
  if (!DecodeHtmlReference(std::string_view(name, kept), &bytes) ||
      pos_ + static_cast<int32_t>(bytes.size()) >= limit_) {
    return;
  }
  Put(bytes);
  blanks_ = 0;
}

// Inside code-like elements a run of one or two line-end bytes is one line
// end and a longer run two.
void HtmlFilter::PreformattedLineEnds() {
  int run = 0;
  while (at_ < length_ && (in_[at_] == '\r' || in_[at_] == '\n')) {
    ++run;
    ++at_;
  }
  for (int i = 0; i < (run <= 2 ? 1 : 2) && pos_ + 2 <= limit_; ++i)
    LineEnd();
}

void HtmlFilter::Text(uint8_t c) {
  if (skipDepth_ > 0) {
    ++at_;
  } else if (c == '&') {
    Reference();
  } else if (preformattedDepth_ > 0) {
    if (c == '\r' || c == '\n') {
      PreformattedLineEnds();
    } else {
      out_[pos_++] = static_cast<char>(c);
      ++at_;
    }
  } else {
    if (IsSpace(c)) {
      c = ' ';
      ++blanks_;
    } else {
      blanks_ = 0;
    }
    if (blanks_ < 2) out_[pos_++] = static_cast<char>(c);
    ++at_;
  }
}

}  // namespace

}  // namespace fe::text

extern "C" int32_t FilterHtmlText(const char* input, int32_t inputLength, char* output,
                                  int32_t outputCapacity) {
  using namespace fe;
  if (input == nullptr || input == output || outputCapacity < 0 || inputLength == INT32_MAX) {
    SetLastError(kErrorInvalidParameter);
    return 0;
  }
  const size_t length = text::TextLength(input, inputLength);
  if (length > static_cast<size_t>(text::kLongestInput)) {
    SetLastError(kErrorInvalidParameter);
    return 0;
  }
  if (length < 1) {
    SetLastError(text::kErrorNoData);
    return 0;
  }
  const auto size = static_cast<int32_t>(length);
  // A size query filters into a scratch buffer a little larger than the
  // input.
  char stackScratch[text::kStackScratch];
  std::unique_ptr<char[]> heapScratch;
  if (output == nullptr || outputCapacity == 0) {
    outputCapacity = ((size + 128) / 256 + 1) * 256;
    output = stackScratch;
    if (outputCapacity > text::kStackScratch) {
      heapScratch.reset(new (std::nothrow) char[outputCapacity]);
      if (!heapScratch) {
        SetLastError(kErrorOutOfMemory);
        return 0;
      }
      output = heapScratch.get();
    }
  }
  const int32_t written = text::HtmlFilter(input, size, output, outputCapacity).Run();
  SetLastError(0);
  return written;
}

extern "C" int32_t FilterHtmlWide(const char16_t* input, char16_t* output, int32_t outputCapacity) {
  using namespace fe;
  if (input == nullptr || outputCapacity < 0) {
    SetLastError(kErrorInvalidParameter);
    return 0;
  }
  const size_t length = text::WideLength(input);
  if (length == 0) {
    SetLastError(text::kErrorNoData);
    return 0;
  }
  if (length > static_cast<size_t>(text::kLongestInput)) {
    SetLastError(kErrorInvalidParameter);
    return 0;
  }
  std::string utf8;
  if (!text::WideToUtf8(input, length, &utf8)) return 0;
  const auto utf8Length = static_cast<int32_t>(utf8.size());
  const int32_t size = FilterHtmlText(utf8.data(), utf8Length, nullptr, 0);
  if (LastError() != 0) return 0;
  std::unique_ptr<char[]> filtered(new (std::nothrow) char[size + 128]);
  if (!filtered) {
    SetLastError(kErrorOutOfMemory);
    return 0;
  }
  const int32_t written = FilterHtmlText(utf8.data(), utf8Length, filtered.get(), size + 128);
  return text::Utf8ToWideOutput(std::string_view(filtered.get(), written), output, outputCapacity);
}
