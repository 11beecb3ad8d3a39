#include "tarnvik/platform/base/internal/describe.hpp"

#include <charconv>
#include <cmath>
#include <ctime>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/object.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik::describe {

namespace {

void indent(std::u16string& out, int depth) {
  out.append(static_cast<std::size_t>(depth) * 4, u' ');
}

void appendASCII(std::u16string& out, std::string_view text) {
  out.append(text.begin(), text.end());
}

bool needsQuotes(std::u16string_view text) {
  if (text.empty()) return true;
  for (const char16_t c : text) {
    const bool plain = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
                       (c >= u'0' && c <= u'9') || c == u'_' || c == u'$' || c == u'/' ||
                       c == u':' || c == u'.' || c == u'-';
    if (!plain) return true;
  }
  return false;
}

void appendQuoted(std::u16string& out, std::u16string_view text) {
  out.push_back(u'"');
  for (const char16_t c : text) {
    switch (c) {
      case u'"':
        out.append(u"\\\"");
        break;
      case u'\\':
        out.append(u"\\\\");
        break;
      case u'\n':
        out.append(u"\\n");
        break;
      case u'\t':
        out.append(u"\\t");
        break;
      case u'\r':
        out.append(u"\\r");
        break;
      default:
        if (c < 0x20 || c > 0x7E) {
          char buffer[8];
          std::snprintf(buffer, sizeof buffer, "\\U%04x", static_cast<unsigned>(c));
          appendASCII(out, buffer);
        } else {
          out.push_back(c);
        }
    }
  }
  out.push_back(u'"');
}

void appendValue(std::u16string& out, const Value& value, int depth, bool nested);

template <class Range>
void appendList(std::u16string& out, const Range& values, int depth, std::u16string_view open,
                std::u16string_view close) {
  // A nested collection repeats its own indentation before the opener, as the platform does.
  indent(out, depth);
  out.append(open);
  out.push_back(u'\n');
  bool first = true;
  for (const Value& element : values) {
    if (!first) out.append(u",\n");
    first = false;
    indent(out, depth + 1);
    appendValue(out, element, depth + 1, true);
  }
  if (!first) out.push_back(u'\n');
  indent(out, depth);
  out.append(close);
}

void appendDate(std::u16string& out, double secondsSinceReference) {
  const double unix = std::floor(secondsSinceReference + NSTimeIntervalSince1970);
  // Out of time_t's range the cast saturates and gmtime_r refuses the year.
  const std::time_t t = saturatingCast<std::time_t>(unix);
  std::tm utc{};
  char buffer[64];
  if (std::isfinite(unix) && gmtime_r(&t, &utc)) {
    std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S +0000", &utc);
  } else {
    std::snprintf(buffer, sizeof buffer, "%g", secondsSinceReference);
  }
  appendASCII(out, buffer);
}

void appendData(std::u16string& out, const Data& data) {
  static constexpr char kHex[] = "0123456789abcdef";
  out.push_back(u'<');
  const auto bytes = data.span();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0 && i % 4 == 0) out.push_back(u' ');
    out.push_back(static_cast<char16_t>(kHex[bytes[i] >> 4]));
    out.push_back(static_cast<char16_t>(kHex[bytes[i] & 15]));
  }
  out.push_back(u'>');
}

void appendValue(std::u16string& out, const Value& value, int depth, bool nested) {
  using K = Value::Kind;
  switch (value.kind()) {
    case K::Nil:
      out.append(u"(null)");
      return;
    case K::Null:
      out.append(u"<null>");
      return;
    case K::Bool:
      out.push_back(value.boolValue() ? u'1' : u'0');
      return;
    case K::Int:
      appendASCII(out, std::to_string(value.integerValue()));
      return;
    case K::UInt:
      appendASCII(out, std::to_string(value.unsignedIntegerValue()));
      return;
    case K::Double:
      appendASCII(out, shortestDouble(value.doubleValue()));
      return;
    case K::Date:
      appendDate(out, value.asDate().timeIntervalSinceReferenceDate);
      return;
    case K::String: {
      const auto text = value.asString().units();
      if (nested && needsQuotes(text))
        appendQuoted(out, text);
      else
        out.append(text);
      return;
    }
    case K::Data:
      appendData(out, value.asData());
      return;
    case K::Array:
      appendList(out, value.asArray(), depth, u"(", u")");
      return;
    case K::Set:
      appendList(out, value.asSet(), depth, u"{(", u")}");
      return;
    case K::OrderedSet:
      appendList(out, value.asOrderedSet(), depth, u"{(", u")}");
      return;
    case K::Dictionary: {
      indent(out, depth);
      out.append(u"{\n");
      for (const auto& [key, object] : value.asDictionary()) {
        indent(out, depth + 1);
        appendValue(out, key, depth + 1, true);
        out.append(u" = ");
        appendValue(out, object, depth + 1, true);
        out.append(u";\n");
      }
      indent(out, depth);
      out.push_back(u'}');
      return;
    }
    case K::Error:
      out.append(value.asError().description().units());
      return;
    case K::Object:
      out.append(value.asObject()->description().units());
      return;
  }
}

}  // namespace

String describe(const Value& value, int depth, bool nested) {
  if (value.isString() && !nested) return value.asString();
  std::u16string out;
  appendValue(out, value, depth, nested);
  return String(std::move(out));
}

std::string shortestDouble(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

}  // namespace tarnvik::describe
