// Member tables: what late-bound calls need to know of a class, one row a member.
//
// Every member of the library takes variants and gives variants back (but for the enumerator of a
// collection, which is an object), so a row is a name, a dispid,
// the kinds of call it answers to, and a function that passes the arguments on to the vtable's
// member. Rows are made by Method, Query, Get, Put and PutRef from a pointer to that member:
//
//     constexpr Member kMembers[] = {
//         Method<&INmeaSentence::SetField>(L"SetField", 6),
//         Get<&INmeaSentence::get_Command>(L"Command", 4),
//     };
#pragma once

#include <oaidl.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace kavrel {

// More than any member of the library has, its result included.
inline constexpr std::size_t kMaxArguments = 5;

struct Member {
    const wchar_t* name;
    DISPID id;
    WORD kinds;                  // DISPATCH_... flags; a member answers to any of them
    std::uint8_t argumentCount;  // without the result
    std::uint8_t requiredCount;  // the arguments that may not be omitted: the first ones
    std::uint8_t outMask;        // bit i set: argument i is written to
    bool hasResult;

    // Calls the member. `self` is the object's default interface; `arguments` in their order, the
    // result last.
    HRESULT (*call)(IDispatch* self, VARIANT* const* arguments);
};

namespace member_table_detail {

template <typename Argument>
constexpr bool kIsOut = std::is_pointer_v<Argument>;

template <typename Argument>
Argument Pass(VARIANT* argument) {
    if constexpr (std::is_same_v<Argument, VARIANT*>) {
        return argument;
    } else if constexpr (std::is_same_v<Argument, IUnknown**>) {
        V_VT(argument) = VT_UNKNOWN;
        V_UNKNOWN(argument) = nullptr;
        return &V_UNKNOWN(argument);
    } else {
        static_assert(std::is_same_v<Argument, VARIANT>, "members take and return variants");
        return *argument;
    }
}

template <typename Signature>
struct Traits;

template <typename Interface, typename... Arguments>
struct Traits<HRESULT (STDMETHODCALLTYPE Interface::*)(Arguments...)> {
    static constexpr std::size_t kCount = sizeof...(Arguments);
    static_assert(kCount <= kMaxArguments);

    static constexpr std::uint8_t OutMask() {
        unsigned mask = 0;
        unsigned bit = 1;
        ((mask |= kIsOut<Arguments> ? bit : 0, bit <<= 1), ...);
        return static_cast<std::uint8_t>(mask);
    }

    template <auto Function>
    static HRESULT Call(IDispatch* self, VARIANT* const* arguments) {
        return CallWith<Function>(self, arguments, std::index_sequence_for<Arguments...>());
    }

  private:
    template <auto Function, std::size_t... Indices>
    static HRESULT CallWith(IDispatch* self, [[maybe_unused]] VARIANT* const* arguments,
                            std::index_sequence<Indices...>) {
        return (static_cast<Interface*>(self)->*Function)(Pass<Arguments>(arguments[Indices])...);
    }
};

// Out arguments cannot be omitted, nor can what stands before them.
constexpr std::uint8_t RequiredCount(unsigned outMask) {
    std::uint8_t count = 0;
    for (; outMask != 0; outMask >>= 1)
        ++count;
    return count;
}

template <auto Function>
constexpr Member MakeMember(const wchar_t* name, DISPID id, WORD kinds, bool hasResult) {
    using FunctionTraits = Traits<decltype(Function)>;
    const auto count = static_cast<std::uint8_t>(FunctionTraits::kCount - (hasResult ? 1 : 0));
    const auto outMask = static_cast<std::uint8_t>(FunctionTraits::OutMask() & ((1U << count) - 1));
    return {.name = name,
            .id = id,
            .kinds = kinds,
            .argumentCount = count,
            .requiredCount = RequiredCount(outMask),
            .outMask = outMask,
            .hasResult = hasResult,
            .call = &FunctionTraits::template Call<Function>};
}

}  // namespace member_table_detail

// A method without a result.
template <auto Function>
constexpr Member Method(const wchar_t* name, DISPID id) {
    return member_table_detail::MakeMember<Function>(name, id, DISPATCH_METHOD, false);
}

// A method with a result.
template <auto Function>
constexpr Member Query(const wchar_t* name, DISPID id) {
    return member_table_detail::MakeMember<Function>(name, id, DISPATCH_METHOD, true);
}

// A property to read, with or without arguments.
template <auto Function>
constexpr Member Get(const wchar_t* name, DISPID id) {
    return member_table_detail::MakeMember<Function>(name, id, DISPATCH_PROPERTYGET, true);
}

// A property to set to a value: the new value cannot be omitted.
template <auto Function>
constexpr Member Put(const wchar_t* name, DISPID id) {
    Member member =
        member_table_detail::MakeMember<Function>(name, id, DISPATCH_PROPERTYPUT, false);
    member.requiredCount = member.argumentCount;
    return member;
}

// A property to set to an object.
template <auto Function>
constexpr Member PutRef(const wchar_t* name, DISPID id) {
    Member member = Put<Function>(name, id);
    member.kinds = DISPATCH_PROPERTYPUTREF;
    return member;
}

}  // namespace kavrel
