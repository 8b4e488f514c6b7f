#include "index_key.h"

#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <string>

#include "error.h"
#include "format.h"
#include "text.h"

namespace jet {
namespace {

constexpr std::uint8_t kValueAscending = 0x7f;
constexpr std::uint8_t kNullAscending = 0x00;
constexpr std::uint8_t kValueDescending = 0x80;
constexpr std::uint8_t kNullDescending = 0xff;

// Ascending, True (-1) sorts before False (0).
constexpr std::uint8_t kTrue = 0x00;
constexpr std::uint8_t kFalse = 0xff;

// Binary values are cut into 8-byte segments, each followed by a byte that
// says how many of its bytes are data, or kMoreSegments.
constexpr std::size_t kSegmentSize = 8;
constexpr std::uint8_t kMoreSegments = 0x09;

// ---------------------------------------------------------------------------
// Text in the General sort order (0x409, version 0).
//
// A text key is the primary weights of its characters, kWeightsEnd, the
// accent of each character (kNoAccent for none, trailing ones left out) and,
// when the text holds hidden characters (controls, apostrophe, hyphen), three
// kWeightsEnd and for each hidden character its position and code. Letters
// weigh the same in both cases, so keys ignore case.

constexpr std::uint16_t kGeneralSortOrder = format::kSortGeneral;
constexpr std::uint8_t kGeneralLegacyVersion = 0;
constexpr std::size_t kMaxTextKeyCharacters = 255;  // the longest text column

constexpr std::uint8_t kWeightsEnd = 0x01;
constexpr std::uint8_t kTextEnd = 0x00;
constexpr std::uint8_t kNoAccent = 0x02;
constexpr std::uint8_t kHiddenMarker = 0x06;
// A hidden character's position: 7 + 4 x (characters with weights before
// it), with the high bit set, big-endian.
constexpr std::uint16_t kHiddenPositionBase = 7;
constexpr std::uint16_t kHiddenPositionStep = 4;
constexpr std::uint16_t kHiddenPositionFlag = 0x8000;

// Accents: the secondary weight of a letter.
constexpr std::uint8_t kOrdinal = 0x03;  // ª º, and the dotless ı
constexpr std::uint8_t kAcute = 0x0e;
constexpr std::uint8_t kGrave = 0x0f;
constexpr std::uint8_t kDotAbove = 0x10;
constexpr std::uint8_t kCircumflex = 0x12;
constexpr std::uint8_t kDiaeresis = 0x13;
constexpr std::uint8_t kBreve = 0x15;
constexpr std::uint8_t kTilde = 0x19;
constexpr std::uint8_t kRing = 0x1a;
constexpr std::uint8_t kCedilla = 0x1c;
constexpr std::uint8_t kStroke = 0x21;
constexpr std::uint8_t kEth = 0x68;

struct CharacterKey {
    std::array<std::uint8_t, 2> weight{};  // primary weight, one or two bytes
    std::uint8_t weightLength = 0;         // 0: a hidden character
    std::uint8_t accent = kNoAccent;
    std::uint8_t hiddenCode = 0;
};

// Primary weights of A to Z; the gaps are for letters of other alphabets.
constexpr std::array<std::uint8_t, 26> kLetterWeights = {
    0x4a, 0x4c, 0x4d, 0x4f, 0x51, 0x53, 0x55, 0x57, 0x59, 0x5b, 0x5c, 0x5e, 0x60,
    0x62, 0x64, 0x66, 0x68, 0x69, 0x6b, 0x6d, 0x6f, 0x71, 0x73, 0x75, 0x76, 0x78};
constexpr std::uint8_t kDigitZeroWeight = 0x36;  // then every second value

struct Symbol {
    char16_t character;
    std::uint8_t first;
    std::uint8_t second;  // 0: a one-byte weight
};

// Punctuation and symbols of ASCII and Latin-1, and the white space.
constexpr Symbol kSymbols[] = {
    {u'\t', 0x08, 0x03}, {u'\n', 0x08, 0x04},     {u'\v', 0x08, 0x05}, {u'\f', 0x08, 0x06},
    {u'\r', 0x08, 0x07}, {u'\u00a0', 0x08, 0x02}, {u' ', 0x07, 0},     {u'!', 0x09, 0},
    {u'"', 0x0a, 0},     {u'#', 0x0c, 0},         {u'$', 0x0e, 0},     {u'%', 0x10, 0},
    {u'&', 0x12, 0},     {u'(', 0x14, 0},         {u')', 0x16, 0},     {u'*', 0x18, 0},
    {u',', 0x1a, 0},     {u'.', 0x1c, 0},         {u'/', 0x1e, 0},     {u':', 0x20, 0},
    {u';', 0x22, 0},     {u'?', 0x24, 0},         {u'@', 0x26, 0},     {u'[', 0x27, 0},
    {u'\\', 0x29, 0},    {u']', 0x2a, 0},         {u'+', 0x2c, 0},     {u'<', 0x2e, 0},
    {u'=', 0x30, 0},     {u'>', 0x32, 0},         {u'^', 0x2b, 0x02},  {u'_', 0x2b, 0x03},
    {u'`', 0x2b, 0x07},  {u'{', 0x2b, 0x09},      {u'|', 0x2b, 0x0b},  {u'}', 0x2b, 0x0d},
    {u'~', 0x2b, 0x0f},  {u'¡', 0x2b, 0x10},      {u'¦', 0x2b, 0x11},  {u'¨', 0x2b, 0x12},
    {u'¯', 0x2b, 0x13},  {u'´', 0x2b, 0x14},      {u'¸', 0x2b, 0x15},  {u'¿', 0x2b, 0x16},
    {u'±', 0x33, 0x04},  {u'«', 0x33, 0x05},      {u'»', 0x33, 0x07},  {u'×', 0x33, 0x09},
    {u'÷', 0x33, 0x0a},  {u'¢', 0x34, 0xa6},      {u'£', 0x34, 0xa7},  {u'¤', 0x34, 0xa8},
    {u'¥', 0x34, 0xa9},  {u'§', 0x34, 0xaa},      {u'©', 0x34, 0xab},  {u'¬', 0x34, 0xac},
    {u'®', 0x34, 0xad},  {u'°', 0x34, 0xae},      {u'µ', 0x34, 0xaf},  {u'¶', 0x34, 0xb0},
    {u'·', 0x34, 0xb1},  {u'¼', 0x37, 0x12},      {u'½', 0x37, 0x16},  {u'¾', 0x37, 0x1a},
};

struct AccentedLetter {
    char16_t upper;
    char16_t lower;  // 0: none in this range
    char base;
    std::uint8_t accent;
};

constexpr AccentedLetter kAccentedLetters[] = {
    {u'À', u'à', 'A', kGrave},      {u'Á', u'á', 'A', kAcute},      {u'Â', u'â', 'A', kCircumflex},
    {u'Ã', u'ã', 'A', kTilde},      {u'Ä', u'ä', 'A', kDiaeresis},  {u'Å', u'å', 'A', kRing},
    {u'Ç', u'ç', 'C', kCedilla},    {u'Ð', u'ð', 'D', kEth},        {u'È', u'è', 'E', kGrave},
    {u'É', u'é', 'E', kAcute},      {u'Ê', u'ê', 'E', kCircumflex}, {u'Ë', u'ë', 'E', kDiaeresis},
    {u'Ğ', u'ğ', 'G', kBreve},      {u'Ì', u'ì', 'I', kGrave},      {u'Í', u'í', 'I', kAcute},
    {u'Î', u'î', 'I', kCircumflex}, {u'Ï', u'ï', 'I', kDiaeresis},  {u'İ', 0, 'I', kDotAbove},
    {u'ı', 0, 'I', kOrdinal},       {u'Ñ', u'ñ', 'N', kTilde},      {u'Ò', u'ò', 'O', kGrave},
    {u'Ó', u'ó', 'O', kAcute},      {u'Ô', u'ô', 'O', kCircumflex}, {u'Õ', u'õ', 'O', kTilde},
    {u'Ö', u'ö', 'O', kDiaeresis},  {u'Ø', u'ø', 'O', kStroke},     {u'Ş', u'ş', 'S', kCedilla},
    {u'Ù', u'ù', 'U', kGrave},      {u'Ú', u'ú', 'U', kAcute},      {u'Û', u'û', 'U', kCircumflex},
    {u'Ü', u'ü', 'U', kDiaeresis},  {u'Ý', u'ý', 'Y', kAcute},      {u'ÿ', 0, 'Y', kDiaeresis},
    {u'ª', 0, 'A', kOrdinal},       {u'º', 0, 'O', kOrdinal},
};

// Letters keyed as two letters.
struct Ligature {
    char16_t upper;
    char16_t lower;
    char first;
    char second;
};
constexpr Ligature kLigatures[] = {
    {u'Æ', u'æ', 'A', 'E'}, {u'Þ', u'þ', 'T', 'H'}, {u'ß', 0, 'S', 'S'}};

// Hidden characters: the controls (numbered in order from 3), apostrophe,
// hyphen and soft hyphen.
constexpr std::uint8_t kFirstControlCode = 0x03;
constexpr Symbol kHiddenPunctuation[] = {{u'\'', 0x80, 0}, {u'-', 0x82, 0}, {u'\u00ad', 0x83, 0}};

bool isHiddenControl(char16_t c) {
    return (c >= 0x01 && c <= 0x08) || (c >= 0x0e && c <= 0x1f) || (c >= 0x7f && c <= 0x9f);
}

CharacterKey letterKey(char letter, std::uint8_t accent) {
    CharacterKey key;
    key.weight[0] = kLetterWeights[letter - 'A'];
    key.weightLength = 1;
    key.accent = accent;
    return key;
}

// The key of each character this encoder knows, indexed by the character;
// characters above U+00FF that it knows are those of kAccentedLetters.
struct CharacterTable {
    std::array<std::optional<CharacterKey>, 0x100> latin;

    CharacterTable() {
        for (char letter = 'A'; letter <= 'Z'; ++letter) {
            latin[static_cast<unsigned char>(letter)] = letterKey(letter, kNoAccent);
            latin[static_cast<unsigned char>(letter - 'A' + 'a')] = letterKey(letter, kNoAccent);
        }
        for (int digit = 0; digit <= 9; ++digit) {
            CharacterKey key;
            key.weight[0] = static_cast<std::uint8_t>(kDigitZeroWeight + 2 * digit);
            key.weightLength = 1;
            latin['0' + digit] = key;
        }
        // The superscript digits weigh as digits, with no accent.
        latin[u'¹'] = latin['1'];
        latin[u'²'] = latin['2'];
        latin[u'³'] = latin['3'];
        for (const Symbol& symbol : kSymbols) {
            CharacterKey key;
            key.weight = {symbol.first, symbol.second};
            key.weightLength = symbol.second == 0 ? 1 : 2;
            latin[symbol.character] = key;
        }
        for (const Ligature& ligature : kLigatures) {
            CharacterKey key;
            key.weight = {kLetterWeights[ligature.first - 'A'],
                          kLetterWeights[ligature.second - 'A']};
            key.weightLength = 2;
            latin[ligature.upper] = key;
            if (ligature.lower != 0)
                latin[ligature.lower] = key;
        }
        for (const AccentedLetter& letter : kAccentedLetters) {
            const CharacterKey key = letterKey(letter.base, letter.accent);
            if (letter.upper < latin.size())
                latin[letter.upper] = key;
            if (letter.lower != 0 && letter.lower < latin.size())
                latin[letter.lower] = key;
        }
        std::uint8_t code = kFirstControlCode;
        for (std::size_t index = 0; index < latin.size(); ++index) {
            const auto c = static_cast<char16_t>(index);
            if (!isHiddenControl(c))
                continue;
            CharacterKey key;
            key.hiddenCode = code++;
            latin[c] = key;
        }
        for (const Symbol& symbol : kHiddenPunctuation) {
            CharacterKey key;
            key.hiddenCode = symbol.first;
            latin[symbol.character] = key;
        }
    }
};

std::optional<CharacterKey> characterKey(char16_t c) {
    static const CharacterTable table;
    if (c < table.latin.size())
        return table.latin[c];
    for (const AccentedLetter& letter : kAccentedLetters) {
        if (c == letter.upper || c == letter.lower)
            return letterKey(letter.base, letter.accent);
    }
    return std::nullopt;
}

std::string hexCode(unsigned value, int digits) {
    static const char* const kHex = "0123456789ABCDEF";
    std::string text(digits, '0');
    for (int i = digits - 1; i >= 0; --i, value >>= 4)
        text[i] = kHex[value & 0xf];
    return text;
}

bool isTextual(const Column& column) {
    return column.type == ColumnType::Text || column.type == ColumnType::Memo;
}

void checkSortOrder(const Column& column) {
    if (column.sortOrder != kGeneralSortOrder || column.sortVersion != kGeneralLegacyVersion) {
        throw Error("text column " + toUtf8(column.name) + " is sorted in sort order 0x" +
                    hexCode(column.sortOrder, 4) + " version " +
                    std::to_string(column.sortVersion) +
                    "; only the General sort order of Access 2000 (0x0409 version 0) is supported");
    }
}

void appendText(Bytes& key, const Column& column, std::u16string_view text) {
    checkSortOrder(column);
    if (column.type == ColumnType::Memo && text.size() > kMaxTextKeyCharacters) {
        throw Error("a memo of " + std::to_string(text.size()) + " characters in column " +
                    toUtf8(column.name) + " is longer than the " +
                    std::to_string(kMaxTextKeyCharacters) + " characters whose index key is known");
    }
    // Trailing spaces do not count in a key.
    while (!text.empty() && text.back() == u' ')
        text.remove_suffix(1);
    if (text.size() > kMaxTextKeyCharacters) {
        throw Error("a text of " + std::to_string(text.size()) + " characters in column " +
                    toUtf8(column.name) + " is too long for an index key");
    }

    Bytes accents;
    Bytes hidden;
    for (const char16_t c : text) {
        const std::optional<CharacterKey> found = characterKey(c);
        if (!found) {
            throw Error("the character U+" + hexCode(c, 4) + " in column " + toUtf8(column.name) +
                        " has no known place in the General sort order");
        }
        if (found->weightLength == 0) {
            const std::uint16_t position = static_cast<std::uint16_t>(
                kHiddenPositionFlag | (kHiddenPositionBase + kHiddenPositionStep * accents.size()));
            hidden.push_back(static_cast<std::uint8_t>(position >> 8));
            hidden.push_back(static_cast<std::uint8_t>(position));
            hidden.push_back(kHiddenMarker);
            hidden.push_back(found->hiddenCode);
            continue;
        }
        key.insert(key.end(), found->weight.begin(), found->weight.begin() + found->weightLength);
        accents.push_back(found->accent);
    }
    key.push_back(kWeightsEnd);
    while (!accents.empty() && accents.back() <= kNoAccent)
        accents.pop_back();
    key.insert(key.end(), accents.begin(), accents.end());
    if (!hidden.empty()) {
        key.insert(key.end(), {kWeightsEnd, kWeightsEnd, kWeightsEnd});
        key.insert(key.end(), hidden.begin(), hidden.end());
    }
}

// Appends the bytes of an integer big-endian, its sign bit flipped so that
// negative numbers sort first.
void appendSigned(Bytes& key, std::uint64_t bits, int size) {
    bits ^= std::uint64_t{1} << (8 * size - 1);
    for (int i = size - 1; i >= 0; --i)
        key.push_back(static_cast<std::uint8_t>(bits >> (8 * i)));
}

// IEEE numbers: a positive number gets its sign bit flipped, a negative one
// all its bits, so that the bytes sort as the numbers do.
void appendFloating(Bytes& key, std::uint64_t bits, int size) {
    const std::uint64_t sign = std::uint64_t{1} << (8 * size - 1);
    const std::uint64_t mask = size == 8 ? ~std::uint64_t{0} : (sign << 1) - 1;
    bits = (bits & sign) != 0 ? ~bits & mask : bits ^ sign;
    for (int i = size - 1; i >= 0; --i)
        key.push_back(static_cast<std::uint8_t>(bits >> (8 * i)));
}

void appendBinary(Bytes& key, const Bytes& data) {
    std::size_t at = 0;
    while (data.size() - at > kSegmentSize) {
        key.insert(key.end(), data.begin() + at, data.begin() + at + kSegmentSize);
        key.push_back(kMoreSegments);
        at += kSegmentSize;
    }
    if (at == data.size())
        return;
    const std::size_t length = data.size() - at;
    key.insert(key.end(), data.begin() + at, data.end());
    key.insert(key.end(), kSegmentSize - length, 0);
    key.push_back(static_cast<std::uint8_t>(length));
}

[[noreturn]] void wrongKind(const Column& column) {
    throw Error("a value of the wrong kind for the " + columnTypeName(column.type) + " column " +
                toUtf8(column.name));
}

std::int64_t integerIn(const Column& column, const Value& value, std::int64_t low,
                       std::int64_t high) {
    if (value.kind() != Value::Kind::Integer)
        wrongKind(column);
    const std::int64_t number = value.asInteger();
    if (number < low || number > high) {
        throw Error("the value " + std::to_string(number) + " does not fit the " +
                    columnTypeName(column.type) + " column " + toUtf8(column.name));
    }
    return number;
}

// Appends the value's encoding, in ascending order.
void appendValue(Bytes& key, const Column& column, const Value& value) {
    switch (column.type) {
        case ColumnType::Boolean:
            // Jet keeps no Null in a Yes/No column: its null bit is its value.
            if (!value.isNull() && value.kind() != Value::Kind::Boolean)
                wrongKind(column);
            key.push_back(!value.isNull() && value.asBoolean() ? kTrue : kFalse);
            return;
        case ColumnType::Byte:
            key.push_back(static_cast<std::uint8_t>(integerIn(column, value, 0, 0xff)));
            return;
        case ColumnType::Integer:
            appendSigned(key, static_cast<std::uint64_t>(integerIn(column, value, -32768, 32767)),
                         2);
            return;
        case ColumnType::LongInteger:
            appendSigned(
                key, static_cast<std::uint64_t>(integerIn(column, value, INT32_MIN, INT32_MAX)), 4);
            return;
        case ColumnType::Currency:
            if (value.kind() != Value::Kind::Currency)
                wrongKind(column);
            appendSigned(key, static_cast<std::uint64_t>(value.asCurrency().tenThousandths), 8);
            return;
        case ColumnType::Single: {
            if (value.kind() != Value::Kind::Double)
                wrongKind(column);
            const float single = static_cast<float>(value.asDouble());
            if (static_cast<double>(single) != value.asDouble()) {
                throw Error("the value of the Single column " + toUtf8(column.name) +
                            " is not a Single");
            }
            appendFloating(key, std::bit_cast<std::uint32_t>(single), 4);
            return;
        }
        case ColumnType::Double:
            if (value.kind() != Value::Kind::Double)
                wrongKind(column);
            appendFloating(key, std::bit_cast<std::uint64_t>(value.asDouble()), 8);
            return;
        case ColumnType::DateTime:
            if (value.kind() != Value::Kind::Date)
                wrongKind(column);
            appendFloating(key, std::bit_cast<std::uint64_t>(value.asDate().oleDays), 8);
            return;
        case ColumnType::Binary:
            if (value.kind() != Value::Kind::Bytes)
                wrongKind(column);
            appendBinary(key, value.asBytes());
            return;
        case ColumnType::Text:
        case ColumnType::Memo:
            if (value.kind() != Value::Kind::Text)
                wrongKind(column);
            appendText(key, column, value.asText());
            return;
        default:
            throw Error("keys of the " + columnTypeName(column.type) + " column " +
                        toUtf8(column.name) + " are not supported");
    }
}

const Value& valueOf(const TableDefinition& table, const std::vector<Value>& values,
                     std::uint16_t columnNumber, const Column** column) {
    for (std::size_t i = 0; i < table.columns.size() && i < values.size(); ++i) {
        if (table.columns[i].number == columnNumber) {
            *column = &table.columns[i];
            return values[i];
        }
    }
    throw Error("an index of table " + toUtf8(table.name) + " names column " +
                std::to_string(columnNumber) + ", which the row does not have");
}

}  // namespace

void checkKeyableColumn(const Column& column) {
    switch (column.type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::LongInteger:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::DateTime:
        case ColumnType::Binary:
            return;
        case ColumnType::Text:
        case ColumnType::Memo:
            checkSortOrder(column);
            return;
        default:
            throw Error("keys of the " + columnTypeName(column.type) + " column " +
                        toUtf8(column.name) + " are not supported");
    }
}

void appendColumnKey(Bytes& key, const Column& column, bool ascending, const Value& value) {
    if (value.isNull() && column.type != ColumnType::Boolean) {
        key.push_back(ascending ? kNullAscending : kNullDescending);
        return;
    }
    key.push_back(ascending ? kValueAscending : kValueDescending);
    const std::size_t start = key.size();
    appendValue(key, column, value);
    if (ascending) {
        if (isTextual(column))
            key.push_back(kTextEnd);
        return;
    }
    // Descending: the value's bytes inverted. A text ends in kTextEnd both
    // before and after the inversion, so that a shorter text sorts last.
    // Binary segments keep their kMoreSegments bytes uninverted.
    if (isTextual(column))
        key.push_back(kTextEnd);
    for (std::size_t i = start; i < key.size(); ++i) {
        const bool segmentMark = column.type == ColumnType::Binary &&
                                 (i - start) % (kSegmentSize + 1) == kSegmentSize &&
                                 i + 1 < key.size();
        if (!segmentMark)
            key[i] = static_cast<std::uint8_t>(~key[i]);
    }
    if (isTextual(column))
        key.push_back(kTextEnd);
}

bool isRowIndexed(const TableDefinition& table, const RealIndex& index,
                  const std::vector<Value>& values) {
    if ((index.flags & format::kIndexIgnoreNulls) == 0)
        return true;
    for (const IndexColumn& indexColumn : index.columns) {
        const Column* column = nullptr;
        const Value& value = valueOf(table, values, indexColumn.columnNumber, &column);
        if (!value.isNull() || column->type == ColumnType::Boolean)
            return true;
    }
    return false;
}

Bytes encodeIndexKey(const TableDefinition& table, const RealIndex& index,
                     const std::vector<Value>& values) {
    Bytes key;
    for (const IndexColumn& indexColumn : index.columns) {
        const Column* column = nullptr;
        const Value& value = valueOf(table, values, indexColumn.columnNumber, &column);
        appendColumnKey(key, *column, indexColumn.ascending, value);
    }
    return key;
}

}  // namespace jet
