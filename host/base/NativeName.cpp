// SPDX-License-Identifier: Apache-2.0
#include "host/base/NativeName.h"

#include <algorithm>
#include <QTextCodec>

#include "pdflib/Utf8.h"

namespace {

constexpr char32_t kEscape = 0xDC00;

template <typename Sink>
void Decode(std::string_view bytes, Sink sink) {
  while (!bytes.empty()) {
    const Utf8::Decoded next = Utf8::Decode(bytes);
    sink(next.length > 0 ? next.character : kEscape + static_cast<unsigned char>(bytes[0]));
    bytes.remove_prefix(std::max<std::size_t>(next.length, 1));
  }
}

bool IsEscape(QChar unit) {
  return unit.unicode() >= kEscape + 0x80 && unit.unicode() <= kEscape + 0xFF;
}

class NativeCodec : public QTextCodec {
 public:
  QByteArray name() const override { return "vorlane-native"; }
  int mibEnum() const override { return -1968; }

 protected:
  QString convertToUnicode(const char* text, int length, ConverterState*) const override {
    return NativeName::ToText(std::string_view(text, static_cast<std::size_t>(length)));
  }
  QByteArray convertFromUnicode(const QChar* text, int length, ConverterState*) const override {
    return NativeName::ToBytes(QString::fromRawData(text, length));
  }
};

}  // namespace

QString NativeName::ToText(std::string_view bytes) {
  const std::size_t plain = Utf8::AsciiPrefix(bytes);  // nearly always all
  QString text = QString::fromLatin1(bytes.data(), static_cast<int>(plain));
  Decode(bytes.substr(plain), [&](char32_t codePoint) {
    if (codePoint < 0x10000) {
      text.append(QChar(static_cast<ushort>(codePoint)));
    } else {
      text.append(QChar(QChar::highSurrogate(codePoint))).append(QChar(QChar::lowSurrogate(codePoint)));
    }
  });
  return text;
}

QByteArray NativeName::ToBytes(const QString& text) {
  if (std::none_of(text.begin(), text.end(), IsEscape)) return text.toUtf8();
  QByteArray bytes;
  bytes.reserve(text.size());
  int from = 0;
  for (int i = 0; i < text.size(); ++i) {
    const QChar unit = text[i];
    if (unit.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      ++i;
      continue;
    }
    if (!IsEscape(unit)) continue;
    bytes += text.midRef(from, i - from).toUtf8();
    bytes += static_cast<char>(unit.unicode() - kEscape);
    from = i + 1;
  }
  return bytes + text.midRef(from).toUtf8();
}

std::wstring NativeName::ToWide(std::string_view bytes) {
  const std::size_t plain = Utf8::AsciiPrefix(bytes);
  std::wstring wide(bytes.begin(), bytes.begin() + plain);
  Decode(bytes.substr(plain), [&](char32_t codePoint) { wide.push_back(static_cast<wchar_t>(codePoint)); });
  return wide;
}

std::wstring NativeName::ToUnitPerByte(std::string_view bytes) {
  std::wstring wide;
  wide.reserve(bytes.size());
  for (const char byte : bytes) wide.push_back(static_cast<unsigned char>(byte));
  return wide;
}

void NativeName::InstallAsLocale() {
  // Qt owns and deletes every codec.
  static QTextCodec* const codec = new NativeCodec;
  QTextCodec::setCodecForLocale(codec);
}
