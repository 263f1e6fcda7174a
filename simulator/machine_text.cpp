#include "simulator/machine_text.h"

#include <algorithm>
#include <cstddef>

namespace kestrel::simulator {

namespace {

// No key of a machine file has a dot. Each one costs some hundred bytes of stack.
constexpr int kMaxDotsInLine = 16;

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

bool IsQuote(char c) { return c == '"' || c == '\''; }

bool IsKeyCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-';
}

// Of keys, dotted keys and values without quotes.
bool IsWordCharacter(char c) { return IsKeyCharacter(c) || c == '.' || c == '+' || c == ':'; }

bool IsOneOf(char c, std::string_view characters) {
  return characters.find(c) != std::string_view::npos;
}

// Follows a TOML text from token to token. A text that is no TOML is followed up to its first error
// only, where the parser stops.
class Scanner {
 public:
  // Editors of Windows begin a text with a byte order mark, which the parser skips.
  explicit Scanner(std::string_view text)
      : text_(text),
        position_(text.substr(0, kByteOrderMark.size()) == kByteOrderMark ? kByteOrderMark.size()
                                                                          : 0) {}

  std::optional<TextProblem> Scan() {
    while (!problem_ && position_ < text_.size()) {
      ScanToken();
    }
    return problem_;
  }

 private:
  // NUL at the end.
  [[nodiscard]] char Peek(std::size_t offset = 0) const {
    return position_ + offset < text_.size() ? text_[position_ + offset] : '\0';
  }

  void Refuse(const char* message) {
    const std::string_view before = text_.substr(0, position_);
    const std::size_t line_begin = before.rfind('\n') + 1;  // npos + 1 is 0
    problem_ = {static_cast<int>(std::count(before.begin(), before.end(), '\n')) + 1,
                static_cast<int>(position_ - line_begin) + 1, message};
  }

  void ScanToken() {
    const char c = Peek();
    if (IsOneOf(c, " \t\r\n#")) {
      SkipBlankOrComment(c);
    } else if (c == '[' && at_line_start_ && open_brackets_.empty()) {
      ScanHeader();
    } else {
      at_line_start_ = false;
      if (IsQuote(c)) {
        ScanString(c);
      } else if (IsWordCharacter(c)) {
        ScanWord();
      } else {
        ScanPunctuation(c);
      }
    }
  }

  void SkipBlankOrComment(char c) {
    if (c == '#') {
      position_ = std::min(text_.find('\n', position_), text_.size());
      return;
    }
    ++position_;
    if (c == '\n') {
      dots_in_line_ = 0;
      at_line_start_ = true;
      expects_value_ = expects_value_ && !open_brackets_.empty();
    }
  }

  // A header's brackets close in its line; if they do not, the parser stops there.
  void ScanHeader() {
    const std::size_t brackets = Peek(1) == '[' ? 2 : 1;
    open_brackets_.assign(brackets, '[');
    position_ += brackets;
    while (IsOneOf(Peek(), " \t")) {
      ++position_;
    }
    if (!IsKeyCharacter(Peek()) && !IsQuote(Peek())) {
      Refuse("a table header must begin with a key");
    }
  }

  void ScanWord() {
    const std::size_t begin = position_;
    for (; IsWordCharacter(Peek()); ++position_) {
      if (Peek() == '.' && ++dots_in_line_ > kMaxDotsInLine) {
        Refuse("too many dots in one line");
        return;
      }
      if (expects_value_ && (Peek() == ':' || (Peek() == '-' && position_ > begin))) {
        Refuse("a value must not be a date or a time");
        return;
      }
    }
    if (expects_value_ && position_ < text_.size() && !IsOneOf(Peek(), " \t\r\n,]}#")) {
      Refuse("a value is not closed");
    }
    expects_value_ = false;
  }

  void ScanPunctuation(char c) {
    if (!IsOneOf(c, "=,[]{}")) {
      Refuse("only a string or a comment may contain this character");
    } else if (c == '=' && expects_value_) {
      Refuse("a value is missing");
    } else if ((c == ']' || c == '}') && !CloseBracket(c == ']' ? '[' : '{')) {
      Refuse("a bracket is closed that is not open");
    } else {
      if (c == '[' || c == '{') {
        open_brackets_ += c;
      }
      const bool in_array = !open_brackets_.empty() && open_brackets_.back() == '[';
      expects_value_ = c == '=' || c == '[' || (c == ',' && in_array);
      ++position_;
    }
  }

  // Returns false if another bracket is the last one that is open.
  bool CloseBracket(char open) {
    if (open_brackets_.empty() || open_brackets_.back() != open) {
      return false;
    }
    open_brackets_.pop_back();
    return true;
  }

  void ScanString(char quote) {
    expects_value_ = false;
    const bool is_multi_line = Peek(1) == quote && Peek(2) == quote;
    position_ += is_multi_line ? 3 : 1;
    while (position_ < text_.size()) {
      const char c = Peek();
      if (c == '\n' && !is_multi_line) {
        return;  // the parser stops here
      }
      if (is_multi_line && !IsAscii(c)) {
        Refuse("a string of several lines may contain ASCII only");
        return;
      }
      if (c == quote && (!is_multi_line || (Peek(1) == quote && Peek(2) == quote))) {
        SkipClosingQuotes(quote, is_multi_line);
        return;
      }
      position_ += c == '\\' && quote == '"' ? 2 : 1;
    }
  }

  // A string of several lines may end with one or two quotes of its own before the closing three.
  void SkipClosingQuotes(char quote, bool is_multi_line) {
    const std::size_t most = is_multi_line ? 5 : 1;
    for (std::size_t i = 0; i < most && Peek() == quote; ++i) {
      ++position_;
    }
  }

  std::string_view text_;
  std::size_t position_;
  std::string open_brackets_;
  int dots_in_line_ = 0;
  bool at_line_start_ = true;   // only blanks before the position in its line
  bool expects_value_ = false;  // the next string or word is a value, not a key
  std::optional<TextProblem> problem_;
};

}  // namespace

std::optional<TextProblem> FindTextProblem(std::string_view text) { return Scanner(text).Scan(); }

}  // namespace kestrel::simulator
