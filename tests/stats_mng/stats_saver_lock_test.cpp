// The engine's lock: stats_saver_lock_c, and is_engine_active_for_scenario asked through the
// loaded library while another process (stats_tool hold-lock, or file_holder) holds the file.
#include "stats_mng/stats_saver.h"

#include "common/child_process.h"
#include "common/loaded_library.h"
#include "common/test_support.h"
#include "files/file.h"
#include "files/file_manipulation.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

using test_support::child_process_c;
using test_support::count_of;
using test_support::read_file;
using test_support::temp_dir_c;

using test_support::attributes_of;
using test_support::set_attributes;
using test_support::stored_hidden_bit;

namespace {

std::string slashed(std::string path) {
    for (char& c : path)
        if (c == '\\') c = '/';
    return path;
}

bool exists(const std::string& path) {
    return file_manipulation_n::if_exists(path.c_str(), nullptr);
}

// stats_tool holding the engine's lock on a scenario until released or killed.
class engine_c {
  public:
    engine_c(const temp_dir_c& scratch, const std::string& scenario)
        : _release(scratch.join("engine.release")),
          _process({test_support::program_path("stats_tool"), "hold-lock", scenario,
                    "--release-file", _release},
                   scratch.join("engine.out")) {}
    bool holds() { return _process.says("holding", "cannot"); }
    int release() {
        test_support::write_file(_release, "");
        return _process.wait(30000);
    }
    void kill() { _process.kill(); }

  private:
    std::string _release;
    child_process_c _process;
};

// A name that starts with a dot reads as hidden whatever is stored, so the read attribute alone
// proves nothing: the stored bit must be there too.
void expect_hidden_bit_stored(const std::string& path) {
    int stored = stored_hidden_bit(path);
    if (stored < 0) {
        std::printf("[ note ] the stored hidden bit is checked by the POSIX build only\n");
        return;
    }
    EXPECT_EQ(stored, 1) << path;
}

class state_lock : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(library.loaded()) << library.error(); }
    std::string state_dir() const { return scenario.join(StateDirName); }
    std::string lock_file() const {
        return scenario.join(std::string(StateDirName) + "/state.lock");
    }

    test_support::loaded_library_c library;
    temp_dir_c scenario;
    temp_dir_c scratch;
};

} // namespace

TEST_F(state_lock, a_scenario_without_state_directory_is_inactive_and_gets_a_hidden_one) {
    std::string trace_file = library.trace_into(scratch.str());
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenario.str().c_str()));
    library.stop_trace();
    EXPECT_TRUE(exists(state_dir()));
    EXPECT_TRUE(attributes_of(state_dir()) & os::FILE_ATTRIBUTE_HIDDEN);
    expect_hidden_bit_stored(state_dir());
    EXPECT_FALSE(exists(lock_file()));
    EXPECT_EQ(count_of(read_file(trace_file), "Locker does not exist now.\n"), 1u);
}

TEST_F(state_lock, a_lock_file_held_by_nobody_is_inactive_and_left_empty) {
    std::filesystem::create_directory(test_support::from_utf8(state_dir()));
    test_support::write_file(lock_file(), "left by a dead engine");
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenario.str().c_str()));
    EXPECT_EQ(read_file(lock_file()), "");
}

TEST_F(state_lock, an_engine_in_another_process_is_active_and_inactive_once_released) {
    engine_c engine(scratch, scenario.str());
    ASSERT_TRUE(engine.holds());
    std::string trace_file = library.trace_into(scratch.str());
    EXPECT_TRUE(library.is_engine_active_for_scenario(scenario.str().c_str()));
    library.stop_trace();
    std::string line = "Fail to open the lock file " + slashed(lock_file()) + " for writer lock.\n";
    EXPECT_EQ(count_of(read_file(trace_file), line), 1u) << read_file(trace_file);
    EXPECT_EQ(engine.release(), 0);
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenario.str().c_str()));
}

TEST_F(state_lock, an_engine_killed_hard_is_inactive_at_once) {
    engine_c engine(scratch, scenario.str());
    ASSERT_TRUE(engine.holds());
    ASSERT_TRUE(library.is_engine_active_for_scenario(scenario.str().c_str()));
    engine.kill();
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenario.str().c_str()));
}

TEST_F(state_lock, a_holder_in_this_process_is_active) {
    stats_saver_lock_c engine(scenario.str().c_str());
    engine.init();
    ASSERT_TRUE(engine.lock(true));
    EXPECT_TRUE(library.is_engine_active_for_scenario(scenario.str().c_str()));
}

TEST_F(state_lock, a_lock_file_nobody_may_read_gives_false_with_both_traces) {
    std::filesystem::create_directory(test_support::from_utf8(state_dir()));
    test_support::write_file(lock_file(), "");
    child_process_c exclusive({test_support::program_path("file_holder"), lock_file(), "r", "128",
                               scratch.join("exclusive.release")},
                              scratch.join("exclusive.out"));
    ASSERT_TRUE(exclusive.says("held", "failed"));
    std::string trace_file = library.trace_into(scratch.str());
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenario.str().c_str()));
    library.stop_trace();
    std::string trace = read_file(trace_file);
    std::string reader =
        "Fail to open the lock file " + slashed(lock_file()) + " for reader lock.\n";
    std::size_t first = trace.find(reader),
                second = trace.find("Locker can't acquire the read lock.\n");
    EXPECT_NE(first, std::string::npos) << trace;
    EXPECT_NE(second, std::string::npos) << trace;
    EXPECT_LT(first, second);
    test_support::write_file(scratch.join("exclusive.release"), "");
    EXPECT_EQ(exclusive.wait(30000), 0);
}

TEST_F(state_lock, a_missing_path_is_inactive_with_its_trace) {
    std::string trace_file = library.trace_into(scratch.str());
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenario.join("missing").c_str()));
    library.stop_trace();
    EXPECT_EQ(count_of(read_file(trace_file), "Fail to find the path "), 1u);
}

TEST_F(state_lock, reader_lock_on_a_missing_lock_file_fails_and_creates_nothing) {
    stats_saver_lock_c locker(scenario.str().c_str());
    locker.init();
    EXPECT_FALSE(locker.lock(false));
    EXPECT_FALSE(locker.is_writer);
    EXPECT_FALSE(exists(lock_file()));
}

TEST_F(state_lock, writer_lock_on_a_missing_lock_file_creates_it) {
    stats_saver_lock_c locker(scenario.str().c_str());
    locker.init();
    EXPECT_TRUE(locker.lock(true));
    EXPECT_TRUE(locker.is_writer);
    EXPECT_TRUE(exists(lock_file()));
}

TEST_F(state_lock, writer_lock_after_a_reader_lock_of_the_same_object_succeeds) {
    stats_saver_lock_c locker(scenario.str().c_str());
    locker.init();
    ASSERT_TRUE(locker.lock(true));
    ASSERT_TRUE(locker.lock(false));
    EXPECT_TRUE(locker.lock(true));
}

TEST_F(state_lock, a_second_writer_object_is_refused_while_the_first_holds) {
    stats_saver_lock_c first(scenario.str().c_str()), second(scenario.str().c_str());
    first.init();
    second.init();
    ASSERT_TRUE(first.lock(true));
    EXPECT_FALSE(second.lock(true));
    EXPECT_TRUE(second.lock(false));
}

TEST_F(state_lock, init_makes_the_state_directory_hidden_and_forms_the_lock_path) {
    stats_saver_lock_c locker(scenario.str().c_str());
    locker.init();
    EXPECT_EQ(std::string(locker.dir_path.c_str()), slashed(state_dir()));
    EXPECT_EQ(std::string(locker.lock_file_path.c_str()), slashed(lock_file()));
    EXPECT_TRUE(exists(state_dir()));
    EXPECT_TRUE(attributes_of(state_dir()) & os::FILE_ATTRIBUTE_HIDDEN);
    expect_hidden_bit_stored(state_dir());
}

TEST_F(state_lock, an_existing_state_directory_is_left_as_it_is) {
    std::filesystem::create_directory(test_support::from_utf8(state_dir()));
    os::DWORD before = attributes_of(state_dir());
    stats_saver_lock_c locker(scenario.str().c_str());
    locker.init();
    EXPECT_EQ(attributes_of(state_dir()), before);
    // Nothing was stored either: only a dot-name makes it read hidden.
    if (stored_hidden_bit(state_dir()) >= 0) {
        EXPECT_EQ(stored_hidden_bit(state_dir()), 0);
    }
}

TEST(state_lock_paths, a_drive_path_gives_its_state_directory_on_the_drive_root) {
    stats_saver_lock_c locker("C:");
    utl_stream_c out;
    EXPECT_STREQ(locker._get_dir_path(out), "C:/.mr_qv_prefix");
}

TEST(state_lock_paths, a_trailing_slash_gives_the_same_directory) {
    stats_saver_lock_c plain("/srv/data"), trailing("/srv/data/"), backslashed("\\srv\\data\\");
    utl_stream_c a, b, c;
    EXPECT_STREQ(plain._get_dir_path(a), "/srv/data/.mr_qv_prefix");
    EXPECT_STREQ(trailing._get_dir_path(b), "/srv/data/.mr_qv_prefix");
    EXPECT_STREQ(backslashed._get_dir_path(c), "/srv/data/.mr_qv_prefix");
}

TEST(state_lock_paths, an_empty_scenario_path_has_no_state_directory) {
    stats_saver_lock_c locker("");
    utl_stream_c out("kept?");
    EXPECT_EQ(locker._get_dir_path(out), nullptr);
    EXPECT_EQ(out.get_length(), 0u);
}

// ---- bad input

TEST_F(state_lock, a_state_directory_that_is_a_file_is_inactive) {
    test_support::write_file(state_dir(), "not a directory");
    std::string trace_file = library.trace_into(scratch.str());
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenario.str().c_str()));
    library.stop_trace();
    EXPECT_EQ(count_of(read_file(trace_file), "Locker does not exist now.\n"), 1u);
    EXPECT_EQ(read_file(state_dir()), "not a directory");
}

TEST_F(state_lock, a_lock_file_that_is_a_directory_reads_as_active) {
    // The reader open takes the directory; the writer open can't replace it, and any failure of
    // the writer open reads as a holder.
    std::filesystem::create_directories(test_support::from_utf8(lock_file()));
    EXPECT_TRUE(library.is_engine_active_for_scenario(scenario.str().c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(test_support::from_utf8(lock_file())));
}

TEST_F(state_lock, a_scenario_path_that_is_a_file_is_inactive) {
    std::string file = scenario.join("plain.txt");
    test_support::write_file(file, "x");
    std::string trace_file = library.trace_into(scratch.str());
    EXPECT_FALSE(library.is_engine_active_for_scenario(file.c_str()));
    library.stop_trace();
    EXPECT_EQ(count_of(read_file(trace_file), "Locker does not exist now.\n"), 1u);
    EXPECT_EQ(read_file(file), "x");
}

TEST_F(state_lock, a_read_only_state_directory_with_a_free_lock_file_is_inactive) {
    std::filesystem::create_directory(test_support::from_utf8(state_dir()));
    test_support::write_file(lock_file(), "");
    std::filesystem::permissions(test_support::from_utf8(state_dir()),
                                 std::filesystem::perms::owner_write |
                                     std::filesystem::perms::group_write |
                                     std::filesystem::perms::others_write,
                                 std::filesystem::perm_options::remove);
    EXPECT_FALSE(library.is_engine_active_for_scenario(scenario.str().c_str()));
    std::filesystem::permissions(test_support::from_utf8(state_dir()),
                                 std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add);
}
