#pragma once

// Configurations and device images, through the real plug-ins.

#include "plugins/binary/Refusal.h"
#include "plugins/image/ImageInfo.h"
#include "support/HostSession.h"

#include <string>

namespace KesTest {

using VemoKesConfigTools::ImageFamily;
using VemoKesConfigTools::ImageGeometry;

class DeviceSession : public HostSession {
protected:
    static constexpr const char* SYSTEM = "ostrell_520_2_3";
    static constexpr std::uint16_t CHIP_ID = 76;

    /// An empty facade for the system.
    static std::unique_ptr<host::FrameworkFacade> Blank(const std::string& system = SYSTEM) {
        auto facade = std::make_unique<host::FrameworkFacade>(EXAMPLE_DATABASE);
        facade->OwningChip(ChipOf(system));
        facade->LoadBlank();
        return facade;
    }
    /// A facade with a text loaded.
    std::unique_ptr<host::FrameworkFacade> Holding(const std::string& text) {
        auto facade = Blank();
        if (text.empty()) return facade;
        EXPECT_TRUE(facade->LoadText(mFolder.Write("text.ktf", text), false)) << LastError() << "\n" << text;
        return facade;
    }

    static bool Save(host::FrameworkFacade& facade, ImageFamily family, const std::string& path) {
        switch (family) {
            case ImageFamily::Eeprom:
                return facade.SaveToDeviceKesEeprom(path, 0, 0);
            case ImageFamily::Isp:
                return facade.SaveToDeviceKesCrs(path, false);
            default:
                return facade.SaveToDeviceOstrel(path, false);
        }
    }
    static bool Load(host::FrameworkFacade& facade, ImageFamily family, const std::string& path) {
        switch (family) {
            case ImageFamily::Eeprom:
                return facade.LoadFromDeviceKesEeprom(path, false);
            case ImageFamily::Isp:
                return facade.LoadFromDeviceKesCrs(path, host::DEVICE_TYPE_ALL);
            default:
                return facade.LoadFromDeviceOstrel(path, false);
        }
    }

    /// Creates an image for the system and returns its path.
    std::string Image(ImageFamily family, std::uint32_t size, const std::string& name = "device.img") const {
        const std::string path = mFolder / name;
        ImageGeometry geometry;
        geometry.family = family;
        geometry.size = size;
        VemoKesConfigTools::CreateImage(path, geometry, /*force=*/true);
        return path;
    }

    /// The content of a facade: `SUBSYSTEM/DEVICE/STORE PSID=VALUE` for each key.
    static std::string Dump(host::FrameworkFacade& facade) {
        std::string text;
        for (const auto& value : facade.GetValues()) {
            if (!text.empty()) text += "; ";
            text += std::to_string(value->SubsystemType()) + "/" + std::to_string(value->DeviceId()) + "/" +
                    std::to_string(value->StoreId()) + " " + std::to_string(value->Psid());
            for (const std::int32_t index : value->Indexes()) text += "." + std::to_string(index);
            text += "=" + value->Value().ToNarrow();
        }
        return text;
    }
    /// The content of an image, or the error of reading it, after which the configuration must be empty.
    std::string Read(ImageFamily family, const std::string& path) {
        if (!mpReader) mpReader = Blank();
        if (Load(*mpReader, family, path)) return Dump(*mpReader);
        EXPECT_FALSE(mpReader->HasValue());
        EXPECT_NE(LastError(), "none");
        return LastError();
    }

private:
    std::unique_ptr<host::FrameworkFacade> mpReader;
};

}  // namespace KesTest
