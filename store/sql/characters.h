#pragma once

// The character classes that the SQL texts and the filter texts share.

namespace sql {

inline bool isBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

inline bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// Letters of any alphabet (everything above ASCII counts), digits and the
// underscore make names.
inline bool isNameChar(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || isDigit(c) || c == u'_' ||
           c >= 0x80;
}

}  // namespace sql
