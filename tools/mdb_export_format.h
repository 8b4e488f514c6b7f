#pragma once

#include <string>
#include <vector>

#include "store/jet/table_definition.h"
#include "store/jet/value.h"

namespace jet {

// CSV exactly as `mdb-export FILE TABLE` of mdbtools 1.0 writes it with its
// default options, so that our dump and theirs compare byte for byte: comma
// between fields, a newline after each row, text, memo, dates and binary
// values in double quotes with quotes doubled, Null and empty text as nothing.
void appendMdbExportHeader(std::string& out, const TableDefinition& table);
void appendMdbExportField(std::string& out, const Column& column, const Value& value);
// One row: its fields in column order, then the newline.
void appendMdbExportRow(std::string& out, const TableDefinition& table,
                        const std::vector<Value>& values);

}  // namespace jet
