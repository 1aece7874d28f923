#include "cli/Globals.h"
#include "cli/Help.h"
#include "files/FileLock.h"
#include "files/Files.h"
#include "tool/config/ConfigWriter.h"
#include "tool/config/OutputFile.h"
#include "tool/keys/DeviceWords.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Printable.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <string>

namespace kes::cli {

namespace files = VemoKesConfigTools::files;

namespace {

/// The store sets of the family isp, by their words.
const std::map<std::string, api::DeviceNvsTypes> STORE_SETS = {
    {"all", api::DEVICE_TYPE_ALL},
    {"cur_cfg", api::DEVICE_TYPE_CUR_CFG},
    {"fw_cfg", api::DEVICE_TYPE_FW_CFG},
    {"dev_cfg", api::DEVICE_TYPE_DEV_CFG},
};

struct ConvertOptions {
    std::string from;
    std::string to;
    std::string storeSet;
    SaveOptions save;
    OutputOptions output;
    bool simple = false;
    bool dropComments = false;
    bool verbose = false;
};

/// Refuses options that have no meaning for what is converted.
void CheckOptions(const ConvertOptions& options, const ConfigSource& from, const ConfigSource& to) {
    const auto need = [](bool isGiven, bool fits, const char* text) {
        if (isGiven && !fits) throw Failure(EXIT_USAGE, text);
    };
    need(!options.storeSet.empty(), from.kind == ConfigKind::ISP, "--store-set is for FROM isp:...");
    need(options.save.reset, to.kind == ConfigKind::ISP, "--reset is for TO isp:...");
    need(options.save.merge, to.kind == ConfigKind::KLD, "--merge is for TO kld:...");
    need(options.simple, to.IsText(), "--simple is for a text");
}

ExitCode ToText(const Globals& globals, ConfigLoader& loader, ConfigWriter& writer,
                const ConvertOptions& options, const ConfigInput& input, const ConfigSource& to) {
    api::TextForm form;
    form.simple = options.simple;
    form.readsBack = true;
    std::string text;
    const api::HostString difference = writer.RenderText(text, form);
    if (!difference.IsNull()) {
        loader.Messages().Report(input.Name(), "error",
                                 "cannot be a text, it would not read back the same: " + Text(difference));
        return EXIT_FINDINGS;
    }
    if (IsStandardOutput(to.target)) {
        std::cout << text;
        return EXIT_FINE;
    }
    const OutputFile output(globals, to.target, ConfigTextKind(globals, loader), options.output);
    return writer.ReplaceText(input, output, text, options.dropComments);
}

/// Whether two configurations are one file or folder.
bool AreSame(const ConfigSource& from, const ConfigSource& to) {
    const auto first = files::Look(PathOf(from));
    const auto second = files::Look(PathOf(to));
    return first && second && first->IsSameFile(*second);
}

ExitCode ToBinary(const Globals& globals, ConfigWriter& writer, const ConvertOptions& options,
                  const ConfigSource& to) {
    const files::FileLock lock(PathOf(to), files::LockMode::EXCLUSIVE, globals.lockWait);
    if (to.kind == ConfigKind::CHUNKS && !options.output.force) CheckChunkFolder(to.target);
    return writer.Save(to, options.save);
}

/// Says on standard error what was written, so that a text can go to standard output.
void PrintWritten(ConfigLoader& loader, const ConfigSource& to) {
    std::size_t keys = 0;
    std::size_t places = 0;
    for (const auto& place : loader.Facade().GetPlaces()) {
        keys += place->KeyCount();
        if (place->KeyCount() != 0) ++places;
    }
    PrintError(Printable(to.word) + ": " + std::to_string(keys) + (keys == 1 ? " key in " : " keys in ") +
               std::to_string(places) + (places == 1 ? " place of " : " places of ") +
               Printable(Text(loader.Chip()->SystemVersionLabel())) + " written\n");
}

int Run(const Globals& globals, const ConvertOptions& options) {
    ConfigSource from(options.from);
    const ConfigSource to(options.to);
    CheckOptions(options, from, to);
    if (!options.storeSet.empty()) from.storeSet = STORE_SETS.at(options.storeSet);
    // Of two different ones only one is locked at a time, so that nobody waits for somebody who waits.
    const bool isSame = AreSame(from, to);
    ConfigInput input = OpenConfig(globals, from, isSame ? InputAccess::CHANGE : InputAccess::READ);
    ConfigLoader loader(globals);
    if (const ExitCode loaded = loader.Load(input); loaded != EXIT_FINE) return loaded;
    ConfigWriter writer(globals, loader);
    if (!isSame) input.Unlock();
    const ExitCode written = to.IsText() ? ToText(globals, loader, writer, options, input, to)
                                         : ToBinary(globals, writer, options, to);
    if (written == EXIT_FINE && options.verbose) PrintWritten(loader, to);
    return written;
}

}  // namespace

void AddConvert(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("convert", "Write a configuration as one of another kind");
    const auto options = std::make_shared<ConvertOptions>();
    command->add_option("FROM", options->from, CONFIG_HELP)->required();
    command->add_option("TO", options->to, "Where to: the same; \"-\" for standard output")->required();
    command->add_flag("--simple", options->simple, "To a text: one line for each key, without comments");
    command->add_flag("--merge", options->save.merge,
                      "To kld: keys of the device that FROM does not have stay; without it the device then "
                      "holds exactly FROM");
    command->add_flag("--reset", options->save.reset, "To isp: reset the device afterwards");
    command->add_option("--store-set", options->storeSet, "From isp: only this store set (default: all)")
        ->check(CLI::IsMember(STORE_SETS))
        ->option_text("SET");
    command->add_flag("--drop-comments", options->dropComments,
                      "Where FROM and TO are one text: lose the comments that are not made anew");
    AddForceOption(*command, options->output);
    AddLockOption(*command, globals);
    command->add_flag("-v,--verbose", options->verbose, "Say what was written");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddExamples(*command, {{"kes convert board.ktf chunks/", "A text to a folder of chunk files"},
                           {"kes convert board.ktf eeprom:board.img", "A text to a device"},
                           {"kes convert kld:board.img -", "A device to a text"},
                           {"kes convert board.ktf kld:board.img --merge", "Add a text to a device"}});
    command->footer(
        "FROM is loaded whole or not at all, and what was written is loaded again and compared. A text is "
        "written as \"kes rewrite\" does. Chunk files that TO has and FROM does not are removed. A device is "
        "made by \"kes device create\". On isp the store sets that FROM has no place in stay as they are.\n"
        "Exit code: 0 done, 1 FROM has errors, or TO is not for it, 2 wrong usage, 3 the device is full, or "
        "a "
        "file, database or plug-in failed.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Run(globals, *options); }; });
}

}  // namespace kes::cli
