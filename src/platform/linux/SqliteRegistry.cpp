#include "platform/linux/SqliteRegistry.h"

#include <algorithm>
#include <map>

#include "platform/linux/LinuxError.h"
#include "platform/linux/SqliteFile.h"
#include "text/AsciiCase.h"
#include "text/Split.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// NOCASE folds the ASCII letters only, as keys and names do.
constexpr SqliteFormat kFormat = {
    .applicationId = 0x56656C52,  // "VelR"
    .version = 1,
    .schema =
        "CREATE TABLE keys(path TEXT NOT NULL COLLATE NOCASE PRIMARY KEY) WITHOUT ROWID;"
        "CREATE TABLE entries(path TEXT NOT NULL COLLATE NOCASE, name TEXT NOT NULL COLLATE NOCASE,"
        " type INTEGER NOT NULL, data BLOB NOT NULL, PRIMARY KEY(path, name)) WITHOUT ROWID"};

// ?1 is a key; it and all below, everything for the root.
constexpr std::string_view kAtOrBelow =
    "(?1 = '' OR path = ?1 OR substr(path, 1, length(?1) + 1) = ?1 || '\\' COLLATE NOCASE)";

int RunOnce(SqliteStatement& statement) {
    statement.Step();
    return statement.code();
}

// Makes the key and those above it; names that are there keep their spelling.
int MakeKey(sqlite3* database, std::u16string_view key) {
    std::string path;
    for (const std::u16string& name : SplitSkippingEmpty(key, u'\\')) {
        path += (path.empty() ? "" : "\\") + ToUtf8(name);
        SqliteStatement find(database, "SELECT path FROM keys WHERE path = ?1");
        if (find.Bind(1, path).Step()) {
            path = find.Text(0);
            continue;
        }
        if (find.code() != SQLITE_OK) return find.code();
        SqliteStatement insert(database, "INSERT INTO keys VALUES(?1)");
        if (const int result = RunOnce(insert.Bind(1, path)); result != SQLITE_OK) return result;
    }
    return SQLITE_OK;
}

int ApplyChange(sqlite3* database, const RegistryChange& change) {
    const std::string path = ToUtf8(NormalKeyPath(change.key));
    const std::string name = ToUtf8(change.name);
    if (!change.value) {
        SqliteStatement remove(database, "DELETE FROM entries WHERE path = ?1 AND name = ?2");
        return RunOnce(remove.Bind(1, path).Bind(2, name));
    }
    if (const int result = MakeKey(database, change.key); result != SQLITE_OK) return result;
    SqliteStatement write(database,
                          "INSERT INTO entries VALUES(?1, ?2, ?3, ?4) "
                          "ON CONFLICT DO UPDATE SET type = excluded.type, data = excluded.data");
    return RunOnce(
        write.Bind(1, path).Bind(2, name).Bind(3, int64_t{change.value->type}).Bind(4, std::span(change.value->data)));
}

class SqliteRegistry final : public Registry {
  public:
    SqliteRegistry(std::string file, const PathCodec& codec, ReportRegistryDamage report, int busyMs)
        : codec_(codec), file_(std::move(file), kFormat, busyMs, std::move(report)) {}

    Status CreateKey(std::u16string_view key) override {
        Status status = CheckKeyPath(key);
        if (!status.ok()) return status;
        // Most keys are there; looking is cheap, writing is not.
        const Result<bool> has = HasKey(key);
        if (has.ok() && *has) return {};
        return Named(file_.Write([&](sqlite3* database) { return MakeKey(database, key); }));
    }

    Result<bool> HasKey(std::u16string_view key) override {
        const std::string path = ToUtf8(NormalKeyPath(key));
        if (path.empty()) return true;
        bool isFound = false;
        Status status = file_.Read([&](sqlite3* database) {
            SqliteStatement find(database, "SELECT 1 FROM keys WHERE path = ?1");
            isFound = find.Bind(1, path).Step();
            return find.code();
        });
        if (status.code() == StatusCode::kNotFound) return false;
        if (!status.ok()) return Named(status);
        return isFound;
    }

    Result<RegistryValue> QueryValue(std::u16string_view key, std::u16string_view name) override {
        const std::string path = ToUtf8(NormalKeyPath(key));
        const std::string entry = ToUtf8(name);
        std::optional<RegistryValue> value;
        Status status = file_.Read([&](sqlite3* database) {
            SqliteStatement find(database, "SELECT type, data FROM entries WHERE path = ?1 AND name = ?2");
            if (find.Bind(1, path).Bind(2, entry).Step()) {
                value = RegistryValue{static_cast<uint32_t>(find.Number(0)), find.Blob(1)};
            }
            return find.code();
        });
        if (status.ok() && !value) status = StatusFromErrno(ENOENT);
        if (!status.ok()) return Named(status);
        return *value;
    }

    Status Apply(std::span<const RegistryChange> changes) override {
        for (const RegistryChange& change : changes) {
            Status status = CheckChange(change);
            if (!status.ok()) return status;
        }
        return Named(file_.Write([&](sqlite3* database) {
            int result = SQLITE_OK;
            for (size_t i = 0; i < changes.size() && result == SQLITE_OK; ++i)
                result = ApplyChange(database, changes[i]);
            return result;
        }));
    }

    Status RemoveKey(std::u16string_view key) override {
        const Result<bool> has = HasKey(key);
        if (!has.ok()) return has.status();
        if (!*has) return StatusFromErrno(ENOENT);
        const std::string path = ToUtf8(NormalKeyPath(key));
        return Named(file_.Write([&](sqlite3* database) {
            int result = SQLITE_OK;
            for (const std::string_view table : {"entries", "keys"}) {
                SqliteStatement remove(database,
                                       "DELETE FROM " + std::string(table) + " WHERE " + std::string(kAtOrBelow));
                if (result == SQLITE_OK) result = RunOnce(remove.Bind(1, path));
            }
            return result;
        }));
    }

    Result<std::vector<RegistryKey>> List(std::u16string_view key) override {
        const std::string path = ToUtf8(NormalKeyPath(key));
        std::map<std::u16string, RegistryKey> found;  // by lower-cased path
        const Status status = file_.Read([&](sqlite3* database) { return ListInto(found, database, path); });
        if (!status.ok() && status.code() != StatusCode::kNotFound) return Named(status);
        if (path.empty()) found[{}];
        std::vector<RegistryKey> keys;
        for (auto& [folded, one] : found) {
            std::sort(one.entries.begin(), one.entries.end(), [](const RegistryEntry& a, const RegistryEntry& b) {
                return AsciiLower(a.name) < AsciiLower(b.name);
            });
            keys.push_back(std::move(one));
        }
        return keys;
    }

  private:
    static int ListInto(std::map<std::u16string, RegistryKey>& found, sqlite3* database, const std::string& path) {
        found.clear();
        SqliteStatement keys(database, "SELECT path FROM keys WHERE " + std::string(kAtOrBelow));
        for (keys.Bind(1, path); keys.Step();) {
            const std::u16string shown = FromUtf8(keys.Text(0));
            found[AsciiLower(shown)].path = shown;
        }
        if (keys.code() != SQLITE_OK) return keys.code();
        SqliteStatement entries(database,
                                "SELECT path, name, type, data FROM entries WHERE " + std::string(kAtOrBelow));
        for (entries.Bind(1, path); entries.Step();) {
            found[AsciiLower(FromUtf8(entries.Text(0)))].entries.push_back(
                {FromUtf8(entries.Text(1)), {static_cast<uint32_t>(entries.Number(2)), entries.Blob(3)}});
        }
        return entries.code();
    }

    Status Named(const Status& status) const { return status.At(codec_.PathToInner(file_.path())); }

    const PathCodec& codec_;
    SqliteFile file_;
};

}  // namespace

std::unique_ptr<Registry> MakeSqliteRegistry(std::string file, const PathCodec& codec, ReportRegistryDamage report,
                                             int busyMs) {
    return std::make_unique<SqliteRegistry>(std::move(file), codec, std::move(report), busyMs);
}

}  // namespace kinsort
