#include "database.h"

#include <algorithm>

#include "error.h"
#include "text.h"

namespace jet {
namespace {

bool equalIgnoringAsciiCase(std::u16string_view a, std::u16string_view b) {
    const auto lower = [](char16_t c) {
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
    };
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [&](char16_t x, char16_t y) { return lower(x) == lower(y); });
}

}  // namespace

Database::Database(const std::string& path) : file_(path), header_(readHeader(file_)) {
    file_.setEncodingKey(header_.encodingKey);
}

std::vector<CatalogEntry> Database::catalog() const { return readCatalog(file_); }

std::vector<std::u16string> Database::userTableNames() const {
    std::vector<std::u16string> names;
    for (const CatalogEntry& entry : catalog()) {
        if (entry.isUserTable()) names.push_back(entry.name);
    }
    return names;
}

TableDefinition Database::table(std::u16string_view name) const {
    const std::vector<CatalogEntry> entries = catalog();
    const CatalogEntry* found = nullptr;
    for (const CatalogEntry& entry : entries) {
        if (entry.isTable() && entry.name == name) {
            found = &entry;
            break;
        }
    }
    for (const CatalogEntry& entry : entries) {
        if (found == nullptr && entry.isTable() && equalIgnoringAsciiCase(entry.name, name)) {
            found = &entry;
        }
    }
    if (found == nullptr) {
        throw Error("table " + toUtf8(name) + " does not exist in " + file_.path());
    }
    TableDefinition definition = readTableDefinition(file_, found->definitionPage());
    definition.name = found->name;
    return definition;
}

}  // namespace jet
