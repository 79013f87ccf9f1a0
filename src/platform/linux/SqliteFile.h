// A small SQLite database in a file of its own, made when it is first written to, private to its user, and put aside
// when it is damaged.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

#include "platform/Registry.h"
#include "platform/Status.h"

namespace kinsort {

// One statement that is being carried out. Used inside of the work of SqliteFile::Read and Write only.
class SqliteStatement {
  public:
    SqliteStatement(sqlite3* database, std::string_view sql);
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;
    ~SqliteStatement() { sqlite3_finalize(statement_); }

    // Parameters, counted from 1; what is bound must live until the last Step.
    SqliteStatement& Bind(int index, std::string_view text);
    SqliteStatement& Bind(int index, std::span<const std::byte> blob);
    SqliteStatement& Bind(int index, int64_t number);

    // True when there is a row to look at; false at the end and after a failure, see code().
    bool Step();
    // SQLITE_OK unless something failed.
    int code() const { return code_; }

    // Columns of the row, counted from 0.
    std::string Text(int column) const;
    std::vector<std::byte> Blob(int column) const;
    int64_t Number(int column) const { return sqlite3_column_int64(statement_, column); }

  private:
    sqlite3_stmt* statement_ = nullptr;
    int code_;
};

// What the database is and how it comes to be. The texts live as long as the program.
struct SqliteFormat {
    int32_t applicationId;  // tells this kind of file from others
    int32_t version;        // a higher one is of a later program and is not touched
    std::string_view schema;
};

class SqliteFile {
  public:
    // Work gives an SQLite result code.
    using Work = std::function<int(sqlite3* database)>;

    // `path` is stored form, absolute; empty when there is no place for it. Waits up to `busyMs` for other programs.
    SqliteFile(std::string path, const SqliteFormat& format, int busyMs, ReportRegistryDamage report);
    ~SqliteFile();

    // Runs `work` on the database as it is at one moment. kNotFound, and nothing is created, when there is none yet.
    Status Read(const Work& work);
    // Runs `work` as one transaction, which a failure takes back. Makes the file and the folders above it.
    Status Write(const Work& work);

    const std::string& path() const { return path_; }

  private:
    enum class Purpose : uint8_t { kRead, kWrite };
    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    using Connection = std::unique_ptr<sqlite3, Closer>;

    Status Run(Purpose purpose, const Work& work);
    static int Transact(sqlite3* database, Purpose purpose, const Work& work);
    Status Ensure(Purpose purpose);
    Status Connect(Purpose purpose, Connection& connection);
    Status CreateFile0600();
    Status SetAside();
    void Report(const std::string& setAside);

    std::string path_;
    SqliteFormat format_;
    int busyMs_;
    ReportRegistryDamage report_;
    bool isReported_ = false;
    bool isReady_ = false;  // the connection's file has its tables
    Connection connection_;
};

}  // namespace kinsort
