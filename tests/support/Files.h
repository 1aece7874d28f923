#pragma once

#include "support/TempFolder.h"

#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace KesTest {

inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

struct Outcome {
    int code;
    std::string out;
    std::string err;
};

/// Runs the real command. `before` is prefixed in the shell line: variables, or a pipe.
inline Outcome RunKes(const std::vector<std::string>& arguments, const std::string& before = {}) {
    const TempFolder folder;
    std::string line = before + " '" KES_TEST_COMMAND "'";
    for (const std::string& argument : arguments) line += " '" + Replaced(argument, "'", "'\\''") + "'";
    line += " >'" + folder / "out" + "' 2>'" + folder / "err" + "'";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(folder / "out"), ReadFile(folder / "err")};
}

/// Runs a shell line in a folder; `kes` is the real command.
inline Outcome RunShell(const TempFolder& folder, const std::string& line) {
    const TempFolder results;
    const std::string run = "cd '" + folder.Path() + "' && kes() { '" KES_TEST_COMMAND "' \"$@\"; } && { " +
                            line + "\n} >'" + results / "out" + "' 2>'" + results / "err" + "'";
    const int status = std::system(run.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(results / "out"),
            ReadFile(results / "err")};
}

/// The database of the shipped example.
inline const std::string EXAMPLE_DATABASE = std::string(KES_TEST_SHARE_DIR) + "/examples/ostrell.db";
inline const std::string EXAMPLE_FOLDER = std::string(KES_TEST_SOURCE_DIR) + "/examples/ostrell";

}  // namespace KesTest
