#include "event_source.h"

#include <olectl.h>

using Microsoft::WRL::ComPtr;

namespace scripthost {

namespace {

HRESULT ReadNames(ITypeInfo* events, std::vector<EventName>* names) {
    TYPEATTR* attributes = nullptr;
    HRESULT result = events->GetTypeAttr(&attributes);
    if (FAILED(result)) return result;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        if (FAILED(events->GetFuncDesc(i, &function))) continue;
        BSTR name = nullptr;
        UINT count = 0;
        if (SUCCEEDED(events->GetNames(function->memid, &name, 1, &count)) && count == 1) {
            names->push_back({function->memid, name});
            SysFreeString(name);
        }
        events->ReleaseFuncDesc(function);
    }
    events->ReleaseTypeAttr(attributes);
    return S_OK;
}

// The type information of the class's default source interface.
HRESULT DefaultSourceInfo(ITypeInfo* classInfo, ITypeInfo** events) {
    TYPEATTR* attributes = nullptr;
    HRESULT result = classInfo->GetTypeAttr(&attributes);
    if (FAILED(result)) return result;
    const UINT count = attributes->cImplTypes;
    classInfo->ReleaseTypeAttr(attributes);

    constexpr INT kWanted = IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE;
    for (UINT i = 0; i < count; ++i) {
        INT flags = 0;
        HREFTYPE reference = 0;
        if (FAILED(classInfo->GetImplTypeFlags(i, &flags)) || (flags & kWanted) != kWanted)
            continue;
        result = classInfo->GetRefTypeOfImplType(i, &reference);
        return FAILED(result) ? result : classInfo->GetRefTypeInfo(reference, events);
    }
    return TYPE_E_ELEMENTNOTFOUND;
}

HRESULT FindByClassInfo(IDispatch* object, IConnectionPointContainer* container,
                        EventSource* source) {
    ComPtr<IProvideClassInfo2> provider;
    HRESULT result = object->QueryInterface(IID_PPV_ARGS(&provider));
    if (FAILED(result)) return result;
    result = provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source->interfaceId);
    if (FAILED(result)) return result;
    ComPtr<ITypeInfo> classInfo;
    result = provider->GetClassInfo(&classInfo);
    if (FAILED(result)) return result;
    ComPtr<ITypeInfo> events;
    result = DefaultSourceInfo(classInfo.Get(), &events);
    if (FAILED(result)) return result;
    result = container->FindConnectionPoint(source->interfaceId, &source->point);
    return FAILED(result) ? result : ReadNames(events.Get(), &source->names);
}

HRESULT FindByConnectionPoints(IDispatch* object, IConnectionPointContainer* container,
                               EventSource* source) {
    ComPtr<ITypeInfo> info;
    HRESULT result = object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info);
    if (FAILED(result)) return result;
    ComPtr<ITypeLib> library;
    UINT index = 0;
    result = info->GetContainingTypeLib(&library, &index);
    if (FAILED(result)) return result;
    ComPtr<IEnumConnectionPoints> points;
    result = container->EnumConnectionPoints(&points);
    if (FAILED(result)) return result;

    while (points->Next(1, source->point.ReleaseAndGetAddressOf(), nullptr) == S_OK) {
        ComPtr<ITypeInfo> events;
        if (SUCCEEDED(source->point->GetConnectionInterface(&source->interfaceId)) &&
            SUCCEEDED(library->GetTypeInfoOfGuid(source->interfaceId, &events))) {
            return ReadNames(events.Get(), &source->names);
        }
    }
    return CONNECT_E_NOCONNECTION;
}

}  // namespace

HRESULT FindEventSource(IDispatch* object, EventSource* source) {
    ComPtr<IConnectionPointContainer> container;
    const HRESULT result = object->QueryInterface(IID_PPV_ARGS(&container));
    if (FAILED(result)) return result;
    if (SUCCEEDED(FindByClassInfo(object, container.Get(), source))) return S_OK;
    source->names.clear();
    return FindByConnectionPoints(object, container.Get(), source);
}

}  // namespace scripthost
