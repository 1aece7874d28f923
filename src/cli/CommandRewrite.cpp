#include "cli/Comments.h"
#include "cli/ConfigWriter.h"
#include "cli/ExitCodes.h"
#include "cli/Globals.h"
#include "cli/Help.h"
#include "cli/OutputFile.h"
#include "cli/Printable.h"
#include "cli/UnifiedDiff.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace kes::cli {

namespace {

struct RewriteOptions {
    std::string file;
    std::string output;
    bool inPlace = false;
    bool check = false;
    bool simple = false;
    bool dropComments = false;
};

/// Rewrites one text. What was written is read back and compared before anybody sees it.
class Rewriter {
public:
    Rewriter(const Globals& globals, const RewriteOptions& options)
        : mGlobals(globals),
          mOptions(options),
          mLoader(globals),
          mInput(OpenConfig(ConfigSource(options.file))) {
        if (mInput.Text() != nullptr) return;
        throw Failure(EXIT_USAGE, options.file + " is no text; \"kes convert\" makes one of it");
    }

    int Run() {
        if (const ExitCode loaded = mLoader.Load(mInput); loaded != EXIT_FINE) return loaded;
        if (mOptions.inPlace) return InPlace();
        const std::string scratch = (std::filesystem::temp_directory_path() / "kes-rewrite").string();
        OutputFile output(!mOptions.output.empty() && mOptions.output != "-" ? mOptions.output : scratch);
        if (const ExitCode written = Write(output.TemporaryPath()); written != EXIT_FINE) return written;
        if (mOptions.check) return Check(ReadWhole(output.TemporaryPath()));
        if (mOptions.output.empty() || mOptions.output == "-") {
            std::cout << ReadWhole(output.TemporaryPath());
        } else {
            output.Commit();
        }
        return EXIT_FINE;
    }

private:
    int InPlace() {
        OutputFile output(mInput.Text()->Path());
        if (const ExitCode written = Write(output.TemporaryPath()); written != EXIT_FINE) return written;
        const std::string before = ReadWhole(mInput.Text()->Path());
        const std::string after = ReadWhole(output.TemporaryPath());
        if (before == after) return EXIT_FINE;
        const std::vector<std::string> lost = CommentsMissing(before, after);
        if (!lost.empty() && !mOptions.dropComments) {
            mLoader.Messages().Report(mInput.Name(), "error",
                                      std::to_string(lost.size()) +
                                          (lost.size() == 1 ? " comment" : " comments") +
                                          " would be lost, the first of them \"" + lost.front() +
                                          "\"; nothing was written, --drop-comments allows it");
            return EXIT_FINDINGS;
        }
        output.Commit();
        return EXIT_FINE;
    }

    int Check(const std::string& text) {
        const std::string before = ReadWhole(mInput.Text()->Path());
        if (before == text) return EXIT_FINE;
        std::cout << ForOutput(UnifiedDiff(mInput.Name(), mInput.Name() + " (rewritten)", before, text));
        return EXIT_FINDINGS;
    }

    ExitCode Write(const std::string& path) {
        api::TextForm form;
        form.simple = mOptions.simple;
        form.readsBack = true;
        const api::HostString difference = ConfigWriter(mGlobals, mLoader).WriteText(path, form);
        if (difference.IsNull()) return EXIT_FINE;
        mLoader.Messages().Report(
            mInput.Name(), "error",
            "cannot be rewritten, it would not read back the same: " + Text(difference));
        return EXIT_FINDINGS;
    }

    const Globals& mGlobals;
    const RewriteOptions& mOptions;
    ConfigLoader mLoader;
    ConfigInput mInput;
};

}  // namespace

void AddRewrite(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("rewrite", "Write a configuration text in the writer's form");
    const auto options = std::make_shared<RewriteOptions>();
    command->add_option("FILE", options->file, "The text; \"-\" for standard input")->required();
    CLI::Option* output =
        command->add_option("-o,--output", options->output, "Where to write; standard output without it")
            ->type_name("FILE");
    CLI::Option* inPlace =
        command->add_flag("-i,--in-place", options->inPlace, "Replace the text itself")->excludes(output);
    command
        ->add_flag("--check", options->check,
                   "Write nothing; show what would change, and exit 1 if anything does")
        ->excludes(output)
        ->excludes(inPlace);
    command->add_flag("--simple", options->simple, "One line for each key, without comments");
    command->add_flag("--drop-comments", options->dropComments,
                      "With -i: let go of comments that are not made anew");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddExamples(*command, {{"kes rewrite --check board.ktf", "Show what would change"},
                           {"kes rewrite board.ktf -o new.ktf", "Write to another file"},
                           {"kes rewrite -i board.ktf", "Replace the text"}});
    command->footer(
        "Keys, values and places stay, their layout is made anew, and comments are made anew from the "
        "metadata: comments of your own are lost. With -i this asks for --drop-comments.\n"
        "What was written is read back and compared first. A text with errors is not rewritten.");
    command->callback([&globals, options] {
        globals.run = [&globals, options] {
            if (options->inPlace && ConfigSource(options->file).IsStandardInput()) {
                throw Failure(EXIT_USAGE, "standard input cannot be rewritten in place");
            }
            return Rewriter(globals, *options).Run();
        };
    });
}

}  // namespace kes::cli
