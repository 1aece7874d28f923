#include "cli/CheckJobs.h"
#include "cli/Globals.h"
#include "cli/Help.h"
#include "tool/config/ConfigInput.h"
#include "tool/config/ConfigReport.h"
#include "tool/config/Sarif.h"
#include "tool/output/Diagnostics.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Json.h"
#include "tool/output/Platform.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace kes::cli {

namespace {

constexpr const char* FORMAT_TEXT = "text";
constexpr const char* FORMAT_JSON = "json";
constexpr const char* FORMAT_SARIF = "sarif";

struct CheckOptions {
    std::vector<std::string> names;
    CheckWork work;
    std::string format = FORMAT_TEXT;
};

void PrintDocument(const std::vector<ConfigReport>& reports, const std::string& format, ExitCode exit) {
    if (format == FORMAT_SARIF) {
        PrintJson(SarifLog(reports, exit));
        return;
    }
    Json document = JsonDocument("check");
    document["exit"] = static_cast<int>(exit);
    Json& results = document["results"] = Json::array();
    for (const ConfigReport& report : reports) results.push_back(ToJson(report));
    PrintJson(document);
}

int Run(const Globals& globals, const CheckOptions& options) {
    CheckWork work = options.work;
    for (const std::string& name : options.names) work.sources.emplace_back(name);
    if (std::ranges::count_if(work.sources, &ConfigSource::IsStandardInput) > 1) {
        throw Failure(EXIT_USAGE, "standard input (\"-\") can be read once only");
    }
    const std::string format = globals.json ? FORMAT_JSON : options.format;
    if (work.jobs == 0) work.jobs = ProcessorCount();
    std::uint64_t bytes = 0;
    for (const ConfigSource& source : work.sources) bytes += ConfigInput::SizeOf(source);

    const Diagnostics diagnostics(globals.noColor);
    ProgressBar bar(bytes);
    std::vector<ConfigReport> reports;
    ExitCode worst = EXIT_FINE;
    const auto take = [&](const ConfigReport& report) {
        worst = std::max(worst, report.exit);
        bar.Erase();
        if (format == FORMAT_TEXT) {
            PrintMessages(report, diagnostics);
            PrintSummary(report);
        } else {
            PrintFailure(report, diagnostics);
            reports.push_back(report);
        }
    };
    const auto print = [&](const std::string& file, const Finding& finding) {
        bar.Erase();
        PrintFinding(file, finding, diagnostics);
    };
    CheckConfigs(globals, work, format == FORMAT_TEXT ? TakeFinding(print) : TakeFinding(), take, bar);
    bar.Erase();
    if (format != FORMAT_TEXT) PrintDocument(reports, format, worst);
    return worst;
}

}  // namespace

void AddCheck(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("check", "Check configurations against the metadata");
    const auto options = std::make_shared<CheckOptions>();
    command->add_option("CONFIG", options->names, CONFIG_HELP)->required();
    command->add_flag("-v,--verbose", options->work.summaries,
                      "Also say what was found: places, keys and stores");
    CLI::Option* format =
        command
            ->add_option("--format", options->format,
                         "How to tell what was found: text (messages on standard error), json or sarif "
                         "(a document on standard output)")
            ->check(CLI::IsMember({FORMAT_TEXT, FORMAT_JSON, FORMAT_SARIF}))
            ->option_text("FORMAT");
    AddJsonOption(*command, globals);
    command->get_option("--json")->description("The same as --format=json")->excludes(format);
    constexpr std::size_t MOST_JOBS = 1000;
    command
        ->add_option(
            "-j,--jobs", options->work.jobs,
            "In how many processes to check several texts; 0 for one for each processor (default: 1)")
        ->check(CLI::Range(std::size_t{0}, MOST_JOBS))
        ->option_text("N");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddLockOption(*command, globals);
    AddExamples(*command, {{"kes check board.ktf", "No output and exit code 0 when the text is good"},
                           {"kes check -v *.ktf", "Several texts, and what was found in them"},
                           {"kes check chunks/ eeprom:board.img", "A folder of chunk files, and a device"}});
    command->footer(
        "Each error is one line on standard error: FILE:LINE:COLUMN: error: TEXT, and without a place for "
        "what is "
        "no text.\n"
        "Exit code: 0 all are good, 1 errors were found, 2 wrong usage, 3 a file, database or "
        "plug-in failed.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Run(globals, *options); }; });
}

}  // namespace kes::cli
