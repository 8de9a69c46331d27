#pragma once

namespace rastrel {

/// Tells the user that something failed: in a message box where there is a desktop, which waits for
/// the user, else on standard error.
void ShowMessage(const char* text);

}  // namespace rastrel
