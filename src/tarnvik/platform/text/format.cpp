#include "tarnvik/platform/text/format.hpp"

#include <locale.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>

#include "tarnvik/platform/base/internal/describe.hpp"
#include "tarnvik/platform/base/internal/unicode.hpp"

namespace tarnvik {

namespace {

std::string pointerText(const void* p) {
  char buffer[24];
  std::snprintf(buffer, sizeof buffer, "0x%llx",
                static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(p)));
  return buffer;
}

void appendASCII(std::u16string& out, std::string_view text) {
  out.append(text.begin(), text.end());
}

enum class Length { None, Char, Short, Long, LongDouble };

// One parsed directive.
struct Directive {
  std::string flags;
  bool leftAlign = false;
  bool hasWidth = false;
  int width = 0;
  bool hasPrecision = false;
  int precision = 0;
  Length length = Length::None;
  char16_t conversion = 0;
};

// Pads the text to the directive's width with blanks.
void appendPadded(std::u16string& out, std::u16string_view text, const Directive& d) {
  const std::size_t width = d.hasWidth ? static_cast<std::size_t>(d.width) : 0;
  const std::size_t pad = text.size() < width ? width - text.size() : 0;
  if (!d.leftAlign) out.append(pad, u' ');
  out.append(text);
  if (d.leftAlign) out.append(pad, u' ');
}

// The C format for a floating-point directive (the grouping flag dropped).
std::string cFormatFor(const Directive& d, char conversion) {
  std::string cFormat = "%";
  for (const char f : d.flags) {
    if (f != '\'') cFormat.push_back(f);
  }
  if (d.leftAlign && cFormat.find('-') == std::string::npos) cFormat.push_back('-');
  if (d.hasWidth) cFormat += std::to_string(d.width);
  if (d.hasPrecision) cFormat += "." + std::to_string(d.precision);
  cFormat.push_back(conversion);
  return cFormat;
}

void appendPrintf(std::u16string& out, const std::string& cFormat, double value) {
  char small[128];
  const int n = std::snprintf(small, sizeof small, cFormat.c_str(), value);
  if (n < 0) return;
  if (static_cast<std::size_t>(n) < sizeof small) {
    appendASCII(out, std::string_view(small, static_cast<std::size_t>(n)));
    return;
  }
  std::string large(static_cast<std::size_t>(n) + 1, '\0');
  std::snprintf(large.data(), large.size(), cFormat.c_str(), value);
  large.resize(static_cast<std::size_t>(n));
  appendASCII(out, large);
}

// Integers are written by hand: the printf rules for flags, width and precision, without
// the cost of building a C format for every directive.
void appendDigits(std::u16string& out, const Directive& d, bool negative, std::uint64_t magnitude) {
  const char16_t conv = d.conversion;
  const int base = (conv == u'x' || conv == u'X') ? 16 : (conv == u'o' ? 8 : 10);
  char digits[24];
  char* end = digits;
  if (!(d.hasPrecision && d.precision == 0 && magnitude == 0)) {
    end = std::to_chars(digits, digits + sizeof digits, magnitude, base).ptr;
  }
  if (conv == u'X') {
    for (char* c = digits; c < end; ++c) *c = static_cast<char>(std::toupper(*c));
  }
  const auto digitCount = static_cast<std::size_t>(end - digits);
  const bool alternate = d.flags.find('#') != std::string::npos;
  std::size_t zeros = d.hasPrecision && static_cast<std::size_t>(d.precision) > digitCount
                          ? static_cast<std::size_t>(d.precision) - digitCount
                          : 0;
  if (alternate && base == 8 && zeros == 0 && (digitCount == 0 || digits[0] != '0')) zeros = 1;
  std::u16string_view prefix;
  const bool isSigned = conv == u'd' || conv == u'i';
  if (isSigned && negative)
    prefix = u"-";
  else if (isSigned && d.flags.find('+') != std::string::npos)
    prefix = u"+";
  else if (isSigned && d.flags.find(' ') != std::string::npos)
    prefix = u" ";
  else if (alternate && magnitude != 0 && base == 16)
    prefix = conv == u'X' ? u"0X" : u"0x";
  const std::size_t size = prefix.size() + zeros + digitCount;
  const std::size_t width = d.hasWidth ? static_cast<std::size_t>(d.width) : 0;
  const std::size_t pad = size < width ? width - size : 0;
  const bool zeroPad = !d.leftAlign && !d.hasPrecision && d.flags.find('0') != std::string::npos;
  if (!d.leftAlign && !zeroPad) out.append(pad, u' ');
  out.append(prefix);
  if (zeroPad) out.append(pad, u'0');
  out.append(zeros, u'0');
  out.append(digits, end);
  if (d.leftAlign) out.append(pad, u' ');
}

void appendInteger(std::u16string& out, const Directive& d, const FormatArgument& arg) {
  const char16_t conv = d.conversion;
  if (conv == u'd' || conv == u'i') {
    std::int64_t v = arg.asSigned();
    switch (d.length) {
      case Length::None:
        v = static_cast<std::int32_t>(static_cast<std::uint32_t>(v));
        break;
      case Length::Char:
        v = static_cast<std::int8_t>(static_cast<std::uint8_t>(v));
        break;
      case Length::Short:
        v = static_cast<std::int16_t>(static_cast<std::uint16_t>(v));
        break;
      default:
        break;
    }
    const std::uint64_t magnitude =
        v < 0 ? ~static_cast<std::uint64_t>(v) + 1 : static_cast<std::uint64_t>(v);
    appendDigits(out, d, v < 0, magnitude);
    return;
  }
  std::uint64_t u = arg.asUnsigned();
  switch (d.length) {
    case Length::None:
      u = static_cast<std::uint32_t>(u);
      break;
    case Length::Char:
      u = static_cast<std::uint8_t>(u);
      break;
    case Length::Short:
      u = static_cast<std::uint16_t>(u);
      break;
    default:
      break;
  }
  appendDigits(out, d, false, u);
}

void appendFloating(std::u16string& out, const Directive& d, const FormatArgument& arg) {
  // The platform always writes a full stop, whatever the process's locale says: the
  // conversion runs in the C locale, on this thread only.
  static const locale_t cLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
  const locale_t previous = ::uselocale(cLocale);
  appendPrintf(out, cFormatFor(d, static_cast<char>(d.conversion)), arg.asDouble());
  ::uselocale(previous);
}

void appendText(std::u16string& out, const Directive& d, std::u16string_view text) {
  if (d.hasPrecision && static_cast<std::size_t>(d.precision) < text.size()) {
    text = text.substr(0, static_cast<std::size_t>(d.precision));
  }
  appendPadded(out, text, d);
}

// Widths and precisions, written or given through '*', are capped, so that a format taken
// from a file name or a setting cannot ask for gigabytes of padding.
constexpr int kLargestWidth = 100000;

// Reads a width or precision: a non-negative decimal number, capped at kLargestWidth.
int readWidth(std::u16string_view f, std::size_t& j) {
  int value = 0;
  for (; j < f.size() && f[j] >= u'0' && f[j] <= u'9'; ++j) {
    value = std::min(kLargestWidth, value * 10 + (f[j] - u'0'));
  }
  return value;
}

// Reads a non-negative decimal number; false when it would not fit an int.
bool readNumber(std::u16string_view f, std::size_t& j, int& value) {
  long long n = 0;
  for (; j < f.size() && f[j] >= u'0' && f[j] <= u'9'; ++j) {
    n = n * 10 + (f[j] - u'0');
    if (n > std::numeric_limits<int>::max()) return false;
  }
  value = static_cast<int>(n);
  return true;
}

}  // namespace

std::int64_t FormatArgument::asSigned() const {
  switch (kind_) {
    case Kind::Signed:
      return i_;
    case Kind::Unsigned:
      return static_cast<std::int64_t>(u_);
    case Kind::Double:
      return Value(d_).integerValue();
    case Kind::CString:
    case Kind::Pointer:
      return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(p_));
    case Kind::Object:
      return value_.kind() == Value::Kind::UInt
                 ? static_cast<std::int64_t>(value_.unsignedIntegerValue())
                 : value_.integerValue();
  }
  return 0;
}

double FormatArgument::asDouble() const {
  switch (kind_) {
    case Kind::Signed:
      return static_cast<double>(i_);
    case Kind::Unsigned:
      return static_cast<double>(u_);
    case Kind::Double:
      return d_;
    case Kind::Object:
      return value_.doubleValue();
    default:
      return 0;
  }
}

const void* FormatArgument::asPointer() const {
  switch (kind_) {
    case Kind::CString:
      return s_;
    case Kind::Pointer:
      return p_;
    case Kind::Object:
      return value_.identity();
    default:
      return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(asSigned()));
  }
}

String FormatArgument::asDescription() const {
  switch (kind_) {
    case Kind::Signed:
      return String(std::to_string(i_));
    case Kind::Unsigned:
      return String(std::to_string(u_));
    case Kind::Double:
      return String(describe::shortestDouble(d_));
    case Kind::CString:
      return s_ ? String::fromUTF8Lossy(s_) : String(u"(null)");
    case Kind::Pointer:
      return String(pointerText(p_));
    case Kind::Object:
      return value_.description();
  }
  return String();
}

std::string FormatArgument::asCString() const {
  if (kind_ == Kind::CString) return s_ ? s_ : "(null)";
  return asDescription().utf8();
}

namespace {

// A directive read from the format, with the argument it converts.
struct Parsed {
  Directive directive;
  const FormatArgument* argument = nullptr;
  // The directive is written out as it stands: unknown conversion, no argument left, or a
  // width or position that does not fit.
  bool asWritten = false;
  // The format ends inside the directive.
  bool truncated = false;
  // Where the text after the directive starts.
  std::size_t end = 0;
};

// Reads the directive that starts after the "%" at `percent`, taking the arguments it
// consumes (for '*' and for the conversion) from `next` on.
Parsed parseDirective(std::u16string_view f, std::size_t percent,
                      std::span<const FormatArgument> arguments, std::size_t& next) {
  Parsed parsed;
  Directive& d = parsed.directive;
  auto take = [&]() -> const FormatArgument* {
    return next < arguments.size() ? &arguments[next++] : nullptr;
  };
  std::size_t j = percent + 1;
  {  // "%n$"
    std::size_t k = j;
    int position = 0;
    if (readNumber(f, k, position) && k > j && k < f.size() && f[k] == u'$') {
      if (position >= 1 && static_cast<std::size_t>(position) <= arguments.size()) {
        parsed.argument = &arguments[static_cast<std::size_t>(position) - 1];
      } else {
        parsed.asWritten = true;
      }
      j = k + 1;
    }
  }
  for (; j < f.size(); ++j) {
    const char16_t c = f[j];
    if (c != u'-' && c != u'+' && c != u' ' && c != u'#' && c != u'0' && c != u'\'') break;
    if (c == u'-') d.leftAlign = true;
    d.flags.push_back(static_cast<char>(c));
  }
  if (j < f.size() && f[j] == u'*') {
    ++j;
    if (const FormatArgument* widthArg = take()) {
      const std::int64_t w =
          std::clamp<std::int64_t>(widthArg->asSigned(), -kLargestWidth, kLargestWidth);
      d.hasWidth = true;
      d.width = static_cast<int>(w < 0 ? -w : w);
      if (w < 0) d.leftAlign = true;
    } else {
      parsed.asWritten = true;
    }
  } else if (j < f.size() && f[j] >= u'1' && f[j] <= u'9') {
    d.hasWidth = true;
    d.width = readWidth(f, j);
  }
  if (j < f.size() && f[j] == u'.') {
    ++j;
    d.hasPrecision = true;
    if (j < f.size() && f[j] == u'*') {
      ++j;
      if (const FormatArgument* precisionArg = take()) {
        const std::int64_t p = precisionArg->asSigned();
        d.hasPrecision = p >= 0;
        d.precision = static_cast<int>(std::min<std::int64_t>(p, kLargestWidth));
      } else {
        parsed.asWritten = true;
      }
    } else {
      d.precision = readWidth(f, j);
    }
  }
  for (; j < f.size(); ++j) {
    const char16_t c = f[j];
    if (c == u'h') {
      d.length = d.length == Length::Short ? Length::Char : Length::Short;
    } else if (c == u'l' || c == u'q' || c == u'z' || c == u't' || c == u'j') {
      d.length = Length::Long;
    } else if (c == u'L') {
      d.length = Length::LongDouble;
    } else {
      break;
    }
  }
  if (j >= f.size()) {
    parsed.truncated = true;
    parsed.end = f.size();
    return parsed;
  }
  d.conversion = f[j++];
  parsed.end = j;
  if (d.conversion == u'%') return parsed;
  static constexpr std::u16string_view kKnown = u"diuxXocCs@fFeEgGaAp";
  if (kKnown.find(d.conversion) == std::u16string_view::npos || parsed.asWritten) {
    parsed.asWritten = true;
    return parsed;
  }
  if (!parsed.argument) parsed.argument = take();
  if (!parsed.argument) parsed.asWritten = true;
  return parsed;
}

// Writes one converted argument.
void appendConversion(std::u16string& out, const Directive& d, const FormatArgument& arg) {
  switch (d.conversion) {
    case u'd':
    case u'i':
    case u'u':
    case u'x':
    case u'X':
    case u'o':
      appendInteger(out, d, arg);
      break;
    case u'f':
    case u'F':
    case u'e':
    case u'E':
    case u'g':
    case u'G':
    case u'a':
    case u'A':
      appendFloating(out, d, arg);
      break;
    case u'c': {
      const auto byte = static_cast<std::uint8_t>(arg.asSigned());
      const char16_t unit = d.length == Length::Long ? static_cast<char16_t>(arg.asSigned())
                                                     : static_cast<char16_t>(byte);
      appendText(out, Directive{d.flags, d.leftAlign, d.hasWidth, d.width},
                 std::u16string_view(&unit, 1));
      break;
    }
    case u'C': {
      const auto unit = static_cast<char16_t>(arg.asSigned());
      appendText(out, Directive{d.flags, d.leftAlign, d.hasWidth, d.width},
                 std::u16string_view(&unit, 1));
      break;
    }
    case u's': {
      const char* direct = arg.cString();
      appendText(out, d,
                 direct ? unicode::fromUTF8(direct, true, nullptr)
                        : unicode::fromUTF8(arg.asCString(), true, nullptr));
      break;
    }
    case u'@':
      appendText(out, d, arg.asDescription().units());
      break;
    case u'p':
      appendText(out, d, unicode::fromUTF8(pointerText(arg.asPointer()), true, nullptr));
      break;
    default:
      break;
  }
}

void formatInto(std::u16string& out, const String& format,
                std::span<const FormatArgument> arguments) {
  const std::u16string_view f = format.units();
  out.reserve(out.size() + f.size() + arguments.size() * 8);
  std::size_t nextArgument = 0;
  for (std::size_t i = 0; i < f.size();) {
    const std::size_t percent = f.find(u'%', i);
    if (percent == std::u16string_view::npos) {
      out.append(f.substr(i));
      break;
    }
    out.append(f.substr(i, percent - i));
    const Parsed parsed = parseDirective(f, percent, arguments, nextArgument);
    if (parsed.truncated) {
      out.append(f.substr(percent));
    } else if (parsed.directive.conversion == u'%') {
      out.push_back(u'%');
    } else if (parsed.asWritten) {
      out.append(f.substr(percent, parsed.end - percent));
    } else {
      appendConversion(out, parsed.directive, *parsed.argument);
    }
    i = parsed.end;
  }
}

}  // namespace

String formatWithArguments(const String& format, std::span<const FormatArgument> arguments) {
  std::u16string out;
  formatInto(out, format, arguments);
  return String(std::move(out));
}

void appendFormatWithArguments(String& text, const String& format,
                               std::span<const FormatArgument> arguments) {
  std::u16string out;
  formatInto(out, format, arguments);
  text.appendCharacters(out.data(), out.size());
}

}  // namespace tarnvik
