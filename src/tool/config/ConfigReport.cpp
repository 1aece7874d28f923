#include "tool/config/ConfigReport.h"

#include "tool/output/Printable.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <map>

namespace kes::tool {

namespace {

Json WordToJson(const SourceWord& word) {
    return {{"text", word.text},
            {"column", word.column},
            {"end_column", word.endColumn},
            {"character", word.character},
            {"end_character", word.endCharacter}};
}

Json FindingToJson(const Finding& finding) {
    Json json = {
        {"line", finding.line},         {"column", finding.column},     {"character", finding.character},
        {"severity", finding.severity}, {"code", RuleId(finding.code)}, {"kind", finding.kind},
        {"message", finding.message},   {"key", finding.key},           {"notes", finding.notes},
        {"near", finding.near},         {"source", finding.source}};
    if (finding.word) json["word"] = WordToJson(*finding.word);
    return json;
}

Finding FindingFromJson(const Json& json) {
    constexpr std::size_t PREFIX = 3;
    Finding finding;
    json.at("line").get_to(finding.line);
    json.at("column").get_to(finding.column);
    json.at("character").get_to(finding.character);
    json.at("severity").get_to(finding.severity);
    finding.code = std::atoi(json.at("code").get<std::string>().c_str() + PREFIX);
    json.at("kind").get_to(finding.kind);
    json.at("message").get_to(finding.message);
    json.at("key").get_to(finding.key);
    json.at("notes").get_to(finding.notes);
    json.at("near").get_to(finding.near);
    json.at("source").get_to(finding.source);
    if (const auto word = json.find("word"); word != json.end()) {
        finding.word = SourceWord{word->at("text"), word->at("column"), word->at("end_column"),
                                  word->at("character"), word->at("end_character")};
    }
    return finding;
}

Json SummaryToJson(const ConfigSummary& summary) {
    Json json = {{"chip", summary.chip}, {"id", summary.chipId}};
    Json& places = json["places"] = Json::array();
    for (const ConfigSummary::Place& place : summary.places) {
        places.push_back({{"subsystem", place.subsystem},
                          {"device", place.device},
                          {"store", place.store},
                          {"keys", place.keys}});
    }
    Json& stores = json["stores"] = Json::array();
    for (const ConfigSummary::Store& store : summary.stores) {
        stores.push_back({{"device", store.device}, {"store", store.store}});
    }
    return json;
}

ConfigSummary SummaryFromJson(const Json& json) {
    ConfigSummary summary{json.at("chip"), json.at("id"), {}, {}};
    for (const Json& place : json.at("places")) {
        summary.places.push_back(
            {place.at("subsystem"), place.at("device"), place.at("store"), place.at("keys")});
    }
    for (const Json& store : json.at("stores")) {
        summary.stores.push_back({store.at("device"), store.at("store")});
    }
    return summary;
}

}  // namespace

ConfigReport FailureReport(const std::string& file, const std::string& message) {
    ConfigReport report;
    report.file = file;
    report.exit = EXIT_SYSTEM;
    report.errors.push_back(message);
    return report;
}

std::string RuleId(std::int32_t code) {
    char text[16];
    std::snprintf(text, sizeof text, "KES%03d", code);
    return text;
}

void PrintFinding(const std::string& file, const Finding& finding, const Diagnostics& diagnostics) {
    if (finding.line == 0) {
        diagnostics.Report(file, finding.severity.c_str(), finding.message);
        return;
    }
    diagnostics.Report(file, finding.line, finding.column, finding.severity.c_str(), finding.message);
    diagnostics.ShowLine(finding.source, finding.column);
    for (const std::string& note : finding.notes) {
        diagnostics.Report(file, finding.line, finding.column, "note", note);
    }
}

void PrintMessages(const ConfigReport& report, const Diagnostics& diagnostics) {
    for (const Finding& finding : report.findings) PrintFinding(report.file, finding, diagnostics);
    for (const std::string& error : report.errors) diagnostics.Report(report.file, "error", error);
    for (const std::string& note : report.notes) diagnostics.Report(report.file, "note", note);
}

void PrintFailure(const ConfigReport& report, const Diagnostics& diagnostics) {
    if (report.exit != EXIT_SYSTEM) return;
    for (const std::string& error : report.errors) diagnostics.Report(report.file, "error", error);
}

void PrintSummary(const ConfigReport& report) {
    if (!report.summary) return;
    std::map<std::string, std::uint32_t> keys;
    std::cout << Printable(report.file) << ": system " << Printable(report.system) << ", chip "
              << Printable(report.summary->chip) << " (id " << report.summary->chipId << ")\n  places\n";
    for (const ConfigSummary::Place& place : report.summary->places) {
        keys[place.subsystem] += place.keys;
        std::cout << "    " << place.subsystem << ' ' << place.device << ' ' << place.store << ": "
                  << place.keys << (place.keys == 1 ? " key\n" : " keys\n");
    }
    std::cout << "  keys per subsystem\n";
    for (const auto& [subsystem, count] : keys) std::cout << "    " << subsystem << ": " << count << '\n';
    std::cout << "  stores\n";
    for (const ConfigSummary::Store& store : report.summary->stores) {
        std::cout << "    " << store.device << ' ' << store.store << '\n';
    }
}

Json ToJson(const ConfigReport& report) {
    Json json = {{"file", report.file}, {"system", report.system}, {"exit", static_cast<int>(report.exit)}};
    Json& findings = json["findings"] = Json::array();
    for (const Finding& finding : report.findings) findings.push_back(FindingToJson(finding));
    json["errors"] = report.errors;
    json["notes"] = report.notes;
    if (report.summary) json["summary"] = SummaryToJson(*report.summary);
    return json;
}

ConfigReport ReportFromJson(const Json& json) {
    ConfigReport report;
    json.at("file").get_to(report.file);
    json.at("system").get_to(report.system);
    report.exit = static_cast<ExitCode>(json.at("exit").get<int>());
    for (const Json& finding : json.at("findings")) report.findings.push_back(FindingFromJson(finding));
    json.at("errors").get_to(report.errors);
    json.at("notes").get_to(report.notes);
    if (const auto summary = json.find("summary"); summary != json.end()) {
        report.summary = SummaryFromJson(*summary);
    }
    return report;
}

}  // namespace kes::tool
