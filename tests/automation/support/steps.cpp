#include "automation/support/steps.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace kavrel::tests {

std::string Outcome(const CallResult& call) {
    if (call.status == S_OK) return call.value.type() == VT_EMPTY ? "" : Describe(call.value);
    std::ostringstream text;
    text << std::hex << std::uppercase << static_cast<DWORD>(call.failure);
    if (call.error.has_value()) {
        text << ' ' << Narrow(call.error->description);
        if (call.error->source.has_value()) text << " (" << Narrow(*call.error->source) << ')';
    }
    return text.str();
}

CallResult RunStep(IDispatch* object, const wchar_t* member, const Vars& arguments) {
    const bool isPut = *member == L'=' || *member == L'&';
    const WORD kinds = *member == L'='   ? DISPATCH_PROPERTYPUT
                       : *member == L'&' ? DISPATCH_PROPERTYPUTREF
                                         : DISPATCH_METHOD | DISPATCH_PROPERTYGET;
    Arguments all{arguments, {}};
    if (isPut) all.names = {DISPID_PROPERTYPUT};
    return InvokeById(object, IdOf(object, isPut ? member + 1 : member), kinds, all);
}

void ExpectSteps(IDispatch* object, const std::vector<Step>& steps) {
    ASSERT_NE(nullptr, object);
    for (size_t i = 0; i < steps.size(); ++i) {
        std::string call = Narrow(steps[i].member);
        for (const Var& argument : steps[i].arguments)
            call += ", " + Describe(argument);
        EXPECT_EQ(steps[i].outcome, Outcome(RunStep(object, steps[i].member, steps[i].arguments)))
            << "step " << i << ": " << call;
    }
}

double Number(IDispatch* object, const wchar_t* member, const Vars& arguments) {
    const CallResult call = RunStep(object, member, arguments);
    const bool isNumber = call.status == S_OK && call.value.type() == VT_R8;
    EXPECT_TRUE(isNumber) << Narrow(member) << ": " << Outcome(call);
    return isNumber ? V_R8(call.value.get()) : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace kavrel::tests
