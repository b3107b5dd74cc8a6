// A C++ host with events: replays a receiver's log through NmeaParser and prints what arrives.
//     event_host <log file>
// Shows the early-bound interface, a sink for the events, and how errors are read.

#include <cstdio>
#include <map>
#include <string>

#include "host.h"

namespace {

using host::Var;

class Sink final : public host::EventSink {
  public:
    const std::map<std::string, int>& counts() const { return counts_; }

  private:
    void OnEvent(DISPID event, IDispatch* object) override {
        if (event == host::kGeneric) CountSentence(object);
        if (event == host::kOnGpsFix) PrintFix(object);
    }

    void CountSentence(IDispatch* object) {
        INmeaSentence* sentence = nullptr;
        if (FAILED(
                object->QueryInterface(IID_INmeaSentence, reinterpret_cast<void**>(&sentence)))) {
            return;
        }
        Var command;
        sentence->get_Command(&command);
        sentence->Release();
        ++counts_[host::Narrow(V_BSTR(&command))];
    }

    void PrintFix(IDispatch* object) {
        constexpr int kEvery = 20;
        if (fixes_++ % kEvery == 0) std::puts(host::DescribeFix(object).c_str());
    }

    int fixes_ = 0;
    std::map<std::string, int> counts_;
};

bool Replay(INmeaParser* parser, const char* fileName) {
    std::FILE* const log = std::fopen(fileName, "rb");
    if (log == nullptr) {
        std::fprintf(stderr, "cannot open %s\n", fileName);
        return false;
    }
    char line[256];
    while (std::fgets(line, sizeof(line), log) != nullptr)
        parser->Parse(Var(std::string(line)));
    std::fclose(log);
    return true;
}

int Run(const char* fileName) {
    INmeaParser* const parser = host::CreateParser();
    if (parser == nullptr) return 1;
    Sink sink;
    const HRESULT result = sink.Connect(parser);
    const bool isReplayed = SUCCEEDED(result) && Replay(parser, fileName);
    for (const auto& [command, count] : sink.counts()) {
        std::printf("%s %d\n", command.c_str(), count);
    }
    host::PrintLastError(parser->put_GpsDatum(Var(29L)));
    sink.Disconnect();
    parser->Release();
    return isReplayed ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: event_host <log file>\n");
        return 2;
    }
    CoInitialize(nullptr);
    const int code = Run(argv[1]);
    CoUninitialize();
    return code;
}
