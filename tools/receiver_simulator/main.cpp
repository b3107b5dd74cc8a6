// Writes the NMEA text of a simulated receiver. Run it without a receiver at hand, for tests, for
// samples and for measuring.
#include <cstdio>
#include <optional>
#include <string>

#include "options.h"
#include "receiver.h"

int main(int count, char** arguments) {
    std::string complaint;
    const std::optional<simulator::Options> options =
        simulator::ReadOptions(count, arguments, complaint);
    if (!options.has_value()) {
        std::fprintf(stderr, "not understood: %s\n%s", complaint.c_str(), simulator::kUsage.data());
        return 2;
    }
    const bool isToFile = !options->output.empty();
    std::FILE* const file = isToFile ? std::fopen(options->output.c_str(), "wb") : stdout;
    if (file == nullptr) {
        std::perror(options->output.c_str());
        return 1;
    }

    simulator::Receiver receiver(*options);
    std::uint64_t written = 0;
    bool isGood = true;
    for (std::int64_t epoch = 0; isGood; ++epoch) {
        if (options->bytes != 0 ? written >= options->bytes : epoch >= options->epochs) break;
        const std::string text = receiver.NextEpoch();
        isGood = std::fwrite(text.data(), 1, text.size(), file) == text.size();
        written += text.size();
    }
    isGood = (isToFile ? std::fclose(file) : std::fflush(file)) == 0 && isGood;
    if (!isGood) std::perror("receiver_simulator");
    return isGood ? 0 : 1;
}
