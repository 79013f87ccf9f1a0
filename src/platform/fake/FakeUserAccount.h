// A user as a test describes them.
#pragma once

#include "platform/UserAccount.h"

namespace kinsort {

class FakeUserAccount final : public UserAccount {
  public:
    std::optional<std::u16string> localData = u"Z:\\home\\me\\.local\\share";
    std::optional<std::u16string> login = u"user1";

    std::optional<std::u16string> LocalDataFolder() const override { return localData; }
    std::optional<std::u16string> LoginName() const override { return login; }
};

}  // namespace kinsort
