// The commands device create, device info and device create-store.

#include "cli/Globals.h"
#include "cli/Help.h"
#include "files/FileLock.h"
#include "files/Files.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/ImageFormat.h"
#include "plugins/image/ImageSite.h"
#include "tool/config/ConfigAccess.h"
#include "tool/config/ConfigInput.h"
#include "tool/config/DeviceInfo.h"
#include "tool/keys/KeyAddress.h"
#include "tool/keys/Session.h"
#include "tool/output/Diagnostics.h"
#include "tool/output/ExitCodes.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kes::cli {

namespace {

using VemoKesConfigTools::ImageFamily;
namespace files = VemoKesConfigTools::files;

struct DeviceOptions {
    std::string device;
    std::string size;
    std::vector<std::string> memories;
    std::string i2cMask;
    bool force = false;
    std::string location;
    std::string store;
    std::string application;
    bool paired = false;
};

/// Where stores can be made, by their words.
const std::map<std::string, api::DeviceNvsTypes> LOCATIONS = {
    {"otp", api::DEVICE_TYPE_OTP}, {"smem", api::DEVICE_TYPE_SMEM}, {"mtp", api::DEVICE_TYPE_MTP}};

constexpr const char* DEVICE_HELP = "The device: eeprom:, isp: or kld: and its image";
constexpr const char* SIZE_HELP = "In bytes; K or M behind the number stands for 1024 or 1024 * 1024 of them";

ConfigSource DeviceOf(const DeviceOptions& options) {
    ConfigSource source(options.device);
    if (source.IsDevice()) return source;
    throw Failure(EXIT_USAGE, "\"" + options.device + "\" is no device: eeprom:, isp: or kld: and its image");
}

ImageFamily FamilyOf(const ConfigSource& device) {
    if (device.kind == ConfigKind::ISP) return ImageFamily::Isp;
    return device.kind == ConfigKind::KLD ? ImageFamily::Kld : ImageFamily::Eeprom;
}

std::uint32_t ParseUpTo(std::uint32_t most, const std::string& text, const char* what) {
    const std::optional<std::uint32_t> number = ParseKeyNumber(text);
    if (number && *number <= most) return *number;
    throw Failure(EXIT_USAGE,
                  "\"" + text + "\" is no " + what + ": a number from 0 to " + std::to_string(most));
}

/// "512", "64K", "1M".
std::uint32_t ParseSize(const std::string& text) {
    constexpr std::uint32_t LARGEST = std::numeric_limits<std::int32_t>::max();
    constexpr std::uint32_t KIBI = 1024;
    const char unit = text.empty() ? '\0' : text.back();
    const std::uint32_t factor = unit == 'K' ? KIBI : unit == 'M' ? KIBI * KIBI : 1;
    const auto number = ParseKeyNumber(factor == 1 ? text : text.substr(0, text.size() - 1));
    if (number && *number != 0 && *number <= LARGEST / factor) return *number * factor;
    throw Failure(EXIT_USAGE, "\"" + text + "\" is no size: a number of bytes, or of 1024 of them as in 64K");
}

/// NAME=SIZE, with the name as the family has it.
VemoKesConfigTools::MemorySize ParseMemory(ImageFamily family, const std::string& text) {
    constexpr std::int32_t DEVICES[] = {api::DEVICE_TYPE_OTP,    api::DEVICE_TYPE_SMEM,
                                        api::DEVICE_TYPE_MTP,    api::DEVICE_TYPE_CUR_CFG,
                                        api::DEVICE_TYPE_FW_CFG, api::DEVICE_TYPE_DEV_CFG};
    const std::string name = text.substr(0, text.find('='));
    if (name.size() == text.size())
        throw Failure(EXIT_USAGE, "\"" + text + "\" is no memory: NAME=SIZE, as in smem=16K");
    for (const std::int32_t device : DEVICES) {
        if (VemoKesConfigTools::NameOfMemory(family, device) == name)
            return {device, ParseSize(text.substr(name.size() + 1))};
    }
    throw Failure(EXIT_USAGE, "no device has a memory \"" + name + "\"");
}

/// Does what may refuse an image, under its lock, and reports the refusal.
int WithImage(const Globals& globals, const ConfigSource& device, files::LockMode access,
              const std::function<void()>& work) {
    const auto report = [&](const VemoKesConfigTools::Refusal& refusal) {
        const std::string text = VemoKesConfigTools::TextOf(refusal, device.target);
        Diagnostics(globals.noColor).Report(device.word, "error", text);
        return ExitOf({{0, text}});
    };
    try {
        const files::FileLock lock(PathOf(device), access, globals.lockWait);
        work();
        return EXIT_FINE;
    } catch (const VemoKesConfigTools::Refusal& refusal) {
        return report(refusal);
    } catch (const files::FileError& error) {
        return report(VemoKesConfigTools::ToRefusal(error, device.target));
    }
}

/// Refuses what an image cannot take the place of: the node of a device stays a node.
void CheckNode(const ConfigSource& device, std::uint32_t size) {
    const std::string path = PathOf(device);
    const auto status = files::Look(path);
    if (!status || status->kind == files::FileKind::REGULAR) return;
    if (status->kind != files::FileKind::BLOCK_DEVICE)
        throw Failure(EXIT_USAGE,
                      device.word + ": is neither a file nor a block device; nothing was written");
    const std::uint64_t capacity = VemoKesConfigTools::LookAtSite(path).size;
    if (capacity == size) return;
    throw Failure(EXIT_USAGE, device.word + ": is a block device of " + std::to_string(capacity) +
                                  " bytes, not of " + std::to_string(size) + "; nothing was written");
}

int Create(const Globals& globals, const DeviceOptions& options) {
    const ConfigSource device = DeviceOf(options);
    VemoKesConfigTools::ImageGeometry geometry;
    geometry.family = FamilyOf(device);
    geometry.size = ParseSize(options.size);
    if (!options.i2cMask.empty()) {
        if (device.kind != ConfigKind::EEPROM) throw Failure(EXIT_USAGE, "--i2c-mask is for eeprom:...");
        geometry.i2cMask = ParseUpTo(std::numeric_limits<std::int32_t>::max(), options.i2cMask, "mask");
    }
    for (const std::string& memory : options.memories)
        geometry.memories.push_back(ParseMemory(geometry.family, memory));
    if (!globals.chip.empty()) {
        const std::shared_ptr<api::Chip> chip = Session(globals).FindChip(globals.chip);
        geometry.chipId = chip->ChipId();
        geometry.systemLabel = Text(chip->SystemVersionLabel());
    }
    return WithImage(globals, device, files::LockMode::EXCLUSIVE, [&] {
        CheckNode(device, geometry.size);
        VemoKesConfigTools::CreateImage(device.target, geometry, options.force);
    });
}

int Info(const Globals& globals, const DeviceOptions& options) {
    const ConfigSource device = DeviceOf(options);
    return WithImage(globals, device, files::LockMode::SHARED, [&] {
        const VemoKesConfigTools::ImageInfo info = VemoKesConfigTools::ReadImageInfo(device.target);
        if (info.family != FamilyOf(device)) {
            const std::string family(VemoKesConfigTools::NameOf(info.family));
            throw Failure(EXIT_FINDINGS, device.word + ": is an image of the family " + family + "; write " +
                                             family + ":" + device.target);
        }
        const Json document = InfoDocument(device.word, info);
        globals.json ? PrintJson(document) : PrintInfo(document);
    });
}

int CreateStore(const Globals& globals, const DeviceOptions& options) {
    constexpr std::uint32_t LAST_ID = 65535;
    const ConfigSource device = DeviceOf(options);
    if (device.kind != ConfigKind::KLD)
        throw Failure(EXIT_USAGE, "stores are made on kld:... only; the other families have theirs");
    const api::DeviceNvsTypes location = LOCATIONS.at(options.location);
    if (options.paired && location != api::DEVICE_TYPE_SMEM)
        throw Failure(EXIT_USAGE, "--paired is for --device smem");
    const auto store = static_cast<std::int32_t>(ParseUpTo(LAST_ID, options.store, "store"));
    const auto size = static_cast<std::int32_t>(ParseSize(options.size));
    const auto application =
        static_cast<std::int32_t>(ParseUpTo(LAST_ID, options.application, "application id"));
    const Session session(globals);
    api::FrameworkFacade facade(globals.database);
    const files::FileLock lock(PathOf(device), files::LockMode::EXCLUSIVE, globals.lockWait);
    const Listener listener;
    if (facade.CreateKeyStore(device.target, location, store, size, application, options.paired))
        return EXIT_FINE;
    for (const auto& [number, text] : listener.OtherErrors())
        Diagnostics(globals.noColor).Report(device.word, "error", text);
    return ExitOf(listener.OtherErrors());
}

void AddDeviceOption(CLI::App& command, DeviceOptions& options) {
    command.add_option("IMAGE", options.device, DEVICE_HELP)->required();
}

void AddCreate(CLI::App& device, Globals& globals) {
    CLI::App* command = device.add_subcommand("create", "Make an image of a device, without any key");
    const auto options = std::make_shared<DeviceOptions>();
    AddDeviceOption(*command, *options);
    command->add_option("--size", options->size, SIZE_HELP)->required()->option_text("SIZE");
    command
        ->add_option(
            "--memory", options->memories,
            "Size of a memory: otp, smem, mtp, eeprom of kld; cur_cfg, fw_cfg, dev_cfg of isp. All of "
            "them, or none for fixed parts of the image")
        ->option_text("NAME=SIZE")
        ->allow_extra_args(false);
    command->add_option("--i2c-mask", options->i2cMask, "Of an eeprom: the mask of its address")
        ->option_text("N");
    command->add_flag("--force", options->force, "Replace a file that is there, whatever it is");
    AddLockOption(*command, globals);
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    command->get_option("--chip")->description(
        "Firmware system that the device is for, by its version label (environment: KES_CHIP; without both: "
        "any)");
    AddExamples(*command, {{"kes device create eeprom:board.img --size 64K", "An EEPROM"},
                           {"kes device create kld:board.img --size 256K --chip ostrell_520_2_3",
                            "A device for one system"}});
    command->footer(
        "Nothing is replaced without --force but a blank file of this size, all of whose bytes are 0x00 or "
        "all 0xFF.\n"
        "Exit code: 0 done, 1 the sizes cannot be, or something is there, 2 wrong usage, 3 the file cannot "
        "be "
        "written.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Create(globals, *options); }; });
}

void AddInfo(CLI::App& device, Globals& globals) {
    CLI::App* command = device.add_subcommand("info", "Tell how an image of a device is laid out and filled");
    const auto options = std::make_shared<DeviceOptions>();
    AddDeviceOption(*command, *options);
    AddJsonOption(*command, globals);
    AddLockOption(*command, globals);
    AddExamples(*command, {{"kes device info kld:board.img", "Memories and stores"}});
    command->footer(
        "Sizes are in bytes, those of a store are of one of its banks, free is what a content can grow by. "
        "Banks are told with their sequence numbers: current is what counts.\n"
        "Exit code: 0 told, 1 the image is damaged or of another family, 2 wrong usage, 3 the file cannot be "
        "read.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Info(globals, *options); }; });
}

void AddCreateStore(CLI::App& device, Globals& globals) {
    CLI::App* command = device.add_subcommand("create-store", "Make a store on a device of the family kld");
    const auto options = std::make_shared<DeviceOptions>();
    options->application = "0";
    AddDeviceOption(*command, *options);
    command->add_option("--device", options->location, "Where: otp, smem or mtp")
        ->required()
        ->check(CLI::IsMember(LOCATIONS))
        ->option_text("LOCATION");
    command->add_option("--store", options->store, "The number of the store")->required()->option_text("N");
    command->add_option("--size", options->size, SIZE_HELP)->required()->option_text("SIZE");
    command->add_option("--application", options->application, "The id of the application that it is for")
        ->option_text("N");
    AddLockOption(*command, globals);
    command->add_flag("--paired", options->paired, "Keep everything twice; on smem only");
    AddDatabaseOptions(*command, globals, /*withChip=*/false);
    AddExamples(*command, {{"kes device create-store kld:board.img --device smem --store 4 --size 2K",
                            "Make a store"}});
    command->footer(
        "Exit code: 0 done, 1 the store is there already, or cannot be, 2 wrong usage, 3 the device is full, "
        "or "
        "the file or a plug-in failed.");
    command->callback([&globals, options] {
        globals.run = [&globals, options] { return CreateStore(globals, *options); };
    });
}

}  // namespace

void AddDevice(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("device", "Make images of devices, and look into them");
    command->require_subcommand(1);
    AddCreate(*command, globals);
    AddInfo(*command, globals);
    AddCreateStore(*command, globals);
}

}  // namespace kes::cli
