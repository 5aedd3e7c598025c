// storage_info_n: a boot sector fitted to a disk's geometry in memory, byte by byte. Only the
// fields at 11, 13, 24, 26, 28, the total (32 or 40) and the signature at 510 may change.
#include "files/storage_info.h"

#include "common/test_support.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using sector_t = std::array<std::uint8_t, 512>;
using test_support::trace_capture_c;
using test_support::trace_line;

std::uint16_t get16(const std::uint8_t* b, unsigned at) {
    return static_cast<std::uint16_t>(b[at] | (b[at + 1] << 8));
}
std::uint32_t get32(const std::uint8_t* b, unsigned at) {
    return get16(b, at) | (static_cast<std::uint32_t>(get16(b, at + 2)) << 16);
}
std::uint64_t get64(const std::uint8_t* b, unsigned at) {
    return get32(b, at) | (static_cast<std::uint64_t>(get32(b, at + 4)) << 32);
}
void put16(std::uint8_t* b, unsigned at, std::uint16_t v) {
    b[at] = static_cast<std::uint8_t>(v);
    b[at + 1] = static_cast<std::uint8_t>(v >> 8);
}
void put32(std::uint8_t* b, unsigned at, std::uint32_t v) {
    put16(b, at, static_cast<std::uint16_t>(v));
    put16(b, at + 2, static_cast<std::uint16_t>(v >> 16));
}
void put64(std::uint8_t* b, unsigned at, std::uint64_t v) {
    put32(b, at, static_cast<std::uint32_t>(v));
    put32(b, at + 4, static_cast<std::uint32_t>(v >> 32));
}

// A sector of pseudo-random bytes with the given fields.
sector_t make_sector(std::uint16_t bytes_per_sec, std::uint8_t per_cluster, std::uint16_t per_track,
                     std::uint16_t heads, std::uint32_t hidden, std::uint64_t total, bool ntfs,
                     std::uint16_t signature = 0xAA55, unsigned seed = 7) {
    sector_t s;
    std::mt19937 random(seed);
    for (auto& byte : s) byte = static_cast<std::uint8_t>(random());
    put16(s.data(), 11, bytes_per_sec);
    s[13] = per_cluster;
    put16(s.data(), 24, per_track);
    put16(s.data(), 26, heads);
    put32(s.data(), 28, hidden);
    if (ntfs)
        put64(s.data(), 40, total);
    else
        put32(s.data(), 32, static_cast<std::uint32_t>(total));
    put16(s.data(), 510, signature);
    return s;
}

boot_sector_target_s make_target(const char16_t* name, std::uint32_t bytes_per_sector,
                                 std::uint32_t per_track, std::uint32_t heads, bool consistent) {
    boot_sector_target_s t{};
    t.geometry.Cylinders = 1000;
    t.geometry.MediaType = 12;
    t.geometry.TracksPerCylinder = heads;
    t.geometry.SectorsPerTrack = per_track;
    t.geometry.BytesPerSector = bytes_per_sector;
    for (int i = 0; i < 15 && name[i]; ++i) t.file_system_name[i] = name[i];
    t.consistent = consistent;
    return t;
}

// The offsets of bytes that differ between two sectors.
std::set<unsigned> changed(const sector_t& a, const sector_t& b) {
    std::set<unsigned> out;
    for (unsigned i = 0; i < a.size(); ++i)
        if (a[i] != b[i]) out.insert(i);
    return out;
}

// Every offset that the fields of a boot sector cover, for the given total field.
std::set<unsigned> field_bytes(bool ntfs) {
    std::set<unsigned> out = {11, 12, 13, 24, 25, 26, 27, 28, 29, 30, 31, 510, 511};
    unsigned at = ntfs ? 40 : 32, n = ntfs ? 8 : 4;
    for (unsigned i = 0; i < n; ++i) out.insert(at + i);
    return out;
}

bool subset(const std::set<unsigned>& part, const std::set<unsigned>& whole) {
    for (unsigned i : part)
        if (!whole.count(i)) return false;
    return true;
}

struct fs_case_s {
    const char16_t* name;
    bool ntfs;
    const char* function;
    const char* total_format;
};
const fs_case_s fs_cases[] = {
    {u"NTFS", true, "storage_info_n::_correct_boot_sector_ntfs", "%lld"},
    {u"FAT32", false, "storage_info_n::_correct_boot_sector_fat32", "%d"},
    {u"FAT", false, "storage_info_n::_correct_boot_sector_fat", "%d"},
};

TEST(StorageInfoCorrectBootSector, AlreadyMatchingAnswersZeroAndChangesNothing) {
    for (const auto& fs : fs_cases) {
        sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, fs.ntfs);
        sector_t sector = original;
        auto target = make_target(fs.name, 512, 63, 255, true);
        EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()),
                  0);
        EXPECT_TRUE(changed(sector, original).empty());
    }
}

TEST(StorageInfoCorrectBootSector, TotalRescaledFrom512To4096Bytes) {
    for (const auto& fs : fs_cases) {
        trace_capture_c capture;
        sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, fs.ntfs);
        sector_t sector = original;
        auto target = make_target(fs.name, 4096, 32, 64, true);
        EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()),
                  1);
        std::uint64_t total = fs.ntfs ? get64(sector.data(), 40) : get32(sector.data(), 32);
        EXPECT_EQ(total, 1000u);
        EXPECT_EQ(get16(sector.data(), 11), 4096);
        EXPECT_EQ(get16(sector.data(), 24), 32);
        EXPECT_EQ(get16(sector.data(), 26), 64);
        EXPECT_EQ(sector[13], 8);
        EXPECT_EQ(get32(sector.data(), 28), 2048u);
        EXPECT_EQ(get16(sector.data(), 510), 0xAA55);
        EXPECT_TRUE(subset(changed(sector, original), field_bytes(fs.ntfs)));
        std::string line = trace_line(capture.text(), "Adjust the total sector to 1000.");
        EXPECT_NE(line.find("level=128"), std::string::npos) << capture.text();
        EXPECT_NE(line.find(fs.function), std::string::npos) << line;
    }
}

TEST(StorageInfoCorrectBootSector, SizeOf511AnswersMinus2AndLeavesTheBufferAlone) {
    for (const auto& fs : fs_cases) {
        sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, fs.ntfs);
        sector_t sector = make_sector(4096, 1, 1, 1, 0, 5, fs.ntfs, 0x1234, 9);
        sector_t before = sector;
        auto target = make_target(fs.name, 512, 63, 255, false);
        EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 511, target, original.data()),
                  -2);
        EXPECT_EQ(sector, before);
        EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 0, target, original.data()),
                  -2);
        EXPECT_EQ(sector, before);
    }
}

TEST(StorageInfoCorrectBootSector, MissingBufferOrOriginalAnswersMinus2) {
    sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, true);
    sector_t sector = original;
    auto target = make_target(u"NTFS", 512, 63, 255, true);
    EXPECT_EQ(storage_info_n::correct_boot_sector(nullptr, 512, target, original.data()), -2);
    EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, nullptr), -2);
    EXPECT_EQ(sector, original);
}

TEST(StorageInfoCorrectBootSector, UnsupportedFileSystemAnswersMinus1WithoutWriting) {
    for (const char16_t* name : {u"exFAT", u"ReFS", u"", u"ntfs", u"FAT12", u"NTFS "}) {
        trace_capture_c capture;
        sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, true);
        sector_t sector = make_sector(4096, 1, 1, 1, 0, 5, true, 0x1234, 9);
        sector_t before = sector;
        auto target = make_target(name, 512, 63, 255, false);
        EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()),
                  -1);
        EXPECT_EQ(sector, before);
        std::string narrow;
        for (const char16_t* c = name; *c; ++c) narrow += static_cast<char>(*c);
        std::string line = trace_line(capture.text(), "unsupported file system " + narrow + ".");
        EXPECT_NE(line.find("level=4 "), std::string::npos) << capture.text();
        EXPECT_NE(line.find("storage_info_n::correct_boot_sector"), std::string::npos) << line;
    }
}

TEST(StorageInfoCorrectBootSector, InconsistentWithNormalOriginalAnswersOneOnEveryCall) {
    for (const auto& fs : fs_cases) {
        sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, fs.ntfs);
        sector_t sector = original;
        auto target = make_target(fs.name, 512, 63, 255, false);
        for (int call = 0; call < 3; ++call) {
            EXPECT_EQ(
                storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()),
                1);
            EXPECT_EQ(get16(sector.data(), 510), 0x5156);
            // Nothing but the signature differs from the original: the fields already fit.
            EXPECT_EQ(changed(sector, original), (std::set<unsigned>{510, 511}));
        }
    }
}

TEST(StorageInfoCorrectBootSector, MarkedOriginalAndInconsistentTargetAnswersZero) {
    sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, true, 0x5156);
    sector_t sector = original;
    auto target = make_target(u"NTFS", 512, 63, 255, false);
    EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()), 0);
    EXPECT_EQ(sector, original);
}

TEST(StorageInfoCorrectBootSector, SignatureIsSetEvenWhenTheAnswerIsZero) {
    // The original carries the marker, the sector in hand a damaged word, and the target says
    // inconsistent: the marker goes in and then the sector matches.
    sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, false, 0x5156);
    sector_t sector = original;
    put16(sector.data(), 510, 0x0000);
    auto target = make_target(u"FAT32", 512, 63, 255, false);
    EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()), 0);
    EXPECT_EQ(get16(sector.data(), 510), 0x5156);
}

TEST(StorageInfoCorrectBootSector, ClusterAndHiddenSectorsComeFromTheOriginal) {
    for (const auto& fs : fs_cases) {
        sector_t original = make_sector(512, 16, 63, 255, 4096, 8000, fs.ntfs, 0xAA55, 1);
        sector_t sector = make_sector(512, 2, 63, 255, 63, 8000, fs.ntfs, 0xAA55, 2);
        sector_t before = sector;
        auto target = make_target(fs.name, 512, 63, 255, true);
        EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()),
                  1);
        EXPECT_EQ(sector[13], 16);
        EXPECT_EQ(get32(sector.data(), 28), 4096u);
        // Same sector size: the total stays.
        EXPECT_EQ(fs.ntfs ? get64(sector.data(), 40) : get32(sector.data(), 32), 8000u);
        // 4096 and 63 share their two high bytes.
        EXPECT_EQ(changed(sector, before), (std::set<unsigned>{13, 28, 29}));
    }
}

TEST(StorageInfoCorrectBootSector, GeometryTakesTheLow16Bits) {
    sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, true);
    sector_t sector = original;
    auto target = make_target(u"NTFS", 512, 0x10020, 0x30004, true);
    EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()), 1);
    EXPECT_EQ(get16(sector.data(), 24), 0x20);
    EXPECT_EQ(get16(sector.data(), 26), 4);
}

TEST(StorageInfoCorrectBootSector, Fat32ProductWrapsIn32BitsNtfsDoesNot) {
    // 0x01000000 * 4096 overflows 32 bits to 0; in 64 bits it rescales to 0x08000000.
    std::uint64_t total = 0x01000000;
    sector_t original = make_sector(4096, 8, 63, 255, 0, total, false);
    sector_t fat32 = original;
    auto target32 = make_target(u"FAT32", 512, 63, 255, true);
    EXPECT_EQ(storage_info_n::correct_boot_sector(fat32.data(), 512, target32, original.data()), 1);
    EXPECT_EQ(get32(fat32.data(), 32), 0u);

    sector_t ntfs_original = make_sector(4096, 8, 63, 255, 0, total, true);
    sector_t ntfs = ntfs_original;
    auto target64 = make_target(u"NTFS", 512, 63, 255, true);
    EXPECT_EQ(storage_info_n::correct_boot_sector(ntfs.data(), 512, target64, ntfs_original.data()),
              1);
    EXPECT_EQ(get64(ntfs.data(), 40), 0x08000000u);
}

TEST(StorageInfoCorrectBootSector, FatLeavesThe16BitTotalAndNtfsThe32BitField) {
    sector_t original = make_sector(512, 4, 63, 255, 0, 8000, false);
    put16(original.data(), 19, 0x1F40);
    sector_t fat = original;
    auto target = make_target(u"FAT", 4096, 63, 255, true);
    EXPECT_EQ(storage_info_n::correct_boot_sector(fat.data(), 512, target, original.data()), 1);
    EXPECT_EQ(get16(fat.data(), 19), 0x1F40);
    EXPECT_EQ(get32(fat.data(), 32), 1000u);

    sector_t ntfs_original = make_sector(512, 8, 63, 255, 0, 8000, true);
    put32(ntfs_original.data(), 32, 0xDEADBEEF);
    sector_t ntfs = ntfs_original;
    auto ntfs_target = make_target(u"NTFS", 4096, 63, 255, true);
    EXPECT_EQ(
        storage_info_n::correct_boot_sector(ntfs.data(), 512, ntfs_target, ntfs_original.data()),
        1);
    EXPECT_EQ(get32(ntfs.data(), 32), 0xDEADBEEFu);
}

TEST(StorageInfoCorrectBootSector, RandomBytesChangeOnlyTheFields) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        for (const auto& fs : fs_cases) {
            std::mt19937 random(seed);
            sector_t sector, original;
            for (auto& b : sector) b = static_cast<std::uint8_t>(random());
            for (auto& b : original) b = static_cast<std::uint8_t>(random());
            sector_t before = sector;
            auto target = make_target(fs.name, 1u + random() % 8192, random() % 0x20000,
                                      random() % 0x20000, (random() & 1) != 0);
            std::int32_t answer =
                storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data());
            EXPECT_TRUE(answer == 0 || answer == 1);
            EXPECT_TRUE(subset(changed(sector, before), field_bytes(fs.ntfs))) << seed;
            EXPECT_EQ(get16(sector.data(), 510), target.consistent ? 0xAA55 : 0x5156);
        }
    }
}

TEST(StorageInfoCorrectBootSector, GeometryWithoutSectorSizeKeepsTheTotal) {
    sector_t original = make_sector(512, 8, 63, 255, 0, 8000, true);
    sector_t sector = original;
    auto target = make_target(u"NTFS", 0, 63, 255, true);
    EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()), 1);
    EXPECT_EQ(get64(sector.data(), 40), 8000u);
    EXPECT_EQ(get16(sector.data(), 11), 0);
}

TEST(StorageInfoCorrectBootSector, TraceLinesOfTheCurrentAndTheOriginal) {
    trace_capture_c capture;
    sector_t original = make_sector(512, 8, 63, 255, 2048, 8000, true);
    sector_t sector = make_sector(4096, 1, 16, 4, 7, 1000, true, 0xAA55, 3);
    auto target = make_target(u"NTFS", 512, 32, 64, false);
    EXPECT_EQ(storage_info_n::correct_boot_sector(sector.data(), 512, target, original.data()), 1);
    std::string text = capture.text();
    std::string current = trace_line(
        text,
        "Current boot code, SectorsPerTrack[16], SectorsPerCluster[1], Number of "
        "Headers[4], BytesPerSec[4096], HiddenSectors[7], TotalSectors[1000], Marker[20822].");
    EXPECT_NE(current.find("level=128"), std::string::npos) << text;
    EXPECT_NE(current.find("storage_info_n::_correct_boot_sector_ntfs"), std::string::npos);
    std::string before =
        trace_line(text, "Original boot code, SectorsPerTrack[32], SectorsPerCluster[8], Number of "
                         "Headers[64], BytesPerSec[512], HiddenSectors[2048], TotalSectors[8000], "
                         "Marker[43605].");
    EXPECT_NE(before.find("level=128"), std::string::npos) << text;
    EXPECT_FALSE(trace_line(text, "Adjust the total sector to 8000.").empty()) << text;
}

TEST(StorageInfoTotalSectors, EachFileSystemReadsItsField) {
    sector_t ntfs = make_sector(512, 8, 63, 255, 0, 0x123456789ABull, true);
    put32(ntfs.data(), 32, 77);
    std::uint64_t total = 0;
    EXPECT_TRUE(storage_info_n::get_volume_total_sectors(ntfs.data(), u"NTFS", &total));
    EXPECT_EQ(total, 0x123456789ABull);
    sector_t fat = make_sector(512, 8, 63, 255, 0, 0xFFFFFFF0u, false);
    EXPECT_TRUE(storage_info_n::get_volume_total_sectors(fat.data(), u"FAT32", &total));
    EXPECT_EQ(total, 0xFFFFFFF0u);
    EXPECT_TRUE(storage_info_n::get_volume_total_sectors(fat.data(), u"FAT", &total));
    EXPECT_EQ(total, 0xFFFFFFF0u);
}

TEST(StorageInfoTotalSectors, UnsupportedFileSystemIsFalseWithTrace) {
    trace_capture_c capture;
    sector_t fat = make_sector(512, 8, 63, 255, 0, 100, false);
    std::uint64_t total = 5;
    EXPECT_FALSE(storage_info_n::get_volume_total_sectors(fat.data(), u"exFAT", &total));
    EXPECT_EQ(total, 5u);
    std::string line = trace_line(capture.text(), "unsupported file system exFAT.");
    EXPECT_NE(line.find("level=4 "), std::string::npos) << capture.text();
}

TEST(StorageInfoConsistency, EmptyNameIsTreatedAsNtfsWithTraceAt128) {
    trace_capture_c capture;
    sector_t marked = make_sector(512, 8, 63, 255, 0, 100, true, 0x5156);
    bool consistent = true;
    EXPECT_TRUE(storage_info_n::consistency_of_bs(marked.data(), u"", &consistent));
    EXPECT_FALSE(consistent);
    consistent = true;
    EXPECT_TRUE(storage_info_n::consistency_of_bs(marked.data(), nullptr, &consistent));
    EXPECT_FALSE(consistent);
    std::string line = trace_line(capture.text(), "FS type unknown, assume as NTFS.");
    EXPECT_NE(line.find("level=128"), std::string::npos) << capture.text();
}

TEST(StorageInfoConsistency, SignatureOfZeroReadsAsConsistent) {
    for (const char16_t* name : {u"NTFS", u"FAT32", u"FAT"}) {
        for (std::uint16_t word : {0x0000, 0xAA55, 0xFFFF, 0x5155, 0x5657}) {
            sector_t s = make_sector(512, 8, 63, 255, 0, 100, true, word);
            bool consistent = false;
            EXPECT_TRUE(storage_info_n::consistency_of_bs(s.data(), name, &consistent));
            EXPECT_TRUE(consistent) << word;
        }
        sector_t marked = make_sector(512, 8, 63, 255, 0, 100, true, 0x5156);
        bool consistent = true;
        EXPECT_TRUE(storage_info_n::consistency_of_bs(marked.data(), name, &consistent));
        EXPECT_FALSE(consistent);
    }
}

TEST(StorageInfoConsistency, UnsupportedFileSystemIsFalseAndLeavesConsistentTrue) {
    trace_capture_c capture;
    sector_t marked = make_sector(512, 8, 63, 255, 0, 100, true, 0x5156);
    bool consistent = false;
    EXPECT_FALSE(storage_info_n::consistency_of_bs(marked.data(), u"ReFS", &consistent));
    EXPECT_TRUE(consistent);
    std::string line = trace_line(
        capture.text(), "Failed to check consistency_of_bs, unsupported file system ReFS.");
    EXPECT_NE(line.find("level=4 "), std::string::npos) << capture.text();
}

TEST(StorageInfoExtendVolume, NullPathIsInvalidParameter) {
    trace_capture_c capture;
    EXPECT_FALSE(storage_info_n::extend_volume(nullptr, 100));
    std::string line = trace_line(capture.text(), "Invalid parameter.");
    EXPECT_NE(line.find("level=4 "), std::string::npos) << capture.text();
}

TEST(StorageInfoExtendVolume, MissingVolumeCannotBeOpened) {
    trace_capture_c capture;
    test_support::temp_dir_c dir;
    std::string path = dir.join("no-such-volume");
    EXPECT_FALSE(storage_info_n::extend_volume(path.c_str(), 100));
    std::string text = capture.text();
    EXPECT_FALSE(trace_line(text, "Try to extend volume [" + path + "].").empty()) << text;
    EXPECT_NE(text.find("Cannot open handle for volume[" + path + "]. Error Code 2."),
              std::string::npos)
        << text;
}

} // namespace
