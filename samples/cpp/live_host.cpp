// A C++ host with a receiver on a serial port: prints the events as they come.
//     live_host <port number> [<rate> [<seconds>]]
// Port 0 searches for a receiver, rate 0 for its rate. Events arrive on the thread that created the
// parser, while it dispatches messages.

#include <cstdio>
#include <cstdlib>

#include "host.h"

namespace {

using host::Var;

class Sink final : public host::EventSink {
  public:
    int fixes() const { return fixes_; }

  private:
    void OnEvent(DISPID event, IDispatch* object) override {
        constexpr int kEvery = 30;
        switch (event) {
            case host::kOnComStatus:
                PrintStatus(object);
                break;
            case host::kOnGpsFix:
                if (fixes_++ % kEvery == 0) std::puts(host::DescribeFix(object).c_str());
                break;
            case host::kOnSatellites:
                if (pictures_++ % kEvery == 0) PrintSatellites(object);
                break;
            default:
                break;
        }
    }

    static void PrintStatus(IDispatch* object) {
        IComStatus* status = nullptr;
        if (FAILED(object->QueryInterface(IID_IComStatus, reinterpret_cast<void**>(&status))))
            return;
        Var port;
        Var rate;
        Var hasNmea;
        Var hasFix;
        status->get_ComPort(&port);
        status->get_BaudRate(&rate);
        status->get_ValidNmea(&hasNmea);
        status->get_ValidFix(&hasFix);
        status->Release();
        // A true flag is 1: test for non-zero.
        std::printf("port %d at %ld baud: %s, %s\n", V_I2(&port), V_I4(&rate),
                    V_BOOL(&hasNmea) != 0 ? "a receiver" : "no receiver yet",
                    V_BOOL(&hasFix) != 0 ? "fix" : "no fix yet");
    }

    static void PrintSatellites(IDispatch* object) {
        ISatellites* satellites = nullptr;
        if (FAILED(object->QueryInterface(IID_ISatellites, reinterpret_cast<void**>(&satellites))))
            return;
        Var count;
        satellites->get_Count(&count);
        satellites->Release();
        std::printf("%d satellites in view\n", V_I2(&count));
    }

    int fixes_ = 0;
    int pictures_ = 0;
};

// A form does the same by itself, for as long as it is shown.
void DispatchMessages(DWORD milliseconds) {
    const DWORD start = GetTickCount();
    MSG message;
    for (DWORD passed = 0; passed < milliseconds; passed = GetTickCount() - start) {
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        } else {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds - passed, QS_ALLINPUT);
        }
    }
}

int Run(LONG port, LONG rate, DWORD seconds) {
    INmeaParser* const parser = host::CreateParser();
    if (parser == nullptr) return 1;
    Sink sink;
    HRESULT result = sink.Connect(parser);
    if (SUCCEEDED(result)) result = parser->put_ComPort(Var(port));
    if (SUCCEEDED(result)) result = parser->put_BaudRate(Var(rate));
    if (SUCCEEDED(result)) result = parser->put_PortEnabled(Var(1L));
    if (SUCCEEDED(result)) {
        DispatchMessages(seconds * 1000);
        parser->put_PortEnabled(Var(0L));
        std::printf("%d fixes in %lu seconds\n", sink.fixes(), seconds);
    } else {
        host::PrintLastError(result);
    }
    sink.Disconnect();
    parser->Release();
    return sink.fixes() > 0 ? 0 : 1;
}

LONG Argument(int argc, char** argv, int index, LONG otherwise) {
    return argc > index ? std::strtol(argv[index], nullptr, 10) : otherwise;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 4) {
        std::fprintf(stderr, "usage: live_host <port number> [<rate> [<seconds>]]\n");
        return 2;
    }
    CoInitialize(nullptr);
    const int code = Run(Argument(argc, argv, 1, 0), Argument(argc, argv, 2, 4800),
                         static_cast<DWORD>(Argument(argc, argv, 3, 5)));
    CoUninitialize();
    return code;
}
