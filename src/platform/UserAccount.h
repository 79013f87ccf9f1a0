// Who runs the program, and where the user's own data lies.
#pragma once

#include <optional>
#include <string>

namespace kinsort {

class UserAccount {
  public:
    virtual ~UserAccount() = default;

    // The folder for the user's local application data, inner form, without a trailing separator; it need not exist.
    // Nothing when the system names none.
    virtual std::optional<std::u16string> LocalDataFolder() const = 0;
    // The login name, at most 256 units; nothing when the system does not know it.
    virtual std::optional<std::u16string> LoginName() const = 0;
};

}  // namespace kinsort
