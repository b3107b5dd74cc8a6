// SharedReceiverServer: the stand-in for the receiver-sharing product, registered for a scope.
//
// A test that uses it, or relies on the product's absence, is marked REGISTRY.
#pragma once

#include <windows.h>

#include <string>

#include "shared_receiver/stand_in.h"

namespace kavrel::tests {

class SharedReceiverServer {
  public:
    // Loads, resets and registers it. IsThere is false when that failed.
    SharedReceiverServer();
    ~SharedReceiverServer();
    SharedReceiverServer(const SharedReceiverServer&) = delete;
    SharedReceiverServer& operator=(const SharedReceiverServer&) = delete;

    bool IsThere() const { return standIn_ != nullptr; }
    SharedReceiverStandIn* operator->() const { return standIn_; }

    // Raises the data event with a text.
    void RaiseText(const std::wstring& text) const;

  private:
    SharedReceiverStandIn* standIn_ = nullptr;
};

}  // namespace kavrel::tests
