// FILE_c on a volume pseudo-file ("<volume>/$$qv-volume"): here the volume is an image file. The
// open locks it for writing and keeps its first sector; the close fits the boot sector, unlocks
// and restores the total. Under wine the volume control codes are fakes, so these skip there.
#include "common/test_support.h"
#include "files/basic_file.h"
#include "files/file_modif.h"
#include "files/storage_info.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

namespace {

using test_support::temp_dir_c;
using test_support::trace_capture_c;
using test_support::trace_line;

std::uint16_t get16(const std::string& b, unsigned at) {
    return static_cast<std::uint16_t>(static_cast<unsigned char>(b[at]) |
                                      (static_cast<unsigned char>(b[at + 1]) << 8));
}
void put16(std::string& b, unsigned at, std::uint16_t v) {
    b[at] = static_cast<char>(v);
    b[at + 1] = static_cast<char>(v >> 8);
}
void put32(std::string& b, unsigned at, std::uint32_t v) {
    put16(b, at, static_cast<std::uint16_t>(v));
    put16(b, at + 2, static_cast<std::uint16_t>(v >> 16));
}

// A FAT32 boot sector of 32 sectors per track and 16 heads stating `total` sectors, in an image
// of 1 MiB (2048 sectors).
std::string make_image(const temp_dir_c& dir, std::uint32_t total, std::uint16_t signature) {
    std::string content(1 << 20, '\0');
    std::mt19937 random(11);
    for (std::size_t i = 0; i < 4096; ++i) content[i] = static_cast<char>(random());
    std::memcpy(content.data() + 3, "MSWIN4.1", 8);
    put16(content, 11, 512);
    content[13] = 8;
    put16(content, 24, 32);
    put16(content, 26, 16);
    put32(content, 28, 0);
    put32(content, 32, total);
    std::memcpy(content.data() + 82, "FAT32   ", 8);
    put16(content, 510, signature);
    std::string image = dir.join("volume.img");
    test_support::write_file(image, content);
    return image;
}

const char* wine_reason = "the volume control codes and a volume's device are fakes under wine; "
                          "here a volume is an image file of the POSIX build";

TEST(VolumePath, OpenForWritingLocksAndCloseFitsTheBootSector) {
    if (test_support::on_windows()) GTEST_SKIP() << wine_reason;
    trace_capture_c capture;
    temp_dir_c dir;
    std::string image = make_image(dir, 2048, 0xAA55);
    std::string before = test_support::read_file(image);
    std::string volume = image + "/$$qv-volume";
    {
        FILE_c file;
        ASSERT_TRUE(file.open(volume.c_str(), "w", nullptr, 0));
        EXPECT_TRUE(file.volume_locked);
        EXPECT_EQ(file.open_flags & 0xE9u, 0xE9u);
        EXPECT_EQ(file.open_flags & 0x10u, 0u);
        ASSERT_NE(file.boot_sector, nullptr);
        EXPECT_EQ(std::memcmp(file.boot_sector, before.data(), 512), 0);
        EXPECT_EQ(std::u16string(file.file_system_name), u"FAT32");
        EXPECT_TRUE(file.is_consistent());
        EXPECT_EQ(file.size(), 1 << 20);
        EXPECT_EQ(file.tell(), 0);
        // A volume is never cut.
        EXPECT_TRUE(file.truncate(5));
        EXPECT_TRUE(file.mark_consistent(false));
        EXPECT_FALSE(file.is_consistent());
        EXPECT_TRUE(file.close());
        EXPECT_FALSE(file.volume_locked);
        EXPECT_EQ(file.boot_sector, nullptr);
        EXPECT_EQ(file.total_sectors, 2048u);
    }
    std::string after = test_support::read_file(image);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(get16(after, 24), 63);
    EXPECT_EQ(get16(after, 26), 255);
    EXPECT_EQ(get16(after, 510), 0x5156);
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (i != 24 && i != 26 && i != 27 && i != 510 && i != 511) {
            ASSERT_EQ(after[i], before[i]) << i;
        }
    }
    std::string text = capture.text();
    std::string device = image;
    for (char& c : device)
        if (c == '/') c = '\\';
    EXPECT_FALSE(trace_line(text, "change mode from 'w' to 'r+' if it is volume: " + volume + " (" +
                                      device + ")")
                     .empty())
        << text;
    EXPECT_FALSE(trace_line(text, "Successfully to lock volume " + volume + ".").empty()) << text;
    EXPECT_FALSE(trace_line(text, "successfully update boot sector " + volume + ".").empty())
        << text;
    EXPECT_FALSE(trace_line(text, "Successfully to unlock volume " + volume + ".").empty()) << text;
    EXPECT_FALSE(
        trace_line(text, "Original total sectors[2048], current total sectors[2048].").empty())
        << text;
}

TEST(VolumePath, OpenForReadingTakesNoLockAndChangesNothing) {
    if (test_support::on_windows()) GTEST_SKIP() << wine_reason;
    temp_dir_c dir;
    std::string image = make_image(dir, 2048, 0x5156);
    std::string before = test_support::read_file(image);
    std::string volume = image + "/$$qv-volume";
    {
        FILE_c file;
        ASSERT_TRUE(file.open(volume.c_str(), "r", nullptr, 0));
        EXPECT_FALSE(file.volume_locked);
        EXPECT_FALSE(file.mark_consistent(true));
        // The boot sector carries the marker.
        EXPECT_FALSE(file.is_consistent());
        char first[16] = {};
        EXPECT_EQ(file.read(first, sizeof first), 16);
        EXPECT_EQ(std::memcmp(first, before.data(), sizeof first), 0);
        EXPECT_TRUE(file.close());
        EXPECT_TRUE(file.is_consistent());
    }
    EXPECT_EQ(test_support::read_file(image), before);
}

TEST(VolumePath, TotalBeyondTheImageIsNotExtended) {
    if (test_support::on_windows()) GTEST_SKIP() << wine_reason;
    trace_capture_c capture;
    temp_dir_c dir;
    std::string image = make_image(dir, 4096, 0xAA55);
    std::string volume = image + "/$$qv-volume";
    {
        FILE_c file;
        ASSERT_TRUE(file.open(volume.c_str(), "r+", nullptr, 0));
        EXPECT_TRUE(file.close());
    }
    EXPECT_EQ(std::filesystem::file_size(image), 1u << 20);
    std::string text = capture.text();
    EXPECT_FALSE(
        trace_line(text, "Failed to extend total sectors of volume " + volume + ".").empty())
        << text;
}

TEST(VolumePath, ImagesOf0And511BytesFailToOpenAndStayAsTheyWere) {
    if (test_support::on_windows()) GTEST_SKIP() << wine_reason;
    for (std::size_t bytes : {std::size_t(0), std::size_t(511)}) {
        trace_capture_c capture;
        temp_dir_c dir;
        std::string image = dir.join("volume.img");
        std::string content(bytes, '\x5A');
        test_support::write_file(image, content);
        std::string volume = image + "/$$qv-volume";
        FILE_c file;
        EXPECT_FALSE(file.open(volume.c_str(), "r+", nullptr, 0));
        EXPECT_FALSE(file.volume_locked);
        EXPECT_EQ(test_support::read_file(image), content);
        EXPECT_NE(capture.text().find("failed to read boot sector " + volume), std::string::npos)
            << capture.text();
    }
}

TEST(VolumePath, VolumePathOf5000CharactersFailsToOpen) {
    std::string volume =
        (test_support::on_windows() ? "C:/" : "/") + std::string(4980, 'v') + "/$$qv-volume";
    FILE_c file;
    EXPECT_FALSE(file.open(volume.c_str(), "r+", nullptr, 0));
    EXPECT_FALSE(file.volume_locked);
    EXPECT_FALSE(file.close());
}

} // namespace
