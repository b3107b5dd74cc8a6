// The ClientWindow of the platform: the form-sync window.
#pragma once

#include <memory>

#include "base/error_slot.h"
#include "platform/client_window.h"

namespace kavrel {

// Error codes are the platform's; "Error register window class", "Error creating window".
std::unique_ptr<ClientWindow> MakeFormSyncWindow(TakeHandOver take, void* context,
                                                 ErrorSlot& error);

// Messages of windows that are still there find nothing from now on. When the DLL is unloaded.
void ForgetFormSyncWindows();

}  // namespace kavrel
