#include "table_names.h"

#include "store/jet/text.h"
#include "store/sql/collation.h"
#include "store/workbook/workbook_error.h"

namespace workbook {
namespace {

bool isPlainNameChar(char16_t c) {
    if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
        c == u'_') {
        return true;
    }
    // Letters of other scripts; the Latin-1 signs, punctuation blocks and
    // surrogates are not letters.
    return c >= 0xC0 && c != 0xD7 && c != 0xF7 && !(c >= 0x2000 && c <= 0x2BFF) &&
           !(c >= 0x3000 && c <= 0x303F) && !(c >= 0xD800 && c <= 0xDFFF) && c != 0xFEFF;
}

std::u16string sheetTableName(std::u16string_view sheet) {
    bool plain = !sheet.empty();
    for (const char16_t c : sheet)
        plain = plain && isPlainNameChar(c);
    if (plain)
        return std::u16string(sheet) + u"$";
    std::u16string quoted = u"'";
    for (const char16_t c : sheet) {
        quoted.push_back(c);
        if (c == u'\'')
            quoted.push_back(c);
    }
    return quoted + u"$'";
}

// "'It''s$'" is "It's$".
std::u16string unquoted(std::u16string_view name) {
    if (name.size() < 2 || name.front() != u'\'' || name.back() != u'\'') {
        return std::u16string(name);
    }
    std::u16string inner;
    const std::u16string_view body = name.substr(1, name.size() - 2);
    for (std::size_t i = 0; i < body.size(); ++i) {
        inner.push_back(body[i]);
        if (body[i] == u'\'' && i + 1 < body.size() && body[i + 1] == u'\'')
            ++i;
    }
    return inner;
}

}  // namespace

std::vector<std::u16string> tableNames(const Workbook& book) {
    std::vector<std::u16string> names;
    for (const Sheet& sheet : book.sheets)
        names.push_back(sheetTableName(sheet.name));
    for (const DefinedName& name : book.names)
        names.push_back(name.name);
    return names;
}

SheetTable readTable(const Workbook& book, std::u16string_view name, bool headerRow) {
    const std::u16string bare = unquoted(name);
    if (!bare.empty() && bare.back() == u'$') {
        const std::u16string_view sheetName = std::u16string_view(bare).substr(0, bare.size() - 1);
        for (const Sheet& sheet : book.sheets) {
            if (sql::sameName(sheet.name, sheetName)) {
                return readSheetTable(sheet, std::nullopt, headerRow);
            }
        }
    }
    for (const DefinedName& defined : book.names) {
        if (sql::sameName(defined.name, bare)) {
            return readSheetTable(book.sheets.at(defined.sheet), defined.range, headerRow);
        }
    }
    throw WorkbookError(WorkbookError::Kind::TableNotFound,
                        "the workbook has no sheet or named range '" + jet::toUtf8(name) +
                            "' (a sheet is written with a '$' after its name, as Sayfa1$)");
}

}  // namespace workbook
