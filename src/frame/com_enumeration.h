// ComEnumeration: a COM enumerator over a fixed list of items.
#pragma once

#include <unknwn.h>

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

#include "frame/com_object.h"
#include "platform/win32/module_lock.h"

namespace kavrel {

// `Policy` says how an item is handed out and what keeps it alive:
//     using Kept = ...;                          // an item as the enumerator owns it
//     static const IID& InterfaceId();
//     static void Copy(const Kept& from, Item& to);  // makes what the caller will own
template <typename Interface, typename Item, typename Policy>
class ComEnumeration final : public ComObject<Interface> {
  public:
    using Kept = typename Policy::Kept;

    // Null when memory is short.
    static Interface* Create(std::vector<Kept> items) {
        return new (std::nothrow) ComEnumeration(std::move(items), 0);
    }

    STDMETHOD(Next)(ULONG count, Item* items, ULONG* fetched) override {
        if (items == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
        ULONG given = 0;
        for (; given < count && at_ < items_.size(); ++given, ++at_) {
            Policy::Copy(items_[at_], items[given]);
        }
        if (fetched != nullptr) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    STDMETHOD(Skip)(ULONG count) override {
        const std::size_t left = items_.size() - at_;
        at_ += count < left ? count : left;
        return count <= left ? S_OK : S_FALSE;
    }
    STDMETHOD(Reset)() override {
        at_ = 0;
        return S_OK;
    }
    STDMETHOD(Clone)(Interface** clone) override {
        if (clone == nullptr) return E_POINTER;
        *clone = new (std::nothrow) ComEnumeration(items_, at_);
        return *clone != nullptr ? S_OK : E_OUTOFMEMORY;
    }

  private:
    ComEnumeration(std::vector<Kept> items, std::size_t at)
        : ComObject<Interface>(Policy::InterfaceId()), items_(std::move(items)), at_(at) {
        LockModule();
    }
    ~ComEnumeration() override { UnlockModule(); }

    std::vector<Kept> items_;
    std::size_t at_;
};

}  // namespace kavrel
