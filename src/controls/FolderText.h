// The one place where the text of the folder box, which people see and type, meets the inner form, which everything
// else works with.
//
// Shown are native paths ("/home/me/"). A path that is none, because it stands on another drive or share or begins with
// a "\", is shown as it is. Nothing is lost on the way: ToInner(ToShown(path)) is the same path for every full
// path, also with bytes in a name that are no text (they are lone surrogates on both sides).
#pragma once

#include <string>
#include <string_view>

#include "platform/PathCodec.h"

namespace kinsort {

// "C:", "c:\\x": begins with a letter and ":".
bool BeginsWithDrive(std::u16string_view text);
// That, or begins with "\\": what can be a path of a drive or of a network.
bool HasFullForm(std::u16string_view text);

class FolderText {
  public:
    // `homeFolder` is a stored path, what "~" means; empty when it is not known. The codec must outlive it.
    FolderText(const PathCodec& codec, std::string homeFolder);

    // A trailing separator stays one.
    std::u16string ToShown(std::u16string_view inner) const;
    // Of everything that TypedPath.h understands, and of the beginnings of an inner path ("\", "D:", "\\nas"), which
    // stay as they are. So does a text that means nothing.
    std::u16string ToInner(std::u16string_view shown) const;

    // "Z:\", the inner form of "/"; empty on a platform whose own paths are the inner form.
    const std::u16string& NativeRoot() const { return nativeRoot_; }

  private:
    std::u16string NativeText(std::u16string_view inner) const;

    const PathCodec& codec_;
    std::string home_;
    std::u16string nativeRoot_;
};

}  // namespace kinsort
