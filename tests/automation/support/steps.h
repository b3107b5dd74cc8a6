// Tests as tables: calls by name on one object, one after the other, and what each shall give.
#pragma once

#include <oaidl.h>

#include <string>
#include <vector>

#include "automation/support/late_call.h"
#include "automation/support/var.h"

namespace kavrel::tests {

// What a call gave, as text: "R8 5" or "EMPTY" as Describe has it; a failure as
// "80042713 Invalid parameter! (Position Class)", without the last part when it has no source.
std::string Outcome(const CallResult& call);

struct Step {
    const wchar_t* member;  // "=Name" puts a value, "&Name" puts an object by reference
    Vars arguments;
    std::string outcome;  // empty: a success without a result
};

CallResult RunStep(IDispatch* object, const wchar_t* member, const Vars& arguments);

// Runs the steps in order and compares their outcomes.
void ExpectSteps(IDispatch* object, const std::vector<Step>& steps);

// The double that a property or method without failure gives; NaN when it gives something else.
double Number(IDispatch* object, const wchar_t* member, const Vars& arguments = {});

}  // namespace kavrel::tests
