#include "files/Disk.h"

#include <atomic>

namespace VemoKesConfigTools::files {

namespace {

/// Null while the operating system's disk is in use.
std::atomic<IDisk*> gpOtherDisk = nullptr;

}  // namespace

IDisk& Disk() {
    IDisk* const other = gpOtherDisk.load(std::memory_order_relaxed);
    return other == nullptr ? SystemDisk() : *other;
}

DiskInUse::DiskInUse(IDisk& disk) : mpBefore(gpOtherDisk.exchange(&disk)) {}

DiskInUse::~DiskInUse() { gpOtherDisk.store(mpBefore); }

}  // namespace VemoKesConfigTools::files
