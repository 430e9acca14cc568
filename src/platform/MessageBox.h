#pragma once
#include "platform/Types.h"

#include <functional>
#include <string>

namespace Platform {

// Shows a modal message box and returns the button pressed (IDOK). Without a
// display it answers IDOK at once.
int MessageBox(HWND owner, const std::string& text, const std::string& caption, UINT flags);

// Tests replace the box to see what would have been shown.
using MessageBoxHandler = std::function<int(HWND, const std::string&, const std::string&, UINT)>;
void SetMessageBoxHandler(MessageBoxHandler handler);

} // namespace Platform
