#include "cli/JSONObject.h"

#include "base/FileName.h"

#include <QByteArray>
#include <QString>

#include <cstring>

namespace ombrel::cli {
namespace {

/// `text` is UTF-8.
void appendString(std::string& json, std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    json += '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            json += "\\u00";
            json += digits[byte >> 4];
            json += digits[byte & 0xFU];
        } else {
            json += c;
        }
    }
    json += '"';
}

} // namespace

void JSONObject::add(std::string_view key, std::string_view text) {
    std::string json;
    if (FileName::isValidUTF8(text))
        appendString(json, text);
    else
        appendString(json, QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toStdString());
    addLiteral(key, json);
}

void JSONObject::addBytes(std::string_view key, std::string_view bytes) {
    add(key, bytes);
    if (FileName::isValidUTF8(bytes)) return;
    const auto base64 = QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())).toBase64();
    add(std::string(key) + "Bytes", std::string_view(base64.data(), static_cast<std::size_t>(base64.size())));
}

void JSONObject::addErrorName(std::string_view key, std::optional<int> number) {
    if (!number) return add(key, std::nullopt);
    const char* const name = ::strerrorname_np(*number);
    add(key, name ? std::string(name) : std::to_string(*number));
}

void JSONObject::addLiteral(std::string_view key, std::string_view literal) {
    if (text_.size() > 1) text_ += ',';
    appendString(text_, key);
    text_ += ':';
    text_ += literal;
}

} // namespace ombrel::cli
