#include "workbook.h"

#include <array>
#include <bit>
#include <fstream>
#include <optional>
#include <utility>

#include "store/workbook/biff_records.h"
#include "store/workbook/compound_file.h"
#include "store/workbook/workbook_error.h"

namespace workbook {
namespace {

using biff::Cursor;
using biff::Record;
using biff::RecordReader;

constexpr std::uint16_t kBiff8 = 0x0600;
constexpr std::uint16_t kWorksheetSubstream = 0x0010;
constexpr std::uint8_t kWorksheetType = 0;
constexpr std::uint32_t kColumnLimit = 256;  // IV, the last column of Excel 97
constexpr std::uintmax_t kFileSizeLimit = std::uintmax_t{1} << 30;

[[noreturn]] void damaged(const std::string& what) {
    throw WorkbookError(WorkbookError::Kind::Damaged, "the workbook stream is damaged: " + what);
}

// RK: a number packed in 30 bits, an integer or the high bits of a double,
// possibly a hundredth of it.
double rkNumber(std::uint32_t rk) {
    const double value =
        (rk & 0x02) != 0
            ? static_cast<double>(static_cast<std::int32_t>(rk) >> 2)
            : std::bit_cast<double>(static_cast<std::uint64_t>(rk & 0xFFFFFFFCu) << 32);
    return (rk & 0x01) != 0 ? value / 100 : value;
}

struct BoundSheet {
    std::uint32_t offset = 0;  // of the sheet's BOF in the stream
    std::uint8_t type = 0;
    bool visible = true;
    std::u16string name;
};

// A global NAME whose formula is one 3-D reference: sheet by its position
// in EXTERNSHEET, resolved once the globals are read.
struct NameRecord {
    std::u16string name;
    std::uint16_t externIndex = 0;
    CellRange range;
};

struct Globals {
    std::vector<BoundSheet> sheets;
    std::vector<std::u16string> strings;          // the SST
    std::vector<std::uint16_t> externSheetFirst;  // EXTERNSHEET: each entry's first sheet
    std::vector<NameRecord> names;
};

void checkBof(const Record& record, bool globals) {
    if (record.type == 0x0009 || record.type == 0x0209 || record.type == 0x0409) {
        throw WorkbookError(WorkbookError::Kind::OlderFormat,
                            "the workbook is in an Excel 2-4 format, older than Excel 97");
    }
    if (record.type != biff::kBof)
        damaged("a substream does not start with BOF");
    Cursor cursor(record);
    const std::uint16_t version = cursor.u16();
    if (version != kBiff8) {
        throw WorkbookError(WorkbookError::Kind::OlderFormat,
                            "the workbook is in an Excel 5/95 format (BIFF5), older than Excel 97");
    }
    if (!globals && cursor.u16() != kWorksheetSubstream)
        damaged("a worksheet is not a worksheet");
}

void readName(const Record& record, Globals& globals) {
    Cursor cursor(record);
    const std::uint16_t flags = cursor.u16();
    cursor.skip(1);  // keyboard shortcut
    const std::size_t length = cursor.u8();
    const std::size_t formulaSize = cursor.u16();
    cursor.skip(2);
    const std::uint16_t sheetScope = cursor.u16();
    cursor.skip(4);
    const bool wide = (cursor.u8() & 0x01) != 0;
    if ((flags & 0x0020) != 0 || sheetScope != 0)
        return;  // built-in, or local to a sheet
    NameRecord name;
    name.name = cursor.characters(length, wide);
    if (formulaSize == 0)
        return;
    const std::uint8_t token = cursor.u8();
    const std::uint8_t base = token & 0x1F;  // class bits dropped: ptgArea3d 0x1B, ptgRef3d 0x1A
    if (base != 0x1B && base != 0x1A)
        return;
    name.externIndex = cursor.u16();
    if (base == 0x1B) {
        name.range.firstRow = cursor.u16();
        name.range.lastRow = cursor.u16();
        name.range.firstColumn = cursor.u16() & 0x3FFFu;
        name.range.lastColumn = cursor.u16() & 0x3FFFu;
    } else {
        name.range.firstRow = name.range.lastRow = cursor.u16();
        name.range.firstColumn = name.range.lastColumn = cursor.u16() & 0x3FFFu;
    }
    if (name.range.firstRow > name.range.lastRow ||
        name.range.firstColumn > name.range.lastColumn) {
        return;
    }
    name.range.lastColumn = std::min(name.range.lastColumn, kColumnLimit - 1);
    if (name.range.firstColumn > name.range.lastColumn)
        return;
    globals.names.push_back(std::move(name));
}

Globals readGlobals(std::span<const std::uint8_t> stream) {
    Globals globals;
    RecordReader reader(stream, 0);
    Record record;
    if (!reader.next(record))
        damaged("the stream is empty");
    checkBof(record, true);
    while (reader.next(record) && record.type != biff::kEof) {
        Cursor cursor(record);
        switch (record.type) {
            case biff::kFilePass:
                throw WorkbookError(WorkbookError::Kind::PasswordProtected,
                                    "the workbook is password-protected (encrypted)");
            case biff::kBoundSheet: {
                BoundSheet sheet;
                sheet.offset = cursor.u32();
                sheet.visible = (cursor.u8() & 0x03) == 0;
                sheet.type = cursor.u8();
                sheet.name = cursor.shortString();
                globals.sheets.push_back(std::move(sheet));
                break;
            }
            case biff::kSst: {
                cursor.skip(8);  // total and unique counts, not to be trusted
                while (!cursor.atEnd())
                    globals.strings.push_back(cursor.richString());
                break;
            }
            case biff::kExternSheet: {
                const std::size_t count = cursor.u16();
                for (std::size_t i = 0; i < count; ++i) {
                    cursor.skip(2);  // the SUPBOOK: this workbook
                    globals.externSheetFirst.push_back(cursor.u16());
                    cursor.skip(2);
                }
                break;
            }
            case biff::kName:
                readName(record, globals);
                break;
            default:
                break;
        }
    }
    return globals;
}

// The cells of a sheet as its records give them.
class SheetBuilder {
public:
    explicit SheetBuilder(Sheet& sheet) : sheet_(sheet) {}

    void set(std::uint32_t row, std::uint32_t column, CellValue value) {
        if (column >= kColumnLimit)
            return;
        if (row >= sheet_.rows.size())
            sheet_.rows.resize(row + 1);
        auto& cells = sheet_.rows[row];
        if (column >= cells.size())
            cells.resize(column + 1);
        cells[column] = std::move(value);
    }

private:
    Sheet& sheet_;
};

void readSheet(std::span<const std::uint8_t> stream, const BoundSheet& bound,
               const std::vector<std::u16string>& strings, Sheet& sheet) {
    RecordReader reader(stream, bound.offset);
    Record record;
    if (!reader.next(record))
        damaged("a worksheet is missing");
    checkBof(record, false);
    SheetBuilder cells(sheet);
    int depth = 1;  // an embedded chart brings a BOF ... EOF of its own
    std::optional<std::pair<std::uint16_t, std::uint16_t>> formulaString;
    while (depth > 0 && reader.next(record)) {
        if (record.type == biff::kBof) {
            ++depth;
            continue;
        }
        if (record.type == biff::kEof) {
            --depth;
            continue;
        }
        if (depth > 1)
            continue;
        Cursor cursor(record);
        switch (record.type) {
            case biff::kLabelSst: {
                const std::uint16_t row = cursor.u16();
                const std::uint16_t column = cursor.u16();
                cursor.skip(2);
                const std::uint32_t index = cursor.u32();
                if (index >= strings.size())
                    damaged("a cell names a string that is not there");
                cells.set(row, column, strings[index]);
                break;
            }
            case biff::kLabel: {
                const std::uint16_t row = cursor.u16();
                const std::uint16_t column = cursor.u16();
                cursor.skip(2);
                cells.set(row, column, cursor.unicodeString());
                break;
            }
            case biff::kNumber: {
                const std::uint16_t row = cursor.u16();
                const std::uint16_t column = cursor.u16();
                cursor.skip(2);
                cells.set(row, column, cursor.f64());
                break;
            }
            case biff::kRk: {
                const std::uint16_t row = cursor.u16();
                const std::uint16_t column = cursor.u16();
                cursor.skip(2);
                cells.set(row, column, rkNumber(cursor.u32()));
                break;
            }
            case biff::kMulRk: {
                const std::uint16_t row = cursor.u16();
                std::uint32_t column = cursor.u16();
                // (format, RK) pairs of six bytes, then the last column's number.
                const std::size_t size = record.pieces.front().size();
                if (size < 6)
                    damaged("a MULRK record is cut short");
                for (std::size_t n = (size - 6) / 6; n > 0; --n, ++column) {
                    cursor.skip(2);
                    cells.set(row, column, rkNumber(cursor.u32()));
                }
                break;
            }
            case biff::kBoolErr: {
                const std::uint16_t row = cursor.u16();
                const std::uint16_t column = cursor.u16();
                cursor.skip(2);
                const std::uint8_t value = cursor.u8();
                if (cursor.u8() != 0) {
                    cells.set(row, column, CellError{value});
                } else {
                    cells.set(row, column, value != 0);
                }
                break;
            }
            case biff::kFormula: {
                const std::uint16_t row = cursor.u16();
                const std::uint16_t column = cursor.u16();
                cursor.skip(2);
                std::array<std::uint8_t, 8> result{};
                for (std::uint8_t& byte : result)
                    byte = cursor.u8();
                formulaString.reset();
                if (result[6] != 0xFF || result[7] != 0xFF) {
                    cells.set(row, column, std::bit_cast<double>(result));
                } else if (result[0] == 0) {
                    formulaString.emplace(row, column);  // the STRING record that follows
                } else if (result[0] == 1) {
                    cells.set(row, column, result[2] != 0);
                } else if (result[0] == 2) {
                    cells.set(row, column, CellError{result[2]});
                } else if (result[0] == 3) {
                    cells.set(row, column, std::u16string());
                }
                break;
            }
            case biff::kString:
                if (formulaString) {
                    cells.set(formulaString->first, formulaString->second, cursor.unicodeString());
                    formulaString.reset();
                }
                break;
            default:
                // BLANK and MULBLANK hold no value; DIMENSIONS is not trusted,
                // the cells themselves give the used range.
                break;
        }
    }
}

}  // namespace

const std::optional<CellValue>& Sheet::cell(std::size_t row, std::size_t column) const {
    static const std::optional<CellValue> kEmpty;
    if (row >= rows.size() || column >= rows[row].size())
        return kEmpty;
    return rows[row][column];
}

Workbook readWorkbook(std::vector<std::uint8_t> fileBytes) {
    const CompoundFile file(std::move(fileBytes));
    if (!file.hasStream(u"Workbook")) {
        if (file.hasStream(u"Book")) {
            throw WorkbookError(WorkbookError::Kind::OlderFormat,
                                "the workbook is in an Excel 5/95 format, older than Excel 97");
        }
        if (file.hasStream(u"EncryptedPackage")) {
            throw WorkbookError(WorkbookError::Kind::PasswordProtected,
                                "the workbook is a password-protected Excel 2007 or later file");
        }
        throw WorkbookError(WorkbookError::Kind::NotAWorkbook,
                            "the compound file holds no workbook stream");
    }
    const std::vector<std::uint8_t> stream = file.stream(u"Workbook");
    const Globals globals = readGlobals(stream);

    Workbook book;
    std::vector<std::optional<std::size_t>> worksheetOf(globals.sheets.size());
    for (std::size_t i = 0; i < globals.sheets.size(); ++i) {
        const BoundSheet& bound = globals.sheets[i];
        if (bound.type != kWorksheetType)
            continue;
        Sheet sheet;
        sheet.name = bound.name;
        sheet.visible = bound.visible;
        readSheet(stream, bound, globals.strings, sheet);
        worksheetOf[i] = book.sheets.size();
        book.sheets.push_back(std::move(sheet));
    }
    for (const NameRecord& name : globals.names) {
        if (name.externIndex >= globals.externSheetFirst.size())
            continue;
        const std::size_t sheetIndex = globals.externSheetFirst[name.externIndex];
        if (sheetIndex >= worksheetOf.size() || !worksheetOf[sheetIndex])
            continue;
        book.names.push_back({name.name, *worksheetOf[sheetIndex], name.range});
    }
    return book;
}

Workbook readWorkbookFile(const std::filesystem::path& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error) {
        throw WorkbookError(WorkbookError::Kind::NotAWorkbook,
                            "cannot read the workbook " + path.string() + ": " + error.message());
    }
    if (size > kFileSizeLimit) {
        throw WorkbookError(WorkbookError::Kind::Damaged,
                            "the workbook " + path.string() + " is too large to be a menu");
    }
    std::ifstream in(path, std::ios::binary);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    if (!in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size))) {
        throw WorkbookError(WorkbookError::Kind::NotAWorkbook,
                            "cannot read the workbook " + path.string());
    }
    try {
        return readWorkbook(std::move(bytes));
    } catch (const WorkbookError& failure) {
        throw WorkbookError(failure.kind(), path.string() + ": " + failure.what());
    }
}

}  // namespace workbook
