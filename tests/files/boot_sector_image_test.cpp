// correct_boot_sector on the boot sectors of real file systems, made by the file system tools of
// the host (mkfs.fat from dosfstools, mkntfs from ntfs-3g) in image files, and checked afterwards
// by the same tools: the volume must still read, and only the fields may differ.
#include "files/storage_info.h"

#include "files/file_modif.h"
#include "files/volume_file.h"

#include "common/test_support.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>

namespace {

using sector_t = std::array<std::uint8_t, 512>;
using test_support::temp_dir_c;

#if !defined(_WIN32)

// Runs a shell command with its output in a file; the exit status, -1 when it didn't run.
int run(const std::string& command, const std::string& output) {
    int status = std::system((command + " >'" + output + "' 2>&1").c_str());
    if (status == -1 || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

bool have(const char* tool) {
    std::string command = std::string("command -v ") + tool + " >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

sector_t read_sector(const std::string& path, std::uint64_t at = 0) {
    sector_t s{};
    std::ifstream in(path, std::ios::binary);
    in.seekg(static_cast<std::streamoff>(at));
    in.read(reinterpret_cast<char*>(s.data()), s.size());
    return s;
}

void write_sector(const std::string& path, const sector_t& s) {
    std::fstream out(path, std::ios::binary | std::ios::in | std::ios::out);
    out.write(reinterpret_cast<const char*>(s.data()), s.size());
}

std::uint64_t file_size(const std::string& path) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    return static_cast<std::uint64_t>(in.tellg());
}

std::uint16_t get16(const std::uint8_t* b, unsigned at) {
    return static_cast<std::uint16_t>(b[at] | (b[at + 1] << 8));
}

boot_sector_target_s target_of(const char16_t* name, std::uint32_t bytes_per_sector,
                               std::uint32_t per_track, std::uint32_t heads, bool consistent) {
    boot_sector_target_s t{};
    t.geometry.TracksPerCylinder = heads;
    t.geometry.SectorsPerTrack = per_track;
    t.geometry.BytesPerSector = bytes_per_sector;
    for (int i = 0; i < 15 && name[i]; ++i) t.file_system_name[i] = name[i];
    t.consistent = consistent;
    return t;
}

std::set<unsigned> changed(const sector_t& a, const sector_t& b) {
    std::set<unsigned> out;
    for (unsigned i = 0; i < a.size(); ++i)
        if (a[i] != b[i]) out.insert(i);
    return out;
}

// An image of `megabytes` made by `command`, where `tool` exists; empty with the reason set when
// it doesn't.
std::string make_image(const temp_dir_c& dir, const char* tool, const std::string& arguments,
                       unsigned megabytes, std::string& reason) {
    if (!have(tool)) {
        reason = std::string(tool) + " is not installed (scripts/setup installs it)";
        return std::string();
    }
    std::string image = dir.join("volume.img");
    { std::ofstream create(image, std::ios::binary); }
    std::filesystem::resize_file(image, std::uint64_t(megabytes) << 20);
    std::string log = dir.join("mkfs.log");
    int status = run(std::string(tool) + " " + arguments + " '" + image + "'", log);
    if (status != 0) {
        reason = std::string(tool) + " failed: " + test_support::read_file(log);
        return std::string();
    }
    return image;
}

struct fat_case_s {
    const char* label;
    const char16_t* name;
    const char* arguments;
    unsigned megabytes;
};
const fat_case_s fat_cases[] = {
    {"FAT16", u"FAT", "-F 16 -S 512 -s 4 -h 2048 -g 255/63", 16},
    {"FAT32", u"FAT32", "-F 32 -S 512 -s 1 -h 2048 -g 255/63", 40},
};

TEST(BootSectorImage, FatWithAnotherGeometryStillChecksClean) {
    for (const auto& fs : fat_cases) {
        temp_dir_c dir;
        std::string reason;
        std::string image = make_image(dir, "mkfs.fat", fs.arguments, fs.megabytes, reason);
        if (image.empty()) GTEST_SKIP() << reason;
        std::uint64_t size = file_size(image);
        sector_t original = read_sector(image);
        sector_t sector = original;
        auto target = target_of(fs.name, 512, 32, 64, true);
        ASSERT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()),
                  1)
            << fs.label;
        // Only the two geometry words differ, and of them only their low bytes.
        EXPECT_EQ(changed(sector, original), (std::set<unsigned>{24, 26})) << fs.label;
        EXPECT_EQ(get16(sector.data(), 24), 32);
        EXPECT_EQ(get16(sector.data(), 26), 64);
        write_sector(image, sector);
        EXPECT_EQ(file_size(image), size);

        std::string log = dir.join("fsck.log");
        EXPECT_EQ(run("fsck.fat -n '" + image + "'", log), 0)
            << fs.label << ": " << test_support::read_file(log);
        std::string report = test_support::read_file(log);
        if (std::string(fs.label) == "FAT32") {
            // FAT32 keeps a backup of the boot sector at sector 6, which the tool compares; the
            // differences it finds are the fields and nothing else.
            EXPECT_NE(report.find("24:20/3f, 26:40/ff"), std::string::npos) << report;
        } else {
            EXPECT_EQ(report.find("differences"), std::string::npos) << report;
        }
    }
}

TEST(BootSectorImage, FatMatchingGeometryAnswersZeroAndTheImageIsUnchanged) {
    for (const auto& fs : fat_cases) {
        temp_dir_c dir;
        std::string reason;
        std::string image = make_image(dir, "mkfs.fat", fs.arguments, fs.megabytes, reason);
        if (image.empty()) GTEST_SKIP() << reason;
        sector_t original = read_sector(image);
        sector_t sector = original;
        auto target = target_of(fs.name, 512, 63, 255, true);
        EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()),
                  0)
            << fs.label;
        EXPECT_EQ(sector, original);
    }
}

TEST(BootSectorImage, FatMarkedInconsistentKeepsTheMarkerAndReadsAsInconsistent) {
    for (const auto& fs : fat_cases) {
        temp_dir_c dir;
        std::string reason;
        std::string image = make_image(dir, "mkfs.fat", fs.arguments, fs.megabytes, reason);
        if (image.empty()) GTEST_SKIP() << reason;
        sector_t original = read_sector(image);
        sector_t sector = original;
        auto target = target_of(fs.name, 512, 63, 255, false);
        EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()),
                  1);
        EXPECT_EQ(changed(sector, original), (std::set<unsigned>{510, 511}));
        write_sector(image, sector);
        bool consistent = true;
        EXPECT_TRUE(
            storage_info_n::consistency_of_bs(read_sector(image).data(), fs.name, &consistent));
        EXPECT_FALSE(consistent);
        // The marked volume still reads for the tool: the signature word is all that changed.
        std::string log = dir.join("fsck.log");
        EXPECT_EQ(run("fsck.fat -n '" + image + "'", log), 0) << test_support::read_file(log);
    }
}

TEST(BootSectorImage, FatTotalAsTheToolWroteIt) {
    for (const auto& fs : fat_cases) {
        temp_dir_c dir;
        std::string reason;
        std::string image = make_image(dir, "mkfs.fat", fs.arguments, fs.megabytes, reason);
        if (image.empty()) GTEST_SKIP() << reason;
        sector_t sector = read_sector(image);
        std::uint64_t total = 0;
        ASSERT_TRUE(storage_info_n::get_volume_total_sectors(sector.data(), fs.name, &total));
        if (total == 0) {
            // A small FAT16 volume states its total in the 16-bit field at 19, which is not read.
            EXPECT_NE(get16(sector.data(), 19), 0) << fs.label;
        } else {
            // The tool rounds the total down to whole tracks of 63 sectors.
            std::uint64_t sectors = file_size(image) / 512;
            EXPECT_LE(total, sectors) << fs.label;
            EXPECT_GT(total + 63, sectors) << fs.label;
            EXPECT_EQ(total % 63, 0u) << fs.label;
        }
    }
}

const char* ntfs_arguments = "-F -Q -q -s 512 -p 2048 -H 255 -S 63";

TEST(BootSectorImage, NtfsWithAnotherGeometryStillReads) {
    temp_dir_c dir;
    std::string reason;
    std::string image = make_image(dir, "mkntfs", ntfs_arguments, 16, reason);
    if (image.empty()) GTEST_SKIP() << reason;
    if (!have("ntfsinfo")) GTEST_SKIP() << "ntfsinfo is not installed (scripts/setup installs it)";
    sector_t original = read_sector(image);
    std::uint64_t total = 0;
    ASSERT_TRUE(storage_info_n::get_volume_total_sectors(original.data(), u"NTFS", &total));
    // mkntfs keeps the last sector for the backup of the boot sector.
    EXPECT_EQ(total, file_size(image) / 512 - 1);

    sector_t sector = original;
    auto target = target_of(u"NTFS", 512, 32, 64, true);
    ASSERT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()), 1);
    EXPECT_EQ(changed(sector, original), (std::set<unsigned>{24, 26}));
    write_sector(image, sector);
    std::string log = dir.join("ntfsinfo.log");
    EXPECT_EQ(run("ntfsinfo -m '" + image + "'", log), 0) << test_support::read_file(log);
    std::string report = test_support::read_file(log);
    EXPECT_NE(report.find("Sector Size: 512"), std::string::npos) << report;
    EXPECT_NE(report.find("Volume Size in Clusters: 4095"), std::string::npos) << report;
}

TEST(BootSectorImage, NtfsMatchingGeometryAnswersZeroAndTheToolFindsNothing) {
    temp_dir_c dir;
    std::string reason;
    std::string image = make_image(dir, "mkntfs", ntfs_arguments, 16, reason);
    if (image.empty()) GTEST_SKIP() << reason;
    if (!have("ntfsfix")) GTEST_SKIP() << "ntfsfix is not installed (scripts/setup installs it)";
    sector_t original = read_sector(image);
    sector_t sector = original;
    auto target = target_of(u"NTFS", 512, 63, 255, true);
    EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()), 0);
    EXPECT_EQ(sector, original);
    write_sector(image, sector);
    std::string log = dir.join("ntfsfix.log");
    EXPECT_EQ(run("ntfsfix -n '" + image + "'", log), 0) << test_support::read_file(log);
}

TEST(BootSectorImage, NtfsRescaledTo4096KeepsTheVolumeSizeInBytes) {
    temp_dir_c dir;
    std::string reason;
    std::string image = make_image(dir, "mkntfs", ntfs_arguments, 16, reason);
    if (image.empty()) GTEST_SKIP() << reason;
    sector_t original = read_sector(image);
    std::uint64_t before = 0, after = 0;
    ASSERT_TRUE(storage_info_n::get_volume_total_sectors(original.data(), u"NTFS", &before));
    sector_t sector = original;
    auto target = target_of(u"NTFS", 4096, 63, 255, true);
    ASSERT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()), 1);
    ASSERT_TRUE(storage_info_n::get_volume_total_sectors(sector.data(), u"NTFS", &after));
    EXPECT_EQ(after, before * 512 / 4096);
    EXPECT_EQ(get16(sector.data(), 11), 4096);
    for (unsigned i : changed(sector, original))
        EXPECT_TRUE(i == 11 || i == 12 || (i >= 40 && i < 48)) << i;
}

// The same through volume_file_c on the open image: the image's own geometry (255 heads, 63
// sectors per track) replaces the one the tool was told, and the tools still read the volume.
TEST(BootSectorImage, VolumeFileFitsToolMadeImagesToTheImageGeometry) {
    struct made_s {
        const char* tool;
        std::string arguments;
        unsigned megabytes;
        const char16_t* name;
        std::string check;
    };
    const made_s made[] = {
        {"mkfs.fat", "-F 32 -S 512 -s 1 -h 0 -g 16/32", 40, u"FAT32", "fsck.fat -n"},
        {"mkfs.fat", "-F 16 -S 512 -s 4 -h 0 -g 16/32", 16, u"FAT", "fsck.fat -n"},
        {"mkntfs", "-F -Q -q -s 512 -p 0 -H 16 -S 32", 16, u"NTFS", "ntfsinfo -m"},
    };
    for (const auto& each : made) {
        temp_dir_c dir;
        std::string reason;
        std::string image = make_image(dir, each.tool, each.arguments, each.megabytes, reason);
        if (image.empty()) GTEST_SKIP() << reason;
        std::string checker = each.check.substr(0, each.check.find(' '));
        if (!have(checker.c_str())) GTEST_SKIP() << checker << " is not installed";
        sector_t original = read_sector(image);
        ASSERT_EQ(get16(original.data(), 24), 32) << each.tool;
        std::uint64_t size = file_size(image);
        {
            FILE_c file;
            ASSERT_TRUE(file.open(image.c_str(), "r+", nullptr, 0));
            volume_file_c volume(&file);
            EXPECT_TRUE(volume.correct_boot_sector(original.data(), true)) << each.check;
            EXPECT_EQ(std::u16string(file.file_system_name), std::u16string(each.name));
            std::uint64_t total = 0;
            EXPECT_TRUE(volume.get_total_sectors(&total));
            EXPECT_LE(total, size / 512);
            EXPECT_TRUE(file.close());
        }
        EXPECT_EQ(file_size(image), size);
        sector_t now = read_sector(image);
        EXPECT_EQ(changed(now, original), (std::set<unsigned>{24, 26})) << each.check;
        EXPECT_EQ(get16(now.data(), 24), 63);
        EXPECT_EQ(get16(now.data(), 26), 255);
        std::string log = dir.join("check.log");
        EXPECT_EQ(run(each.check + " '" + image + "'", log), 0)
            << each.check << ": " << test_support::read_file(log);
    }
}

#else

TEST(BootSectorImage, NeedsTheHostFileSystemTools) {
    GTEST_SKIP() << "the images are made and checked by mkfs.fat and mkntfs, Linux programs that "
                    "the Windows build does not run";
}

#endif

} // namespace
