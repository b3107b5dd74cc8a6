// The SharedReceiver that is the receiver-sharing product's COM object.
#pragma once

#include <memory>

#include "platform/shared_receiver.h"

namespace kavrel {

// Neither makes nor asks for the object yet.
std::unique_ptr<SharedReceiver> MakePlatformSharedReceiver();

}  // namespace kavrel
