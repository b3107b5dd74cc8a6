// The module and its class objects: which classes can be created, and when the DLL may go.
#include <gtest/gtest.h>
#include <objsafe.h>
#include <ocidl.h>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

// {5B8E6C22-5D0A-4F8E-9A44-0E4C6C0D7D11}, which is nobody's.
constexpr CLSID kUnknownClass = {
    0x5b8e6c22, 0x5d0a, 0x4f8e, {0x9a, 0x44, 0x0e, 0x4c, 0x6c, 0x0d, 0x7d, 0x11}};

struct NotCreatableClass {
    const wchar_t* progId;
    const CLSID& classId;
};
const NotCreatableClass kNotCreatable[] = {
    {L"KavrelCE.NmeaSentence", CLSID_NmeaSentence},
    {L"KavrelCE.NmeaGGA", CLSID_NmeaGGA},
    {L"KavrelCE.NmeaGLL", CLSID_NmeaGLL},
    {L"KavrelCE.NmeaRMC", CLSID_NmeaRMC},
    {L"KavrelCE.Satellites", CLSID_Satellites},
    {L"KavrelCE.Satellite", CLSID_Satellite},
    {L"KavrelCE.Movement", CLSID_Movement},
    {L"KavrelCE.Quality", CLSID_Quality},
    {L"KavrelCE.GpsFix", CLSID_GpsFix},
    {L"KavrelCE.ComStatus", CLSID_ComStatus},
    {L"KavrelCE.Unknown", kUnknownClass},
};

ComPtr<IClassFactory> FactoryOf(REFCLSID classId) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(S_OK, GetClassObjectOf(classId, IID_PPV_ARGS(&factory)));
    return factory;
}

class CreatableClassTest : public AutomationTest,
                           public testing::WithParamInterface<CreatableClass> {};

INSTANTIATE_TEST_SUITE_P(All, CreatableClassTest,
                         testing::ValuesIn(CreatableClasses().begin(), CreatableClasses().end()),
                         [](const auto& test) { return Narrow(test.param.name); });

TEST_P(CreatableClassTest, IsFoundByItsName) {
    CLSID classId = {};
    ASSERT_EQ(S_OK, CLSIDFromProgID(GetParam().ProgId().c_str(), &classId));
    EXPECT_TRUE(classId == GetParam().classId);
    ASSERT_EQ(S_OK, CLSIDFromProgID((GetParam().ProgId() + L".1").c_str(), &classId));
    EXPECT_TRUE(classId == GetParam().classId);
    EXPECT_TRUE(CreateByName(GetParam().ProgId()));
}

TEST_P(CreatableClassTest, ObjectHasItsInterfaces) {
    const ComPtr<IDispatch> object = CreateDirectly(GetParam().classId);
    ASSERT_TRUE(object);
    ComPtr<IUnknown> identity;
    ASSERT_EQ(S_OK, object.As(&identity));

    const IID* const interfaces[] = {&IID_IUnknown, &IID_IDispatch, &GetParam().interfaceId,
                                     &IID_ISupportErrorInfo, &IID_IProvideClassInfo};
    for (const IID* id : interfaces) {
        ComPtr<IUnknown> found;
        ASSERT_EQ(S_OK, identity->QueryInterface(*id, &found));
        ComPtr<IUnknown> again;
        ASSERT_EQ(S_OK, found.As(&again));
        EXPECT_EQ(identity.Get(), again.Get()) << "one object, one identity";
    }

    void* none = &none;
    EXPECT_EQ(E_NOINTERFACE, identity->QueryInterface(kUnknownClass, &none));
    EXPECT_EQ(nullptr, none);
}

TEST_P(CreatableClassTest, TellsItsClass) {
    const ComPtr<IDispatch> object = CreateDirectly(GetParam().classId);
    ComPtr<IProvideClassInfo> provider;
    ASSERT_EQ(S_OK, object.As(&provider));
    ComPtr<ITypeInfo> type;
    ASSERT_EQ(S_OK, provider->GetClassInfo(&type));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, type->GetTypeAttr(&attributes));
    EXPECT_TRUE(attributes->guid == GetParam().classId);
    EXPECT_EQ(TKIND_COCLASS, attributes->typekind);
    type->ReleaseTypeAttr(attributes);
    EXPECT_EQ(E_POINTER, provider->GetClassInfo(nullptr));
}

TEST_P(CreatableClassTest, ClassObjectIsKept) {
    const ComPtr<IClassFactory> factory = FactoryOf(GetParam().classId);
    EXPECT_EQ(factory.Get(), FactoryOf(GetParam().classId).Get());
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(S_OK, factory.As(&unknown));
    void* none = &none;
    EXPECT_EQ(E_NOINTERFACE, factory->QueryInterface(IID_IDispatch, &none));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ(E_POINTER, factory->QueryInterface(IID_IUnknown, nullptr));
}

TEST_P(CreatableClassTest, RefusesAggregation) {
    const ComPtr<IClassFactory> factory = FactoryOf(GetParam().classId);
    void* object = &object;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(factory.Get(), IID_IUnknown, &object));
    EXPECT_EQ(nullptr, object);
}

TEST_P(CreatableClassTest, RefusesUnknownInterfacesAndNullPointers) {
    const ComPtr<IClassFactory> factory = FactoryOf(GetParam().classId);
    void* object = &object;
    EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IStream, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(S_OK, CanUnloadNow()) << "the object that nobody could use is still there";
    EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IUnknown, nullptr));

    object = &object;
    EXPECT_EQ(E_NOINTERFACE, GetClassObjectOf(GetParam().classId, IID_IStream, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, GetClassObjectOf(GetParam().classId, IID_IUnknown, nullptr));

    const ComPtr<IDispatch> created = CreateDirectly(GetParam().classId);
    EXPECT_EQ(E_POINTER, created->QueryInterface(IID_IUnknown, nullptr));
    EXPECT_EQ(E_POINTER, created->GetTypeInfoCount(nullptr));
    EXPECT_EQ(E_POINTER, created->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr));
    ComPtr<ITypeInfo> type;
    EXPECT_EQ(DISP_E_BADINDEX, created->GetTypeInfo(1, LOCALE_USER_DEFAULT, &type));
}

TEST_P(CreatableClassTest, LiveObjectsKeepTheModule) {
    ComPtr<IDispatch> first = CreateDirectly(GetParam().classId);
    ComPtr<IDispatch> second = CreateDirectly(GetParam().classId);
    ASSERT_TRUE(first && second);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    first.Reset();
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    second.Reset();
    EXPECT_EQ(S_OK, CanUnloadNow());
}

TEST_P(CreatableClassTest, ServerLocksAreCounted) {
    const ComPtr<IClassFactory> factory = FactoryOf(GetParam().classId);
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_EQ(S_OK, CanUnloadNow());
}

using ModuleTest = AutomationTest;

TEST_F(ModuleTest, OtherClassesCannotBeCreated) {
    for (const NotCreatableClass& other : kNotCreatable) {
        SCOPED_TRACE(Narrow(other.progId));
        CLSID classId = {};
        EXPECT_EQ(CO_E_CLASSSTRING, CLSIDFromProgID(other.progId, &classId));
        void* object = &object;
        EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE,
                  GetClassObjectOf(other.classId, IID_IClassFactory, &object));
        EXPECT_EQ(nullptr, object);
        EXPECT_EQ(E_POINTER, GetClassObjectOf(other.classId, IID_IClassFactory, nullptr));
    }
}

TEST_F(ModuleTest, SentenceOutlivesItsParser) {
    ComPtr<IDispatch> sentence = MakeSentence(L"$GPXXX,a,b");
    ASSERT_TRUE(sentence);
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    EXPECT_EQ(L"b", Call(sentence.Get(), L"Fields", {2}).value.text());
    sentence.Reset();
    EXPECT_EQ(S_OK, CanUnloadNow());
}

TEST_F(ModuleTest, EnumerationsKeepTheModule) {
    ComPtr<IDispatch> parser = CreateParser();
    ComPtr<IConnectionPointContainer> container;
    ASSERT_EQ(S_OK, parser.As(&container));
    ComPtr<IEnumConnectionPoints> points;
    ASSERT_EQ(S_OK, container->EnumConnectionPoints(&points));
    container.Reset();
    parser.Reset();
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    ComPtr<IConnectionPoint> point;
    EXPECT_EQ(S_OK, points->Next(1, &point, nullptr)) << "what it lists is still alive";
}

DWORD WINAPI CountUpAndDown(void* object) {
    for (int i = 0; i < 20000; ++i) {
        static_cast<IDispatch*>(object)->AddRef();
        static_cast<IDispatch*>(object)->Release();
    }
    return 0;
}

// The client's thread is what objects belong to, but counting references is anybody's.
TEST_F(ModuleTest, ReferencesAreCountedFromManyThreads) {
    ComPtr<IDispatch> parser = CreateParser();
    HANDLE threads[4];
    for (HANDLE& thread : threads) {
        thread = CreateThread(nullptr, 0, CountUpAndDown, parser.Get(), 0, nullptr);
    }
    WaitForMultipleObjects(4, threads, TRUE, INFINITE);
    for (HANDLE thread : threads)
        CloseHandle(thread);
    EXPECT_EQ(0U, parser.Reset());
}

}  // namespace

}  // namespace kavrel::tests
