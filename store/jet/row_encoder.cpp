#include "row_encoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "error.h"
#include "text.h"

namespace jet {
namespace {

[[noreturn]] void refuse(const Column& column, const std::string& why) {
    throw Error("column " + toUtf8(column.name) + " (" + columnTypeName(column.type) + "): " +
                why);
}

template <typename T>
void put(Bytes& out, std::size_t at, T value) {
    std::memcpy(out.data() + at, &value, sizeof value);
}

std::int64_t integerOf(const Column& column, const Value& value) {
    switch (value.kind()) {
        case Value::Kind::Integer:
            return value.asInteger();
        case Value::Kind::Boolean:
            return value.asBoolean() ? -1 : 0;
        case Value::Kind::Double: {
            // Jet rounds a fraction to the nearest whole number, halves to even.
            const double rounded = std::nearbyint(value.asDouble());
            if (!(rounded >= -9.2e18 && rounded <= 9.2e18)) refuse(column, "number out of range");
            return static_cast<std::int64_t>(rounded);
        }
        default:
            refuse(column, "a number is needed");
    }
}

double realOf(const Column& column, const Value& value) {
    switch (value.kind()) {
        case Value::Kind::Integer: return value.asInteger();
        case Value::Kind::Double: return value.asDouble();
        case Value::Kind::Currency: return static_cast<double>(value.asCurrency().tenThousandths) / 1e4;
        case Value::Kind::Date: return value.asDate().oleDays;
        default: refuse(column, "a number is needed");
    }
}

std::int64_t checkedRange(const Column& column, std::int64_t number, std::int64_t low,
                          std::int64_t high) {
    if (number < low || number > high) {
        refuse(column, std::to_string(number) + " is outside " + std::to_string(low) + " to " +
                           std::to_string(high));
    }
    return number;
}

// The bytes of a fixed-length value. REQUIRES: value not Null, not Boolean column.
void putFixed(Bytes& out, std::size_t at, const Column& column, const Value& value) {
    switch (column.type) {
        case ColumnType::Byte:
            out[at] = static_cast<std::uint8_t>(checkedRange(column, integerOf(column, value), 0, 255));
            return;
        case ColumnType::Integer:
            put(out, at, static_cast<std::int16_t>(
                             checkedRange(column, integerOf(column, value), -32768, 32767)));
            return;
        case ColumnType::LongInteger:
            put(out, at, static_cast<std::int32_t>(checkedRange(
                             column, integerOf(column, value), INT32_MIN, INT32_MAX)));
            return;
        case ColumnType::Currency:
            put(out, at, value.kind() == Value::Kind::Currency
                             ? value.asCurrency().tenThousandths
                             : static_cast<std::int64_t>(std::llround(realOf(column, value) * 1e4)));
            return;
        case ColumnType::Single:
            put(out, at, static_cast<float>(realOf(column, value)));
            return;
        case ColumnType::Double:
        case ColumnType::DateTime:
            put(out, at, realOf(column, value));
            return;
        case ColumnType::ReplicationId:
            if (value.kind() != Value::Kind::Bytes || value.asBytes().size() != 16) {
                refuse(column, "16 bytes are needed");
            }
            std::copy(value.asBytes().begin(), value.asBytes().end(), out.begin() + static_cast<std::ptrdiff_t>(at));
            return;
        case ColumnType::Decimal: {
            if (value.kind() != Value::Kind::Decimal) refuse(column, "a decimal is needed");
            const Decimal& decimal = value.asDecimal();
            if (decimal.scale != column.scale) refuse(column, "the scale differs from the column's");
            out[at] = decimal.negative ? 0x80 : 0x00;
            put(out, at + 1, static_cast<std::uint32_t>(decimal.high >> 32));
            put(out, at + 5, static_cast<std::uint32_t>(decimal.high));
            put(out, at + 9, static_cast<std::uint32_t>(decimal.low >> 32));
            put(out, at + 13, static_cast<std::uint32_t>(decimal.low));
            return;
        }
        default:
            refuse(column, "this kind of column cannot be written");
    }
}

Bytes variableBytes(const Column& column, const Value& value, const LongValueStore& store) {
    switch (column.type) {
        case ColumnType::Text: {
            if (value.kind() != Value::Kind::Text) refuse(column, "a text is needed");
            const std::u16string& text = value.asText();
            if (text.size() * 2 > column.length) {
                refuse(column, "the text has " + std::to_string(text.size()) +
                                   " characters; the column holds " +
                                   std::to_string(column.length / 2));
            }
            return encodeText(text, column.compressedUnicode);
        }
        case ColumnType::Memo: {
            if (value.kind() != Value::Kind::Text) refuse(column, "a text is needed");
            // Jet compresses only memo values of up to 1,024 characters.
            const std::u16string& text = value.asText();
            return store(column, encodeText(text, column.compressedUnicode && text.size() <= 1024));
        }
        case ColumnType::Ole:
            if (value.kind() != Value::Kind::Bytes) refuse(column, "bytes are needed");
            return store(column, value.asBytes());
        case ColumnType::Binary:
            if (value.kind() != Value::Kind::Bytes) refuse(column, "bytes are needed");
            if (value.asBytes().size() > column.length) refuse(column, "the value is too long");
            return value.asBytes();
        default: {
            // A number whose column lacks the fixed flag (some system tables
            // have such columns) is kept in the variable part at its usual size.
            const std::size_t size = fixedValueSize(column.type);
            if (size == 0 || column.type == ColumnType::Boolean) refuse(column, "this kind of column cannot be written");
            Bytes stored(size, 0);
            putFixed(stored, 0, column, value);
            return stored;
        }
    }
}

}  // namespace

Bytes encodeText(const std::u16string& text, bool compress) {
    const bool oneByte = std::all_of(text.begin(), text.end(),
                                     [](char16_t c) { return c >= 0x01 && c <= 0xff; });
    Bytes stored;
    if (compress && oneByte && !text.empty()) {
        stored.reserve(text.size() + 2);
        stored.push_back(0xff);
        stored.push_back(0xfe);
        for (const char16_t c : text) stored.push_back(static_cast<std::uint8_t>(c));
        return stored;
    }
    stored.reserve(text.size() * 2);
    for (const char16_t c : text) {
        stored.push_back(static_cast<std::uint8_t>(c));
        stored.push_back(static_cast<std::uint8_t>(c >> 8));
    }
    return stored;
}

Bytes encodeRow(const TableDefinition& table, const std::vector<Value>& values,
                const LongValueStore& storeLongValue) {
    if (values.size() != table.columns.size()) {
        throw Error("a row of table " + toUtf8(table.name) + " needs " +
                    std::to_string(table.columns.size()) + " values, not " +
                    std::to_string(values.size()));
    }
    const std::size_t columnCount = table.maxColumns;
    std::size_t fixedSize = 0;
    std::size_t variableEntries = 0;  // offset entries: up to the highest variable index in use
    bool hasVariable = table.variableColumnCount > 0;
    for (const Column& column : table.columns) {
        if (column.number >= columnCount) {
            throw Error("column " + toUtf8(column.name) + " has number " +
                        std::to_string(column.number) + " beyond the table's " +
                        std::to_string(columnCount) + " columns");
        }
        if (column.isFixed()) {
            fixedSize = std::max<std::size_t>(fixedSize, column.fixedOffset + std::size_t{column.length});
        } else if (column.type != ColumnType::Boolean) {
            variableEntries = std::max<std::size_t>(variableEntries, column.variableIndex + 1u);
            hasVariable = true;
        }
    }

    Bytes row(2 + fixedSize, 0);
    put(row, 0, static_cast<std::uint16_t>(columnCount));
    Bytes nullMask((columnCount + 7) / 8, 0);
    const auto markPresent = [&](const Column& column) {
        nullMask[column.number / 8] |= static_cast<std::uint8_t>(1u << (column.number % 8));
    };

    std::vector<Bytes> variableValues(variableEntries);
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        const Value& value = values[i];
        if (column.type == ColumnType::Boolean) {
            if (value.isNull()) continue;
            if (value.kind() == Value::Kind::Boolean ? value.asBoolean() : integerOf(column, value) != 0) {
                markPresent(column);
            }
            continue;
        }
        if (value.isNull()) continue;
        markPresent(column);
        if (column.isFixed()) {
            if (column.type == ColumnType::Text) {
                // A fixed-length text (CHAR) holds its full length: Jet pads it
                // with spaces, stored uncompressed.
                if (value.kind() != Value::Kind::Text) refuse(column, "a text is needed");
                std::u16string padded = value.asText();
                if (padded.size() * 2 > column.length) {
                    refuse(column, "the text has " + std::to_string(padded.size()) +
                                       " characters; the column holds " +
                                       std::to_string(column.length / 2));
                }
                padded.resize(column.length / 2, u' ');
                const Bytes stored = encodeText(padded, false);
                std::copy(stored.begin(), stored.end(),
                          row.begin() + 2 + static_cast<std::ptrdiff_t>(column.fixedOffset));
            } else if (column.type == ColumnType::Binary) {
                const Bytes stored = variableBytes(column, value, storeLongValue);
                std::copy(stored.begin(), stored.end(),
                          row.begin() + 2 + static_cast<std::ptrdiff_t>(column.fixedOffset));
            } else {
                putFixed(row, 2 + column.fixedOffset, column, value);
            }
        } else {
            variableValues[column.variableIndex] = variableBytes(column, value, storeLongValue);
        }
    }

    if (hasVariable) {
        std::vector<std::uint16_t> offsets;
        for (const Bytes& stored : variableValues) {
            offsets.push_back(static_cast<std::uint16_t>(row.size()));
            row.insert(row.end(), stored.begin(), stored.end());
        }
        offsets.push_back(static_cast<std::uint16_t>(row.size()));  // end of the data
        if (row.size() > kMaxRowSize) {
            throw Error("a row of " + std::to_string(row.size()) + " bytes does not fit a page " +
                        "of table " + toUtf8(table.name));
        }
        for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) {
            row.push_back(static_cast<std::uint8_t>(*offset));
            row.push_back(static_cast<std::uint8_t>(*offset >> 8));
        }
        row.push_back(static_cast<std::uint8_t>(variableEntries));
        row.push_back(static_cast<std::uint8_t>(variableEntries >> 8));
    }
    row.insert(row.end(), nullMask.begin(), nullMask.end());
    if (row.size() > kMaxRowSize) {
        throw Error("a row of " + std::to_string(row.size()) + " bytes does not fit a page of " +
                    "table " + toUtf8(table.name));
    }
    return row;
}

}  // namespace jet
