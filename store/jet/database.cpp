#include "database.h"

#include <filesystem>


#include "create_table.h"
#include "error.h"
#include "journal.h"
#include "os_file.h"
#include "table_writer.h"
#include "text.h"
#include "write_statement.h"

namespace jet {
namespace {

// Sets a pointer for the time of a block.
class ResetOnExit {
public:
    ResetOnExit(WriteStatement*& pointer, WriteStatement* value) : pointer_(pointer) {
        pointer_ = value;
    }
    ~ResetOnExit() { pointer_ = nullptr; }
    ResetOnExit(const ResetOnExit&) = delete;
    ResetOnExit& operator=(const ResetOnExit&) = delete;

private:
    WriteStatement*& pointer_;
};

}  // namespace

Database::Database(const std::string& path, PageFile::Mode mode)
    : file_(path, mode),
      header_(readHeader(file_)),
      locks_(LockFile::open(path, mode == PageFile::Mode::ReadWrite)) {
    file_.setEncodingKey(header_.encodingKey);
    if (mode == PageFile::Mode::ReadWrite &&
        std::filesystem::exists(os::utf8Path(RollbackJournal::journalPath(path)))) {
        // A statement a crashed writer left unfinished is undone first.
        const LockFile::Hold lock = locks_->holdForWriting();
        RollbackJournal::rollBack(file_);
    }
}

Database::~Database() = default;

const PageSource& Database::pages() const {
    if (writing_ != nullptr)
        return *writing_;
    if (scope_ != nullptr)
        return *scope_;
    return file_;
}

LockFile::Hold Database::holdForReading() const {
    if (writing_ != nullptr || scope_ != nullptr || locks_ == nullptr)
        return {};
    if (file_.writable() &&
        std::filesystem::exists(os::utf8Path(RollbackJournal::journalPath(path())))) {
        // A copy died in the middle of a commit: what it wrote is undone
        // before anything of it is read.
        const LockFile::Hold lock = locks_->holdForWriting();
        RollbackJournal::rollBack(file_);
    }
    return locks_->holdForReading();
}

std::uint64_t Database::commitCount() const { return locks_ != nullptr ? locks_->commitCount() : 0; }

std::vector<CatalogEntry> Database::catalog() const {
    const LockFile::Hold lock = holdForReading();
    return readCatalog(pages());
}

std::vector<std::u16string> Database::userTableNames() const {
    std::vector<std::u16string> names;
    for (const CatalogEntry& entry : catalog()) {
        if (entry.isUserTable()) names.push_back(entry.name);
    }
    return names;
}

TableDefinition Database::table(std::u16string_view name) const {
    const LockFile::Hold lock = holdForReading();
    try {
        return findTable(pages(), name);
    } catch (const Error& error) {
        throw Error(std::string(error.what()) + " in " + file_.path());
    }
}

void Database::write(const std::function<void(WriteStatement&)>& work) {
    if (writing_ != nullptr) {
        work(*writing_);  // a write inside a write is a part of it
        return;
    }
    if (scope_ == nullptr) {
        WriteStatement statement(file_, locks_.get());
        const ResetOnExit reset(writing_, &statement);
        work(statement);
        statement.commit();
        return;
    }
    // A part of the scope: undone alone when it fails.
    const ResetOnExit reset(writing_, scope_.get());
    scope_->setSavepoint();
    try {
        work(*scope_);
    } catch (...) {
        scope_->rollBackToSavepoint();
        throw;
    }
    scope_->releaseSavepoint();
}

Database::WriteScope::WriteScope(Database& database)
    : database_(database), outermost_(database.scope_ == nullptr) {
    if (outermost_)
        database_.scope_ = std::make_unique<WriteStatement>(database_.file_, database_.locks_.get());
}

Database::WriteScope::~WriteScope() {
    try {
        commit();
    } catch (const Error&) {
        // Nothing of the scope reached the file; the caller learns of it
        // only through commit().
        database_.scope_.reset();
    }
}

void Database::WriteScope::commit() {
    if (!outermost_ || database_.scope_ == nullptr)
        return;
    // The scope ends whether the commit succeeds or not.
    const std::unique_ptr<WriteStatement> statement = std::move(database_.scope_);
    statement->commit();
}

std::vector<RowId> Database::insertRows(std::u16string_view tableName,
                                        const std::vector<std::vector<Value>>& rows) {
    std::vector<RowId> placed;
    write([&](WriteStatement& statement) {
        const TableDefinition table = findTable(statement, tableName);
        TableWriter writer(statement, table);
        for (const std::vector<Value>& row : rows) placed.push_back(writer.insert(row));
    });
    return placed;
}

void Database::updateRow(std::u16string_view tableName, RowId row,
                         const std::vector<Value>& values) {
    write([&](WriteStatement& statement) {
        const TableDefinition table = findTable(statement, tableName);
        TableWriter(statement, table).update(row, values);
    });
}

void Database::deleteRows(std::u16string_view tableName, const std::vector<RowId>& rows) {
    write([&](WriteStatement& statement) {
        const TableDefinition table = findTable(statement, tableName);
        TableWriter writer(statement, table);
        for (const RowId row : rows) writer.remove(row);
    });
}

void Database::create(const std::string& path, const NewDatabaseOptions& options) {
    createDatabase(path, options);
}

void Database::createTable(std::u16string_view sql) { createTable(parseCreateTable(sql)); }

void Database::createTable(const NewTable& table) {
    write([&](WriteStatement& statement) { jet::createTable(statement, table); });
}

}  // namespace jet
