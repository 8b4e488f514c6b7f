#include "mdb_export_format.h"

#include <charconv>
#include <cstdio>

#include "store/jet/text.h"

namespace jet {
namespace {

// mdb-export passes every text through a 200,000-byte buffer.
constexpr std::size_t kBindLimit = 200000 - 1;

void appendQuoted(std::string& out, std::string_view bytes) {
    out.push_back('"');
    for (const char c : bytes) {
        if (c == '"') out.push_back('"');
        out.push_back(c);
    }
    out.push_back('"');
}

template <typename Integer>
void appendInteger(std::string& out, Integer value) {
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, result.ptr);
}

// Text as mdbtools converts it: through UCS-2, where each surrogate is not a
// character and becomes "?"; it ends at the first NUL, and at the end of
// mdb-export's buffer. Empty text is written as nothing, like Null.
void appendMdbText(std::string& out, const std::u16string& text) {
    const std::size_t opening = out.size();
    out.push_back('"');
    std::size_t written = 0;
    for (const char16_t unit : text) {
        if (unit == 0) break;
        if (unit < 0x80) {
            if (written + 1 > kBindLimit) break;
            if (unit == u'"') out.push_back('"');
            out.push_back(static_cast<char>(unit));
            ++written;
            continue;
        }
        const char16_t shown = (unit >= 0xd800 && unit <= 0xdfff) ? u'?' : unit;
        const std::size_t width = shown < 0x80 ? 1 : shown < 0x800 ? 2 : 3;
        if (written + width > kBindLimit) break;
        appendUtf8(out, std::u16string_view(&shown, 1));
        written += width;
    }
    if (written == 0) {
        out.resize(opening);
    } else {
        out.push_back('"');
    }
}

void appendTwoDigits(std::string& out, long value) {
    out.push_back(static_cast<char>('0' + value / 10 % 10));
    out.push_back(static_cast<char>('0' + value % 10));
}

// Dates as mdbtools 1.0 computes them: its own calendar arithmetic, the time
// rounded to the second (which can show 24:00:00), and an all-zero date for
// values before 1899-12-30 or after about 2700.
void appendMdbDate(std::string& out, double days) {
    static constexpr int kNoLeap[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
    static constexpr int kLeap[] = {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366};
    int year = 1900;
    int month = 0;  // 0-based
    int dayOfMonth = 0;
    long hour = 0;
    long minute = 0;
    long second = 0;
    if (days >= 0.0 && days <= 1e6) {
        long day = static_cast<long>(days);
        // mdbtools rounds by adding a half and truncating; kept for identical output.
        const long time = static_cast<long>(  // NOLINTNEXTLINE(bugprone-incorrect-roundings)
            (days - static_cast<double>(day)) * 86400.0 + 0.5);
        hour = time / 3600;
        minute = (time / 60) % 60;
        second = time % 60;
        long y = 1;
        day += 693593;
        long q = day / 146097;
        y += 400 * q;
        day -= q * 146097;
        q = std::min(day / 36524, 3L);
        y += 100 * q;
        day -= q * 36524;
        q = day / 1461;
        y += 4 * q;
        day -= q * 1461;
        q = std::min(day / 365, 3L);
        y += q;
        day -= q * 365;
        const bool leap = y % 4 == 0 && (y % 100 != 0 || y % 400 == 0);
        const int* calendar = leap ? kLeap : kNoLeap;
        for (month = 0; month < 12; ++month) {
            if (day < calendar[month + 1]) break;
        }
        year = static_cast<int>(y);
        dayOfMonth = static_cast<int>(day - calendar[month] + 1);
    }
    out.push_back('"');
    appendTwoDigits(out, month + 1);
    out.push_back('/');
    appendTwoDigits(out, dayOfMonth);
    out.push_back('/');
    appendTwoDigits(out, year % 100);
    out.push_back(' ');
    appendTwoDigits(out, hour);
    out.push_back(':');
    appendTwoDigits(out, minute);
    out.push_back(':');
    appendTwoDigits(out, second);
    out.push_back('"');
}

// Currency: ten-thousandths with four decimals, "-" for negatives.
void appendMdbMoney(std::string& out, std::int64_t tenThousandths) {
    const bool negative = tenThousandths < 0;
    std::uint64_t magnitude = negative ? 0 - static_cast<std::uint64_t>(tenThousandths)
                                       : static_cast<std::uint64_t>(tenThousandths);
    std::string digits = std::to_string(magnitude);
    while (digits.size() < 5) digits.insert(digits.begin(), '0');
    digits.insert(digits.size() - 4, ".");
    if (negative) out.push_back('-');
    out += digits;
}

// mdbtools writes a GUID with its own grouping, 8-4-4-16 digits.
void appendGuid(std::string& out, const Bytes& b) {
    char buffer[48];
    const int length = std::snprintf(
        buffer, sizeof buffer,
        "\"{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X%02X%02X}\"", b[3], b[2],
        b[1], b[0], b[5], b[4], b[7], b[6], b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
    out.append(buffer, static_cast<std::size_t>(length));
}

}  // namespace

void appendMdbExportHeader(std::string& out, const TableDefinition& table) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (i > 0) out.push_back(',');
        appendUtf8(out, table.columns[i].name);
    }
    out.push_back('\n');
}

void appendMdbExportField(std::string& out, const Column& column, const Value& value) {
    if (value.isNull()) return;
    switch (column.type) {
        case ColumnType::Boolean:
            out.push_back(value.asBoolean() ? '1' : '0');
            return;
        case ColumnType::Byte:
        case ColumnType::LongInteger:
            appendInteger(out, value.asInteger());
            return;
        case ColumnType::Integer:
            appendInteger(out, static_cast<short>(value.asInteger()));
            return;
        case ColumnType::Single:
        case ColumnType::Double: {
            char buffer[40];
            const int length =
                column.type == ColumnType::Single
                    ? std::snprintf(buffer, sizeof buffer, "%.8g",
                                    static_cast<double>(static_cast<float>(value.asDouble())))
                    : std::snprintf(buffer, sizeof buffer, "%.16g", value.asDouble());
            out.append(buffer, static_cast<std::size_t>(length));
            return;
        }
        case ColumnType::Currency:
            appendMdbMoney(out, value.asCurrency().tenThousandths);
            return;
        case ColumnType::DateTime:
            appendMdbDate(out, value.asDate().oleDays);
            return;
        case ColumnType::Decimal:
            out += value.asDecimal().toString();
            return;
        case ColumnType::Text:
        case ColumnType::Memo:
            appendMdbText(out, value.asText());
            return;
        case ColumnType::ReplicationId:
            appendGuid(out, value.asBytes());
            return;
        case ColumnType::Ole: {
            const Bytes& bytes = value.asBytes();
            appendQuoted(out, std::string_view(reinterpret_cast<const char*>(bytes.data()),
                                               bytes.size()));
            return;
        }
        case ColumnType::Binary: {
            // The raw bytes up to the first zero byte.
            const Bytes& bytes = value.asBytes();
            std::size_t length = 0;
            while (length < bytes.size() && bytes[length] != 0) ++length;
            if (length > 0) {
                appendQuoted(out,
                             std::string_view(reinterpret_cast<const char*>(bytes.data()), length));
            }
            return;
        }
    }
    // Kinds mdbtools does not know (such as 0x11 in MSysAccessObjects) it writes as nothing.
}

void appendMdbExportRow(std::string& out, const TableDefinition& table,
                        const std::vector<Value>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) out.push_back(',');
        appendMdbExportField(out, table.columns[i], values[i]);
    }
    out.push_back('\n');
}

}  // namespace jet
