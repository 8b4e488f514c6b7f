#include "text.h"

namespace jet {

std::u16string decodeText(ByteView stored) {
    const std::size_t size = stored.size();
    const std::uint8_t* bytes = stored.data();
    std::u16string text;
    if (size >= 2 && bytes[0] == 0xff && bytes[1] == 0xfe) {
        // Never more characters than bytes: written in place, then cut to
        // length. Tables are read a whole row set at a time, so this runs
        // for every text of every row.
        text.resize(size - 2);
        char16_t* out = text.data();
        bool compressed = true;
        std::size_t i = 2;
        while (i < size) {
            if (bytes[i] == 0) {
                compressed = !compressed;
                ++i;
            } else if (compressed) {
                *out++ = bytes[i];
                ++i;
            } else if (i + 1 < size) {
                *out++ = static_cast<char16_t>(bytes[i] | (bytes[i + 1] << 8));
                i += 2;
            } else {
                break;  // a lone trailing byte carries no character
            }
        }
        text.resize(static_cast<std::size_t>(out - text.data()));
        return text;
    }
    text.resize(size / 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
    }
    return text;
}

void appendUtf8(std::string& out, std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
            continue;
        }
        if (c >= 0xd800 && c <= 0xdbff && i + 1 < text.size() && text[i + 1] >= 0xdc00 &&
            text[i + 1] <= 0xdfff) {
            c = 0x10000 + ((c - 0xd800) << 10) + (text[i + 1] - 0xdc00);
            ++i;
        } else if (c >= 0xd800 && c <= 0xdfff) {
            c = 0xfffd;
        }
        if (c < 0x800) {
            out.push_back(static_cast<char>(0xc0 | (c >> 6)));
        } else if (c < 0x10000) {
            out.push_back(static_cast<char>(0xe0 | (c >> 12)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3f)));
        } else {
            out.push_back(static_cast<char>(0xf0 | (c >> 18)));
            out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3f)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3f)));
        }
        out.push_back(static_cast<char>(0x80 | (c & 0x3f)));
    }
}

std::string toUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    appendUtf8(out, text);
    return out;
}

std::u16string fromUtf8(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        const auto byte = static_cast<unsigned char>(text[i]);
        std::size_t length = byte < 0x80 ? 1 : (byte >> 5) == 0x6 ? 2 : (byte >> 4) == 0xe ? 3
                                            : (byte >> 3) == 0x1e ? 4 : 0;
        char32_t c = length == 1 ? byte : length == 2 ? (byte & 0x1f)
                                   : length == 3 ? (byte & 0x0f) : (byte & 0x07);
        bool valid = length != 0 && i + length <= text.size();
        for (std::size_t k = 1; valid && k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            valid = (next & 0xc0) == 0x80;
            c = (c << 6) | (next & 0x3f);
        }
        static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (!valid || c < kSmallest[length] || c > 0x10ffff || (c >= 0xd800 && c <= 0xdfff)) {
            out.push_back(u'\ufffd');
            ++i;
            continue;
        }
        if (c >= 0x10000) {
            c -= 0x10000;
            out.push_back(static_cast<char16_t>(0xd800 + (c >> 10)));
            out.push_back(static_cast<char16_t>(0xdc00 + (c & 0x3ff)));
        } else {
            out.push_back(static_cast<char16_t>(c));
        }
        i += length;
    }
    return out;
}

}  // namespace jet
