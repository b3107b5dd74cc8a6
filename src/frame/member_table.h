// Member tables: what late-bound calls need to know of a class, one row a member.
//
// Every member of the library takes variants and gives variants back (but for the enumerator of a
// collection, which is an object), so a row is a name, a dispid, the kinds of call it answers to,
// and the vtable's member, which is called by its signature. Rows are made by Method, Query, Get,
// Put and PutRef from a pointer to that member:
//
//     constexpr Member kMembers[] = {
//         Method<&INmeaSentence::SetField>("SetField", 6),
//         Get<&INmeaSentence::get_Command>("Command", 4),
//     };
#pragma once

#include <oaidl.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace kavrel {

// More than any member of the library has, its result included.
inline constexpr std::size_t kMaxArguments = 5;

// A member of some interface, to be called on an object that has it.
template <typename... Arguments>
using MemberFunction = HRESULT (STDMETHODCALLTYPE IDispatch::*)(Arguments...);

// Arguments of type VARIANT are taken, those of type VARIANT* are written to.
union AnyMemberFunction {
    using In = VARIANT;
    using Out = VARIANT*;

    MemberFunction<IUnknown**> object;
    MemberFunction<Out> out;
    MemberFunction<Out, Out, Out, Out> outs4;
    MemberFunction<In> in;
    MemberFunction<In, In> ins2;
    MemberFunction<In, In, In> ins3;
    MemberFunction<In, In, In, In> ins4;
    MemberFunction<In, Out> inOut;
    MemberFunction<In, In, Out> ins2Out;
};

// Which member of the union is the one.
enum class Signature : std::uint8_t { Object, Out, Outs4, In, Ins2, Ins3, Ins4, InOut, Ins2Out };

struct Member {
    const char* name;  // ASCII, as the names of members are
    AnyMemberFunction function;
    std::int16_t id;
    std::uint8_t kinds;  // DISPATCH_... flags; a member answers to any of them
    Signature signature;
    std::uint8_t argumentCount;  // without the result
    std::uint8_t requiredCount;  // the arguments that may not be omitted: the first ones
    std::uint8_t outMask;        // bit i set: argument i is written to
    bool hasResult;
};

// Calls a member. `self` is the object's default interface; `arguments` in their order, the result
// last.
HRESULT CallMember(const Member& member, IDispatch* self, VARIANT* const* arguments);

namespace member_table_detail {

struct TypedFunction {
    AnyMemberFunction function;
    Signature signature;
};

constexpr TypedFunction Typed(MemberFunction<IUnknown**> function) {
    return {{.object = function}, Signature::Object};
}
constexpr TypedFunction Typed(MemberFunction<VARIANT*> function) {
    return {{.out = function}, Signature::Out};
}
constexpr TypedFunction Typed(MemberFunction<VARIANT*, VARIANT*, VARIANT*, VARIANT*> function) {
    return {{.outs4 = function}, Signature::Outs4};
}
constexpr TypedFunction Typed(MemberFunction<VARIANT> function) {
    return {{.in = function}, Signature::In};
}
constexpr TypedFunction Typed(MemberFunction<VARIANT, VARIANT> function) {
    return {{.ins2 = function}, Signature::Ins2};
}
constexpr TypedFunction Typed(MemberFunction<VARIANT, VARIANT, VARIANT> function) {
    return {{.ins3 = function}, Signature::Ins3};
}
constexpr TypedFunction Typed(MemberFunction<VARIANT, VARIANT, VARIANT, VARIANT> function) {
    return {{.ins4 = function}, Signature::Ins4};
}
constexpr TypedFunction Typed(MemberFunction<VARIANT, VARIANT*> function) {
    return {{.inOut = function}, Signature::InOut};
}
constexpr TypedFunction Typed(MemberFunction<VARIANT, VARIANT, VARIANT*> function) {
    return {{.ins2Out = function}, Signature::Ins2Out};
}

template <typename Pointer>
struct Traits;

template <typename Interface, typename... Arguments>
struct Traits<HRESULT (STDMETHODCALLTYPE Interface::*)(Arguments...)> {
    using Function = MemberFunction<Arguments...>;
    static constexpr std::size_t kCount = sizeof...(Arguments);
    static_assert(kCount <= kMaxArguments);

    static constexpr unsigned OutMask() {
        unsigned mask = 0;
        unsigned bit = 1;
        ((mask |= std::is_pointer_v<Arguments> ? bit : 0, bit <<= 1), ...);
        return mask;
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
constexpr Member MakeMember(const char* name, std::int16_t id, std::uint8_t kinds, bool hasResult) {
    using FunctionTraits = Traits<decltype(Function)>;
    const auto count = static_cast<std::uint8_t>(FunctionTraits::kCount - (hasResult ? 1 : 0));
    const unsigned outMask = FunctionTraits::OutMask() & ((1U << count) - 1);
    const TypedFunction typed = Typed(static_cast<typename FunctionTraits::Function>(Function));
    return {.name = name,
            .function = typed.function,
            .id = id,
            .kinds = kinds,
            .signature = typed.signature,
            .argumentCount = count,
            .requiredCount = RequiredCount(outMask),
            .outMask = static_cast<std::uint8_t>(outMask),
            .hasResult = hasResult};
}

}  // namespace member_table_detail

// A method without a result.
template <auto Function>
constexpr Member Method(const char* name, std::int16_t id) {
    return member_table_detail::MakeMember<Function>(name, id, DISPATCH_METHOD, false);
}

// A method with a result.
template <auto Function>
constexpr Member Query(const char* name, std::int16_t id) {
    return member_table_detail::MakeMember<Function>(name, id, DISPATCH_METHOD, true);
}

// A property to read, with or without arguments.
template <auto Function>
constexpr Member Get(const char* name, std::int16_t id) {
    return member_table_detail::MakeMember<Function>(name, id, DISPATCH_PROPERTYGET, true);
}

// A property to set to a value: the new value cannot be omitted.
template <auto Function>
constexpr Member Put(const char* name, std::int16_t id) {
    Member member =
        member_table_detail::MakeMember<Function>(name, id, DISPATCH_PROPERTYPUT, false);
    member.requiredCount = member.argumentCount;
    return member;
}

// A property to set to an object.
template <auto Function>
constexpr Member PutRef(const char* name, std::int16_t id) {
    Member member = Put<Function>(name, id);
    member.kinds = DISPATCH_PROPERTYPUTREF;
    return member;
}

}  // namespace kavrel
