// The colours of the script language in two editors, from the tables that run it.
#pragma once

#include <string>

namespace kinsort {

// A syntax file of Vim.
std::string WriteVimSyntax();

// A syntax definition of the KSyntaxHighlighting framework, which Kate, KWrite and KDevelop use.
std::string WriteKateSyntax();

}  // namespace kinsort
