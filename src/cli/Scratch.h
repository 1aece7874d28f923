#pragma once

#include <string>

namespace kes::cli {

/// A temporary file with this content, gone with the object. Throws `Failure` when it cannot be written.
class Scratch {
public:
    explicit Scratch(const std::string& content);
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch();

    const std::string& Path() const { return mPath; }

private:
    std::string mPath;
};

}  // namespace kes::cli
