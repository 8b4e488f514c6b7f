#include "connection_string.h"

#include <system_error>

#include "store/data_error.h"
#include "store/jet/os_file.h"
#include "store/jet/text.h"
#include "store/sql/collation.h"

namespace store {
namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string_view trim(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// A key as compared: lower-case ASCII, blanks around dropped, runs of
// blanks inside as one blank.
std::string normalKey(std::string_view key) {
    std::string out;
    bool blank = false;
    for (char c : trim(key)) {
        if (isBlank(c)) {
            blank = true;
            continue;
        }
        if (blank) {
            out.push_back(' ');
            blank = false;
        }
        out.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
    }
    return out;
}

// The message leaves the text out: it holds the database password.
[[noreturn]] void fail(const std::string& what) {
    throw DataError("connection string not understood: " + what);
}

}  // namespace

std::optional<std::string> ConnectionString::value(std::string_view key) const {
    const std::string wanted = normalKey(key);
    for (auto it = pairs_.rbegin(); it != pairs_.rend(); ++it) {
        if (normalKey(it->first) == wanted) {
            return it->second;
        }
    }
    return std::nullopt;
}

ConnectionString parseConnectionString(std::string_view text) {
    ConnectionString result;
    std::size_t pos = 0;
    bool first = true;
    while (pos < text.size()) {
        // The key: up to '=' or the end of the piece.
        std::size_t stop = text.find_first_of("=;", pos);
        if (stop == std::string_view::npos || text[stop] == ';') {
            std::size_t end = stop == std::string_view::npos ? text.size() : stop;
            std::string_view piece = trim(text.substr(pos, end - pos));
            if (!piece.empty()) {
                if (!first) {
                    fail("a piece without '=' after the first");
                }
                result.pairs_.emplace_back("Provider", std::string(piece));
            }
            first = first && piece.empty();
            pos = end + 1;
            continue;
        }
        std::string key(trim(text.substr(pos, stop - pos)));
        if (key.empty()) {
            fail("a value without a key");
        }
        pos = stop + 1;
        while (pos < text.size() && isBlank(text[pos])) {
            ++pos;
        }
        std::string value;
        if (pos < text.size() && (text[pos] == '"' || text[pos] == '\'')) {
            const char quote = text[pos++];
            for (;;) {
                if (pos >= text.size()) {
                    fail("the value of " + key + " has no closing quote");
                }
                if (text[pos] == quote) {
                    if (pos + 1 < text.size() && text[pos + 1] == quote) {
                        value.push_back(quote);
                        pos += 2;
                        continue;
                    }
                    ++pos;
                    break;
                }
                value.push_back(text[pos++]);
            }
            while (pos < text.size() && isBlank(text[pos])) {
                ++pos;
            }
            if (pos < text.size() && text[pos] != ';') {
                fail("text after the quoted value of " + key);
            }
        } else {
            std::size_t end = text.find(';', pos);
            if (end == std::string_view::npos) {
                end = text.size();
            }
            value = std::string(trim(text.substr(pos, end - pos)));
            pos = end;
        }
        ++pos;  // the ';', or past the end
        result.pairs_.emplace_back(std::move(key), std::move(value));
        first = false;
    }
    return result;
}

std::filesystem::path resolveDataSource(std::string_view dataSource) {
    std::string source(trim(dataSource));
    if (source.empty()) {
        throw DataError("connection string: no Data Source");
    }
    for (char& c : source) {
        if (c == '\\') {
            c = '/';
        }
    }
    std::filesystem::path path = jet::os::utf8Path(source);
    if (path.is_relative()) {
        path = std::filesystem::current_path() / path;
    }
    path = path.lexically_normal();
    if (!path.has_filename()) {
        throw DataError("data source \"" + std::string(dataSource) +
                        "\" names a folder, not a file");
    }
    std::error_code error;
    if (std::filesystem::exists(path, error)) {
        return path;
    }
    const std::filesystem::path folder = path.parent_path();
    const std::u16string wanted = jet::fromUtf8(jet::os::utf8Text(path.filename()));
    std::filesystem::path found;
    int matches = 0;
    std::filesystem::directory_iterator entries(folder, error);
    if (!error) {
        for (const std::filesystem::directory_entry& entry : entries) {
            if (sql::sameName(jet::fromUtf8(jet::os::utf8Text(entry.path().filename())), wanted)) {
                found = entry.path();
                ++matches;
            }
        }
    }
    if (matches == 0) {
        throw DataError("database file not found: " + jet::os::utf8Text(path));
    }
    if (matches > 1) {
        throw DataError("database file " + jet::os::utf8Text(path) +
                        ": several files of that name in other cases, none exactly so");
    }
    return found;
}

}  // namespace store
