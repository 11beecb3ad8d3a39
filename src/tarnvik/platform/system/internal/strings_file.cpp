#include "tarnvik/platform/system/internal/strings_file.hpp"

#include <plist/plist.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/internal/unicode.hpp"

namespace tarnvik::strings_file {

namespace {

std::u16string decodeText(const std::string& bytes) {
  auto fromUTF16 = [&](bool bigEndian) {
    std::u16string out;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
      const auto hi = static_cast<unsigned char>(bytes[bigEndian ? i : i + 1]);
      const auto lo = static_cast<unsigned char>(bytes[bigEndian ? i + 1 : i]);
      out.push_back(static_cast<char16_t>(hi << 8 | lo));
    }
    return out;
  };
  if (bytes.size() >= 2 && bytes[0] == '\xFE' && bytes[1] == '\xFF') return fromUTF16(true);
  if (bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE') return fromUTF16(false);
  std::string_view text(bytes);
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  return unicode::fromUTF8(text, true, nullptr);
}

class StringsParser {
 public:
  explicit StringsParser(std::u16string text) : text_(std::move(text)) {}

  Dictionary parse() {
    Dictionary table = Dictionary::dictionary();
    while (skipSpaceAndComments()) {
      String key, value;
      if (!readToken(&key)) return Dictionary();
      skipSpaceAndComments();
      if (peek() == u';') {
        value = key;
      } else {
        if (peek() != u'=') return Dictionary();
        ++at_;
        skipSpaceAndComments();
        if (!readToken(&value)) return Dictionary();
        skipSpaceAndComments();
        if (peek() != u';') return Dictionary();
      }
      ++at_;
      table.setObject(value, key);
    }
    return table;
  }

 private:
  char16_t peek() const { return at_ < text_.size() ? text_[at_] : 0; }

  // False at the end of the text.
  bool skipSpaceAndComments() {
    while (at_ < text_.size()) {
      const char16_t c = text_[at_];
      if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r') {
        ++at_;
      } else if (text_.compare(at_, 2, u"/*") == 0) {
        const auto end = text_.find(u"*/", at_ + 2);
        at_ = end == std::u16string::npos ? text_.size() : end + 2;
      } else if (text_.compare(at_, 2, u"//") == 0) {
        const auto end = text_.find(u'\n', at_);
        at_ = end == std::u16string::npos ? text_.size() : end + 1;
      } else {
        return true;
      }
    }
    return false;
  }

  bool readToken(String* out) {
    if (peek() == u'"') return readQuoted(out);
    const std::size_t start = at_;
    while (at_ < text_.size()) {
      const char16_t c = text_[at_];
      const bool word = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
                        (c >= u'0' && c <= u'9') || c == u'_' || c == u'.' || c == u'$' ||
                        c == u'/' || c == u':' || c == u'-';
      if (!word) break;
      ++at_;
    }
    if (at_ == start) return false;
    *out = String(std::u16string_view(text_).substr(start, at_ - start));
    return true;
  }

  bool readQuoted(String* out) {
    std::u16string value;
    ++at_;
    while (at_ < text_.size()) {
      const char16_t c = text_[at_++];
      if (c == u'"') {
        *out = String(std::move(value));
        return true;
      }
      if (c != u'\\') {
        value.push_back(c);
        continue;
      }
      if (at_ >= text_.size()) return false;
      const char16_t e = text_[at_++];
      switch (e) {
        case u'n':
          value.push_back(u'\n');
          break;
        case u't':
          value.push_back(u'\t');
          break;
        case u'r':
          value.push_back(u'\r');
          break;
        case u'U':
        case u'u': {
          unsigned code = 0;
          int digits = 0;
          for (; digits < 4 && at_ < text_.size(); ++digits, ++at_) {
            const char16_t h = text_[at_];
            const int d = hexDigitValue(h);
            if (d < 0) break;
            code = code * 16 + static_cast<unsigned>(d);
          }
          if (digits == 0) return false;
          value.push_back(static_cast<char16_t>(code));
          break;
        }
        default:
          value.push_back(e);
      }
    }
    return false;
  }

  std::u16string text_;
  std::size_t at_ = 0;
};

Value fromPlist(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      uint8_t b = 0;
      plist_get_bool_val(node, &b);
      return Value(b != 0);
    }
    case PLIST_UINT: {
      uint64_t u = 0;
      plist_get_uint_val(node, &u);
      // Negative integers are written as their two's-complement pattern.
      if (u > static_cast<uint64_t>(INT64_MAX)) return Value(static_cast<long long>(u));
      return Value(u);
    }
    case PLIST_REAL: {
      double d = 0;
      plist_get_real_val(node, &d);
      return Value(d);
    }
    case PLIST_STRING: {
      char* s = nullptr;
      plist_get_string_val(node, &s);
      const String text = String::fromUTF8Lossy(s ? s : "");
      std::free(s);
      return Value(text);
    }
    case PLIST_DATA: {
      char* bytes = nullptr;
      uint64_t length = 0;
      plist_get_data_val(node, &bytes, &length);
      const Data data = Data::withBytes(bytes, length);
      std::free(bytes);
      return Value(data);
    }
    case PLIST_DATE: {
      int32_t seconds = 0, micros = 0;
      plist_get_date_val(node, &seconds, &micros);
      return Value(Date{seconds + micros / 1e6});
    }
    case PLIST_ARRAY: {
      Array array = Array::array();
      const uint32_t count = plist_array_get_size(node);
      for (uint32_t i = 0; i < count; ++i) {
        const Value item = fromPlist(plist_array_get_item(node, i));
        if (!item.isNil()) array.addObject(item);
      }
      return Value(array);
    }
    case PLIST_DICT: {
      Dictionary dictionary = Dictionary::dictionary();
      plist_dict_iter iter = nullptr;
      plist_dict_new_iter(node, &iter);
      for (;;) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, iter, &key, &item);
        if (!key) break;
        const Value value = fromPlist(item);
        if (!value.isNil()) dictionary.setObject(value, String::fromUTF8Lossy(key));
        std::free(key);
      }
      std::free(iter);
      return Value(dictionary);
    }
    default:
      return Value();
  }
}

plist_t toPlist(const Value& value) {
  switch (value.kind()) {
    case ValueKind::Bool:
      return plist_new_bool(value.boolValue() ? 1 : 0);
    case ValueKind::Int:
      return plist_new_uint(static_cast<uint64_t>(value.longLongValue()));
    case ValueKind::UInt:
      return plist_new_uint(value.unsignedIntegerValue());
    case ValueKind::Double:
      return plist_new_real(value.doubleValue());
    case ValueKind::String:
      return plist_new_string(value.asString().utf8().c_str());
    case ValueKind::Data: {
      const Data data = value.asData();
      return plist_new_data(reinterpret_cast<const char*>(data.bytes()), data.length());
    }
    case ValueKind::Date: {
      const double seconds = value.asDate().timeIntervalSinceReferenceDate;
      const double whole = std::floor(seconds);
      return plist_new_date(saturatingCast<int32_t>(whole),
                            saturatingCast<int32_t>((seconds - whole) * 1e6));
    }
    case ValueKind::Array: {
      plist_t array = plist_new_array();
      for (const Value& item : value.asArray()) {
        if (plist_t node = toPlist(item)) plist_array_append_item(array, node);
      }
      return array;
    }
    case ValueKind::Dictionary: {
      plist_t dictionary = plist_new_dict();
      for (const auto& [key, item] : value.asDictionary()) {
        if (!key.isString()) continue;
        if (plist_t node = toPlist(item)) {
          plist_dict_set_item(dictionary, key.asString().utf8().c_str(), node);
        }
      }
      return dictionary;
    }
    default:
      return nullptr;
  }
}

}  // namespace

std::string serializePropertyListDictionary(const Dictionary& dictionary) {
  plist_t root = toPlist(dictionary.isNil() ? Dictionary::dictionary() : dictionary);
  char* xml = nullptr;
  uint32_t length = 0;
  plist_to_xml(root, &xml, &length);
  std::string text(xml ? xml : "", length);
  std::free(xml);
  plist_free(root);
  return text;
}

Dictionary parseStringsText(const std::string& bytes) {
  return StringsParser(decodeText(bytes)).parse();
}

Dictionary parsePropertyListDictionary(const std::string& bytes) {
  plist_t root = nullptr;
  if (bytes.starts_with("bplist")) {
    plist_from_bin(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
  } else {
    plist_from_xml(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
  }
  if (!root) return Dictionary();
  const Value value = plist_get_node_type(root) == PLIST_DICT ? fromPlist(root) : Value();
  plist_free(root);
  return value.asDictionary();
}

Dictionary readTable(const String& path) {
  const Data contents = FileManager::defaultManager().contentsAtPath(path);
  if (contents.isNil()) return Dictionary();
  const std::string bytes(contents.asStringView());
  std::string_view head(bytes);
  while (!head.empty() && (head.front() == ' ' || head.front() == '\n' || head.front() == '\t' ||
                           head.front() == '\r'))
    head.remove_prefix(1);
  if (bytes.starts_with("bplist") || head.starts_with("<?xml") || head.starts_with("<plist")) {
    return parsePropertyListDictionary(bytes);
  }
  return parseStringsText(bytes);
}

}  // namespace tarnvik::strings_file
