#include "ifo/fields.h"

#include "ifo/source.h"
#include "platform/format.h"

namespace tarvex {

std::uint32_t FieldCount(ByteView bytes, const FieldDesc& field) {
  if (field.count_at >= 0) return bytes.u8(static_cast<std::size_t>(field.count_at));
  return field.repeat == 0 ? 1 : field.repeat;
}

std::size_t FieldOffset(const FieldDesc& field, std::uint32_t i) {
  return field.offset + static_cast<std::size_t>(field.stride) * i;
}

std::uint32_t FieldValue(ByteView bytes, const FieldDesc& field, std::uint32_t i) {
  std::size_t off = FieldOffset(field, i);
  switch (field.store) {
    case Store::kU8:
      return bytes.u8(off);
    case Store::kBe16:
      return bytes.be16(off);
    case Store::kBe32:
      return bytes.be32(off);
    case Store::kHost32:
      return bytes.le32(off);
    case Store::kBytes:
    case Store::kText:
      break;
  }
  return field.width == 2 ? bytes.be16(off) : bytes.be32(off);
}

std::string FieldKey(const FieldDesc& field, std::uint32_t i, std::string_view prefix) {
  std::string key(prefix);
  bool repeated = field.repeat != 0 || field.count_at >= 0;
  key += repeated ? Format(field.key, {i + 1}) : std::string(field.key);
  return key;
}

std::string HexBytes(ByteView bytes, std::size_t off, std::size_t n) {
  std::string out;
  for (std::size_t b = 0; b < n; ++b) AppendFormat(out, "%02x", {bytes.u8(off, b)});
  return out;
}

namespace {

std::string HexWords(ByteView bytes, std::size_t off, std::size_t n) {
  std::string out;
  for (std::size_t w = 0; w < n; ++w) AppendFormat(out, "%04x", {bytes.be16(off + 2 * w)});
  return out;
}

}  // namespace

std::string FormatSourceValue(ByteView bytes, const FieldDesc& field, std::uint32_t i) {
  std::size_t off = FieldOffset(field, i);
  switch (field.form) {
    case SourceForm::kNone:
      return {};
    case SourceForm::kDecimal:
      return Format("%d", {FieldValue(bytes, field, i)});
    case SourceForm::kText:
      return std::string(bytes.cstr(off, field.width));
    case SourceForm::kVersion:
      return Format("%d.%d", {bytes.u8(off) >> 4, bytes.u8(off) & 15});
    case SourceForm::kHexBytesX:
      return std::string("x").append(HexBytes(bytes, off, field.width));
    case SourceForm::kHexBytes:
      return HexBytes(bytes, off, field.width);
    case SourceForm::kHex32X:
      return Format("x%08x", {FieldValue(bytes, field, i)});
    case SourceForm::kHex32:
      return Format("%08x", {FieldValue(bytes, field, i)});
    case SourceForm::kHex16:
      return Format("%04x", {FieldValue(bytes, field, i)});
    case SourceForm::kHexWordsX:
      return std::string("x").append(HexWords(bytes, off, field.width / 2));
    case SourceForm::kHexWords:
      return HexWords(bytes, off, field.width / 2);
  }
  return {};
}

namespace {

void PutNumber(ByteWriter& out, const FieldDesc& field, std::size_t off, std::uint32_t v) {
  switch (field.width) {
    case 1:
      out.put_u8(off, static_cast<std::uint8_t>(v));
      break;
    case 2:
      out.put_be16(off, v);
      break;
    default:
      out.put_be32(off, v);
      break;
  }
}

}  // namespace

void StoreSourceValue(ByteWriter out, const FieldDesc& field, std::uint32_t i,
                      std::string_view text) {
  std::size_t off = FieldOffset(field, i);
  switch (field.load) {
    case LoadRule::kComputed:
      break;
    case LoadRule::kDecimal:
      PutNumber(out, field, off, ParseDecimal(text));
      break;
    case LoadRule::kXDecimal:
      PutNumber(out, field, off, ParseDecimal(text.starts_with('x') ? text.substr(1) : text));
      break;
    case LoadRule::kText:
      for (std::size_t c = 0; c < field.width; ++c) {
        out.put_u8(off + c, c < text.size() ? static_cast<std::uint8_t>(text[c]) : 0);
      }
      break;
    case LoadRule::kVersion: {
      std::uint32_t major = ParseDecimal(text.substr(0, text.empty() ? 0 : 1));
      std::uint32_t minor = text.size() > 2 ? ParseDecimal(text.substr(2)) : 0;
      out.put_u8(off, static_cast<std::uint8_t>(((major & 15) << 4) | (minor & 15)));
      break;
    }
    case LoadRule::kHexBytes: {
      std::vector<std::uint8_t> b = ParseHexBytes(text, field.width);
      out.put_bytes(off, ByteView(b));
      break;
    }
    case LoadRule::kHexValue:
      PutNumber(out, field, off, ParseHexValue(text));
      break;
    case LoadRule::kHexWords: {
      std::size_t pos = !text.empty() && text[0] == 'x' ? 1 : 0;
      for (std::size_t w = 0; w < field.width / 2u; ++w, pos += 4) {
        out.put_be16(off + 2 * w, ParseHexWord(pos < text.size() ? text.substr(pos) : ""));
      }
      break;
    }
  }
}

void ReportFields(AppContext& ctx, ByteView bytes, std::span<const FieldDesc> fields,
                  const std::string& indent) {
  for (const FieldDesc& field : fields) {
    if (field.style == ReportStyle::kNone) continue;
    if (field.style == ReportStyle::kHook) {
      if (field.hook) field.hook(ctx, bytes, field, indent);
      continue;
    }
    bool repeated = field.repeat != 0 || field.count_at >= 0;
    std::uint32_t count = FieldCount(bytes, field);
    for (std::uint32_t i = 0; i < count; ++i) {
      std::size_t off = FieldOffset(field, i);
      std::string line = indent;
      switch (field.style) {
        case ReportStyle::kValue:
          if (repeated) {
            AppendFormat(line, field.report, {i + 1, FieldValue(bytes, field, i)});
          } else {
            AppendFormat(line, field.report, {FieldValue(bytes, field, i)});
          }
          break;
        case ReportStyle::kBytes: {
          // Up to 8 bytes per line are enough for every table that reports byte by byte.
          std::uint8_t b[8] = {};
          for (std::size_t k = 0; k < 8 && k < field.width; ++k) b[k] = bytes.u8(off, k);
          if (repeated) {
            AppendFormat(line, field.report,
                         {i + 1, b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7]});
          } else {
            AppendFormat(line, field.report, {b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7]});
          }
          break;
        }
        case ReportStyle::kVersion:
          AppendFormat(line, field.report, {bytes.u8(off) >> 4, bytes.u8(off) & 15});
          break;
        case ReportStyle::kCstr:
          AppendFormat(line, field.report, {bytes.cstr(off)});
          break;
        case ReportStyle::kNone:
        case ReportStyle::kHook:
          break;
      }
      ctx.AddReportLine(line);
    }
  }
}

void DisassembleFields(AppContext& ctx, ByteView bytes, std::span<const FieldDesc> fields,
                       std::string_view section, std::string_view prefix) {
  for (const FieldDesc& field : fields) {
    if (field.form == SourceForm::kNone) continue;
    std::uint32_t count = FieldCount(bytes, field);
    for (std::uint32_t i = 0; i < count; ++i) {
      WriteSourceValue(ctx, section, FieldKey(field, i, prefix),
                       FormatSourceValue(bytes, field, i));
    }
  }
}

void LoadFields(AppContext& ctx, ByteWriter out, ByteView out_view,
                std::span<const FieldDesc> fields, std::string_view section,
                std::string_view caption, std::string_view prefix) {
  std::string value;
  for (const FieldDesc& field : fields) {
    if (field.load == LoadRule::kComputed) continue;
    std::uint32_t count = FieldCount(out_view, field);
    for (std::uint32_t i = 0; i < count; ++i) {
      std::string key = FieldKey(field, i, prefix);
      if (!ReadSourceValue(ctx, section, key, value)) {
        ctx.ui.ShowMessage(field.missing_text ? std::string(field.missing_text) : key, caption);
        continue;
      }
      StoreSourceValue(out, field, i, value);
    }
  }
}

}  // namespace tarvex
