#include "frame/registration_script.h"

#include <string>

namespace kavrel {
namespace {

// Deeper nesting than any script needs would only serve to exhaust the stack.
constexpr int kMaxDepth = 16;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Cuts a script into tokens: words, quoted texts and the characters { } =.
class Tokenizer {
  public:
    explicit Tokenizer(std::string_view script) : rest_(script) { Next(); }

    const std::string& token() const { return token_; }

    // True at a word that stands for itself: a quoted "NoRemove" is a name.
    bool Is(std::string_view word) const { return !isQuoted_ && token_ == word; }
    bool IsAtEnd() const { return !isQuoted_ && token_.empty(); }

    // True at a name or a text, which may be empty.
    bool IsText() const { return !IsAtEnd() && !Is("{") && !Is("}") && !Is("="); }

    void Next() {
        while (!rest_.empty() && IsBlank(rest_.front()))
            rest_.remove_prefix(1);
        token_.clear();
        isQuoted_ = !rest_.empty() && rest_.front() == '\'';
        isQuoted_ ? TakeQuoted() : TakeWord();
    }

    std::string Take() {
        std::string taken = token_;
        Next();
        return taken;
    }

  private:
    void TakeQuoted() {
        rest_.remove_prefix(1);
        while (!rest_.empty()) {
            const char c = rest_.front();
            rest_.remove_prefix(1);
            if (c == '\'') {
                if (rest_.empty() || rest_.front() != '\'') return;
                rest_.remove_prefix(1);
            }
            token_ += c;
        }
    }

    // A brace directly before other characters belongs to a name: an identity in braces.
    void TakeWord() {
        while (!rest_.empty() && !IsBlank(rest_.front()) && rest_.front() != '\'') {
            token_ += rest_.front();
            rest_.remove_prefix(1);
        }
    }

    std::string_view rest_;
    std::string token_;
    bool isQuoted_ = false;
};

class Interpreter {
  public:
    Interpreter(std::string_view script, ScriptMode mode, RegistryEditor& editor)
        : tokens_(script), mode_(mode), editor_(editor) {}

    std::uint32_t Run() {
        if (!tokens_.Is("HKCR")) return kScriptMalformed;
        tokens_.Next();
        if (!tokens_.Is("{")) return kScriptMalformed;
        RunBlock({}, 0);
        if (firstError_ == 0 && !tokens_.IsAtEnd()) firstError_ = kScriptMalformed;
        return firstError_;
    }

  private:
    bool IsRegistering() const { return mode_ == ScriptMode::Register; }

    // A failure ends a registration; an unregistration removes what it still can.
    bool HasStopped() const { return isMalformed_ || (IsRegistering() && firstError_ != 0); }

    void Note(std::uint32_t error) {
        if (firstError_ == 0) firstError_ = error;
    }

    void Fail() {
        isMalformed_ = true;
        Note(kScriptMalformed);
    }

    // From a "{" to behind its "}".
    void RunBlock(const std::string& path, int depth) {
        if (depth > kMaxDepth) return Fail();
        tokens_.Next();
        while (!HasStopped() && !tokens_.Is("}")) {
            if (tokens_.IsAtEnd()) return Fail();
            tokens_.Is("val") ? RunValue(path) : RunKey(path, depth);
        }
        tokens_.Next();
    }

    // val NAME = s 'TEXT'
    void RunValue(const std::string& path) {
        tokens_.Next();
        if (!tokens_.IsText()) return Fail();
        const std::string name = tokens_.Take();
        if (!tokens_.Is("=")) return Fail();
        const std::string text = TakeAssignment();
        if (IsRegistering() && !HasStopped()) Note(editor_.SetText(path, name, text));
    }

    // [NoRemove | ForceRemove] NAME [= s 'TEXT'] [{ ... }]
    void RunKey(const std::string& parent, int depth) {
        const bool isKept = tokens_.Is("NoRemove");
        const bool isRemovedWhole = tokens_.Is("ForceRemove");
        if (isKept || isRemovedWhole) tokens_.Next();
        if (!tokens_.IsText() || tokens_.token().empty()) return Fail();
        const std::string path = Below(parent, tokens_.Take());

        if (isRemovedWhole) Note(editor_.RemoveTree(path));
        if (IsRegistering() && !HasStopped()) Note(editor_.CreateKey(path));
        if (tokens_.Is("=")) {
            const std::string text = TakeAssignment();
            if (IsRegistering() && !HasStopped()) Note(editor_.SetText(path, {}, text));
        }
        if (tokens_.Is("{") && !HasStopped()) RunBlock(path, depth + 1);
        if (!IsRegistering() && !isKept && !isRemovedWhole && !HasStopped()) {
            Note(editor_.RemoveIfChildless(path));
        }
    }

    // = s 'TEXT'; texts are all that the library's scripts need.
    std::string TakeAssignment() {
        tokens_.Next();
        const bool isTextType = tokens_.Is("s");
        if (isTextType) tokens_.Next();
        if (!isTextType || !tokens_.IsText()) {
            Fail();
            return {};
        }
        return tokens_.Take();
    }

    static std::string Below(const std::string& parent, const std::string& name) {
        return parent.empty() ? name : parent + '\\' + name;
    }

    Tokenizer tokens_;
    ScriptMode mode_;
    RegistryEditor& editor_;
    std::uint32_t firstError_ = 0;
    bool isMalformed_ = false;
};

}  // namespace

std::uint32_t RunRegistrationScript(std::string_view script, ScriptMode mode,
                                    RegistryEditor& editor) {
    return Interpreter(script, mode, editor).Run();
}

}  // namespace kavrel
