#pragma once

#include "files/FileError.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace VemoKesConfigTools {

/// Why a binary file or image cannot be read or written: one of the error texts of `Words.h`, which all
/// plug-ins share, and the cause in plain words. Thrown inside the plug-ins only.
class Refusal : public std::runtime_error {
public:
    Refusal(std::string_view text, const std::string& cause) : std::runtime_error(cause), mText(text) {}

    std::string_view Text() const { return mText; }

private:
    std::string_view mText;
};

/// The refusal that a failed file stands for. The cause names the file unless it is the subject itself.
Refusal ToRefusal(const files::FileError& error, const std::string& subject);

/// Stores the error `TEXT: SUBJECT: CAUSE`; the subject, a file for one, may be empty.
void Report(const char* function, const Refusal& refusal, const std::string& subject);

/// Does what may throw a `Refusal` or `FileError`, and reports it. `subject` may change meanwhile. Gives
/// whether nothing was thrown.
template <typename Body>
bool Reporting(const char* function, const std::string& subject, const Body& body) {
    try {
        body();
        return true;
    } catch (const Refusal& refusal) {
        Report(function, refusal, subject);
    } catch (const files::FileError& error) {
        Report(function, ToRefusal(error, subject), subject);
    }
    return false;
}

}  // namespace VemoKesConfigTools
