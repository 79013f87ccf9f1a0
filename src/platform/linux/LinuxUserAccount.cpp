#include "platform/linux/LinuxUserAccount.h"

#include <array>

#include <errno.h>
#include <pwd.h>
#include <unistd.h>

#include "platform/linux/UserFolders.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

class LinuxUserAccount final : public UserAccount {
  public:
    explicit LinuxUserAccount(const PathCodec& codec) : codec_(codec) {}

    std::optional<std::u16string> LocalDataFolder() const override {
        std::string folder = LocalDataFolderOfThisUser();
        if (folder.empty()) return std::nullopt;
        while (folder.size() > 1 && folder.back() == '/')
            folder.pop_back();
        return codec_.PathToInner(folder);
    }

    std::optional<std::u16string> LoginName() const override {
        constexpr size_t kMaxLength = 256;
        std::array<char, 16384> buffer;
        passwd entry;
        passwd* found = nullptr;
        int result = EINTR;
        while (result == EINTR)
            result = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
        if (result != 0 || found == nullptr || found->pw_name == nullptr) return std::nullopt;
        std::u16string name = FromUtf8(found->pw_name);
        if (name.empty() || name.size() > kMaxLength) return std::nullopt;
        return name;
    }

  private:
    const PathCodec& codec_;
};

}  // namespace

std::unique_ptr<UserAccount> MakeLinuxUserAccount(const PathCodec& codec) {
    return std::make_unique<LinuxUserAccount>(codec);
}

std::string ExecutableFile() {
    std::string path(256, '\0');
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
        if (length < 0) return {};
        if (static_cast<size_t>(length) < path.size()) return path.substr(0, static_cast<size_t>(length));
        path.resize(path.size() * 2);
    }
}

}  // namespace kinsort
