// The module and its class objects: which classes can be created, and when the DLL may go.
#include <gtest/gtest.h>
#include <ocidl.h>

#include <thread>
#include <vector>

#include "KavrelCE_h.h"
#include "automation/support/library.h"
#include "automation/support/var.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

class CreatableClassTest : public AutomationTest,
                           public testing::WithParamInterface<CreatableClass> {
  protected:
    void SetUp() override {
        AutomationTest::SetUp();
        ASSERT_EQ(S_OK, GetClassObjectOf(GetParam().classId, IID_PPV_ARGS(&factory_)));
    }

    ComPtr<IClassFactory> factory_;  // does not keep the module
};

INSTANTIATE_TEST_SUITE_P(All, CreatableClassTest,
                         testing::ValuesIn(CreatableClasses().begin(), CreatableClasses().end()),
                         [](const auto& test) { return Narrow(test.param.name); });

// A call that shall fail and leave null behind.
template <typename Call>
void ExpectNone(HRESULT expected, const Call& call) {
    void* object = &object;
    EXPECT_EQ(expected, call(&object));
    EXPECT_EQ(nullptr, object);
}

TEST_P(CreatableClassTest, ObjectHasItsInterfaces) {
    const ComPtr<IDispatch> object = CreateDirectly(GetParam().classId);
    ComPtr<IUnknown> identity;
    ASSERT_EQ(S_OK, object.As(&identity));
    for (const IID* id : {&IID_IUnknown, &IID_IDispatch, &GetParam().interfaceId,
                          &IID_ISupportErrorInfo, &IID_IProvideClassInfo}) {
        ComPtr<IUnknown> found;
        ASSERT_EQ(S_OK, identity->QueryInterface(*id, &found));
        ComPtr<IUnknown> again;
        ASSERT_EQ(S_OK, found.As(&again));
        EXPECT_EQ(identity.Get(), again.Get()) << "one object, one identity";
    }
    ExpectNone(E_NOINTERFACE,
               [&](void** none) { return object->QueryInterface(IID_IStream, none); });
    EXPECT_EQ(E_POINTER, object->QueryInterface(IID_IUnknown, nullptr));
}

TEST_P(CreatableClassTest, DescribesItself) {
    const ComPtr<IDispatch> object = CreateDirectly(GetParam().classId);
    ComPtr<IProvideClassInfo> provider;
    ASSERT_EQ(S_OK, object.As(&provider));
    ComPtr<ITypeInfo> type;
    ASSERT_EQ(S_OK, provider->GetClassInfo(&type));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, type->GetTypeAttr(&attributes));
    EXPECT_TRUE(attributes->guid == GetParam().classId);
    type->ReleaseTypeAttr(attributes);
    EXPECT_EQ(E_POINTER, provider->GetClassInfo(nullptr));
    EXPECT_EQ(E_POINTER, object->GetTypeInfoCount(nullptr));
    EXPECT_EQ(E_POINTER, object->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr));
    EXPECT_EQ(DISP_E_BADINDEX, object->GetTypeInfo(1, LOCALE_USER_DEFAULT, &type));
}

TEST_P(CreatableClassTest, ClassObjectIsKept) {
    ComPtr<IClassFactory> again;
    EXPECT_EQ(S_OK, GetClassObjectOf(GetParam().classId, IID_PPV_ARGS(&again)));
    EXPECT_EQ(factory_.Get(), again.Get());
    ExpectNone(E_NOINTERFACE, [&](void** none) {
        return GetClassObjectOf(GetParam().classId, IID_IStream, none);
    });
    EXPECT_EQ(E_POINTER, GetClassObjectOf(GetParam().classId, IID_IUnknown, nullptr));
    EXPECT_EQ(E_POINTER, factory_->QueryInterface(IID_IUnknown, nullptr));
}

TEST_P(CreatableClassTest, CreationIsRefused) {
    ExpectNone(CLASS_E_NOAGGREGATION, [&](void** none) {
        return factory_->CreateInstance(factory_.Get(), IID_IUnknown, none);
    });
    ExpectNone(E_NOINTERFACE,
               [&](void** none) { return factory_->CreateInstance(nullptr, IID_IStream, none); });
    EXPECT_EQ(S_OK, CanUnloadNow()) << "the object that nobody could use is still there";
    EXPECT_EQ(E_POINTER, factory_->CreateInstance(nullptr, IID_IUnknown, nullptr));
}

TEST_P(CreatableClassTest, LiveObjectsAndLocksKeepTheModule) {
    ComPtr<IDispatch> first = CreateDirectly(GetParam().classId);
    ComPtr<IDispatch> second = CreateDirectly(GetParam().classId);
    EXPECT_NE(first.Get(), second.Get());
    first.Reset();
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    second.Reset();
    EXPECT_EQ(S_OK, CanUnloadNow());
    for (const BOOL lock : {TRUE, TRUE, FALSE})
        EXPECT_EQ(S_OK, factory_->LockServer(lock));
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    EXPECT_EQ(S_OK, factory_->LockServer(FALSE));
    EXPECT_EQ(S_OK, CanUnloadNow());
}

using ModuleTest = AutomationTest;

TEST_F(ModuleTest, OtherClassesCannotBeCreated) {
    for (const CLSID* other : {&CLSID_NmeaSentence, &CLSID_NmeaGGA, &CLSID_NmeaGLL, &CLSID_NmeaRMC,
                               &CLSID_Satellites, &CLSID_Satellite, &CLSID_Movement, &CLSID_Quality,
                               &CLSID_GpsFix, &CLSID_ComStatus, &IID_IStream}) {
        ExpectNone(CLASS_E_CLASSNOTAVAILABLE,
                   [&](void** none) { return GetClassObjectOf(*other, IID_IClassFactory, none); });
    }
}

TEST_F(ModuleTest, EnumerationsKeepTheModule) {
    ComPtr<IConnectionPointContainer> container;
    ASSERT_EQ(S_OK, CreateParser().As(&container));
    ComPtr<IEnumConnectionPoints> points;
    ASSERT_EQ(S_OK, container->EnumConnectionPoints(&points));
    container.Reset();
    EXPECT_EQ(S_FALSE, CanUnloadNow());
    ComPtr<IConnectionPoint> point;
    EXPECT_EQ(S_OK, points->Next(1, &point, nullptr)) << "what it lists is still alive";
}

// The client's thread is what objects belong to, but counting references is anybody's.
TEST_F(ModuleTest, ReferencesAreCountedFromManyThreads) {
    ComPtr<IDispatch> parser = CreateParser();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([raw = parser.Get()] {
            for (int times = 0; times < 20000; ++times) {
                raw->AddRef();
                raw->Release();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0U, parser.Reset());
}

}  // namespace

}  // namespace kavrel::tests
