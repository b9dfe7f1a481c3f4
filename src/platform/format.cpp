#include "platform/format.h"

#include <cstdio>
#include <vector>

namespace tarvex {

std::int64_t FmtArg::as_int() const {
  switch (kind_) {
    case Kind::kInt:
      return int_;
    case Kind::kDouble:
      return static_cast<std::int64_t>(dbl_);
    case Kind::kStr:
      return 0;
  }
  return 0;
}

double FmtArg::as_double() const {
  switch (kind_) {
    case Kind::kInt:
      return static_cast<double>(int_);
    case Kind::kDouble:
      return dbl_;
    case Kind::kStr:
      return 0.0;
  }
  return 0.0;
}

namespace {

// Hands out the arguments in order; past the end it yields an empty argument.
class ArgCursor {
 public:
  ArgCursor(const FmtArg* begin, const FmtArg* end) : it_(begin), end_(end) {}
  const FmtArg& next() { return it_ != end_ ? *it_++ : kNone; }

 private:
  static inline const FmtArg kNone{std::string_view()};
  const FmtArg* it_;
  const FmtArg* end_;
};

struct Conversion {
  std::string flags;
  int width = -1;
  int precision = -1;
  int int_bits = 32;
  char conv = 0;
};

// Reads flags, width, precision and length of one conversion starting after '%'.
std::size_t ParseConversion(std::string_view f, std::size_t i, ArgCursor& args,
                            Conversion& conversion) {
  while (i < f.size() && std::string_view("-+ #0").find(f[i]) != std::string_view::npos) {
    conversion.flags += f[i++];
  }
  auto read_number = [&](int& out) {
    if (i < f.size() && f[i] == '*') {
      out = static_cast<int>(static_cast<std::int32_t>(args.next().as_int()));
      ++i;
      return;
    }
    if (i < f.size() && f[i] >= '0' && f[i] <= '9') {
      out = 0;
      while (i < f.size() && f[i] >= '0' && f[i] <= '9') {
        out = out < 100000 ? out * 10 + (f[i] - '0') : out;
        ++i;
      }
    }
  };
  read_number(conversion.width);
  if (i < f.size() && f[i] == '.') {
    ++i;
    conversion.precision = 0;
    read_number(conversion.precision);
  }
  if (conversion.width < 0 && conversion.width != -1) {  // a negative '*' width means left-justify
    conversion.flags += '-';
    conversion.width = -conversion.width;
  }
  while (i < f.size() && std::string_view("hlLqjzt").find(f[i]) != std::string_view::npos) {
    if (f[i] == 'h') conversion.int_bits = conversion.int_bits == 16 ? 8 : 16;
    ++i;
  }
  conversion.conv = i < f.size() ? f[i++] : 0;
  return i;
}

std::string ConversionPrefix(const Conversion& conversion) {
  // Appended piece by piece: "." + std::to_string() trips a false -Wrestrict in GCC 12 -O2.
  std::string p = "%";
  p += conversion.flags;
  if (conversion.width >= 0) p += std::to_string(conversion.width);
  if (conversion.precision >= 0) {
    p += '.';
    p += std::to_string(conversion.precision);
  }
  return p;
}

template <typename T>
void AppendPrintf(std::string& out, const std::string& fmt, T value) {
  char small[128];
  int n = std::snprintf(small, sizeof small, fmt.c_str(), value);
  if (n < 0) return;
  if (static_cast<std::size_t>(n) < sizeof small) {
    out.append(small, static_cast<std::size_t>(n));
    return;
  }
  std::vector<char> big(static_cast<std::size_t>(n) + 1);
  std::snprintf(big.data(), big.size(), fmt.c_str(), value);
  out.append(big.data(), static_cast<std::size_t>(n));
}

void AppendInteger(std::string& out, const Conversion& conversion, const FmtArg& arg) {
  std::uint32_t low = static_cast<std::uint32_t>(arg.as_int());
  if (conversion.int_bits == 16) low &= 0xFFFF;
  if (conversion.int_bits == 8) low &= 0xFF;
  std::string fmt = ConversionPrefix(conversion) + conversion.conv;
  if (conversion.conv == 'd' || conversion.conv == 'i') {
    std::int32_t v = static_cast<std::int32_t>(low);
    if (conversion.int_bits == 16) v = static_cast<std::int16_t>(low);
    if (conversion.int_bits == 8) v = static_cast<std::int8_t>(low);
    AppendPrintf(out, fmt, static_cast<int>(v));
  } else {
    AppendPrintf(out, fmt, static_cast<unsigned>(low));
  }
}

void AppendString(std::string& out, const Conversion& conversion, const FmtArg& arg) {
  std::string_view s = arg.as_str();
  std::size_t zero = s.find('\0');
  std::string text(zero == std::string_view::npos ? s : s.substr(0, zero));
  AppendPrintf(out, ConversionPrefix(conversion) + "s", text.c_str());
}

void AppendConversion(std::string& out, const Conversion& conversion, ArgCursor& args) {
  switch (conversion.conv) {
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'o':
      AppendInteger(out, conversion, args.next());
      return;
    case 'c': {
      // One byte, padded like "%c"; a zero byte is kept and ends the line later.
      std::string one(1, static_cast<char>(args.next().as_int() & 0xFF));
      Conversion s = conversion;
      s.precision = -1;
      std::string padded = ConversionPrefix(s) + "s";
      std::string tmp;
      AppendPrintf(tmp, padded, "\x01");
      tmp[tmp.find('\x01')] = one[0];
      out += tmp;
      return;
    }
    case 's':
      AppendString(out, conversion, args.next());
      return;
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
      AppendPrintf(out, ConversionPrefix(conversion) + conversion.conv, args.next().as_double());
      return;
    case '%':
      out += '%';
      return;
    default:
      return;  // an unknown conversion prints nothing and takes no argument
  }
}

}  // namespace

void AppendFormat(std::string& line, std::string_view format, std::initializer_list<FmtArg> args) {
  ArgCursor cursor(args.begin(), args.end());
  std::size_t i = 0;
  while (i < format.size()) {
    std::size_t pct = format.find('%', i);
    if (pct == std::string_view::npos) {
      line.append(format.substr(i));
      break;
    }
    line.append(format.substr(i, pct - i));
    Conversion conversion;
    i = ParseConversion(format, pct + 1, cursor, conversion);
    AppendConversion(line, conversion, cursor);
  }
  std::size_t zero = line.find('\0');
  if (zero != std::string::npos) line.resize(zero);
}

std::string Format(std::string_view format, std::initializer_list<FmtArg> args) {
  std::string line;
  AppendFormat(line, format, args);
  return line;
}

std::string Counted(std::uint64_t n, std::string_view noun) {
  std::string text = std::to_string(n) + " ";
  text += noun;
  if (n != 1) text += 's';
  return text;
}

}  // namespace tarvex
