#include "listing/BlockDevice.h"

#include "base/FileURL.h"
#include "listing/POSIX.h"

#include <blkid.h>
#include <libudev.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace ombrel {
namespace {

struct Release {
    void operator()(udev* context) const noexcept { udev_unref(context); }
    void operator()(udev_device* device) const noexcept { udev_device_unref(device); }
    void operator()(blkid_struct_probe* probe) const noexcept { blkid_free_probe(probe); }
};
using Context = std::unique_ptr<udev, Release>;
using Device = std::unique_ptr<udev_device, Release>;
using Probe = std::unique_ptr<blkid_struct_probe, Release>;

std::string textOf(const char* text) {
    return text ? text : std::string();
}

std::string property(udev_device* device, const char* name) {
    return textOf(udev_device_get_property_value(device, name));
}

bool isSet(udev_device* device, const char* attribute) {
    return textOf(udev_device_get_sysattr_value(device, attribute)) == "1";
}

/// udev writes bytes that are no plain letters as "\x20".
std::string unescaped(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto digits = text.substr(std::min(i + 2, text.size()), 2);
        const bool isEscape = text.substr(i).starts_with("\\x") && digits.size() == 2 &&
                              digits.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
        if (isEscape) {
            bytes.push_back(static_cast<char>(std::stoi(std::string(digits), nullptr, 16)));
            i += 3;
        } else {
            bytes.push_back(text[i]);
        }
    }
    return bytes;
}

bool hasSubsystemAbove(udev_device* device, const char* subsystem) {
    return udev_device_get_parent_with_subsystem_devtype(device, subsystem, nullptr) != nullptr;
}

/// The whole disk that a partition is on; the device itself when it is none.
udev_device* diskOf(udev_device* device) {
    udev_device* const disk = udev_device_get_parent_with_subsystem_devtype(device, "block", "disk");
    return disk ? disk : device;
}

bool isCardSlot(udev_device* disk) {
    udev_device* card = udev_device_get_parent_with_subsystem_devtype(disk, "mmc", nullptr);
    return card && textOf(udev_device_get_sysattr_value(card, "type")) == "SD";
}

bool isPluggedIn(udev_device* disk) {
    return hasSubsystemAbove(disk, "usb") || hasSubsystemAbove(disk, "firewire") ||
           hasSubsystemAbove(disk, "memstick");
}

void readDrive(BlockDevice& facts, udev_device* device) {
    udev_device* const disk = diskOf(device);
    const bool isCard = isCardSlot(disk);
    const bool isPlugged = isPluggedIn(disk);
    facts.isRemovable = isSet(disk, "removable") || isCard || hasSubsystemAbove(disk, "memstick");
    const bool isImage = udev_device_get_sysattr_value(disk, "loop/backing_file") != nullptr;
    facts.isEjectable = facts.isRemovable || isPlugged || isImage;
    facts.isInternal = !isPlugged && !isCard;
}

/// The devices that a layer such as an encrypted volume is made of.
std::vector<std::string> partsOf(const std::string& systemPath) {
    std::vector<std::string> parts;
    const auto folder = FileURL::fromPath(systemPath + "/slaves");
    if (!folder) return parts;
    auto stream = POSIX::openDirectory(*folder);
    if (!stream) return parts;
    for (;;) {
        const auto entry = POSIX::readEntry(*stream);
        if (!entry || !*entry) return parts;
        parts.push_back(folder->path() + "/" + std::string((*entry)->name));
    }
}

void collectDrives(udev* context, udev_device* device, int layers, std::vector<BlockDrive>& drives) {
    constexpr int mostLayers = 16;
    udev_device* const disk = diskOf(device);
    const auto parts = partsOf(textOf(udev_device_get_syspath(disk)));
    if (!parts.empty() && layers < mostLayers) {
        for (const auto& path : parts)
            if (const Device part{udev_device_new_from_syspath(context, path.c_str())})
                collectDrives(context, part.get(), layers + 1, drives);
        return;
    }
    const BlockDrive drive{udev_device_get_devnum(disk), isSet(disk, "queue/rotational"),
                           isSet(disk, "removable") || isCardSlot(disk) || isPluggedIn(disk)};
    if (std::ranges::find(drives, drive) == drives.end()) drives.push_back(drive);
}

/// What udev did not find out.
void probe(BlockDevice& facts) {
    const Probe probe(blkid_new_probe_from_filename(facts.path.c_str()));
    if (!probe) return;
    blkid_probe_enable_superblocks(probe.get(), 1);
    blkid_probe_set_superblocks_flags(probe.get(),
                                      BLKID_SUBLKS_TYPE | BLKID_SUBLKS_LABEL | BLKID_SUBLKS_UUID);
    if (blkid_do_safeprobe(probe.get()) != 0) return;
    const auto value = [&](const char* name) {
        const char* text = nullptr;
        return blkid_probe_lookup_value(probe.get(), name, &text, nullptr) == 0 ? textOf(text)
                                                                                : std::string();
    };
    facts.format = value("TYPE");
    facts.label = value("LABEL");
    facts.uuid = value("UUID");
}

} // namespace

std::optional<BlockDevice> BlockDevice::of(std::uint64_t number) {
    if (SystemCall::gate(SystemCall::Kind::fileSystem)) return std::nullopt;
    const Context context(udev_new());
    if (!context) return std::nullopt;
    const Device device(udev_device_new_from_devnum(context.get(), 'b', number));
    if (!device) return std::nullopt;
    BlockDevice facts;
    facts.number = number;
    facts.path = textOf(udev_device_get_devnode(device.get()));
    facts.format = property(device.get(), "ID_FS_TYPE");
    facts.label = unescaped(property(device.get(), "ID_FS_LABEL_ENC"));
    facts.uuid = property(device.get(), "ID_FS_UUID");
    if (facts.format.empty() && !facts.path.empty()) probe(facts);
    readDrive(facts, device.get());
    return facts;
}

std::optional<std::uint64_t> BlockDevice::numberOf(const std::string& path) {
    const auto url = FileURL::fromPath(path);
    if (!url || !url->path().starts_with("/dev/")) return std::nullopt;
    const auto status = POSIX::statFollowing(*url);
    if (!status || status->type() != S_IFBLK) return std::nullopt;
    return status->deviceNumber;
}

std::vector<BlockDrive> BlockDrive::under(std::uint64_t blockDevice) {
    std::vector<BlockDrive> drives;
    if (SystemCall::gate(SystemCall::Kind::fileSystem)) return drives;
    const Context context(udev_new());
    if (!context) return drives;
    if (const Device device{udev_device_new_from_devnum(context.get(), 'b', blockDevice)})
        collectDrives(context.get(), device.get(), 0, drives);
    return drives;
}

} // namespace ombrel
