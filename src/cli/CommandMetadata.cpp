#include "cli/Globals.h"
#include "cli/Help.h"
#include "files/ScratchFile.h"
#include "metadb/JsonSource.h"
#include "metadb/MetadataDatabase.h"
#include "tool/config/DefaultsCheck.h"
#include "tool/config/OutputFile.h"
#include "tool/config/TextFile.h"
#include "tool/output/Diagnostics.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Json.h"
#include "tool/output/Printable.h"
#include "tool/output/SourceLines.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

namespace kes::cli {

namespace {

namespace metadb = VemoKesConfigTools::metadb;

struct MetadataOptions {
    std::vector<std::string> sources;
    std::string database;
    std::string output;
    OutputOptions replace;
};

std::string ReadSource(const std::string& name) {
    try {
        return TextFile(name).Content();
    } catch (const Failure& failure) {
        throw Failure(failure.Code(), name + ": " + failure.what());
    }
}

int ReportFaults(const Globals& globals, const MetadataOptions& options,
                 const std::vector<std::string>& texts, const std::vector<metadb::SourceFault>& faults) {
    Diagnostics diagnostics(globals.noColor);
    std::vector<SourceLines> lines(texts.begin(), texts.end());
    for (const metadb::SourceFault& fault : faults) {
        const std::string& source = options.sources[fault.place.file];
        diagnostics.Report(source == "-" ? "<stdin>" : source, fault.place.line, fault.place.column, "error",
                           fault.text);
        if (fault.place.line != 0)
            diagnostics.ShowLine(lines[fault.place.file].Line(fault.place.line), fault.place.column);
    }
    return EXIT_FINDINGS;
}

int Build(const Globals& globals, const MetadataOptions& options) {
    std::vector<metadb::SystemData> systems;
    std::vector<metadb::SourceFault> faults;
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < options.sources.size(); ++i) {
        texts.push_back(ReadSource(options.sources[i]));
        metadb::ReadJsonSource(texts.back(), static_cast<std::uint32_t>(i), systems, faults);
    }
    if (!faults.empty()) return ReportFaults(globals, options, texts, faults);

    const OutputFile output(globals, options.output, DatabaseKind(), options.replace);
    std::string bytes;
    try {
        bytes = metadb::SerializeDatabase(systems);
        // What reads a database takes the path of one.
        const VemoKesConfigTools::files::ScratchFile scratch(bytes);
        metadb::MetadataDatabase(scratch.Path()).LoadAll();
        faults = CheckDefaults(globals.plugins, scratch.Path(), systems);
    } catch (const metadb::DatabaseError& error) {
        throw Failure(EXIT_SYSTEM, error.what());
    }
    if (!faults.empty()) return ReportFaults(globals, options, texts, faults);
    output.Write(bytes);
    return EXIT_FINE;
}

int Export(const Globals& globals, const MetadataOptions& options) {
    std::string text;
    try {
        text = metadb::WriteJsonSource(metadb::MetadataDatabase(options.database).LoadAll());
    } catch (const metadb::DatabaseError& error) {
        throw Failure(EXIT_SYSTEM, error.what());
    }
    if (options.output.empty() || IsStandardOutput(options.output)) {
        std::cout << text;
        return EXIT_FINE;
    }
    OutputFile(globals, options.output, JsonKind(), options.replace).Write(text);
    return EXIT_FINE;
}

int Check(const Globals& globals, const MetadataOptions& options) {
    Json document = JsonDocument("metadata check");
    document["file"] = options.database;
    Json& results = document["results"] = Json::array();
    try {
        metadb::MetadataDatabase database(options.database);
        database.CheckFile();
        database.LoadAll();
    } catch (const metadb::UnreadableFile& error) {
        throw Failure(EXIT_SYSTEM, error.what());
    } catch (const metadb::DatabaseError& error) {
        results.push_back({{"severity", "error"}, {"message", error.what()}});
        // The text names the file already.
        if (!globals.json) PrintError(PrintableLines(error.what()) + "\n");
    }
    if (globals.json) PrintJson(document);
    return results.empty() ? EXIT_FINE : EXIT_FINDINGS;
}

}  // namespace

void AddMetadata(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("metadata", "Build, export and check metadata databases");
    command->require_subcommand(1);
    const auto options = std::make_shared<MetadataOptions>();

    CLI::App* build = command->add_subcommand("build", "Make a database of JSON sources");
    build->add_option("SOURCE", options->sources, "JSON sources, read as one; \"-\" for standard input")
        ->required();
    build->add_option("-o,--output", options->output, "The database to write")->required()->type_name("DB");
    AddPluginsOption(*build, globals);
    AddForceOption(*build, options->replace);
    AddLockOption(*build, globals);
    AddExamples(*build, {{"kes metadata build chip.json -o chip.db", "Make a database"}});
    build->footer("A wrong source is refused with the places of all its faults, and no database is written.");
    build->callback(
        [&globals, options] { globals.run = [&globals, options] { return Build(globals, *options); }; });

    CLI::App* exports = command->add_subcommand("export", "Write the JSON source of a database");
    exports->add_option("DB", options->database, "The database")->required();
    exports->add_option("-o,--output", options->output, "Where to write; standard output without it")
        ->type_name("FILE");
    AddForceOption(*exports, options->replace);
    AddLockOption(*exports, globals);
    AddExamples(*exports, {{"kes metadata export chip.db -o chip.json", "Get the source back"}});
    exports->callback(
        [&globals, options] { globals.run = [&globals, options] { return Export(globals, *options); }; });

    CLI::App* check = command->add_subcommand("check", "Check a database for damage");
    check->add_option("DB", options->database, "The database")->required();
    AddJsonOption(*check, globals);
    check->callback(
        [&globals, options] { globals.run = [&globals, options] { return Check(globals, *options); }; });
}

}  // namespace kes::cli
