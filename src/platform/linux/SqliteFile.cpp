#include "platform/linux/SqliteFile.h"

#include <array>
#include <utility>

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/Descriptor.h"
#include "platform/linux/LinuxError.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr std::string_view kJournalSuffix = "-journal";

struct CodeRow {
    int primary;
    StatusCode code;
};
constexpr std::array<CodeRow, 11> kCodeRows = {{
    {SQLITE_PERM, StatusCode::kAccessDenied},
    {SQLITE_BUSY, StatusCode::kLocked},
    {SQLITE_LOCKED, StatusCode::kLocked},
    {SQLITE_NOMEM, StatusCode::kOutOfMemory},
    {SQLITE_READONLY, StatusCode::kAccessDenied},
    {SQLITE_IOERR, StatusCode::kIo},
    {SQLITE_CORRUPT, StatusCode::kCorrupt},
    {SQLITE_FULL, StatusCode::kNoSpace},
    {SQLITE_CANTOPEN, StatusCode::kAccessDenied},
    {SQLITE_TOOBIG, StatusCode::kFileTooLarge},
    {SQLITE_NOTADB, StatusCode::kCorrupt},
}};

Status StatusFromSqlite(int result) {
    if (result == SQLITE_OK || result == SQLITE_DONE || result == SQLITE_ROW) return {};
    StatusCode code = StatusCode::kOther;
    for (const CodeRow& row : kCodeRows) {
        if (row.primary == (result & 0xFF)) code = row.code;
    }
    return Status::Failure(code, result, FromUtf8(sqlite3_errstr(result)));
}

int Execute(sqlite3* database, std::string_view sql) {
    return sqlite3_exec(database, std::string(sql).c_str(), nullptr, nullptr, nullptr);
}

// The one number that a statement gives; `result` becomes the failure if there is one.
int64_t AskNumber(sqlite3* database, std::string_view sql, int& result) {
    SqliteStatement statement(database, sql);
    const int64_t number = statement.Step() ? statement.Number(0) : 0;
    if (result == SQLITE_OK) result = statement.code();
    return number;
}

// SQLITE_CORRUPT also for damage that SQLite would only meet later.
int CheckWhole(sqlite3* database) {
    SqliteStatement check(database, "PRAGMA quick_check(1)");
    if (!check.Step()) return check.code();
    return check.Text(0) == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

Status MakeFolders(const std::string& folder) {
    if (folder.empty() || mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST) return {};
    if (errno != ENOENT) return StatusFromErrno(errno);
    Status above = MakeFolders(folder.substr(0, folder.rfind('/')));
    if (!above.ok()) return above;
    return mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST ? Status() : StatusFromErrno(errno);
}

bool IsThere(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

}  // namespace

SqliteStatement::SqliteStatement(sqlite3* database, std::string_view sql)
    : code_(sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement_, nullptr)) {}

SqliteStatement& SqliteStatement::Bind(int index, std::string_view text) {
    if (code_ == SQLITE_OK)
        code_ = sqlite3_bind_text64(statement_, index, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC,
                                    SQLITE_UTF8);
    return *this;
}

SqliteStatement& SqliteStatement::Bind(int index, std::span<const std::byte> blob) {
    const void* const bytes = blob.empty() ? static_cast<const void*>("") : blob.data();
    if (code_ == SQLITE_OK) code_ = sqlite3_bind_blob64(statement_, index, bytes, blob.size(), SQLITE_STATIC);
    return *this;
}

SqliteStatement& SqliteStatement::Bind(int index, int64_t number) {
    if (code_ == SQLITE_OK) code_ = sqlite3_bind_int64(statement_, index, number);
    return *this;
}

bool SqliteStatement::Step() {
    if (code_ != SQLITE_OK) return false;
    const int result = sqlite3_step(statement_);
    if (result != SQLITE_ROW && result != SQLITE_DONE) code_ = result;
    return result == SQLITE_ROW;
}

std::string SqliteStatement::Text(int column) const {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {text == nullptr ? "" : text, static_cast<size_t>(sqlite3_column_bytes(statement_, column))};
}

std::vector<std::byte> SqliteStatement::Blob(int column) const {
    const auto* const bytes = static_cast<const std::byte*>(sqlite3_column_blob(statement_, column));
    return {bytes, bytes + sqlite3_column_bytes(statement_, column)};
}

SqliteFile::SqliteFile(std::string path, const SqliteFormat& format, int busyMs, ReportRegistryDamage report)
    : path_(std::move(path)), format_(format), busyMs_(busyMs), report_(std::move(report)) {}

SqliteFile::~SqliteFile() = default;

Status SqliteFile::Read(const Work& work) {
    return Run(Purpose::kRead, work);
}

Status SqliteFile::Write(const Work& work) {
    return Run(Purpose::kWrite, work);
}

Status SqliteFile::Run(Purpose purpose, const Work& work) {
    if (path_.empty()) return StatusFromErrno(purpose == Purpose::kRead ? ENOENT : EACCES);
    Status status;
    for (int attempt = 0; attempt < 2; ++attempt) {
        status = Ensure(purpose);
        if (status.ok()) status = StatusFromSqlite(Transact(connection_.get(), purpose, work));
        if (status.code() != StatusCode::kCorrupt || attempt > 0) return status;
        Status moved = SetAside();
        if (!moved.ok()) return status;
    }
    return status;
}

int SqliteFile::Transact(sqlite3* database, Purpose purpose, const Work& work) {
    int result = Execute(database, purpose == Purpose::kWrite ? "BEGIN IMMEDIATE" : "BEGIN");
    if (result != SQLITE_OK) return result;
    result = work(database);
    if (result == SQLITE_OK) result = Execute(database, "COMMIT");
    if (result != SQLITE_OK) Execute(database, "ROLLBACK");
    return result;
}

Status SqliteFile::Ensure(Purpose purpose) {
    int hasMoved = 0;
    if (connection_ != nullptr) {
        sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    }
    if (connection_ != nullptr && hasMoved == 0 && isReady_) return {};
    connection_.reset();
    return Connect(purpose, connection_);
}

Status SqliteFile::Connect(Purpose purpose, Connection& connection) {
    isReady_ = false;
    if (purpose == Purpose::kWrite) {
        Status created = CreateFile0600();
        if (!created.ok()) return created;
    }
    struct stat info;
    if (stat(path_.c_str(), &info) != 0) return StatusFromErrno(errno);
    if (!S_ISREG(info.st_mode)) return StatusFromErrno(S_ISDIR(info.st_mode) ? EISDIR : EINVAL);
    if ((info.st_mode & 077) != 0 && info.st_uid == geteuid()) chmod(path_.c_str(), 0600);
    sqlite3* opened = nullptr;
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    int result = sqlite3_open_v2(path_.c_str(), &opened, kFlags, nullptr);
    connection.reset(opened);
    if (result != SQLITE_OK) return StatusFromSqlite(result);
    sqlite3_busy_timeout(opened, busyMs_);
    // The content comes from a file that others may have written.
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    result = Execute(opened, "PRAGMA cell_size_check=ON; PRAGMA journal_mode=DELETE; PRAGMA synchronous=EXTRA");
    const int64_t tables = AskNumber(opened, "SELECT count(*) FROM sqlite_schema", result);
    if (result == SQLITE_OK && tables == 0) {
        if (purpose == Purpose::kRead) return StatusFromErrno(ENOENT);
        // Two programs may begin at the same time; the second finds the tables made.
        result = Execute(opened, "BEGIN IMMEDIATE");
        if (result == SQLITE_OK && AskNumber(opened, "SELECT count(*) FROM sqlite_schema", result) == 0) {
            result = Execute(opened, std::string(format_.schema) +
                                         "; PRAGMA application_id=" + std::to_string(format_.applicationId) +
                                         "; PRAGMA user_version=" + std::to_string(format_.version));
        }
        if (result == SQLITE_OK) result = Execute(opened, "COMMIT");
    }
    const int64_t id = AskNumber(opened, "PRAGMA application_id", result);
    const int64_t version = AskNumber(opened, "PRAGMA user_version", result);
    if (result == SQLITE_OK && id != format_.applicationId) result = SQLITE_NOTADB;
    if (result == SQLITE_OK && version > format_.version) return Status::Failure(StatusCode::kTooNew);
    if (result == SQLITE_OK) result = CheckWhole(opened);
    isReady_ = result == SQLITE_OK;
    return StatusFromSqlite(result);
}

Status SqliteFile::CreateFile0600() {
    const Descriptor file(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (file.isOpen() || errno == EEXIST) return {};
    if (errno != ENOENT) return StatusFromErrno(errno);
    Status made = MakeFolders(path_.substr(0, path_.rfind('/')));
    if (!made.ok()) return made;
    const Descriptor again(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    return again.isOpen() || errno == EEXIST ? Status() : StatusFromErrno(errno);
}

// Renames the damaged file, its rollback journal first: left behind, that would be played back into the new file. The
// lock keeps programs that met the damage together from putting each other's new file aside.
Status SqliteFile::SetAside() {
    connection_.reset();
    std::string newName;
    {
        const std::string folder = path_.substr(0, path_.rfind('/') + 1);
        const Descriptor lock(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!lock.isOpen() || flock(lock.get(), LOCK_EX) != 0) {
            Status status = StatusFromErrno(errno);
            Report({});
            return status;
        }
        Connection probe;
        if (Connect(Purpose::kRead, probe).code() != StatusCode::kCorrupt) return {};
        probe.reset();
        const std::string journal = path_ + std::string(kJournalSuffix);
        for (int number = 1; newName.empty(); ++number) {
            std::string candidate = path_ + ".damaged-" + std::to_string(number);
            if (!IsThere(candidate) && !IsThere(candidate + std::string(kJournalSuffix))) newName = candidate;
        }
        const bool isMoved =
            (rename(journal.c_str(), (newName + std::string(kJournalSuffix)).c_str()) == 0 || errno == ENOENT) &&
            rename(path_.c_str(), newName.c_str()) == 0;
        if (!isMoved) {
            Status status = StatusFromErrno(errno);
            Report({});
            return status;
        }
    }
    Report(newName);
    return {};
}

void SqliteFile::Report(const std::string& setAside) {
    if (std::exchange(isReported_, true) || !report_) return;
    report_({path_, setAside});
}

}  // namespace kinsort
