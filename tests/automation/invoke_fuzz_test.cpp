// A host that calls every member of every class with whatever a variant can hold: wrong types,
// counts, kinds of call and names, null references, objects of other classes and of other programs,
// from inside events, too. The process must survive, every call end with a code of late binding,
// and no object be left.
//
// The calls follow from a seed. Longer runs, and the last call before a crash:
//     KAVREL_FUZZ_SECONDS=3600 KAVREL_FUZZ_SEED=7 tools/run-wine build/win64/prefix
//         build/win64/tests/automation/automation_invoke_fuzz.exe
//     KAVREL_FUZZ_VERBOSE=1 prints each call before it is made.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objsafe.h>
#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <optional>
#include <set>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/every_class.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/plain_dispatch.h"
#include "automation/support/random_variant.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr int kDefaultCalls = 100000;
constexpr int kCallsOfARound = 2000;  // then all objects are made anew

// What calls may end with; the last one where an out argument is a reference to something odd.
const std::set<HRESULT> kStatuses = {S_OK,
                                     DISP_E_EXCEPTION,
                                     DISP_E_TYPEMISMATCH,
                                     DISP_E_BADPARAMCOUNT,
                                     DISP_E_MEMBERNOTFOUND,
                                     DISP_E_PARAMNOTFOUND,
                                     DISP_E_BADVARTYPE};

unsigned Setting(const char* name, unsigned otherwise) {
    const char* const text = std::getenv(name);
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

// An object of another program, which has a value when it is asked for one, and sometimes fails.
class Foreign final : public PlainDispatch {
  public:
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                        UINT*) override {
        if (id != DISPID_VALUE || result == nullptr) return DISP_E_MEMBERNOTFOUND;
        V_VT(result) = VT_I4;
        V_I4(result) = ++value_ % 50;
        return value_ % 3 == 0 ? E_FAIL : S_OK;
    }

  private:
    LONG value_ = 0;
};

class Host {
  public:
    explicit Host(unsigned seed) : random_(seed) {}

    // One round on fresh objects, at the end of which all are given back.
    void Round(int calls) {
        MakeObjects();
        for (int i = 0; i < calls; ++i) {
            Call();
            (*listener_)->Clear();
        }
        (*listener_)->SetReaction(nullptr);
        listener_.reset();
        targets_.clear();
        objects_.clear();
        results_.clear();
        SetErrorInfo(0, nullptr);
        EXPECT_EQ(S_OK, CanUnloadNow());
        EXPECT_EQ(1U, foreign_->references());
    }

    const std::set<HRESULT>& statuses() const { return statuses_; }

  private:
    // An object to call, and what the type library says of it.
    struct Target {
        ComPtr<IDispatch> object;
        const TypeDescription* type;
    };

    void Add(const ComPtr<IDispatch>& object, const char* interfaceName) {
        ASSERT_TRUE(object) << interfaceName;
        targets_.push_back({object, &InterfaceNamed(interfaceName)});
        objects_.push_back(object);
    }

    // An object of each class, and a position more.
    void MakeObjects() {
        for (const ObjectMaker& maker : EveryClass())
            Add(maker.make(), maker.interfaceName);
        Add(CreateDirectly(CLSID_Position), "IPosition");
        objects_.push_back(foreign_);
        listener_.emplace(targets_.front().object.Get());
        (*listener_)->SetReaction([this](const RecordedEvent& event) { return React(event); });
    }

    // Inside an event, some hosts go on calling.
    HRESULT React(const RecordedEvent& event) {
        for (const Var& argument : event.arguments)
            Collect(argument.object());
        if (depth_ < 2 && random_.OneIn(8)) {
            ++depth_;
            Call();
            --depth_;
        }
        return random_.OneIn(8) ? E_FAIL : S_OK;
    }

    // Later arguments.
    void Collect(IDispatch* object) {
        constexpr size_t kMost = 20;
        if (object == nullptr) return;
        results_.emplace_back(object);
        if (results_.size() > kMost) results_.pop_front();
        objects_.resize(targets_.size() + 1);
        objects_.insert(objects_.end(), results_.begin(), results_.end());
    }

    void Call() {
        const Target target = random_.Of(targets_);
        if (random_.OneIn(16)) return Ask(target);
        const MemberDescription& member = random_.Of(target.type->members);
        const DISPID id =
            random_.OneIn(30) ? static_cast<DISPID>(random_.Below(40)) - 6 : member.id;
        const auto kinds =
            static_cast<WORD>(random_.OneIn(10) ? random_.Below(16) : unsigned(member.kind));
        const auto usual = std::ranges::count_if(member.parameters, [](const std::string& text) {
            return !text.starts_with("[out retval");
        });
        const unsigned count = random_.OneIn(8) ? random_.Below(8) : static_cast<unsigned>(usual);

        // Positions in a deque stay where they are.
        std::deque<RandomVariant> arguments;
        std::vector<VARIANT> raw;
        for (unsigned i = 0; i < count; ++i) {
            RandomVariant& argument = arguments.emplace_back(random_, objects_);
            if (target.type->name == "INmeaParser") Tame(id, argument);
            raw.push_back(*argument.get());
        }
        std::vector<DISPID> names;
        if ((kinds & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0 && count > 0) {
            names.push_back(DISPID_PROPERTYPUT);
        }
        if (random_.OneIn(10)) {
            names.resize(random_.Below(count + 1));
            for (DISPID& name : names)
                name = static_cast<DISPID>(random_.Below(5)) - (random_.OneIn(6) ? 4 : 0);
        }
        DISPPARAMS parameters = {raw.data(), names.data(), count, static_cast<UINT>(names.size())};
        if (isVerbose_) Print(target, id, kinds, parameters);
        Invoke(*target.object.Get(), id, kinds, parameters);
    }

    void Invoke(IDispatch& object, DISPID id, WORD kinds, DISPPARAMS& parameters) {
        Var result;
        EXCEPINFO exception = {};
        UINT bad = 0;
        statuses_.insert(object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kinds, &parameters,
                                       random_.OneIn(4) ? nullptr : result.get(),
                                       random_.OneIn(4) ? nullptr : &exception,
                                       random_.OneIn(4) ? nullptr : &bad));
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
        Collect(result.object());
    }

    // A host's other questions.
    void Ask(const Target& target) {
        static const IID* const kInterfaces[] = {
            &IID_IUnknown,      &IID_IDispatch,    &IID_INmeaParser,
            &IID_IPosition,     &IID_ICustomDatum, &IID_ISupportErrorInfo,
            &IID_IMarshal,      &IID_IPersist,     &IID_IProvideClassInfo2,
            &IID_IObjectSafety, &IID_IEnumVARIANT, &IID_IConnectionPointContainer};
        ComPtr<IUnknown> other;
        target.object->QueryInterface(*random_.Of(kInterfaces),
                                      reinterpret_cast<void**>(other.GetAddressOf()));
        ComPtr<ITypeInfo> type;
        target.object->GetTypeInfo(random_.Below(3), LOCALE_USER_DEFAULT, &type);
        wchar_t name[] = L"Position";
        name[random_.Below(8)] = static_cast<wchar_t>(random_.Below(0x80));
        LPOLESTR names[] = {name, name};
        DISPID ids[2] = {};
        target.object->GetIDsOfNames(IID_NULL, names, random_.Below(3), LOCALE_USER_DEFAULT, ids);
        const ComPtr<IConnectionPoint> point = EventsOf(target.object.Get());
        if (!point) return;
        DWORD cookie = 0;
        EXPECT_EQ(CONNECT_E_NOCONNECTION, point->Unadvise(cookie));
        EXPECT_EQ(S_OK, point->Advise(foreign_.Get(), &cookie));
        if (random_.OneIn(2)) tests::Call(target.object.Get(), L"Parse", {kEverySentence});
        EXPECT_EQ(S_OK, point->Unadvise(cookie));
    }

    // No port is opened that could exist, and no query waits for long.
    void Tame(DISPID id, RandomVariant& argument) {
        constexpr DISPID kComPort = 4;
        constexpr DISPID kFirstQuery = 8;
        constexpr DISPID kLastQuery = 11;
        static const Var kPorts[] = {-1, 77, 300, -9, 32767, L"88", 0};
        static const Var kTimes[] = {0, -1, 1, 2, L"3", 0.6, Var::Missing(), L"no number"};
        if (id == kComPort) argument.Replace(random_.Of(kPorts));
        if (id >= kFirstQuery && id <= kLastQuery) argument.Replace(random_.Of(kTimes));
    }

    static void Print(const Target& target, DISPID id, WORD kinds, const DISPPARAMS& parameters) {
        std::printf("%s %ld kinds %u (", target.type->name.c_str(), id, kinds);
        for (UINT i = 0; i < parameters.cArgs; ++i)
            std::printf(" %x", V_VT(&parameters.rgvarg[i]));
        std::printf(" ) names");
        for (UINT i = 0; i < parameters.cNamedArgs; ++i)
            std::printf(" %ld", parameters.rgdispidNamedArgs[i]);
        std::printf("\n");
        std::fflush(stdout);
    }

    Random random_;
    const bool isVerbose_ = Setting("KAVREL_FUZZ_VERBOSE", 0) != 0;
    const ComPtr<Foreign> foreign_{new Foreign};
    std::vector<Target> targets_;
    Objects objects_;  // of the targets, the foreign one, and results
    std::deque<ComPtr<IDispatch>> results_;
    std::optional<Listener> listener_;
    std::set<HRESULT> statuses_;
    int depth_ = 0;
};

TEST_F(AutomationTest, SurvivesAnyCall) {
    const unsigned seed = Setting("KAVREL_FUZZ_SEED", 1);
    const unsigned seconds = Setting("KAVREL_FUZZ_SECONDS", 0);
    const ULONGLONG start = GetTickCount64();
    Host host(seed);
    int calls = 0;
    const auto goesOn = [&] {
        if (HasFailure()) return false;
        return seconds != 0 ? GetTickCount64() - start < seconds * 1000ULL : calls < kDefaultCalls;
    };
    for (; goesOn(); calls += kCallsOfARound)
        host.Round(kCallsOfARound);
    std::printf("seed %u: %d calls in %llu ms\n", seed, calls, GetTickCount64() - start);
    std::set<HRESULT> statuses = host.statuses();
    statuses.erase(DISP_E_OVERFLOW);  // a value too large for its variable: in some runs only
    EXPECT_EQ(kStatuses, statuses);
}

}  // namespace

}  // namespace kavrel::tests
