// The machine's serial ports.
#pragma once

#include <memory>

#include "platform/comm_device.h"

namespace kavrel {

std::unique_ptr<CommDevice> MakeWin32CommDevice();

}  // namespace kavrel
