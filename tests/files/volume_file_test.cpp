// volume_file_c on a volume that is an image file: the boot sector read, fitted to the disk and
// written back, the position kept, the lock taken and given back, and extend_volume on the image.
// An image file has the geometry of a fixed disk of 512-byte sectors, 255 heads and 63 sectors
// per track. Under wine the volume control codes are fakes, so the tests that need them skip
// there.
#include "files/volume_file.h"

#include "common/test_support.h"
#include "files/file_modif.h"
#include "files/storage_info.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

using sector_t = std::array<std::uint8_t, 512>;
using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::trace_line;

std::uint16_t get16(const std::uint8_t* b, unsigned at) {
    return static_cast<std::uint16_t>(b[at] | (b[at + 1] << 8));
}
void put16(std::uint8_t* b, unsigned at, std::uint16_t v) {
    b[at] = static_cast<std::uint8_t>(v);
    b[at + 1] = static_cast<std::uint8_t>(v >> 8);
}
void put32(std::uint8_t* b, unsigned at, std::uint32_t v) {
    put16(b, at, static_cast<std::uint16_t>(v));
    put16(b, at + 2, static_cast<std::uint16_t>(v >> 16));
}

std::string bytes_of(const std::string& path) { return test_support::read_file(path); }

sector_t first_sector(const std::string& path) {
    sector_t s{};
    std::string all = bytes_of(path);
    std::memcpy(s.data(), all.data(), std::min<std::size_t>(all.size(), s.size()));
    return s;
}

// A FAT32 boot sector of the given geometry stating `total` sectors, in an image of `bytes`.
std::string make_fat32_image(const temp_dir_c& dir, std::uint64_t bytes, std::uint16_t per_track,
                             std::uint16_t heads, std::uint32_t total,
                             std::uint16_t signature = 0xAA55) {
    std::string image = dir.join("volume.img");
    std::string content(bytes, '\0');
    std::mt19937 random(5);
    for (std::size_t i = 0; i < std::min<std::uint64_t>(bytes, 4096); ++i)
        content[i] = static_cast<char>(random());
    if (bytes >= 512) {
        auto* b = reinterpret_cast<std::uint8_t*>(content.data());
        std::memcpy(b + 3, "MSWIN4.1", 8);
        put16(b, 11, 512);
        b[13] = 8;
        put16(b, 19, 0);
        put16(b, 24, per_track);
        put16(b, 26, heads);
        put32(b, 28, 0);
        put32(b, 32, total);
        std::memcpy(b + 82, "FAT32   ", 8);
        put16(b, 510, signature);
    }
    test_support::write_file(image, content);
    return image;
}

bool volume_codes_are_real() { return !test_support::on_windows(); }
const char* fake_reason = "the volume control codes on an image file are this build's own on "
                          "POSIX; under wine (and on Windows) a plain file is no volume";

TEST(VolumeFile, CorrectBootSectorFitsTheImageGeometryAndKeepsThePosition) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    trace_capture_c capture;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 32, 16, 2048);
    sector_t original = first_sector(image);
    std::string before = bytes_of(image);
    FILE_c file;
    ASSERT_TRUE(file.open(image.c_str(), "r+", nullptr, 0));
    ASSERT_TRUE(file.seek(1234));
    volume_file_c volume(&file);
    EXPECT_NE(volume.buffer, nullptr);
    EXPECT_EQ(volume.buffer_size, 65552u);
    EXPECT_TRUE(volume.correct_boot_sector(original.data(), true));
    EXPECT_EQ(file.tell(), 1234);
    EXPECT_TRUE(file.close());
    std::string after = bytes_of(image);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (i != 24 && i != 26) {
            EXPECT_EQ(after[i], before[i]) << i;
        }
    }
    sector_t now = first_sector(image);
    EXPECT_EQ(get16(now.data(), 24), 63);
    EXPECT_EQ(get16(now.data(), 26), 255);
    std::string text = capture.text();
    EXPECT_FALSE(trace_line(text, "begin to check boot sector of " + image + ".").empty()) << text;
    EXPECT_FALSE(trace_line(text, "successfully update boot sector " + image + ".").empty())
        << text;
}

TEST(VolumeFile, UpToDateBootSectorIsNotWritten) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    trace_capture_c capture;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 63, 255, 2048);
    sector_t original = first_sector(image);
    std::string before = bytes_of(image);
    {
        FILE_c file;
        ASSERT_TRUE(file.open(image.c_str(), "r", nullptr, 0));
        volume_file_c volume(&file);
        // The file is open for reading only: a write would fail, so success means none was made.
        EXPECT_TRUE(volume.correct_boot_sector(original.data(), true));
        EXPECT_TRUE(file.close());
    }
    EXPECT_EQ(bytes_of(image), before);
    EXPECT_FALSE(trace_line(capture.text(), "boot sector is up to date " + image + ".").empty())
        << capture.text();
}

TEST(VolumeFile, InconsistentVolumeGetsTheMarker) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 63, 255, 2048);
    sector_t original = first_sector(image);
    FILE_c file;
    ASSERT_TRUE(file.open(image.c_str(), "r+", nullptr, 0));
    volume_file_c volume(&file);
    EXPECT_TRUE(volume.correct_boot_sector(original.data(), false));
    EXPECT_TRUE(file.close());
    sector_t now = first_sector(image);
    EXPECT_EQ(get16(now.data(), 510), 0x5156);
    bool consistent = true;
    EXPECT_TRUE(storage_info_n::consistency_of_bs(now.data(), u"FAT32", &consistent));
    EXPECT_FALSE(consistent);
}

TEST(VolumeFile, ReadOnlyImageFailsToWriteBackAndIsUnchanged) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    trace_capture_c capture;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 32, 16, 2048);
    sector_t original = first_sector(image);
    std::string before = bytes_of(image);
    std::filesystem::permissions(image, std::filesystem::perms::owner_read |
                                            std::filesystem::perms::group_read |
                                            std::filesystem::perms::others_read);
    FILE_c file;
    ASSERT_TRUE(file.open(image.c_str(), "r", nullptr, 0));
    ASSERT_TRUE(file.seek(700));
    volume_file_c volume(&file);
    EXPECT_FALSE(volume.correct_boot_sector(original.data(), true));
    EXPECT_EQ(file.tell(), 700);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(bytes_of(image), before);
    std::string text = capture.text();
    EXPECT_TRUE(text.find("failed to write back boot sector " + image + " (0x") !=
                std::string::npos)
        << text;
}

TEST(VolumeFile, TotalSectorsOfTheImage) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 63, 255, 2000);
    FILE_c file;
    ASSERT_TRUE(file.open(image.c_str(), "r", nullptr, 0));
    ASSERT_TRUE(file.seek(99));
    volume_file_c volume(&file);
    std::uint64_t total = 0;
    EXPECT_TRUE(volume.get_total_sectors(&total));
    EXPECT_EQ(total, 2000u);
    EXPECT_EQ(file.tell(), 99);
    EXPECT_EQ(file.file_system_name, std::u16string(u"FAT32"));
}

// Images of 0 and 511 bytes and a boot sector of random bytes name no file system: the job stops
// before it reads or writes, and the image keeps every byte and its size.
TEST(VolumeFile, ImagesThatNameNoFileSystemAreLeftAlone) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    for (std::uint64_t bytes : {0u, 511u, 4096u}) {
        trace_capture_c capture;
        temp_dir_c dir;
        std::string image = dir.join("volume.img");
        std::string content(bytes, '\0');
        std::mt19937 random(static_cast<unsigned>(bytes));
        for (char& c : content) c = static_cast<char>(random());
        test_support::write_file(image, content);
        sector_t original{};
        FILE_c file;
        ASSERT_TRUE(file.open(image.c_str(), "r+", nullptr, 0));
        volume_file_c volume(&file);
        EXPECT_FALSE(volume.correct_boot_sector(original.data(), false));
        std::uint64_t total = 7;
        EXPECT_FALSE(volume.get_total_sectors(&total));
        EXPECT_EQ(total, 7u);
        EXPECT_TRUE(file.close());
        EXPECT_EQ(bytes_of(image), content) << bytes;
        EXPECT_FALSE(
            trace_line(capture.text(), "failed to get file system of " + image + ".").empty())
            << capture.text();
    }
}

TEST(VolumeFile, LockAndUnlockAnImage) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    trace_capture_c capture;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 63, 255, 2048);
    FILE_c file;
    ASSERT_TRUE(file.open(image.c_str(), "r+", nullptr, 0));
    os::HANDLE handle = file.get_file_handle();
    bool locked = false;
    EXPECT_TRUE(volume_file_c::_lock_volume(handle, image.c_str(), &locked));
    EXPECT_TRUE(locked);
    // Already locked: true at once.
    EXPECT_TRUE(volume_file_c::_lock_volume(handle, image.c_str(), &locked));
    EXPECT_TRUE(volume_file_c::unlock_volume(handle, image.c_str(), &locked));
    EXPECT_FALSE(locked);
    // Not locked: false.
    EXPECT_FALSE(volume_file_c::unlock_volume(handle, image.c_str(), &locked));
    EXPECT_TRUE(file.close());
    std::string text = capture.text();
    EXPECT_FALSE(trace_line(text, "Successfully to lock volume " + image + ".").empty()) << text;
    EXPECT_FALSE(trace_line(text, "Successfully to unlock volume " + image + ".").empty()) << text;
}

// The caller believes the volume locked, but this open holds no lock: five tries a second apart,
// then false with the system's error, and `locked` stays as it was.
TEST(VolumeFile, UnlockOfAVolumeThatThisOpenDidNotLockFailsAfterFiveTries) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    trace_capture_c capture;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 63, 255, 2048);
    FILE_c file;
    ASSERT_TRUE(file.open(image.c_str(), "r+", nullptr, 0));
    bool locked = true;
    EXPECT_FALSE(volume_file_c::unlock_volume(file.get_file_handle(), image.c_str(), &locked));
    EXPECT_TRUE(locked);
    EXPECT_TRUE(file.close());
    std::string line =
        trace_line(capture.text(), "Unlock volume " + image + " failed, the error is " +
                                       std::to_string(os::ERROR_NOT_LOCKED) + ".");
    EXPECT_NE(line.find("level=4 "), std::string::npos) << capture.text();
}

// A second open of the image keeps it from being locked: the lock is refused by the system.
TEST(VolumeFile, ImageOpenElsewhereRefusesTheLockCode) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 63, 255, 2048);
    FILE_c first, second;
    ASSERT_TRUE(first.open(image.c_str(), "r+", nullptr, 0));
    ASSERT_TRUE(second.open(image.c_str(), "r", nullptr, 0));
    os::DWORD returned = 0;
    EXPECT_FALSE(os::DeviceIoControl(first.get_file_handle(), os::FSCTL_LOCK_VOLUME, nullptr, 0,
                                     nullptr, 0, &returned, nullptr));
    EXPECT_EQ(os::GetLastError(), os::ERROR_ACCESS_DENIED);
    EXPECT_TRUE(second.close());
    EXPECT_TRUE(os::DeviceIoControl(first.get_file_handle(), os::FSCTL_LOCK_VOLUME, nullptr, 0,
                                    nullptr, 0, &returned, nullptr));
    EXPECT_TRUE(os::DeviceIoControl(first.get_file_handle(), os::FSCTL_UNLOCK_VOLUME, nullptr, 0,
                                    nullptr, 0, &returned, nullptr));
    EXPECT_TRUE(first.close());
}

TEST(VolumeFile, LockWithAnInvalidHandleIsFalse) {
    bool locked = false;
    EXPECT_FALSE(volume_file_c::_lock_volume(os::INVALID_HANDLE_VALUE, "x", &locked));
    EXPECT_FALSE(locked);
    locked = true;
    EXPECT_FALSE(volume_file_c::unlock_volume(os::INVALID_HANDLE_VALUE, "x", &locked));
    EXPECT_TRUE(locked);
}

TEST(VolumeFile, ExtendWithinTheImageSucceedsAndBeyondItFails) {
    if (!volume_codes_are_real()) GTEST_SKIP() << fake_reason;
    trace_capture_c capture;
    temp_dir_c dir;
    std::string image = make_fat32_image(dir, 1 << 20, 63, 255, 2048);
    std::string before = bytes_of(image);
    EXPECT_TRUE(storage_info_n::extend_volume(image.c_str(), 2048));
    // A total beyond the image's end: refused, and the image neither grows nor changes.
    EXPECT_FALSE(storage_info_n::extend_volume(image.c_str(), 2049));
    EXPECT_EQ(bytes_of(image), before);
    std::string text = capture.text();
    EXPECT_FALSE(
        trace_line(text, "Succeed to resize volume[" + image + "], total sectors[2048].").empty())
        << text;
    EXPECT_FALSE(trace_line(text, "Fail to resize volume[" + image +
                                      "], New total sectors[2049]. Error Code 87.")
                     .empty())
        << text;
}

TEST(VolumeFile, VolumePathOf5000CharactersCannotBeOpened) {
    trace_capture_c capture;
    std::string path = "C:/" + std::string(4997, 'v');
    if (!test_support::on_windows()) path = "/" + std::string(4999, 'v');
    EXPECT_FALSE(storage_info_n::extend_volume(path.c_str(), 100));
    EXPECT_NE(capture.text().find("Cannot open handle for volume[" + path + "]. Error Code "),
              std::string::npos);
}

} // namespace
