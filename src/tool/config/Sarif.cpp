#include "tool/config/Sarif.h"

#include <cctype>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace kes::tool {

namespace fs = std::filesystem;

namespace {

constexpr const char* BASE = "WORKINGDIR";

/// Percent-encoding of a path: only what a URI takes anywhere stays as it is.
std::string EncodePath(std::string_view path) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    constexpr std::string_view PLAIN = "-._~/";
    std::string uri;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && (std::isalnum(byte) != 0 || PLAIN.find(c) != std::string_view::npos)) {
            uri += c;
        } else {
            uri += {'%', DIGITS[byte >> 4U], DIGITS[byte & 0xFU]};
        }
    }
    return uri;
}

Json Message(const std::string& text) { return {{"text", text}}; }

/// Makes the log. Rules, results and notifications grow as the reports come.
class Log {
public:
    Log() {
        std::error_code failed;
        mFolder = fs::current_path(failed);
    }

    void Add(const ConfigReport& report) {
        const Json artifact = Artifact(report.file);
        std::map<std::string, int> seen;
        for (const Finding& finding : report.findings) AddResult(finding, artifact, seen);
        if (report.exit == EXIT_SYSTEM) {
            for (const std::string& error : report.errors) {
                mNotifications.push_back({{"level", "error"},
                                          {"message", Message(error)},
                                          {"locations", Json::array({PhysicalLocation(artifact)})}});
            }
            return;
        }
        for (const std::string& error : report.errors) {
            Finding whole;
            whole.kind = error;
            whole.message = error;
            AddResult(whole, artifact, seen);
        }
    }

    Json Finish(ExitCode exit) {
        Json invocation = {{"executionSuccessful", exit != EXIT_SYSTEM},
                           {"exitCode", static_cast<int>(exit)}};
        if (!mNotifications.empty()) invocation["toolExecutionNotifications"] = mNotifications;
        Json run = {{"tool", {{"driver", {{"name", "kes"}, {"version", KES_VERSION}, {"rules", mRules}}}}},
                    {"invocations", Json::array({invocation})},
                    {"columnKind", "unicodeCodePoints"}};
        if (!mFolder.empty()) run["originalUriBaseIds"][BASE] = {{"uri", FileUri(mFolder / "")}};
        run["results"] = mResults;
        return {
            {"$schema", "https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({run})}};
    }

private:
    static std::string FileUri(const fs::path& path) { return "file://" + EncodePath(path.string()); }

    Json Artifact(const std::string& file) const {
        if (file == "<stdin>") return {{"uri", EncodePath(file)}, {"description", Message("standard input")}};
        const fs::path path = (mFolder / file).lexically_normal();
        const fs::path relative = path.lexically_relative(mFolder);
        if (mFolder.empty() || relative.empty() || *relative.begin() == "..") return {{"uri", FileUri(path)}};
        return {{"uri", EncodePath(relative.string())}, {"uriBaseId", BASE}};
    }

    static Json PhysicalLocation(const Json& artifact) {
        return {{"physicalLocation", {{"artifactLocation", artifact}}}};
    }

    static Json Location(const Finding& finding, const Json& artifact) {
        Json location = PhysicalLocation(artifact);
        if (finding.line == 0) return location;
        // Where the reader stopped: one character, none at the end of a line.
        const bool inLine = finding.column <= finding.source.size() || finding.source.size() == WIDEST_SOURCE;
        location["physicalLocation"]["region"] = {{"startLine", finding.line},
                                                  {"startColumn", finding.character},
                                                  {"endColumn", finding.character + (inLine ? 1 : 0)}};
        return location;
    }

    static Json Fixes(const Finding& finding, const Json& artifact) {
        Json fixes = Json::array();
        for (const std::string& near : finding.near) {
            const Json region = {{"startLine", finding.line},
                                 {"startColumn", finding.word->character},
                                 {"endColumn", finding.word->endCharacter}};
            const Json replacement = {{"deletedRegion", region}, {"insertedContent", Message(near)}};
            const Json change = {{"artifactLocation", artifact},
                                 {"replacements", Json::array({replacement})}};
            fixes.push_back({{"description", Message("write " + near + " for " + finding.word->text)},
                             {"artifactChanges", Json::array({change})}});
        }
        return fixes;
    }

    /// What stays the same when lines are put in or taken out above: kind, message and line. A reader that
    /// stopped at the start of a line speaks of the line before.
    static std::string Fingerprint(const Finding& finding, std::map<std::string, int>& seen) {
        std::string print = RuleId(finding.code) + ": " + finding.message;
        if (finding.column > 1) print += ": " + finding.source;
        const int count = ++seen[print];
        return count == 1 ? print : print + " #" + std::to_string(count);
    }

    std::size_t RuleIndex(const Finding& finding) {
        const auto [entry, isNew] = mRuleIndexes.try_emplace(finding.code, mRules.size());
        if (isNew) {
            mRules.push_back(
                {{"id", RuleId(finding.code)},
                 {"shortDescription", Message(finding.code == 0 ? "The text as a whole" : finding.kind)}});
        }
        return entry->second;
    }

    void AddResult(const Finding& finding, const Json& artifact, std::map<std::string, int>& seen) {
        Json result = {{"ruleId", RuleId(finding.code)},
                       {"ruleIndex", RuleIndex(finding)},
                       {"level", finding.severity},
                       {"message", Message(finding.message)},
                       {"locations", Json::array({Location(finding, artifact)})}};
        for (const std::string& note : finding.notes) {
            Json related = Location(finding, artifact);
            related["message"] = Message(note);
            result["relatedLocations"].push_back(std::move(related));
        }
        result["partialFingerprints"]["finding/v1"] = Fingerprint(finding, seen);
        if (finding.word) result["fixes"] = Fixes(finding, artifact);
        mResults.push_back(std::move(result));
    }

    fs::path mFolder;
    Json mRules = Json::array();
    std::map<std::int32_t, std::size_t> mRuleIndexes;
    Json mResults = Json::array();
    Json mNotifications = Json::array();
};

}  // namespace

Json SarifLog(const std::vector<ConfigReport>& reports, ExitCode exit) {
    Log log;
    for (const ConfigReport& report : reports) log.Add(report);
    return log.Finish(exit);
}

}  // namespace kes::tool
