#include "cli/DefaultsCheck.h"
#include "cli/Diagnostics.h"
#include "cli/ExitCodes.h"
#include "cli/Globals.h"
#include "cli/Help.h"
#include "cli/Json.h"
#include "cli/OutputFile.h"
#include "cli/Printable.h"
#include "metadb/JsonSource.h"
#include "metadb/MetadataDatabase.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

namespace kes::cli {

namespace {

namespace metadb = VemoKesConfigTools::metadb;

struct MetadataOptions {
    std::vector<std::string> sources;
    std::string database;
    std::string output;
};

std::string ReadWhole(const std::string& path) {
    if (path == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) throw Failure(EXIT_SYSTEM, path + ": is a directory");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Failure(EXIT_SYSTEM, path + ": cannot be opened: " + std::strerror(errno));
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const OutputFile& output, const std::string& bytes) {
    std::ofstream file(output.TemporaryPath(), std::ios::binary);
    file << bytes;
    file.close();
    if (!file) throw Failure(EXIT_SYSTEM, output.TemporaryPath() + ": cannot be written");
}

int ReportFaults(const Globals& globals, const MetadataOptions& options,
                 const std::vector<metadb::SourceFault>& faults) {
    Diagnostics diagnostics(globals.noColor);
    for (const metadb::SourceFault& fault : faults) {
        const std::string& source = options.sources[fault.place.file];
        diagnostics.Report(source == "-" ? "<stdin>" : source, fault.place.line, fault.place.column, "error",
                           fault.text);
        diagnostics.ShowSource(source, fault.place.line, fault.place.column);
    }
    return EXIT_FINDINGS;
}

int Build(const Globals& globals, const MetadataOptions& options) {
    std::vector<metadb::SystemData> systems;
    std::vector<metadb::SourceFault> faults;
    for (std::size_t i = 0; i < options.sources.size(); ++i) {
        metadb::ReadJsonSource(ReadWhole(options.sources[i]), static_cast<std::uint32_t>(i), systems, faults);
    }
    if (!faults.empty()) return ReportFaults(globals, options, faults);

    OutputFile output(options.output);
    try {
        WriteBytes(output, metadb::SerializeDatabase(systems));
        metadb::MetadataDatabase(output.TemporaryPath()).LoadAll();
    } catch (const metadb::DatabaseError& error) {
        throw Failure(EXIT_SYSTEM, error.what());
    }
    faults = CheckDefaults(globals.plugins, output.TemporaryPath(), systems);
    if (!faults.empty()) return ReportFaults(globals, options, faults);
    output.Commit();
    return EXIT_FINE;
}

int Export(const MetadataOptions& options) {
    std::string text;
    try {
        text = metadb::WriteJsonSource(metadb::MetadataDatabase(options.database).LoadAll());
    } catch (const metadb::DatabaseError& error) {
        throw Failure(EXIT_SYSTEM, error.what());
    }
    if (options.output.empty() || options.output == "-") {
        std::cout << text;
        return EXIT_FINE;
    }
    OutputFile output(options.output);
    WriteBytes(output, text);
    output.Commit();
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
    AddExamples(*build, {{"kes metadata build chip.json -o chip.db", "Make a database"}});
    build->footer("A wrong source is refused with the places of all its faults, and no database is written.");
    build->callback(
        [&globals, options] { globals.run = [&globals, options] { return Build(globals, *options); }; });

    CLI::App* exports = command->add_subcommand("export", "Write the JSON source of a database");
    exports->add_option("DB", options->database, "The database")->required();
    exports->add_option("-o,--output", options->output, "Where to write; standard output without it")
        ->type_name("FILE");
    AddExamples(*exports, {{"kes metadata export chip.db -o chip.json", "Get the source back"}});
    exports->callback([&globals, options] { globals.run = [options] { return Export(*options); }; });

    CLI::App* check = command->add_subcommand("check", "Check a database for damage");
    check->add_option("DB", options->database, "The database")->required();
    AddJsonOption(*check, globals);
    check->callback(
        [&globals, options] { globals.run = [&globals, options] { return Check(globals, *options); }; });
}

}  // namespace kes::cli
