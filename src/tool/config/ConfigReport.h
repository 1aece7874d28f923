#pragma once

#include "tool/output/Diagnostics.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Json.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kes::tool {

/// A word in a line of a text. Columns count from 1, characters are the columns in code points; the ends are
/// one past the word.
struct SourceWord {
    std::string text;
    std::uint32_t column = 0;
    std::uint32_t endColumn = 0;
    std::uint32_t character = 0;
    std::uint32_t endCharacter = 0;
};

/// One thing that is wrong with a text, or a warning about any configuration.
struct Finding {
    std::uint32_t line = 0;          ///< counted from 1; 0 when the text as a whole is meant
    std::uint32_t column = 0;        ///< in bytes from 1: where the reader stopped; 0 without a line
    std::uint32_t character = 0;     ///< the column in code points
    std::int32_t code = 0;           ///< the kind, stable between versions; 0 for the text as a whole
    std::string severity = "error";  ///< or "warning"
    std::string kind;                ///< the words of the code
    std::string message;             ///< all of it, on one line
    std::string key;                 ///< of the line, as far as it is known
    std::vector<std::string> notes;  ///< what helps, each on one line
    std::vector<std::string> near;   ///< words of which one may have been meant
    /// The word that the near ones could stand for. Only where its place in the line is sure.
    std::optional<SourceWord> word;
    std::string source;  ///< the line; only the beginning of a very long one
};

/// What a configuration holds, for those who ask.
struct ConfigSummary {
    struct Place {
        std::string subsystem;
        std::string device;
        std::int32_t store = 0;
        std::uint32_t keys = 0;
    };
    struct Store {
        std::string device;
        std::int32_t store = 0;
    };
    std::string chip;
    std::int32_t chipId = 0;
    std::vector<Place> places;
    std::vector<Store> stores;
};

/// What came of loading one configuration. Text, JSON and SARIF are made of this record alone.
struct ConfigReport {
    std::string file;    ///< as messages name it
    std::string system;  ///< label of the system it was held against; empty when it did not come that far
    ExitCode exit = EXIT_FINE;
    std::vector<Finding> findings;
    std::vector<std::string> errors;  ///< of the whole, or of the system when `exit` is `EXIT_SYSTEM`
    std::vector<std::string> notes;   ///< of the whole
    std::optional<ConfigSummary> summary;
};

/// The report of a configuration that could not be read.
ConfigReport FailureReport(const std::string& file, const std::string& message);

/// The stable name of a kind of finding: "KES026".
std::string RuleId(std::int32_t code);

/// Prints one finding of a file as a message with its notes, a line each.
void PrintFinding(const std::string& file, const Finding& finding, const Diagnostics& diagnostics);
/// Prints a report as messages, a line each, without its summary.
void PrintMessages(const ConfigReport& report, const Diagnostics& diagnostics);
/// Prints the errors of a report that has failed; nothing for any other.
void PrintFailure(const ConfigReport& report, const Diagnostics& diagnostics);
/// Prints the summary on standard output, if there is one.
void PrintSummary(const ConfigReport& report);

/// The report as an element of "results". `ReportFromJson` makes the same report of it again.
Json ToJson(const ConfigReport& report);
ConfigReport ReportFromJson(const Json& json);

}  // namespace kes::tool
