#include "cli/Globals.h"
#include "cli/Help.h"
#include "files/Files.h"
#include "tool/config/ConfigWriter.h"
#include "tool/config/OutputFile.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Printable.h"
#include "tool/output/UnifiedDiff.h"

#include <CLI/CLI.hpp>
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
    OutputOptions replace;
};

/// Rewrites one text. What is written is read back and compared before anybody sees it.
class Rewriter {
public:
    Rewriter(const Globals& globals, const RewriteOptions& options)
        : mGlobals(globals),
          mOptions(options),
          mTarget(options.inPlace ? options.file : options.output),
          mLoader(globals),
          mInput(OpenConfig(globals, ConfigSource(options.file), AccessFor(options.file, mTarget))) {
        if (mInput.Text() != nullptr) return;
        throw Failure(EXIT_USAGE, options.file + " is not a text; \"kes convert\" makes one of it");
    }

    int Run() {
        if (const ExitCode loaded = mLoader.Load(mInput); loaded != EXIT_FINE) return loaded;
        api::TextForm form;
        form.simple = mOptions.simple;
        form.readsBack = true;
        ConfigWriter writer(mGlobals, mLoader);
        std::string text;
        const api::HostString difference = writer.RenderText(text, form);
        if (!difference.IsNull()) {
            mLoader.Messages().Report(
                mInput.Name(), "error",
                "cannot be rewritten, it would not read back the same: " + Text(difference));
            return EXIT_FINDINGS;
        }
        if (mOptions.check) return Check(text);
        if (mTarget.empty() || IsStandardOutput(mTarget)) {
            std::cout << text;
            return EXIT_FINE;
        }
        const OutputFile output(mGlobals, mTarget, ConfigTextKind(mGlobals, mLoader), mOptions.replace);
        return writer.ReplaceText(mInput, output, text, mOptions.dropComments);
    }

private:
    /// A text that is replaced is locked before it is read.
    static InputAccess AccessFor(const std::string& file, const std::string& target) {
        if (target.empty() || IsStandardOutput(target)) return InputAccess::READ;
        const auto first = VemoKesConfigTools::files::Look(file);
        const auto second = VemoKesConfigTools::files::Look(target);
        return first && second && first->IsSameFile(*second) ? InputAccess::CHANGE : InputAccess::READ;
    }

    int Check(const std::string& text) {
        const std::string& before = mInput.Text()->Content();
        if (before == text) return EXIT_FINE;
        std::cout << ForOutput(UnifiedDiff(mInput.Name(), mInput.Name() + " (rewritten)", before, text));
        return EXIT_FINDINGS;
    }

    const Globals& mGlobals;
    const RewriteOptions& mOptions;
    std::string mTarget;  ///< empty for standard output
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
                      "Where the text itself is replaced: lose the comments that are not made anew");
    AddForceOption(*command, options->replace);
    AddLockOption(*command, globals);
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddExamples(*command, {{"kes rewrite --check board.ktf", "Show what would change"},
                           {"kes rewrite board.ktf -o new.ktf", "Write to another file"},
                           {"kes rewrite -i board.ktf", "Replace the text"}});
    command->footer(
        "Keys, values and places stay, their layout is made anew, and comments are made anew from the "
        "metadata: comments of your own are lost. Replacing the text itself then needs --drop-comments.\n"
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
