#include "platform/linux/applications/desktop_command.h"

#include <optional>
#include <utility>

#include "platform/linux/applications/desktop_entry.h"

namespace tarnwick::platform {
namespace {

/// Reads a command line from left to right.
class CommandReader {
 public:
    CommandReader(std::string_view line, const DesktopCommandFields& fields)
        : rest_(line), fields_(fields) {}

    std::vector<std::string> read() {
        while (!rest_.empty()) {
            if (!readPiece(take())) {
                return {};
            }
        }
        endWord();
        return std::move(words_);
    }

 private:
    char take() {
        const char character = rest_.front();
        rest_.remove_prefix(1);
        return character;
    }

    std::string& word() {
        if (!word_) {
            word_.emplace();
        }
        return *word_;
    }

    void endWord() {
        if (word_) {
            words_.push_back(*std::exchange(word_, std::nullopt));
        }
    }

    bool readPiece(char character) {
        switch (character) {
            case ' ':
            case '\t':
            case '\n':
                endWord();
                return true;
            case '"':
            case '\'':
                return readQuotation(character);
            case '\\':
                if (rest_.empty()) {
                    return false;
                }
                word() += take();
                return true;
            case '%':
                return !rest_.empty() && readField(take());
            default:
                word() += character;
                return true;
        }
    }

    // Single quotes are not in the rules, but in entries.
    bool readQuotation(char end) {
        std::string& text = word();
        while (!rest_.empty()) {
            char character = take();
            if (character == end) {
                return true;
            }
            if (end == '"' && character == '\\' && !rest_.empty()) {
                const bool isEscape =
                    std::string_view("\"`$\\").find(rest_.front()) != std::string_view::npos;
                text += isEscape ? take() : character;
            } else if (end == '"' && character == '%' && rest_.starts_with('%')) {
                text += take();
            } else {
                text += character;
            }
        }
        return false;
    }

    bool readField(char field) {
        switch (field) {
            case '%':
                word() += '%';
                return true;
            case 'c':
                word() += fields_.name;
                return true;
            case 'k':
                word() += fields_.file;
                return true;
            case 'i':
                if (!fields_.icon.empty()) {
                    endWord();
                    words_.emplace_back("--icon");
                    words_.push_back(fields_.icon);
                }
                return true;
            default:
                // Files and addresses to open, of which there are none, and what is out of use.
                return std::string_view("fFuUdDnNvm").find(field) != std::string_view::npos;
        }
    }

    std::string_view rest_;
    const DesktopCommandFields& fields_;
    std::vector<std::string> words_;
    /// The word that has begun; absent between words.
    std::optional<std::string> word_;
};

}  // namespace

std::vector<std::string> desktopCommand(std::string_view exec, const DesktopCommandFields& fields) {
    return CommandReader(desktopEntryText(exec), fields).read();
}

}  // namespace tarnwick::platform
