// Objects of every automation class, as clients come by them.
#pragma once

#include <oaidl.h>
#include <wrl/client.h>

#include <span>
#include <string>

namespace kavrel::tests {

// A class, by its default interface, and how to get an object of it.
struct ObjectMaker {
    const char* interfaceName;
    Microsoft::WRL::ComPtr<IDispatch> (*make)();
};
std::span<const ObjectMaker> EveryClass();

// Raises every event.
inline constexpr wchar_t kEverySentence[] =
    L"$GPGGA,120410.00,4730.0000,N,00843.0000,E,1,08,1.1,432.5,M,47.9,M,,\r\n"
    L"$GPRMC,120411,A,4730,N,00843,W,22.4,84.4,230394,3.1,W\r\n"
    L"$GPGLL,4730,S,00843,E,120412,A\r\n"
    L"$GPGSV,1,1,02,02,61,103,44,05,23,288,38\r\n"
    L"$GPGSA,A,3,02,05,,,,,,,,,,,1.9,1.1,1.6\r\n";

// The object that an event of a parser brings last when the text is parsed; null without one.
Microsoft::WRL::ComPtr<IDispatch> LastObjectOf(IDispatch* parser, DISPID event,
                                               const std::wstring& text);

}  // namespace kavrel::tests
