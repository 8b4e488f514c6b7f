#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

class PageSource;

enum class ColumnType : std::uint8_t {
    Boolean = 0x01,
    Byte = 0x02,
    Integer = 0x03,
    LongInteger = 0x04,
    Currency = 0x05,
    Single = 0x06,
    Double = 0x07,
    DateTime = 0x08,
    Binary = 0x09,
    Text = 0x0a,
    Ole = 0x0b,
    Memo = 0x0c,
    ReplicationId = 0x0f,
    Decimal = 0x10,
};

// The Access name of a column type, such as "Long Integer"; for messages.
std::string columnTypeName(ColumnType type);

// The bytes of a value of a fixed-size type, which is also the column's
// length in its definition (a Boolean's 1 included); 0 for the kinds whose
// values vary in length: text, memo, OLE, binary.
std::uint16_t fixedValueSize(ColumnType type);

struct Column {
    std::u16string name;
    ColumnType type = ColumnType::Text;
    std::uint16_t number = 0;         // counts deleted columns; the bit in a row's null mask
    std::uint16_t variableIndex = 0;  // entry in a row's variable offset table
    std::uint16_t fixedOffset = 0;    // in a row's fixed part, after the column count
    std::uint16_t length = 0;         // bytes; 0 for memo and OLE
    std::uint8_t flags = 0;           // format::kColumnFixed, kColumnAutoLong, ...
    bool compressedUnicode = false;   // text may be stored in the compressed form
    std::uint16_t sortOrder = 0;      // text: collation of its index keys (0x409 General)
    std::uint8_t sortVersion = 0;
    std::uint8_t precision = 0;       // decimal
    std::uint8_t scale = 0;           // decimal

    bool isFixed() const;
    bool isAutoNumber() const;
    bool isLongValue() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
};

struct IndexColumn {
    std::uint16_t columnNumber = 0;  // Column::number
    bool ascending = true;
};

// A physical index: the B-tree that holds the keys.
struct RealIndex {
    std::vector<IndexColumn> columns;
    std::uint32_t usageMap = 0;  // row pointer (page << 8 | row) of its page map
    std::uint32_t firstPage = 0;
    std::uint8_t flags = 0;      // format::kIndexUnique, kIndexIgnoreNulls, kIndexRequired
    std::uint32_t rowCount = 0;  // as recorded in the table definition

    bool isUnique() const;
};

// A named index as Access shows it; several may share one real index.
struct LogicalIndex {
    std::u16string name;
    std::uint32_t number = 0;
    std::uint32_t realIndex = 0;  // position in TableDefinition::realIndexes
    std::uint8_t type = 0;        // format::kIndexTypePrimaryKey, kIndexTypeForeignKey, or 0

    bool isPrimaryKey() const;
};

struct TableDefinition {
    std::u16string name;
    std::uint32_t page = 0;  // first page of the definition; the table's identity
    std::vector<std::uint32_t> pages;  // every page of the definition, in chain order
    std::uint32_t rowCount = 0;
    std::uint32_t nextAutoNumber = 0;
    std::uint8_t tableType = 0;         // format::tdef::kTableTypeUser or kTableTypeSystem
    std::uint16_t maxColumns = 0;       // column numbers ever given, deleted ones included
    std::uint16_t variableColumnCount = 0;
    std::uint32_t usageMap = 0;         // row pointer of the map of the pages the table owns
    std::uint32_t freeSpaceMap = 0;     // row pointer of the map of its pages with free space
    std::vector<Column> columns;        // in stored order: ascending Column::number
    std::vector<RealIndex> realIndexes;
    std::vector<LogicalIndex> indexes;

    // Column numbers below maxColumns that no column holds: deleted columns.
    std::vector<std::uint16_t> deletedColumnNumbers() const;
    // The column of that number, or nullptr.
    const Column* columnByNumber(std::uint16_t number) const;
    // The position in `columns` of the column of that name, or nothing. Names
    // compare as Access compares them (sameName): without regard to case.
    std::optional<std::size_t> findColumnPosition(std::u16string_view columnName) const;
    // The same, for a column that must be there: throws Error naming the
    // table and the column when it is not.
    std::size_t columnPosition(std::u16string_view columnName) const;
};

// Reads the table definition that starts at `page`, following its chain of
// pages. Throws Error when the pages are not a valid definition.
TableDefinition readTableDefinition(const PageSource& file, std::uint32_t page);

}  // namespace jet
