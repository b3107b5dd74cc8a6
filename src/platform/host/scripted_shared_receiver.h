// ScriptedSharedReceiver: a receiver-sharing product that does what a test says.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/shared_receiver.h"

namespace kavrel {

// What the product answers and what was asked of it. Outlives the receivers made of it. The test
// raises events by the listener, which is there while one is connected.
struct SharedReceiverScript {
    SharedReceiverResult create, connect, method1, method2, method4, method6;

    std::vector<std::string> calls;
    SharedReceiverListener* listener = nullptr;
};

// Thread safety: that of the script, which has none.
class ScriptedSharedReceiver final : public SharedReceiver {
  public:
    explicit ScriptedSharedReceiver(SharedReceiverScript& script) : script_(script) {}

    SharedReceiverResult Create() override { return Answer("create", script_.create); }
    SharedReceiverResult Connect(SharedReceiverListener& listener) override {
        if (!script_.connect.IsFailure()) script_.listener = &listener;
        return Answer("connect", script_.connect);
    }
    SharedReceiverResult CallMethod1(std::int32_t argument) override {
        return Answer("1(" + std::to_string(argument) + ")", script_.method1);
    }
    SharedReceiverResult CallMethod2(std::int32_t argument) override {
        return Answer("2(" + std::to_string(argument) + ")", script_.method2);
    }
    SharedReceiverResult CallMethod4() override { return Answer("4()", script_.method4); }
    SharedReceiverResult CallMethod6(std::int32_t argument) override {
        return Answer("6(" + std::to_string(argument) + ")", script_.method6);
    }
    void Release() override {
        script_.listener = nullptr;
        script_.calls.emplace_back("release");
    }

  private:
    SharedReceiverResult Answer(std::string call, const SharedReceiverResult& result) {
        script_.calls.push_back(std::move(call));
        return result;
    }

    SharedReceiverScript& script_;
};

}  // namespace kavrel
