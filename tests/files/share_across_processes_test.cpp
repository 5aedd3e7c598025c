// The sharing rules of the engine's lock file between two processes: a second process holds the
// file as the engine would, and this one opens it as a query or another engine would.
#include "common/child_process.h"
#include "common/test_support.h"
#include "files/file_modif.h"
#include "platform/os.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

using test_support::temp_dir_c;

namespace {

constexpr unsigned writer_flags = open_flags_n::share_reads_only;
constexpr unsigned reader_flags = 0; // share everything

// A file_holder process with the file open until released or killed.
class holder_c {
  public:
    holder_c(const temp_dir_c& dir, const std::string& path, const std::string& mode,
             unsigned flags)
        : _release(dir.join("holder.release")),
          _process({test_support::program_path("file_holder"), path, mode, std::to_string(flags),
                    _release},
                   dir.join("holder.out")) {}

    // Waits for the holder's word: true for "held".
    bool held() { return _process.says("held", "failed"); }
    int release() {
        test_support::write_file(_release, "");
        return _process.wait(30000);
    }
    void kill() { _process.kill(); }
    bool started() const { return _process.started(); }

  private:
    std::string _release;
    test_support::child_process_c _process;
};

class share_across_processes : public ::testing::Test {
  protected:
    void SetUp() override { test_support::write_file(lock_file, "engine"); }
    bool opens(const char* mode, unsigned flags) {
        FILE_c file;
        return file.open(lock_file.c_str(), mode, nullptr, flags);
    }
    temp_dir_c dir;
    std::string lock_file = dir.join("state.lock");
};

} // namespace

TEST_F(share_across_processes, a_writer_elsewhere_refuses_a_writer_here_and_admits_a_reader) {
    holder_c engine(dir, lock_file, "w+", writer_flags);
    ASSERT_TRUE(engine.started());
    ASSERT_TRUE(engine.held());
    EXPECT_FALSE(opens("w+", writer_flags));
    EXPECT_TRUE(opens("r", reader_flags));
    EXPECT_EQ(engine.release(), 0);
}

TEST_F(share_across_processes, a_released_writer_admits_the_next_writer) {
    {
        holder_c engine(dir, lock_file, "w+", writer_flags);
        ASSERT_TRUE(engine.held());
        ASSERT_EQ(engine.release(), 0);
    }
    EXPECT_TRUE(opens("w+", writer_flags));
}

TEST_F(share_across_processes, the_lock_vanishes_with_a_killed_holder) {
    holder_c engine(dir, lock_file, "w+", writer_flags);
    ASSERT_TRUE(engine.held());
    ASSERT_FALSE(opens("w+", writer_flags));
    engine.kill();
    EXPECT_TRUE(opens("w+", writer_flags));
}

TEST_F(share_across_processes, a_reader_elsewhere_admits_a_writer_here) {
    holder_c query(dir, lock_file, "r", reader_flags);
    ASSERT_TRUE(query.held());
    EXPECT_TRUE(opens("w+", writer_flags));
    EXPECT_EQ(query.release(), 0);
}

TEST_F(share_across_processes, a_writer_here_refuses_a_writer_elsewhere) {
    FILE_c engine;
    ASSERT_TRUE(engine.open(lock_file.c_str(), "w+", nullptr, writer_flags));
    holder_c second(dir, lock_file, "w+", writer_flags);
    EXPECT_FALSE(second.held());
}

TEST_F(share_across_processes, sharing_nothing_refuses_even_a_reader_elsewhere) {
    holder_c exclusive(dir, lock_file, "r", 0x80);
    ASSERT_TRUE(exclusive.held());
    EXPECT_FALSE(opens("r", reader_flags));
    EXPECT_EQ(exclusive.release(), 0);
}

TEST_F(share_across_processes, flags_0x80_and_0x100_together_share_nothing) {
    holder_c exclusive(dir, lock_file, "r", 0x80 | 0x100);
    ASSERT_TRUE(exclusive.held());
    EXPECT_FALSE(opens("r", reader_flags));
    EXPECT_EQ(exclusive.release(), 0);
}
