// SharedReceiverSource: NMEA text from the receiver-sharing product instead of a serial port.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "base/byte_block.h"
#include "base/record.h"
#include "platform/event.h"
#include "platform/shared_receiver.h"
#include "serial/block_queue.h"

namespace kavrel {

// Start and the calls clear the error slot first. A call on the product's object that fails leaves
// the low 16 bits of its status and the text that the object gave. Dropping the last reference
// disconnects from the product and drops its object.
// Thread safety: TakeText and the events may be used from any thread, and the product hands over
// text on whichever it likes; everything else belongs to one thread at a time.
class SharedReceiverSource final : public Record, private SharedReceiverListener {
  public:
    explicit SharedReceiverSource(std::unique_ptr<SharedReceiver> receiver);
    ~SharedReceiverSource() override;

    // Creates the product's object and connects to its events. False when the product is not
    // installed: "Ravelin not installed! Cannot create object RavelinApi::Simple". That there are
    // no events to connect to is no error and leaves its mark in lastResult() only.
    // REQUIRES: not started.
    bool Start();

    // The product's methods by number. REQUIRES: started.
    bool CallMethod1(std::int32_t argument);
    bool CallMethod2(std::int32_t argument);
    bool CallMethod4();
    bool CallMethod6(std::int32_t argument);

    // The status of the last call on the object; 0 at first.
    std::int32_t lastResult() const { return lastResult_; }

    // The oldest text that waits, or null.
    Ref<ByteBlock> TakeText() { return texts_.Pop(); }

    // Signalled when text has come, and when the product has closed its receiver. Who waits for
    // them resets them.
    Ref<Event> DataReceivedEvent() const { return dataReceived_; }
    Ref<Event> SourceClosedEvent() const { return sourceClosed_; }

  private:
    void OnText(std::string_view text) override;
    void OnClosed() override;

    bool Check(const SharedReceiverResult& result);

    BlockQueue<ByteBlock> texts_;
    const Ref<Event> dataReceived_ = MakeRef<Event>();
    const Ref<Event> sourceClosed_ = MakeRef<Event>();
    const std::unique_ptr<SharedReceiver> receiver_;
    std::int32_t lastResult_ = 0;
};

}  // namespace kavrel
