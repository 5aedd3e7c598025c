// Hostile paths against every path operation and every export: nothing may be written past a
// buffer, and each answer stays what the rules give. Run under AddressSanitizer in the asan build.
#include "common/loaded_library.h"
#include "common/test_support.h"
#include "files/file.h"
#include "files/file_manipulation.h"
#include "utl/multi_lang.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

struct hostile_s {
    const char* name;
    std::string text;
};

std::vector<hostile_s> hostile_paths() {
    std::string control;
    for (int c = 1; c < 32; ++c) control += static_cast<char>(c);
    return {
        {"longer_than_a_buffer", std::string(5000, 'a')},
        {"long_with_separators",
         [] {
             std::string s;
             while (s.size() < 6000) s += "dir\\..\\./";
             return s;
         }()},
        {"invalid_utf8", "C:\\\xff\xfe\xc0\xaf\xed\xa0\x80/\x80\x80\xf8\x88\x80\x80\x80"},
        {"embedded_control_characters", "C:/a" + control + "/b"},
        {"only_slashes", std::string(5000, '/')},
        {"only_backslashes", std::string(5000, '\\')},
        {"one_megabyte", std::string(1 << 20, 'x')},
        {"one_megabyte_unc", "\\\\" + std::string(1 << 20, 's')},
        {"one_megabyte_long_prefix", "\\\\?\\C:\\" + std::string(1 << 20, 'd')},
        {"one_megabyte_volume_guid",
         "\\\\?\\Volume{00000000-0000-0000-0000-000000000000}\\" + std::string(1 << 20, 'v')},
        {"one_megabyte_shadow_copy",
         "\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy1\\" + std::string(1 << 20, 'c')},
        {"one_megabyte_of_dots",
         [] {
             std::string s;
             while (s.size() < (1u << 20)) s += "../";
             return s;
         }()},
        {"one_megabyte_stream", "C:\\" + std::string(1 << 20, 'f') + ":stream"},
    };
}

// A narrow path buffer with a guard zone behind it that must stay untouched.
class guarded_buffer_c {
  public:
    guarded_buffer_c() : _bytes(path_n::path_buffer_size + guard, '\0') {
        std::memset(_bytes.data() + path_n::path_buffer_size, 0x5A, guard);
    }
    char* data() { return _bytes.data(); }
    bool guard_intact() const {
        for (std::size_t i = path_n::path_buffer_size; i < _bytes.size(); ++i)
            if (_bytes[i] != 0x5A) return false;
        return true;
    }
    std::size_t length() const { return strnlen(_bytes.data(), path_n::path_buffer_size); }

  private:
    static constexpr std::size_t guard = 256;
    std::vector<char> _bytes;
};

class bad_input : public ::testing::TestWithParam<hostile_s> {};

std::string param_name(const ::testing::TestParamInfo<hostile_s>& info) { return info.param.name; }

} // namespace

TEST_P(bad_input, standard_dir_path_stays_inside_its_buffer) {
    for (bool strip : {true, false}) {
        guarded_buffer_c dst;
        path_n::standard_dir_path(GetParam().text.c_str(), dst.data(), strip);
        EXPECT_TRUE(dst.guard_intact());
        EXPECT_LE(dst.length(), path_n::longest_path);
    }
}

TEST_P(bad_input, normalize_path_stays_inside_its_buffer) {
    guarded_buffer_c path;
    std::strncpy(path.data(), GetParam().text.c_str(), path_n::longest_path);
    path_n::_normalize_path(path.data());
    EXPECT_TRUE(path.guard_intact());
    EXPECT_LE(path.length(), path_n::longest_path);
}

TEST_P(bad_input, wide_conversions_stay_inside_their_buffers) {
    std::vector<os::wide_char> wide(path_n::path_buffer_size + 64, 0x5A5A);
    for (bool prefix : {true, false}) {
        path_n::path_to_wide_char_path(GetParam().text.c_str(), wide.data(), prefix);
        for (std::size_t i = path_n::path_buffer_size; i < wide.size(); ++i)
            ASSERT_EQ(wide[i], 0x5A5A);
        std::size_t n = 0;
        while (n < path_n::path_buffer_size && wide[n]) ++n;
        EXPECT_LT(n, path_n::path_buffer_size);
        guarded_buffer_c back;
        path_n::wide_char_path_to_path(wide.data(), back.data());
        EXPECT_TRUE(back.guard_intact());
    }
}

TEST_P(bad_input, predicates_answer_without_harm) {
    const char* text = GetParam().text.c_str();
    guarded_buffer_c drive, stream, shadow;
    path_n::drive_name_from_path(text, drive.data());
    path_n::stream_path_to_file(text, stream.data());
    path_n::get_root_volumeshadowcopy(text, shadow.data());
    EXPECT_TRUE(drive.guard_intact());
    EXPECT_TRUE(stream.guard_intact());
    EXPECT_TRUE(shadow.guard_intact());
    // The question is asked of the normalised form, where normalising again changes nothing
    // (it may: "\\" stays as it is from a longer run of separators, but alone becomes "/").
    guarded_buffer_c normalised, again;
    path_n::standard_dir_path(text, normalised.data(), true);
    path_n::standard_dir_path(normalised.data(), again.data(), true);
    bool exists = file_manipulation_n::if_exists(text, nullptr);
    if (std::strcmp(normalised.data(), again.data()) == 0) {
        EXPECT_EQ(exists, file_manipulation_n::if_exists(normalised.data(), nullptr));
    }
    EXPECT_FALSE(volume_guid_path_exists(text));
    path_n::is_short_name(text);
    path_n::is_full_path_name(text);
    path_n::is_file_in_dir(text, text, true);
    EXPECT_TRUE(path_n::is_file_in_dir(text, text, false));
    path_n::is_stream_in_path(text, text);
    is_volume_guid_path(text, true);
    is_volumeshadowcopy_path(text);
    is_volume_mount_root(text);
    EXPECT_EQ(utl_n::utf8_prefix_strnicmp(text, text), 0);
}

// Runs in a scratch working directory three levels deep: relative spellings (".", "..") name
// directories there, and the state directory that a query makes lands there too.
class working_directory_c {
  public:
    working_directory_c() : _before(std::filesystem::current_path()) {
        std::filesystem::path deep = _scratch.path() / "a" / "b" / "c";
        std::filesystem::create_directories(deep);
        std::filesystem::current_path(deep);
    }
    ~working_directory_c() { std::filesystem::current_path(_before); }
    working_directory_c(const working_directory_c&) = delete;
    working_directory_c& operator=(const working_directory_c&) = delete;

  private:
    std::filesystem::path _before;
    test_support::temp_dir_c _scratch;
};

TEST_P(bad_input, exports_fail_with_unknown_state) {
    test_support::loaded_library_c library;
    ASSERT_TRUE(library.loaded()) << library.error();
    working_directory_c scratch;
    const char* text = GetParam().text.c_str();
    unsigned int index = 0;
    // A spelling that normalises to an existing directory (the abandoned ".." of a path of dots
    // reads as the parent) is a scenario like any other; its lock file then names that very
    // directory, which a reader opens and a writer can't: the answer is the lock rule's.
    guarded_buffer_c normalised;
    path_n::standard_dir_path(text, normalised.data(), true);
    if (!file_manipulation_n::if_exists(normalised.data(), nullptr)) {
        EXPECT_FALSE(library.is_engine_active_for_scenario(text));
    } else {
        library.is_engine_active_for_scenario(text);
    }
    EXPECT_FALSE(library.is_sync_replicated(text));
    EXPECT_FALSE(library.get_scenario_state_index(text, &index));
    EXPECT_EQ(index, 3u);
    EXPECT_TRUE(library.set_trc_file_log_path(text, text));
    EXPECT_TRUE(library.set_trc_file_log_path("", ""));
}

INSTANTIATE_TEST_SUITE_P(hostile_paths, bad_input, ::testing::ValuesIn(hostile_paths()),
                         param_name);

TEST(bad_input_conversions, one_megabyte_of_invalid_utf8_converts_with_replacements) {
    std::string rubbish(1 << 20, '\xff');
    int size = 0;
    ASSERT_TRUE(multi_lang_str_n::utf8_to_unicode(rubbish.c_str(), nullptr, size));
    EXPECT_EQ(size, (1 << 20) + 1);
    std::vector<os::wide_char> wide(static_cast<std::size_t>(size));
    ASSERT_TRUE(multi_lang_str_n::utf8_to_unicode(rubbish.c_str(), wide.data(), size));
    EXPECT_EQ(wide[0], 0xFFFD);
    EXPECT_EQ(wide[static_cast<std::size_t>(size) - 1], 0);
}
