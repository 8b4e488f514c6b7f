#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace store {

// A connection string of the OLE DB kind, such as
// "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=kvl.mdb;Persist Security
// Info=True;Jet OLEDB:Database Password=...". Pairs `key=value` separated by
// ';'. Keys in any case, blanks around keys and values dropped, runs of
// blanks inside a key read as one; a value may stand in double or single
// quotes (the quote doubled inside), and may then hold ';'. Empty pieces
// (a trailing ';') are passed over. A first piece without '=' names the
// provider ("Microsoft.Jet.OLEDB.4.0;Data Source=..."). A key given twice
// keeps its last value. Texts are UTF-8.
class ConnectionString {
public:
    // The value of `key` (any case), or nothing when the key is absent.
    std::optional<std::string> value(std::string_view key) const;

    std::string provider() const { return value("Provider").value_or(""); }
    std::string dataSource() const { return value("Data Source").value_or(""); }
    std::string password() const { return value("Jet OLEDB:Database Password").value_or(""); }

    // Every pair in the order given, keys as written.
    const std::vector<std::pair<std::string, std::string>>& pairs() const { return pairs_; }

private:
    friend ConnectionString parseConnectionString(std::string_view text);

    std::vector<std::pair<std::string, std::string>> pairs_;
};

// Throws DataError for a quote left open, a key without a value after the
// first piece, or text after a closing quote.
ConnectionString parseConnectionString(std::string_view text);

// The file that a data source names. One rule for every kind of data
// source: backslashes are separators like '/'; an absolute path stands as
// it is, a relative one ("kvl.mdb") is taken from the current directory,
// which the program sets to its own folder at start, so that "kvl.mdb" and
// the program folder followed by "\kvl.mdb" reach the same file. The file's
// name is matched without regard to case (names match as sql::sameName
// matches them: `kvl.mdb` finds `KVL.MDB`): an entry of exactly that name
// wins, else the one entry of the folder that equals it ignoring case. The
// folders on the way are taken as written. Throws DataError when no entry
// matches, or when several match and none exactly.
std::filesystem::path resolveDataSource(std::string_view dataSource);

}  // namespace store
