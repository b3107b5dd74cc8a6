// The rules of sentence assembly in their plainest form, to compare the assembler with.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kavrel {

class ReferenceAssembler {
  public:
    explicit ReferenceAssembler(bool isChecksumMandatory = false)
        : isChecksumMandatory_(isChecksumMandatory) {}

    void SetChecksumMandatory(bool isMandatory) { isChecksumMandatory_ = isMandatory; }

    // Only the last 512 waiting characters are kept.
    void Append(std::string_view text) {
        waiting_.append(text);
        if (waiting_.size() > 512) waiting_.erase(0, waiting_.size() - 512);
    }

    // The next sentence without its line end; nothing while there is none.
    std::optional<std::string> Next() {
        for (;;) {
            const std::size_t opening = waiting_.find('$');
            if (opening == std::string::npos) return std::nullopt;
            const std::size_t end = waiting_.find("\r\n", opening);
            const std::size_t start = waiting_.rfind('$', end);
            if (end == std::string::npos) {
                waiting_.erase(0, start);
                return std::nullopt;
            }
            const std::string line = waiting_.substr(start, end + 2 - start);
            waiting_.erase(0, end + 2);
            if (IsAccepted(line)) return line.substr(0, line.size() - 2);
        }
    }

  private:
    bool IsAccepted(const std::string& line) const {
        const std::size_t stop = line.find_first_of("*\r", 1);
        if (line[stop] == '\r') return !isChecksumMandatory_;
        int sum = 0;
        for (std::size_t i = 1; i < stop; ++i)
            sum ^= line[i];
        const int value = Value(line[stop + 1]) * 16 + Value(line[stop + 2]);
        return static_cast<signed char>(value) == static_cast<signed char>(sum);
    }

    static int Value(char c) { return c >= '0' && c <= '9' ? c - '0' : c - 55; }

    std::string waiting_;
    bool isChecksumMandatory_;
};

}  // namespace kavrel
