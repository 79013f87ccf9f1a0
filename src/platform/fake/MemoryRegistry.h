// A registry that lives as long as the test does.
#pragma once

#include <map>
#include <string>

#include "platform/Registry.h"
#include "text/AsciiCase.h"

namespace kinsort {

class MemoryRegistry final : public Registry {
  public:
    Status failReads;   // what every call that looks gives, unless it is a success
    Status failWrites;  // what every call that changes gives, unless it is a success
    int writes = 0;     // calls that changed something, CreateKey of an existing key not counted

    Status CreateKey(std::u16string_view key) override {
        Status status = CheckKeyPath(key);
        if (!status.ok()) return status;
        if (keys_.contains(Folded(NormalKeyPath(key)))) return failReads;
        if (!failWrites.ok()) return failWrites;
        ++writes;
        Make(NormalKeyPath(key));
        return {};
    }

    Result<bool> HasKey(std::u16string_view key) override {
        if (!failReads.ok()) return failReads;
        return keys_.contains(Folded(NormalKeyPath(key)));
    }

    Result<RegistryValue> QueryValue(std::u16string_view key, std::u16string_view name) override {
        if (!failReads.ok()) return failReads;
        const auto found = keys_.find(Folded(NormalKeyPath(key)));
        if (found == keys_.end()) return Status::Failure(StatusCode::kNotFound);
        const auto value = found->second.values.find(Folded(name));
        if (value == found->second.values.end()) return Status::Failure(StatusCode::kNotFound);
        return value->second.value;
    }

    Status Apply(std::span<const RegistryChange> changes) override {
        for (const RegistryChange& change : changes) {
            Status status = CheckChange(change);
            if (!status.ok()) return status;
        }
        if (!failWrites.ok()) return failWrites;
        ++writes;
        for (const RegistryChange& change : changes)
            Change(change);
        return {};
    }

    Status RemoveKey(std::u16string_view key) override {
        if (!failWrites.ok()) return failWrites;
        const std::u16string path = Folded(NormalKeyPath(key));
        if (!keys_.contains(path)) return Status::Failure(StatusCode::kNotFound);
        ++writes;
        std::erase_if(keys_, [&](const auto& entry) { return IsAtOrBelow(entry.first, path); });
        Make({});
        return {};
    }

    Result<std::vector<RegistryKey>> List(std::u16string_view key) override {
        if (!failReads.ok()) return failReads;
        const std::u16string path = Folded(NormalKeyPath(key));
        std::vector<RegistryKey> listed;
        for (const auto& [folded, stored] : keys_) {
            if (!IsAtOrBelow(folded, path)) continue;
            listed.push_back({stored.path, {}});
            for (const auto& value : stored.values)
                listed.back().entries.push_back(value.second);
        }
        return listed;
    }

  private:
    struct Key {
        std::u16string path;
        std::map<std::u16string, RegistryEntry> values;  // by folded name
    };

    static std::u16string Folded(std::u16string_view text) { return AsciiLower(text); }

    static bool IsAtOrBelow(std::u16string_view path, std::u16string_view key) {
        return key.empty() || path == key || (path.starts_with(key) && path[key.size()] == u'\\');
    }

    // The key with every key above it. Names that are there keep their spelling.
    Key& Make(const std::u16string& path) {
        const auto found = keys_.find(Folded(path));
        if (found != keys_.end()) return found->second;
        const size_t end = path.rfind(u'\\');
        const std::u16string above = end == path.npos ? std::u16string() : Make(path.substr(0, end)).path + u'\\';
        return keys_[Folded(path)] = Key{above + path.substr(end == path.npos ? 0 : end + 1), {}};
    }

    void Change(const RegistryChange& change) {
        const std::u16string path = NormalKeyPath(change.key);
        if (!change.value) {
            const auto found = keys_.find(Folded(path));
            if (found != keys_.end()) found->second.values.erase(Folded(change.name));
            return;
        }
        RegistryEntry& entry =
            Make(path).values.try_emplace(Folded(change.name), RegistryEntry{change.name, {}}).first->second;
        entry.value = *change.value;
    }

    std::map<std::u16string, Key> keys_ = {{u"", {}}};  // by folded path; the root is always there
};

}  // namespace kinsort
