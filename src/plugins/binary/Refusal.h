#pragma once

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

/// Stores the error `TEXT: SUBJECT: CAUSE`; the subject, a file for one, may be empty.
void Report(const char* function, const Refusal& refusal, const std::string& subject);

}  // namespace VemoKesConfigTools
