#include "row_decoder.h"

#include <string>

#include "error.h"
#include "long_value.h"
#include "text.h"

namespace jet {
namespace {

Decimal readDecimal(ByteView field) {
    // A sign byte, then four 32-bit little-endian words, the most significant first.
    Decimal decimal;
    decimal.negative = (field.u8(0) & 0x80) != 0;
    decimal.high = (static_cast<std::uint64_t>(field.u32(1)) << 32) | field.u32(5);
    decimal.low = (static_cast<std::uint64_t>(field.u32(9)) << 32) | field.u32(13);
    return decimal;
}

Value decodeField(const PageSource& file, const Column& column, ByteView field) {
    const auto needs = [&](std::size_t size) {
        if (field.size() < size) {
            throw Error("the value of column " + toUtf8(column.name) + " (" +
                        columnTypeName(column.type) + ") has " + std::to_string(field.size()) +
                        " bytes, fewer than " + std::to_string(size));
        }
    };
    switch (column.type) {
        case ColumnType::Boolean:
            break;  // handled by the caller: the value is the null bit
        case ColumnType::Byte:
            needs(1);
            return Value::integer(field.u8(0));
        case ColumnType::Integer:
            needs(2);
            return Value::integer(static_cast<std::int16_t>(field.u16(0)));
        case ColumnType::LongInteger:
            needs(4);
            return Value::integer(static_cast<std::int32_t>(field.u32(0)));
        case ColumnType::Currency:
            needs(8);
            return Value::currency(Currency{static_cast<std::int64_t>(field.u64(0))});
        case ColumnType::Single:
            needs(4);
            return Value::real(field.f32(0));
        case ColumnType::Double:
            needs(8);
            return Value::real(field.f64(0));
        case ColumnType::DateTime:
            needs(8);
            return Value::date(Date{field.f64(0)});
        case ColumnType::Decimal: {
            needs(17);
            Decimal decimal = readDecimal(field);
            decimal.scale = column.scale;
            return Value::decimal(decimal);
        }
        case ColumnType::Text:
            return Value::text(decodeText(field));
        case ColumnType::Memo: {
            const Bytes stored = readLongValue(file, field);
            return Value::text(decodeText(ByteView(stored.data(), stored.size())));
        }
        case ColumnType::Ole:
            return Value::bytes(readLongValue(file, field));
        case ColumnType::ReplicationId:
            needs(16);
            return Value::bytes(Bytes(field.data(), field.data() + 16));
        case ColumnType::Binary:
            break;
    }
    return Value::bytes(Bytes(field.data(), field.data() + field.size()));
}

}  // namespace

Value TextValues::text(std::size_t column, ByteView stored) {
    if (column >= columns_.size())
        columns_.resize(column + 1);
    Texts& texts = columns_[column];
    const std::string_view bytes(reinterpret_cast<const char*>(stored.data()), stored.size());
    if (auto found = texts.find(bytes); found != texts.end())
        return found->second;
    Value value = Value::text(decodeText(stored));
    if (texts.size() < kTextsPerColumn)
        texts.emplace(std::string(bytes), value);
    return value;
}

void decodeRow(const PageSource& file, const TableDefinition& table, ByteView row,
               std::vector<Value>& values, const ColumnSelection& columns, TextValues* texts) {
    values.resize(table.columns.size());
    const std::size_t rowColumns = row.u16(0);
    const std::size_t maskSize = (rowColumns + 7) / 8;
    if (row.size() < 2 + maskSize) {
        throw Error("a row of " + std::to_string(row.size()) + " bytes cannot hold the null " +
                    "mask of its " + std::to_string(rowColumns) + " columns");
    }
    const ByteView nullMask = row.sub(row.size() - maskSize, maskSize);

    // The variable part's offset table, counted back from the null mask.
    std::size_t rowVariableColumns = 0;
    std::size_t offsetTableEnd = row.size() - maskSize;  // one past the count of variable columns
    if (table.variableColumnCount > 0) {
        if (offsetTableEnd < 4)
            throw Error("a row is too short for its variable columns");
        rowVariableColumns = row.u16(offsetTableEnd - 2);
        if (offsetTableEnd < 4 + 2 * (rowVariableColumns + 1)) {
            throw Error("a row of " + std::to_string(row.size()) + " bytes cannot hold the " +
                        "offsets of its " + std::to_string(rowVariableColumns) +
                        " variable columns");
        }
    }
    const auto variableOffset = [&](std::size_t index) -> std::size_t {
        return row.u16(offsetTableEnd - 4 - 2 * index);
    };
    const std::size_t variableDataLimit =
        offsetTableEnd - (table.variableColumnCount > 0 ? 2 + 2 * (rowVariableColumns + 1) : 0);

    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (!columns.empty() && (i >= columns.size() || !columns[i])) {
            if (!values[i].isNull())
                values[i] = Value();
            continue;
        }
        const Column& column = table.columns[i];
        const bool present = column.number < rowColumns &&
                             (nullMask.u8(column.number / 8) & (1u << (column.number % 8))) != 0;
        if (column.type == ColumnType::Boolean) {
            values[i] = Value::boolean(present);
            continue;
        }
        if (!present) {
            values[i] = Value();
            continue;
        }
        std::size_t start = 0;
        std::size_t end = 0;
        if (column.isFixed()) {
            start = 2 + static_cast<std::size_t>(column.fixedOffset);
            end = start + column.length;
        } else {
            if (column.variableIndex >= rowVariableColumns) {
                values[i] = Value();
                continue;
            }
            start = variableOffset(column.variableIndex);
            end = variableOffset(column.variableIndex + 1u);
        }
        if (start > end || end > variableDataLimit) {
            throw Error("the value of column " + toUtf8(column.name) + " lies outside its row " +
                        "(bytes " + std::to_string(start) + " to " + std::to_string(end) + " of " +
                        std::to_string(row.size()) + ")");
        }
        const ByteView field = row.sub(start, end - start);
        values[i] = texts != nullptr && column.type == ColumnType::Text
                        ? texts->text(i, field)
                        : decodeField(file, column, field);
    }
}

}  // namespace jet
