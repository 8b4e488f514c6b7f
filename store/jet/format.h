#pragma once

// The Jet 4 file layout, every offset named once. Jet 4 is the format of
// Access 2000 and 2002-2003: 4096-byte pages, little-endian numbers, text in
// UTF-16LE with an optional one-byte compression.

#include <cstddef>
#include <cstdint>

namespace jet::format {

inline constexpr std::size_t kPageSize = 4096;

// Page types (first byte of every page but the header).
inline constexpr std::uint8_t kPageHeader = 0x00;
inline constexpr std::uint8_t kPageData = 0x01;
inline constexpr std::uint8_t kPageTableDefinition = 0x02;
inline constexpr std::uint8_t kPageIndexIntermediate = 0x03;
inline constexpr std::uint8_t kPageIndexLeaf = 0x04;
inline constexpr std::uint8_t kPageUsageMap = 0x05;

// Header page (page 0).
namespace header {
inline constexpr std::size_t kMagicOffset = 0x00;      // 00 01 00 00
inline constexpr std::size_t kFormatNameOffset = 0x04;  // "Standard Jet DB" or "Standard ACE DB"
inline constexpr std::size_t kVersionOffset = 0x14;
// From here the header is masked with an RC4 key stream of a fixed key.
inline constexpr std::size_t kMaskedOffset = 0x18;
inline constexpr std::size_t kMaskedLength = 128;
inline constexpr std::uint32_t kMaskKey = 0x6b39dac7;
inline constexpr std::size_t kCodePageOffset = 0x3c;
inline constexpr std::size_t kDatabaseKeyOffset = 0x3e;  // non-zero: pages are RC4-encoded
inline constexpr std::size_t kPasswordOffset = 0x42;
inline constexpr std::size_t kPasswordLength = 40;  // 20 UTF-16 units
inline constexpr std::size_t kSortOrderOffset = 0x6e;
inline constexpr std::size_t kCreationDateOffset = 0x72;  // double, also the password's second mask
inline constexpr std::uint16_t kCodePageWestern = 1252;
}  // namespace header

inline constexpr std::uint8_t kVersionJet3 = 0x00;
inline constexpr std::uint8_t kVersionJet4 = 0x01;
inline constexpr std::uint8_t kVersionAce12 = 0x02;  // Access 2007 and later (.accdb)

inline constexpr std::uint16_t kSortGeneral = 0x0409;  // 1033, "General"

// Data pages (type 0x01); long value pages are data pages marked "LVAL".
namespace data {
inline constexpr std::size_t kFreeSpaceOffset = 2;
inline constexpr std::size_t kOwnerOffset = 4;  // tdef page, or "LVAL"
inline constexpr std::size_t kRowCountOffset = 12;
inline constexpr std::size_t kRowTableOffset = 14;  // one u16 per row
inline constexpr std::uint16_t kRowDeleted = 0x8000;
inline constexpr std::uint16_t kRowOverflow = 0x4000;  // the row holds a pointer to its data
inline constexpr std::uint16_t kRowOffsetMask = 0x1fff;
}  // namespace data

// Table definition pages (type 0x02), possibly chained.
namespace tdef {
inline constexpr std::size_t kFreeSpaceOffset = 2;  // bytes unused on this page, less 8
inline constexpr std::size_t kNextPageOffset = 4;
inline constexpr std::size_t kPageHeaderSize = 8;  // repeated on each page of a chain
inline constexpr std::size_t kLengthOffset = 8;  // bytes of the whole definition, headers included
inline constexpr std::size_t kMagicOffset = 12;   // kTableMagic
inline constexpr std::size_t kAutoNumberFlagOffset = 24;  // Access sets it to 0x01
inline constexpr std::size_t kRowCountOffset = 16;
inline constexpr std::size_t kAutoNumberOffset = 20;
inline constexpr std::size_t kTableTypeOffset = 40;
inline constexpr std::size_t kMaxColumnsOffset = 41;
inline constexpr std::size_t kVarColumnCountOffset = 43;
inline constexpr std::size_t kColumnCountOffset = 45;
inline constexpr std::size_t kLogicalIndexCountOffset = 47;
inline constexpr std::size_t kRealIndexCountOffset = 51;
inline constexpr std::size_t kUsageMapOffset = 55;
inline constexpr std::size_t kFreeSpaceMapOffset = 59;
inline constexpr std::size_t kHeaderSize = 63;  // up to the per-index row counts
inline constexpr std::size_t kRealIndexCountsOffset = 63;  // 12 bytes per real index
inline constexpr std::size_t kRealIndexCountEntrySize = 12;
inline constexpr std::size_t kRealIndexRowCountOffset = 4;

inline constexpr std::size_t kColumnEntrySize = 25;
inline constexpr std::size_t kColumnTypeOffset = 0;
inline constexpr std::size_t kColumnMagicOffset = 1;  // kTableMagic
inline constexpr std::size_t kColumnNumberOffset = 5;
inline constexpr std::size_t kColumnVarIndexOffset = 7;
inline constexpr std::size_t kColumnRowIndexOffset = 9;
inline constexpr std::size_t kColumnSortOrderOffset = 11;  // text: collation id
inline constexpr std::size_t kColumnPrecisionOffset = 11;  // decimal
inline constexpr std::size_t kColumnScaleOffset = 12;      // decimal
inline constexpr std::size_t kColumnSortVersionOffset = 14;
inline constexpr std::size_t kColumnFlagsOffset = 15;
inline constexpr std::size_t kColumnExtraFlagsOffset = 16;  // 0x01: compressed unicode
inline constexpr std::size_t kColumnFixedOffsetOffset = 21;
inline constexpr std::size_t kColumnLengthOffset = 23;

inline constexpr std::size_t kRealIndexEntrySize = 52;
inline constexpr std::size_t kRealIndexMagicOffset = 0;  // kRealIndexMagic
inline constexpr std::size_t kRealIndexColumnsOffset = 4;  // 10 x (u16 column number, u8 order)
inline constexpr std::size_t kRealIndexMaxColumns = 10;
inline constexpr std::size_t kRealIndexUsageMapOffset = 34;
inline constexpr std::size_t kRealIndexFirstPageOffset = 38;
inline constexpr std::size_t kRealIndexFlagsOffset = 46;
inline constexpr std::uint16_t kRealIndexNoColumn = 0xffff;
inline constexpr std::uint8_t kRealIndexAscending = 0x01;
inline constexpr std::uint8_t kRealIndexDescending = 0x00;  // Access writes no flag for it

inline constexpr std::size_t kLogicalIndexEntrySize = 28;
inline constexpr std::size_t kLogicalIndexNumberOffset = 4;
inline constexpr std::size_t kLogicalIndexRealIndexOffset = 8;
inline constexpr std::size_t kLogicalIndexMagicOffset = 0;  // kTableMagic
inline constexpr std::size_t kLogicalIndexRelatedIndexOffset = 13;  // -1 unless a foreign key
// Two bytes that Access sets to 0x04 in every index that is no foreign key.
inline constexpr std::size_t kLogicalIndexCascadeOffset = 21;
inline constexpr std::uint8_t kLogicalIndexNoCascade = 0x04;
inline constexpr std::size_t kLogicalIndexTypeOffset = 23;
// After the index names: per long value column, its page maps; then this end mark.
inline constexpr std::uint16_t kColumnMapsEnd = 0xffff;

// Constants Access writes into every definition, column and index entry.
inline constexpr std::uint32_t kTableMagic = 0x0659;
inline constexpr std::uint32_t kRealIndexMagic = 0x0783;

inline constexpr std::uint8_t kTableTypeUser = 0x4e;
inline constexpr std::uint8_t kTableTypeSystem = 0x53;
}  // namespace tdef

// Column flags.
inline constexpr std::uint8_t kColumnFixed = 0x01;
inline constexpr std::uint8_t kColumnNullable = 0x02;
inline constexpr std::uint8_t kColumnAutoLong = 0x04;
inline constexpr std::uint8_t kColumnReplication = 0x10;
inline constexpr std::uint8_t kColumnAutoGuid = 0x40;
inline constexpr std::uint8_t kColumnHyperlink = 0x80;
inline constexpr std::uint8_t kColumnCompressedUnicode = 0x01;  // in the extra flags

// Index flags.
inline constexpr std::uint8_t kIndexUnique = 0x01;
inline constexpr std::uint8_t kIndexIgnoreNulls = 0x02;
inline constexpr std::uint8_t kIndexRequired = 0x08;
inline constexpr std::uint8_t kIndexAccessFlag = 0x80;  // set on every index Access 2000 writes
inline constexpr std::uint8_t kIndexTypePrimaryKey = 0x01;
inline constexpr std::uint8_t kIndexTypeForeignKey = 0x02;

// Long values (memo, OLE): a 12-byte reference in the row.
namespace lval {
inline constexpr std::size_t kReferenceSize = 12;
inline constexpr std::uint32_t kInline = 0x80000000;
inline constexpr std::uint32_t kSinglePage = 0x40000000;
inline constexpr std::uint32_t kLengthMask = 0x3fffffff;
}  // namespace lval

// Index pages (type 0x03 intermediate, 0x04 leaf): a B-tree of keys. Keys
// and the pointers after them are big-endian, the page header little-endian.
namespace index {
inline constexpr std::size_t kFreeSpaceOffset = 2;
inline constexpr std::size_t kOwnerOffset = 4;  // tdef page
inline constexpr std::size_t kPrevPageOffset = 12;
inline constexpr std::size_t kNextPageOffset = 16;
inline constexpr std::size_t kTailPageOffset = 20;  // intermediate: the last leaf
inline constexpr std::size_t kPrefixLengthOffset = 24;  // u16, bytes the entries share
// One bit per byte of the entry area, low bit first: a set bit marks the end
// of an entry, counted from kEntriesOffset.
inline constexpr std::size_t kEntryMaskOffset = 0x1b;
inline constexpr std::size_t kEntriesOffset = 0x1e0;
inline constexpr std::size_t kEntryMaskLength = kEntriesOffset - kEntryMaskOffset;
inline constexpr std::size_t kRowPointerSize = 4;    // data page (3 bytes), row (1 byte)
inline constexpr std::size_t kChildPointerSize = 4;  // intermediate entries: the child page
}  // namespace index

// Usage maps: a row holding a bitmap of pages.
namespace usage {
inline constexpr std::uint8_t kInlineMap = 0x00;     // u32 first page, then the bitmap
inline constexpr std::uint8_t kReferenceMap = 0x01;  // u32 pointers to usage map pages
inline constexpr std::size_t kMapPageBitmapOffset = 4;
inline constexpr std::size_t kPagesPerMapPage = (kPageSize - kMapPageBitmapOffset) * 8;
inline constexpr std::uint32_t kFreePagesMap = 1u << 8;  // row 0 of page 1: set bit = free page
}  // namespace usage

// The catalog: the system table MSysObjects, whose definition is on page 2.
inline constexpr std::uint32_t kCatalogPage = 2;
inline constexpr std::int16_t kObjectTypeTable = 1;
inline constexpr std::uint32_t kObjectFlagsSystem = 0x80000002;
inline constexpr std::int16_t kObjectTypeDatabase = 2;   // MSysDb, the database's own entry
inline constexpr std::int16_t kObjectTypeContainer = 3;  // Tables, Databases, Relationships
inline constexpr std::uint32_t kObjectFlagsSystemObject = 0x80000000;  // what Access gives MSys*
// Ids of the catalog's fixed objects: the root of the containers, the
// containers, and the database entry.
inline constexpr std::int32_t kRootContainerId = 0x0f000000;
inline constexpr std::int32_t kTablesContainerId = 0x0f000001;
inline constexpr std::int32_t kDatabasesContainerId = 0x0f000002;
inline constexpr std::int32_t kRelationshipsContainerId = 0x0f000003;
inline constexpr std::int32_t kDatabaseObjectId = 0x10000000;

}  // namespace jet::format
